// IMAGE and WIPEOUT: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAnImageAndItsClipBoundary) {
  // 10 x 4 pixels, each half a unit; without clipping 5 x 2.
  const std::string picture =
      point(10, 1, 1) + point(11, 0.5, 0) + point(12, 0, 0.5) + "13 10\n23 4\n70 7\n";
  expectBox(Measured(entityText("IMAGE", "AcDbRasterImage", picture + "280 0\n")), {1, 1, 0},
            {6, 3, 0});
  // Pixels 2 to 4 from the left and 0 to 1 from the top.
  expectBox(Measured(entityText("IMAGE", "AcDbRasterImage",
                                picture + "280 1\n71 1\n91 2\n14 1.5\n24 -0.5\n14 3.5\n24 0.5\n")),
            {2, 2.5, 0}, {3, 3, 0});
}

TEST(EntityExtents, OfAWipeoutIsItsPolygon) {
  expectBox(
      Measured(entityText("WIPEOUT", "AcDbWipeout",
                          point(10, 0, 0) + point(11, 8, 0) + point(12, 0, 8) +
                              "13 1\n23 1\n280 1\n71 2\n91 4\n14 -0.5\n24 0.5\n14 0.5\n24 0.5\n"
                              "14 0\n24 0\n14 -0.5\n24 0.5\n")),
      {0, 0, 0}, {8, 4, 0});
}

}  // namespace
}  // namespace quoin::test
