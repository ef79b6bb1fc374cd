#include "embedded/db/geometry/ExtentsWalk.h"

#include <utility>

#include "embedded/db/geometry/EntityGeometry.h"

namespace quoin::db {
namespace {

/// A prompt for a value; the value is shown by the reference's own attribute.
bool isPrompt(const TagList& tags) {
  constexpr std::int64_t kIsConstant = 2;
  return tags.size() > 0 && dxf::trimmedValue(tags[0]) == "ATTDEF" &&
         !(tags.integer(code::kFlags, layout::kAttributeDefinition.in(tags), 0) & kIsConstant);
}

}  // namespace

ExtentsWalk::ExtentsWalk(DatabaseImpl* database)
    : m_database(database), m_memory(database ? database->extentsMemory() : m_ownMemory) {}

Acad::ErrorStatus ExtentsWalk::addEntity(const Drawn& entity, AcDbExtents& box) {
  if (entity.stub) {
    const auto known = m_memory.entities.find(entity.stub);
    if (known != m_memory.entities.end()) {
      box.addExt(known->second.box);
      return known->second.box.isFresh() ? Acad::eNullExtents : Acad::eOk;
    }
  }
  AcDbExtents own;
  const Acad::ErrorStatus status = addShape(entity, AcGeMatrix3d::kIdentity, own);
  if (status != Acad::eOk) {
    return status;
  }
  if (!m_shown.empty()) {
    const std::size_t before = m_memory.visited;
    begin(nullptr, AcGeMatrix3d::kIdentity, false);
    run();
    own.addExt(m_frames.back().box);
    m_frames.pop_back();
    const bool isWorthKeeping =
        m_isRough || m_memory.visited - before >= ExtentsMemory::kWorthKeeping;
    if (isWorthKeeping && entity.stub) {
      m_memory.entities[entity.stub] = {own, m_isRough};
      m_memory.roughEntities += m_isRough ? 1 : 0;
    }
  }
  if (own.isFresh()) {
    return Acad::eNullExtents;
  }
  box.addExt(own);
  return Acad::eOk;
}

void ExtentsWalk::addBlock(const dxf::Block& block, AcDbExtents& box) {
  begin(&block, AcGeMatrix3d::kIdentity, false);
  run();
  box.addExt(m_frames.back().box);
  m_frames.pop_back();
}

void ExtentsWalk::show(const dxf::Block& block, const AcGeMatrix3d& toWorld) {
  m_shown.push_back({&block, toWorld});
}

void ExtentsWalk::showOr(const dxf::Block& block, const AcGeMatrix3d& toWorld, const Drawn& entity,
                         ExtentsFunction otherwise) {
  m_shown.push_back({&block, toWorld, entity.stub, otherwise});
}

void ExtentsWalk::addPart(const Drawn& part, const AcGeMatrix3d& toWorld, AcDbExtents& box) {
  const std::size_t before = m_shown.size();
  addShape(part, toWorld, box);
  m_shown.resize(before);
}

Acad::ErrorStatus ExtentsWalk::addShape(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                        AcDbExtents& box) {
  const RecordKind* const kind =
      entity.tags.size() > 0 ? entityKind(dxf::trimmedValue(entity.tags[0])) : nullptr;
  if (!kind || !kind->extents) {
    return Acad::eNotApplicable;
  }
  AcDbExtents own;
  const Acad::ErrorStatus status = kind->extents(entity, toWorld, *this, own);
  if (status == Acad::eOk) {
    box.addExt(own);
  }
  return status;
}

void ExtentsWalk::begin(const dxf::Block* block, const AcGeMatrix3d& toWorld, bool isForBox) {
  Frame& frame = m_frames.emplace_back();
  frame.block = block;
  frame.toWorld = toWorld;
  frame.isForBox = isForBox;
  frame.shown = std::move(m_shown);
  m_shown.clear();
  if (block) {
    m_path.insert(block);
  }
}

void ExtentsWalk::run() {
  const std::size_t bottom = m_frames.size();
  while (true) {
    Frame& frame = m_frames.back();
    if (!frame.shown.empty()) {
      enter();
    } else if (frame.block && frame.nextEntity < frame.block->entities.size()) {
      visit(*frame.block->entities[frame.nextEntity++]);
    } else if (m_frames.size() > bottom) {
      leave();
    } else {
      break;
    }
  }
}

void ExtentsWalk::visit(const AcDbStub& entity) {
  if (entity.erased) {
    return;
  }
  ++m_memory.visited;
  const TagList tags = m_database->tagsOf(entity);
  const bool isInvisible = tags.integer(code::kVisibility, layout::kEntity.in(tags), 0) != 0;
  if (isInvisible || (m_path.size() > 1 && isPrompt(tags))) {
    return;
  }
  Frame& frame = m_frames.back();
  if (addShape({tags, m_database, &entity, nullptr}, frame.toWorld, frame.box) == Acad::eOk) {
    std::swap(frame.shown, m_shown);
  }
  m_shown.clear();
}

void ExtentsWalk::enter() {
  const Frame& frame = m_frames.back();
  const Shown& shown = frame.shown.back();
  if (m_path.count(shown.block) != 0) {
    finishShown(AcDbExtents());  // a block that holds itself shows nothing more
    return;
  }
  if (!frame.isForBox && m_memory.visited < ExtentsMemory::kExactEntities) {
    begin(shown.block, shown.toWorld, false);
    return;
  }
  m_isRough = true;
  const auto known = m_memory.boxes.find(shown.block);
  if (known == m_memory.boxes.end()) {
    begin(shown.block, AcGeMatrix3d::kIdentity, true);
    return;
  }
  AcDbExtents box = known->second;
  box.transformBy(shown.toWorld);
  finishShown(box);
}

void ExtentsWalk::leave() {
  const Frame done = std::move(m_frames.back());
  m_frames.pop_back();
  m_path.erase(done.block);
  if (done.isForBox) {
    m_memory.boxes[done.block] = done.box;  // the frame above finds it there
  } else {
    finishShown(done.box);
  }
}

void ExtentsWalk::finishShown(const AcDbExtents& box) {
  Frame& frame = m_frames.back();
  const Shown shown = frame.shown.back();
  frame.shown.pop_back();
  frame.box.addExt(box);
  if (box.isFresh() && shown.otherwise && shown.owner) {
    const TagList tags = m_database->tagsOf(*shown.owner);
    AcDbExtents own;
    shown.otherwise({tags, m_database, shown.owner, nullptr}, frame.toWorld, *this, own);
    frame.box.addExt(own);
  }
}

}  // namespace quoin::db
