// MLINE: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAMultilineWithItsElements) {
  expectBox(Measured(entityText("MLINE", "AcDbMline",
                                "2 STANDARD\n40 1\n70 0\n71 1\n72 2\n73 2\n" + point(10, 0, 0) +
                                    point(11, 0, 0) + point(12, 1, 0) + point(13, 0, 1) +
                                    "74 2\n41 0.5\n41 0\n75 0\n74 2\n41 -0.5\n41 0\n75 0\n" +
                                    point(11, 4, 0) + point(12, 1, 0) + point(13, 0, 1) +
                                    "74 2\n41 0.5\n41 0\n75 0\n74 2\n41 -0.5\n41 0\n75 0\n")),
            {0, -0.5, 0}, {4, 0.5, 0});
}

}  // namespace
}  // namespace quoin::test
