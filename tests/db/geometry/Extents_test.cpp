// AcDbExtents: boxes.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(Extents, AFreshBoxIsInvertedAndAddsNothing) {
  AcDbExtents fresh;
  EXPECT_TRUE(fresh.isFresh());
  EXPECT_EQ(fresh.minPoint().x, 1.0e20);
  EXPECT_EQ(fresh.maxPoint().z, -1.0e20);
  AcDbExtents box;
  box.addExt(fresh);
  EXPECT_TRUE(box.isFresh());
  box.addPoint(AcGePoint3d(1.0, -2.0, 3.0));
  box.addExt(fresh);
  EXPECT_TRUE(box.minPoint() == box.maxPoint());
  box.addPoint(AcGePoint3d(0.0, 5.0, 3.0));
  EXPECT_TRUE(box.minPoint() == AcGePoint3d(0.0, -2.0, 3.0));
  EXPECT_TRUE(box.maxPoint() == AcGePoint3d(1.0, 5.0, 3.0));
  EXPECT_EQ(box.set(AcGePoint3d(1.0, 0.0, 0.0), AcGePoint3d(0.0, 0.0, 0.0)), Acad::eInvalidInput);
}

TEST(Extents, ATransformedBoxHoldsItsCorners) {
  AcDbExtents box(AcGePoint3d(0.0, 0.0, 0.0), AcGePoint3d(2.0, 1.0, 0.0));
  box.transformBy(AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis));
  EXPECT_TRUE(box.minPoint().isEqualTo(AcGePoint3d(-1.0, 0.0, 0.0), kClose));
  EXPECT_TRUE(box.maxPoint().isEqualTo(AcGePoint3d(0.0, 2.0, 0.0), kClose));
}

}  // namespace
}  // namespace quoin::test
