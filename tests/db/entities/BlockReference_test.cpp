// INSERT: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Extents, OfArraysReachToTheirFarCells) {
  const Drawing drawing(smallDrawing(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbMInsertBlock\n2 Door\n10 5.0\n20 0.0\n"
      "30 0.0\n41 2.0\n50 90.0\n70 3\n71 2\n44 10.0\n45 4.0\n"));
  const AcDbObjectPointer<AcDbMInsertBlock> array(drawing.id(0x40));
  ASSERT_EQ(array.openStatus(), Acad::eOk);
  EXPECT_EQ(array->columns(), 3);
  EXPECT_EQ(array->rowSpacing(), 4.0);
  // One door is a line of length 2 upwards; columns go up by 10, rows to the left by 4.
  expectBox(*array, {1.0, 0.0, 0.0}, {5.0, 22.0, 0.0});
}

TEST(Transform, AReferenceStretchesAlongItsAxesOnly) {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  AcDbBlockReference reference({1.0, 2.0, 0.0}, door);
  AcGeMatrix3d stretch;
  stretch(0, 0) = 3.0;
  EXPECT_EQ(reference.transformBy(stretch), Acad::eOk);
  EXPECT_EQ(reference.scaleFactors().sx, 3.0);
  EXPECT_EQ(reference.scaleFactors().sy, 1.0);
  EXPECT_EQ(reference.rotation(), 0.0);
  reference.setRotation(0.5);
  EXPECT_EQ(reference.transformBy(stretch), Acad::eCannotScaleNonUniformly);
  EXPECT_EQ(reference.scaleFactors().sx, 3.0);
}

TEST(Attributes, BelongToTheirReference) {
  const Drawing drawing(smallDrawing());
  AcDbObjectId door;
  acdbSymUtil()->getBlockId(door, L"Door", &drawing.db());
  auto* const reference = new AcDbBlockReference({1.0, 2.0, 0.0}, door);
  auto* const attribute = new AcDbAttribute({1.0, 3.0, 0.0}, L"T30", L"FIRE");
  attribute->setHeight(0.5);
  EXPECT_EQ(reference->appendAttribute(attribute), Acad::eOk);
  EXPECT_EQ(reference->appendAttribute(attribute), Acad::eAlreadyInDb);
  const AcDbObjectId id = append(drawing.db(), reference);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbBlockReference> read(again.id(id.handle().asUInt64()),
                                                   AcDb::kForWrite);
  ASSERT_EQ(read.openStatus(), Acad::eOk);
  EXPECT_EQ(read->transformBy(AcGeMatrix3d().setToTranslation({10.0, 0.0, 0.0})), Acad::eOk);
  const std::unique_ptr<AcDbObjectIterator> walk(read->attributeIterator());
  ASSERT_FALSE(walk->done());
  const AcDbObjectPointer<AcDbAttribute> found(walk->objectId());
  EXPECT_EQ(std::wstring(found->tagConst()), L"FIRE");
  EXPECT_EQ(taken(found->textString()), L"T30");
  EXPECT_TRUE(found->position().isEqualTo({11.0, 3.0, 0.0}));
  walk->step();
  EXPECT_TRUE(walk->done());
}

}  // namespace
}  // namespace quoin::test
