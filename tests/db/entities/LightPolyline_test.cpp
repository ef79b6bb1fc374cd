// LWPOLYLINE: values, extents and transforms.
#include <gtest/gtest.h>

#include <random>

#include "dbpl.h"
#include "hostpolyline.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

std::string lightTags(std::string_view vertices, std::string_view count = "3",
                      std::string_view flags = "0") {
  return "0 LWPOLYLINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbPolyline\n90 " +
         std::string(count) + "\n70 " + std::string(flags) + "\n43 0.0\n" + std::string(vertices);
}

constexpr std::string_view kCorner = "10 0.0\n20 0.0\n10 4.0\n20 0.0\n42 0.5\n10 4.0\n20 3.0\n";

using Vertices = std::vector<hostx::LightPolylineVertex>;

Vertices verticesOf(const AcDbPolyline& polyline) {
  Vertices vertices(polyline.numVerts());
  for (unsigned int i = 0; i < vertices.size(); ++i) {
    polyline.getPointAt(i, vertices[i].point);
    polyline.getBulgeAt(i, vertices[i].bulge);
    polyline.getWidthsAt(i, vertices[i].startWidth, vertices[i].endWidth);
  }
  return vertices;
}

/// The direct form: the setters, one vertex after the other.
void reduceOneByOne(AcDbPolyline& polyline, const Vertices& wanted) {
  while (polyline.numVerts() > wanted.size()) {
    EXPECT_EQ(polyline.removeVertexAt(polyline.numVerts() - 1), Acad::eOk);
  }
  const Vertices are = verticesOf(polyline);
  for (unsigned int i = 0; i < wanted.size(); ++i) {
    if (are[i].point.x != wanted[i].point.x || are[i].point.y != wanted[i].point.y) {
      EXPECT_EQ(polyline.setPointAt(i, wanted[i].point), Acad::eOk);
    }
    if (are[i].bulge != wanted[i].bulge) {
      EXPECT_EQ(polyline.setBulgeAt(i, wanted[i].bulge), Acad::eOk);
    }
    if (are[i].startWidth != wanted[i].startWidth || are[i].endWidth != wanted[i].endWidth) {
      EXPECT_EQ(polyline.setWidthsAt(i, wanted[i].startWidth, wanted[i].endWidth), Acad::eOk);
    }
  }
}

/// The tags of light polylines with all that vertices may have or lack, and what stands between.
class RandomPolyline {
 public:
  explicit RandomPolyline(unsigned seed) : m_random(seed) {}

  bool chance(std::size_t percent) { return pick(100) < percent; }
  std::size_t pick(std::size_t count) {
    return std::uniform_int_distribution<std::size_t>(0, count - 1)(m_random);
  }

  std::string tags(std::string_view handle) {
    const std::size_t count = 2 + pick(12);
    std::string tags = "0 LWPOLYLINE\n5 " + std::string(handle) +
                       "\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbPolyline\n";
    tags += chance(90) ? "90 " + std::to_string(count) + "\n" : "";
    tags += chance(50) ? "70 1\n" : "";
    tags += chance(60) ? "43 " + std::string(chance(50) ? "2.50" : "0.0") + "\n" : "";
    for (std::size_t i = 0; i < count; ++i) {
      addVertex(tags);
    }
    return tags + (chance(50) ? "1001 ACAD\n1000 note\n" : "");
  }

 private:
  void addVertex(std::string& tags) {
    constexpr const char* kNumbers[] = {"0.0", "0", "1.50", "2.5", "-3.0", "4e1"};
    const auto add = [&](std::size_t percent, const char* code) {
      if (chance(percent)) {
        tags += std::string(code) + " " + kNumbers[pick(std::size(kNumbers))] + "\n";
      }
    };
    add(100, "10");
    add(90, "20");
    add(30, "91");
    add(40, "40");
    add(40, "41");
    add(30, "42");
    add(10, "62");
  }

  std::mt19937 m_random;
};

TEST(LightPolyline, ReadsItsVertices) {
  const Drawing drawing(smallDrawing(lightTags(kCorner)));
  const AcDbObjectPointer<AcDbPolyline> polyline(drawing.id(0x40));
  ASSERT_EQ(polyline->numVerts(), 3U);
  AcGePoint2d point;
  double bulge = 0.0;
  EXPECT_EQ(polyline->getPointAt(2, point), Acad::eOk);
  EXPECT_EQ(point.y, 3.0);
  EXPECT_EQ(polyline->getBulgeAt(1, bulge), Acad::eOk);
  EXPECT_EQ(bulge, 0.5);
  EXPECT_EQ(polyline->getPointAt(3, point), Acad::eInvalidIndex);
  EXPECT_EQ(polyline->segType(0), AcDbPolyline::kLine);
  EXPECT_EQ(polyline->segType(1), AcDbPolyline::kArc);
  EXPECT_EQ(polyline->segType(2), AcDbPolyline::kEmpty);
  EXPECT_FALSE(polyline->isClosed());
  AcGePoint3d end;
  EXPECT_EQ(polyline->getEndPoint(end), Acad::eOk);
  EXPECT_EQ(end.x, 4.0);
}

TEST(LightPolyline, AVertexIsMovedInPlace) {
  EXPECT_EQ(changed<AcDbPolyline>(smallDrawing(lightTags(kCorner)),
                                  [](AcDbPolyline& polyline) {
                                    EXPECT_EQ(polyline.setPointAt(1, AcGePoint2d(5.5, 0.0)),
                                              Acad::eOk);
                                  }),
            smallDrawing(lightTags("10 0.0\n20 0.0\n10 5.5\n20 0.0\n42 0.5\n10 4.0\n20 3.0\n")));
}

TEST(LightPolyline, VerticesAreAddedInFrontBetweenAndBehind) {
  EXPECT_EQ(
      changed<AcDbPolyline>(
          smallDrawing(lightTags(kCorner)),
          [](AcDbPolyline& polyline) {
            EXPECT_EQ(polyline.addVertexAt(3, AcGePoint2d(9.0, 9.0)), Acad::eOk);
            EXPECT_EQ(polyline.addVertexAt(1, AcGePoint2d(2.0, 0.0), -1.0), Acad::eOk);
            EXPECT_EQ(polyline.addVertexAt(0, AcGePoint2d(-1.0, 0.0)), Acad::eOk);
            EXPECT_EQ(polyline.addVertexAt(9, AcGePoint2d()), Acad::eInvalidIndex);
          }),
      smallDrawing(lightTags("10 -1.0\n20 0.0\n10 0.0\n20 0.0\n10 2.0\n20 0.0\n42 -1.0\n10 4.0\n"
                             "20 0.0\n42 0.5\n10 4.0\n20 3.0\n10 9.0\n20 9.0\n",
                             "6")));
}

TEST(LightPolyline, AVertexIsRemovedWithAllItHas) {
  EXPECT_EQ(changed<AcDbPolyline>(smallDrawing(lightTags(kCorner)),
                                  [](AcDbPolyline& polyline) {
                                    EXPECT_EQ(polyline.removeVertexAt(1), Acad::eOk);
                                    EXPECT_EQ(polyline.removeVertexAt(0),
                                              Acad::eDegenerateGeometry);
                                    EXPECT_EQ(polyline.removeVertexAt(2), Acad::eInvalidIndex);
                                  }),
            smallDrawing(lightTags("10 0.0\n20 0.0\n10 4.0\n20 3.0\n", "2")));
}

TEST(LightPolyline, ClosingAddsTheLastSegment) {
  const Drawing drawing(smallDrawing(lightTags(kCorner)));
  const AcDbObjectPointer<AcDbPolyline> polyline(drawing.id(0x40), AcDb::kForWrite);
  polyline->setClosed(true);
  EXPECT_TRUE(polyline->isClosed());
  EXPECT_EQ(polyline->segType(2), AcDbPolyline::kLine);
  AcGePoint3d end;
  EXPECT_EQ(polyline->getEndPoint(end), Acad::eOk);
  EXPECT_EQ(end.x, 0.0);
}

TEST(LightPolyline, WidthsAreOfOneVertexOrOfAll) {
  AcDbPolyline polyline;
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(polyline.addVertexAt(i, AcGePoint2d(i, 0.0), 0.0, 2.0, 2.0), Acad::eOk);
  }
  double start = 0.0;
  double end = 0.0;
  EXPECT_EQ(polyline.getConstantWidth(start), Acad::eOk);
  EXPECT_EQ(start, 2.0);
  EXPECT_EQ(polyline.setConstantWidth(3.0), Acad::eOk);
  EXPECT_EQ(polyline.setWidthsAt(1, 0.5, 1.5), Acad::eOk);
  EXPECT_EQ(polyline.getConstantWidth(start), Acad::eInvalidInput);
  EXPECT_EQ(polyline.getWidthsAt(0, start, end), Acad::eOk);
  EXPECT_EQ(start, 3.0);
  EXPECT_EQ(polyline.getWidthsAt(1, start, end), Acad::eOk);
  EXPECT_EQ(start, 0.5);
  EXPECT_EQ(end, 1.5);
  EXPECT_TRUE(polyline.hasWidth());
}

TEST(LightPolyline, LiesInThePlaneOfItsNormal) {
  AcDbPolyline polyline;
  polyline.addVertexAt(0, AcGePoint2d(1.0, 2.0));
  polyline.addVertexAt(1, AcGePoint2d(3.0, 2.0));
  EXPECT_EQ(polyline.setNormal(AcGeVector3d(0.0, 0.0, -2.0)), Acad::eOk);
  EXPECT_EQ(polyline.setElevation(5.0), Acad::eOk);
  EXPECT_EQ(polyline.setNormal(AcGeVector3d()), Acad::eInvalidNormal);
  AcGePoint3d point;
  EXPECT_EQ(polyline.getPointAt(0, point), Acad::eOk);
  EXPECT_TRUE(point.isEqualTo(AcGePoint3d(-1.0, 2.0, -5.0)));
}

TEST(LightPolyline, AnEmptyOneHasNoEnds) {
  const AcDbPolyline polyline;
  AcGePoint3d point;
  EXPECT_EQ(polyline.numVerts(), 0U);
  EXPECT_EQ(polyline.getStartPoint(point), Acad::eDegenerateGeometry);
  EXPECT_EQ(polyline.getEndPoint(point), Acad::eDegenerateGeometry);
  EXPECT_EQ(polyline.segType(0), AcDbPolyline::kEmpty);
}

TEST(LightPolyline, ReducingDoesWhatTheSettersDoOneByOne) {
  constexpr int kFirst = 1000;
  constexpr int kCount = 500;
  RandomPolyline random(7);
  std::string tags;
  for (int i = 0; i < kCount; ++i) {
    tags += random.tags(std::to_string(kFirst + i));
  }
  const Drawing oneByOne(smallDrawing(tags));
  const Drawing atOnce(smallDrawing(tags));
  for (const AcDbObjectId& id : entitiesOf(oneByOne.db())) {
    const AcDbObjectPointer<AcDbPolyline> direct(id, AcDb::kForWrite);
    const AcDbObjectPointer<AcDbPolyline> fast(atOnce.id(id.handle()), AcDb::kForWrite);
    const Vertices are = verticesOf(*direct.object());
    Vertices wanted(2 + random.pick(are.size() - 1));
    const std::size_t from = random.pick(are.size());
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      wanted[i] = are[(from + i) % are.size()];
    }
    wanted.back().bulge = 0.0;
    reduceOneByOne(*direct.object(), wanted);
    EXPECT_EQ(hostx::reduceVertices(*fast.object(), wanted), Acad::eOk);
  }
  EXPECT_TRUE(atOnce.saved() == oneByOne.saved());
}

TEST(LightPolyline, ReducingRefusesMoreVerticesFewerThanTwoAndNumbersThatAreNotFinite) {
  const std::string bytes = smallDrawing(lightTags(kCorner));
  EXPECT_EQ(changed<AcDbPolyline>(
                bytes,
                [](AcDbPolyline& polyline) {
                  Vertices vertices = verticesOf(polyline);
                  vertices.front().startWidth = HUGE_VAL;
                  EXPECT_EQ(hostx::reduceVertices(polyline, vertices), Acad::eInvalidInput);
                  vertices = Vertices(4);
                  EXPECT_EQ(hostx::reduceVertices(polyline, vertices), Acad::eInvalidIndex);
                  vertices = Vertices(1);
                  EXPECT_EQ(hostx::reduceVertices(polyline, vertices), Acad::eDegenerateGeometry);
                }),
            bytes);
  const Drawing drawing(bytes);
  const AcDbObjectPointer<AcDbPolyline> polyline(drawing.id(0x40));
  EXPECT_EQ(hostx::reduceVertices(*polyline.object(), Vertices(2)), Acad::eNotOpenForWrite);
  hostx::resetMisuse();
}

TEST(LightPolyline, IsRefusedWhereTheVersionHasNone) {
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()), AcDb::kForWrite);
  AcDbPolyline polyline;
  polyline.addVertexAt(0, AcGePoint2d(0.0, 0.0));
  EXPECT_EQ(space->appendAcDbEntity(&polyline), Acad::eIllegalEntityType);
  EXPECT_TRUE(polyline.objectId().isNull());
  EXPECT_FALSE(hostx::isModified(&drawing.db()));
}

TEST(Extents, OfPolylinesWithBulgesAndWidths) {
  AcDbPolyline polyline;
  polyline.addVertexAt(0, {0.0, 0.0}, 1.0);  // a half circle below the chord
  polyline.addVertexAt(1, {4.0, 0.0});
  expectBox(polyline, {0.0, -2.0, 0.0}, {4.0, 0.0, 0.0});
  polyline.setBulgeAt(0, -1.0);
  expectBox(polyline, {0.0, 0.0, 0.0}, {4.0, 2.0, 0.0});
  polyline.setBulgeAt(0, 0.0);
  polyline.setConstantWidth(1.0);
  expectBox(polyline, {0.0, -0.5, 0.0}, {4.0, 0.5, 0.0});
}

TEST(Extents, OfEmptyPolylinesAreNone) {
  AcDbExtents box;
  EXPECT_EQ(AcDbPolyline().getGeomExtents(box), Acad::eNullExtents);
  EXPECT_EQ(AcDb2dPolyline().getGeomExtents(box), Acad::eNullExtents);
  EXPECT_TRUE(box.isFresh());
}

}  // namespace
}  // namespace quoin::test
