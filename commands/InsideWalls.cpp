#include "commands/InsideWalls.h"

#include <map>
#include <memory>
#include <optional>

#include "commands/BlockLines.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/db/entities/Multiline.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Takes the lines of the inserts of model space where they stand in the plan.
class Taker {
 public:
  Taker(BlockLines& blocks, const std::set<std::wstring>& locked, WallLines& walls)
      : m_walk(blocks), m_locked(locked), m_walls(walls) {}

  void take(const Insert& insert) {
    m_walk.walk(insert, [&](const InnerLine& line) {
      if (++m_taken > kMostInsideLines) {
        m_walls.isCutShort = true;
        return false;
      }
      add(line, insert.entity);
      return true;
    });
  }

 private:
  void add(const InnerLine& line, const AcDbObjectId& insert) {
    const BlockWalk::Frame& frame = m_walk.path().back();
    WallLine wall;
    wall.start = frame.toWorld * line.start;
    wall.end = frame.toWorld * line.end;
    wall.entity = line.entity;
    wall.segment = line.segment;
    wall.within = shownBy(
        insert, line.belongs == Belongs::AsItsInsert ? frame.layer : hostx::layerName(line.entity));
    wall.isLocked = m_locked.count(wall.within->layer) != 0;
    if (!(wall.start == wall.end)) {
      m_walls.lines.push_back(std::move(wall));
    }
  }

  /// One record for neighbouring lines of the same insert and layer.
  std::shared_ptr<const ShownBy> shownBy(const AcDbObjectId& entity, const std::wstring& layer) {
    if (!m_last || m_last->entity != entity || m_last->layer != layer) {
      m_last = std::make_shared<const ShownBy>(ShownBy{entity, layer});
    }
    return m_last;
  }

  BlockWalk m_walk;
  const std::set<std::wstring>& m_locked;
  WallLines& m_walls;
  std::shared_ptr<const ShownBy> m_last;
  std::size_t m_taken = 0;
};

}  // namespace

std::string blockName(const AcDbObjectId& block) {
  const AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  const ACHAR* name = L"";
  if (record.openStatus() == Acad::eOk) {
    record->getName(name);
  }
  return os::toUtf8(name);
}

namespace {

/// Goes through the inserts and multilines of model space; `walls` null to count alone.
class Finder {
 public:
  Finder(Drawing& drawing, const std::set<std::wstring>& layers,
         const std::set<std::wstring>& locked, LeftOut& found, WallLines* walls)
      : m_drawing(drawing),
        m_blocks(drawing, layers),
        m_locked(locked),
        m_found(found),
        m_walls(walls) {
    if (walls) {
      m_taker.emplace(m_blocks, locked, *walls);
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
    const bool isLocked = m_locked.count(layer) != 0;
    for (const auto& [start, end] : elements) {
      if (m_walls && !(start == end)) {
        m_walls->lines.push_back({start, end, id, WallLine::kWholeEntity, isLocked, shownBy});
      }
    }
  }

  Drawing& m_drawing;
  BlockLines m_blocks;
  const std::set<std::wstring>& m_locked;
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
  Finder(drawing, layers, {}, found, nullptr).run();
}

void takeInside(Drawing& drawing, const std::set<std::wstring>& layers,
                const std::set<std::wstring>& locked, WallLines& walls) {
  Finder(drawing, layers, locked, walls, &walls).run();
}

}  // namespace quoin::commands
