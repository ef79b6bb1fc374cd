#include "oracle/MergeOracle.h"

#include <algorithm>
#include <cmath>

#include "DataConvert.h"
#include "GeomDegree.h"

namespace quoin::oracle {

namespace {

constexpr double kPi = 3.14159265358979323846;

// --- where the two kinds differ --------------------------------------------------------------

bool isFixed(const GougeLine&, bool) {
  return false;
}
bool isFixed(const WallLine& line, bool atStart) {
  return atStart ? line.startFixed : line.endFixed;
}

bool agree(const GougeLine& line1, bool, const GougeLine& line2, bool) {
  return DataConvert::FloatEqual(line1.attr1, line2.attr1, -1) &&
         DataConvert::FloatEqual(line1.attr3, line2.attr3, -1) &&
         DataConvert::FloatEqual(line1.attr2, line2.attr2, -1);
}
bool agree(const WallLine& line1, bool atStart, const WallLine& line2, bool nearIsStart) {
  const double left1 = atStart ? line1.side1 : line1.side2;
  const double right1 = atStart ? line1.side2 : line1.side1;
  const double left2 = nearIsStart ? line2.side1 : line2.side2;
  const double right2 = nearIsStart ? line2.side2 : line2.side1;
  return DataConvert::FloatEqual(left1, right2, -1) && DataConvert::FloatEqual(right1, left2, -1) &&
         DataConvert::FloatEqual(line1.attr2, line2.attr2, -1) &&
         DataConvert::FloatEqual(line1.attr1, line2.attr1, -1);
}

void turnRound(GougeLine&) {}
void turnRound(WallLine& line) {
  std::swap(line.side1, line.side2);
}

// --- what they share -------------------------------------------------------------------------

template <class Line>
void collectTouching(const std::vector<Line>& lines, std::vector<std::size_t>& startTouch,
                     std::vector<std::size_t>& endTouch, const std::vector<std::size_t>& search,
                     std::size_t index, double projectScale) {
  const double tolerance = (1.0 / projectScale) * 10.0;
  const Line& line = lines[index];
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

template <class Line>
bool mergeAtPoint(Line& line1, const Line& line2, bool atStart,
                  const std::vector<AcGePoint3d>& breakPoints) {
  const AcGePoint3d meeting = atStart ? line1.ptStart : line1.ptEnd;
  for (const AcGePoint3d& breakPoint : breakPoints) {
    if (breakPoint.isEqualTo(meeting)) {
      return false;
    }
  }
  const bool nearIsStart = !(line2.ptEnd.distanceTo(meeting) < line2.ptStart.distanceTo(meeting));
  const AcGePoint3d near2 = nearIsStart ? line2.ptStart : line2.ptEnd;
  const AcGePoint3d far2 = nearIsStart ? line2.ptEnd : line2.ptStart;
  const AcGePoint3d far1 = atStart ? line1.ptEnd : line1.ptStart;
  const double angle = (far1 - meeting).angleTo(far2 - near2, AcGeVector3d::kZAxis);
  if (std::fabs(CGeomDegree(angle - kPi, 1).GetAngleDegree()) > 1.0) {
    return false;
  }
  if (!agree(line1, atStart, line2, nearIsStart)) {
    return false;
  }
  line1.ptStart = far1;
  line1.ptEnd = far2;
  if (atStart) {
    turnRound(line1);
  }
  return true;
}

/// Merges a line with what alone touches one of its ends, if that is pending.
template <class Line>
bool mergeEnd(std::vector<Line>& lines, std::size_t index, bool atStart,
              const std::vector<std::size_t>& touching, std::vector<std::size_t>& pending,
              const std::vector<AcGePoint3d>& breakPoints, std::set<std::size_t>& result) {
  if (isFixed(lines[index], atStart) || touching.size() != 1) {
    return false;
  }
  const std::size_t other = touching[0];
  const auto place = std::find(pending.begin(), pending.end(), other);
  if (place == pending.end() || !mergeAtPoint(lines[index], lines[other], atStart, breakPoints)) {
    return false;
  }
  pending.erase(place);
  lines[index].merged.push_back(other);
  for (const std::size_t absorbed : lines[other].merged) {
    lines[index].merged.push_back(absorbed);
  }
  result.insert(index);
  result.erase(other);
  return true;
}

template <class Line>
std::set<std::size_t> merge(std::vector<Line>& lines, const std::vector<AcGePoint3d>& breakPoints,
                            double projectScale) {
  std::set<std::size_t> result;
  std::vector<std::size_t> pending;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    pending.push_back(i);
  }
  std::vector<std::size_t> done;
  while (!pending.empty()) {
    const std::size_t index = pending.back();
    pending.pop_back();
    std::vector<std::size_t> startTouch;
    std::vector<std::size_t> endTouch;
    collectTouching(lines, startTouch, endTouch, pending, index, projectScale);
    collectTouching(lines, startTouch, endTouch, done, index, projectScale);
    const bool atStart = mergeEnd(lines, index, true, startTouch, pending, breakPoints, result);
    const bool atEnd = mergeEnd(lines, index, false, endTouch, pending, breakPoints, result);
    (atStart || atEnd ? pending : done).push_back(index);
  }
  return result;
}

}  // namespace

std::set<std::size_t> mergeGougeLines(std::vector<GougeLine>& lines,
                                      const std::vector<AcGePoint3d>& breakPoints,
                                      double projectScale) {
  return merge(lines, breakPoints, projectScale);
}

std::set<std::size_t> mergeWallLines(std::vector<WallLine>& lines,
                                     const std::vector<AcGePoint3d>& breakPoints,
                                     double projectScale) {
  return merge(lines, breakPoints, projectScale);
}

}  // namespace quoin::oracle
