#include "oracle/AxisCutOracle.h"

#include <algorithm>

#include "gelnsg3d.h"

namespace quoin::oracle {

namespace {

AxisLikeLineSeg cutAxisLine(const std::vector<std::optional<AxisLikeLineSeg>>& lines,
                            std::size_t index) {
  const AxisLikeLineSeg& line = *lines[index];
  const AcGeLineSeg3d segment(line.ptStart, line.ptEnd);
  std::vector<AcGePoint3d> collected;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i == index || !lines[i]) {
      continue;
    }
    AcGePoint3d crossing;
    if (segment.intersectWith(AcGeLineSeg3d(lines[i]->ptStart, lines[i]->ptEnd), crossing)) {
      collected.push_back(crossing);
    }
  }

  AxisLikeLineSeg result;
  result.ptStart = line.ptStart;
  result.ptEnd = line.ptEnd;

  std::vector<AcGePoint3d> kept;
  for (const AcGePoint3d& crossing : collected) {
    if (kept.empty() || !crossing.isEqualTo(kept.back())) {
      kept.push_back(crossing);
    }
  }
  if (kept.size() < 2) {
    return result;
  }
  const AcGeVector3d direction = line.ptEnd - line.ptStart;
  std::stable_sort(kept.begin(), kept.end(), [&](const AcGePoint3d& a, const AcGePoint3d& b) {
    return (b - a).dotProduct(direction) > 0.0;
  });
  result.ptStart = kept.front();
  result.ptEnd = kept.back();
  return result;
}

}  // namespace

std::vector<AxisLikeLineSeg> cutAxisLines(
    const std::vector<std::optional<AxisLikeLineSeg>>& lines) {
  std::vector<AxisLikeLineSeg> results;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (lines[i]) {
      results.push_back(cutAxisLine(lines, i));
    }
  }
  return results;
}

}  // namespace quoin::oracle
