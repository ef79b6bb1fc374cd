// PDFUNDERLAY and its relatives: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, OfAnUnderlayIsItsBoundary) {
  const std::string sheet =
      "340 0\n" + point(10, 10, 0) + "41 2\n42 2\n43 2\n50 90\n210 0\n220 0\n230 1\n280 3\n";
  expectBox(Measured(entityText("PDFUNDERLAY", "AcDbUnderlayReference",
                                sheet + "11 0\n21 0\n11 3\n21 1\n")),
            {8, 0, 0}, {10, 6, 0});
  EXPECT_EQ(Measured(entityText("PDFUNDERLAY", "AcDbUnderlayReference", sheet)).status,
            Acad::eNullExtents);
}

}  // namespace
}  // namespace quoin::test
