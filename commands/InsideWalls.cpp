#include "commands/InsideWalls.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <optional>
#include <unordered_map>

#include "commands/Polylines.h"
#include "commands/Progress.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/db/Multiline.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr const wchar_t* kLayerZero = L"0";

/// How what stands in a block becomes a wall line of the plan.
enum class Belongs { Never, ByItself, AsItsInsert };

struct InnerLine {
  AcGePoint3d start;
  AcGePoint3d end;
  AcDbObjectId entity;
  int segment;
  Belongs belongs;
};

/// An insert in a block or in model space, all cells of an array.
struct Insert {
  AcDbObjectId block;
  AcDbObjectId entity;
  std::wstring layer;
  AcGeMatrix3d transform;
  AcGeVector3d columnStep;
  AcGeVector3d rowStep;
  std::size_t columns = 1;
  std::size_t rows = 1;

  std::size_t cells() const { return columns * rows; }
  AcGeMatrix3d cell(std::size_t index) const {
    const std::size_t row = index / columns;
    const AcGeVector3d move = columnStep * static_cast<double>(index - row * columns) +
                              rowStep * static_cast<double>(row);
    return AcGeMatrix3d().setToTranslation(move) * transform;
  }
};

/// A block, read once.
struct Content {
  std::vector<InnerLine> lines;
  std::vector<Insert> inserts;
  /// How many lines one insert shows: those of chosen layers, and those of the insert's layer.
  double byThemselves = 0.0;
  double asTheInsert = 0.0;
  enum class Count { Missing, Running, Done } count = Count::Missing;
  bool isOpen = false;  // while its lines are taken: a block inside itself ends there

  double linesOn(bool isInsertChosen) const {
    return byThemselves + (isInsertChosen ? asTheInsert : 0.0);
  }
};

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

class Blocks {
 public:
  Blocks(Drawing& drawing, const std::set<std::wstring>& layers)
      : m_drawing(drawing), m_layers(layers) {}

  bool isChosen(const std::wstring& layer) const { return m_layers.count(layer) != 0; }

  Content& content(const AcDbObjectId& block) {
    std::unique_ptr<Content>& known = m_contents[static_cast<AcDbStub*>(block)];
    if (!known) {
      known = std::make_unique<Content>();
      read(block, *known);
    }
    return *known;
  }

  /// How many lines a block shows. Without recursion, since blocks nest as deep as a file likes.
  const Content& counted(const AcDbObjectId& block) {
    std::vector<std::pair<Content*, std::size_t>> open;
    const auto begin = [&](const AcDbObjectId& id) {
      Content& opened = content(id);
      if (opened.count == Content::Count::Missing) {
        opened.count = Content::Count::Running;
        for (const InnerLine& line : opened.lines) {
          (line.belongs == Belongs::ByItself ? opened.byThemselves : opened.asTheInsert) += 1.0;
        }
        open.emplace_back(&opened, 0);
      }
    };
    begin(block);
    while (!open.empty()) {
      Content& top = *open.back().first;
      if (open.back().second == top.inserts.size()) {
        top.count = Content::Count::Done;
        open.pop_back();
        continue;
      }
      const Insert& insert = top.inserts[open.back().second];
      const Content& inner = content(insert.block);
      if (inner.count == Content::Count::Missing) {
        begin(insert.block);
        continue;
      }
      ++open.back().second;
      if (inner.count == Content::Count::Done) {
        const auto cells = static_cast<double>(insert.cells());
        const Belongs belongs = belongingOf(insert.layer);
        top.byThemselves += cells * inner.linesOn(belongs == Belongs::ByItself);
        top.asTheInsert += belongs == Belongs::AsItsInsert ? cells * inner.asTheInsert : 0.0;
      }
    }
    return content(block);
  }

 private:
  Belongs belongingOf(const std::wstring& layer) const {
    return layer == kLayerZero ? Belongs::AsItsInsert
           : isChosen(layer)   ? Belongs::ByItself
                               : Belongs::Never;
  }

  void read(const AcDbObjectId& block, Content& content) {
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

  Drawing& m_drawing;
  const std::set<std::wstring>& m_layers;
  std::unordered_map<AcDbStub*, std::unique_ptr<Content>> m_contents;
};

/// Takes the lines of the inserts of model space where they stand in the plan.
class Taker {
 public:
  Taker(Blocks& blocks, WallLines& walls) : m_blocks(blocks), m_walls(walls) {}

  void take(const Insert& insert) {
    begin(insert, AcGeMatrix3d::kIdentity, insert.layer, insert.entity);
    while (!m_open.empty() && !m_walls.isCutShort) {
      step();
    }
    for (const Frame& frame : m_open) {
      frame.content->isOpen = false;
    }
    m_open.clear();
  }

 private:
  /// An insert whose lines are being taken, cell by cell.
  struct Frame {
    const Insert* insert;
    Content* content;
    AcGeMatrix3d outer;
    std::wstring layer;  // that layer 0 stands for
    AcDbObjectId shownBy;
    std::size_t cell = 0;
    std::size_t next = 0;  // of the content's inserts
    AcGeMatrix3d toWorld;
  };

  void begin(const Insert& insert, const AcGeMatrix3d& outer, const std::wstring& layer,
             const AcDbObjectId& shownBy) {
    const Content& counted = m_blocks.counted(insert.block);
    Content& content = m_blocks.content(insert.block);
    if (content.isOpen || !(counted.linesOn(m_blocks.isChosen(layer)) > 0.0)) {
      return;
    }
    content.isOpen = true;
    m_open.push_back({&insert, &content, outer, layer, shownBy, 0, 0, outer * insert.cell(0)});
    takeLines();
  }

  void step() {
    Frame& frame = m_open.back();
    if (frame.next < frame.content->inserts.size()) {
      const Insert& inner = frame.content->inserts[frame.next++];
      const std::wstring layer = inner.layer == kLayerZero ? frame.layer : inner.layer;
      begin(inner, AcGeMatrix3d(frame.toWorld), layer, frame.shownBy);
      return;
    }
    if (++frame.cell < frame.insert->cells()) {
      frame.next = 0;
      frame.toWorld = frame.outer * frame.insert->cell(frame.cell);
      takeLines();
      return;
    }
    frame.content->isOpen = false;
    m_open.pop_back();
  }

  void takeLines() {
    constexpr std::size_t kBetweenLooks = 1024;  // cells between two looks at Ctrl-C
    if (++m_looks % kBetweenLooks == 0) {
      Progress::checkInterrupt();
    }
    const Frame& frame = m_open.back();
    const bool isInsertChosen = m_blocks.isChosen(frame.layer);
    for (const InnerLine& line : frame.content->lines) {
      const bool asInsert = line.belongs == Belongs::AsItsInsert;
      if (asInsert && !isInsertChosen) {
        continue;
      }
      if (++m_taken > kMostInsideLines) {
        m_walls.isCutShort = true;
        return;
      }
      WallLine wall;
      wall.start = frame.toWorld * line.start;
      wall.end = frame.toWorld * line.end;
      wall.entity = line.entity;
      wall.segment = line.segment;
      wall.within = shownBy(frame.shownBy, asInsert ? frame.layer : hostx::layerName(line.entity));
      if (!(wall.start == wall.end)) {
        m_walls.lines.push_back(std::move(wall));
      }
    }
  }

  /// One record for neighbouring lines of the same insert and layer.
  std::shared_ptr<const ShownBy> shownBy(const AcDbObjectId& entity, const std::wstring& layer) {
    if (!m_last || m_last->entity != entity || m_last->layer != layer) {
      m_last = std::make_shared<const ShownBy>(ShownBy{entity, layer});
    }
    return m_last;
  }

  Blocks& m_blocks;
  WallLines& m_walls;
  std::vector<Frame> m_open;
  std::shared_ptr<const ShownBy> m_last;
  std::size_t m_taken = 0;
  std::size_t m_looks = 0;
};

std::string blockName(const AcDbObjectId& block) {
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  const ACHAR* name = L"";
  if (record.openStatus() == Acad::eOk) {
    record->getName(name);
  }
  return os::toUtf8(name);
}

/// Goes through the inserts and multilines of model space; `walls` null to count alone.
class Finder {
 public:
  Finder(Drawing& drawing, const std::set<std::wstring>& layers, LeftOut& found, WallLines* walls)
      : m_drawing(drawing), m_blocks(drawing, layers), m_found(found), m_walls(walls) {
    if (walls) {
      m_taker.emplace(m_blocks, *walls);
    }
  }

  void run() {
    m_drawing.forEachEntity(m_drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
      const std::wstring kind = hostx::kindName(id);
      if (kind == L"INSERT") {
        addInsert(id);
      } else if (kind == L"MLINE") {
        addMultiline(id);
      }
    });
    for (auto& [name, share] : m_ofName) {
      m_found.blocks.push_back(std::move(share));
    }
    m_found.isInsideTaken = m_walls != nullptr;
  }

 private:
  void addInsert(const AcDbObjectId& id) {
    const bool isChosen = m_blocks.isChosen(hostx::layerName(id));
    const AcDbObjectPointer<AcDbBlockReference> reference(id, AcDb::kForRead);
    if (reference.openStatus() == Acad::eOk && !reference->blockTableRecord().isNull() &&
        !hostx::hasUnreadableNumber(reference.object())) {
      const Insert insert = readInsert(*reference.object());
      const double lines =
          static_cast<double>(insert.cells()) * m_blocks.counted(insert.block).linesOn(isChosen);
      if (lines > 0.0) {
        add(insert, lines);
        return;
      }
    }
    if (isChosen) {
      ++m_found.countOfKind[L"INSERT"];
    }
  }

  void add(const Insert& insert, double lines) {
    const std::string name = blockName(insert.block);
    InsideShare& share = m_ofName[name];
    share.name = name;
    ++share.times;
    share.lines += lines;
    if (m_taker && !m_walls->isCutShort) {
      m_taker->take(insert);
    }
  }

  void addMultiline(const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (!m_blocks.isChosen(layer)) {
      return;
    }
    const auto elements = db::multilineElements(id);
    ++m_found.multilines.times;
    m_found.multilines.lines += static_cast<double>(elements.size());
    const auto shownBy = std::make_shared<const ShownBy>(ShownBy{id, layer});
    for (const auto& [start, end] : elements) {
      if (m_walls && !(start == end)) {
        m_walls->lines.push_back({start, end, id, WallLine::kWholeEntity, false, shownBy});
      }
    }
  }

  Drawing& m_drawing;
  Blocks m_blocks;
  LeftOut& m_found;
  WallLines* m_walls;
  std::optional<Taker> m_taker;
  std::map<std::string, InsideShare> m_ofName;
};

}  // namespace

bool showsOtherLines(const AcDbObjectId& id) {
  const std::wstring kind = hostx::kindName(id);
  return kind == L"INSERT" || kind == L"MLINE";
}

void countInside(Drawing& drawing, const std::set<std::wstring>& layers, LeftOut& found) {
  Finder(drawing, layers, found, nullptr).run();
}

void takeInside(Drawing& drawing, const std::set<std::wstring>& layers, WallLines& walls) {
  Finder(drawing, layers, walls, &walls).run();
}

}  // namespace quoin::commands
