// ACAD_TABLE: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfATableAreThoseOfItsBlockTurnedToItsDirection) {
  AcDbExtents turned = boxOfDoor();
  turned.transformBy(AcGeMatrix3d().setToRotation(kPi / 2.0, AcGeVector3d::kZAxis));
  const AcGeVector3d move(7, 0, 0);
  expectBox(
      Measured(entityText("ACAD_TABLE", "AcDbBlockReference",
                          "2 Door\n" + point(10, 7, 0) + "100 AcDbTable\n" + point(11, 0, 1))),
      turned.minPoint() + move, turned.maxPoint() + move);
}

}  // namespace
}  // namespace quoin::test
