#include "commands/WallModel.h"

#include <gtest/gtest.h>

namespace {

using quoin::commands::isModelFile;
using quoin::commands::WallPrism;

WallPrism straightWall() {
  WallPrism prism;
  prism.startLeft = AcGePoint3d(0, 1, 0);
  prism.startMid = AcGePoint3d(0, 0, 0);
  prism.startRight = AcGePoint3d(0, -1, 0);
  prism.endLeft = AcGePoint3d(10, 1, 0);
  prism.endMid = AcGePoint3d(10, 0, 0);
  prism.endRight = AcGePoint3d(10, -1, 0);
  prism.height = 3;
  return prism;
}

TEST(WallPrism, EnclosesItsVolumeWithFacesThatLookOutwards) {
  double volume = 0.0;
  for (const WallPrism::Face& face : straightWall().faces()) {
    for (int i = 1; i < 3; ++i) {
      const std::size_t second = static_cast<std::size_t>(i);
      volume += face[0].asVector().dotProduct(
                    face[second].asVector().crossProduct(face[second + 1].asVector())) /
                6.0;
    }
  }
  EXPECT_NEAR(volume, 10.0 * 2.0 * 3.0, 1e-12);
}

TEST(WallPrism, HasTenFaces) {
  EXPECT_EQ(straightWall().faces().size(), 10u);
}

TEST(ModelFile, IsToldByItsEnding) {
  EXPECT_TRUE(isModelFile("m.obj"));
  EXPECT_TRUE(isModelFile("m.DXF"));
  EXPECT_FALSE(isModelFile("m.stl"));
}

}  // namespace
