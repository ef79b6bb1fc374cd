#include "commands/compare/BlockPlaces.h"

#include <utility>

#include "commands/Progress.h"
#include "dbdim.h"
#include "dbobjptr.h"
#include "dbsymtb.h"

namespace quoin::commands {

namespace {

/// Dimensions are drawn by a block of their own, which has the world's coordinates.
Insert readDimension(const AcDbDimension& dimension) {
  Insert insert;
  insert.block = dimension.dimBlockId();
  insert.entity = dimension.objectId();
  insert.transform.setToTranslation(dimension.dimBlockPosition() - AcGePoint3d::kOrigin);
  return insert;
}

}  // namespace

BlockPlaces::BlockPlaces(Drawing& drawing, const std::set<AcDbObjectId>& wanted)
    : m_drawing(drawing), m_wanted(wanted) {
  readAll();
  countAll();
}

double BlockPlaces::count(const AcDbObjectId& block) const {
  const auto known = m_contents.find(static_cast<AcDbStub*>(block));
  return known == m_contents.end() ? 0.0 : known->second->count;
}

BlockPlaces::Content& BlockPlaces::content(const AcDbObjectId& block) {
  std::unique_ptr<Content>& known = m_contents[static_cast<AcDbStub*>(block)];
  if (!known) {
    known = std::make_unique<Content>();
    known->block = block;
    known->isWanted = m_wanted.count(block) != 0;
    known->leadsThere = known->isWanted;
    read(*known);
  }
  return *known;
}

bool BlockPlaces::isShown(const AcDbEntity& entity) {
  if (entity.visibility() == AcDb::kInvisible) {
    return false;
  }
  const AcDbObjectId layer = entity.layerId();
  const auto [known, isNew] = m_isFrozen.try_emplace(static_cast<AcDbStub*>(layer), false);
  if (isNew) {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    known->second = record.openStatus() == Acad::eOk && record->isFrozen();
  }
  return !known->second;
}

void BlockPlaces::read(Content& content) {
  m_drawing.forEachEntity(content.block, [&](const AcDbObjectId& id) {
    const std::wstring kind = hostx::kindName(id);
    if (kind != L"INSERT" && kind != L"DIMENSION") {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk || hostx::hasUnreadableNumber(entity.object()) ||
        !isShown(*entity.object())) {
      return;
    }
    const AcDbBlockReference* const reference = AcDbBlockReference::cast(entity.object());
    const AcDbDimension* const dimension = AcDbDimension::cast(entity.object());
    Insert insert = reference   ? readInsert(*reference)
                    : dimension ? readDimension(*dimension)
                                : Insert();
    if (!insert.block.isNull()) {
      content.references.push_back(std::move(insert));
    }
  });
}

// Without recursion, since blocks nest as deep as a file likes.
void BlockPlaces::readAll() {
  std::vector<Content*> open{&content(m_drawing.modelSpaceId())};
  while (!open.empty()) {
    Content& top = *open.back();
    if (top.shown.size() < top.references.size()) {
      const std::size_t known = m_contents.size();
      Content& inner = content(top.references[top.shown.size()].block);
      top.shown.push_back(&inner);
      if (m_contents.size() > known) {
        open.push_back(&inner);
      }
      continue;
    }
    for (const Content* inner : top.shown) {
      top.leadsThere = top.leadsThere || (inner->finished > 0 && inner->leadsThere);
    }
    m_finished.push_back(&top);
    top.finished = m_finished.size();
    open.pop_back();
  }
}

void BlockPlaces::countAll() {
  m_finished.back()->count = 1.0;
  for (auto one = m_finished.rbegin(); one != m_finished.rend(); ++one) {
    const Content& outer = **one;
    for (std::size_t i = 0; i < outer.shown.size(); ++i) {
      if (leads(outer, *outer.shown[i])) {
        outer.shown[i]->count += outer.count * static_cast<double>(outer.references[i].cells());
      }
    }
  }
}

void BlockPlaces::walk(const std::function<bool(const Place&)>& visit) const {
  constexpr std::size_t kBetweenLooks = 1024;
  struct Frame {
    const Content* content;
    AcGeMatrix3d toWorld;
    std::size_t next = 0;  // of its references
    std::size_t cell = 0;
  };
  std::vector<Frame> open{{m_finished.back(), AcGeMatrix3d::kIdentity}};
  AcDbObjectId reference;
  std::size_t steps = 0;
  while (!open.empty()) {
    Frame& top = open.back();
    if (top.next == top.content->references.size()) {
      open.pop_back();
      continue;
    }
    const Insert& insert = top.content->references[top.next];
    const Content& inner = *top.content->shown[top.next];
    if (!leads(*top.content, inner) || top.cell == insert.cells()) {
      ++top.next;
      top.cell = 0;
      continue;
    }
    if (++steps % kBetweenLooks == 0) {
      Progress::checkInterrupt();
    }
    if (open.size() == 1) {
      reference = insert.entity;
    }
    const AcGeMatrix3d toWorld = top.toWorld * insert.cell(top.cell++);
    if (inner.isWanted && !visit({inner.block, reference, toWorld})) {
      return;
    }
    open.push_back({&inner, toWorld});
  }
}

}  // namespace quoin::commands
