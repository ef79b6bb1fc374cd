#include "commands/WallPrism.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/Drawing.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

using Intervals = std::vector<std::pair<double, double>>;

/// What is left of 0 to height without these intervals, which are sorted.
Intervals complement(const Intervals& taken, double height) {
  Intervals left;
  double at = 0.0;
  for (const auto& [from, to] : taken) {
    if (from > at) {
      left.emplace_back(at, from);
    }
    at = std::max(at, to);
  }
  if (at < height) {
    left.emplace_back(at, height);
  }
  return left;
}

bool covers(const Intervals& intervals, double low, double high) {
  return std::any_of(intervals.begin(), intervals.end(), [&](const auto& interval) {
    return interval.first <= low && high <= interval.second;
  });
}

}  // namespace

std::vector<WallSlab> slabsBetween(const std::vector<WallHole>& holes, double height) {
  std::vector<double> jambs;
  jambs.reserve(2 * holes.size());
  for (const WallHole& hole : holes) {
    jambs.push_back(hole.from);
    jambs.push_back(hole.to);
  }
  std::sort(jambs.begin(), jambs.end());
  jambs.erase(std::unique(jambs.begin(), jambs.end()), jambs.end());
  std::vector<WallHole> inOrder = holes;
  std::sort(inOrder.begin(), inOrder.end(),
            [](const WallHole& a, const WallHole& b) { return a.from < b.from; });
  std::vector<WallSlab> slabs;
  std::vector<WallHole> here;
  auto next = inOrder.begin();
  for (std::size_t i = 0; i + 1 < jambs.size(); ++i) {
    std::erase_if(here, [&](const WallHole& hole) { return hole.to <= jambs[i]; });
    for (; next != inOrder.end() && next->from <= jambs[i]; ++next) {
      here.push_back(*next);
    }
    Intervals open;
    for (const WallHole& hole : here) {
      open.emplace_back(hole.sill, hole.head);
    }
    std::sort(open.begin(), open.end());
    slabs.push_back({jambs[i], jambs[i + 1], complement(open, height)});
  }
  return slabs;
}

/// The faces of a wall with holes.
///
/// The body is made of vertical lines: left, middle and right at the wall's ends and at every jamb.
/// A line has a corner at each height where a hole beside it begins or ends, and faces between two
/// lines use all corners of both. So no corner lies on another face's edge. Where an opening
/// reaches a mitre, a line of the jamb is one of the end face's and has the corners of both.
class HoledBody {
 public:
  explicit HoledBody(const WallPrism& prism) : m_prism(prism) {
    makeSections();
    for (std::size_t i = 0; i < m_slabs.size(); ++i) {
      for (const auto& [low, high] : m_slabs[i]) {
        addLevels(i, low, high);
      }
    }
    for (Line& line : m_lines) {
      std::sort(line.levels.begin(), line.levels.end());
      line.levels.erase(std::unique(line.levels.begin(), line.levels.end()), line.levels.end());
    }
  }

  std::vector<WallPrism::Face> faces() {
    addAcross(kLeft);
    addAcross(kMiddle);
    for (std::size_t i = 0; i < m_slabs.size(); ++i) {
      const Section& start = m_sections[i];
      const Section& end = m_sections[i + 1];
      for (const auto& [low, high] : m_slabs[i]) {
        for (const std::size_t side : {kLeft, kMiddle}) {
          const std::array<std::size_t, 4> half{start[side], start[side + 1], end[side + 1],
                                                end[side]};
          addFlat({half[0], half[1], half[2], half[3]}, high);
          addFlat({half[3], half[2], half[1], half[0]}, low);
        }
        addUpright(end[kLeft], start[kLeft], low, high);
        addUpright(start[kRight], end[kRight], low, high);
      }
    }
    return std::move(m_faces);
  }

 private:
  static constexpr std::size_t kLeft = 0;
  static constexpr std::size_t kMiddle = 1;
  static constexpr std::size_t kRight = 2;

  struct Line {
    AcGePoint3d foot;
    std::vector<double> levels;
  };
  /// The left, middle and right line.
  using Section = std::array<std::size_t, 3>;

  std::size_t newLine(const AcGePoint3d& foot) {
    m_lines.push_back({foot, {0.0, m_prism.height}});
    return m_lines.size() - 1;
  }

  void makeSections() {
    const std::array<AcGePoint3d, 3> starts{m_prism.startLeft, m_prism.startMid,
                                            m_prism.startRight};
    const std::array<AcGePoint3d, 3> ends{m_prism.endLeft, m_prism.endMid, m_prism.endRight};
    const Section start{newLine(starts[0]), newLine(starts[1]), newLine(starts[2])};
    const Section end{newLine(ends[0]), newLine(ends[1]), newLine(ends[2])};
    const auto sectionAt = [&](double at) {
      Section section{};
      for (std::size_t side = kLeft; side <= kRight; ++side) {
        const double from = m_prism.along(starts[side]);
        const double to = m_prism.along(ends[side]);
        section[side] =
            from >= at - m_prism.tolerance ? start[side]
            : to <= at + m_prism.tolerance
                ? end[side]
                : newLine(starts[side] + (ends[side] - starts[side]) * ((at - from) / (to - from)));
      }
      return section;
    };
    const Intervals whole{{0.0, m_prism.height}};
    const auto add = [&](const Section& section, const Intervals& before) {
      // At an end that is not mitred the first jamb may be the wall's own end.
      if (section != m_sections.back()) {
        m_slabs.push_back(before);
        m_sections.push_back(section);
      }
    };
    m_sections.push_back(start);
    const std::vector<WallSlab> slabs = slabsBetween(m_prism.holes, m_prism.height);
    add(sectionAt(slabs.front().from), whole);
    for (const WallSlab& slab : slabs) {
      add(sectionAt(slab.to), slab.solid);
    }
    add(end, whole);
  }

  void addLevels(std::size_t slab, double low, double high) {
    for (const std::size_t section : {slab, slab + 1}) {
      for (const std::size_t line : m_sections[section]) {
        m_lines[line].levels.push_back(low);
        m_lines[line].levels.push_back(high);
      }
    }
  }

  /// The faces across one half of the wall, where it ends or a hole does. A half of no length, in
  /// a mitre that an opening reaches, is passed over.
  void addAcross(std::size_t side) {
    static const Intervals kNothing;
    const Intervals* before = &kNothing;
    for (std::size_t i = 0; i < m_slabs.size(); ++i) {
      const Section& section = m_sections[i];
      const Section& next = m_sections[i + 1];
      if (section[side] != next[side] || section[side + 1] != next[side + 1]) {
        addBetween(section[side], section[side + 1], *before, m_slabs[i]);
        before = &m_slabs[i];
      }
    }
    addBetween(m_sections.back()[side], m_sections.back()[side + 1], *before, kNothing);
  }

  /// Across the wall from one line to the next on its right, where one of its sides is wall.
  void addBetween(std::size_t left, std::size_t right, const Intervals& before,
                  const Intervals& behind) {
    const std::vector<double>& levels = m_lines[left].levels;
    const auto sideAt = [&](std::size_t i) {
      return static_cast<int>(covers(behind, levels[i], levels[i + 1])) -
             static_cast<int>(covers(before, levels[i], levels[i + 1]));
    };
    // Whole stretches: what ends between may be a corner of this line alone.
    for (std::size_t low = 0, high = 0; low + 1 < levels.size(); low = high) {
      const int side = sideAt(low);
      for (high = low + 1; high + 1 < levels.size() && sideAt(high) == side; ++high) {
      }
      if (side > 0) {
        addUpright(left, right, levels[low], levels[high]);
      } else if (side < 0) {
        addUpright(right, left, levels[low], levels[high]);
      }
    }
  }

  AcGePoint3d corner(std::size_t line, double level) const {
    return m_lines[line].foot + AcGeVector3d(0.0, 0.0, level);
  }

  /// Between two lines, seen with `from` on the left: upwards from corner to corner of both.
  void addUpright(std::size_t from, std::size_t to, double low, double high) {
    if (from == to) {
      return;
    }
    const auto above = [&](std::size_t line, double level) {
      return *std::upper_bound(m_lines[line].levels.begin(), m_lines[line].levels.end(), level);
    };
    double left = low;
    double right = low;
    while (left < high || right < high) {
      const double leftNext = left < high ? above(from, left) : HUGE_VAL;
      const double rightNext = right < high ? above(to, right) : HUGE_VAL;
      const double next = std::min(leftNext, rightNext);
      const AcGePoint3d lowLeft = corner(from, left);
      const AcGePoint3d lowRight = corner(to, right);
      if (leftNext == rightNext) {
        m_faces.push_back({lowLeft, lowRight, corner(to, next), corner(from, next)});
        left = right = next;
      } else if (rightNext == next) {
        m_faces.push_back({lowLeft, lowRight, corner(to, next), corner(to, next)});
        right = next;
      } else {
        m_faces.push_back({lowLeft, lowRight, corner(from, next), corner(from, next)});
        left = next;
      }
    }
  }

  /// Lines that are one make the quadrilateral a triangle, or nothing.
  void addFlat(std::vector<std::size_t> lines, double level) {
    const auto last = std::unique(lines.begin(), lines.end());
    lines.erase(last, lines.end());
    if (lines.size() > 1 && lines.front() == lines.back()) {
      lines.pop_back();
    }
    if (lines.size() >= 3) {
      m_faces.push_back({corner(lines[0], level), corner(lines[1], level), corner(lines[2], level),
                         corner(lines.back(), level)});
    }
  }

  const WallPrism& m_prism;
  std::vector<Line> m_lines;
  std::vector<Section> m_sections;
  std::vector<Intervals> m_slabs;  // what is wall between a section and the next
  std::vector<WallPrism::Face> m_faces;
};

double WallPrism::along(const AcGePoint3d& point) const {
  return (point.x - origin.x) * direction.x + (point.y - origin.y) * direction.y;
}

double WallPrism::straightFrom() const {
  const double faces = std::max(along(startLeft), along(startRight));
  const double middle = along(startMid);
  return middle > faces + tolerance ? middle + clearance : std::max(faces, middle);
}

double WallPrism::straightTo() const {
  const double faces = std::min(along(endLeft), along(endRight));
  const double middle = along(endMid);
  return middle < faces - tolerance ? middle - clearance : std::min(faces, middle);
}

std::vector<WallPrism::Face> WallPrism::faces() const {
  if (!holes.empty()) {
    return HoledBody(*this).faces();
  }
  const AcGeVector3d up(0.0, 0.0, height);
  const std::array<AcGePoint3d, 6> floor{startLeft, startMid, startRight,
                                         endRight,  endMid,   endLeft};
  std::vector<Face> faces;
  // Each half of the floor lies between the middle line and one side.
  const std::array<std::array<std::size_t, 4>, 2> halves{{{0, 1, 4, 5}, {1, 2, 3, 4}}};
  for (const std::array<std::size_t, 4>& half : halves) {
    // Counter-clockwise from above: the ceiling as it is, the floor turned round.
    faces.push_back(
        {floor[half[0]] + up, floor[half[1]] + up, floor[half[2]] + up, floor[half[3]] + up});
    faces.push_back({floor[half[3]], floor[half[2]], floor[half[1]], floor[half[0]]});
  }
  for (std::size_t i = 0; i < floor.size(); ++i) {
    const AcGePoint3d& from = floor[i];
    const AcGePoint3d& to = floor[(i + 1) % floor.size()];
    faces.push_back({from, to, to + up, from + up});
  }
  return faces;
}

bool WallPrism::isHiddenInJoint(const Face& face) const {
  const auto isAcross = [&](const AcGePoint3d& left, const AcGePoint3d& mid,
                            const AcGePoint3d& right) {
    return std::all_of(face.begin(), face.end(), [&](const AcGePoint3d& corner) {
      const auto isAbove = [&](const AcGePoint3d& foot) {
        return corner.x == foot.x && corner.y == foot.y;
      };
      return isAbove(left) || isAbove(mid) || isAbove(right);
    });
  };
  return (!isStartFree && isAcross(startLeft, startMid, startRight)) ||
         (!isEndFree && isAcross(endLeft, endMid, endRight));
}

WallPrism makePrism(const BodyWall& wall, const PrepareFrom2dTo3dData& ends, double height) {
  WallPrism prism;
  prism.source = wall.line.entity;
  prism.layer = os::toUtf8(wall.line.layer());
  prism.name = prism.layer + "_" + handleText(wall.line.entity);
  if (wall.line.within) {
    prism.name += "_in_" + handleText(wall.line.within->entity);
  }
  if (wall.line.isPolylineSegment()) {
    prism.name += fmt::format("_{}", wall.line.segment);
  }
  std::replace(prism.name.begin(), prism.name.end(), ' ', '_');
  prism.startLeft = ends.ptStartLeft;
  prism.startMid = ends.ptStartMid;
  prism.startRight = ends.ptStartRight;
  prism.endRight = ends.ptEndRight;
  prism.endMid = ends.ptEndMid;
  prism.endLeft = ends.ptEndLeft;
  prism.height = height;
  prism.isStartFree = ends.bHasStartWall;
  prism.isEndFree = ends.bHasEndWall;
  prism.origin = {wall.line.start.x, wall.line.start.y};
  const AcGeVector2d run(wall.line.end.x - wall.line.start.x, wall.line.end.y - wall.line.start.y);
  prism.direction = run.length() > 0.0 ? run / run.length() : AcGeVector2d::kXAxis;
  return prism;
}

}  // namespace quoin::commands
