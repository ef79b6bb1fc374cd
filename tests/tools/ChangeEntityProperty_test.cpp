#include "ChangeEntityProperty.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "support/Drawings.h"
#include "support/RunningHost.h"

namespace {

using quoin::test::Drawing;

static_assert(std::is_convertible_v<IModelNode*, CChangeEntityProperty>,
              "a node is enough where a functor is wanted");

/// An R2010 drawing: layer "Walls", a dashed linetype, a material; a line with all
/// properties (40), a plain one (41), a block reference with an attribute (42, 43).
std::string plan() {
  std::string text = quoin::test::smallR2000(
      "0 LINE\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n6 Dashed\n62 3\n347 52\n370 50\n"
      "100 AcDbLine\n10 0.0\n20 0.0\n30 0.0\n11 1.0\n21 0.0\n31 0.0\n"
      "0 LINE\n5 41\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbLine\n10 0.0\n20 1.0\n30 0.0\n11 1.0\n"
      "21 1.0\n31 0.0\n"
      "0 INSERT\n5 42\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n66 1\n2 Door\n10 0.0\n"
      "20 0.0\n30 0.0\n0 ATTRIB\n5 43\n330 42\n100 AcDbEntity\n8 0\n100 AcDbText\n10 0.0\n20 0.0\n"
      "30 0.0\n40 1.0\n1 A\n100 AcDbAttribute\n2 TAG\n70 0\n0 SEQEND\n5 44\n330 42\n"
      "100 AcDbEntity\n8 0\n");
  text.replace(text.find("AC1015"), 6, "AC1024");
  text.insert(text.find("0 TABLE\n2 DIMSTYLE"),
              "0 TABLE\n2 LTYPE\n5 5\n330 0\n100 AcDbSymbolTable\n70 1\n0 LTYPE\n5 50\n330 5\n"
              "100 AcDbSymbolTableRecord\n100 AcDbLinetypeTableRecord\n2 Dashed\n70 0\n3\n72 65\n"
              "73 0\n40 0.0\n0 ENDTAB\n");
  const std::string root = "3 ACAD_GROUP\n350 D\n";
  text.insert(text.find(root) + root.size(), "3 ACAD_MATERIAL\n350 51\n");
  text.insert(text.find("0 ENDSEC\n0 SECTION\n2 THUMB"),
              "0 DICTIONARY\n5 51\n330 C\n100 AcDbDictionary\n3 Brick\n350 52\n0 MATERIAL\n5 52\n"
              "330 51\n100 AcDbMaterial\n1 Brick\n");
  return quoin::test::asciiDxf(text);
}

class ChangeEntityProperty : public testing::Test {
 protected:
  ChangeEntityProperty() : node(host.project().addNode(7)) {}

  void map(Adesk::UInt64 handle) {
    host.host().platform().entityMappings().map(node, drawing.id(handle));
  }
  void apply(Adesk::UInt64 handle, IModelNode* from) {
    const AcDbObjectPointer<AcDbEntity> entity(drawing.id(handle), AcDb::kForWrite);
    ASSERT_EQ(entity.openStatus(), Acad::eOk);
    CChangeEntityProperty change(from);
    change(entity.object());
  }

  quoin::test::NoMisuse guard;
  quoin::test::RunningHost host;
  Drawing drawing{plan()};
  quoin::product::ModelNode& node;
};

TEST_F(ChangeEntityProperty, GivesTheFivePropertiesOfTheMappedEntity) {
  map(0x40);
  apply(0x41, &node);
  const AcDbObjectPointer<AcDbEntity> changed(drawing.id(0x41));
  EXPECT_EQ(quoin::test::taken(changed->layer()), L"Walls");
  EXPECT_EQ(changed->colorIndex(), 3);
  EXPECT_EQ(changed->lineWeight(), AcDb::kLnWt050);
  EXPECT_EQ(quoin::test::taken(changed->linetype()), L"Dashed");
  EXPECT_EQ(changed->materialId(), drawing.id(0x52));
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).size() == 1);  // the one that is open here
}

TEST_F(ChangeEntityProperty, ReachesTheAttributesOfAReference) {
  map(0x40);
  apply(0x42, &node);
  const AcDbObjectPointer<AcDbEntity> attribute(drawing.id(0x43));
  EXPECT_EQ(quoin::test::taken(attribute->layer()), L"Walls");
  EXPECT_EQ(attribute->colorIndex(), 3);
  EXPECT_EQ(attribute->lineWeight(), AcDb::kLnWt050);
  EXPECT_EQ(quoin::test::taken(attribute->linetype()), L"Dashed");
  EXPECT_EQ(attribute->materialId(), drawing.id(0x52));
}

TEST_F(ChangeEntityProperty, ByLayerComesAlongAsByLayer) {
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40), AcDb::kForWrite);
    source->setColorIndex(256);
  }
  {
    const AcDbObjectPointer<AcDbEntity> target(drawing.id(0x41), AcDb::kForWrite);
    target->setColorIndex(5);
  }
  map(0x40);
  apply(0x41, &node);
  const AcDbObjectPointer<AcDbEntity> changed(drawing.id(0x41));
  EXPECT_EQ(quoin::test::taken(changed->layer()), L"Walls");
  EXPECT_EQ(changed->colorIndex(), 256);
}

TEST_F(ChangeEntityProperty, ATrueColourComesAlongAsItsIndex) {
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40), AcDb::kForWrite);
    AcCmColor color;
    color.setRGB(255, 1, 0);
    source->setColor(color);
  }
  map(0x40);
  apply(0x41, &node);
  const AcDbObjectPointer<AcDbEntity> changed(drawing.id(0x41));
  EXPECT_TRUE(changed->color().isByACI());
  EXPECT_EQ(changed->colorIndex(), 1);
}

TEST_F(ChangeEntityProperty, OtherPropertiesStay) {
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40), AcDb::kForWrite);
    source->setLinetypeScale(4.0);
    source->setVisibility(AcDb::kInvisible);
  }
  map(0x40);
  apply(0x41, &node);
  const AcDbObjectPointer<AcDbEntity> changed(drawing.id(0x41));
  EXPECT_EQ(changed->linetypeScale(), 1.0);
  EXPECT_EQ(changed->visibility(), AcDb::kVisible);
}

TEST_F(ChangeEntityProperty, NullsChangeNothing) {
  map(0x40);
  apply(0x41, nullptr);
  CChangeEntityProperty functor(&node);
  functor(nullptr);
  EXPECT_EQ(drawing.saved(), plan());
}

TEST_F(ChangeEntityProperty, ANodeWithoutAnEntityChangesNothing) {
  apply(0x41, &node);
  map(0x10);  // a layer: no entity
  apply(0x41, &node);
  EXPECT_EQ(drawing.saved(), plan());
}

TEST_F(ChangeEntityProperty, AnErasedEntityChangesNothing) {
  map(0x40);
  {
    const AcDbObjectPointer<AcDbEntity> source(drawing.id(0x40), AcDb::kForWrite);
    EXPECT_EQ(source->erase(), Acad::eOk);
  }
  apply(0x41, &node);
  const AcDbObjectPointer<AcDbEntity> unchanged(drawing.id(0x41));
  EXPECT_EQ(quoin::test::taken(unchanged->layer()), L"0");
  EXPECT_EQ(unchanged->lineWeight(), AcDb::kLnWtByLayer);
}

TEST_F(ChangeEntityProperty, AnEntityThatIsBeingWrittenChangesNothing) {
  map(0x40);
  const AcDbObjectPointer<AcDbEntity> held(drawing.id(0x40), AcDb::kForWrite);
  apply(0x41, &node);
  EXPECT_EQ(drawing.saved(), plan());
}

TEST_F(ChangeEntityProperty, AHiddenLayerIsPassedOver) {
  std::string text = plan();
  const std::string name = quoin::test::asciiDxf("2 Walls\n");
  text.replace(text.find(name), name.size(), quoin::test::asciiDxf("2 *Adsk\n"));
  const std::string onLayer = quoin::test::asciiDxf("8 Walls\n");
  text.replace(text.find(onLayer), onLayer.size(), quoin::test::asciiDxf("8 *Adsk\n"));
  const Drawing hidden(text);
  host.host().platform().entityMappings().map(node, hidden.id(0x40));
  const AcDbObjectPointer<AcDbEntity> entity(hidden.id(0x41), AcDb::kForWrite);
  CChangeEntityProperty change(nullptr);
  change.SetSecEntityProperties(entity.object(), &node);  // uses no member of the object
  EXPECT_EQ(quoin::test::taken(entity->layer()), L"0");
  EXPECT_EQ(entity->colorIndex(), 3);  // a setter that fails does not stop the others
}

}  // namespace
