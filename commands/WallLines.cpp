#include "commands/WallLines.h"

#include <fmt/format.h>

#include <algorithm>

#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/InsideWalls.h"
#include "commands/Polylines.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

class Collector {
 public:
  explicit Collector(std::set<std::wstring> lockedLayers)
      : m_lockedLayers(std::move(lockedLayers)) {}

  void add(const AcDbObjectId& id, const std::wstring& layer) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) {
      result.skipped.push_back({id, "cannot be opened: " + statusText(entity.openStatus())});
      return;
    }
    const bool isLocked = m_lockedLayers.count(layer) != 0;
    if ((AcDbLine::cast(entity.object()) || isPolyline(*entity.object())) &&
        hostx::hasUnreadableNumber(entity.object())) {
      result.skipped.push_back({id, kUnreadableNumber});
      return;
    }
    if (const AcDbLine* line = AcDbLine::cast(entity.object())) {
      addSegment({line->startPoint(), line->endPoint(), id, WallLine::kWholeEntity, isLocked, {}});
    } else if (isPolyline(*entity.object())) {
      addPolyline(readPolyline(*entity.object()), id, isLocked);
    } else if (!showsOtherLines(id)) {
      ++result.countOfKind[hostx::kindName(id)];
    }
  }

  WallLines result;

 private:
  void addSegment(const WallLine& line) {
    if (line.start == line.end) {
      if (!line.isPolylineSegment()) {
        result.skipped.push_back({line.entity, "has no length"});
      }
      return;
    }
    result.lines.push_back(line);
  }

  void addPolyline(const PolylineShape& shape, const AcDbObjectId& id, bool isLocked) {
    if (shape.isCurveFit) {
      result.skipped.push_back({id, "is a curve through its vertices"});
      return;
    }
    for (std::size_t i = 0; i < shape.segmentCount(); ++i) {
      if (shape.vertices[i].bulge != 0.0) {
        ++result.arcSegments;
        continue;
      }
      addSegment({shape.vertices[i].world,
                  shape.segmentEnd(i).world,
                  id,
                  static_cast<int>(i),
                  isLocked,
                  {}});
    }
  }

  std::set<std::wstring> m_lockedLayers;
};

}  // namespace

WallLines collectWallLines(Drawing& drawing, const std::set<std::wstring>& layers,
                           bool takesInside) {
  const std::set<std::wstring> locked = drawing.lockedLayers();
  Collector collector(locked);
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (layers.count(layer)) {
      collector.add(id, layer);
    }
  });
  WallLines walls = std::move(collector.result);
  takesInside ? takeInside(drawing, layers, locked, walls) : countInside(drawing, layers, walls);
  return walls;
}

void checkAnyWallLine(const Drawing& drawing, const std::set<std::wstring>& layers,
                      const WallLines& walls) {
  if (walls.lines.empty()) {
    throw CommandError(
        ExitCode::NothingToDo,
        fmt::format("{}: no LINE and no straight polyline segment on {}; what is there: {}",
                    drawing.file().string(), namesText(layers), leftOutText(walls)));
  }
}

}  // namespace quoin::commands
