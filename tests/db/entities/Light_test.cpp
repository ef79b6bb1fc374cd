// LIGHT: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfALightAreItsPlace) {
  expectBox(Measured(entityText("LIGHT", "AcDbLight",
                                "1 Lamp\n70 1\n" + point(10, 1, 2, 3) + point(11, 9, 9, 9))),
            {1, 2, 3}, {1, 2, 3});
}

}  // namespace
}  // namespace quoin::test
