// Outlines and bodies of walls given by reference lines and widths.
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "commands/CommandError.h"
#include "commands/OutlineGaps.h"
#include "commands/OutlineLines.h"
#include "commands/WallBodies.h"
#include "commands/WallCuts.h"
#include "commands/WallPrism.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/Engine.h"

namespace quoin::python {

namespace {

using commands::BodyWall;

constexpr std::size_t kNoWall = ~std::size_t{0};

/// Of a wall its widths to the left and to the right.
using Widths = Rows<double>;

/// Without the lines that have no length; `lineOf` gets the line of each wall.
std::vector<BodyWall> makeWalls(const Lines& lines, const Widths& widths,
                                std::vector<std::size_t>& lineOf) {
  std::vector<BodyWall> walls;
  walls.reserve(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    const AcGePoint3d start = lines.start(i);
    const AcGePoint3d end = lines.end(i);
    if (start == end) {
      continue;
    }
    walls.push_back({{start, end, {}, commands::WallLine::kWholeEntity, false, {}},
                     {widths.row(i)[0], widths.row(i)[1]}});
    lineOf.push_back(i);
  }
  return walls;
}

struct Outline {
  FoundLines lines;
  std::vector<std::uint8_t> roles;
  std::vector<std::int64_t> cut;  // the openings that are left open
};

/// Bodies one after another, each with its own corners. Of a triangle the third and the fourth
/// corner are one.
struct Mesh {
  std::vector<double> vertices;
  std::vector<std::int64_t> faces;
  std::vector<std::int64_t> source;  // of each face the line
  std::vector<std::int64_t> cut;     // the openings that are cut out

  void add(const commands::WallPrism& prism, std::size_t line) {
    std::map<std::array<double, 3>, std::int64_t> indexOf;
    for (const commands::WallPrism::Face& face : prism.faces()) {
      for (const AcGePoint3d& corner : face) {
        const auto [at, isNew] = indexOf.try_emplace(
            {corner.x, corner.y, corner.z}, static_cast<std::int64_t>(vertices.size() / 3));
        if (isNew) {
          vertices.insert(vertices.end(), {corner.x, corner.y, corner.z});
        }
        faces.push_back(at->second);
      }
      source.push_back(static_cast<std::int64_t>(line));
    }
  }
};

/// Rows of openings: line, from, to, kind, and sill and head or NaN.
commands::FoundOpenings openingsOf(const Rows<double>& rows,
                                   const std::vector<std::size_t>& wallOf) {
  const auto orNothing = [](double height) {
    return std::isnan(height) ? std::nullopt : std::optional<double>(height);
  };
  commands::FoundOpenings found;
  for (std::size_t i = 0; i < rows.count(); ++i) {
    const double* const row = rows.row(i);
    const std::size_t wall = wallOf[static_cast<std::size_t>(row[0])];
    if (wall == kNoWall) {
      throw commands::CommandError(commands::ExitCode::Usage,
                                   fmt::format("openings[{}]: its line has no length", i));
    }
    found.openings.push_back({wall, row[1], row[2], static_cast<plan::OpeningKind>(row[3]),
                              orNothing(row[4]), orNothing(row[5])});
    found.entities.emplace_back();
  }
  return found;
}

/// Of each line the wall that it is.
std::vector<std::size_t> wallsOf(const std::vector<std::size_t>& lineOf, std::size_t lines) {
  std::vector<std::size_t> wallOf(lines, kNoWall);
  for (std::size_t i = 0; i < lineOf.size(); ++i) {
    wallOf[lineOf[i]] = i;
  }
  return wallOf;
}

Outline outline(const Lines& lines, const Widths& widths, double capture,
                const Rows<double>& openings) {
  const double distance = setCaptureDistance(capture);
  std::vector<std::size_t> lineOf;
  const std::vector<BodyWall> walls = makeWalls(lines, widths, lineOf);
  const std::vector<commands::WallOutline> outlines = commands::showWalls(walls, distance);
  const commands::OutlineGaps gaps = commands::openOutlines(
      walls, outlines, openingsOf(openings, wallsOf(lineOf, lines.count())), distance);
  Outline found{FoundLines(lines.isInSpace()), {}, {gaps.opened.begin(), gaps.opened.end()}};
  for (const commands::OutlineLine& line : commands::outlineLines(outlines, gaps.outlines)) {
    found.lines.add(line.seg.ptStart, line.seg.ptEnd, lineOf[line.wall]);
    found.roles.push_back(static_cast<std::uint8_t>(line.role));
  }
  return found;
}

Mesh solid(const Lines& lines, const Widths& widths, double height, double capture,
           const Rows<double>& openings, const commands::OpeningHeights& heights) {
  const double distance = setCaptureDistance(capture);
  std::vector<std::size_t> lineOf;
  const std::vector<BodyWall> walls = makeWalls(lines, widths, lineOf);
  const std::vector<PrepareFrom2dTo3dData> ends = commands::prepareWalls(walls, distance);
  std::vector<commands::WallPrism> prisms;
  prisms.reserve(walls.size());
  for (std::size_t i = 0; i < walls.size(); ++i) {
    prisms.push_back(commands::makePrism(walls[i], ends[i], height));
  }
  Mesh mesh;
  const commands::WallCuts cuts = commands::cutOpenings(
      prisms, openingsOf(openings, wallsOf(lineOf, lines.count())), heights, distance);
  for (const commands::WallCut& cut : cuts.cuts) {
    mesh.cut.push_back(static_cast<std::int64_t>(cut.opening));
  }
  for (std::size_t i = 0; i < prisms.size(); ++i) {
    mesh.add(prisms[i], lineOf[i]);
  }
  return mesh;
}

}  // namespace

void addWalls(py::module_& module) {
  using Array = Lines::Array;
  module.def(
      "outline",
      [](const Array& lines, const Array& widths, double capture, const Array& openings,
         const py::object& progress) {
        Outline found = onQuoinThread(
            [lines = Lines(lines), widths = Widths(widths), capture,
             openings = Rows<double>(openings)] {
              return outline(lines, widths, capture, openings);
            },
            progress);
        return py::make_tuple(found.lines.lines(), found.lines.source(),
                              toArray(std::move(found.roles)), toArray(std::move(found.cut)));
      },
      py::arg("lines"), py::arg("widths"), py::arg("capture"), py::arg("openings"),
      py::arg("progress"));
  module.def(
      "solid",
      [](const Array& lines, const Array& widths, double height, double capture,
         const Array& openings, double sill, double head, double doorHead,
         const py::object& progress) {
        Mesh mesh = onQuoinThread(
            [lines = Lines(lines), widths = Widths(widths), height, capture,
             openings = Rows<double>(openings),
             heights = commands::OpeningHeights{sill, head, doorHead}] {
              return solid(lines, widths, height, capture, openings, heights);
            },
            progress);
        return py::make_tuple(toArray(std::move(mesh.vertices), 3),
                              toArray(std::move(mesh.faces), 4), toArray(std::move(mesh.source)),
                              toArray(std::move(mesh.cut)));
      },
      py::arg("lines"), py::arg("widths"), py::arg("height"), py::arg("capture"),
      py::arg("openings"), py::arg("sill"), py::arg("head"), py::arg("door_head"),
      py::arg("progress"));
}

}  // namespace quoin::python
