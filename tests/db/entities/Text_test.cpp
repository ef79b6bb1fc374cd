// TEXT, ATTRIB and ATTDEF: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Extents, OfTextLieByItsAlignment) {
  AcDbText text({10.0, 10.0, 0.0}, L"ABC", AcDbObjectId::kNull, 2.0);
  AcDbExtents box;
  ASSERT_EQ(text.getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo({10.0, 10.0, 0.0}));
  EXPECT_EQ(box.maxPoint().y, 12.0);
  const double width = box.maxPoint().x - box.minPoint().x;
  EXPECT_GT(width, 2.0);
  text.setHorizontalMode(AcDb::kTextRight);
  text.setVerticalMode(AcDb::kTextTop);
  text.setAlignmentPoint({0.0, 0.0, 0.0});
  expectBox(text, {-width, -2.0, 0.0}, {0.0, 0.0, 0.0});
  text.mirrorInX(true);
  expectBox(text, {0.0, -2.0, 0.0}, {width, 0.0, 0.0});
}

TEST(Transform, MirroredTextIsWrittenBackwards) {
  AcDbText text({5.0, 1.0, 0.0}, L"AB", AcDbObjectId::kNull, 2.0);
  EXPECT_EQ(text.transformBy(AcGeMatrix3d().setToMirroring({0.0, 0.0, 0.0}, {1.0, 0.0, 0.0})),
            Acad::eOk);
  EXPECT_TRUE(text.isMirroredInX());
  EXPECT_NEAR(std::remainder(text.rotation(), 2.0 * kPi), 0.0, 1e-12);
  EXPECT_TRUE(text.position().isEqualTo({-5.0, 1.0, 0.0}));
}

TEST(Text, StyleAndStringAreKept) {
  const Drawing drawing;
  AcDbObjectId standard;
  ASSERT_EQ(acdbSymUtil()->getTextStyleId(standard, L"standard", &drawing.db()), Acad::eOk);
  auto* const text = new AcDbText({0.0, 0.0, 0.0}, L"Tür %%d", standard, 2.5);
  EXPECT_EQ(text->setTextStyle(AcDbObjectId::kNull), Acad::eInvalidInput);
  const AcDbObjectId id = append(drawing.db(), text);
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbText> read(again.id(id.handle().asUInt64()));
  EXPECT_EQ(std::wstring(read->textStringConst()), L"Tür %%d");
  EXPECT_EQ(read->height(), 2.5);
  EXPECT_FALSE(read->textStyle().isNull());
  EXPECT_TRUE(read->isDefaultAlignment());
}

}  // namespace
}  // namespace quoin::test
