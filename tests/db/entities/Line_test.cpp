// LINE: values, extents and transforms.
#include <gtest/gtest.h>

#include <limits>
#include <random>

#include "support/Drawings.h"
#include "support/Entities.h"
#include "support/SameBits.h"

namespace quoin::test {
namespace {

std::unique_ptr<AcDbLine> lineWithPointsSet(const AcGePoint3d& start, const AcGePoint3d& end) {
  auto line = std::make_unique<AcDbLine>();
  line->setStartPoint(start);
  line->setEndPoint(end);
  return line;
}

/// Points of ordinary numbers, signed zeros, tiny, huge and no numbers.
AcGePoint3d anyPoint(std::mt19937_64& random) {
  const double odd[] = {0.0, -0.0,      1e-310,       -1e300,
                        0.1, 1.0 / 3.0, std::nan(""), std::numeric_limits<double>::infinity()};
  std::uniform_real_distribution<double> anywhere(-1e7, 1e7);
  const auto any = [&] { return random() % 4 == 0 ? odd[random() % 8] : anywhere(random); };
  return {any(), any(), any()};
}

void expectSamePoints(const AcDbLine& made, const AcDbLine& set) {
  EXPECT_TRUE(sameBits(made.startPoint(), set.startPoint()));
  EXPECT_TRUE(sameBits(made.endPoint(), set.endPoint()));
}

TEST(MadeLines, AnswerAsLinesWhosePointsWereSet) {
  std::mt19937_64 random(90);
  for (int round = 0; round < 3000; ++round) {
    const AcGePoint3d start = anyPoint(random);
    const AcGePoint3d end = anyPoint(random);
    AcDbLine made(start, end);
    const auto set = lineWithPointsSet(start, end);
    ASSERT_NO_FATAL_FAILURE(expectSamePoints(made, *set));
    EXPECT_EQ(made.isModified(), set->isModified());
    EXPECT_EQ(made.thickness(), set->thickness());
    EXPECT_EQ(taken(made.layer()), taken(set->layer()));
    // Now both have records.
    ASSERT_NO_FATAL_FAILURE(expectSamePoints(made, *set));
  }
}

TEST(MadeLines, ChangeAsLinesWhosePointsWereSet) {
  const AcGePoint3d start(1.5, 0.1, 1.0 / 3.0);
  const AcGePoint3d end(-2e7, 4.0, 5.0);
  AcDbLine made(start, end);
  const auto set = lineWithPointsSet(start, end);
  EXPECT_EQ(made.setEndPoint(AcGePoint3d(7, 8, 9)), Acad::eOk);
  EXPECT_EQ(set->setEndPoint(AcGePoint3d(7, 8, 9)), Acad::eOk);
  expectSamePoints(made, *set);
  AcDbLine moved(start, end);
  const AcGeMatrix3d turn = AcGeMatrix3d::rotation(0.3, AcGeVector3d::kZAxis);
  EXPECT_EQ(moved.transformBy(turn), Acad::eOk);
  const auto other = lineWithPointsSet(start, end);
  EXPECT_EQ(other->transformBy(turn), Acad::eOk);
  expectSamePoints(moved, *other);
}

TEST(MadeLines, CloneAsLinesWhosePointsWereSet) {
  const AcDbLine made(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  const std::unique_ptr<AcDbLine> copy(AcDbLine::cast(made.clone()));
  ASSERT_TRUE(copy);
  expectSamePoints(*copy, made);
}

TEST(MadeLines, AreSavedAsLinesWhosePointsWereSet) {
  std::mt19937_64 random(91);
  const Drawing withMade(smallDrawing());
  const Drawing withSet(smallDrawing());
  for (int i = 0; i < 200; ++i) {
    const AcGePoint3d start = anyPoint(random);
    const AcGePoint3d end = anyPoint(random);
    append(withMade.db(), new AcDbLine(start, end));
    append(withSet.db(), lineWithPointsSet(start, end).release());
  }
  EXPECT_EQ(withMade.saved(), withSet.saved());
}

TEST(Extents, OfLinesWithThickness) {
  AcDbLine line(AcGePoint3d(3.0, 4.0, 1.0), AcGePoint3d(1.0, 6.0, 2.0));
  expectBox(line, {1.0, 4.0, 1.0}, {3.0, 6.0, 2.0});
  line.setThickness(-5.0);
  expectBox(line, {1.0, 4.0, -4.0}, {3.0, 6.0, 2.0});
}

}  // namespace
}  // namespace quoin::test
