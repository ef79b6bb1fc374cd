// RAY and XLINE: values, extents and transforms.
#include <gtest/gtest.h>

#include "support/Drawings.h"
#include "support/Entities.h"

namespace quoin::test {
namespace {

TEST(EntityExtents, RaysAndConstructionLinesHaveNone) {
  for (const char* const kind : {"RAY", "XLINE"}) {
    const Measured measured(entityText(kind,
                                       std::string("AcDb") + (kind[0] == 'R' ? "Ray" : "Xline"),
                                       point(10, 1, 2) + point(11, 1, 0)));
    EXPECT_EQ(measured.status, Acad::eNotApplicable);
    EXPECT_FALSE(hostx::hasExtents(measured.drawing.id(0x40)));
  }
}

TEST(EntityTransforms, ARayKeepsAUnitDirection) {
  OneEntity one("RAY");
  ASSERT_EQ(one.transform(AcGeMatrix3d().setToScaling(80.0)), Acad::eOk);
  EXPECT_EQ(one.numbers(10)[0], 80.0);
  EXPECT_NEAR(one.numbers(11)[0], 0.6, 1e-15);
}

}  // namespace
}  // namespace quoin::test
