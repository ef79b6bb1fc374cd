#include "commands/OutlineGaps.h"

#include <algorithm>
#include <utility>

#include "commands/WallCuts.h"

namespace quoin::commands {

namespace {

/// A side line by how far along the wall it runs.
class Side {
 public:
  Side(const plan::Wall& wall, const WallDrawingSeg& seg)
      : m_seg(seg), m_from(along(wall, seg.ptStart)), m_to(along(wall, seg.ptEnd)) {}

  double from() const { return std::min(m_from, m_to); }
  double to() const { return std::max(m_from, m_to); }
  AcGePoint3d at(double place) const {
    const AcGeVector3d way = m_seg.ptEnd - m_seg.ptStart;
    return m_from == m_to ? m_seg.ptStart
                          : m_seg.ptStart + way * ((place - m_from) / (m_to - m_from));
  }
  /// What the gaps, in their order, leave of the side.
  std::vector<WallDrawingSeg> without(const std::vector<std::pair<double, double>>& gaps) const {
    if (gaps.empty()) {
      return {m_seg};
    }
    std::vector<WallDrawingSeg> pieces;
    AcGePoint3d begin = m_from <= m_to ? m_seg.ptStart : m_seg.ptEnd;
    for (const auto& [from, to] : gaps) {
      pieces.push_back({begin, at(from)});
      begin = at(to);
    }
    pieces.push_back({begin, m_from <= m_to ? m_seg.ptEnd : m_seg.ptStart});
    return pieces;
  }

 private:
  static double along(const plan::Wall& wall, const AcGePoint3d& point) {
    return wall.direction().dotProduct(AcGePoint2d(point.x, point.y) - wall.start);
  }

  const WallDrawingSeg& m_seg;
  double m_from;
  double m_to;
};

}  // namespace

OutlineGaps openOutlines(const std::vector<BodyWall>& walls,
                         const std::vector<WallOutline>& outlines, const FoundOpenings& found,
                         double captureDistance) {
  const double tolerance = noLength(captureDistance);
  OutlineGaps result;
  std::vector<std::vector<std::pair<double, double>>> gaps(walls.size());
  const std::vector<plan::Wall> plain = planWalls(walls);
  for (std::size_t i = 0; i < found.openings.size(); ++i) {
    const plan::Opening& opening = found.openings[i];
    const Side left(plain[opening.wall], outlines[opening.wall].left);
    const Side right(plain[opening.wall], outlines[opening.wall].right);
    const OpeningPlace place = placeOf(opening, std::max(left.from(), right.from()),
                                       std::min(left.to(), right.to()), tolerance);
    if (!place.reason.empty()) {
      result.leftOut.push_back({found.entities[i], place.reason});
      continue;
    }
    gaps[opening.wall].emplace_back(place.from, place.to);
    result.opened.push_back(i);
    result.shortened += place.isShortened ? 1 : 0;
  }
  result.outlines.resize(walls.size());
  for (std::size_t i = 0; i < walls.size(); ++i) {
    const Side left(plain[i], outlines[i].left);
    const Side right(plain[i], outlines[i].right);
    std::sort(gaps[i].begin(), gaps[i].end());
    std::vector<std::pair<double, double>> joined;
    for (const auto& [from, to] : gaps[i]) {
      if (!joined.empty() && from <= joined.back().second + tolerance) {
        joined.back().second = std::max(joined.back().second, to);
      } else {
        joined.emplace_back(from, to);
      }
    }
    PartedOutline& parted = result.outlines[i];
    parted.left = left.without(joined);
    parted.right = right.without(joined);
    for (const auto& [from, to] : joined) {
      for (const double jamb : {from, to}) {
        parted.jambs.push_back({left.at(jamb), right.at(jamb)});
      }
    }
  }
  return result;
}

}  // namespace quoin::commands
