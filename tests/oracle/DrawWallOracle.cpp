#include "oracle/DrawWallOracle.h"

#include <algorithm>

#include "gelnsg3d.h"

namespace quoin::oracle {

DrawnLine drawWallLine(std::vector<WallLineLikeSeg> lines, AcGePoint3d ptStart, AcGePoint3d ptEnd,
                       double projectScale) {
  DrawnLine drawn;
  const double reciprocal = 1.0 / projectScale;
  const double capture = reciprocal * 10.0;
  const AcGeLineSeg3d newSegment(ptStart, ptEnd);
  const AcGeLine3d newLine(ptStart, ptEnd);

  for (std::size_t i = 0; i < lines.size(); ++i) {
    WallLineLikeSeg& line = lines[i];
    const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
    const double distance = newSegment.distanceTo(segment);
    if (!(capture > distance)) {
      continue;
    }
    AcGePoint3d crossing(0.0, 0.0, 0.0);
    newLine.intersectWith(AcGeLine3d(line.ptStart, line.ptEnd), crossing);
    const AcGeVector3d before = crossing - line.ptStart;
    const AcGeVector3d behind = line.ptEnd - crossing;
    drawn.modified.push_back(i);
    if (before.isCodirectionalTo(behind)) {
      drawn.cutOff.push_back({crossing, line.ptEnd, i});
      line.ptEnd = crossing;
    }
    drawn.points.push_back(newSegment.closestPointTo(crossing));
  }

  drawn.points.push_back(ptStart);
  drawn.points.push_back(ptEnd);
  const AcGeVector3d direction = ptEnd - ptStart;
  std::stable_sort(drawn.points.begin(), drawn.points.end(),
                   [&](const AcGePoint3d& a, const AcGePoint3d& b) {
                     return (b - a).dotProduct(direction) > 0.0;
                   });
  for (std::size_t i = 1; i < drawn.points.size(); ++i) {
    if (!drawn.points[i - 1].isEqualTo(drawn.points[i])) {
      drawn.pieces.emplace_back(drawn.points[i - 1], drawn.points[i]);
    }
  }
  drawn.lines = std::move(lines);
  return drawn;
}

}  // namespace quoin::oracle
