// DIMENSION and its relatives: values, extents and transforms.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <iterator>

#include "dbdim.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

/// A dimension whose block shows a table, whose block shows a dimension, and so on; the last block
/// shows `last`.
std::string nestedOwnBlocks(int depth, const std::string& last) {
  const auto shown = [](int i) {
    const std::string kind = i % 2 == 0 ? "DIMENSION" : "ACAD_TABLE";
    std::string tags = sampleRecords().at(kind);
    const std::string named = i % 2 == 0 ? "*D1" : "*T1";
    tags.replace(tags.find(named), named.size(), "*D" + std::to_string(i));
    return "0 " + kind + "\n5 " + std::to_string(100000 + i) + "\n100 AcDbEntity\n8 0\n" +
           tagLines(tags);
  };
  std::string blocks;
  for (int i = 0; i < depth; ++i) {
    blocks += "0 BLOCK\n8 0\n2 *D" + std::to_string(i) + "\n70 1\n10 0.0\n20 0.0\n30 0.0\n" +
              (i + 1 < depth ? shown(i + 1) : last) + "0 ENDBLK\n8 0\n";
  }
  return "0 SECTION\n2 BLOCKS\n" + blocks + "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + shown(0) +
         "0 ENDSEC\n0 EOF\n";
}

TEST(Dimensions, TellTheirBlockStyleAndText) {
  const NoMisuse guard;
  const Drawing drawing(smallDrawing(
      "0 DIMENSION\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbDimension\n2 Door\n10 0.0\n"
      "20 0.0\n30 0.0\n11 1.0\n21 2.0\n31 0.0\n12 5.0\n22 6.0\n32 0.0\n70 0\n1 <> mm\n42 7.5\n"
      "3 STANDARD\n100 AcDbAlignedDimension\n13 0.0\n23 0.0\n33 0.0\n"));
  const AcDbObjectPointer<AcDbDimension> dimension(drawing.id(0x40));
  ASSERT_EQ(dimension.openStatus(), Acad::eOk);
  EXPECT_EQ(dimension->dimBlockId(), drawing.id(0x30));
  expectNear(dimension->dimBlockPosition(), {5, 6, 0});
  expectNear(dimension->textPosition(), {1, 2, 0});
  EXPECT_EQ(dimension->dimensionStyle(), drawing.id(0x27));
  EXPECT_STREQ(dimension->dimensionText(), L"<> mm");
  double measured = 0.0;
  EXPECT_EQ(dimension->getMeasurement(measured), Acad::eOk);
  EXPECT_EQ(measured, 7.5);
}

TEST(Dimensions, AreCopiedButNotMade) {
  const NoMisuse guard;
  const std::string entity =
      "0 DIMENSION\n5 40\n330 1F\n100 AcDbEntity\n8 Walls\n100 AcDbDimension\n2 Door\n70 0\n";
  const Drawing drawing(smallDrawing(entity));
  const AcDbObjectId space = drawing.id(0x1F);
  const AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForWrite);
  AcDbDimension made;
  EXPECT_TRUE(made.dimBlockId().isNull());
  double measured = 1.0;
  EXPECT_EQ(made.getMeasurement(measured), Acad::eNotApplicable);
  EXPECT_EQ(record->appendAcDbEntity(&made), Acad::eIllegalEntityType);
  AcDbSpline spline;
  EXPECT_EQ(spline.numControlPoints(), 0);
  EXPECT_EQ(record->appendAcDbEntity(&spline), Acad::eIllegalEntityType);
  const AcDbObjectPointer<AcDbDimension> source(drawing.id(0x40));
  AcDbDimension* const clone = AcDbDimension::cast(source->clone());
  ASSERT_NE(clone, nullptr);
  EXPECT_EQ(record->appendAcDbEntity(clone), Acad::eOk);
  EXPECT_EQ(clone->dimBlockId(), drawing.id(0x30));
  clone->close();
}

TEST(EntityExtents, OfADimensionWithoutABlockAreItsPoints) {
  expectBox(Measured(entityText("DIMENSION", "AcDbDimension",
                                point(10, 4, 2) + point(11, 2, 2) +
                                    "70 32\n3 STANDARD\n"
                                    "100 AcDbAlignedDimension\n" +
                                    point(13, 0, 0) + point(14, 4, 0))),
            {0, 0, 0}, {4, 2, 0});
}

TEST(EntityExtents, OfADimensionAreThoseOfItsBlockWhereItStands) {
  const AcDbExtents door = boxOfDoor();
  const AcGeVector3d move(10, 20, 0);
  expectBox(Measured(entityText("DIMENSION", "AcDbDimension",
                                "2 Door\n" + point(10, 4, 2) + point(11, 2, 2) + point(12, 10, 20) +
                                    "70 32\n100 AcDbAlignedDimension\n" + point(13, 99, 0))),
            door.minPoint() + move, door.maxPoint() + move);
}

TEST(EntityTransforms, DimensionsAndTablesInEachOtherFollowTenThousandDeep) {
  const std::string line =
      "0 LINE\n5 99999\n100 AcDbEntity\n8 0\n100 AcDbLine\n10 1.0\n20 2.0\n30 0.0\n11 4.0\n"
      "21 6.0\n31 0.0\n";
  const Drawing drawing(quoin::test::asciiDxf(nestedOwnBlocks(10000, line)));
  ASSERT_EQ(drawing.status, Acad::eOk);
  {
    const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x100000), AcDb::kForWrite);
    ASSERT_EQ(open.openStatus(), Acad::eOk);
    EXPECT_EQ(open->transformBy(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  }
  const AcDbObjectPointer<AcDbLine> last(drawing.id(0x99999), AcDb::kForRead);
  ASSERT_EQ(last.openStatus(), Acad::eOk);
  EXPECT_EQ(last->startPoint().distanceTo(last->endPoint()), 10.0);
}

TEST(EntityTransforms, ADimensionWhoseBlockShowsItselfInATableFollowsOnce) {
  std::string tags = sampleRecords().at("DIMENSION");
  tags.replace(tags.find("*D1"), 3, "*D0");
  const std::string ring = "0 DIMENSION\n5 88888\n100 AcDbEntity\n8 0\n" + tagLines(tags);
  const Drawing drawing(quoin::test::asciiDxf(nestedOwnBlocks(2, ring)));
  ASSERT_EQ(drawing.status, Acad::eOk);
  const AcDbObjectPointer<AcDbEntity> open(drawing.id(0x100000), AcDb::kForWrite);
  ASSERT_EQ(open.openStatus(), Acad::eOk);
  EXPECT_EQ(open->transformBy(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
}

TEST(EntityTransforms, TheBlockOfADimensionComesAlong) {
  AcDbDatabase database(false, true);
  ASSERT_EQ(
      database.readDwgFile(quoin::os::fromUtf8(QUOIN_SOURCE_DIR "/examples/flat/flat.dxf").c_str()),
      Acad::eOk);
  int dimensions = 0;
  for (const AcDbObjectId& id : quoin::test::entitiesOf(database)) {
    if (hostx::kindName(id) != L"DIMENSION") {
      continue;
    }
    ++dimensions;
    const AcDbObjectPointer<AcDbEntity> open(id, AcDb::kForWrite);
    AcDbExtents expected;
    ASSERT_EQ(open->getGeomExtents(expected), Acad::eOk);
    const AcGeMatrix3d matrix = AcGeMatrix3d().setToScaling(2.0, AcGePoint3d(100, 0, 0));
    expected.transformBy(matrix);
    ASSERT_EQ(open->transformBy(matrix), Acad::eOk);
    AcDbExtents actual;
    ASSERT_EQ(open->getGeomExtents(actual), Acad::eOk);
    EXPECT_LT(actual.minPoint().distanceTo(expected.minPoint()), 1e-8);
    EXPECT_LT(actual.maxPoint().distanceTo(expected.maxPoint()), 1e-8);
  }
  EXPECT_GT(dimensions, 5);
}

TEST(EntityTransforms, ADimensionWhoseBlockIsDisplacedMovesOnce) {
  OneEntity one("DIMENSION",
                "100 AcDbDimension|2 *D1|10 5.0|20 9.0|30 0.0|11 2.5|21 9.5|31 0.0|"
                "12 3.0|22 4.0|32 0.0|70 33|100 AcDbAlignedDimension|13 0.0|23 0.0|33 0.0|"
                "14 5.0|24 0.0|34 0.0");
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToTranslation({100, 0, 0})), Acad::eOk);
  EXPECT_EQ(one.numbers(12)[0], 3.0);  // the block has come along already
  EXPECT_EQ(one.numbers(10)[0], 105.0);
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(2.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(12)[0], 6.0);
}

TEST(EntityTransforms, ABlockThatTwoDimensionsShareMovesOnceWithBoth) {
  std::ifstream file(QUOIN_SOURCE_DIR "/examples/flat/flat.dxf", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  // The second dimension gets the block of the first.
  const auto nameAt = [&](std::size_t from) {
    const std::size_t dimension = bytes.find("\nDIMENSION\r\n", from);
    return bytes.find("\n*D", dimension) + 1;
  };
  const std::size_t first = nameAt(bytes.find("\nENTITIES\r\n"));
  const std::string name = bytes.substr(first, bytes.find('\r', first) - first);
  const std::size_t second = nameAt(first);
  bytes.replace(second, bytes.find('\r', second) - second, name);
  const Drawing drawing(bytes);
  ASSERT_EQ(drawing.status, Acad::eOk);
  std::vector<AcDbObjectId> dimensions;
  for (const AcDbObjectId& id : quoin::test::entitiesOf(drawing.db())) {
    if (hostx::kindName(id) == L"DIMENSION" && dimensions.size() < 2) {
      dimensions.push_back(id);
    }
  }
  ASSERT_EQ(dimensions.size(), 2u);
  for (int times = 1; times <= 2; ++times) {
    AcDbExtents before;
    AcDbObjectPointer<AcDbEntity>(dimensions[0])->getGeomExtents(before);
    for (const AcDbObjectId& id : dimensions) {
      const AcDbObjectPointer<AcDbEntity> open(id, AcDb::kForWrite);
      ASSERT_EQ(open->transformBy(AcGeMatrix3d().setToTranslation({100, 0, 0})), Acad::eOk);
    }
    for (const AcDbObjectId& id : dimensions) {
      AcDbExtents after;
      AcDbObjectPointer<AcDbEntity>(id)->getGeomExtents(after);
      EXPECT_DOUBLE_EQ(after.minPoint().x, before.minPoint().x + 100.0);
    }
  }
}

TEST(EntityTransforms, ATurnedOrdinateStillMeasuresAlongItsAxis) {
  OneEntity one("DIMENSION",
                "100 AcDbDimension|2 *D1|10 0.0|20 0.0|30 0.0|11 2.5|21 9.5|31 0.0|70 102|"
                "100 AcDbOrdinateDimension|13 5.0|23 1.0|33 0.0|14 5.0|24 9.0|34 0.0");
  AcGeMatrix3d turn;
  turn.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis);
  ASSERT_EQ(one.transform(turn), Acad::eOk);
  ASSERT_EQ(one.numbers(51).size(), 1u);
  EXPECT_NEAR(one.numbers(51)[0], -90.0, 1e-12);
  ASSERT_EQ(one.transform(turn.inverse()), Acad::eOk);
  EXPECT_NEAR(std::remainder(one.numbers(51)[0], 360.0), 0.0, 1e-9);
}

}  // namespace
}  // namespace quoin::test
