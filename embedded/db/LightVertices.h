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

/// In order, with the constant width where the record has one.
std::vector<LightVertex> lightVerticesOf(const TagList& tags);

}  // namespace quoin::db
