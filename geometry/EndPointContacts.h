// Which end point of another line is near each end point of a set of lines: found for all of them
// in one pass over the columns of an index. Not exported.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "CaptureBox.h"
#include "EndPointIndex.h"

class CEndPointContacts {
 public:
  using End = CEndPointColumns::End;
  static constexpr std::uint32_t kNone = CEndPointColumns::kNone;
  /// More than one end of another line is near.
  static constexpr std::uint32_t kAmbiguous = 0xFFFFFFFE;

  /// `index`: one for points.
  CEndPointContacts(const CEndPointIndex& index, double captureDistance)
      : m_index(index), m_captureDistance(captureDistance) {}

  /// For every end, column by column, calls visit(end, contact): the index of the one end of
  /// another line near it, or kNone, or kAmbiguous.
  template <class Visit>
  void VisitAll(Visit visit) const {
    std::vector<End> byX;
    for (std::size_t column = 0; column < m_index.ColumnCount(); ++column) {
      const double margin = MarginInColumn(column);
      std::span<const End> left = m_index.EndsOfColumn(column);
      while (!left.empty()) {
        // What a gap parts in y has no contact across it.
        std::size_t count = 1;
        while (count < left.size() && left[count].y - left[count - 1].y <= margin) {
          ++count;
        }
        const std::span<const End> group = left.first(count);
        left = left.subspan(count);
        if (IsAlongX(group)) {
          byX.assign(group.begin(), group.end());
          if (group.front().y < group.back().y) {
            std::sort(byX.begin(), byX.end(), [](const End& a, const End& b) {
              return a.x < b.x || (a.x == b.x && a.y < b.y);
            });
          }
          VisitGroup(column, byX, &End::x, &End::y, margin, visit);
        } else {
          VisitGroup(column, group, &End::y, &End::x, margin, visit);
        }
      }
    }
  }

 private:
  /// How far an end of the column may lie from what is near it, in x or y.
  double MarginInColumn(std::size_t column) const {
    const std::span<const End> ends = m_index.EndsOfColumn(column);
    return CCaptureBox::Margin(
        std::max(std::max(std::fabs(m_index.MinXOf(column)), std::fabs(m_index.MaxXOf(column))),
                 std::max(std::fabs(ends.front().y), std::fabs(ends.back().y))),
        m_captureDistance);
  }

  /// Whether the group, which stands in the order of y, extends further in x.
  static bool IsAlongX(std::span<const End> group) {
    constexpr std::size_t kFew = 4;
    if (group.size() <= kFew) {
      return false;
    }
    double minX = group.front().x;
    double maxX = minX;
    for (const End& end : group) {
      minX = std::min(minX, end.x);
      maxX = std::max(maxX, end.x);
    }
    return maxX - minX > group.back().y - group.front().y;
  }

  /// The contacts of ends in the order of one coordinate. Nearly always they are all within the
  /// group, a few steps up and down from the end itself.
  template <class Visit>
  void VisitGroup(std::size_t column, std::span<const End> group, double End::*along,
                  double End::*across, double margin, Visit& visit) const {
    const bool hasLeft = column > 0;
    const bool hasRight = column + 1 < m_index.ColumnCount();
    const double leftX = hasLeft ? m_index.MaxXOf(column - 1) + margin : 0.0;
    const double rightX = hasRight ? m_index.MinXOf(column + 1) - margin : 0.0;
    for (std::size_t own = 0; own < group.size(); ++own) {
      const End& end = group[own];
      std::uint32_t contact = kNone;
      const auto meet = [&](std::uint32_t index) {
        if (CEndPointColumns::LineOf(index) != end.Line()) {
          contact = contact == kNone ? index : kAmbiguous;
        }
        return contact != kAmbiguous;
      };
      if ((hasLeft && end.x <= leftX) || (hasRight && end.x >= rightX)) {
        m_index.VisitNear(CCaptureBox(AcGePoint3d(end.x, end.y, 0.0), m_captureDistance), column,
                          meet);
        visit(end, contact);
        continue;
      }
      bool more = true;
      for (std::size_t i = own; more && i-- > 0 && end.*along - group[i].*along <= margin;) {
        if (std::fabs(group[i].*across - end.*across) <= margin) {
          more = meet(group[i].index);
        }
      }
      for (std::size_t i = own + 1;
           more && i < group.size() && group[i].*along - end.*along <= margin; ++i) {
        if (std::fabs(group[i].*across - end.*across) <= margin) {
          more = meet(group[i].index);
        }
      }
      visit(end, contact);
    }
  }

  const CEndPointIndex& m_index;
  double m_captureDistance;
};
