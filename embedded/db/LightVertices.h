// The vertices of a light polyline inside its record.
#pragma once

#include <vector>

#include "embedded/db/Places.h"
#include "gepnt2d.h"

namespace quoin::db {

struct LightVertex {
  AcGePoint2d point;
  double bulge = 0.0;
  double startWidth = 0.0;
  double endWidth = 0.0;
  TagRange tags;  // from its x on
};

/// Calls `visit(const LightVertex&)` for each, in order, with the constant width where the record
/// has one.
template <class Visit>
void forEachLightVertex(const TagList& tags, Visit&& visit) {
  constexpr int kX = 10;
  constexpr int kY = 20;
  constexpr int kStartWidth = 40;
  constexpr int kEndWidth = 41;
  constexpr int kBulge = 42;
  constexpr int kConstantWidth = 43;
  constexpr int kIdentifier = 91;
  const TagRange range = place::kPolyline.in(tags);
  const double constantWidth = tags.number(kConstantWidth, range, 0.0);
  LightVertex vertex;
  bool isInside = false;
  const auto finish = [&] {
    if (!vertex.tags.isEmpty()) {
      visit(vertex);
    }
  };
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    if (code == kX && tags.isOwn(i)) {
      finish();
      vertex = {{tags.doubleAt(i), 0.0}, 0.0, constantWidth, constantWidth, {i, i + 1}};
      isInside = true;
      continue;
    }
    isInside = isInside && (code == kY || code == kStartWidth || code == kEndWidth ||
                            code == kBulge || code == kIdentifier);
    if (!isInside) {
      continue;
    }
    vertex.tags.last = i + 1;
    if (code == kY) {
      vertex.point.y = tags.doubleAt(i);
    } else if (code == kBulge) {
      vertex.bulge = tags.doubleAt(i);
    } else if (code == kStartWidth && constantWidth == 0.0) {
      vertex.startWidth = tags.doubleAt(i);
    } else if (code == kEndWidth && constantWidth == 0.0) {
      vertex.endWidth = tags.doubleAt(i);
    }
  }
  finish();
}

/// In order, with the constant width where the record has one.
std::vector<LightVertex> lightVerticesOf(const TagList& tags);

}  // namespace quoin::db
