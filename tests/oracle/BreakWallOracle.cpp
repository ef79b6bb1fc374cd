#include "oracle/BreakWallOracle.h"

#include <algorithm>

#include "gelnsg3d.h"

namespace quoin::oracle {

std::vector<Piece> breakWallLines(const std::vector<WallLineLikeSeg>& lines,
                                  const std::map<std::size_t, std::vector<AcGePoint3d>>& appended,
                                  double projectScale) {
  const double reciprocal = 1.0 / projectScale;
  const double capture = reciprocal * 10.0;
  std::vector<Piece> pieces;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const WallLineLikeSeg& line = lines[i];
    std::vector<AcGePoint3d> cuts;
    if (const auto named = appended.find(i); named != appended.end()) {
      cuts = named->second;
    }
    const AcGeLineSeg3d seg(line.ptStart, line.ptEnd);
    for (std::size_t k = 0; k < lines.size(); ++k) {
      if (k == i) {
        continue;
      }
      const double distStart = seg.distanceTo(lines[k].ptStart);
      const double distEnd = seg.distanceTo(lines[k].ptEnd);
      AcGePoint3d ptNear = lines[k].ptEnd;
      double distNear = distEnd;
      if (distEnd > distStart) {
        ptNear = lines[k].ptStart;
        distNear = distStart;
      }
      if (capture > distNear) {
        const AcGePoint3d foot = seg.closestPointTo(ptNear);
        double margin = foot.distanceTo(line.ptEnd);
        if (foot.distanceTo(line.ptEnd) > foot.distanceTo(line.ptStart)) {
          margin = foot.distanceTo(line.ptStart);
        }
        if (margin >= capture) {
          cuts.push_back(foot);
        }
      }
    }
    if (cuts.empty()) {
      continue;
    }
    cuts.push_back(line.ptStart);
    cuts.push_back(line.ptEnd);
    const AcGeVector3d direction = line.ptEnd - line.ptStart;
    std::stable_sort(cuts.begin(), cuts.end(), [&](const AcGePoint3d& a, const AcGePoint3d& b) {
      return (b - a).dotProduct(direction) > 0.0;
    });
    AcGePoint3d previous = cuts.front();
    for (std::size_t c = 1; c < cuts.size(); ++c) {
      if (!cuts[c].isEqualTo(previous)) {
        pieces.push_back({previous, cuts[c], i});
      }
      previous = cuts[c];
    }
  }
  return pieces;
}

}  // namespace quoin::oracle
