// Layer, colour, linetype and the rest that all entities share, and that changing one touches
// nothing else in the record.
#include <gtest/gtest.h>

#include "support/Drawings.h"

namespace quoin::test {
namespace {

/// What a file has behind these tags of a small drawing; one entity with handle 40.
std::string entityText(std::string_view common, std::string_view rest = {}) {
  return "0 LINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n" + std::string(common) +
         "100 AcDbLine\n10 1.50\n20 0.0\n30 0.0\n11 2.0\n21 0.0\n31 0.0\n" + std::string(rest);
}

TEST(EntityProperties, ASetterTouchesItsTagAlone) {
  const std::string bytes =
      changed(smallDrawing(entityText("62 1\n", "1001 ACAD\n1000 kept\n")),
              [](AcDbEntity& entity) { EXPECT_EQ(entity.setColorIndex(5), Acad::eOk); });
  EXPECT_EQ(bytes, smallDrawing(entityText("62 5\n", "1001 ACAD\n1000 kept\n")));
}

TEST(EntityProperties, AMissingTagIsInsertedInItsPlace) {
  const std::string bytes = changed(smallDrawing(entityText({})), [](AcDbEntity& entity) {
    EXPECT_EQ(entity.setLineWeight(AcDb::kLnWt050), Acad::eOk);
    EXPECT_EQ(entity.setLinetypeScale(2.5), Acad::eOk);
    EXPECT_EQ(entity.setColorIndex(3), Acad::eOk);
    EXPECT_EQ(entity.setVisibility(AcDb::kInvisible), Acad::eOk);
    EXPECT_EQ(entity.setLinetype(L"Continuous"), Acad::eOk);
  });
  EXPECT_EQ(bytes, smallDrawing(entityText("6 Continuous\n62 3\n48 2.5\n60 1\n370 50\n")));
}

TEST(EntityProperties, DefaultsAreNotWrittenAndByLayerTakesTheTagsAway) {
  EXPECT_EQ(changed(smallDrawing(entityText({})),
                    [](AcDbEntity& entity) {
                      entity.setColorIndex(256);
                      entity.setLinetype(L"BYLAYER");
                      entity.setLinetypeScale(1.0);
                      entity.setVisibility(AcDb::kVisible);
                      entity.setLineWeight(AcDb::kLnWtByLayer);
                    }),
            smallDrawing(entityText({})));
  EXPECT_EQ(changed(smallDrawing(entityText("6 Continuous\n62 1\n")),
                    [](AcDbEntity& entity) {
                      entity.setColorIndex(256);
                      entity.setLinetype(L"ByLayer");
                    }),
            smallDrawing(entityText({})));
}

TEST(EntityProperties, TheLayerMustExistAndBeAllowed) {
  const Drawing drawing(smallDrawing(entityText({})));
  const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x40), AcDb::kForWrite);
  EXPECT_EQ(taken(entity->layer()), L"Walls");
  EXPECT_EQ(entity->layerId(), drawing.id(0x11));
  EXPECT_EQ(entity->setLayer(L"Nowhere"), Acad::eKeyNotFound);
  EXPECT_EQ(entity->setLayer(L""), Acad::eInvalidInput);
  EXPECT_EQ(entity->setLayer(static_cast<const ACHAR*>(nullptr)), Acad::eInvalidInput);
  EXPECT_EQ(entity->setLayer(drawing.id(0x40)), Acad::eInvalidLayer);
  EXPECT_EQ(entity->setLayer(AcDbObjectId::kNull), Acad::eInvalidLayer);
  const Drawing other(smallDrawing());
  EXPECT_EQ(entity->setLayer(other.db().layerZero()), Acad::eWrongDatabase);
  EXPECT_EQ(entity->setLayer(L"WALLS"), Acad::eOk);
  EXPECT_FALSE(entity->isModified());  // the same layer
  EXPECT_EQ(entity->setLayer(drawing.db().layerZero()), Acad::eOk);
  EXPECT_EQ(taken(entity->layer()), L"0");
}

TEST(EntityProperties, HiddenLayersNeedPermission) {
  const Drawing drawing(smallDrawing(entityText({})));
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(drawing.db().getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* const hidden = new AcDbLayerTableRecord;
  // Names that only the host gives: the check of new names is its users'.
  EXPECT_EQ(hidden->setName(L"*Hidden"), Acad::eInvalidInput);
  delete hidden;
  layers->close();
  auto* const line = new AcDbLine;
  line->setLayer(L"*Hidden");
  const AcDbObjectId id = append(drawing.db(), line);
  const AcDbObjectPointer<AcDbEntity> appended(id);
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(appended->layerId());
  ASSERT_EQ(layer.openStatus(), Acad::eOk);
  EXPECT_TRUE(layer->isHidden());
  const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x40), AcDb::kForWrite);
  EXPECT_EQ(entity->setLayer(layer->objectId()), Acad::eInvalidLayer);
  EXPECT_EQ(entity->setLayer(layer->objectId(), true, true), Acad::eOk);
}

TEST(EntityProperties, TrueColoursNeedR2004) {
  const auto paint = [](AcDbEntity& entity) {
    AcCmColor red;
    red.setRGB(255, 0, 0);
    EXPECT_EQ(entity.setColor(red), Acad::eOk);
  };
  EXPECT_EQ(changed(smallDrawing(entityText({})), paint), smallDrawing(entityText("62 1\n")));
  std::string newer = smallR2000(entityText("62 3\n"));
  newer.replace(newer.find("AC1015"), 6, "AC1018");
  std::string expected = smallR2000(entityText("62 1\n420 16711680\n"));
  expected.replace(expected.find("AC1015"), 6, "AC1018");
  EXPECT_EQ(changed(asciiDxf(newer), paint), asciiDxf(expected));
}

TEST(EntityProperties, TrueColoursComeBackWithTheirBook) {
  const Drawing drawing;
  auto* const made = new AcDbLine;
  AcCmColor color;
  color.setRGB(10, 200, 30);
  color.setNames(L"Leaf", L"BOOK");
  EXPECT_EQ(made->setColor(color), Acad::eOk);
  const AcDbObjectId id = append(drawing.db(), made);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbEntity> entity(again.id(id.handle().asUInt64()));
  EXPECT_TRUE(entity->color() == color);
  EXPECT_TRUE(entity->entityColor().isByColor());
  EXPECT_EQ(std::wstring(entity->color().bookName()), L"BOOK");
}

TEST(EntityProperties, AnotherProgramsNearestIndexStays) {
  std::string text = smallR2000(entityText("62 42\n420 14848000\n"));
  text.replace(text.find("AC1015"), 6, "AC1018");
  const std::string bytes = changed(asciiDxf(text), [](AcDbEntity& entity) {
    EXPECT_EQ(entity.colorIndex(), 42);
    EXPECT_TRUE(entity.color().isByColor());
    EXPECT_EQ(entity.setColor(entity.color()), Acad::eOk);
  });
  EXPECT_EQ(bytes, asciiDxf(text));
}

TEST(EntityProperties, WrongValuesAreRefused) {
  const Drawing drawing(smallDrawing(entityText({})));
  const AcDbObjectPointer<AcDbLine> entity(drawing.id(0x40), AcDb::kForWrite);
  EXPECT_EQ(entity->setColorIndex(257), Acad::eInvalidInput);
  EXPECT_EQ(entity->setLinetypeScale(0.0), Acad::eInvalidInput);
  EXPECT_EQ(entity->setLinetype(L"Nowhere"), Acad::eKeyNotFound);
  EXPECT_EQ(entity->setLinetype(AcDbObjectId::kNull), Acad::eInvalidInput);
  EXPECT_EQ(entity->setMaterial(L"Nowhere"), Acad::eKeyNotFound);
  EXPECT_EQ(entity->setMaterial(drawing.id(0x40)), Acad::eNotThatKindOfClass);
  EXPECT_EQ(entity->setEndPoint(AcGePoint3d(std::nan(""), 0.0, 0.0)), Acad::eInvalidInput);
  EXPECT_FALSE(entity->isModified());
}

TEST(EntityProperties, EveryDrawingHasItsBuiltInLinetypes) {
  const Drawing drawing(asciiDxf(entitiesOnly("0 LINE\n8 A\n6 BYBLOCK\n10 1\n20 2\n11 3\n21 4\n")));
  ASSERT_EQ(drawing.status, Acad::eOk);
  const AcDbObjectId id = entitiesOf(drawing.db()).at(0);
  const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
  EXPECT_EQ(entity->linetypeId(), drawing.db().byBlockLinetype());
  EXPECT_FALSE(drawing.db().byLayerLinetype().isNull());
  EXPECT_EQ(entity->setLinetype(drawing.db().byLayerLinetype()), Acad::eOk);
  EXPECT_EQ(taken(entity->linetype()), L"ByLayer");
}

TEST(EntityProperties, PropertiesFromAnotherEntityComeAlong) {
  const Drawing drawing;
  AcDbLine source;
  AcCmColor color;
  color.setRGB(1, 2, 3);
  source.setColor(color);
  source.setLineWeight(AcDb::kLnWt100);
  source.setLinetypeScale(3.0);
  source.setVisibility(AcDb::kInvisible);
  source.setLayer(L"Fresh");
  AcDbCircle target(AcGePoint3d(1.0, 2.0, 3.0), AcGeVector3d::kZAxis, 4.0);
  EXPECT_EQ(target.setPropertiesFrom(&source), Acad::eOk);
  EXPECT_TRUE(target.color() == color);
  EXPECT_EQ(target.lineWeight(), AcDb::kLnWt100);
  EXPECT_EQ(target.linetypeScale(), 3.0);
  EXPECT_EQ(target.visibility(), AcDb::kInvisible);
  EXPECT_EQ(taken(target.layer()), L"Fresh");
  EXPECT_EQ(target.radius(), 4.0);
  EXPECT_EQ(target.setPropertiesFrom(nullptr), Acad::eNullEntityPointer);
}

TEST(EntityProperties, PropertiesFromAFreeEntityMakeItsLayer) {
  const Drawing drawing(smallDrawing(entityText("62 1\n")));
  AcDbLine source;
  source.setLayer(L"Fresh");
  const AcDbObjectPointer<AcDbEntity> entity(drawing.id(0x40), AcDb::kForWrite);
  EXPECT_EQ(entity->setPropertiesFrom(&source), Acad::eOk);
  EXPECT_FALSE(entity->layerId().isNull());
  EXPECT_EQ(entity->colorIndex(), 256);
}

TEST(EntityProperties, DatabaseDefaultsAreTheCurrentOnes) {
  const Drawing drawing(smallDrawing());
  EXPECT_EQ(drawing.db().setClayer(drawing.id(0x11)), Acad::eOk);
  AcDbLine line;
  line.setDatabaseDefaults(&drawing.db());
  EXPECT_EQ(taken(line.layer()), L"Walls");
  EXPECT_EQ(line.colorIndex(), 256);
}

TEST(EntityProperties, R12KnowsFewerProperties) {
  const std::string r12 = asciiDxf(entitiesOnly("0 LINE\n8 A\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n"));
  const Drawing drawing(r12);
  const AcDbObjectPointer<AcDbEntity> entity(entitiesOf(drawing.db()).at(0), AcDb::kForWrite);
  EXPECT_EQ(entity->setLineWeight(AcDb::kLnWt050), Acad::eOk);
  EXPECT_EQ(entity->setLinetypeScale(2.0), Acad::eOk);
  EXPECT_EQ(entity->setVisibility(AcDb::kInvisible), Acad::eNotApplicable);
  EXPECT_FALSE(entity->isModified());
  EXPECT_EQ(entity->setColorIndex(2), Acad::eOk);
  EXPECT_EQ(drawing.saved(),
            asciiDxf(entitiesOnly("0 LINE\n8 A\n62 2\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n")));
}

TEST(EntityProperties, PartsGoAlongWhereAsked) {
  const NoMisuse guard;
  const std::string polyline =
      "0 POLYLINE\n8 A\n66 1\n0 VERTEX\n8 A\n10 0.0\n20 0.0\n0 VERTEX\n8 A\n10 1.0\n20 0.0\n"
      "0 SEQEND\n8 A\n0 LINE\n8 B\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n";
  const Drawing drawing(asciiDxf(entitiesOnly(polyline)));
  const AcDbObjectPointer<AcDbEntity> entity(entitiesOf(drawing.db()).at(0), AcDb::kForWrite);
  EXPECT_EQ(entity->setColorIndex(2, false), Acad::eOk);
  EXPECT_EQ(entity->setLayer(L"B", true), Acad::eOk);
  EXPECT_EQ(entity->setLinetype(L"Continuous", true), Acad::eOk);
  EXPECT_EQ(entity->setLineWeight(AcDb::kLnWt050, true), Acad::eOk);
  EXPECT_EQ(entity->setMaterial(AcDbObjectId::kNull, true), Acad::eOk);
  EXPECT_EQ(drawing.saved(),
            asciiDxf(entitiesOnly(
                "0 POLYLINE\n8 B\n6 Continuous\n62 2\n66 1\n0 VERTEX\n8 B\n6 Continuous\n"
                "10 0.0\n20 0.0\n0 VERTEX\n8 B\n6 Continuous\n10 1.0\n20 0.0\n0 SEQEND\n8 B\n"
                "6 Continuous\n0 LINE\n8 B\n10 1.0\n20 2.0\n11 3.0\n21 4.0\n")));
}

TEST(EntityProperties, PartsOfAFreePolylineGoAlongToo) {
  AcGePoint3dArray points;
  points.append(AcGePoint3d());
  points.append(AcGePoint3d(1, 0, 0));
  AcDb2dPolyline polyline(points);
  AcCmColor color;
  color.setRGB(1, 2, 3);
  EXPECT_EQ(polyline.setColor(color, true), Acad::eOk);
  EXPECT_EQ(polyline.setLineWeight(AcDb::kLnWt050, true), Acad::eOk);
  const std::unique_ptr<AcDbObjectIterator> walk(polyline.vertexIterator());
  int count = 0;
  for (; !walk->done(); walk->step()) {
    EXPECT_EQ(walk->entity()->color(), color);
    EXPECT_EQ(walk->entity()->lineWeight(), AcDb::kLnWt050);
    ++count;
  }
  EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace quoin::test
