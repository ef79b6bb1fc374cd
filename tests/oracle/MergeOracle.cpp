#include "oracle/MergeOracle.h"

#include <algorithm>
#include <cmath>

#include "DataConvert.h"
#include "GeomDegree.h"

namespace quoin::oracle {

namespace {

constexpr double kPi = 3.14159265358979323846;

// --- gouges ---------------------------------------------------------------------------------

void collectGouge(const std::vector<GougeLine>& lines, std::vector<std::size_t>& startTouch,
                  std::vector<std::size_t>& endTouch, const std::vector<std::size_t>& search,
                  std::size_t number, double projectScale) {
  const double tolerance = (1.0 / projectScale) * 10.0;
  const GougeLine& line = lines[number];
  for (const std::size_t candidate : search) {
    const double startToStart = line.ptStart.distanceTo(lines[candidate].ptStart);
    const double startToEnd = line.ptStart.distanceTo(lines[candidate].ptEnd);
    const double endToStart = line.ptEnd.distanceTo(lines[candidate].ptStart);
    const double endToEnd = line.ptEnd.distanceTo(lines[candidate].ptEnd);
    const double distStart = startToEnd < startToStart ? startToEnd : startToStart;
    const double distEnd = endToEnd < endToStart ? endToEnd : endToStart;
    if (tolerance > distStart) {
      startTouch.push_back(candidate);
    }
    if (tolerance > distEnd) {
      endTouch.push_back(candidate);
    }
  }
}

bool mergeGougeAtPoint(GougeLine& line1, const GougeLine& line2, bool atStart,
                       const std::vector<AcGePoint3d>& breakPoints) {
  const AcGePoint3d meeting = atStart ? line1.ptStart : line1.ptEnd;
  for (const AcGePoint3d& breakPoint : breakPoints) {
    if (breakPoint.isEqualTo(meeting)) {
      return false;
    }
  }
  AcGePoint3d near2 = line2.ptStart;
  AcGePoint3d far2 = line2.ptEnd;
  if (line2.ptEnd.distanceTo(meeting) < line2.ptStart.distanceTo(meeting)) {
    near2 = line2.ptEnd;
    far2 = line2.ptStart;
  }
  const AcGePoint3d near1 = atStart ? line1.ptStart : line1.ptEnd;
  const AcGePoint3d far1 = atStart ? line1.ptEnd : line1.ptStart;
  const AcGeVector3d d1 = far1 - near1;
  const AcGeVector3d d2 = far2 - near2;
  const double angle = d1.angleTo(d2, AcGeVector3d::kZAxis);
  if (std::fabs(CGeomDegree(angle - kPi, 1).GetAngleDegree()) > 1.0) {
    return false;
  }
  if (!DataConvert::FloatEqual(line1.attr1, line2.attr1, -1)) {
    return false;
  }
  if (!DataConvert::FloatEqual(line1.attr3, line2.attr3, -1)) {
    return false;
  }
  if (!DataConvert::FloatEqual(line1.attr2, line2.attr2, -1)) {
    return false;
  }
  line1.ptStart = far1;
  line1.ptEnd = far2;
  return true;
}

void noteGougeMerge(std::vector<GougeLine>& lines, std::size_t number1, std::size_t number2,
                    std::set<std::size_t>& result) {
  lines[number1].merged.push_back(number2);
  for (const std::size_t absorbed : lines[number2].merged) {
    lines[number1].merged.push_back(absorbed);
  }
  result.insert(number1);
  result.erase(number2);
}

// --- walls ----------------------------------------------------------------------------------

void collectWall(const std::vector<WallLine>& lines, std::vector<std::size_t>& startTouch,
                 std::vector<std::size_t>& endTouch, const std::vector<std::size_t>& search,
                 std::size_t number, double projectScale) {
  const double tolerance = (1.0 / projectScale) * 10.0;
  const WallLine& line = lines[number];
  for (const std::size_t candidate : search) {
    const double startToStart = line.ptStart.distanceTo(lines[candidate].ptStart);
    const double startToEnd = line.ptStart.distanceTo(lines[candidate].ptEnd);
    const double endToStart = line.ptEnd.distanceTo(lines[candidate].ptStart);
    const double endToEnd = line.ptEnd.distanceTo(lines[candidate].ptEnd);
    const double distStart = startToEnd < startToStart ? startToEnd : startToStart;
    const double distEnd = endToEnd < endToStart ? endToEnd : endToStart;
    if (tolerance > distStart) {
      startTouch.push_back(candidate);
    }
    if (tolerance > distEnd) {
      endTouch.push_back(candidate);
    }
  }
}

bool mergeWallAtPoint(WallLine& line1, const WallLine& line2, bool atStart,
                      const std::vector<AcGePoint3d>& breakPoints) {
  const AcGePoint3d meeting = atStart ? line1.ptStart : line1.ptEnd;
  for (const AcGePoint3d& breakPoint : breakPoints) {
    if (breakPoint.isEqualTo(meeting)) {
      return false;
    }
  }
  AcGePoint3d near2 = line2.ptStart;
  AcGePoint3d far2 = line2.ptEnd;
  bool nearIsStart = true;
  if (line2.ptEnd.distanceTo(meeting) < line2.ptStart.distanceTo(meeting)) {
    near2 = line2.ptEnd;
    far2 = line2.ptStart;
    nearIsStart = false;
  }
  const AcGePoint3d near1 = atStart ? line1.ptStart : line1.ptEnd;
  const AcGePoint3d far1 = atStart ? line1.ptEnd : line1.ptStart;
  const AcGeVector3d d1 = far1 - near1;
  const AcGeVector3d d2 = far2 - near2;
  const double angle = d1.angleTo(d2, AcGeVector3d::kZAxis);
  if (std::fabs(CGeomDegree(angle - kPi, 1).GetAngleDegree()) > 1.0) {
    return false;
  }
  const double left1 = atStart ? line1.side1 : line1.side2;
  const double right1 = atStart ? line1.side2 : line1.side1;
  const double left2 = nearIsStart ? line2.side1 : line2.side2;
  const double right2 = nearIsStart ? line2.side2 : line2.side1;
  if (!DataConvert::FloatEqual(left1, right2, -1)) {
    return false;
  }
  if (!DataConvert::FloatEqual(right1, left2, -1)) {
    return false;
  }
  if (!DataConvert::FloatEqual(line1.attr2, line2.attr2, -1)) {
    return false;
  }
  if (!DataConvert::FloatEqual(line1.attr1, line2.attr1, -1)) {
    return false;
  }
  line1.ptStart = far1;
  line1.ptEnd = far2;
  line1.side1 = right1;
  line1.side2 = left1;
  return true;
}

void noteWallMerge(std::vector<WallLine>& lines, std::size_t number1, std::size_t number2,
                   std::set<std::size_t>& result) {
  lines[number1].merged.push_back(number2);
  for (const std::size_t absorbed : lines[number2].merged) {
    lines[number1].merged.push_back(absorbed);
  }
  result.insert(number1);
  result.erase(number2);
}

}  // namespace

std::set<std::size_t> mergeGougeLines(std::vector<GougeLine>& lines,
                                      const std::vector<AcGePoint3d>& breakPoints,
                                      double projectScale) {
  std::set<std::size_t> result;
  std::vector<std::size_t> pending;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    pending.push_back(i);
  }
  std::vector<std::size_t> done;
  while (!pending.empty()) {
    const std::size_t number = pending.back();
    pending.pop_back();
    std::vector<std::size_t> startTouch;
    std::vector<std::size_t> endTouch;
    collectGouge(lines, startTouch, endTouch, pending, number, projectScale);
    collectGouge(lines, startTouch, endTouch, done, number, projectScale);
    bool merged = false;
    if (startTouch.size() == 1) {
      const auto place = std::find(pending.begin(), pending.end(), startTouch[0]);
      if (place != pending.end() &&
          mergeGougeAtPoint(lines[number], lines[startTouch[0]], true, breakPoints)) {
        pending.erase(place);
        noteGougeMerge(lines, number, startTouch[0], result);
        merged = true;
      }
    }
    if (endTouch.size() == 1) {
      const auto place = std::find(pending.begin(), pending.end(), endTouch[0]);
      if (place != pending.end() &&
          mergeGougeAtPoint(lines[number], lines[endTouch[0]], false, breakPoints)) {
        pending.erase(place);
        noteGougeMerge(lines, number, endTouch[0], result);
        merged = true;
      }
    }
    if (merged) {
      pending.push_back(number);
    } else {
      done.push_back(number);
    }
  }
  return result;
}

std::set<std::size_t> mergeWallLines(std::vector<WallLine>& lines,
                                     const std::vector<AcGePoint3d>& breakPoints,
                                     double projectScale) {
  std::set<std::size_t> result;
  std::vector<std::size_t> pending;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    pending.push_back(i);
  }
  std::vector<std::size_t> done;
  while (!pending.empty()) {
    const std::size_t number = pending.back();
    pending.pop_back();
    std::vector<std::size_t> startTouch;
    std::vector<std::size_t> endTouch;
    collectWall(lines, startTouch, endTouch, pending, number, projectScale);
    collectWall(lines, startTouch, endTouch, done, number, projectScale);
    bool merged = false;
    if (!lines[number].startFixed && startTouch.size() == 1) {
      const auto place = std::find(pending.begin(), pending.end(), startTouch[0]);
      if (place != pending.end() &&
          mergeWallAtPoint(lines[number], lines[startTouch[0]], true, breakPoints)) {
        pending.erase(place);
        noteWallMerge(lines, number, startTouch[0], result);
        merged = true;
      }
    }
    if (!lines[number].endFixed && endTouch.size() == 1) {
      const auto place = std::find(pending.begin(), pending.end(), endTouch[0]);
      if (place != pending.end() &&
          mergeWallAtPoint(lines[number], lines[endTouch[0]], false, breakPoints)) {
        pending.erase(place);
        noteWallMerge(lines, number, endTouch[0], result);
        merged = true;
      }
    }
    if (merged) {
      pending.push_back(number);
    } else {
      done.push_back(number);
    }
  }
  return result;
}

}  // namespace quoin::oracle
