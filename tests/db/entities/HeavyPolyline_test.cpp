// POLYLINE and its VERTEX records: values, extents and transforms.
#include <gtest/gtest.h>

#include "dbpl.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

/// The x coordinates of a polyline's vertices.
std::vector<double> xOf(const AcDb2dPolyline& polyline) {
  std::vector<double> xs;
  const std::unique_ptr<AcDbObjectIterator> walk(polyline.vertexIterator());
  for (; !walk->done(); walk->step()) {
    if (const AcDb2dVertex* const vertex = AcDb2dVertex::cast(walk->entity())) {
      xs.push_back(vertex->position().x);
    } else {
      const AcDbObjectPointer<AcDb2dVertex> opened(walk->objectId());
      EXPECT_EQ(opened.openStatus(), Acad::eOk);
      EXPECT_EQ(opened->ownerId(), polyline.objectId());
      xs.push_back(opened->position().x);
    }
  }
  return xs;
}

std::string polyline(std::string_view head, std::string_view vertexMarkers,
                     std::string_view vertexFlags) {
  std::string text = "0 POLYLINE\n5 40\n100 AcDbEntity\n8 Walls\n" + std::string(head);
  for (const char* point : {"10 0.0\n20 0.0\n30 1.0\n", "10 5.0\n20 0.0\n30 2.0\n"}) {
    text += "0 VERTEX\n5 4" + std::to_string(point[3] == '0' ? 1 : 2) +
            "\n100 AcDbEntity\n8 Walls\n" + std::string(vertexMarkers) + point +
            std::string(vertexFlags);
  }
  return text + "0 SEQEND\n5 4F\n100 AcDbEntity\n8 Walls\n";
}

TEST(HeavyPolyline, WalksItsVerticesWithoutTheEnd) {
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  const std::vector<AcDbObjectId> ids = entitiesOf(drawing.db());
  ASSERT_EQ(ids.size(), 1U);
  const AcDbObjectPointer<AcDb2dPolyline> polyline(ids[0]);
  ASSERT_EQ(polyline.openStatus(), Acad::eOk);
  EXPECT_EQ(xOf(*polyline), (std::vector<double>{0.0, 4.0, 4.0}));
  EXPECT_TRUE(polyline->isClosed());
  EXPECT_EQ(polyline->polyType(), AcDb::k2dSimplePoly);
  AcGePoint3d end;
  EXPECT_EQ(polyline->getEndPoint(end), Acad::eOk);
  EXPECT_EQ(end.x, 0.0);
}

TEST(HeavyPolyline, AnErasedVertexLeavesTheFile) {
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  const AcDbObjectPointer<AcDb2dPolyline> polyline(entitiesOf(drawing.db())[0], AcDb::kForWrite);
  const std::unique_ptr<AcDbObjectIterator> walk(polyline->vertexIterator());
  walk->step();
  {
    const AcDbObjectPointer<AcDb2dVertex> vertex(walk->objectId(), AcDb::kForWrite);
    EXPECT_EQ(vertex->bulge(), 1.0);
    EXPECT_EQ(vertex->erase(), Acad::eOk);
  }
  EXPECT_EQ(xOf(*polyline), (std::vector<double>{0.0, 4.0}));
  std::string expected(kHeavyR12);
  const std::string middle = "0 VERTEX\n8 A\n10 4.0\n20 0.0\n30 0.0\n42 1.0\n";
  expected.erase(expected.find(middle), middle.size());
  EXPECT_EQ(drawing.saved(), asciiDxf(entitiesOnly(expected)));
}

TEST(HeavyPolyline, ErasingItTakesItsVerticesAlongAndBack) {
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  const AcDbObjectId id = entitiesOf(drawing.db())[0];
  AcDbObjectId vertexId;
  {
    const AcDbObjectPointer<AcDb2dPolyline> polyline(id, AcDb::kForWrite);
    const std::unique_ptr<AcDbObjectIterator> walk(polyline->vertexIterator());
    vertexId = walk->objectId();
    EXPECT_EQ(polyline->erase(), Acad::eOk);
  }
  EXPECT_FALSE(vertexId.isErased());
  EXPECT_TRUE(vertexId.isEffectivelyErased());
  EXPECT_EQ(drawing.saved(), asciiDxf(entitiesOnly({})));
  const AcDbObjectPointer<AcDb2dPolyline> polyline(id, AcDb::kForWrite, true);
  EXPECT_EQ(polyline->erase(false), Acad::eOk);
  EXPECT_EQ(xOf(*polyline).size(), 3U);
  EXPECT_EQ(drawing.saved("again.dxf"), asciiDxf(entitiesOnly(kHeavyR12)));
}

TEST(HeavyPolyline, SplitsIntoNewOnes) {
  // As a client does that cuts a segment out: two polylines of the vertices on either side.
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  {
    const AcDbObjectPointer<AcDb2dPolyline> polyline(entitiesOf(drawing.db())[0], AcDb::kForWrite);
    AcGePoint3dArray first;
    first.append(AcGePoint3d(0.0, 0.0, 0.0));
    first.append(AcGePoint3d(4.0, 0.0, 0.0));
    const double bulges[] = {0.25, 0.0};
    auto* const half = new AcDb2dPolyline(first, 0.0, false, bulges);
    half->setPropertiesFrom(polyline.object());
    EXPECT_EQ(xOf(*half), (std::vector<double>{0.0, 4.0}));
    append(drawing.db(), half);
    EXPECT_EQ(polyline->erase(), Acad::eOk);
  }
  EXPECT_EQ(drawing.saved(),
            asciiDxf(entitiesOnly("0 POLYLINE\n8 A\n66 1\n10 0.0\n20 0.0\n30 0.0\n70 0\n"
                                  "0 VERTEX\n8 A\n10 0.0\n20 0.0\n30 0.0\n42 0.25\n"
                                  "0 VERTEX\n8 A\n10 4.0\n20 0.0\n30 0.0\n"
                                  "0 SEQEND\n8 A\n")));
}

TEST(HeavyPolyline, NewVerticesGoInFrontOfTheEnd) {
  const Drawing drawing(asciiDxf(entitiesOnly(kHeavyR12)));
  const AcDbObjectPointer<AcDb2dPolyline> polyline(entitiesOf(drawing.db())[0], AcDb::kForWrite);
  auto* const vertex = new AcDb2dVertex(AcGePoint3d(0.0, 3.0, 0.0));
  vertex->setLayer(L"A");
  AcDbObjectId id;
  EXPECT_EQ(polyline->appendVertex(id, vertex), Acad::eOk);
  EXPECT_EQ(polyline->appendVertex(id, vertex), Acad::eAlreadyInDb);
  EXPECT_EQ(vertex->close(), Acad::eOk);
  EXPECT_EQ(xOf(*polyline), (std::vector<double>{0.0, 4.0, 4.0, 0.0}));
  std::string expected(kHeavyR12);
  expected.insert(expected.find("0 SEQEND"), "0 VERTEX\n8 A\n10 0.0\n20 3.0\n30 0.0\n");
  EXPECT_EQ(drawing.saved(), asciiDxf(entitiesOnly(expected)));
}

TEST(HeavyPolyline, ANewOneIsValidInNewerFilesToo) {
  const Drawing drawing(smallDrawing());
  AcGePoint3dArray vertices;
  vertices.append(AcGePoint3d(0.0, 0.0, 1.0));
  vertices.append(AcGePoint3d(4.0, 0.0, 2.0));
  append(drawing.db(), new AcDb3dPolyline(vertices, true));
  EXPECT_EQ(drawing.saved(),
            smallDrawing("0 POLYLINE\n5 100\n330 1F\n100 AcDbEntity\n8 0\n100 AcDb3dPolyline\n"
                         "66 1\n10 0.0\n20 0.0\n30 0.0\n70 9\n"
                         "0 VERTEX\n5 101\n330 100\n100 AcDbEntity\n8 0\n100 AcDbVertex\n"
                         "100 AcDb3dPolylineVertex\n10 0.0\n20 0.0\n30 1.0\n70 32\n"
                         "0 VERTEX\n5 102\n330 100\n100 AcDbEntity\n8 0\n100 AcDbVertex\n"
                         "100 AcDb3dPolylineVertex\n10 4.0\n20 0.0\n30 2.0\n70 32\n"
                         "0 SEQEND\n5 103\n330 100\n100 AcDbEntity\n8 0\n")
                .replace(drawing.saved().find("$HANDSEED") + 16, 3, "104"));
}

TEST(HeavyPolyline, ALayerGoesToItsVertices) {
  const Drawing drawing(
      asciiDxf(entitiesOnly(std::string(kHeavyR12) + "0 POINT\n8 B\n10 0\n20 0\n")));
  {
    const AcDbObjectPointer<AcDb2dPolyline> polyline(entitiesOf(drawing.db())[0], AcDb::kForWrite);
    EXPECT_EQ(polyline->setLayer(L"B"), Acad::eOk);
    EXPECT_EQ(polyline->setColorIndex(4, false), Acad::eOk);
  }
  const std::string saved = drawing.saved();
  EXPECT_EQ(saved.find("\r\nA\r\n"), std::string::npos);
  EXPECT_EQ(saved.find(" 62"), saved.rfind(" 62"));
}

TEST(HeavyPolyline, VerticesDoNotStandAlone) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()), AcDb::kForWrite);
  AcDb2dVertex vertex;
  EXPECT_EQ(space->appendAcDbEntity(&vertex), Acad::eIllegalEntityType);
  EXPECT_EQ(space->appendAcDbEntity(nullptr), Acad::eNullEntityPointer);
}

TEST(Extents, OfThePolylineOfEntitiesAreThoseOfTheLightOne) {
  AcGePoint3dArray points;
  points.append({0.0, 0.0, 2.0});
  points.append({4.0, 0.0, 2.0});
  points.append({4.0, 3.0, 2.0});
  const double bulges[] = {0.3, -0.7, 1.5};
  const AcDb2dPolyline heavy(points, 2.0, true, bulges);
  AcDbPolyline light;
  for (int i = 0; i < 3; ++i) {
    light.addVertexAt(static_cast<unsigned int>(i), {points[i].x, points[i].y}, bulges[i]);
  }
  light.setClosed(true);
  light.setElevation(2.0);
  AcDbExtents box;
  ASSERT_EQ(light.getGeomExtents(box), Acad::eOk);
  expectBox(heavy, box.minPoint(), box.maxPoint());
}

TEST(Vertices, AreWhatTheFlagsOfTheirPolylineSay) {
  for (const char* head : {"100 AcDb3dPolyline\n70 8\n", "70 8\n", "100 AcDb3dPolyline\n70 0\n",
                           "100 AcDb2dPolyline\n70 8\n"}) {
    for (const char* markers : {"100 AcDbVertex\n100 AcDb3dPolylineVertex\n", "",
                                "100 AcDbVertex\n", "100 AcDbVertex\n100 AcDb2dVertex\n"}) {
      for (const char* flags : {"", "70 0\n", "70 32\n"}) {
        const Drawing drawing(smallDrawing(polyline(head, markers, flags)));
        const AcDbObjectPointer<AcDb3dPolyline> spatial(drawing.id(0x40));
        ASSERT_EQ(spatial.openStatus(), Acad::eOk) << head;
        const AcDbObjectPointer<AcDb3dPolylineVertex> vertex(drawing.id(0x42));
        ASSERT_EQ(vertex.openStatus(), Acad::eOk) << head << markers << flags;
        EXPECT_EQ(vertex->position(), AcGePoint3d(5.0, 0.0, 2.0)) << markers;
      }
    }
  }
  const Drawing flat(smallDrawing(polyline("100 AcDb2dPolyline\n70 0\n", "", "70 32\n")));
  EXPECT_EQ(AcDbObjectPointer<AcDb2dVertex>(flat.id(0x42)).openStatus(), Acad::eOk);
  const Drawing mesh(smallDrawing(polyline("100 AcDbPolygonMesh\n70 16\n", "", "")));
  EXPECT_FALSE(hostx::hasTypedClass(mesh.id(0x40)));
  EXPECT_FALSE(hostx::hasTypedClass(mesh.id(0x42)));
}

}  // namespace
}  // namespace quoin::test
