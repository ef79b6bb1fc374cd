// Ellipses, splines and dimensions as the API shows them.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "dbdim.h"
#include "dbelipse.h"
#include "dbspline.h"
#include "support/Drawings.h"
#include "support/GeometryText.h"

namespace quoin::test {
namespace {

const double kPi = std::acos(-1.0);

std::string splineTags(const std::string& body) {
  return "0 SPLINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbSpline\n" + body;
}

/// A quarter of the unit circle: a rational spline of degree 2.
std::string quarterCircle() {
  return splineTags(
      "70 4\n71 2\n72 6\n73 3\n74 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n41 1\n"
      "41 0.7071067811865476\n41 1\n10 1\n20 0\n30 0\n10 1\n20 1\n30 0\n10 0\n20 1\n30 0\n");
}

void expectNear(const AcGePoint3d& actual, const AcGePoint3d& expected) {
  EXPECT_LT(actual.distanceTo(expected), 1e-12) << text(actual) << " is not " << text(expected);
}

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

TEST(Dimensions, TellTheirBlockStyleAndText) {
  const NoMisuse guard;
  const Drawing drawing(smallDrawing(
      "0 DIMENSION\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbDimension\n2 Door\n10 0.0\n"
      "20 0.0\n30 0.0\n11 1.0\n21 2.0\n31 0.0\n12 5.0\n22 6.0\n32 0.0\n70 0\n1 <> mm\n42 7.5\n"
      "3 STANDARD\n100 AcDbAlignedDimension\n13 0.0\n23 0.0\n33 0.0\n"));
  const AcDbObjectPointer<AcDbDimension> dimension(drawing.id(0x40));
  ASSERT_EQ(dimension.openStatus(), Acad::eOk);
  EXPECT_EQ(dimension->dimBlockId(), drawing.id(0x30));
  expectNear(dimension->dimBlockPosition(), {5, 6, 0});
  expectNear(dimension->textPosition(), {1, 2, 0});
  EXPECT_EQ(dimension->dimensionStyle(), drawing.id(0x27));
  EXPECT_STREQ(dimension->dimensionText(), L"<> mm");
  double measured = 0.0;
  EXPECT_EQ(dimension->getMeasurement(measured), Acad::eOk);
  EXPECT_EQ(measured, 7.5);
}

TEST(Dimensions, AreCopiedButNotMade) {
  const NoMisuse guard;
  const std::string entity =
      "0 DIMENSION\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbDimension\n2 Door\n70 0\n";
  const Drawing drawing(smallDrawing(entity));
  const AcDbObjectId space = drawing.id(0x1F);
  const AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForWrite);
  AcDbDimension made;
  EXPECT_TRUE(made.dimBlockId().isNull());
  double measured = 1.0;
  EXPECT_EQ(made.getMeasurement(measured), Acad::eNotApplicable);
  EXPECT_EQ(record->appendAcDbEntity(&made), Acad::eIllegalEntityType);
  AcDbSpline spline;
  EXPECT_EQ(spline.numControlPoints(), 0);
  EXPECT_EQ(record->appendAcDbEntity(&spline), Acad::eIllegalEntityType);
  const AcDbObjectPointer<AcDbDimension> source(drawing.id(0x40));
  AcDbDimension* const clone = AcDbDimension::cast(source->clone());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(record->appendAcDbEntity(clone), Acad::eOk);
  EXPECT_EQ(clone->dimBlockId(), drawing.id(0x30));
  clone->close();
}

}  // namespace
}  // namespace quoin::test
