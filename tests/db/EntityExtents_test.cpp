// How far each kind of entity reaches: cases computed by hand, and laws on random curves.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <sstream>

#include "dbspline.h"
#include "embedded/text/FontMetrics.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

constexpr double kPi = std::numbers::pi;

/// An entity of a kind, with its subclass; each tag of `tags` on a line.
std::string entity(const std::string& kind, const std::string& subclass, const std::string& tags) {
  return "0 " + kind + "\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 " + subclass + "\n" + tags;
}

struct Measured {
  explicit Measured(const std::string& entities, const std::string& blocks = {})
      : drawing(blocks.empty() ? smallDrawing(entities) : blocks) {
    const AcDbObjectPointer<AcDbEntity> object(drawing.id(0x40));
    status = object.openStatus() == Acad::eOk ? object->getGeomExtents(box) : object.openStatus();
  }
  Drawing drawing;
  AcDbExtents box;
  Acad::ErrorStatus status = Acad::eOk;
};

void expectBox(const Measured& measured, const AcGePoint3d& low, const AcGePoint3d& high,
               double tolerance = 1e-12) {
  ASSERT_EQ(measured.status, Acad::eOk);
  for (unsigned int axis = 0; axis < 3; ++axis) {
    EXPECT_NEAR(measured.box.minPoint()[axis], low[axis], tolerance) << "low, axis " << axis;
    EXPECT_NEAR(measured.box.maxPoint()[axis], high[axis], tolerance) << "high, axis " << axis;
  }
}

std::string number(double value) {
  std::ostringstream text;
  text.precision(17);
  text << value;
  return text.str();
}

std::string point(int code, double x, double y, double z = 0.0) {
  return std::to_string(code) + " " + number(x) + "\n" + std::to_string(code + 10) + " " +
         number(y) + "\n" + std::to_string(code + 20) + " " + number(z) + "\n";
}

// --- curves ---------------------------------------------------------------------------------

TEST(EntityExtents, OfAWholeEllipse) {
  expectBox(Measured(entity("ELLIPSE", "AcDbEllipse",
                            point(10, 1, 2, 3) + point(11, 4, 0) + point(210, 0, 0, 1) +
                                "40 0.5\n41 0.0\n42 6.283185307179586\n")),
            {-3, 0, 3}, {5, 4, 3});
}

TEST(EntityExtents, OfAnEllipseThatLeansReachesAsItsAxesTogether) {
  // Half axes 2 and 1 along the diagonals: sqrt(2 + 0.5) in x and in y.
  const double half = std::sqrt(2.0);
  const double reach = std::sqrt(2.5);
  expectBox(Measured(entity("ELLIPSE", "AcDbEllipse",
                            point(10, 0, 0) + point(11, half, half) + point(210, 0, 0, 1) +
                                "40 0.5\n41 0.0\n42 6.283185307179586\n")),
            {-reach, -reach, 0}, {reach, reach, 0});
}

TEST(EntityExtents, OfAQuarterOfAnEllipseInAnUprightPlane) {
  // The normal -Y makes the minor axis point up: from (4, 0, 0) to (0, 0, 2).
  expectBox(Measured(entity("ELLIPSE", "AcDbEllipse",
                            point(10, 0, 0) + point(11, 4, 0) + point(210, 0, -1, 0) +
                                "40 0.5\n41 0.0\n42 " + number(kPi / 2.0) + "\n")),
            {0, 0, 0}, {4, 0, 2});
}

TEST(EntityExtents, OfASplineEndWhereItsCurveDoes) {
  // One Bezier curve: 3 (1-t)^2 t + 3 (1-t) t^2 is greatest at 1/2, with 3/4.
  expectBox(
      Measured(entity("SPLINE", "AcDbSpline",
                      "70 8\n71 3\n72 8\n73 4\n40 0\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n"
                      "40 1\n" +
                          point(10, 0, 0) + point(10, 0, 1) + point(10, 3, 1) + point(10, 3, 0))),
      {0, 0, 0}, {3, 0.75, 0});
}

TEST(EntityExtents, OfARationalSplineThatIsACircleArc) {
  // The half circle of two quarters, with the usual weights.
  const std::string root = number(std::sqrt(0.5));
  expectBox(
      Measured(entity("SPLINE", "AcDbSpline",
                      "70 4\n71 2\n40 0\n40 0\n40 0\n40 1\n40 1\n40 2\n40 2\n40 2\n41 1\n41 " +
                          root + "\n41 1\n41 " + root + "\n41 1\n" + point(10, 1, 0) +
                          point(10, 1, 1) + point(10, 0, 1) + point(10, -1, 1) + point(10, -1, 0))),
      {-1, 0, 0}, {1, 1, 0});
}

TEST(EntityExtents, OfASplineWithKnotsThatDoNotFitHoldItsControlPoints) {
  expectBox(
      Measured(entity("SPLINE", "AcDbSpline",
                      "71 3\n40 0\n40 1\n" + point(10, 0, 0) + point(10, 1, 5) + point(10, 2, 1))),
      {0, 0, 0}, {2, 5, 0});
}

TEST(EntityExtents, OfFitPointsOnALineIsTheLine) {
  expectBox(Measured(entity("SPLINE", "AcDbSpline",
                            "71 3\n" + point(11, 0, 0) + point(11, 1, 2) + point(11, 4, 8))),
            {0, 0, 0}, {4, 8, 0});
}

TEST(EntityExtents, OfFitPointsBulgeBetweenThem) {
  // Two points with ends that rise and fall steeply: the cubic t (1-t) h with h = sqrt(1/2),
  // greatest in the middle.
  expectBox(Measured(entity(
                "SPLINE", "AcDbSpline",
                "71 3\n" + point(11, 0, 0) + point(11, 1, 0) + point(12, 1, 1) + point(13, 1, -1))),
            {0, 0, 0}, {1, std::sqrt(0.5) / 4.0, 0});
}

TEST(EntityExtents, RaysAndConstructionLinesHaveNone) {
  for (const char* const kind : {"RAY", "XLINE"}) {
    const Measured measured(entity(kind, std::string("AcDb") + (kind[0] == 'R' ? "Ray" : "Xline"),
                                   point(10, 1, 2) + point(11, 1, 0)));
    EXPECT_EQ(measured.status, Acad::eNotApplicable);
    EXPECT_FALSE(hostx::hasExtents(measured.drawing.id(0x40)));
  }
}

// --- areas ----------------------------------------------------------------------------------

TEST(EntityExtents, OfASolidInAMirroredPlaneWithThickness) {
  // The plane of -Z turns x around.
  expectBox(Measured(entity("SOLID", "AcDbTrace",
                            point(10, 1, 0, 5) + point(11, 3, 0, 5) + point(12, 1, 2, 5) +
                                point(13, 3, 2, 5) + "39 2.0\n" + point(210, 0, 0, -1))),
            {-3, 0, -7}, {-1, 2, -5});
}

std::string hatch(const std::string& boundaries, const std::string& elevation = "30 0\n") {
  return entity("HATCH", "AcDbHatch",
                "10 0\n20 0\n" + elevation + "210 0\n220 0\n230 1\n2 SOLID\n70 1\n71 0\n" +
                    boundaries + "75 1\n76 1\n98 1\n10 99\n20 99\n");
}

TEST(EntityExtents, OfAHatchWithABulgedPolyline) {
  // A square of side 2 whose right side is a half circle; the seed point does not count.
  expectBox(Measured(hatch("91 1\n92 2\n72 1\n73 1\n93 4\n10 0\n20 0\n42 0\n10 2\n20 0\n42 1\n"
                           "10 2\n20 2\n42 0\n10 0\n20 2\n42 0\n97 0\n",
                           "30 4\n")),
            {0, 0, 4}, {3, 2, 4});
}

TEST(EntityExtents, OfAHatchWithEdgesOfEverySort) {
  // A line, a clockwise quarter from (0, 2) to (2, 0), a quarter of an ellipse from (2, 0) to
  // (0, -1), and a spline from there back.
  expectBox(
      Measured(hatch("91 1\n92 0\n93 4\n72 1\n10 0\n20 0\n11 0\n21 2\n"
                     "72 2\n10 0\n20 0\n40 2\n50 270\n51 360\n73 0\n"
                     "72 3\n10 0\n20 0\n11 2\n21 0\n40 0.5\n50 0\n51 90\n73 0\n"
                     "72 4\n94 2\n73 0\n74 0\n95 6\n96 3\n40 0\n40 0\n40 0\n40 1\n40 1\n40 1\n"
                     "10 0\n20 -1\n10 -2\n20 -0.5\n10 0\n20 0\n97 0\n97 0\n")),
      {-1, -1, 0}, {2, 2, 0});
}

TEST(EntityExtents, OfAMultilineWithItsElements) {
  expectBox(Measured(entity("MLINE", "AcDbMline",
                            "2 STANDARD\n40 1\n70 0\n71 1\n72 2\n73 2\n" + point(10, 0, 0) +
                                point(11, 0, 0) + point(12, 1, 0) + point(13, 0, 1) +
                                "74 2\n41 0.5\n41 0\n75 0\n74 2\n41 -0.5\n41 0\n75 0\n" +
                                point(11, 4, 0) + point(12, 1, 0) + point(13, 0, 1) +
                                "74 2\n41 0.5\n41 0\n75 0\n74 2\n41 -0.5\n41 0\n75 0\n")),
            {0, -0.5, 0}, {4, 0.5, 0});
}

// --- frames ---------------------------------------------------------------------------------

TEST(EntityExtents, OfAViewport) {
  expectBox(Measured(entity("VIEWPORT", "AcDbViewport", point(10, 5, 4) + "40 6\n41 2\n")),
            {2, 3, 0}, {8, 5, 0});
}

TEST(EntityExtents, OfAnImageAndItsClipBoundary) {
  // 10 x 4 pixels, each half a unit; without clipping 5 x 2.
  const std::string picture =
      point(10, 1, 1) + point(11, 0.5, 0) + point(12, 0, 0.5) + "13 10\n23 4\n70 7\n";
  expectBox(Measured(entity("IMAGE", "AcDbRasterImage", picture + "280 0\n")), {1, 1, 0},
            {6, 3, 0});
  // Pixels 2 to 4 from the left and 0 to 1 from the top.
  expectBox(Measured(entity("IMAGE", "AcDbRasterImage",
                            picture + "280 1\n71 1\n91 2\n14 1.5\n24 -0.5\n14 3.5\n24 0.5\n")),
            {2, 2.5, 0}, {3, 3, 0});
}

TEST(EntityExtents, OfAWipeoutIsItsPolygon) {
  expectBox(Measured(entity("WIPEOUT", "AcDbWipeout",
                            point(10, 0, 0) + point(11, 8, 0) + point(12, 0, 8) +
                                "13 1\n23 1\n280 1\n71 2\n91 4\n14 -0.5\n24 0.5\n14 0.5\n24 0.5\n"
                                "14 0\n24 0\n14 -0.5\n24 0.5\n")),
            {0, 0, 0}, {8, 4, 0});
}

TEST(EntityExtents, OfAnUnderlayIsItsBoundary) {
  const std::string sheet =
      "340 0\n" + point(10, 10, 0) + "41 2\n42 2\n43 2\n50 90\n210 0\n220 0\n230 1\n280 3\n";
  expectBox(
      Measured(entity("PDFUNDERLAY", "AcDbUnderlayReference", sheet + "11 0\n21 0\n11 3\n21 1\n")),
      {8, 0, 0}, {10, 6, 0});
  EXPECT_EQ(Measured(entity("PDFUNDERLAY", "AcDbUnderlayReference", sheet)).status,
            Acad::eNullExtents);
}

TEST(EntityExtents, OfTheCornersOfAnObjectOfAnotherProgram) {
  expectBox(Measured(entity("OLE2FRAME", "AcDbOle2Frame", point(10, 1, 8) + point(11, 5, 2))),
            {1, 2, 0}, {5, 8, 0});
}

TEST(EntityExtents, OfAMeshAreItsVertices) {
  expectBox(Measured(entity("MESH", "AcDbSubDMesh",
                            "71 2\n72 0\n91 0\n92 3\n" + point(10, 0, 0, 1) + point(10, 2, 0, 0) +
                                point(10, 0, 3, -1) + "93 4\n90 3\n90 0\n90 1\n90 2\n")),
            {0, 0, -1}, {2, 3, 1});
}

TEST(EntityExtents, OfAProxyAreThoseOfItsPicture) {
  // Size 64, one piece: length 56, kind 1, corners (0, 0, 0) and (1, 2, 0).
  const std::string graphics =
      "4000000001000000"
      "3800000001000000"
      "0000000000000000"
      "0000000000000000"
      "0000000000000000"
      "000000000000F03F"
      "0000000000000040"
      "0000000000000000";
  expectBox(Measured(entity("ACAD_PROXY_ENTITY", "AcDbProxyEntity",
                            "90 498\n91 500\n92 64\n310 " + graphics + "\n")),
            {0, 0, 0}, {1, 2, 0});
  EXPECT_EQ(Measured(entity("ACAD_PROXY_ENTITY", "AcDbProxyEntity", "90 498\n91 500\n")).status,
            Acad::eNotApplicable);
}

// --- annotation -----------------------------------------------------------------------------

TEST(EntityExtents, OfALeaderWithItsArrow) {
  // An arrow of size 0.18 along X, a third as wide.
  expectBox(
      Measured(entity("LEADER", "AcDbLeader",
                      "3 NOSTYLE\n71 1\n72 0\n73 3\n76 2\n" + point(10, 0, 0) + point(10, 4, 0))),
      {0, -0.03, 0}, {4, 0.03, 0});
  expectBox(
      Measured(entity("LEADER", "AcDbLeader",
                      "3 NOSTYLE\n71 0\n72 0\n73 3\n76 2\n" + point(10, 0, 0) + point(10, 4, 0))),
      {0, 0, 0}, {4, 0, 0});
}

TEST(EntityExtents, OfAMultileaderWithLinesAndDogleg) {
  expectBox(
      Measured(entity("MULTILEADER", "AcDbMLeader",
                      "300 CONTEXT_DATA{\n40 1\n" + point(10, 9, 9) +
                          "41 1\n140 0\n290 0\n"
                          "296 0\n302 LEADER{\n290 1\n291 1\n" +
                          point(10, 4, 3) + point(11, 1, 0) + "90 0\n40 2\n304 LEADER_LINE{\n" +
                          point(10, 0, 0) + "91 0\n305 }\n271 0\n303 }\n301 }\n170 1\n")),
      {0, 0, 0}, {6, 3, 0});
}

TEST(EntityExtents, OfAMultileaderWithoutLinesIsNothing) {
  // The 170 inside the context is another one.
  EXPECT_EQ(Measured(entity("MULTILEADER", "AcDbMLeader",
                            "300 CONTEXT_DATA{\n40 1\n170 1\n290 0\n296 0\n302 LEADER{\n"
                            "304 LEADER_LINE{\n" +
                                point(10, 0, 0) + point(10, 4, 0) + "305 }\n303 }\n301 }\n170 0\n"))
                .status,
            Acad::eNullExtents);
}

TEST(EntityExtents, OfADimensionWithoutABlockAreItsPoints) {
  expectBox(Measured(entity("DIMENSION", "AcDbDimension",
                            point(10, 4, 2) + point(11, 2, 2) +
                                "70 32\n3 STANDARD\n"
                                "100 AcDbAlignedDimension\n" +
                                point(13, 0, 0) + point(14, 4, 0))),
            {0, 0, 0}, {4, 2, 0});
}

TEST(EntityExtents, OfAProxyWithAPictureThatIsCutShort) {
  EXPECT_EQ(
      Measured(entity("ACAD_PROXY_ENTITY", "AcDbProxyEntity",
                      "90 498\n91 500\n92 20\n310 1400000001000000380000000100000000000000\n"))
          .status,
      Acad::eNotApplicable);
}

TEST(EntityExtents, OfAPolygonHatch) {
  expectBox(Measured(entity("MPOLYGON", "AcDbMPolygon",
                            "70 1\n10 0\n20 0\n30 0\n210 0\n220 0\n230 1\n2 SOLID\n71 0\n91 1\n"
                            "92 2\n72 0\n73 1\n93 3\n10 0\n20 0\n10 5\n20 0\n10 5\n20 4\n"
                            "76 1\n63 2\n11 0\n21 0\n99 0\n")),
            {0, 0, 0}, {5, 4, 0});
}

TEST(EntityExtents, OfALightAreItsPlace) {
  expectBox(Measured(entity("LIGHT", "AcDbLight",
                            "1 Lamp\n70 1\n" + point(10, 1, 2, 3) + point(11, 9, 9, 9))),
            {1, 2, 3}, {1, 2, 3});
}

TEST(EntityExtents, OfASectionPlaneReachFromBottomToTop) {
  expectBox(Measured(entity("SECTIONOBJECT", "AcDbSection",
                            point(10, 0, 0, 1) + "40 3\n41 1\n92 2\n" + point(11, 0, 0) +
                                point(11, 4, 0) + "93 0\n")),
            {0, 0, -1}, {4, 0, 3});
}

TEST(EntityExtents, OfAToleranceAreItsCells) {
  // Two cells of one letter, 0.18 high, with half a height at either side.
  const quoin::text::Font& font = quoin::text::usualFont();
  const double width = (font.advance(L'A') + font.advance(L'B') + 2.0) * 0.18;
  expectBox(Measured(entity("TOLERANCE", "AcDbFcf",
                            "3 NOSTYLE\n" + point(10, 1, 1) + "1 A%%vB\n" + point(11, 1, 0))),
            {1, 1 - 0.18, 0}, {1 + width, 1 + 0.18, 0});
}

/// What the block that most tests insert reaches.
AcDbExtents boxOfDoor() {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> record(door);
  AcDbExtents box;
  EXPECT_EQ(box.addBlockExt(record.object()), Acad::eOk);
  return box;
}

TEST(EntityExtents, OfADimensionAreThoseOfItsBlockWhereItStands) {
  const AcDbExtents door = boxOfDoor();
  const AcGeVector3d move(10, 20, 0);
  expectBox(Measured(entity("DIMENSION", "AcDbDimension",
                            "2 Door\n" + point(10, 4, 2) + point(11, 2, 2) + point(12, 10, 20) +
                                "70 32\n100 AcDbAlignedDimension\n" + point(13, 99, 0))),
            door.minPoint() + move, door.maxPoint() + move);
}

TEST(EntityExtents, OfALeaderWhoseArrowIsABlock) {
  // Its tip is at the origin and it looks along -X: the block lies turned and scaled by 0.18.
  AcDbExtents arrow = boxOfDoor();
  AcGeMatrix3d toTip;
  toTip.setCoordSystem({0, 0, 0}, AcGeVector3d(-0.18, 0, 0), AcGeVector3d(0, -0.18, 0),
                       AcGeVector3d(0, 0, 0.18));
  arrow.transformBy(toTip);
  arrow.addPoint({0, 0, 0});
  arrow.addPoint({4, 0, 0});
  expectBox(
      Measured(entity("LEADER", "AcDbLeader",
                      "3 NOSTYLE\n71 1\n72 0\n73 3\n76 2\n" + point(10, 0, 0) + point(10, 4, 0) +
                          "1001 ACAD\n1000 DSTYLE\n1002 {\n1070 341\n1005 30\n1002 }\n")),
      arrow.minPoint(), arrow.maxPoint());
}

TEST(EntityExtents, OfATableAreThoseOfItsBlockTurnedToItsDirection) {
  AcDbExtents turned = boxOfDoor();
  turned.transformBy(AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis));
  const AcGeVector3d move(7, 0, 0);
  expectBox(Measured(entity("ACAD_TABLE", "AcDbBlockReference",
                            "2 Door\n" + point(10, 7, 0) + "100 AcDbTable\n" + point(11, 0, 1))),
            turned.minPoint() + move, turned.maxPoint() + move);
}

// --- laws -----------------------------------------------------------------------------------

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
    const Measured measured(entity("SPLINE", "AcDbSpline", tags));
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
    const Measured measured(entity("ELLIPSE", "AcDbEllipse",
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

TEST(EntityExtents, OddRecordsAnswerAndDoNoHarm) {
  const char* const kinds[] = {"SOLID",       "TRACE",
                               "ELLIPSE",     "SPLINE",
                               "HELIX",       "HATCH",
                               "MLINE",       "MPOLYGON",
                               "VIEWPORT",    "IMAGE",
                               "WIPEOUT",     "MESH",
                               "OLE2FRAME",   "PDFUNDERLAY",
                               "LIGHT",       "SECTIONOBJECT",
                               "LEADER",      "TOLERANCE",
                               "MULTILEADER", "DIMENSION",
                               "ACAD_TABLE",  "ACAD_PROXY_ENTITY"};
  const int codes[] = {10, 20, 30, 11, 21, 31, 12, 13, 40, 41, 42,  50,  51,  70,  71,  72, 73,
                       74, 75, 76, 91, 92, 93, 94, 95, 96, 97, 140, 170, 171, 210, 290, 296};
  const char* const values[] = {"0", "1", "-1", "2", "3", "4", "1e300", "-7", "32767", "1e-300"};
  std::mt19937 random(20261123);
  for (int round = 0; round < 600; ++round) {
    std::string tags;
    for (std::size_t i = random() % 60; i > 0; --i) {
      const int code = codes[random() % std::size(codes)];
      const bool isReal = code < 60 || (code >= 140 && code < 150) || code >= 210;
      const char* value = values[random() % std::size(values)];
      const bool isExponent = std::string(value).find('e') != std::string::npos;
      value = !isReal && isExponent ? "5" : value;
      tags += std::to_string(code) + " " + (code >= 280 ? "1" : value) + "\n";
      if (random() % 12 == 0) {
        const char* const braces[] = {"300 CONTEXT_DATA{\n",
                                      "302 LEADER{\n",
                                      "304 LEADER_LINE{\n",
                                      "305 }\n",
                                      "303 }\n",
                                      "301 }\n",
                                      "310 0011\n",
                                      "2 Door\n"};
        tags += braces[random() % std::size(braces)];
      }
    }
    const char* const kind = kinds[random() % std::size(kinds)];
    const Measured measured(std::string("0 ") + kind + "\n5 40\n330 1F\n8 0\n" + tags);
    const bool isFinite = measured.box.minPoint().x <= measured.box.maxPoint().x;
    EXPECT_TRUE(measured.status != Acad::eOk || isFinite) << kind << "\n" << tags;
  }
}

}  // namespace
}  // namespace quoin::test
