#include "commands/WallBodies.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>
#include <memory>

#include "acutmem.h"
#include "adsdef.h"
#include "commands/CommandError.h"
#include "commands/LayerChoice.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "plan/PointIndex.h"

namespace quoin::commands {

namespace {

constexpr short kXDataReal = 1040;

struct LayerWidth {
  std::wstring pattern;
  WallWidths widths;
};

/// "LAYER=W" (half on each side) or "LAYER=LEFT,RIGHT".
LayerWidth parseLayerWidth(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  const char* const end = text.data() + text.size();
  LayerWidth width;
  if (equals != std::string::npos && equals > 0) {
    width.pattern = os::fromUtf8(text.substr(0, equals));
    const char* const begin = text.data() + equals + 1;
    const auto first = std::from_chars(begin, end, width.widths.left);
    if (first.ec == std::errc() && first.ptr == end) {
      width.widths.left = width.widths.right = 0.5 * width.widths.left;
      return width;
    }
    if (first.ec == std::errc() && *first.ptr == ',') {
      const auto second = std::from_chars(first.ptr + 1, end, width.widths.right);
      if (second.ec == std::errc() && second.ptr == end) {
        return width;
      }
    }
  }
  throw CommandError(ExitCode::Usage,
                     fmt::format("--width '{}': write LAYER=WIDTH or LAYER=LEFT,RIGHT", text));
}

/// The two real numbers that the entity carries under the application's name.
std::optional<WallWidths> widthsOfEntity(const AcDbObjectId& id) {
  AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
  if (entity.openStatus() != Acad::eOk) {
    return std::nullopt;
  }
  resbuf* const data = entity->xData(kWidthApplication);
  std::vector<double> numbers;
  for (const resbuf* link = data; link; link = link->rbnext) {
    if (link->restype == kXDataReal) {
      numbers.push_back(link->resval.rreal);
    }
  }
  acutRelRb(data);
  if (numbers.size() < 2) {
    return std::nullopt;
  }
  return WallWidths{numbers[0], numbers[1]};
}

/// Which walls can matter to which. The algorithm looks at walls only to find those that meet the
/// show wall: one of their ends is at a computed distance below the capture distance from one of
/// its own. All others it passes over, and what it finds it takes in the order of the list. So a
/// list of the walls with such an end, in the order of the plan, gives the same results bit for
/// bit; that it holds a few more does not matter.
class NearWalls {
 public:
  NearWalls(const std::vector<BodyWall>& walls, double captureDistance)
      : m_walls(walls), m_captureDistance(captureDistance), m_ends(endsOf(walls)) {}

  /// The numbers of the walls near this one, in order and without itself.
  std::vector<std::size_t> of(std::size_t wall) const {
    std::vector<std::size_t> near;
    for (const AcGePoint3d& end : {m_walls[wall].line.start, m_walls[wall].line.end}) {
      m_ends.visitIn(plan::PointBox(end, m_captureDistance), [&](std::size_t point) {
        if (point / 2 != wall) {
          near.push_back(point / 2);
        }
      });
    }
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());
    return near;
  }

 private:
  static std::vector<AcGePoint3d> endsOf(const std::vector<BodyWall>& walls) {
    std::vector<AcGePoint3d> ends;
    ends.reserve(2 * walls.size());
    for (const BodyWall& wall : walls) {
      ends.push_back(wall.line.start);
      ends.push_back(wall.line.end);
    }
    return ends;
  }

  const std::vector<BodyWall>& m_walls;
  double m_captureDistance;
  plan::PointIndex m_ends;
};

/// Runs `compute` for each wall with an algorithm object that holds it and all that can matter.
void forEachWall(const std::vector<BodyWall>& walls, double captureDistance,
                 const std::function<void(CShowWallLikeAlgorithm&)>& compute) {
  std::vector<WallEntityLikeRect> records;
  records.reserve(walls.size());
  for (const BodyWall& wall : walls) {
    records.push_back({wall.line.start, wall.line.end, wall.widths.left, wall.widths.right});
  }
  const NearWalls nearWalls(walls, captureDistance);
  Progress progress("Computing walls");
  for (std::size_t i = 0; i < walls.size(); ++i) {
    if (!progress.report(static_cast<double>(i) / static_cast<double>(walls.size()))) {
      Progress::checkInterrupt();
    }
    CShowWallLikeAlgorithm algorithm;
    *algorithm.GetShowWall() = records[i];
    for (const std::size_t near : nearWalls.of(i)) {
      algorithm.GetAllWallRect().push_back(&records[near]);
    }
    compute(algorithm);
    // The records are ours; the show wall is released with the array.
    algorithm.GetAllWallRect() = {algorithm.GetShowWall()};
  }
}

}  // namespace

void WidthOptions::declare(CLI::App& command) {
  command.add_option("--left", left, "Width to the left of every reference line, drawing units");
  command.add_option("--right", right, "Width to its right");
  addRepeated(command, "--width", ofLayer,
              "Width of the walls on a layer (* and ? allowed): half of WIDTH on each side, or "
              "LEFT,RIGHT; may be repeated",
              "LAYER=W[,W]");
}

nlohmann::json wallJson(const Drawing& drawing, const BodyWall& wall) {
  nlohmann::json json = sourceJson(drawing, wall.line.entity);
  json["left"] = wall.widths.left;
  json["right"] = wall.widths.right;
  json["length"] = wall.line.start.distanceTo(wall.line.end);
  return json;
}

std::vector<BodyWall> makeWalls(const Drawing& drawing, const std::vector<WallLine>& lines,
                                const WidthOptions& options) {
  std::vector<LayerWidth> ofLayer;
  for (const std::string& text : options.ofLayer) {
    ofLayer.push_back(parseLayerWidth(text));
  }
  std::vector<BodyWall> walls;
  AcDbObjectId entity;
  std::optional<WallWidths> ofEntity;
  for (const WallLine& line : lines) {
    if (line.entity != entity) {  // the segments of a polyline stand together
      entity = line.entity;
      ofEntity = widthsOfEntity(entity);
    }
    std::optional<WallWidths> widths = ofEntity;
    const std::wstring layer = line.layer();
    for (const LayerWidth& width : ofLayer) {
      if (!widths && matchesGlob(layer, width.pattern)) {
        widths = width.widths;
      }
    }
    if (!widths && (options.left || options.right)) {
      widths = WallWidths{options.left.value_or(0.0), options.right.value_or(0.0)};
    }
    if (!widths) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{} has no width: give --left and --right, --width for layer "
                                     "{}, or extended data under QUOIN",
                                     describe(drawing, line.entity), os::toUtf8(layer)));
    }
    if (!(widths->left + widths->right > 0.0) || !std::isfinite(widths->left) ||
        !std::isfinite(widths->right)) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{}: a wall {} wide to the left and {} to the right has "
                                     "no thickness",
                                     describe(drawing, line.entity), widths->left, widths->right));
    }
    walls.push_back({line, *widths});
  }
  return walls;
}

std::vector<WallOutline> showWalls(const std::vector<BodyWall>& walls, double captureDistance) {
  std::vector<WallOutline> outlines;
  forEachWall(walls, captureDistance, [&](CShowWallLikeAlgorithm& algorithm) {
    algorithm.CalcShowWall();
    WallOutline outline{*algorithm.GetLeftWall(), *algorithm.GetRightWall(), {}, {}, {}};
    if (const WallDrawingSeg* start = algorithm.GetStartWall()) {
      outline.start = *start;
    }
    if (const WallDrawingSeg* end = algorithm.GetEndWall()) {
      outline.end = *end;
    }
    for (const auto* array : {&algorithm.GetStartWallArray(), &algorithm.GetEndWallArray()}) {
      for (const WallEntityLikeRect* record : *array) {
        outline.connections.push_back({record->ptStart, record->ptEnd});
      }
    }
    outlines.push_back(std::move(outline));
  });
  return outlines;
}

std::vector<PrepareFrom2dTo3dData> prepareWalls(const std::vector<BodyWall>& walls,
                                                double captureDistance) {
  std::vector<PrepareFrom2dTo3dData> faces;
  forEachWall(walls, captureDistance, [&](CShowWallLikeAlgorithm& algorithm) {
    faces.push_back(algorithm.CalcShowWallPrepareFor3d());
  });
  return faces;
}

}  // namespace quoin::commands
