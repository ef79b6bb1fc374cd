// Boxes arranged so that those that meet another are found without looking at the rest: a packed
// tree of bounding boxes. The largest are kept in branches of their own, since one long line would
// widen the boxes of all its neighbours.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

struct PlaneBox {
  double minX;
  double minY;
  double maxX;
  double maxY;

  static PlaneBox of(const AcGePoint2d& a, const AcGePoint2d& b);
  static PlaneBox around(const AcGePoint2d& at, double distance);
  bool meets(const PlaneBox& other) const {
    return minX <= other.maxX && maxX >= other.minX && minY <= other.maxY && maxY >= other.minY;
  }
  void include(const PlaneBox& other);
};

/// The indices of boxes with finite corners in an order in which those near each other are near,
/// the largest last.
std::vector<std::uint32_t> spatialOrder(const std::vector<PlaneBox>& boxes);

class BoxTree {
 public:
  BoxTree() = default;
  /// The boxes have finite corners, and there are fewer than 2^32.
  explicit BoxTree(const std::vector<PlaneBox>& boxes);

  /// Calls visit(index) for the boxes that meet this one, borders included, in no order that means
  /// anything.
  template <class Visit>
  void visitMeeting(const PlaneBox& box, Visit visit) const {
    if (m_levels.empty()) {
      return;
    }
    struct Place {
      std::uint32_t level;
      std::size_t index;
    };
    // A level adds at most all children of one node.
    std::array<Place, (kFanOut - 1) * kMostLevels + 1> stack;
    std::size_t depth = 0;
    stack[depth++] = {static_cast<std::uint32_t>(m_levels.size() - 1), 0};
    while (depth > 0) {
      const Place place = stack[--depth];
      const std::vector<PlaneBox>& level = m_levels[place.level];
      const std::size_t last = std::min(place.index + kFanOut, level.size());
      for (std::size_t i = place.index; i < last; ++i) {
        if (!level[i].meets(box)) {
          continue;
        }
        if (place.level == 0) {
          visit(static_cast<std::size_t>(m_order[i]));
        } else {
          stack[depth++] = {place.level - 1, i * kFanOut};
        }
      }
    }
  }

 private:
  static constexpr std::size_t kFanOut = 8;
  static constexpr std::size_t kMostLevels = 12;  // 8^11 > 2^32

  /// m_levels[0] are the boxes in the tree's order, each box of the next holds kFanOut of them; the
  /// last level has kFanOut at most.
  std::vector<std::vector<PlaneBox>> m_levels;
  std::vector<std::uint32_t> m_order;
};

}  // namespace quoin::plan
