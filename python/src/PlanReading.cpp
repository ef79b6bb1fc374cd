// Plan reading: walls from faces, rooms from walls, lines cleaned.
#include <pybind11/stl.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "commands/CommandError.h"
#include "plan/CleanLines.h"
#include "plan/FindWalls.h"
#include "plan/Rooms.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/Engine.h"
#include "python/src/FoundWalls.h"

namespace quoin::python {

namespace {

using Numbers = Rows<double>;

constexpr std::size_t kLineColumns = 4;

AcGePoint2d inPlan(const AcGePoint3d& point) {
  return {point.x, point.y};
}

/// (outer, holes)
py::tuple ringsOf(const plan::Polygon& polygon) {
  py::list holes;
  for (const plan::Ring& hole : polygon.holes) {
    holes.append(cornersOf(hole));
  }
  return py::make_tuple(cornersOf(polygon.outer), holes);
}

/// Rows of openings: wall, from, to, kind, and sill and head or NaN.
constexpr std::size_t kOpeningColumns = 6;

py::array_t<double> openingsOf(const std::vector<plan::Opening>& openings) {
  std::vector<double> numbers;
  numbers.reserve(kOpeningColumns * openings.size());
  for (const plan::Opening& opening : openings) {
    numbers.insert(numbers.end(),
                   {static_cast<double>(opening.wall), opening.from, opening.to,
                    static_cast<double>(opening.kind), opening.sill.value_or(std::nan("")),
                    opening.head.value_or(std::nan(""))});
  }
  return toArray(std::move(numbers), kOpeningColumns);
}

/// Walls as rows of lines and of widths.
py::tuple wallsOf(const std::vector<plan::Wall>& walls) {
  std::vector<double> lines;
  std::vector<double> widths;
  std::vector<double> confidence;
  for (const plan::Wall& wall : walls) {
    lines.insert(lines.end(), {wall.start.x, wall.start.y, wall.end.x, wall.end.y});
    widths.insert(widths.end(), {wall.left, wall.right});
    confidence.push_back(wall.confidence);
  }
  return py::make_tuple(toArray(std::move(lines), kLineColumns), toArray(std::move(widths), 2),
                        toArray(std::move(confidence)));
}

/// The two ends of every opening on its wall's line.
py::array_t<double> openingLinesOf(const plan::WallPlan& plan) {
  std::vector<double> numbers;
  numbers.reserve(kLineColumns * plan.openings.size());
  for (const plan::Opening& opening : plan.openings) {
    const AcGePoint2d start = plan.startOf(opening);
    const AcGePoint2d end = plan.endOf(opening);
    numbers.insert(numbers.end(), {start.x, start.y, end.x, end.y});
  }
  return toArray(std::move(numbers), kLineColumns);
}

/// Tuples of center, radius, start angle, sweep, width and the indices of chords.
py::list curvesOf(const std::vector<plan::CurvedWall>& curved) {
  py::list curves;
  for (const plan::CurvedWall& wall : curved) {
    curves.append(py::make_tuple(py::make_tuple(wall.arc.center.x, wall.arc.center.y),
                                 wall.arc.radius, wall.arc.startAngle, wall.arc.sweep, wall.width,
                                 indicesOf(wall.chords)));
  }
  return curves;
}

/// What may be drawn beside the faces of walls.
struct Surroundings {
  Numbers arcs;      // door swings: x, y, radius, begin, turn
  Numbers faceArcs;  // faces of curved walls, the same
  Lines symbols;
  Numbers boxes;  // of blocks: two corners, and the kind of opening that their names tell
};

std::vector<plan::PlanArc> arcsOf(const Numbers& rows) {
  std::vector<plan::PlanArc> arcs;
  arcs.reserve(rows.count());
  for (std::size_t i = 0; i < rows.count(); ++i) {
    const double* const arc = rows.row(i);
    arcs.push_back({{arc[0], arc[1]}, arc[2], arc[3], arc[4]});
  }
  return arcs;
}

struct ReadWalls {
  plan::FoundWalls found;
  std::vector<plan::PlanLine> faceLines;
};

ReadWalls findWalls(const Lines& lines, const Surroundings& others,
                    const plan::FindWallsOptions& options) {
  plan::PlanDrawing drawing;
  drawing.lines.reserve(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    drawing.lines.push_back({inPlan(lines.start(i)), inPlan(lines.end(i))});
  }
  drawing.arcs = arcsOf(others.arcs);
  drawing.faceArcs = arcsOf(others.faceArcs);
  // As in a drawing, the faces of curved walls may be swings, too.
  drawing.arcs.insert(drawing.arcs.end(), drawing.faceArcs.begin(), drawing.faceArcs.end());
  for (std::size_t i = 0; i < others.symbols.count(); ++i) {
    drawing.symbols.push_back({{inPlan(others.symbols.start(i)), inPlan(others.symbols.end(i))},
                               false,
                               plan::OpeningKind::Opening});
  }
  for (std::size_t i = 0; i < others.boxes.count(); ++i) {
    const double* const box = others.boxes.row(i);
    drawing.symbols.push_back(
        {{{box[0], box[1]}, {box[2], box[3]}}, true, static_cast<plan::OpeningKind>(box[4])});
  }
  plan::FoundWalls found = plan::findWalls(drawing, options);
  return {std::move(found), std::move(drawing.lines)};
}

plan::FoundRooms findRooms(const Lines& lines, const Numbers& widths, const Numbers& openings,
                           const std::vector<Numbers>& columns, double capture, double leastArea,
                           double leastWidth) {
  plan::WallPlan walls;
  walls.walls.reserve(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    const double* const width = widths.row(i);
    walls.walls.push_back({inPlan(lines.start(i)), inPlan(lines.end(i)), width[0], width[1], 1.0});
  }
  for (std::size_t i = 0; i < openings.count(); ++i) {
    const double* const row = openings.row(i);
    walls.openings.push_back({static_cast<std::size_t>(row[0]),
                              row[1],
                              row[2],
                              static_cast<plan::OpeningKind>(row[3]),
                              {},
                              {}});
  }
  std::vector<plan::Polygon> polygons;
  for (const Numbers& column : columns) {
    plan::Polygon polygon;
    for (std::size_t i = 0; i < column.count(); ++i) {
      polygon.outer.emplace_back(column.row(i)[0], column.row(i)[1]);
    }
    polygons.push_back(std::move(polygon));
  }
  return plan::findRooms(walls, polygons, {setCaptureDistance(capture), leastArea, leastWidth});
}

/// Each height by itself, as the command does; lines without length in plan and with ends at
/// different heights stay as they are.
FoundLines cleanLines(const Lines& lines, const Rows<std::int64_t>& keys, double capture,
                      const plan::CleanOptions& options) {
  struct Level {
    std::vector<plan::CleanLine> lines;
    std::vector<std::size_t> lineOf;
  };
  setCaptureDistance(capture);
  std::map<double, Level> levels;
  std::vector<bool> isLeft(lines.count(), false);
  std::vector<std::pair<AcGePoint3d, AcGePoint3d>> ends(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    const AcGePoint3d start = lines.start(i);
    const AcGePoint3d end = lines.end(i);
    ends[i] = {start, end};
    if ((start.x == end.x && start.y == end.y) || start.z != end.z) {
      isLeft[i] = true;
      continue;
    }
    Level& level = levels[start.z];
    const std::size_t key = keys.count() > 0 ? static_cast<std::size_t>(keys[i]) : 0;
    level.lines.push_back({inPlan(start), inPlan(end), key, false, false, false});
    level.lineOf.push_back(i);
  }
  for (const auto& [height, level] : levels) {
    for (const plan::CleanedLine& line : plan::cleanLines(level.lines, options).lines) {
      const std::size_t i = level.lineOf[line.line];
      isLeft[i] = true;
      ends[i] = {{line.start.x, line.start.y, height}, {line.end.x, line.end.y, height}};
    }
  }
  FoundLines found(lines.isInSpace());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (isLeft[i]) {
      found.add(ends[i].first, ends[i].second, i);
    }
  }
  return found;
}

}  // namespace

py::array_t<double> cornersOf(const std::vector<AcGePoint2d>& corners) {
  std::vector<double> numbers;
  numbers.reserve(2 * corners.size());
  for (const AcGePoint2d& corner : corners) {
    numbers.insert(numbers.end(), {corner.x, corner.y});
  }
  return toArray(std::move(numbers), 2);
}

py::array_t<std::int64_t> indicesOf(const std::vector<std::size_t>& indices) {
  return toArray(std::vector<std::int64_t>(indices.begin(), indices.end()));
}

plan::FindWallsOptions findWallsOptions(double millimetersPerUnit, const Lengths& given) {
  plan::FindWallsOptions options = plan::FindWallsOptions::inUnitsOf(millimetersPerUnit);
  const auto set = [&](const char* name, double& value) {
    if (const auto length = given.find(name); length != given.end()) {
      value = length->second;
    }
  };
  set("min_width", options.minWidth);
  set("max_width", options.maxWidth);
  set("max_opening", options.maxOpening);
  set("reach", options.reach);
  set("min_confidence", options.minConfidence);
  if (!(options.minWidth < options.maxWidth)) {
    throw commands::CommandError(commands::ExitCode::Usage,
                                 "min_width, max_width: no width is between them");
  }
  // A thin wall's faces must stay two.
  options.tolerance = std::min(options.tolerance, 0.25 * options.minWidth);
  return options;
}

py::dict dictOf(const plan::WallPlan& plan, const std::vector<plan::PlanOutline>& columns) {
  const py::tuple walls = wallsOf(plan.walls);
  py::list outlines;
  for (const plan::PlanOutline& column : columns) {
    outlines.append(cornersOf(column));
  }
  py::dict result;
  result["lines"] = walls[0];
  result["widths"] = walls[1];
  result["confidence"] = walls[2];
  result["openings"] = openingsOf(plan.openings);
  result["opening_lines"] = openingLinesOf(plan);
  result["columns"] = outlines;
  return result;
}

py::dict dictOf(const plan::FoundWalls& found, const std::vector<plan::PlanLine>& faceLines) {
  py::list faces;
  for (const std::vector<std::size_t>& lines : found.faces) {
    faces.append(indicesOf(lines));
  }
  std::vector<double> read;
  read.reserve(kLineColumns * faceLines.size());
  for (const plan::PlanLine& line : faceLines) {
    read.insert(read.end(), {line.start.x, line.start.y, line.end.x, line.end.y});
  }
  std::vector<double> widths;
  for (const plan::FoundWalls::Width& width : found.widths) {
    widths.insert(widths.end(), {width.width, width.length});
  }
  py::dict result = dictOf(found.plan, found.columns);
  result["face_lines"] = toArray(std::move(read), kLineColumns);
  result["faces"] = faces;
  result["left_over"] = indicesOf(found.leftOver);
  result["curved"] = curvesOf(found.curved);
  result["found_widths"] = toArray(std::move(widths), 2);
  return result;
}

py::list roomsOf(const plan::FoundRooms& found) {
  py::list rooms;
  for (const plan::Room& room : found.rooms) {
    py::list ways;
    for (const plan::RoomWay& way : room.ways) {
      ways.append(py::make_tuple(
          way.opening, way.room ? py::object(py::int_(*way.room)) : py::object(py::none())));
    }
    const py::tuple rings = ringsOf(room.polygon);
    const AcGePoint2d label = plan::labelPoint(room.polygon);
    py::dict row;
    row["outer"] = rings[0];
    row["holes"] = rings[1];
    row["net_area"] = room.netArea;
    row["gross_area"] = room.grossArea;
    row["perimeter"] = room.perimeter;
    row["label_point"] = py::make_tuple(label.x, label.y);
    row["walls"] = indicesOf(room.walls);
    row["openings"] = indicesOf(room.openings);
    row["ways"] = ways;
    row["is_gross_by_strips"] = room.isGrossByStrips;
    row["name"] = room.name;
    row["number"] = room.number;
    row["stated_area"] = room.statedArea;
    rooms.append(row);
  }
  return rooms;
}

void addPlanReading(py::module_& module) {
  using Array = Lines::Array;
  module.def(
      "find_walls",
      [](const Array& lines, const Array& arcs, const Array& faceArcs, const Array& symbols,
         const Array& boxes, double millimetersPerUnit, const Lengths& lengths) {
        const plan::FindWallsOptions options = findWallsOptions(millimetersPerUnit, lengths);
        const Surroundings others{Numbers(arcs), Numbers(faceArcs), Lines(symbols), Numbers(boxes)};
        const ReadWalls read = onQuoinThread(
            [lines = Lines(lines), others, options] { return findWalls(lines, others, options); });
        return dictOf(read.found, read.faceLines);
      },
      py::arg("lines"), py::arg("arcs"), py::arg("face_arcs"), py::arg("symbols"), py::arg("boxes"),
      py::arg("mm_per_unit"), py::arg("lengths"));
  module.def(
      "find_rooms",
      [](const Array& lines, const Array& widths, const Array& openings,
         const std::vector<Array>& columns, double capture, double leastArea, double leastWidth) {
        const std::vector<Numbers> outlines(columns.begin(), columns.end());
        return roomsOf(
            onQuoinThread([lines = Lines(lines), widths = Numbers(widths),
                           openings = Numbers(openings), outlines, capture, leastArea, leastWidth] {
              return findRooms(lines, widths, openings, outlines, capture, leastArea, leastWidth);
            }));
      },
      py::arg("lines"), py::arg("widths"), py::arg("openings"), py::arg("columns"),
      py::arg("capture"), py::arg("min_area"), py::arg("min_width"));
  module.def(
      "clean",
      [](const Array& lines, const Rows<std::int64_t>::Array& keys, double capture, double snap,
         double reach, double spur, bool removesDuplicates, bool joins, bool ignoresKeys) {
        const plan::CleanOptions options{snap, reach, spur, removesDuplicates, joins, ignoresKeys};
        return onQuoinThread([lines = Lines(lines), keys = Rows<std::int64_t>(keys), capture,
                              options] { return cleanLines(lines, keys, capture, options); })
            .arrays();
      },
      py::arg("lines"), py::arg("keys"), py::arg("capture"), py::arg("snap"), py::arg("reach"),
      py::arg("spur"), py::arg("duplicates"), py::arg("join"), py::arg("ignore_keys"));
}

}  // namespace quoin::python
