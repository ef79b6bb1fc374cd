// SPLINE and HELIX: values, extents and transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "dbspline.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

std::string splineTags(const std::string& body) {
  return "0 SPLINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbSpline\n" + body;
}

/// A quarter of the unit circle: a rational spline of degree 2.
std::string quarterCircle() {
  return splineTags(
      "70 4\n71 2\n72 6\n73 3\n74 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n41 1\n"
      "41 0.7071067811865476\n41 1\n10 1\n20 0\n30 0\n10 1\n20 1\n30 0\n10 0\n20 1\n30 0\n");
}

TEST(Splines, ARationalQuarterIsAnArc) {
  const Drawing drawing(smallDrawing(quarterCircle()));
  const AcDbObjectPointer<AcDbSpline> spline(drawing.id(0x40));
  ASSERT_EQ(spline.openStatus(), Acad::eOk);
  EXPECT_EQ(spline->degree(), 2);
  EXPECT_TRUE(spline->isRational());
  EXPECT_EQ(spline->numControlPoints(), 3);
  EXPECT_EQ(spline->weightAt(1), std::sqrt(0.5));
  for (int i = 0; i <= 20; ++i) {
    AcGePoint3d point;
    EXPECT_EQ(spline->getPointAtParam(i / 20.0, point), Acad::eOk);
    EXPECT_NEAR(point.x * point.x + point.y * point.y, 1.0, 1e-12);
  }
  AcGePoint3d point;
  spline->getStartPoint(point);
  expectNear(point, {1, 0, 0});
  spline->getEndPoint(point);
  expectNear(point, {0, 1, 0});
  spline->getPointAtParam(99.0, point);
  expectNear(point, {0, 1, 0});
}

TEST(Splines, WithInnerKnotsRunThroughEverySpan) {
  // Degree 1: the spline is its control polygon, a knot at every corner.
  const Drawing drawing(smallDrawing(
      splineTags("70 8\n71 1\n72 5\n73 3\n74 0\n40 0\n40 0\n40 1\n40 3\n40 3\n10 0\n20 0\n30 0\n"
                 "10 2\n20 0\n30 0\n10 2\n20 4\n30 0\n")));
  const AcDbObjectPointer<AcDbSpline> spline(drawing.id(0x40));
  AcGePoint3d point;
  spline->getPointAtParam(0.5, point);
  expectNear(point, {1, 0, 0});
  spline->getPointAtParam(1.0, point);
  expectNear(point, {2, 0, 0});
  spline->getPointAtParam(2.0, point);
  expectNear(point, {2, 2, 0});
}

TEST(Splines, WithoutGoodKnotsHaveNoPoints) {
  const Drawing fits(smallDrawing(
      splineTags("70 8\n71 3\n72 0\n73 0\n74 2\n11 1\n21 2\n31 3\n11 4\n21 5\n31 6\n")));
  const AcDbObjectPointer<AcDbSpline> through(fits.id(0x40));
  AcGePoint3d point;
  double param = 0.0;
  EXPECT_EQ(through->getStartPoint(point), Acad::eNotApplicable);
  EXPECT_EQ(through->getEndParam(param), Acad::eNotApplicable);
  EXPECT_EQ(through->numFitPoints(), 2);
  EXPECT_EQ(through->getFitPointAt(1, point), Acad::eOk);
  expectNear(point, {4, 5, 6});
  EXPECT_EQ(through->getFitPointAt(2, point), Acad::eInvalidIndex);
  EXPECT_EQ(through->getControlPointAt(0, point), Acad::eInvalidIndex);
  for (const char* bad :
       {"71 3\n40 0\n40 1\n10 0\n20 0\n10 1\n20 1\n", "71 0\n40 0\n40 1\n10 0\n20 0\n",
        "71 99\n40 0\n40 1\n10 0\n20 0\n10 1\n20 1\n",
        "71 1\n40 0\n40 2\n40 1\n40 3\n10 0\n20 0\n10 1\n20 1\n",
        "71 1\n40 0\n40 0\n40 0\n40 0\n10 0\n20 0\n10 1\n20 1\n"}) {
    const Drawing drawing(smallDrawing(splineTags(bad)));
    const AcDbObjectPointer<AcDbSpline> spline(drawing.id(0x40));
    EXPECT_EQ(spline->getPointAtParam(0.5, point), Acad::eDegenerateGeometry) << bad;
  }
}

TEST(EntityExtents, OfASplineEndWhereItsCurveDoes) {
  // One Bezier curve: 3 (1-t)^2 t + 3 (1-t) t^2 is greatest at 1/2, with 3/4.
  expectBox(Measured(entityText("SPLINE", "AcDbSpline",
                                "70 8\n71 3\n72 8\n73 4\n40 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n"
                                "40 1\n" +
                                    point(10, 0, 0) + point(10, 0, 1) + point(10, 3, 1) +
                                    point(10, 3, 0))),
            {0, 0, 0}, {3, 0.75, 0});
}

TEST(EntityExtents, OfARationalSplineThatIsACircleArc) {
  // The half circle of two quarters, with the usual weights.
  const std::string root = number(std::sqrt(0.5));
  expectBox(Measured(entityText(
                "SPLINE", "AcDbSpline",
                "70 4\n71 2\n40 0\n40 0\n40 0\n40 1\n40 1\n40 2\n40 2\n40 2\n41 1\n41 " + root +
                    "\n41 1\n41 " + root + "\n41 1\n" + point(10, 1, 0) + point(10, 1, 1) +
                    point(10, 0, 1) + point(10, -1, 1) + point(10, -1, 0))),
            {-1, 0, 0}, {1, 1, 0});
}

TEST(EntityExtents, OfASplineWithKnotsThatDoNotFitHoldItsControlPoints) {
  expectBox(Measured(entityText(
                "SPLINE", "AcDbSpline",
                "71 3\n40 0\n40 1\n" + point(10, 0, 0) + point(10, 1, 5) + point(10, 2, 1))),
            {0, 0, 0}, {2, 5, 0});
}

TEST(EntityExtents, OfFitPointsOnALineIsTheLine) {
  expectBox(Measured(entityText("SPLINE", "AcDbSpline",
                                "71 3\n" + point(11, 0, 0) + point(11, 1, 2) + point(11, 4, 8))),
            {0, 0, 0}, {4, 8, 0});
}

TEST(EntityExtents, OfFitPointsBulgeBetweenThem) {
  // Two points with ends that rise and fall steeply: the cubic t (1-t) h with h = sqrt(1/2),
  // greatest in the middle.
  expectBox(Measured(entityText(
                "SPLINE", "AcDbSpline",
                "71 3\n" + point(11, 0, 0) + point(11, 1, 0) + point(12, 1, 1) + point(13, 1, -1))),
            {0, 0, 0}, {1, std::sqrt(0.5) / 4.0, 0});
}

/// No sampled point lies outside, and each side is touched.
TEST(EntityExtents, OfRandomSplinesHoldAndTouchTheirPoints) {
  std::mt19937 random(20261121);
  std::uniform_real_distribution<double> place(-100.0, 100.0);
  std::uniform_real_distribution<double> weight(0.2, 5.0);
  for (int round = 0; round < 40; ++round) {
    const int degree = 1 + round % 5;
    const int count = degree + 1 + static_cast<int>(random() % 6);
    std::string tags = "71 " + std::to_string(degree) + "\n";
    double knot = 0.0;
    std::vector<double> knots;
    for (int i = 0; i < count + degree + 1; ++i) {
      const bool isInside = i > degree && i <= count;
      knot += isInside ? static_cast<double>(random() % 3) * 0.5 + (i == count ? 1.0 : 0.0) : 0.0;
      tags += "40 " + number(knot) + "\n";
      knots.push_back(knot);
    }
    for (int i = 0; i < count; ++i) {
      tags += round % 2 ? "41 " + number(weight(random)) + "\n" : "";
    }
    for (int i = 0; i < count; ++i) {
      tags += point(10, place(random), place(random), place(random));
    }
    const Measured measured(entityText("SPLINE", "AcDbSpline", tags));
    ASSERT_EQ(measured.status, Acad::eOk);
    const AcDbObjectPointer<AcDbSpline> spline(measured.drawing.id(0x40));
    double start = 0.0;
    double end = 0.0;
    ASSERT_EQ(spline->getStartParam(start), Acad::eOk);
    ASSERT_EQ(spline->getEndParam(end), Acad::eOk);
    AcDbExtents sampled;
    const auto sample = [&](double param) {
      AcGePoint3d at;
      spline->getPointAtParam(param, at);
      sampled.addPoint(at);
    };
    constexpr int kSamples = 4000;
    for (int i = 0; i <= kSamples; ++i) {
      sample(start + (end - start) * i / kSamples);
    }
    // Curves may have corners and gaps at their knots: both sides of those count.
    for (const double at : knots) {
      sample(at);
      sample(at - 1e-12);
    }
    // Between two samples the curve rises by no more than its curvature lets it.
    constexpr double kBetween = 1e-2;
    for (unsigned int axis = 0; axis < 3; ++axis) {
      EXPECT_LE(measured.box.minPoint()[axis], sampled.minPoint()[axis] + 1e-10) << round;
      EXPECT_GE(measured.box.maxPoint()[axis], sampled.maxPoint()[axis] - 1e-10) << round;
      EXPECT_NEAR(measured.box.minPoint()[axis], sampled.minPoint()[axis], kBetween) << round;
      EXPECT_NEAR(measured.box.maxPoint()[axis], sampled.maxPoint()[axis], kBetween) << round;
    }
  }
}

TEST(EntityTransforms, AMirroredHelixTurnsTheOtherWay) {
  OneEntity one("HELIX");
  AcGeMatrix3d mirror;
  mirror.setToMirroring(AcGePoint3d(), AcGeVector3d::kXAxis);
  ASSERT_EQ(one.transform(mirror), Acad::eOk);
  EXPECT_EQ(one.numbers(290)[0], 0.0);
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(290)[0], 0.0);
}

}  // namespace
}  // namespace quoin::test
