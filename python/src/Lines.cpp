// Breaking, merging, drawing and trimming lines: arrays go into the exported algorithms' records
// and back, as the commands' entities do.
#include <cmath>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "AcadCommonTool.h"
#include "AxisLineCutAlg.h"
#include "BreakWallAlgorithm.h"
#include "DrawWallAlgorithm/DrawWallLikeAlgorithm.h"
#include "MergeGougeAlgorithm.h"
#include "commands/AxisOverhang.h"
#include "commands/CommandError.h"
#include "gelnsg3d.h"
#include "python/src/Arrays.h"
#include "python/src/Bindings.h"
#include "python/src/Engine.h"

namespace quoin::python {

namespace {

using Points = Rows<double>;

constexpr std::int64_t kNoSource = -1;

/// Lines without length take no part anywhere.
bool hasLength(const Lines& lines, std::size_t i) {
  return !(lines.start(i) == lines.end(i));
}

AcGePoint3d pointOf(const Points& points, std::size_t i) {
  const double* const at = points.row(i);
  return {at[0], at[1], points.columns() > 2 ? at[2] : 0.0};
}

/// The line nearest to the point in plan, the first of those that are equally near, and the foot.
std::pair<std::size_t, AcGePoint3d> nearestLine(const Lines& lines, const AcGePoint3d& asked) {
  std::pair<std::size_t, AcGePoint3d> nearest{lines.count(), asked};
  double least = HUGE_VAL;
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (!hasLength(lines, i)) {
      continue;
    }
    const AcGePoint3d foot = AcGeLineSeg3d(lines.start(i), lines.end(i)).closestPointTo(asked);
    const double distance = std::hypot(foot.x - asked.x, foot.y - asked.y);
    if (distance < least) {
      least = distance;
      nearest = {i, foot};
    }
  }
  if (nearest.first == lines.count()) {
    throw commands::CommandError(commands::ExitCode::NothingToDo,
                                 "at: there is no line with a length to cut");
  }
  return nearest;
}

FoundLines breakLines(const Lines& lines, double capture, const Points& at) {
  constexpr std::size_t kNone = ~std::size_t{0};
  setCaptureDistance(capture);
  CBreakWallAlgorithm algorithm;
  std::vector<WallLineLikeSeg*>& records = algorithm.GetSrcWallLines();
  std::vector<std::size_t> recordOf(lines.count(), kNone);
  records.reserve(lines.count());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (hasLength(lines, i)) {
      recordOf[i] = records.size();
      records.push_back(new WallLineLikeSeg(lines.start(i), lines.end(i)));
    }
  }
  for (std::size_t i = 0; i < at.count(); ++i) {
    const auto [line, foot] = nearestLine(lines, pointOf(at, i));
    AcArray<AcGePoint3d> points;
    points.append(foot);
    algorithm.AppendWallBreakPnt(records[recordOf[line]], points);
  }
  algorithm.SplitWallLines();
  // Pieces stand line by line, in the order of the lines.
  const std::vector<WallLineLikeSeg*>& pieces = algorithm.GetNewWallLines();
  FoundLines found(lines.isInSpace());
  found.reserve(lines.count() + pieces.size());
  std::size_t next = 0;
  for (std::size_t i = 0; i < lines.count(); ++i) {
    const std::size_t begin = next;
    while (recordOf[i] != kNone && next < pieces.size() &&
           pieces[next]->pSrcLine == records[recordOf[i]]) {
      ++next;
    }
    if (next - begin < 2) {  // cut at its own end: the line stays as it is
      found.add(lines.start(i), lines.end(i), i);
      continue;
    }
    for (std::size_t piece = begin; piece < next; ++piece) {
      found.add(pieces[piece]->ptStart, pieces[piece]->ptEnd, i);
    }
  }
  return found;
}

FoundLines mergeLines(const Lines& lines, double capture, const Rows<double>& properties,
                      const Points& keepAt) {
  setCaptureDistance(capture);
  CMergeGougeAlgorithm algorithm;
  std::unordered_map<const MergeGougeSeg*, std::size_t> lineOf;
  lineOf.reserve(lines.count());
  std::vector<const MergeGougeSeg*> recordOf(lines.count(), nullptr);
  for (std::size_t i = 0; i < lines.count(); ++i) {
    const AcGePoint3d start = lines.start(i);
    if (!hasLength(lines, i) || start.z != lines.end(i).z) {
      continue;
    }
    auto* const record = new MergeGougeSeg();
    algorithm.GetSrcGougeLines().push_back(record);
    record->ptStart = start;
    record->ptEnd = lines.end(i);
    record->dAttr1 = properties.count() > 0 ? properties[i] : 0.0;
    record->dAttr2 = start.z;
    recordOf[i] = record;
    lineOf.emplace(record, i);
  }
  for (std::size_t i = 0; i < keepAt.count(); ++i) {
    algorithm.AppendBreakPnt(pointOf(keepAt, i));
  }
  algorithm.MergeGougeLines();
  std::vector<bool> isGone(lines.count(), false);
  std::vector<bool> isGrown(lines.count(), false);
  for (const MergeGougeSeg* const record : algorithm.GetMergeGougeLines()) {
    isGrown[lineOf.at(record)] = true;
    for (const MergeGougeSeg* const absorbed : record->mergedSegs) {
      isGone[lineOf.at(absorbed)] = true;
    }
  }
  FoundLines found(lines.isInSpace());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (isGrown[i]) {
      found.add(recordOf[i]->ptStart, recordOf[i]->ptEnd, i);
    } else if (!isGone[i]) {
      found.add(lines.start(i), lines.end(i), i);
    }
  }
  return found;
}

FoundLines drawLine(const Lines& lines, const AcGePoint3d& from, AcGePoint3d to, double capture,
                    bool isAngleLocked) {
  setCaptureDistance(capture);
  if (isAngleLocked) {
    to = CAcadCommonTool::GetAngleLockPnt(from, to);
  }
  // Records that the calculation modifies pass to the algorithm, the others stay ours.
  std::vector<std::unique_ptr<WallLineLikeSeg>> records(lines.count());
  std::unordered_map<const WallLineLikeSeg*, std::size_t> lineOf;
  CDrawWallLikeAlgorithm algorithm;
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (hasLength(lines, i)) {
      records[i] = std::make_unique<WallLineLikeSeg>(lines.start(i), lines.end(i));
      lineOf.emplace(records[i].get(), i);
      algorithm.GetSrcWallLines().push_back(records[i].get());
    }
  }
  algorithm.CalcNewWallLine(from, to);
  for (const WallLineLikeSeg* const modified : algorithm.GetSrcModifyiedWallLines()) {
    static_cast<void>(records[lineOf.at(modified)].release());
  }
  std::unordered_map<std::size_t, const WallLineLikeSeg*> farPartOf;
  for (const WallLineLikeSeg* const far : algorithm.GetSrcNewWallLines()) {
    farPartOf.emplace(lineOf.at(far->pSrcLine), far);
  }
  FoundLines found(lines.isInSpace());
  found.reserve(lines.count() + farPartOf.size());
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (const auto far = farPartOf.find(i); far != farPartOf.end()) {
      found.add(lines.start(i), far->second->ptStart, i);
      found.add(far->second->ptStart, far->second->ptEnd, i);
    } else {
      found.add(lines.start(i), lines.end(i), i);
    }
  }
  for (const WallLineLikeSeg* const piece : algorithm.GetNewWallLines()) {
    found.add(piece->ptStart, piece->ptEnd, kNoSource);
  }
  return found;
}

FoundLines trimAxes(const Lines& lines, double overhang) {
  AxisLineCutAlg algorithm;
  std::vector<std::size_t> lineOf;
  for (std::size_t i = 0; i < lines.count(); ++i) {
    if (hasLength(lines, i)) {
      algorithm.AppendSrcAxisLine(new AxisLikeLineSeg{lines.start(i), lines.end(i)});
      lineOf.push_back(i);
    }
  }
  algorithm.CutAxisLines();
  FoundLines found(lines.isInSpace());
  found.reserve(lines.count());
  for (std::size_t i = 0, next = 0; i < lines.count(); ++i) {
    if (next == lineOf.size() || lineOf[next] != i) {
      found.add(lines.start(i), lines.end(i), i);
      continue;
    }
    const AxisLikeLineSeg& axis = *algorithm.GetDestAxisLines()[next++];
    found.add(commands::withOverhang(axis.ptStart, lines.start(i), overhang),
              commands::withOverhang(axis.ptEnd, lines.end(i), overhang), i);
  }
  return found;
}

}  // namespace

void addLines(py::module_& module) {
  using Array = Lines::Array;
  module.def(
      "break_lines",
      [](const Array& lines, double capture, const Array& at) {
        return onQuoinThread([lines = Lines(lines), capture, at = Points(at)] {
                 return breakLines(lines, capture, at);
               })
            .arrays();
      },
      py::arg("lines"), py::arg("capture"), py::arg("at"));
  module.def(
      "merge_lines",
      [](const Array& lines, double capture, const Array& properties, const Array& keepAt) {
        return onQuoinThread([lines = Lines(lines), capture, properties = Points(properties),
                              keepAt = Points(keepAt)] {
                 return mergeLines(lines, capture, properties, keepAt);
               })
            .arrays();
      },
      py::arg("lines"), py::arg("capture"), py::arg("properties"), py::arg("keep_at"));
  module.def(
      "draw_line",
      [](const Array& lines, const Array& ends, double capture, bool isAngleLocked) {
        return onQuoinThread([lines = Lines(lines), ends = Points(ends), capture, isAngleLocked] {
                 return drawLine(lines, pointOf(ends, 0), pointOf(ends, 1), capture, isAngleLocked);
               })
            .arrays();
      },
      py::arg("lines"), py::arg("ends"), py::arg("capture"), py::arg("angle_lock"));
  module.def(
      "trim_axes",
      [](const Array& lines, double overhang) {
        return onQuoinThread([lines = Lines(lines), overhang] { return trimAxes(lines, overhang); })
            .arrays();
      },
      py::arg("lines"), py::arg("overhang"));
}

}  // namespace quoin::python
