// Blocks within blocks: however deep, however many, within a block itself.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hostextents.h"
#include "support/Drawings.h"

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

}  // namespace
}  // namespace quoin::test
