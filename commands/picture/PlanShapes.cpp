#include "commands/picture/PlanShapes.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "commands/Progress.h"
#include "commands/Words.h"
#include "commands/picture/DrawList.h"
#include "embedded/os/Process.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr double kPi = 3.14159265358979323846;
/// Arcs are drawn as chords of at most this angle, in radians (6 degrees).
constexpr double kChordAngle = kPi / 30.0;

hostx::DrawOptions optionsOf(const Box& box) {
  hostx::DrawOptions options;
  if (!box.isEmpty()) {
    options.view.set({box.minX, box.minY, 0.0}, {box.maxX, box.maxY, 0.0});
  }
  options.goesOn = [] { return !os::isInterrupted(); };
  return options;
}

}  // namespace

hostx::DrawReport drawSpace(const AcDbObjectId& block, DrawList& list, const Box& view,
                            bool isPlot) {
  hostx::DrawReport report;
  hostx::DrawOptions options = optionsOf(view);
  options.isPlot = isPlot;
  Progress::during("Drawing", [&] { report = hostx::drawBlock(block, list, options); });
  Progress::checkInterrupt();
  return report;
}

std::string notPlottedText(const hostx::DrawReport& report) {
  std::size_t all = 0;
  std::string layers;
  for (const auto& [layer, count] : report.notPlotted) {
    all += static_cast<std::size_t>(count);
    layers += fmt::format("{}{} {}", layers.empty() ? "" : ", ", os::toUtf8(layer), count);
  }
  return all == 0 ? std::string()
                  : fmt::format("{} on layers that are not plotted: {}",
                                countText(all, "entity", "entities"), layers);
}

std::vector<std::string> warningsOf(const hostx::DrawReport& report) {
  std::vector<std::string> warnings;
  if (report.framed > 0) {
    warnings.push_back(
        fmt::format("{} drawn as frames: blocks show more than anybody could paint",
                    countText(static_cast<std::size_t>(report.framed), "block reference")));
  }
  if (!report.leftOut.empty()) {
    std::string kinds;
    for (const auto& [kind, count] : report.leftOut) {
      kinds += fmt::format("{}{} {}", kinds.empty() ? "" : ", ", count, os::toUtf8(kind));
    }
    warnings.push_back("not drawn: " + kinds);
  }
  return warnings;
}

void addPlanShapes(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except) {
  auto list = std::make_shared<DrawList>();
  if (!except.empty()) {
    list->setEntityFilter([&](const AcDbObjectId& entity) { return except.count(entity) == 0; });
  }
  const hostx::DrawReport report = drawSpace(drawing.modelSpaceId(), *list);
  list->setEntityFilter({});
  for (std::string& warning : warningsOf(report)) {
    picture.warnings.push_back(std::move(warning));
  }
  picture.drawn.push_back({std::move(list), std::nullopt, 1.0, true, picture.paths.size()});
}

void addEntityShapes(Picture& picture, Drawing& /*drawing*/,
                     const std::vector<AcDbObjectId>& entities, const Color& color, double width) {
  auto list = std::make_shared<DrawList>();
  for (const AcDbObjectId& entity : entities) {
    hostx::drawEntity(entity, *list, optionsOf({}));
  }
  const Box& box = list->extents();
  if (!box.isEmpty()) {
    picture.focus.emplace_back(box.minX, box.minY);
    picture.focus.emplace_back(box.maxX, box.maxY);
  }
  picture.drawn.push_back({std::move(list), color, width, true, picture.paths.size()});
}

std::wstring withoutCodes(std::wstring_view text) {
  std::wstring plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isCode = text[i] == L'%' && i + 2 < text.size() && text[i + 1] == L'%';
    if (!isCode) {
      plain += text[i];
      continue;
    }
    i += 2;
    switch (text[i]) {
      case L'd':
      case L'D':
        plain += L'\u00B0';  // degrees
        break;
      case L'p':
      case L'P':
        plain += L'\u00B1';  // plus or minus
        break;
      case L'c':
      case L'C':
        plain += L'\u2300';  // diameter
        break;
      case L'%':
        plain += L'%';
        break;
      case L'u':
      case L'U':
      case L'o':
      case L'O':
      case L'k':
      case L'K':
        break;  // lines under, over and through what follows
      default:
        plain += text.substr(i - 2, 3);
    }
  }
  return plain;
}

void appendBulge(std::vector<AcGePoint2d>& points, const AcGePoint2d& from, const AcGePoint2d& to,
                 double bulge) {
  const AcGeVector2d chord = to - from;
  const double sweep = 4.0 * std::atan(bulge);
  if (std::fabs(sweep) > 1e-9 && chord.length() > 0.0) {
    // The centre lies on the chord's perpendicular bisector; the sagitta is bulge times half
    // the chord.
    const double offset = (1.0 - bulge * bulge) / (4.0 * bulge);
    const AcGePoint2d center = from + chord * 0.5 + chord.perpVector() * offset;
    const AcGeVector2d spoke = from - center;
    const int chords = std::max(2, static_cast<int>(std::ceil(std::fabs(sweep) / kChordAngle)));
    for (int i = 1; i < chords; ++i) {
      const double angle = sweep * i / chords;
      points.push_back(center +
                       AcGeVector2d(spoke.x * std::cos(angle) - spoke.y * std::sin(angle),
                                    spoke.x * std::sin(angle) + spoke.y * std::cos(angle)));
    }
  }
  points.push_back(to);
}

}  // namespace quoin::commands
