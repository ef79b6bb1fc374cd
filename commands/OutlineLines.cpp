#include "commands/OutlineLines.h"

#include <array>

#include "plan/PointIndex.h"

namespace quoin::commands {

namespace {

/// The connections of all outlines, to find those that are drawn twice: two walls that continue
/// each other are joined by the same line from both sides.
class Connections {
 public:
  explicit Connections(const std::vector<WallOutline>& outlines)
      : m_all(allOf(outlines)), m_starts(startsOf(m_all)), m_isKept(m_all.size(), false) {}

  /// Whether the next connection, in the order of the outlines, is one that was kept before.
  bool isNextKnown() {
    const std::size_t next = m_next++;
    const WallDrawingSeg& seg = m_all[next];
    bool isKnown = false;
    for (const AcGePoint3d& end : {seg.ptStart, seg.ptEnd}) {
      m_starts.visitIn(plan::PointBox(end, AcGeContext::gTol.equalPoint()), [&](std::size_t other) {
        isKnown = isKnown || (m_isKept[other] && isSame(m_all[other], seg));
      });
    }
    m_isKept[next] = !isKnown && !(seg.ptStart == seg.ptEnd);
    return isKnown;
  }

 private:
  static bool isSame(const WallDrawingSeg& a, const WallDrawingSeg& b) {
    return (a.ptStart == b.ptStart && a.ptEnd == b.ptEnd) ||
           (a.ptStart == b.ptEnd && a.ptEnd == b.ptStart);
  }
  static std::vector<WallDrawingSeg> allOf(const std::vector<WallOutline>& outlines) {
    std::vector<WallDrawingSeg> all;
    for (const WallOutline& outline : outlines) {
      all.insert(all.end(), outline.connections.begin(), outline.connections.end());
    }
    return all;
  }
  static std::vector<AcGePoint3d> startsOf(const std::vector<WallDrawingSeg>& segs) {
    std::vector<AcGePoint3d> starts;
    starts.reserve(segs.size());
    for (const WallDrawingSeg& seg : segs) {
      starts.push_back(seg.ptStart);
    }
    return starts;
  }

  std::vector<WallDrawingSeg> m_all;
  plan::PointIndex m_starts;
  std::vector<bool> m_isKept;
  std::size_t m_next = 0;
};

}  // namespace

const char* nameOf(LineRole role) {
  constexpr std::array<const char*, 6> kNames{"left", "right",      "start",
                                              "end",  "connection", "jamb"};
  return kNames[static_cast<std::size_t>(role)];
}

std::vector<OutlineLine> outlineLines(const std::vector<WallOutline>& outlines) {
  std::vector<PartedOutline> whole;
  whole.reserve(outlines.size());
  for (const WallOutline& outline : outlines) {
    whole.push_back({{outline.left}, {outline.right}, {}});
  }
  return outlineLines(outlines, whole);
}

std::vector<OutlineLine> outlineLines(const std::vector<WallOutline>& outlines,
                                      const std::vector<PartedOutline>& parted) {
  std::vector<OutlineLine> lines;
  Connections connections(outlines);
  const auto add = [&](std::size_t wall, LineRole role, const WallDrawingSeg& seg) {
    const bool isKnown = role == LineRole::Connection && connections.isNextKnown();
    if (!isKnown && !(seg.ptStart == seg.ptEnd)) {
      lines.push_back({wall, role, seg, ""});
    }
  };
  const auto addAll = [&](std::size_t wall, LineRole role,
                          const std::vector<WallDrawingSeg>& segs) {
    for (const WallDrawingSeg& seg : segs) {
      add(wall, role, seg);
    }
  };
  for (std::size_t i = 0; i < outlines.size(); ++i) {
    addAll(i, LineRole::Left, parted[i].left);
    addAll(i, LineRole::Right, parted[i].right);
    addAll(i, LineRole::Jamb, parted[i].jambs);
    if (outlines[i].start) {
      add(i, LineRole::Start, *outlines[i].start);
    }
    if (outlines[i].end) {
      add(i, LineRole::End, *outlines[i].end);
    }
    addAll(i, LineRole::Connection, outlines[i].connections);
  }
  return lines;
}

}  // namespace quoin::commands
