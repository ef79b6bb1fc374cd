// AcDbObjectIterator: over vertices and attributes.
#include "embedded/db/core/DatabaseImpl.h"

using namespace quoin::db;

struct AcDbObjectIterator::State {
  /// Of a resident owner; without the record that ends the sequence.
  std::vector<AcDbStub*> stubs;
  /// Of a free owner.
  std::vector<AcDbObject*> objects;
  std::size_t at = 0;  // one beyond the last, or SIZE_MAX before the first: done

  std::size_t size() const { return stubs.empty() ? objects.size() : stubs.size(); }
  bool isSkipped(bool skipErased) const {
    return skipErased && at < stubs.size() && stubs[at]->erased;
  }
};

AcDbObjectIterator::AcDbObjectIterator(std::unique_ptr<State> state) : m_state(std::move(state)) {}

AcDbObjectIterator::~AcDbObjectIterator() = default;

void AcDbObjectIterator::start(bool atBeginning, bool skipErased) {
  m_state->at = atBeginning ? 0 : m_state->size() - 1;
  while (!done() && m_state->isSkipped(skipErased)) {
    m_state->at += atBeginning ? 1U : static_cast<std::size_t>(-1);
  }
}

bool AcDbObjectIterator::done() const {
  return m_state->at >= m_state->size();
}

void AcDbObjectIterator::step(bool forwards, bool skipErased) {
  do {
    m_state->at += forwards ? 1U : static_cast<std::size_t>(-1);
  } while (!done() && m_state->isSkipped(skipErased));
}

AcDbObjectId AcDbObjectIterator::objectId() const {
  return done() || m_state->stubs.empty() ? AcDbObjectId::kNull
                                          : AcDbObjectId(m_state->stubs[m_state->at]);
}

AcDbEntity* AcDbObjectIterator::entity() const {
  return done() || m_state->objects.empty() ? nullptr
                                            : AcDbEntity::cast(m_state->objects[m_state->at]);
}

AcDbObjectIterator* Access::newPartIterator(const AcDbObject& owner) {
  try {
    auto state = std::make_unique<AcDbObjectIterator::State>();
    const ObjectImpl& impl = of(owner);
    if (impl.stub) {
      for (AcDbStub* const part : impl.database->store.subEntities(*impl.stub)) {
        if (impl.database->kindOf(*part) != kSequenceEnd) {
          state->stubs.push_back(part);
        }
      }
    } else {
      for (const auto& part : impl.own().parts) {
        state->objects.push_back(part.get());
      }
    }
    std::unique_ptr<AcDbObjectIterator> iterator(new AcDbObjectIterator(std::move(state)));
    iterator->start();
    return iterator.release();
  } catch (...) {
    statusOfException();
    return nullptr;
  }
}
