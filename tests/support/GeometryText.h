// Geometry as short text that prints itself back: "0,0 100,0" is a segment, segments are
// separated by "; " and a third coordinate is optional. Numbers print with all their digits.
#pragma once

#include <charconv>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "gepnt3d.h"

namespace quoin::test {

using PointPair = std::pair<AcGePoint3d, AcGePoint3d>;

inline std::string text(double value) {
  char buffer[40];
  const auto end = std::to_chars(buffer, buffer + sizeof buffer, value).ptr;
  return std::string(buffer, end);
}

inline std::string text(const AcGePoint3d& pt) {
  std::string result = text(pt.x) + "," + text(pt.y);
  if (pt.z != 0.0) {
    result += "," + text(pt.z);
  }
  return result;
}

inline std::string text(const AcGePoint3d& ptStart, const AcGePoint3d& ptEnd) {
  return text(ptStart) + " " + text(ptEnd);
}

/// The text of a list of records with ptStart and ptEnd.
template <class Records>
std::string textOfSegments(const Records& records) {
  std::string result;
  for (const auto* record : records) {
    result += (result.empty() ? "" : "; ") + text(record->ptStart, record->ptEnd);
  }
  return result;
}

namespace detail {
inline double takeNumber(std::string_view& rest) {
  double value = 0.0;
  const auto taken = std::from_chars(rest.data(), rest.data() + rest.size(), value);
  if (taken.ec != std::errc()) {
    throw std::invalid_argument("no number at '" + std::string(rest) + "'");
  }
  rest.remove_prefix(static_cast<std::size_t>(taken.ptr - rest.data()));
  return value;
}
inline void skip(std::string_view& rest, std::string_view characters) {
  while (!rest.empty() && characters.find(rest.front()) != std::string_view::npos) {
    rest.remove_prefix(1);
  }
}
inline AcGePoint3d takePoint(std::string_view& rest) {
  skip(rest, " ");
  AcGePoint3d pt;
  pt.x = takeNumber(rest);
  skip(rest, ",");
  pt.y = takeNumber(rest);
  if (!rest.empty() && rest.front() == ',') {
    skip(rest, ",");
    pt.z = takeNumber(rest);
  }
  return pt;
}
}  // namespace detail

inline AcGePoint3d point(std::string_view source) {
  return detail::takePoint(source);
}

inline std::vector<PointPair> segments(std::string_view source) {
  std::vector<PointPair> result;
  detail::skip(source, " ;");
  while (!source.empty()) {
    const AcGePoint3d ptStart = detail::takePoint(source);
    const AcGePoint3d ptEnd = detail::takePoint(source);
    result.emplace_back(ptStart, ptEnd);
    detail::skip(source, " ;");
  }
  return result;
}

}  // namespace quoin::test
