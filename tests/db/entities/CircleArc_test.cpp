// CIRCLE and ARC: values, extents and transforms.
#include <gtest/gtest.h>

#include "dbpl.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Extents, OfArcsReachAsFarAsTheyBulge) {
  expectBox(AcDbArc({1.0, 1.0, 0.0}, 2.0, 0.0, kPi / 2.0), {1.0, 1.0, 0.0}, {3.0, 3.0, 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, kPi / 4.0, 3.0 * kPi / 4.0),
            {-std::sqrt(2.0), std::sqrt(2.0), 0.0}, {std::sqrt(2.0), 2.0, 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, 7.0 * kPi / 4.0, kPi / 4.0),
            {std::sqrt(2.0), -std::sqrt(2.0), 0.0}, {2.0, std::sqrt(2.0), 0.0});
  expectBox(AcDbArc({0.0, 0.0, 0.0}, 2.0, 1.0, 1.0), {-2.0, -2.0, 0.0}, {2.0, 2.0, 0.0});
}

TEST(Extents, OfACircleInATiltedPlane) {
  const double half = std::sqrt(0.5);
  expectBox(AcDbCircle({1.0, 2.0, 3.0}, AcGeVector3d(0.0, 1.0, 1.0), 2.0),
            {-1.0, 2.0 - 2.0 * half, 3.0 - 2.0 * half}, {3.0, 2.0 + 2.0 * half, 3.0 + 2.0 * half});
}

TEST(Transform, CirclesDoNotBecomeEllipses) {
  AcGeMatrix3d stretch;
  stretch(0, 0) = 2.0;
  AcDbCircle circle({1.0, 0.0, 0.0}, AcGeVector3d::kZAxis, 1.0);
  EXPECT_EQ(circle.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(circle.center().x, 1.0);
  AcDbPolyline curved;
  curved.addVertexAt(0, {0.0, 0.0}, 1.0);
  curved.addVertexAt(1, {4.0, 0.0});
  EXPECT_EQ(curved.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  AcDbPolyline straight;
  straight.addVertexAt(0, {1.0, 0.0});
  straight.addVertexAt(1, {4.0, 0.0});
  EXPECT_EQ(straight.transformBy(stretch), Acad::eOk);
  AcGePoint2d point;
  straight.getPointAt(1, point);
  EXPECT_EQ(point.x, 8.0);
}

TEST(Transform, AMirroredArcRunsTheOtherWayRound) {
  AcDbArc arc({3.0, 0.0, 0.0}, 1.0, 0.0, kPi / 2.0);
  EXPECT_EQ(arc.transformBy(AcGeMatrix3d().setToMirroring({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0})),
            Acad::eOk);
  EXPECT_TRUE(arc.center().isEqualTo({-3.0, 0.0, 0.0}));
  EXPECT_TRUE(arc.normal() == AcGeVector3d::kZAxis);
  EXPECT_NEAR(arc.startAngle(), kPi / 2.0, 1e-12);
  EXPECT_NEAR(arc.endAngle(), kPi, 1e-12);
}

TEST(Arcs, ChangeTheirPlaneAroundTheirCentre) {
  AcDbCircle circle({1.0, 2.0, 3.0}, AcGeVector3d::kZAxis, 2.0);
  EXPECT_EQ(circle.setNormal(AcGeVector3d(1.0, 0.0, 0.0)), Acad::eOk);
  EXPECT_TRUE(circle.center().isEqualTo({1.0, 2.0, 3.0}));
  EXPECT_EQ(circle.setNormal(AcGeVector3d()), Acad::eInvalidNormal);
  EXPECT_EQ(circle.setRadius(-1.0), Acad::eInvalidInput);
  EXPECT_TRUE(circle.isClosed());
}

TEST(Arcs, StartAndEndLieOnTheCircle) {
  const AcDbArc arc({1.0, 1.0, 0.0}, 2.0, kPi / 2.0, kPi);
  AcGePoint3d point;
  EXPECT_EQ(arc.getStartPoint(point), Acad::eOk);
  EXPECT_TRUE(point.isEqualTo({1.0, 3.0, 0.0}));
  EXPECT_EQ(arc.getEndPoint(point), Acad::eOk);
  EXPECT_TRUE(point.isEqualTo({-1.0, 1.0, 0.0}));
}

}  // namespace
}  // namespace quoin::test
