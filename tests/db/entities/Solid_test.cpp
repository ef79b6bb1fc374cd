// SOLID and TRACE: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfASolidInAMirroredPlaneWithThickness) {
  // The plane of -Z turns x around.
  expectBox(Measured(entityText("SOLID", "AcDbTrace",
                                point(10, 1, 0, 5) + point(11, 3, 0, 5) + point(12, 1, 2, 5) +
                                    point(13, 3, 2, 5) + "39 2.0\n" + point(210, 0, 0, -1))),
            {-3, 0, -7}, {-1, 2, -5});
}

}  // namespace
}  // namespace quoin::test
