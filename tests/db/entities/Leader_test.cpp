// LEADER: values, extents and transforms.
#include <gtest/gtest.h>

#include <cmath>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfALeaderWithItsArrow) {
  // An arrow of size 0.18 along X, a third as wide.
  expectBox(Measured(entityText(
                "LEADER", "AcDbLeader",
                "3 NOSTYLE\n71 1\n72 0\n73 3\n76 2\n" + point(10, 0, 0) + point(10, 4, 0))),
            {0, -0.03, 0}, {4, 0.03, 0});
  expectBox(Measured(entityText(
                "LEADER", "AcDbLeader",
                "3 NOSTYLE\n71 0\n72 0\n73 3\n76 2\n" + point(10, 0, 0) + point(10, 4, 0))),
            {0, 0, 0}, {4, 0, 0});
}

TEST(EntityExtents, OfALeaderWhoseArrowIsABlock) {
  // Its tip is at the origin and it looks along -X: the block lies turned and scaled by 0.18.
  AcDbExtents arrow = boxOfDoor();
  AcGeMatrix3d toTip;
  toTip.setCoordSystem({0, 0, 0}, AcGeVector3d(-0.18, 0, 0), AcGeVector3d(0, -0.18, 0),
                       AcGeVector3d(0, 0, 0.18));
  arrow.transformBy(toTip);
  arrow.addPoint({0, 0, 0});
  arrow.addPoint({4, 0, 0});
  expectBox(Measured(entityText("LEADER", "AcDbLeader",
                                "3 NOSTYLE\n71 1\n72 0\n73 3\n76 2\n" + point(10, 0, 0) +
                                    point(10, 4, 0) +
                                    "1001 ACAD\n1000 DSTYLE\n1002 {\n1070 341\n1005 30\n1002 }\n")),
            arrow.minPoint(), arrow.maxPoint());
}

TEST(EntityTransforms, ADirectionThatStoodForTheXAxisIsWrittenWhenItTurns) {
  for (const char* const kind : {"LEADER", "TOLERANCE"}) {
    OneEntity one(kind);
    AcGeMatrix3d turn;
    turn.setToRotation(std::acos(-1.0) / 2.0, AcGeVector3d::kZAxis);
    ASSERT_EQ(one.transform(turn), Acad::eOk);
    const std::vector<double> direction = one.numbers(kind == std::string("LEADER") ? 221 : 21);
    ASSERT_FALSE(direction.empty()) << kind;
    EXPECT_EQ(direction.back(), 1.0) << kind;
  }
}

}  // namespace
}  // namespace quoin::test
