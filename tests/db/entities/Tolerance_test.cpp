// TOLERANCE: values, extents and transforms.
#include <gtest/gtest.h>

#include "embedded/text/FontMetrics.h"
#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAToleranceAreItsCells) {
  // Two cells of one letter, 0.18 high, with half a height at either side.
  const quoin::text::Font& font = quoin::text::usualFont();
  const double width = (font.advance(L'A') + font.advance(L'B') + 2.0) * 0.18;
  expectBox(Measured(entityText("TOLERANCE", "AcDbFcf",
                                "3 NOSTYLE\n" + point(10, 1, 1) + "1 A%%vB\n" + point(11, 1, 0))),
            {1, 1 - 0.18, 0}, {1 + width, 1 + 0.18, 0});
}

TEST(EntityExtents, OfAToleranceHoldAllItsRows) {
  const quoin::text::Font& font = quoin::text::usualFont();
  const double width = (font.advance(L'B') + 1.0) * 0.18;
  expectBox(Measured(entityText("TOLERANCE", "AcDbFcf",
                                "3 NOSTYLE\n" + point(10, 1, 1) + "1 1^JB\n" + point(11, 1, 0))),
            {1, 1 - 3 * 0.18, 0},
            {1 + std::max(width, (font.advance(L'1') + 1.0) * 0.18), 1 + 0.18, 0});
}

}  // namespace
}  // namespace quoin::test
