#include "commands/WallBodies.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

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
#include "plan/WallOutlines.h"

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

/// Runs `compute` for each wall with an algorithm object that holds it and all that can matter.
void forEachWall(const std::vector<BodyWall>& walls, double captureDistance,
                 const std::function<void(CShowWallLikeAlgorithm&)>& compute) {
  std::vector<WallEntityLikeRect> records;
  records.reserve(walls.size());
  for (const BodyWall& wall : walls) {
    records.push_back({wall.line.start, wall.line.end, wall.widths.left, wall.widths.right});
  }
  Progress progress("Computing walls");
  plan::showEachWall(
      records, captureDistance, [&](std::size_t i, CShowWallLikeAlgorithm& algorithm) {
        if (!progress.report(static_cast<double>(i) / static_cast<double>(walls.size()))) {
          Progress::checkInterrupt();
        }
        compute(algorithm);
      });
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

bool carriesWidths(const AcDbObjectId& entity) {
  return widthsOfEntity(entity).has_value();
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
