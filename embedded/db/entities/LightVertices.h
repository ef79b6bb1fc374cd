// The vertices of a light polyline inside its record.
#pragma once

#include <vector>

#include "embedded/db/records/SubclassLayout.h"
#include "hostpolyline.h"

namespace quoin::db {

/// Codes of light polylines alone.
namespace light {
inline constexpr int kX = 10;
inline constexpr int kY = 20;
inline constexpr int kConstantWidth = 43;
}  // namespace light

struct LightVertex : hostx::LightPolylineVertex {
  TagRange tags;  // from its x on
};

/// Calls `visit(const LightVertex&)` for each, in order, with the constant width where the record
/// has one.
template <class Visit>
void forEachLightVertex(const TagList& tags, Visit&& visit) {
  constexpr int kIdentifier = 91;
  const TagRange range = layout::kPolyline.in(tags);
  const double constantWidth = tags.number(light::kConstantWidth, range, 0.0);
  LightVertex vertex;
  bool isInside = false;
  const auto finish = [&] {
    if (!vertex.tags.isEmpty()) {
      visit(vertex);
    }
  };
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    if (code == light::kX && tags.isOwn(i)) {
      finish();
      vertex = {{{tags.doubleAt(i), 0.0}, 0.0, constantWidth, constantWidth}, {i, i + 1}};
      isInside = true;
      continue;
    }
    isInside = isInside && (code == light::kY || code == code::kStartWidth ||
                            code == code::kEndWidth || code == code::kBulge || code == kIdentifier);
    if (!isInside) {
      continue;
    }
    vertex.tags.last = i + 1;
    if (code == light::kY) {
      vertex.point.y = tags.doubleAt(i);
    } else if (code == code::kBulge) {
      vertex.bulge = tags.doubleAt(i);
    } else if (code == code::kStartWidth && constantWidth == 0.0) {
      vertex.startWidth = tags.doubleAt(i);
    } else if (code == code::kEndWidth && constantWidth == 0.0) {
      vertex.endWidth = tags.doubleAt(i);
    }
  }
  finish();
}

/// In order, with the constant width where the record has one.
std::vector<LightVertex> lightVerticesOf(const TagList& tags);

}  // namespace quoin::db
