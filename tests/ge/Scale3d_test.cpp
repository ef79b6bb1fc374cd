#include "gescl3d.h"

#include <gtest/gtest.h>

namespace {

TEST(Scale3d, DefaultKeepsSizes) {
  const AcGeScale3d scale;
  EXPECT_EQ(scale.sx, 1.0);
  EXPECT_EQ(scale.sy, 1.0);
  EXPECT_EQ(scale.sz, 1.0);
}

TEST(Scale3d, FactorsAreReadByNameAndIndex) {
  AcGeScale3d scale(4.0);
  EXPECT_EQ(scale[2], 4.0);
  scale.set(1.0, 2.0, 3.0);
  EXPECT_EQ(scale[0], scale.sx);
  EXPECT_EQ(scale[1], scale.sy);
  EXPECT_EQ(scale[2], scale.sz);
}

TEST(Scale3d, ProportionalLeavesSignsAsideAndIncludesTheTolerance) {
  EXPECT_TRUE(AcGeScale3d(2.0, -2.0, 2.0).isProportional());
  EXPECT_TRUE(AcGeScale3d(1.0, 1.0 + 0.9e-10, 1.0).isProportional());
  EXPECT_FALSE(AcGeScale3d(1.0, 1.0, 1.0 + 1.1e-10).isProportional());
  EXPECT_FALSE(AcGeScale3d(1.0, 2.0, 1.0).isProportional());
}

}  // namespace
