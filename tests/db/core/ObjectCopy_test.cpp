// Clones, handing places over, and extended data.
#include <gtest/gtest.h>

#include "adscodes.h"
#include "dbpl.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

constexpr std::string_view kRichLine =
    "0 LINE\n5 40\n102 {ACAD_XDICTIONARY\n360 99\n102 }\n102 {ACAD_REACTORS\n330 D\n102 }\n330 1F\n"
    "100 AcDbEntity\n8 Walls\n6 Continuous\n62 3\n48 2.50\n370 30\n100 AcDbLine\n39 1.0\n10 1.50\n"
    "20 0.0\n30 0.0\n11 2.0\n21 0.0\n31 0.0\n1001 ACAD\n1000 kept\n1005 40\n";

// --- clones ---------------------------------------------------------------------------------

TEST(Clone, KeepsEverythingButItsPlace) {
  const Drawing drawing(smallDrawing(kRichLine));
  AcDbEntity* copy = nullptr;
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40));
    copy = AcDbEntity::cast(source->clone());
  }
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->isA(), AcDbLine::desc());
  EXPECT_TRUE(copy->objectId().isNull());
  EXPECT_EQ(append(drawing.db(), copy).handle(), AcDbHandle(0x100));
  // The application of the extended data was not registered: a new entity makes it so.
  const Drawing again(drawing.saved());
  AcDbRegAppTable* apps = nullptr;
  again.db().getRegAppTable(apps);
  EXPECT_TRUE(apps->has(L"ACAD"));
  apps->close();
  EXPECT_NE(drawing.saved().find(asciiDxf("0 LINE\n5 100\n330 1F\n100 AcDbEntity\n8 Walls\n"
                                          "6 Continuous\n62 3\n48 2.50\n370 30\n100 AcDbLine\n"
                                          "39 1.0\n10 1.50\n")),
            std::string::npos);
}

TEST(Clone, OfAPolylineHasItsOwnVertices) {
  const Drawing drawing(asciiDxf(
      entitiesOnly("0 POLYLINE\n8 A\n66 1\n70 8\n0 VERTEX\n8 A\n10 1.0\n20 2.0\n30 3.0\n70 32\n"
                   "0 VERTEX\n8 A\n10 4.0\n20 5.0\n30 6.0\n70 32\n0 SEQEND\n8 A\n")));
  AcDb3dPolyline* copy = nullptr;
  {
    const AcDbObjectPointer<AcDb3dPolyline> source(entitiesOf(drawing.db()).at(0));
    copy = AcDb3dPolyline::cast(source->clone());
  }
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(copy->transformBy(AcGeMatrix3d().setToTranslation({1.0, 0.0, 0.0})), Acad::eOk);
  append(drawing.db(), copy);
  const Drawing again(drawing.saved());
  ASSERT_EQ(entitiesOf(again.db()).size(), 2U);
  const AcDbObjectPointer<AcDb3dPolyline> source(entitiesOf(again.db())[0]);
  const AcDbObjectPointer<AcDb3dPolyline> moved(entitiesOf(again.db())[1]);
  AcGePoint3d point;
  EXPECT_EQ(source->getEndPoint(point), Acad::eOk);
  EXPECT_EQ(point.x, 4.0);
  EXPECT_EQ(moved->getEndPoint(point), Acad::eOk);
  EXPECT_EQ(point.x, 5.0);
}

TEST(Clone, FromR12IntoANewerDrawingGetsItsMarkers) {
  const Drawing old(asciiDxf(entitiesOnly(
      "0 ARC\n8 A\n62 3\n10 1.0\n20 2.0\n30 0.0\n40 5.0\n50 10.0\n51 90.0\n"
      "0 TEXT\n8 A\n10 1.0\n20 2.0\n30 0.0\n40 5.0\n1 hello\n72 1\n11 1.0\n21 2.0\n31 0.0\n73 2\n"
      "0 POLYLINE\n8 A\n66 1\n70 0\n0 VERTEX\n8 A\n10 1.0\n20 2.0\n30 0.0\n42 0.5\n0 SEQEND\n8 "
      "A\n")));
  const Drawing newer(smallDrawing());
  for (const AcDbObjectId& id : entitiesOf(old.db())) {
    const AcDbObjectPointer<AcDbEntity> source(id);
    append(newer.db(), AcDbEntity::cast(source->clone()));
  }
  const std::string saved = newer.saved();
  EXPECT_NE(
      saved.find(asciiDxf("330 1F\n100 AcDbEntity\n8 A\n62 3\n100 AcDbCircle\n10 1.0\n20 2.0\n"
                          "30 0.0\n40 5.0\n100 AcDbArc\n50 10.0\n51 90.0\n")),
      std::string::npos);
  EXPECT_NE(saved.find(asciiDxf("11 1.0\n21 2.0\n31 0.0\n100 AcDbText\n73 2\n")),
            std::string::npos);
  EXPECT_NE(
      saved.find(asciiDxf("100 AcDbVertex\n100 AcDb2dVertex\n10 1.0\n20 2.0\n30 0.0\n42 0.5\n")),
      std::string::npos);
  const Drawing again(saved);
  EXPECT_EQ(entitiesOf(again.db()).size(), 3U);
}

TEST(Clone, OfAKindThatNobodyKnowsKeepsAllItsTags) {
  const std::string strange =
      "0 MYSTERY\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbMystery\n70 1\n300 text\n"
      "90 12345\n330 1B\n";
  const Drawing drawing(smallDrawing(strange));
  AcDbEntity* copy = nullptr;
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40));
    EXPECT_EQ(source->isA(), AcDbEntity::desc());
    EXPECT_EQ(hostx::kindName(source.object()), L"MYSTERY");
    EXPECT_FALSE(hostx::hasTypedClass(drawing.id(0x40)));
    copy = AcDbEntity::cast(source->clone());
  }
  append(drawing.db(), copy);
  EXPECT_NE(drawing.saved().find(asciiDxf("0 MYSTERY\n5 100\n330 1F\n100 AcDbEntity\n8 Walls\n"
                                          "100 AcDbMystery\n70 1\n300 text\n90 12345\n330 1B\n")),
            std::string::npos);
}

TEST(CopyFrom, TakesTheValuesAndKeepsThePlace) {
  const Drawing drawing(smallDrawing(std::string(kRichLine) + lineTags("41", "0")));
  {
    const AcDbObjectPointer<AcDbLine> target(drawing.id(0x41), AcDb::kForWrite);
    const AcDbObjectPointer<AcDbLine> source(drawing.id(0x40));
    EXPECT_EQ(target->copyFrom(source.object()), Acad::eOk);
    EXPECT_EQ(target->colorIndex(), 3);
    EXPECT_EQ(target->thickness(), 1.0);
    EXPECT_EQ(target->copyFrom(nullptr), Acad::eNullObjectPointer);
    const AcDbCircle circle;
    EXPECT_EQ(target->copyFrom(&circle), Acad::eNotThatKindOfClass);
  }
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbLine> read(again.id(0x41));
  EXPECT_EQ(read->colorIndex(), 3);
  EXPECT_TRUE(read->extensionDictionary().isNull());
}

TEST(CopyFrom, ARecordKeepsItsName) {
  const Drawing drawing(smallDrawing());
  AcDbLayerTableRecord made;
  made.setName(L"Fresh");
  const AcDbObjectPointer<AcDbLayerTableRecord> walls(drawing.id(0x11));
  EXPECT_EQ(made.copyFrom(walls.object()), Acad::eOk);
  const ACHAR* name = nullptr;
  EXPECT_EQ(made.getName(name), Acad::eOk);
  EXPECT_EQ(std::wstring(name), L"Fresh");
  EXPECT_EQ(made.color().colorIndex(), 1);
}

// --- handing over ---------------------------------------------------------------------------

TEST(HandOver, TheNewObjectTakesPlaceAndHandle) {
  const Drawing drawing(smallDrawing(std::string(kRichLine) + lineTags("41")));
  AcDbLine* before = nullptr;
  ASSERT_EQ(acdbOpenObject(before, drawing.id(0x40), AcDb::kForWrite), Acad::eOk);
  auto* const circle = new AcDbCircle({1.0, 2.0, 0.0}, AcGeVector3d::kZAxis, 3.0);
  EXPECT_EQ(before->handOverTo(nullptr), Acad::eNullObjectPointer);
  EXPECT_EQ(before->handOverTo(circle), Acad::eOk);
  EXPECT_TRUE(before->objectId().isNull());
  EXPECT_EQ(before->endPoint().x, 2.0);  // it lives on, as a free object
  delete before;
  EXPECT_EQ(circle->objectId(), drawing.id(0x40));
  EXPECT_EQ(circle->close(), Acad::eOk);
  EXPECT_NE(drawing.saved().find(asciiDxf(
                "0 CIRCLE\n5 40\n102 {ACAD_XDICTIONARY\n360 99\n102 }\n102 {ACAD_REACTORS\n330 D\n"
                "102 }\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbCircle\n10 1.0\n20 2.0\n30 0.0\n"
                "40 3.0\n1001 ACAD\n1000 kept\n1005 40\n0 LINE\n5 41\n")),
            std::string::npos);
}

TEST(HandOver, ALineBecomesAPolylineWithVertices) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  AcDbLine* before = nullptr;
  ASSERT_EQ(acdbOpenObject(before, drawing.id(0x40), AcDb::kForWrite), Acad::eOk);
  AcGePoint3dArray points;
  points.append({0.0, 0.0, 0.0});
  points.append({1.0, 0.0, 0.0});
  auto* const polyline = new AcDb3dPolyline(points);
  EXPECT_EQ(before->handOverTo(polyline), Acad::eOk);
  delete before;
  polyline->close();
  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk);
  const AcDbObjectPointer<AcDb3dPolyline> read(again.id(0x40));
  ASSERT_EQ(read.openStatus(), Acad::eOk);
  AcGePoint3d end;
  EXPECT_EQ(read->getEndPoint(end), Acad::eOk);
  EXPECT_EQ(end.x, 1.0);
}

TEST(HandOver, OnlyFreshEntitiesTakeAPlace) {
  const Drawing drawing(smallDrawing(lineTags("40") + lineTags("41")));
  const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40), AcDb::kForWrite);
  const AcDbObjectPointer<AcDbLine> other(drawing.id(0x41), AcDb::kForWrite);
  EXPECT_EQ(line->handOverTo(other.object()), Acad::eAlreadyInDb);
  AcDbLayerTableRecord layer;
  EXPECT_EQ(line->handOverTo(&layer), Acad::eNotApplicable);
  AcDbLine free;
  EXPECT_EQ(free.handOverTo(other.object()), Acad::eNotInDatabase);
}

// --- extended data --------------------------------------------------------------------------

resbuf* text(int code, const wchar_t* value, resbuf* next = nullptr) {
  resbuf* const buffer = acutNewRb(code);
  acutNewString(value, buffer->resval.rstring);
  buffer->rbnext = next;
  return buffer;
}
resbuf* real(int code, double value, resbuf* next = nullptr) {
  resbuf* const buffer = acutNewRb(code);
  buffer->resval.rreal = value;
  buffer->rbnext = next;
  return buffer;
}

TEST(ExtendedData, IsReadByApplication) {
  const Drawing drawing(smallDrawing(lineTags("40") +
                                     "1001 ONE\n1000 a\n1070 -7\n1071 70000\n1010 1.0\n1020 2.0\n"
                                     "1030 3.0\n1004 CAFE\n1001 TWO\n1040 2.5\n1005 1F\n"));
  const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40));
  resbuf* const one = line->xData(L"one");
  ASSERT_NE(one, nullptr);
  EXPECT_EQ(std::wstring(one->resval.rstring), L"ONE");
  const resbuf* at = one->rbnext;
  EXPECT_EQ(std::wstring(at->resval.rstring), L"a");
  at = at->rbnext;
  EXPECT_EQ(at->resval.rint, -7);
  at = at->rbnext;
  EXPECT_EQ(at->resval.rlong, 70000);
  at = at->rbnext;
  EXPECT_EQ(at->restype, 1010);
  EXPECT_EQ(at->resval.rpoint[2], 3.0);
  at = at->rbnext;
  EXPECT_EQ(at->resval.rbinary.clen, 2);
  EXPECT_EQ(static_cast<unsigned char>(at->resval.rbinary.buf[0]), 0xCA);
  EXPECT_EQ(at->rbnext, nullptr);
  acutRelRb(one);
  resbuf* const all = line->xData();
  int count = 0;
  for (const resbuf* buffer = all; buffer; buffer = buffer->rbnext) {
    ++count;
  }
  EXPECT_EQ(count, 9);
  acutRelRb(all);
  EXPECT_EQ(line->xData(L"THREE"), nullptr);
}

TEST(ExtendedData, IsReplacedOneApplicationAtATime) {
  const Drawing drawing(smallDrawing(lineTags("40") + "1001 ONE\n1000 a\n1001 TWO\n1040 2.5\n"));
  {
    const AcDbObjectPointer<AcDbLine> line(drawing.id(0x40), AcDb::kForWrite);
    resbuf* data = text(1001, L"ONE", real(1040, 7.5, text(1000, L"Wände")));
    EXPECT_EQ(line->setXData(data), Acad::eOk);
    acutRelRb(data);
    data = text(1001, L"TWO");
    EXPECT_EQ(line->setXData(data), Acad::eOk);
    acutRelRb(data);
    data = real(1040, 1.0);
    EXPECT_EQ(line->setXData(data), Acad::eInvalidInput);
    acutRelRb(data);
    data = text(1001, L"ONE", real(40, 1.0));
    EXPECT_EQ(line->setXData(data), Acad::eInvalidDxfCode);
    acutRelRb(data);
    EXPECT_EQ(line->setXData(nullptr), Acad::eInvalidInput);
  }
  EXPECT_NE(drawing.saved().find(asciiDxf("31 0.0\n1001 ONE\n1040 7.5\n1000 W\xE4nde\n0 ENDSEC\n")),
            std::string::npos);
}

TEST(ExtendedData, OfAnUnknownApplicationRegistersIt) {
  const Drawing drawing;
  auto* const line = new AcDbLine;
  resbuf* const data = text(1001, L"QUOIN_TEST", text(1000, L"x"));
  EXPECT_EQ(line->setXData(data), Acad::eOk);
  acutRelRb(data);
  append(drawing.db(), line);
  const Drawing again(drawing.saved());
  AcDbRegAppTable* apps = nullptr;
  ASSERT_EQ(again.db().getRegAppTable(apps), Acad::eOk);
  EXPECT_TRUE(apps->has(L"quoin_test"));
  apps->close();
}

}  // namespace
}  // namespace quoin::test
