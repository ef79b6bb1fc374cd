// OLE2FRAME: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfTheCornersOfAnObjectOfAnotherProgram) {
  expectBox(Measured(entityText("OLE2FRAME", "AcDbOle2Frame", point(10, 1, 8) + point(11, 5, 2))),
            {1, 2, 0}, {5, 8, 0});
}

}  // namespace
}  // namespace quoin::test
