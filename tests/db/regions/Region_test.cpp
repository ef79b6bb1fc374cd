// AcDbRegion: from curves to regions, set operations, and back to lines.
#include "dbregion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "dbpl.h"
#include "support/Drawings.h"
#include "support/GeometryText.h"

namespace {

using quoin::test::segments;
using quoin::test::text;

using Region = std::unique_ptr<AcDbRegion>;
using Regions = std::vector<Region>;

struct Made {
  Regions regions;
  Acad::ErrorStatus status;
};

Made fromCurves(const std::vector<AcDbEntity*>& curves) {
  AcDbVoidPtrArray array;
  for (AcDbEntity* const curve : curves) {
    array.append(curve);
  }
  AcDbVoidPtrArray pieces;
  Made made;
  made.status = AcDbRegion::createFromCurves(array, pieces);
  for (int i = 0; i < pieces.length(); ++i) {
    made.regions.emplace_back(static_cast<AcDbRegion*>(pieces[i]));
  }
  for (AcDbEntity* const curve : curves) {
    delete curve;
  }
  return made;
}

/// "0,0 10,0; 10,0 10,10; ..."
Made fromLines(const std::string& lines) {
  std::vector<AcDbEntity*> curves;
  for (const auto& [start, end] : segments(lines)) {
    curves.push_back(new AcDbLine(start, end));
  }
  return fromCurves(curves);
}

/// The polygon with these corners, "0,0; 10,0; 10,10".
Made polygon(const std::vector<AcGePoint3d>& corners) {
  std::vector<AcDbEntity*> curves;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    curves.push_back(new AcDbLine(corners[i], corners[(i + 1) % corners.size()]));
  }
  return fromCurves(curves);
}

Region rectangle(double x1, double y1, double x2, double y2, double z = 0.0) {
  Made made = polygon({{x1, y1, z}, {x2, y1, z}, {x2, y2, z}, {x1, y2, z}});
  EXPECT_EQ(made.status, Acad::eOk);
  return made.regions.empty() ? nullptr : std::move(made.regions.front());
}

/// The lines and the number of regions that a region explodes into.
std::string exploded(const AcDbRegion& region) {
  AcDbVoidPtrArray pieces;
  EXPECT_EQ(region.explode(pieces), Acad::eOk);
  std::string result;
  for (int i = 0; i < pieces.length(); ++i) {
    const std::unique_ptr<AcDbEntity> piece(static_cast<AcDbEntity*>(pieces[i]));
    if (const AcDbLine* const line = AcDbLine::cast(piece.get())) {
      result += text(line->startPoint(), line->endPoint()) + "; ";
    } else if (const AcDbRegion* const face = AcDbRegion::cast(piece.get())) {
      result += "[ " + exploded(*face) + "] ";
    }
  }
  return result;
}

double areaOf(const AcDbRegion& region) {
  double area = -1.0;
  EXPECT_EQ(region.getArea(area), Acad::eOk);
  return area;
}

std::string lines(const std::string& source) {
  std::string result;
  for (const auto& [start, end] : segments(source)) {
    result += text(start, end) + "; ";
  }
  return result;
}

// --- from curves --------------------------------------------------------------------------------

TEST(Region, OfASquareExplodesCounterClockwiseFromTheLowestLeftCorner) {
  const Made made = fromLines("10,0 10,10; 10,10 0,10; 0,10 0,0; 0,0 10,0");
  EXPECT_EQ(made.status, Acad::eOk);
  ASSERT_EQ(made.regions.size(), 1u);
  EXPECT_EQ(exploded(*made.regions[0]), lines("0,0 10,0; 10,0 10,10; 10,10 0,10; 0,10 0,0"));
  EXPECT_EQ(areaOf(*made.regions[0]), 100.0);
}

TEST(Region, TakesLinesInAnyOrderAndSense) {
  const Made made = fromLines("10,10 10,0; 0,10 0,0; 0,0 10,0; 0,10 10,10");
  ASSERT_EQ(made.regions.size(), 1u);
  EXPECT_EQ(exploded(*made.regions[0]), lines("0,0 10,0; 10,0 10,10; 10,10 0,10; 0,10 0,0"));
}

TEST(Region, PassesOverLinesWithoutLength) {
  const Made made = fromLines("0,0 10,0; 10,0 10,0; 10,0 0,10; 0,10 0,0");
  EXPECT_EQ(made.status, Acad::eOk);
  EXPECT_EQ(made.regions.size(), 1u);
}

TEST(Region, EveryClosedLoopIsARegionOfItsOwn) {
  const Made made = fromLines("0,0 1,0; 5,5 6,5; 1,0 0,1; 6,5 5,6; 0,1 0,0; 5,6 5,5");
  EXPECT_EQ(made.status, Acad::eOk);
  ASSERT_EQ(made.regions.size(), 2u);
  EXPECT_EQ(exploded(*made.regions[0]), lines("0,0 1,0; 1,0 0,1; 0,1 0,0"));
}

TEST(Region, ACircleIsAPolygonOfAlmostItsArea) {
  const Made made = fromCurves({new AcDbCircle(AcGePoint3d(1, 2, 3), AcGeVector3d::kZAxis, 10)});
  ASSERT_EQ(made.regions.size(), 1u);
  const double circle = 100.0 * std::acos(-1.0);
  EXPECT_LT(areaOf(*made.regions[0]), circle);
  EXPECT_GT(areaOf(*made.regions[0]), circle * 0.9998);
}

TEST(Region, AnArcAndItsChordEncloseOne) {
  const Made made = fromCurves({new AcDbArc(AcGePoint3d(), 10.0, 0.0, std::acos(-1.0)),
                                new AcDbLine(AcGePoint3d(-10, 0, 0), AcGePoint3d(10, 0, 0))});
  EXPECT_EQ(made.status, Acad::eOk);
  ASSERT_EQ(made.regions.size(), 1u);
  EXPECT_NEAR(areaOf(*made.regions[0]), 50.0 * std::acos(-1.0), 0.02);
}

TEST(Region, APolylineMayBeAWholeLoopOrAPartOfOne) {
  auto* const square = new AcDbPolyline(4);
  const double corners[][2] = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
  for (unsigned int i = 0; i < 4; ++i) {
    square->addVertexAt(i, AcGePoint2d(corners[i][0], corners[i][1]), i == 1 ? 1.0 : 0.0);
  }
  square->setClosed(true);
  square->setElevation(3.0);
  auto* const open = new AcDbPolyline(3);
  open->addVertexAt(0, AcGePoint2d(50, 0));
  open->addVertexAt(1, AcGePoint2d(60, 0));
  open->addVertexAt(2, AcGePoint2d(60, 10));
  const Made made =
      fromCurves({square, open, new AcDbLine(AcGePoint3d(60, 10, 0), AcGePoint3d(50, 0, 0))});
  EXPECT_EQ(made.status, Acad::eOk);
  ASSERT_EQ(made.regions.size(), 2u);
  // A half circle of radius 5 bulges out of the square's right side.
  EXPECT_NEAR(areaOf(*made.regions[0]), 100.0 + 12.5 * std::acos(-1.0), 0.01);
  AcDbExtents extents;
  made.regions[0]->getGeomExtents(extents);
  EXPECT_EQ(extents.minPoint().z, 3.0);
  EXPECT_NEAR(extents.maxPoint().x, 15.0, 1e-2);
  EXPECT_EQ(areaOf(*made.regions[1]), 50.0);
}

TEST(Region, OpenCurvesGiveNone) {
  const Made made = fromLines("0,0 10,0; 10,0 10,10; 10,10 0,10");
  EXPECT_EQ(made.status, Acad::eNotClosedCurve);
  EXPECT_TRUE(made.regions.empty());
}

TEST(Region, CurvesOffAPlaneGiveNone) {
  const Made made = polygon({{0, 0, 0}, {10, 0, 0}, {10, 10, 5}, {0, 10, 0}});
  EXPECT_EQ(made.status, Acad::eNonCoplanarGeometry);
  EXPECT_TRUE(made.regions.empty());
}

TEST(Region, ABoundaryThatCrossesItselfGivesNone) {
  const Made made = polygon({{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}});
  EXPECT_EQ(made.status, Acad::eSelfIntersecting);
  EXPECT_TRUE(made.regions.empty());
}

TEST(Region, ABoundaryThatGoesRoundTwiceGivesNone) {
  // A star drawn in one stroke: every edge turns the same way about the middle, but in two turns.
  std::vector<AcGePoint3d> corners;
  for (int i = 0; i < 5; ++i) {
    const double angle = 4.0 * 3.14159265358979 * i / 5.0;
    corners.emplace_back(100.0 * std::cos(angle), 100.0 * std::sin(angle), 0.0);
  }
  EXPECT_EQ(polygon(corners).status, Acad::eSelfIntersecting);
  std::reverse(corners.begin(), corners.end());
  EXPECT_EQ(polygon(corners).status, Acad::eSelfIntersecting);
}

/// Whether no two edges of a polygon with integer corners share a point but neighbours their
/// corner: every pair of edges compared, in integers.
bool isSimple(const std::vector<AcGePoint3d>& corners) {
  const auto side = [](const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c) {
    const double cross = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
    return cross > 0.0 ? 1 : cross < 0.0 ? -1 : 0;
  };
  const auto isOn = [&](const AcGePoint3d& pt, const AcGePoint3d& a, const AcGePoint3d& b) {
    return side(a, b, pt) == 0 && std::min(a.x, b.x) <= pt.x && pt.x <= std::max(a.x, b.x) &&
           std::min(a.y, b.y) <= pt.y && pt.y <= std::max(a.y, b.y);
  };
  const std::size_t count = corners.size();
  for (std::size_t i = 0; i < count; ++i) {
    const AcGePoint3d& a = corners[i];
    const AcGePoint3d& b = corners[(i + 1) % count];
    for (std::size_t j = 0; j < count; ++j) {
      const AcGePoint3d& c = corners[j];
      const AcGePoint3d& d = corners[(j + 1) % count];
      if (j != i && j != (i + 1) % count && isOn(c, a, b)) {
        return false;  // a corner on another edge
      }
      if (side(a, b, c) * side(a, b, d) < 0 && side(c, d, a) * side(c, d, b) < 0) {
        return false;
      }
    }
  }
  return true;
}

std::string described(const std::vector<AcGePoint3d>& corners) {
  std::string description;
  for (const AcGePoint3d& corner : corners) {
    description += text(corner) + "; ";
  }
  return description;
}

TEST(Region, IsMadeExactlyOfBoundariesThatMeetThemselvesNowhere) {
  std::mt19937_64 random(94);
  int simple = 0;
  int others = 0;
  for (int round = 0; round < 40000; ++round) {
    std::uniform_int_distribution<int> lattice(-3 - round % 20, 3 + round % 20);
    std::vector<AcGePoint3d> corners;
    for (std::size_t count = 4 + random() % 9; corners.size() < count;) {
      const AcGePoint3d corner(lattice(random), lattice(random), 0.0);
      if (std::none_of(corners.begin(), corners.end(),
                       [&](const AcGePoint3d& other) { return other.isEqualTo(corner); })) {
        corners.push_back(corner);
      }
    }
    if (round % 4 != 0) {
      // Mostly round the middle, as outlines are; sometimes with two corners out of turn.
      std::sort(corners.begin(), corners.end(), [](const AcGePoint3d& a, const AcGePoint3d& b) {
        return std::atan2(a.y - 0.25, a.x - 0.25) < std::atan2(b.y - 0.25, b.x - 0.25);
      });
      if (round % 4 == 1) {
        std::swap(corners[random() % corners.size()], corners[random() % corners.size()]);
      }
      if (random() % 2 == 0) {
        std::reverse(corners.begin(), corners.end());
      }
    }
    const bool isWanted = isSimple(corners);
    (isWanted ? simple : others) += 1;
    ASSERT_EQ(polygon(corners).status == Acad::eOk, isWanted) << described(corners);
  }
  EXPECT_GT(simple, 10000);
  EXPECT_GT(others, 5000);
}

TEST(Region, ABoundaryWithoutAreaGivesNone) {
  EXPECT_EQ(polygon({{0, 0, 0}, {10, 0, 0}, {5, 0, 0}}).status, Acad::eDegenerateGeometry);
  EXPECT_EQ(polygon({{0, 0, 0}, {10, 0, 0}}).status, Acad::eDegenerateGeometry);
  EXPECT_EQ(polygon({{3, 3, 3}}).status, Acad::eInvalidInput);
  EXPECT_EQ(polygon({}).status, Acad::eInvalidInput);
}

TEST(Region, RefusesOtherEntities) {
  EXPECT_EQ(fromCurves({new AcDbPoint(AcGePoint3d())}).status, Acad::eInvalidInput);
}

TEST(Region, OneBadLoopDoesNotKeepTheOthersBack) {
  const Made made = fromLines("0,0 1,0; 5,5 6,5; 6,5 5,6; 5,6 5,5");
  EXPECT_EQ(made.status, Acad::eNotClosedCurve);
  EXPECT_EQ(made.regions.size(), 1u);
}

// --- set operations -----------------------------------------------------------------------------

TEST(Region, IntersectsUnitesAndSubtracts) {
  const struct {
    AcDb::BoolOperType operation;
    const char* result;
  } cases[] = {
      {AcDb::kBoolIntersect, "4,2 10,2; 10,2 10,10; 10,10 4,10; 4,10 4,2"},
      {AcDb::kBoolUnite,
       "0,0 10,0; 10,0 10,2; 10,2 14,2; 14,2 14,12; 14,12 4,12; 4,12 4,10; 4,10 0,10; 0,10 0,0"},
      {AcDb::kBoolSubtract, "0,0 10,0; 10,0 10,2; 10,2 4,2; 4,2 4,10; 4,10 0,10; 0,10 0,0"},
  };
  for (const auto& one : cases) {
    const Region region = rectangle(0, 0, 10, 10);
    const Region other = rectangle(4, 2, 14, 12);
    ASSERT_EQ(region->booleanOper(one.operation, other.get()), Acad::eOk);
    EXPECT_EQ(exploded(*region), lines(one.result));
    EXPECT_TRUE(other->isNull());
  }
}

TEST(Region, DisjointOnesLeaveNothingOfTheirIntersection) {
  const Region region = rectangle(0, 0, 1, 1);
  const Region other = rectangle(5, 5, 6, 6);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolIntersect, other.get()), Acad::eOk);
  EXPECT_TRUE(region->isNull());
  EXPECT_EQ(exploded(*region), "");
  AcDbExtents extents;
  EXPECT_EQ(region->getGeomExtents(extents), Acad::eNullExtents);
}

TEST(Region, OnesThatTouchInAnEdgeHaveNoIntersection) {
  const Region region = rectangle(0, 0, 1, 1);
  const Region other = rectangle(1, 0, 2, 1);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolIntersect, other.get()), Acad::eOk);
  EXPECT_TRUE(region->isNull());
}

TEST(Region, AHoleRunsClockwiseBehindTheOuterBoundary) {
  const Region region = rectangle(0, 0, 9, 9);
  const Region other = rectangle(3, 3, 6, 6);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolSubtract, other.get()), Acad::eOk);
  EXPECT_EQ(exploded(*region), lines("0,0 9,0; 9,0 9,9; 9,9 0,9; 0,9 0,0; "
                                     "3,3 3,6; 3,6 6,6; 6,6 6,3; 6,3 3,3"));
  EXPECT_EQ(areaOf(*region), 72.0);
}

TEST(Region, OfSeveralFacesExplodesIntoRegions) {
  const Region region = rectangle(5, 0, 6, 1);
  const Region other = rectangle(0, 0, 1, 1);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolUnite, other.get()), Acad::eOk);
  EXPECT_EQ(exploded(*region), "[ " + lines("0,0 1,0; 1,0 1,1; 1,1 0,1; 0,1 0,0") + "] [ " +
                                   lines("5,0 6,0; 6,0 6,1; 6,1 5,1; 5,1 5,0") + "] ");
}

TEST(Region, WithNothingInItIsNeutral) {
  const Region region = rectangle(0, 0, 1, 1);
  AcDbRegion empty;
  EXPECT_EQ(region->booleanOper(AcDb::kBoolSubtract, &empty), Acad::eOk);
  EXPECT_EQ(areaOf(*region), 1.0);
  EXPECT_EQ(empty.booleanOper(AcDb::kBoolUnite, region.get()), Acad::eOk);
  EXPECT_EQ(areaOf(empty), 1.0);
  EXPECT_TRUE(region->isNull());
  EXPECT_EQ(empty.booleanOper(AcDb::kBoolIntersect, region.get()), Acad::eOk);
  EXPECT_TRUE(empty.isNull());
}

TEST(Region, RefusesItselfNothingAndAnotherPlane) {
  const Region region = rectangle(0, 0, 1, 1);
  const Region above = rectangle(0, 0, 1, 1, 3.0);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolUnite, nullptr), Acad::eNullObjectPointer);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolUnite, region.get()), Acad::eInvalidInput);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolUnite, above.get()), Acad::eNonCoplanarGeometry);
  EXPECT_EQ(areaOf(*region), 1.0);
  EXPECT_EQ(areaOf(*above), 1.0);
}

// --- planes in space ----------------------------------------------------------------------------

TEST(Region, KeepsHeightAndBitsInHorizontalPlanes) {
  const double odd = 0.1 + 0.2;
  const Region region = rectangle(odd, -odd, 1e6 + odd, 7.0 / 3.0, 1.0 / 3.0);
  EXPECT_EQ(exploded(*region).substr(0, 100),
            exploded(*rectangle(odd, -odd, 1e6 + odd, 7.0 / 3.0, 1.0 / 3.0)).substr(0, 100));
  AcDbExtents extents;
  ASSERT_EQ(region->getGeomExtents(extents), Acad::eOk);
  EXPECT_EQ(extents.minPoint().x, odd);
  EXPECT_EQ(extents.minPoint().y, -odd);
  EXPECT_EQ(extents.maxPoint().x, 1e6 + odd);
  EXPECT_EQ(extents.maxPoint().z, 1.0 / 3.0);
}

TEST(Region, WorksInAnyPlane) {
  AcGeMatrix3d tilt;
  tilt.setToRotation(1.1, AcGeVector3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  const Region region = rectangle(0, 0, 10, 10);
  const Region other = rectangle(4, 2, 14, 12);
  ASSERT_EQ(region->transformBy(tilt), Acad::eOk);
  ASSERT_EQ(other->transformBy(tilt), Acad::eOk);
  ASSERT_EQ(region->booleanOper(AcDb::kBoolIntersect, other.get()), Acad::eOk);
  EXPECT_NEAR(areaOf(*region), 48.0, 1e-9);
  AcGeVector3d normal;
  ASSERT_EQ(region->getNormal(normal), Acad::eOk);
  EXPECT_TRUE(normal.isParallelTo(tilt * AcGeVector3d::kZAxis));
  ASSERT_EQ(region->transformBy(tilt.inverse()), Acad::eOk);
  AcDbExtents extents;
  ASSERT_EQ(region->getGeomExtents(extents), Acad::eOk);
  EXPECT_NEAR(extents.minPoint().x, 4.0, 1e-9);
  EXPECT_NEAR(extents.maxPoint().y, 10.0, 1e-9);
}

TEST(Region, RefusesMatricesThatAreSingularOrNotFinite) {
  const Region region = rectangle(0, 0, 1, 1);
  AcGeMatrix3d matrix;
  matrix.setToScaling(0.0);
  EXPECT_EQ(region->transformBy(matrix), Acad::eSingularMatrix);
  matrix.setToScaling(std::numeric_limits<double>::infinity());
  EXPECT_EQ(region->transformBy(matrix), Acad::eInvalidInput);
  EXPECT_EQ(areaOf(*region), 1.0);
}

TEST(Region, AMirroredOneStaysTheRightWayUp) {
  const Region region = rectangle(0, 0, 2, 1);
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  ASSERT_EQ(region->transformBy(mirror), Acad::eOk);
  EXPECT_EQ(exploded(*region), lines("-2,0 0,0; 0,0 0,1; 0,1 -2,1; -2,1 -2,0"));
}

TEST(Region, ACloneHasAShapeOfItsOwn) {
  const Region region = rectangle(0, 0, 2, 1);
  const Region copy(static_cast<AcDbRegion*>(region->clone()));
  const Region other = rectangle(5, 5, 6, 6);
  EXPECT_EQ(region->booleanOper(AcDb::kBoolIntersect, other.get()), Acad::eOk);
  EXPECT_EQ(areaOf(*copy), 2.0);
}

TEST(Region, StaysOutOfDrawings) {
  const quoin::test::Drawing drawing;
  AcDbObjectId spaceId;
  acdbSymUtil()->getBlockId(spaceId, ACDB_MODEL_SPACE, &drawing.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> space(spaceId, AcDb::kForWrite);
  const Region region = rectangle(0, 0, 2, 1);
  AcDbObjectId id;
  EXPECT_EQ(space->appendAcDbEntity(id, region.get()), Acad::eIllegalEntityType);
  EXPECT_TRUE(id.isNull());
}

}  // namespace
