// SECTION: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfASectionPlaneReachFromBottomToTop) {
  expectBox(Measured(entityText("SECTIONOBJECT", "AcDbSection",
                                point(10, 0, 0, 1) + "40 3\n41 1\n92 2\n" + point(11, 0, 0) +
                                    point(11, 4, 0) + "93 0\n")),
            {0, 0, -1}, {4, 0, 3});
}

}  // namespace
}  // namespace quoin::test
