// CGeomPolygon: intersection, order along a direction, projection onto a line.
#include "GeomPolygon.h"

#include <gtest/gtest.h>

#include "geline3d.h"
#include "gelnsg3d.h"
#include "support/GeometryText.h"

namespace {

using quoin::test::text;

CGeomPolygon polygon(const std::vector<AcGePoint3d>& corners) {
  CGeomPolygon made;
  for (const AcGePoint3d& corner : corners) {
    made.AppendVertex(corner);
  }
  return made;
}

CGeomPolygon rectangle(double x1, double y1, double x2, double y2) {
  return polygon({{x1, y1, 0}, {x2, y1, 0}, {x2, y2, 0}, {x1, y2, 0}});
}

std::string corners(const std::vector<AcGePoint3d>& points) {
  std::string result;
  for (const AcGePoint3d& point : points) {
    result += (result.empty() ? "" : "; ") + text(point);
  }
  return result;
}
std::string corners(CGeomPolygon& polygon) {
  return corners(polygon.GetPolygonVertextArray());
}

// --- vertices -----------------------------------------------------------------------------------

TEST(GeomPolygon, KeepsVerticesAsTheyCome) {
  CGeomPolygon square = polygon({{0, 0, 0}, {0, 0, 0}, {5, 0, 0}, {2, 0, 0}});
  EXPECT_EQ(square.GetPolygonVertextArray().size(), 4u);
}

TEST(GeomPolygon, CopiesShareNothing) {
  CGeomPolygon square = rectangle(0, 0, 1, 1);
  CGeomPolygon copy(square);
  CGeomPolygon assigned;
  assigned = square;
  square.AppendVertex(AcGePoint3d(9, 9, 9));
  EXPECT_EQ(copy.GetPolygonVertextArray().size(), 4u);
  EXPECT_EQ(assigned.GetPolygonVertextArray().size(), 4u);
}

TEST(GeomPolygon, AssignedToItselfStaysAsItWas) {
  CGeomPolygon square = rectangle(0, 0, 1, 1);
  const std::string before = corners(square);
  CGeomPolygon& same = square;
  square = same;
  EXPECT_EQ(corners(square), before);
}

// --- intersection -------------------------------------------------------------------------------

TEST(GeomPolygon, IntersectsTwoRectangles) {
  CGeomPolygon square = rectangle(0, 0, 10, 10);
  bool isMeeting = false;
  CGeomPolygon& result = square.IntersectWith(rectangle(4, 2, 14, 12), isMeeting);
  EXPECT_EQ(&result, &square);
  EXPECT_TRUE(isMeeting);
  EXPECT_EQ(corners(square), corners({{4, 2, 0}, {10, 2, 0}, {10, 10, 0}, {4, 10, 0}}));
}

TEST(GeomPolygon, IntersectedWithAnIdenticalSquareBeginsAtTheEndOfTheLastEdge) {
  CGeomPolygon square = rectangle(0, 0, 10, 10);
  bool isMeeting = false;
  square.IntersectWith(rectangle(0, 0, 10, 10), isMeeting);
  EXPECT_TRUE(isMeeting);
  EXPECT_EQ(corners(square), corners({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}));
}

TEST(GeomPolygon, DisjointFromAnotherIsEmptyAfterwards) {
  CGeomPolygon square = rectangle(0, 0, 1, 1);
  bool isMeeting = true;
  square.IntersectWith(rectangle(5, 5, 6, 6), isMeeting);
  EXPECT_FALSE(isMeeting);
  EXPECT_TRUE(square.GetPolygonVertextArray().empty());
}

TEST(GeomPolygon, IsEmptyAfterwardsWhenTwoFacesAreLeft) {
  const CGeomPolygon bar = rectangle(-1, 5, 11, 8);
  const std::vector<AcGePoint3d> u{{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {7, 10, 0},
                                   {7, 3, 0}, {3, 3, 0},  {3, 10, 0},  {0, 10, 0}};
  // Two squares that share the corner (5,5), of two angled pieces.
  const std::vector<AcGePoint3d> angle{{0, 0, 0},  {5, 0, 0},   {5, 5, 0},
                                       {10, 5, 0}, {10, 10, 0}, {0, 10, 0}};
  const CGeomPolygon otherAngle =
      polygon({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {5, 10, 0}, {5, 5, 0}, {0, 5, 0}});
  for (const auto& [first, other] : {std::pair(u, &bar), std::pair(angle, &otherAngle)}) {
    CGeomPolygon left = polygon(first);
    bool isMeeting = true;
    left.IntersectWith(*other, isMeeting);
    EXPECT_FALSE(isMeeting);
    EXPECT_EQ(corners(left), "");
  }
}

TEST(GeomPolygon, WithoutAreaStaysAsItIsAndSoDoesTheOther) {
  for (const std::vector<AcGePoint3d>& thin :
       {std::vector<AcGePoint3d>{}, {{1, 1, 0}}, {{0, 0, 0}, {5, 5, 0}}}) {
    CGeomPolygon square = rectangle(0, 0, 10, 10);
    const std::string before = corners(square);
    bool isMeeting = true;
    square.IntersectWith(polygon(thin), isMeeting);
    EXPECT_FALSE(isMeeting);
    EXPECT_EQ(corners(square), before);
    CGeomPolygon flat = polygon(thin);
    isMeeting = true;
    flat.IntersectWith(square, isMeeting);
    EXPECT_FALSE(isMeeting);
    EXPECT_EQ(corners(flat), corners(thin));
  }
}

TEST(GeomPolygon, WithItselfIsItself) {
  CGeomPolygon square = rectangle(0, 0, 10, 10);
  bool isMeeting = false;
  square.IntersectWith(square, isMeeting);
  EXPECT_TRUE(isMeeting);
  EXPECT_EQ(square.GetPolygonVertextArray().size(), 4u);
}

TEST(GeomPolygon, InAnotherPlaneLeavesTheBoundaryOfTheFirst) {
  // The region operation fails and leaves the first region whole: its edges come back.
  CGeomPolygon square = rectangle(0, 0, 10, 10);
  bool isMeeting = false;
  square.IntersectWith(polygon({{0, 0, 5}, {10, 0, 5}, {10, 10, 5}, {0, 10, 5}}), isMeeting);
  EXPECT_TRUE(isMeeting);
  EXPECT_EQ(square.GetPolygonVertextArray().size(), 4u);
}

// --- order along a direction
// ----------------------------------------------------------------------

TEST(GeomPolygon, VerticesComeInTheOrderOfADirection) {
  CGeomPolygon square = polygon({{3, 0, 0}, {1, 5, 0}, {2, -4, 0}});
  std::vector<AcGePoint3d> vertices;
  square.GetVArrayByDir(vertices, AcGeVector3d(1, 0, 0));
  EXPECT_EQ(corners(vertices), corners({{1, 5, 0}, {2, -4, 0}, {3, 0, 0}}));
}

TEST(GeomPolygon, WhatIsInTheVectorAlreadyIsSortedWithTheVertices) {
  CGeomPolygon square = polygon({{3, 0, 0}, {1, 0, 0}});
  std::vector<AcGePoint3d> vertices{{2, 0, 0}};
  square.GetVArrayByDir(vertices, AcGeVector3d(-1, 0, 0));
  EXPECT_EQ(corners(vertices), corners({{3, 0, 0}, {2, 0, 0}, {1, 0, 0}}));
}

TEST(GeomPolygon, AskedTwiceEveryVertexIsThereTwice) {
  CGeomPolygon square = polygon({{3, 0, 0}, {1, 0, 0}});
  std::vector<AcGePoint3d> vertices;
  square.GetVArrayByDir(vertices, AcGeVector3d(2, 0, 0));
  square.GetVArrayByDir(vertices, AcGeVector3d(2, 0, 0));
  EXPECT_EQ(corners(vertices), corners({{1, 0, 0}, {1, 0, 0}, {3, 0, 0}, {3, 0, 0}}));
}

TEST(GeomPolygon, WithoutADirectionEveryVertexIsStillThere) {
  CGeomPolygon square = rectangle(0, 0, 1, 1);
  std::vector<AcGePoint3d> vertices;
  square.GetVArrayByDir(vertices, AcGeVector3d(0, 0, 0));
  EXPECT_EQ(vertices.size(), 4u);
}

// --- projection onto a line
// -----------------------------------------------------------------------

TEST(GeomPolygon, ProjectsOntoALineBesideIt) {
  CGeomPolygon square = rectangle(0, 0, 10, 4);
  AcGeLineSeg3d seg;
  square.GetPrjLineSeg(seg, AcGeLine3d(AcGePoint3d(100, 50, 0), AcGeVector3d(-1, 0, 0)));
  EXPECT_EQ(text(seg.startPoint(), seg.endPoint()),
            text(AcGePoint3d(10, 50, 0), AcGePoint3d(0, 50, 0)));
}

TEST(GeomPolygon, ProjectsOntoAVerticalLineAsAPoint) {
  CGeomPolygon square = rectangle(0, 0, 10, 4);
  AcGeLineSeg3d seg;
  square.GetPrjLineSeg(seg, AcGeLine3d(AcGePoint3d(1, 2, 3), AcGeVector3d(0, 0, 1)));
  EXPECT_EQ(seg.startPoint().distanceTo(seg.endPoint()), 0.0);
}

TEST(GeomPolygon, OfTwoVerticesProjectsInTheLinesDirection) {
  CGeomPolygon edge = polygon({{9, 3, 0}, {2, 5, 0}});
  AcGeLineSeg3d seg;
  edge.GetPrjLineSeg(seg, AcGeLine3d(AcGePoint3d(), AcGeVector3d(1, 0, 0)));
  EXPECT_EQ(text(seg.startPoint(), seg.endPoint()),
            text(AcGePoint3d(2, 0, 0), AcGePoint3d(9, 0, 0)));
}

TEST(GeomPolygon, OfOneVertexLeavesTheSegmentAlone) {
  CGeomPolygon point = polygon({{1, 1, 0}});
  AcGeLineSeg3d seg(AcGePoint3d(7, 7, 7), AcGePoint3d(8, 8, 8));
  point.GetPrjLineSeg(seg, AcGeLine3d(AcGePoint3d(), AcGeVector3d(1, 0, 0)));
  EXPECT_EQ(text(seg.startPoint(), seg.endPoint()),
            text(AcGePoint3d(7, 7, 7), AcGePoint3d(8, 8, 8)));
}

}  // namespace
