// Plan reading on documents: walls, rooms and cleaning as the commands do them.
#include <pybind11/stl.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "commands/Cleaning.h"
#include "commands/PlanReading.h"
#include "commands/PlannedWalls.h"
#include "commands/ReferenceWalls.h"
#include "commands/RoomWalls.h"
#include "python/src/Document.h"
#include "python/src/FoundWalls.h"

namespace quoin::python {

namespace {

using Patterns = std::vector<std::string>;
using Point = std::tuple<double, double, double>;

Point tupleOf(const AcGePoint3d& point) {
  return {point.x, point.y, point.z};
}

/// Where each of the lines is that plan reading has read.
Places placesOf(Document& document, const commands::ReadPlan& read) {
  Places places;
  for (const std::size_t source : read.sourceOf) {
    const commands::WallLine& line = read.found.lines[source];
    places.add(document, line.entity, line.segment);
  }
  return places;
}

/// As `quoin walls` reads the drawing.
py::dict findWalls(const DrawingFile& file, const Patterns& layers, const Lengths& lengths,
                   const py::object& progress) {
  struct Read {
    commands::FoundPlan plan;
    Places places;
  };
  Read read = file.with(
      [layers, lengths](Document& document) {
        Drawing& drawing = document.drawing;
        chooseLayers(drawing, layers);  // for its words where there is none
        commands::FoundPlan plan =
            commands::findPlanWalls(drawing, commands::chooseFaceLayers(drawing, layers),
                                    findWallsOptions(drawing.millimetersPerUnit(), lengths));
        Places places = placesOf(document, plan.read);
        return Read{std::move(plan), std::move(places)};
      },
      progress);
  py::dict result = dictOf(read.plan.found, read.plan.read.drawing.lines);
  result["face_handles"] = read.places.arrays();
  return result;
}

/// Walls that reference lines with widths give, and where they stand.
struct StatedWalls {
  plan::WallPlan plan;
  FoundLines lines{true};
  Places places;
  std::vector<std::uint64_t> openings;
  std::vector<std::pair<std::uint64_t, std::string>> skipped;
};

StatedWalls statedWalls(Document& document, const std::vector<commands::BodyWall>& walls,
                        const commands::FoundOpenings& openings) {
  StatedWalls stated;
  stated.plan = {commands::planWalls(walls), openings.openings};
  for (const commands::BodyWall& wall : walls) {
    stated.lines.add(wall.line.start, wall.line.end, std::int64_t{0});
    stated.places.add(document, wall.line.entity, wall.line.segment);
  }
  for (const AcDbObjectId& entity : openings.entities) {
    stated.openings.push_back(document.nameOf(entity));
  }
  for (const commands::SkippedEntity& skipped : openings.skipped) {
    stated.skipped.emplace_back(document.nameOf(skipped.entity), skipped.reason);
  }
  return stated;
}

py::dict statedDict(StatedWalls& stated, const std::vector<plan::PlanOutline>& columns) {
  py::dict result = dictOf(stated.plan, columns);
  result["lines"] = stated.lines.lines();
  result["handles"] = stated.places.arrays();
  result["opening_handles"] = toArray(std::move(stated.openings));
  result["skipped"] = stated.skipped;
  return result;
}

/// What options of the commands say of walls given by reference lines.
struct StatedOptions {
  commands::CommonOptions common;
  commands::WidthOptions widths;
  commands::OpeningLayers openings;
};

StatedOptions statedOptions(const Patterns& layers, std::optional<double> left,
                            std::optional<double> right, const Patterns& widths,
                            const Patterns& openings, bool hasNoOpenings, bool takesInside) {
  StatedOptions options{{}, {left, right, widths}, {openings, hasNoOpenings}};
  options.common.layers = layers;
  options.common.takesInside = takesInside;
  return options;
}

/// As `quoin outline` and `quoin solid` read the drawing.
py::dict readWalls(const DrawingFile& file, const Patterns& layers, std::optional<double> left,
                   std::optional<double> right, const Patterns& widths, const Patterns& openings,
                   bool hasNoOpenings, bool takesInside, const py::object& progress) {
  StatedWalls stated = file.with(
      [options = statedOptions(layers, left, right, widths, openings, hasNoOpenings, takesInside)](
          Document& document) {
        Drawing& drawing = document.drawing;
        const std::set<std::wstring> openingLayers = options.openings.in(drawing);
        const commands::ReferenceWalls reference =
            commands::collectReferenceWalls(drawing, options.common, options.widths, openingLayers);
        commands::FoundOpenings found;
        if (!openingLayers.empty()) {
          found = commands::collectOpenings(drawing, openingLayers,
                                            commands::planWalls(reference.walls),
                                            reference.capture.distance);
        }
        return statedWalls(document, reference.walls, found);
      },
      progress);
  return statedDict(stated, {});
}

/// As `quoin rooms`; the walls beside the rooms.
py::dict findRooms(const DrawingFile& file, const Patterns& layers, bool takesFaces,
                   std::optional<double> left, std::optional<double> right, const Patterns& widths,
                   const Patterns& openings, bool hasNoOpenings, bool takesInside,
                   std::optional<double> leastArea, std::optional<double> leastWidth,
                   const std::string& ownLayer, const py::object& progress) {
  struct Read {
    commands::RoomWalls walls;
    commands::RoomPlan plan;
    Places faces;
    StatedWalls stated;
  };
  Read read = file.with(
      [options = statedOptions(layers, left, right, widths, openings, hasNoOpenings, takesInside),
       takesFaces, leastArea, leastWidth, ownLayer](Document& document) {
        Drawing& drawing = document.drawing;
        Read done;
        done.walls = commands::readRoomWalls(drawing, options.common, options.widths,
                                             options.openings, takesFaces);
        done.plan = done.walls.plan;
        plan::RoomOptions rooms = commands::roomOptions(drawing, done.walls.capture.distance);
        rooms.leastArea = leastArea.value_or(rooms.leastArea);
        rooms.leastWidth = leastWidth.value_or(rooms.leastWidth);
        commands::findRooms(drawing, rooms, ownLayer, done.plan);
        if (done.walls.isFromFaces) {
          done.faces = placesOf(document, done.walls.fromFaces.read);
        } else {
          done.stated = statedWalls(document, done.walls.reference.walls, done.walls.openings);
        }
        return done;
      },
      progress);
  py::dict walls;
  if (read.walls.isFromFaces) {
    walls = dictOf(read.walls.fromFaces.found, read.walls.fromFaces.read.drawing.lines);
    walls["face_handles"] = read.faces.arrays();
  } else {
    std::vector<plan::PlanOutline> columns;
    for (const plan::Polygon& column : read.plan.columns) {
      columns.push_back(column.outer);
    }
    walls = statedDict(read.stated, columns);
  }
  py::list tooSmall;
  for (const plan::Polygon& sliver : read.plan.found.slivers) {
    tooSmall.append(cornersOf(sliver.outer));
  }
  py::dict result;
  result["walls"] = walls;
  result["rooms"] = roomsOf(read.plan.found);
  result["too_small"] = tooSmall;
  result["walls_left_out"] = read.plan.found.wallsLeftOut;
  return result;
}

/// What cleaning has done, by the names of entities before they go.
struct Cleaned {
  /// Step, entity, segment or -1, from, to, entity in its place.
  using Action = std::tuple<std::string, std::uint64_t, int, std::optional<Point>,
                            std::optional<Point>, std::optional<std::uint64_t>>;
  /// Why, where, entity, segment or -1, the other entity.
  using Undecided =
      std::tuple<std::string, Point, std::uint64_t, int, std::optional<std::uint64_t>>;

  std::map<std::string, std::size_t> counts;
  std::vector<Action> actions;
  FoundLines changed{true};
  Places changedPlaces;
  Places removed;
  std::vector<Undecided> undecided;
  std::size_t keptOverlaps = 0;
  bool isSettled = true;
  std::vector<std::uint64_t> marks;
  std::size_t addedMarks = 0;
  std::size_t erasedMarks = 0;

  void add(Document& document, const commands::CleanedLevel& cleaned);
};

void Cleaned::add(Document& document, const commands::CleanedLevel& cleaned) {
  const std::vector<commands::CleanSource>& sources = cleaned.level->sources;
  const auto at = [&](const AcGePoint2d& point) {
    return tupleOf(commands::inSpace(point, cleaned.height));
  };
  const auto other = [&](std::size_t line, std::size_t second) {
    return second == line ? std::nullopt : std::optional(document.nameOf(sources[second].entity));
  };
  for (const plan::CleanAction& action : cleaned.result.actions) {
    const commands::CleanSource& source = sources[action.line];
    actions.emplace_back(commands::wordsOf(action.step).name, document.nameOf(source.entity),
                         source.segment, at(action.from), at(action.to),
                         other(action.line, action.survivor));
  }
  for (const plan::CleanedLine& line : cleaned.result.lines) {
    const commands::CleanSource& source = sources[line.line];
    if (commands::isMoved(source.start, line.start) || commands::isMoved(source.end, line.end)) {
      changed.add(commands::inSpace(line.start, cleaned.height),
                  commands::inSpace(line.end, cleaned.height), std::int64_t{0});
      changedPlaces.add(document, source.entity, source.segment);
    }
  }
  for (const std::size_t line : commands::goneOf(cleaned)) {
    removed.add(document, sources[line].entity, sources[line].segment);
  }
  for (const plan::UndecidedPlace& place : cleaned.result.undecided) {
    const commands::CleanSource& source = sources[place.line];
    undecided.emplace_back(commands::nameOf(place.kind), at(place.at),
                           document.nameOf(source.entity), source.segment,
                           other(place.line, place.other));
  }
  keptOverlaps += cleaned.result.keptOverlaps;
  isSettled = isSettled && cleaned.result.isSettled;
}

/// What options say of cleaning; nothing for a default, 0 for a step that is left out.
struct CleanArguments {
  std::optional<double> snap;
  std::optional<double> reach;
  std::optional<double> spur;
  bool removesDuplicates;
  bool ignoresKeys;
  bool joins;

  plan::CleanOptions inUnitsOf(const Drawing& drawing) const {
    plan::CleanOptions options = commands::defaultCleanOptions(drawing);
    // The merge takes ends for touching at the distance at which ends snap.
    setCaptureDistance(snap.value_or(0.0) > 0.0 ? *snap : options.snap);
    options.snap = snap.value_or(options.snap);
    options.reach = reach.value_or(options.reach);
    options.spur = spur.value_or(options.spur);
    options.removesDuplicates = removesDuplicates;
    options.ignoresKeys = ignoresKeys;
    options.joins = joins;
    return options;
  }
};

Cleaned cleanDrawing(Document& document, const Patterns& layers, const CleanArguments& arguments,
                     const std::string& markLayer) {
  Drawing& drawing = document.drawing;
  const plan::CleanOptions options = arguments.inUnitsOf(drawing);
  const commands::Cleaning cleaning =
      commands::findCleaning(drawing, chooseLayers(drawing, layers), options);
  Cleaned cleaned;
  const auto counts = commands::cleanCounts(cleaning.found, cleaning.levels);
  for (std::size_t step = 0; step < counts.size(); ++step) {
    cleaned.counts[commands::wordsOf(static_cast<plan::CleanStep>(step)).name] = counts[step];
  }
  for (const commands::CleanedLevel& level : cleaning.levels) {
    cleaned.add(document, level);
  }
  for (const commands::DoubledPolyline& polyline : cleaning.found.doubled) {
    cleaned.actions.emplace_back(commands::wordsOf(plan::CleanStep::Duplicate).name,
                                 document.nameOf(polyline.entity), commands::WallLine::kWholeEntity,
                                 std::nullopt, std::nullopt, document.nameOf(polyline.survivor));
    cleaned.removed.add(document, polyline.entity, commands::WallLine::kWholeEntity);
  }
  commands::applyCleaning(drawing, cleaning.found, cleaning.levels);
  const commands::CleanMarks marks =
      commands::markUndecided(drawing, cleaning.levels, options, markLayer);
  for (const std::string& handle : marks.handles) {
    cleaned.marks.push_back(parseHandle(handle));
  }
  cleaned.addedMarks = marks.added;
  cleaned.erasedMarks = marks.erased;
  return cleaned;
}

py::dict clean(const DrawingFile& file, const Patterns& layers, std::optional<double> snap,
               std::optional<double> reach, std::optional<double> spur, bool removesDuplicates,
               bool ignoresKeys, bool joins, const std::string& markLayer,
               const py::object& progress) {
  const CleanArguments arguments{snap, reach, spur, removesDuplicates, ignoresKeys, joins};
  Cleaned cleaned = file.with(
      [layers, arguments, markLayer](Document& document) {
        return cleanDrawing(document, layers, arguments, markLayer);
      },
      progress);
  py::dict result;
  result["counts"] = cleaned.counts;
  result["actions"] = cleaned.actions;
  result["lines"] = cleaned.changed.lines();
  result["handles"] = cleaned.changedPlaces.arrays();
  result["removed"] = cleaned.removed.arrays();
  result["undecided"] = cleaned.undecided;
  result["kept_overlaps"] = cleaned.keptOverlaps;
  result["is_settled"] = cleaned.isSettled;
  result["marks"] = cleaned.marks;
  result["marks_added"] = cleaned.addedMarks;
  result["marks_erased"] = cleaned.erasedMarks;
  return result;
}

}  // namespace

void addDrawingPlans(py::class_<DrawingFile>& drawing) {
  drawing.def("find_walls", &findWalls, py::arg("layers"), py::arg("lengths"), py::arg("progress"))
      .def("read_walls", &readWalls, py::arg("layers"), py::arg("left"), py::arg("right"),
           py::arg("widths"), py::arg("openings"), py::arg("no_openings"), py::arg("in_blocks"),
           py::arg("progress"))
      .def("find_rooms", &findRooms, py::arg("layers"), py::arg("faces"), py::arg("left"),
           py::arg("right"), py::arg("widths"), py::arg("openings"), py::arg("no_openings"),
           py::arg("in_blocks"), py::arg("min_area"), py::arg("min_width"), py::arg("room_layer"),
           py::arg("progress"))
      .def("clean", &clean, py::arg("layers"), py::arg("snap"), py::arg("reach"), py::arg("spur"),
           py::arg("duplicates"), py::arg("ignore_keys"), py::arg("join"), py::arg("mark_layer"),
           py::arg("progress"));
}

}  // namespace quoin::python
