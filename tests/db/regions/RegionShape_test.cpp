// Intersections of regions against GEOS's overlay of the same polygons, bit for bit.
#include <geos_c.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <utility>
#include <vector>

#include "dbents.h"
#include "dbregion.h"

namespace {

using Corner = std::pair<double, double>;
using Outline = std::vector<Corner>;

// --- regions ------------------------------------------------------------------------------------

std::unique_ptr<AcDbRegion> regionOf(const Outline& outline) {
  std::vector<std::unique_ptr<AcDbLine>> lines;
  AcDbVoidPtrArray curves;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const auto& [x1, y1] = outline[i];
    const auto& [x2, y2] = outline[(i + 1) % outline.size()];
    lines.push_back(std::make_unique<AcDbLine>(AcGePoint3d(x1, y1, 0.0), AcGePoint3d(x2, y2, 0.0)));
    curves.append(lines.back().get());
  }
  AcDbVoidPtrArray regions;
  AcDbRegion::createFromCurves(curves, regions);
  std::unique_ptr<AcDbRegion> first;
  for (int i = 0; i < regions.length(); ++i) {
    std::unique_ptr<AcDbRegion> region(static_cast<AcDbRegion*>(regions[i]));
    if (i == 0) {
      first = std::move(region);
    }
  }
  return first;
}

/// The outlines of a region's faces in the order in which it explodes.
std::vector<Outline> outlinesOf(const AcDbRegion& region) {
  AcDbVoidPtrArray pieces;
  region.explode(pieces);
  std::vector<Outline> outlines;
  Outline own;
  for (int i = 0; i < pieces.length(); ++i) {
    const std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(pieces[i]));
    if (const AcDbLine* const line = AcDbLine::cast(piece.get())) {
      own.emplace_back(line->startPoint().x, line->startPoint().y);
    } else if (const AcDbRegion* const face = AcDbRegion::cast(piece.get())) {
      const std::vector<Outline> more = outlinesOf(*face);
      outlines.insert(outlines.end(), more.begin(), more.end());
    }
  }
  if (!own.empty()) {
    outlines.push_back(std::move(own));
  }
  return outlines;
}

// --- the same by GEOS ---------------------------------------------------------------------------

class Overlay {
 public:
  Overlay() : m_context(GEOS_init_r()) {}
  ~Overlay() { GEOS_finish_r(m_context); }
  Overlay(const Overlay&) = delete;
  Overlay& operator=(const Overlay&) = delete;

  /// The outlines of the intersection in the order of exploding: each counter-clockwise from its
  /// smallest corner, and the smallest first.
  std::vector<Outline> intersection(const Outline& own, const Outline& other) const {
    GEOSGeometry* const ownPolygon = polygonOf(own);
    GEOSGeometry* const otherPolygon = polygonOf(fromSmallest(other));
    GEOSGeometry* const result = GEOSIntersection_r(m_context, ownPolygon, otherPolygon);
    std::vector<Outline> outlines;
    collect(result, outlines);
    std::sort(outlines.begin(), outlines.end());
    for (GEOSGeometry* const geometry : {ownPolygon, otherPolygon, result}) {
      GEOSGeom_destroy_r(m_context, geometry);
    }
    return outlines;
  }

 private:
  GEOSGeometry* polygonOf(Outline outline) const {
    outline.push_back(outline.front());
    return GEOSGeom_createPolygon_r(
        m_context,
        GEOSGeom_createLinearRing_r(
            m_context, GEOSCoordSeq_copyFromBuffer_r(m_context, &outline.front().first,
                                                     static_cast<unsigned>(outline.size()), 0, 0)),
        nullptr, 0);
  }
  static Outline fromSmallest(Outline outline) {
    double doubleArea = 0.0;
    for (std::size_t i = 0; i < outline.size(); ++i) {
      const auto& [x1, y1] = outline[i];
      const auto& [x2, y2] = outline[(i + 1) % outline.size()];
      doubleArea += (x1 - outline[0].first) * (y2 - outline[0].second) -
                    (x2 - outline[0].first) * (y1 - outline[0].second);
    }
    if (doubleArea < 0.0) {
      std::reverse(outline.begin(), outline.end());
    }
    std::rotate(outline.begin(), std::min_element(outline.begin(), outline.end()), outline.end());
    return outline;
  }
  void collect(const GEOSGeometry* geometry, std::vector<Outline>& outlines) const {
    if (GEOSGeomTypeId_r(m_context, geometry) == GEOS_POLYGON) {
      if (GEOSisEmpty_r(m_context, geometry) == 0) {
        const GEOSCoordSequence* const points =
            GEOSGeom_getCoordSeq_r(m_context, GEOSGetExteriorRing_r(m_context, geometry));
        unsigned count = 0;
        GEOSCoordSeq_getSize_r(m_context, points, &count);
        Outline outline(count);
        GEOSCoordSeq_copyToBuffer_r(m_context, points, &outline.front().first, 0, 0);
        outline.pop_back();
        outlines.push_back(fromSmallest(std::move(outline)));
      }
      return;
    }
    for (int i = 0; i < GEOSGetNumGeometries_r(m_context, geometry); ++i) {
      const GEOSGeometry* const part = GEOSGetGeometryN_r(m_context, geometry, i);
      if (part != geometry) {
        collect(part, outlines);
      }
    }
  }

  GEOSContextHandle_t m_context;
};

// --- outlines -----------------------------------------------------------------------------------

using Random = std::mt19937_64;

double uniform(Random& random, double from, double to) {
  return std::uniform_real_distribution<double>(from, to)(random);
}

/// Round a middle, with edges of all lengths.
Outline star(Random& random, double x, double y, std::size_t corners, double roughness) {
  Outline outline;
  for (std::size_t i = 0; i < corners; ++i) {
    const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(corners);
    const double radius = 100.0 * (1.0 + uniform(random, -roughness, roughness));
    outline.emplace_back(x + radius * std::cos(angle), y + radius * std::sin(angle));
  }
  return outline;
}

/// Teeth up and down: two of these cross in many places and fall into many pieces.
Outline comb(Random& random, double x, double y, std::size_t teeth, bool isVertical) {
  Outline outline;
  for (std::size_t i = 0; i < teeth; ++i) {
    outline.emplace_back(x + 20.0 * static_cast<double>(i), y + uniform(random, 60.0, 90.0));
    outline.emplace_back(x + 20.0 * static_cast<double>(i) + 10.0, y + uniform(random, 5.0, 25.0));
  }
  outline.emplace_back(x + 20.0 * static_cast<double>(teeth), y - 10.0);
  outline.emplace_back(x, y - uniform(random, 5.0, 15.0));
  if (isVertical) {
    for (auto& [cornerX, cornerY] : outline) {
      std::swap(cornerX, cornerY);
    }
  }
  return outline;
}

Outline rectangle(Random& random) {
  // On a lattice, so that edges and corners often lie on each other.
  const auto place = [&] { return static_cast<double>(random() % 7); };
  const double x = place();
  const double y = place();
  const double width = 1.0 + place();
  const double height = 1.0 + place();
  return {{x, y}, {x + width, y}, {x + width, y + height}, {x, y + height}};
}

Outline anyOutline(Random& random) {
  switch (random() % 5) {
    case 0:
      return star(random, uniform(random, -150.0, 150.0), uniform(random, -150.0, 150.0),
                  3 + random() % 60, 0.5);
    case 1:
      return star(random, 0.0, 0.0, 3 + random() % 60, 0.02);
    case 2:
      return comb(random, uniform(random, -100.0, 0.0), uniform(random, -50.0, 0.0),
                  2 + random() % 20, random() % 2 == 0);
    case 3:
      return rectangle(random);
    default:
      return star(random, uniform(random, -5.0, 5.0), uniform(random, -5.0, 5.0), 3 + random() % 9,
                  0.9);
  }
}

/// Round the other way, or begun elsewhere.
void turn(Random& random, Outline& outline) {
  if (random() % 2 == 0) {
    std::reverse(outline.begin(), outline.end());
  }
  std::rotate(outline.begin(),
              outline.begin() + static_cast<std::ptrdiff_t>(random() % outline.size()),
              outline.end());
}

/// Whether two corners are one to the host, which then leaves the edge between them out.
bool hasEdgeWithoutLength(const Outline& outline) {
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const auto& [x1, y1] = outline[i];
    const auto& [x2, y2] = outline[(i + 1) % outline.size()];
    if (AcGePoint3d(x1, y1, 0.0).isEqualTo(AcGePoint3d(x2, y2, 0.0))) {
      return true;
    }
  }
  return false;
}

TEST(RegionIntersection, HasTheBitsOfAnOverlay) {
  const Overlay overlay;
  Random random(61);
  std::size_t compared = 0;
  std::size_t pieces = 0;
  std::size_t empty = 0;
  for (int round = 0; round < 2000; ++round) {
    Outline own = anyOutline(random);
    Outline other = anyOutline(random);
    if (round % 16 == 1) {
      const double offset = std::pow(10.0, static_cast<double>(3 + random() % 7));
      for (Outline* const outline : {&own, &other}) {
        for (auto& [x, y] : *outline) {
          x += offset;
          y -= offset;
        }
      }
    }
    turn(random, own);
    turn(random, other);
    const auto region = regionOf(own);
    const auto operand = regionOf(other);
    if (!region || !operand || hasEdgeWithoutLength(own) || hasEdgeWithoutLength(other)) {
      continue;  // also where one crosses itself
    }
    ASSERT_EQ(region->booleanOper(AcDb::kBoolIntersect, operand.get()), Acad::eOk);
    const std::vector<Outline> wanted = overlay.intersection(own, other);
    ASSERT_EQ(outlinesOf(*region), wanted) << "round " << round;
    ++compared;
    pieces += wanted.size();
    empty += wanted.empty() ? 1 : 0;
  }
  EXPECT_GT(compared, 1500U);
  EXPECT_GT(pieces, compared);
  EXPECT_GT(empty, 50U);
}

TEST(RegionIntersection, OfAnIntersectionHasTheBitsOfAnOverlay) {
  const Overlay overlay;
  Random random(62);
  std::size_t compared = 0;
  for (int round = 0; round < 300; ++round) {
    const Outline own = star(random, 0.0, 0.0, 5 + random() % 40, 0.3);
    const Outline second = star(random, 40.0, 10.0, 5 + random() % 40, 0.3);
    const Outline third = star(random, 10.0, 50.0, 5 + random() % 40, 0.3);
    const std::vector<Outline> between = overlay.intersection(own, second);
    if (between.size() != 1) {
      continue;
    }
    const auto region = regionOf(own);
    region->booleanOper(AcDb::kBoolIntersect, regionOf(second).get());
    region->booleanOper(AcDb::kBoolIntersect, regionOf(third).get());
    // The overlay returns outlines clockwise, and goes on with them so.
    Outline clockwise = between.front();
    std::reverse(clockwise.begin(), clockwise.end());
    ASSERT_EQ(outlinesOf(*region), overlay.intersection(clockwise, third)) << "round " << round;
    ++compared;
  }
  EXPECT_GT(compared, 200U);
}

}  // namespace
