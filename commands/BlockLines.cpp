#include "commands/BlockLines.h"

#include <algorithm>
#include <cmath>

#include "commands/Polylines.h"
#include "commands/Progress.h"
#include "commands/WallLines.h"
#include "dbobjptr.h"
#include "embedded/db/entities/Multiline.h"

namespace quoin::commands {

namespace {

constexpr const wchar_t* kLayerZero = L"0";

/// Calls `add` with start, end and segment for every straight line of an entity.
template <class Add>
void forEachStraight(const AcDbEntity& entity, const Add& add) {
  if (const AcDbLine* line = AcDbLine::cast(&entity)) {
    add(line->startPoint(), line->endPoint(), WallLine::kWholeEntity);
  } else if (isPolyline(entity)) {
    const PolylineShape shape = readPolyline(entity);
    for (std::size_t i = 0; !shape.isCurveFit && i < shape.segmentCount(); ++i) {
      if (shape.vertices[i].bulge == 0.0) {
        add(shape.vertices[i].world, shape.segmentEnd(i).world, static_cast<int>(i));
      }
    }
  } else {
    for (const auto& [start, end] : db::multilineElements(entity.objectId())) {
      add(start, end, WallLine::kWholeEntity);
    }
  }
}

}  // namespace

AcGeMatrix3d Insert::cell(std::size_t index) const {
  const std::size_t row = index / columns;
  const AcGeVector3d move =
      columnStep * static_cast<double>(index - row * columns) + rowStep * static_cast<double>(row);
  return AcGeMatrix3d().setToTranslation(move) * transform;
}

Insert readInsert(const AcDbBlockReference& reference) {
  Insert insert;
  insert.block = reference.blockTableRecord();
  insert.entity = reference.objectId();
  insert.layer = hostx::layerName(insert.entity);
  insert.transform = reference.blockTransform();
  if (const AcDbMInsertBlock* array = AcDbMInsertBlock::cast(&reference)) {
    const AcGeMatrix3d plane = AcGeMatrix3d().setToPlaneToWorld(reference.normal());
    const double angle = reference.rotation();
    insert.columns = std::max<std::size_t>(1, array->columns());
    insert.rows = std::max<std::size_t>(1, array->rows());
    insert.columnStep =
        plane * AcGeVector3d(std::cos(angle), std::sin(angle), 0.0) * array->columnSpacing();
    insert.rowStep =
        plane * AcGeVector3d(-std::sin(angle), std::cos(angle), 0.0) * array->rowSpacing();
  }
  return insert;
}

// --- blocks -----------------------------------------------------------------------------------

BlockContent& BlockLines::content(const AcDbObjectId& block) {
  std::unique_ptr<BlockContent>& known = m_contents[static_cast<AcDbStub*>(block)];
  if (!known) {
    known = std::make_unique<BlockContent>();
    read(block, *known);
  }
  return *known;
}

// Without recursion, since blocks nest as deep as a file likes.
const BlockContent& BlockLines::counted(const AcDbObjectId& block) {
  using Count = BlockContent::Count;
  std::vector<std::pair<BlockContent*, std::size_t>> open;
  const auto begin = [&](const AcDbObjectId& id) {
    BlockContent& opened = content(id);
    if (opened.count == Count::Missing) {
      opened.count = Count::Running;
      for (const InnerLine& line : opened.lines) {
        (line.belongs == Belongs::ByItself ? opened.byThemselves : opened.asTheInsert) += 1.0;
      }
      open.emplace_back(&opened, 0);
    }
  };
  begin(block);
  while (!open.empty()) {
    BlockContent& top = *open.back().first;
    if (open.back().second == top.inserts.size()) {
      top.count = Count::Done;
      open.pop_back();
      continue;
    }
    const Insert& insert = top.inserts[open.back().second];
    const BlockContent& inner = content(insert.block);
    if (inner.count == Count::Missing) {
      begin(insert.block);
      continue;
    }
    ++open.back().second;
    top.isInsideItself =
        top.isInsideItself || inner.isInsideItself || inner.count == Count::Running;
    if (inner.count == Count::Done) {
      const auto cells = static_cast<double>(insert.cells());
      const Belongs belongs = belongingOf(insert.layer);
      top.byThemselves += cells * inner.linesOn(belongs == Belongs::ByItself);
      top.asTheInsert += belongs == Belongs::AsItsInsert ? cells * inner.asTheInsert : 0.0;
    }
  }
  return content(block);
}

Belongs BlockLines::belongingOf(const std::wstring& layer) const {
  return layer == kLayerZero ? Belongs::AsItsInsert
         : isChosen(layer)   ? Belongs::ByItself
                             : Belongs::Never;
}

void BlockLines::read(const AcDbObjectId& block, BlockContent& content) {
  m_drawing.forEachEntity(block, [&](const AcDbObjectId& id) {
    const Belongs belongs = belongingOf(hostx::layerName(id));
    const bool isInsert = hostx::kindName(id) == L"INSERT";
    if (belongs == Belongs::Never && !isInsert) {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk || hostx::hasUnreadableNumber(entity.object())) {
      return;
    }
    if (const AcDbBlockReference* reference = AcDbBlockReference::cast(entity.object())) {
      if (!reference->blockTableRecord().isNull()) {
        content.inserts.push_back(readInsert(*reference));
      }
      return;
    }
    forEachStraight(*entity.object(),
                    [&](const AcGePoint3d& start, const AcGePoint3d& end, int segment) {
                      if (!(start == end)) {
                        content.lines.push_back({start, end, id, segment, belongs});
                      }
                    });
  });
}

// --- walking ----------------------------------------------------------------------------------

void BlockWalk::walk(const Insert& insert, const Visit& visit) {
  m_isStopped = false;
  begin(insert, AcGeMatrix3d::kIdentity, insert.layer, visit);
  while (!m_open.empty() && !m_isStopped) {
    step(visit);
  }
  for (const Frame& frame : m_open) {
    frame.content->isOpen = false;
  }
  m_open.clear();
}

void BlockWalk::begin(const Insert& insert, const AcGeMatrix3d& outer, const std::wstring& layer,
                      const Visit& visit) {
  const BlockContent& counted = m_blocks.counted(insert.block);
  BlockContent& content = m_blocks.content(insert.block);
  if (content.isOpen || !(counted.linesOn(m_blocks.isChosen(layer)) > 0.0)) {
    return;
  }
  content.isOpen = true;
  m_open.push_back({&insert, &content, outer, layer, 0, 0, outer * insert.cell(0)});
  visitLines(visit);
}

void BlockWalk::step(const Visit& visit) {
  Frame& frame = m_open.back();
  if (frame.next < frame.content->inserts.size()) {
    const Insert& inner = frame.content->inserts[frame.next++];
    const std::wstring layer = inner.layer == kLayerZero ? frame.layer : inner.layer;
    begin(inner, AcGeMatrix3d(frame.toWorld), layer, visit);
    return;
  }
  if (++frame.cell < frame.insert->cells()) {
    frame.next = 0;
    frame.toWorld = frame.outer * frame.insert->cell(frame.cell);
    visitLines(visit);
    return;
  }
  frame.content->isOpen = false;
  m_open.pop_back();
}

void BlockWalk::visitLines(const Visit& visit) {
  constexpr std::size_t kBetweenLooks = 1024;  // cells between two looks at Ctrl-C
  if (++m_looks % kBetweenLooks == 0) {
    Progress::checkInterrupt();
  }
  const Frame& frame = m_open.back();
  const bool isInsertChosen = m_blocks.isChosen(frame.layer);
  for (const InnerLine& line : frame.content->lines) {
    if (line.belongs == Belongs::AsItsInsert && !isInsertChosen) {
      continue;
    }
    if (!visit(line)) {
      m_isStopped = true;
      return;
    }
  }
}

}  // namespace quoin::commands
