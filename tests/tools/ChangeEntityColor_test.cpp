#include "ChangeEntityColor.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/Drawings.h"

namespace {

using quoin::test::Drawing;

std::string polylineTags() {
  return "0 POLYLINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDb2dPolyline\n66 1\n10 0.0\n"
         "20 0.0\n30 0.0\n0 VERTEX\n5 41\n330 40\n100 AcDbEntity\n8 Walls\n100 AcDbVertex\n"
         "100 AcDb2dVertex\n10 0.0\n20 0.0\n30 0.0\n0 SEQEND\n5 42\n330 40\n100 AcDbEntity\n"
         "8 Walls\n";
}

TEST(ChangeEntityColor, PaintsAnEntityThatWasByLayer) {
  const Drawing drawing;
  const AcDbObjectId id =
      quoin::test::append(drawing.db(), new AcDbLine(AcGePoint3d(), AcGePoint3d(1, 0, 0)));
  {
    const AcDbObjectPointer<AcDbEntity> line(id, AcDb::kForWrite);
    EXPECT_TRUE(line->color().isByLayer());
    CChangeEntityColor paint(255, 0, 0);
    paint(line.object());
  }
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbEntity> line(quoin::test::entitiesOf(again.db()).at(0));
  EXPECT_TRUE(line->color().isByColor());
  EXPECT_EQ(line->color().red(), 255);
  EXPECT_EQ(line->color().green(), 0);
  EXPECT_EQ(line->color().blue(), 0);
}

TEST(ChangeEntityColor, PaintsVerticesToo) {
  const Drawing drawing(quoin::test::smallDrawing(polylineTags()));
  {
    const AcDbObjectPointer<AcDbEntity> polyline(drawing.id(0x40), AcDb::kForWrite);
    CChangeEntityColor(0, 255, 0)(polyline.object());
  }
  const AcDbObjectPointer<AcDbEntity> vertex(drawing.id(0x41));
  EXPECT_EQ(vertex->colorIndex(), 3);  // R2000 knows the palette only
}

TEST(ChangeEntityColor, GoesOverManyEntities) {
  std::vector<AcDbLine> lines(3);
  std::vector<AcDbEntity*> entities;
  for (AcDbLine& line : lines) {
    entities.push_back(&line);
  }
  CChangeEntityColor paint(1, 2, 3);
  CChangeEntityColor other(0, 0, 0);
  other = paint;
  std::for_each(entities.begin(), entities.end(), other);
  for (const AcDbLine& line : lines) {
    EXPECT_EQ(line.color().entityColor(), AcCmEntityColor(1, 2, 3));
  }
}

TEST(ChangeEntityColor, R12GetsTheNearestOfThePalette) {
  const Drawing drawing(quoin::test::asciiDxf(
      quoin::test::entitiesOnly("0 LINE\n8 A\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n")));
  {
    const AcDbObjectPointer<AcDbEntity> line(quoin::test::entitiesOf(drawing.db()).at(0),
                                             AcDb::kForWrite);
    CChangeEntityColor(254, 1, 1)(line.object());
  }
  EXPECT_EQ(drawing.saved(), quoin::test::asciiDxf(quoin::test::entitiesOnly(
                                 "0 LINE\n8 A\n62 1\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n")));
}

}  // namespace
