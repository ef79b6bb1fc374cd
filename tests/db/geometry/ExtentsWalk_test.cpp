// Blocks within blocks: however deep, however many, within a block itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostextents.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

const std::string kLine = "0 LINE\n8 0\n10 0.0\n20 0.0\n11 1.0\n21 1.0\n";

std::string block(const std::string& name, const std::string& entities) {
  return "0 BLOCK\n8 0\n2 " + name + "\n70 0\n10 0.0\n20 0.0\n30 0.0\n3 " + name + "\n" + entities +
         "0 ENDBLK\n8 0\n";
}

std::string insert(const std::string& name, double x, double degrees = 0.0,
                   const std::string& more = {}) {
  return "0 INSERT\n8 0\n2 " + name + "\n10 " + std::to_string(x) + "\n20 0.0\n50 " +
         std::to_string(degrees) + "\n" + more;
}

std::string drawingOf(const std::string& blocks, const std::string& entities) {
  return asciiDxf("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n0 ENDSEC\n0 SECTION\n2 BLOCKS\n" +
                  blocks + "0 ENDSEC\n0 SECTION\n2 ENTITIES\n" + entities + "0 ENDSEC\n0 EOF\n");
}

/// A block with a line, and `depth` more that each show the one below `times` times.
std::string nested(int depth, int times, double degrees = 0.0) {
  std::string blocks = block("B0", kLine);
  for (int i = 1; i <= depth; ++i) {
    std::string inserts;
    for (int j = 0; j < times; ++j) {
      inserts += insert("B" + std::to_string(i - 1), 1.0 + j, degrees);
    }
    blocks += block("B" + std::to_string(i), inserts);
  }
  return blocks;
}

/// The boxes of what stands in model space, in order.
std::vector<AcDbExtents> boxesOf(const Drawing& drawing) {
  EXPECT_EQ(drawing.status, Acad::eOk);
  std::vector<AcDbExtents> boxes;
  AcDbObjectId space;
  acdbSymUtil()->getBlockId(space, ACDB_MODEL_SPACE, &drawing.db());
  const AcDbObjectPointer<AcDbBlockTableRecord> record(space, AcDb::kForRead);
  AcDbBlockTableRecordIterator* made = nullptr;
  record->newIterator(made);
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  for (; !iterator->done(); iterator->step()) {
    AcDbEntity* entity = nullptr;
    EXPECT_EQ(iterator->getEntity(entity, AcDb::kForRead), Acad::eOk);
    entity->getGeomExtents(boxes.emplace_back());
    entity->close();
  }
  return boxes;
}

TEST(ExtentsWalk, TenThousandNestedBlocksAreMeasured) {
  const Drawing drawing(drawingOf(nested(10'000, 1), insert("B10000", 0.0)));
  const std::vector<AcDbExtents> boxes = boxesOf(drawing);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].minPoint(), AcGePoint3d(10'000.0, 0.0, 0.0));
  EXPECT_EQ(boxes[0].maxPoint(), AcGePoint3d(10'001.0, 1.0, 0.0));
  EXPECT_EQ(hostx::roughExtents(&drawing.db()), 0u);
}

TEST(ExtentsWalk, BlocksThatShowMoreThanAnybodyCouldVisitCountWithTheirBoxes) {
  // Ten to the thirtieth lines, twice.
  const Drawing drawing(drawingOf(nested(30, 10), insert("B30", 0.0) + insert("B30", 0.0) + kLine));
  const std::vector<AcDbExtents> boxes = boxesOf(drawing);
  ASSERT_EQ(boxes.size(), 3u);
  for (const std::size_t i : {0U, 1U}) {
    EXPECT_EQ(boxes[i].minPoint(), AcGePoint3d(30.0, 0.0, 0.0));
    EXPECT_EQ(boxes[i].maxPoint(), AcGePoint3d(301.0, 1.0, 0.0));
  }
  EXPECT_EQ(hostx::roughExtents(&drawing.db()), 2u);
  // Asked again, the same entities are rough and not others.
  boxesOf(drawing);
  EXPECT_EQ(hostx::roughExtents(&drawing.db()), 2u);
  // What changes the drawing begins anew.
  append(drawing.db(), new AcDbLine({0, 0, 0}, {1, 0, 0}));
  EXPECT_EQ(hostx::roughExtents(&drawing.db()), 0u);
}

TEST(ExtentsWalk, TurnedBlocksAreMeasuredAsTheyStandAndNotByTheirBoxes) {
  // The line along the diagonal, turned by 45 degrees and back.
  const std::string blocks = block("A", kLine) + block("B", insert("A", 0.0, 45.0));
  const Drawing drawing(drawingOf(blocks, insert("B", 0.0, -45.0)));
  const std::vector<AcDbExtents> boxes = boxesOf(drawing);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_NEAR(boxes[0].maxPoint().x, 1.0, 1e-12);
  EXPECT_NEAR(boxes[0].minPoint().x, 0.0, 1e-12);
}

TEST(ExtentsWalk, ABlockWithinItselfShowsOnce) {
  const std::string blocks = block("A", kLine + insert("B", 5.0)) +
                             block("B", insert("A", 100.0) + insert("B", 100.0) + kLine);
  const Drawing drawing(drawingOf(blocks, insert("A", 0.0)));
  const std::vector<AcDbExtents> boxes = boxesOf(drawing);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].maxPoint(), AcGePoint3d(6.0, 1.0, 0.0));
}

TEST(ExtentsWalk, ADimensionWhoseBlockIsEmptyIsMeasuredByItsPoints) {
  const std::string dimension =
      "0 DIMENSION\n8 0\n2 *D1\n10 3.0\n20 4.0\n11 1.0\n21 2.0\n70 0\n13 0.0\n23 0.0\n14 3.0\n"
      "24 0.0\n";
  const Drawing drawing(
      drawingOf(block("*D1", "") + block("A", dimension), dimension + insert("A", 10.0)));
  const std::vector<AcDbExtents> boxes = boxesOf(drawing);
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0].maxPoint(), AcGePoint3d(3.0, 4.0, 0.0));
  EXPECT_EQ(boxes[1].minPoint(), AcGePoint3d(10.0, 0.0, 0.0));
  EXPECT_EQ(boxes[1].maxPoint(), AcGePoint3d(13.0, 4.0, 0.0));
}

TEST(Extents, ABlockThatHoldsItselfEnds) {
  std::string text = smallR2000(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 Door\n10 5.0\n"
      "20 0.0\n30 0.0\n");
  const std::string self =
      "0 INSERT\n5 41\n330 30\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 Door\n10 0.0\n"
      "20 7.0\n30 0.0\n";
  text.insert(text.find("0 ENDBLK\n5 33"), self);
  const Drawing drawing(asciiDxf(text));
  const AcDbObjectPointer<AcDbBlockReference> reference(drawing.id(0x40));
  expectBox(*reference, {5.0, 0.0, 0.0}, {6.0, 0.0, 0.0});
}

TEST(Extents, BlocksNestedTwentyFoldAreMeasuredInTime) {
  // Every block holds the one before ten times: 10^20 lines, if each were visited.
  std::string text = smallR2000(
      "0 INSERT\n5 40\n330 1F\n100 AcDbEntity\n8 0\n100 AcDbBlockReference\n2 B20\n10 0.0\n20 0.0\n"
      "30 0.0\n");
  std::string blocks;
  for (int level = 1; level <= 20; ++level) {
    const std::string inner = level == 1 ? "Door" : "B" + std::to_string(level - 1);
    blocks += "0 BLOCK\n8 0\n2 B" + std::to_string(level) + "\n70 0\n10 0.0\n20 0.0\n30 0.0\n";
    for (int i = 0; i < 10; ++i) {
      blocks += "0 INSERT\n8 0\n2 " + inner + "\n10 0.0\n20 " + std::to_string(i) + ".0\n30 0.0\n";
    }
    blocks += "0 ENDBLK\n8 0\n";
  }
  text.insert(text.find("0 ENDSEC\n0 SECTION\n2 ENTITIES"), blocks);
  const Drawing drawing(asciiDxf(text));
  ASSERT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
  const AcDbObjectPointer<AcDbBlockReference> reference(drawing.id(0x40));
  expectBox(*reference, {0.0, 0.0, 0.0}, {1.0, 180.0, 0.0});
}

TEST(Extents, OfABlockAreThoseOfItsEntities) {
  const Drawing drawing(smallDrawing(lineTags("40")));
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()));
  AcDbExtents box;
  EXPECT_EQ(box.addBlockExt(space.object()), Acad::eOk);
  EXPECT_TRUE(box.maxPoint().isEqualTo({2.0, 0.0, 0.0}));
  EXPECT_EQ(box.addBlockExt(nullptr), Acad::eNullObjectPointer);
  const Drawing empty(smallDrawing());
  const AcDbObjectPointer<AcDbBlockTableRecord> emptySpace(
      acdbSymUtil()->blockModelSpaceId(&empty.db()));
  AcDbExtents fresh;
  EXPECT_EQ(fresh.addBlockExt(emptySpace.object()), Acad::eNullExtents);
  EXPECT_TRUE(fresh.isFresh());
}

}  // namespace
}  // namespace quoin::test
