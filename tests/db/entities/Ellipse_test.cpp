// ELLIPSE: values, extents and transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "dbelipse.h"
#include "dbsymtb.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Ellipses, ANewOneComesBack) {
  const NoMisuse guard;
  const Drawing drawing;
  const AcDbObjectId id = append(
      drawing.db(), new AcDbEllipse({1, 2, 3}, AcGeVector3d::kZAxis, {4, 0, 0}, 0.5, 0.0, kPi / 2));
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbEllipse> ellipse(again.id(id.handle()));
  ASSERT_EQ(ellipse.openStatus(), Acad::eOk);
  expectNear(ellipse->center(), {1, 2, 3});
  EXPECT_EQ(ellipse->majorAxis().x, 4.0);
  EXPECT_EQ(ellipse->minorAxis().y, 2.0);
  EXPECT_FALSE(ellipse->isClosed());
  AcGePoint3d point;
  EXPECT_EQ(ellipse->getStartPoint(point), Acad::eOk);
  expectNear(point, {5, 2, 3});
  EXPECT_EQ(ellipse->getEndPoint(point), Acad::eOk);
  expectNear(point, {1, 4, 3});
}

TEST(Ellipses, EveryPointLiesOnIt) {
  const AcDbEllipse ellipse({0, 0, 0}, {0, 0, -1}, {0, 3, 0}, 1.0 / 3.0);
  EXPECT_TRUE(ellipse.isClosed());
  for (int degrees = 0; degrees < 360; degrees += 7) {
    AcGePoint3d point;
    ellipse.getPointAtParam(degrees * kPi / 180.0, point);
    EXPECT_NEAR(point.x * point.x + point.y * point.y / 9.0, 1.0, 1e-12);
  }
  AcGePoint3d quarter;
  ellipse.getPointAtParam(kPi / 2, quarter);
  expectNear(quarter, {1, 0, 0});  // seen from below the minor axis is on the other side
}

TEST(Ellipses, TheEndLiesBehindTheStart) {
  const AcDbEllipse ellipse({0, 0, 0}, AcGeVector3d::kZAxis, {1, 0, 0}, 1.0, 5.0, 1.0);
  double start = 0.0;
  double end = 0.0;
  ellipse.getStartParam(start);
  ellipse.getEndParam(end);
  EXPECT_EQ(start, 5.0);
  EXPECT_DOUBLE_EQ(end, 1.0 + 2 * kPi);
}

TEST(Ellipses, WrongOnesAreRefused) {
  AcDbEllipse ellipse;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const AcGeVector3d& up = AcGeVector3d::kZAxis;
  EXPECT_EQ(ellipse.set({0, 0, 0}, up, {0, 0, 0}, 0.5), Acad::eInvalidInput);
  EXPECT_EQ(ellipse.set({0, 0, 0}, up, {1, 0, 0}, 0.0), Acad::eInvalidInput);
  EXPECT_EQ(ellipse.set({0, 0, 0}, up, {1, 0, 0}, 1.1), Acad::eInvalidInput);
  EXPECT_EQ(ellipse.set({0, 0, 0}, up, {1, 0, 0}, nan), Acad::eInvalidInput);
  EXPECT_EQ(ellipse.set({nan, 0, 0}, up, {1, 0, 0}, 0.5), Acad::eInvalidInput);
  EXPECT_EQ(ellipse.set({0, 0, 0}, {1, 0, 0}, {1, 0, 0}, 0.5), Acad::eInvalidNormal);
  EXPECT_EQ(ellipse.radiusRatio(), 1.0);
  const Drawing old(asciiDxf(entitiesOnly("")));
  AcDbObjectId space;
  acdbSymUtil()->getBlockId(space, ACDB_MODEL_SPACE, &old.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForWrite);
  EXPECT_EQ(record->appendAcDbEntity(&ellipse), Acad::eIllegalEntityType);
}

TEST(EntityExtents, OfAWholeEllipse) {
  expectBox(Measured(entityText("ELLIPSE", "AcDbEllipse",
                                point(10, 1, 2, 3) + point(11, 4, 0) + point(210, 0, 0, 1) +
                                    "40 0.5\n41 0.0\n42 6.283185307179586\n")),
            {-3, 0, 3}, {5, 4, 3});
}

TEST(EntityExtents, OfAnEllipseThatLeansReachesAsItsAxesTogether) {
  // Half axes 2 and 1 along the diagonals: sqrt(2 + 0.5) in x and in y.
  const double half = std::sqrt(2.0);
  const double reach = std::sqrt(2.5);
  expectBox(Measured(entityText("ELLIPSE", "AcDbEllipse",
                                point(10, 0, 0) + point(11, half, half) + point(210, 0, 0, 1) +
                                    "40 0.5\n41 0.0\n42 6.283185307179586\n")),
            {-reach, -reach, 0}, {reach, reach, 0});
}

TEST(EntityExtents, OfAQuarterOfAnEllipseInAnUprightPlane) {
  // The normal -Y makes the minor axis point up: from (4, 0, 0) to (0, 0, 2).
  expectBox(Measured(entityText("ELLIPSE", "AcDbEllipse",
                                point(10, 0, 0) + point(11, 4, 0) + point(210, 0, -1, 0) +
                                    "40 0.5\n41 0.0\n42 " + number(kPi / 2.0) + "\n")),
            {0, 0, 0}, {4, 0, 2});
}

TEST(EntityExtents, OfRandomEllipseArcsHoldAndTouchTheirPoints) {
  std::mt19937 random(20261122);
  std::uniform_real_distribution<double> share(-1.0, 1.0);
  for (int round = 0; round < 60; ++round) {
    const AcGeVector3d normal =
        AcGeVector3d(share(random), share(random), share(random) + 0.01).normal();
    const AcGeVector3d major =
        normal.crossProduct(AcGeVector3d(share(random), share(random), 1.3)) * 10.0;
    const double ratio = 0.1 + 0.9 * std::fabs(share(random));
    const double start = kPi * (1.0 + share(random));
    const double end = start + kPi * (1.0 + share(random)) + 0.01;
    const Measured measured(entityText("ELLIPSE", "AcDbEllipse",
                                       point(10, 1, 2, 3) + point(11, major.x, major.y, major.z) +
                                           point(210, normal.x, normal.y, normal.z) + "40 " +
                                           number(ratio) + "\n41 " + number(start) + "\n42 " +
                                           number(std::fmod(end, 2.0 * kPi)) + "\n"));
    const AcGeVector3d minor = normal.crossProduct(major) * ratio;
    AcDbExtents sampled;
    constexpr int kSamples = 20000;
    for (int i = 0; i <= kSamples; ++i) {
      const double t = start + (end - start) * i / kSamples;
      sampled.addPoint(AcGePoint3d(1, 2, 3) + major * std::cos(t) + minor * std::sin(t));
    }
    // Samples miss an extreme by at most r (step / 2)^2 / 2.
    expectBox(measured, sampled.minPoint(), sampled.maxPoint(), 1e-6);
  }
}

TEST(EntityTransforms, AStretchedEllipseIsAnotherEllipse) {
  OneEntity one("ELLIPSE",
                "100 AcDbEllipse|10 0.0|20 0.0|30 0.0|11 2.0|21 2.0|31 0.0|210 0.0|220 0.0|230 1.0|"
                "40 1.0|41 0.0|42 6.283185307179586");
  AcGeMatrix3d stretch;
  stretch.entry[0][0] = 3.0;
  ASSERT_EQ(one.transform(stretch), Acad::eOk);
  const double radius = std::sqrt(8.0);
  EXPECT_NEAR(std::fabs(one.numbers(11)[0]), 3.0 * radius, 1e-12);
  EXPECT_NEAR(one.numbers(21)[0], 0.0, 1e-12);
  EXPECT_NEAR(one.numbers(40)[0], 1.0 / 3.0, 1e-12);
}

TEST(EntityTransforms, AWholeEllipseWithSixDigitsStaysAsItIsWritten) {
  OneEntity ellipse("ELLIPSE",
                    "100 AcDbEllipse|10 1.0|20 2.0|30 0.0|11 4.0|21 1.0|31 0.0|210 0.0|220 0.0|"
                    "230 1.0|40 0.5|41 0.0|42 6.283185");
  EXPECT_EQ(ellipse.transform(AcGeMatrix3d().setToMirroring({0.0, 0.0, 0.0}, AcGeVector3d::kXAxis)),
            Acad::eOk);
  EXPECT_EQ(ellipse.numbers(41), (std::vector<double>{0.0}));
  EXPECT_EQ(ellipse.numbers(42), (std::vector<double>{6.283185}));
}

}  // namespace
}  // namespace quoin::test
