// AcDbBlockTableRecord and the iterator over its entities.
#include <algorithm>

#include "dbents.h"
#include "dbsymtb.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/Blocks.h"
#include "embedded/os/CaseFold.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbBlockTableRecord, AcDbSymbolTableRecord)

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

constexpr int kBase = 10;
constexpr std::int64_t kIsExternal = 4;
constexpr std::int64_t kIsOverlay = 8;

/// The block behind a record; null for a record in no database.
dxf::Block* blockOf(const AcDbObject& record) {
  const ObjectImpl& impl = Access::of(record);
  return impl.stub ? impl.database->store.blockOf(*impl.stub) : nullptr;
}

std::int64_t flagsOf(const AcDbObject& record) {
  const dxf::Block* const block = blockOf(record);
  if (!block || !block->begin) {
    return 0;
  }
  try {
    const TagList tags = Access::of(record).database->tagsOf(*block->begin);
    return tags.integer(code::kFlags, layout::kBlockBegin.in(tags), 0);
  } catch (...) {
    statusOfException();
    return 0;
  }
}

/// Kinds that stand behind another entity only.
bool isPart(const AcDbObject& entity) {
  return entity.isKindOf(AcDbVertex::desc()) || entity.isKindOf(AcDbAttribute::desc()) ||
         entity.isKindOf(AcDbSequenceEnd::desc());
}

}  // namespace

AcDbBlockTableRecord::AcDbBlockTableRecord() = default;

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbEntity* entity) {
  AcDbObjectId id;
  return appendAcDbEntity(id, entity);
}

Acad::ErrorStatus AcDbBlockTableRecord::appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity) {
  id.setNull();
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!entity) {
    return Acad::eNullEntityPointer;
  }
  dxf::Block* const block = blockOf(*this);
  if (!block) {
    return Acad::eNotInDatabase;
  }
  const ObjectImpl& impl = Access::of(*entity);
  if (impl.state != OpenState::Free || impl.own().partOf) {
    return Acad::eAlreadyInDb;
  }
  if (isPart(*entity)) {
    return Acad::eIllegalEntityType;
  }
  try {
    appendFreeEntity(*Access::of(*this).database, *block, *entity);
    id = entity->objectId();
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

AcGePoint3d AcDbBlockTableRecord::origin() const {
  const dxf::Block* const block = blockOf(*this);
  try {
    return block ? baseOf(*Access::of(*this).database, *block) : AcGePoint3d();
  } catch (...) {
    statusOfException();
    return {};
  }
}

Acad::ErrorStatus AcDbBlockTableRecord::setOrigin(const AcGePoint3d& origin) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  const dxf::Block* const block = blockOf(*this);
  if (!block || !block->begin) {
    return Acad::eNotApplicable;
  }
  try {
    bool isFinite = true;
    changeRecord(*block->begin, [&](RecordEdit& edit) {
      RecordEdit trial(edit.tags());
      trial.setPoint(layout::kBlockBegin, kBase, origin);
      isFinite = trial.isFinite();
      if (isFinite) {
        edit = trial;
      }
    });
    return isFinite ? Acad::eOk : Acad::eInvalidInput;
  } catch (...) {
    return statusOfException();
  }
}

bool AcDbBlockTableRecord::isLayout() const {
  const dxf::Block* const block = blockOf(*this);
  constexpr std::wstring_view kModel = ACDB_MODEL_SPACE;
  constexpr std::wstring_view kPaper = ACDB_PAPER_SPACE;
  return block &&
         (quoin::os::sameName(block->name, kModel) ||
          quoin::os::sameName(std::wstring_view(block->name).substr(0, kPaper.size()), kPaper));
}

AcDbObjectId AcDbBlockTableRecord::getLayoutId() const {
  constexpr int kLayout = 340;
  const DatabaseImpl* const database = Access::of(*this).database;
  if (!database) {
    return AcDbObjectId::kNull;
  }
  const TagList& tags = tagsOf(*this);
  return AcDbObjectId(database->byHandle(tags.handle(kLayout, layout::kBlockRecord.in(tags))));
}

bool AcDbBlockTableRecord::isAnonymous() const {
  constexpr std::int64_t kIsAnonymous = 1;
  return !isLayout() && (flagsOf(*this) & kIsAnonymous) != 0;
}

bool AcDbBlockTableRecord::isFromExternalReference() const {
  return (flagsOf(*this) & kIsExternal) != 0;
}

bool AcDbBlockTableRecord::isFromOverlayReference() const {
  return (flagsOf(*this) & kIsOverlay) != 0;
}

bool AcDbBlockTableRecord::hasAttributeDefinitions() const {
  const dxf::Block* const block = blockOf(*this);
  if (!block) {
    return false;
  }
  const DatabaseImpl& database = *Access::of(*this).database;
  return std::any_of(block->entities.begin(), block->entities.end(), [&](const AcDbStub* entity) {
    return !entity->erased && database.kindOf(*entity) == "ATTDEF";
  });
}

// --- the iterator ---------------------------------------------------------------------------

/// It looks into the block's own list, so that entities appended meanwhile are walked too.
struct AcDbBlockTableRecordIterator::State {
  const dxf::Block* block = nullptr;
  std::size_t at = 0;

  std::size_t size() const { return block ? block->entities.size() : 0; }
  bool isSkipped(bool skipDeleted) const {
    return skipDeleted && at < size() && block->entities[at]->erased;
  }
};

AcDbBlockTableRecordIterator::AcDbBlockTableRecordIterator(std::unique_ptr<State> state)
    : m_state(std::move(state)) {}

AcDbBlockTableRecordIterator::~AcDbBlockTableRecordIterator() = default;

Acad::ErrorStatus AcDbBlockTableRecord::newIterator(AcDbBlockTableRecordIterator*& iterator,
                                                    bool atBeginning, bool skipDeleted) const {
  iterator = nullptr;
  try {
    auto state = std::make_unique<AcDbBlockTableRecordIterator::State>();
    state->block = blockOf(*this);
    iterator = new AcDbBlockTableRecordIterator(std::move(state));
    iterator->start(atBeginning, skipDeleted);
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

void AcDbBlockTableRecordIterator::start(bool atBeginning, bool skipDeleted) {
  constexpr auto kBack = static_cast<std::size_t>(-1);
  m_state->at = atBeginning ? 0 : m_state->size() - 1;
  while (!done() && m_state->isSkipped(skipDeleted)) {
    m_state->at += atBeginning ? 1U : kBack;
  }
}

bool AcDbBlockTableRecordIterator::done() const {
  return m_state->at >= m_state->size();
}

void AcDbBlockTableRecordIterator::step(bool forward, bool skipDeleted) {
  constexpr auto kBack = static_cast<std::size_t>(-1);
  do {
    m_state->at += forward ? 1U : kBack;
  } while (!done() && m_state->isSkipped(skipDeleted));
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntity(AcDbEntity*& entity, AcDb::OpenMode mode,
                                                          bool openErased) const {
  entity = nullptr;
  return done() ? Acad::eInvalidInput
                : acdbOpenAcDbEntity(entity, AcDbObjectId(m_state->block->entities[m_state->at]),
                                     mode, openErased);
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::getEntityId(AcDbObjectId& id) const {
  id = done() ? AcDbObjectId::kNull : AcDbObjectId(m_state->block->entities[m_state->at]);
  return done() ? Acad::eInvalidInput : Acad::eOk;
}

Acad::ErrorStatus AcDbBlockTableRecordIterator::seek(AcDbObjectId id) {
  for (std::size_t i = 0; i < m_state->size(); ++i) {
    if (AcDbObjectId(m_state->block->entities[i]) == id) {
      m_state->at = i;
      return Acad::eOk;
    }
  }
  return Acad::eInvalidInput;
}
