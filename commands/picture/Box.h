// A box in the plane that grows with the points added to it.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

#include "gepnt2d.h"

namespace quoin::commands {

struct Box {
  double minX = std::numeric_limits<double>::infinity();
  double minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity();
  double maxY = -std::numeric_limits<double>::infinity();

  void add(double x, double y) {
    // Farther out the size of the box and what is worked out from it would overflow.
    constexpr double kFarthest = 1.0e150;
    if (std::fabs(x) <= kFarthest && std::fabs(y) <= kFarthest) {
      minX = std::min(minX, x);
      minY = std::min(minY, y);
      maxX = std::max(maxX, x);
      maxY = std::max(maxY, y);
    }
  }
  void add(const AcGePoint2d& point) { add(point.x, point.y); }
  void add(const Box& other) {
    if (!other.isEmpty()) {
      add(other.minX, other.minY);
      add(other.maxX, other.maxY);
    }
  }
  bool isEmpty() const { return !(minX <= maxX && minY <= maxY); }
  double width() const { return maxX - minX; }
  double height() const { return maxY - minY; }
  Box grownBy(double edge) const { return {minX - edge, minY - edge, maxX + edge, maxY + edge}; }
  bool contains(double x, double y) const {
    return x >= minX && x <= maxX && y >= minY && y <= maxY;
  }
  bool touches(const Box& other) const {
    return other.minX <= maxX && other.maxX >= minX && other.minY <= maxY && other.maxY >= minY;
  }
};

}  // namespace quoin::commands
