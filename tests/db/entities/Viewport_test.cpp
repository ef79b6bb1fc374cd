// VIEWPORT: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAViewport) {
  expectBox(Measured(entityText("VIEWPORT", "AcDbViewport", point(10, 5, 4) + "40 6\n41 2\n")),
            {2, 3, 0}, {8, 5, 0});
}

}  // namespace
}  // namespace quoin::test
