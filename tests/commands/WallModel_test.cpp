#include "commands/WallModel.h"

#include <gtest/gtest.h>

#include "commands/ClosedBody.h"
#include "plan/PolygonMesh.h"

namespace {

using quoin::commands::FloorSlab;
using quoin::commands::isModelFile;
using quoin::commands::ModelForm;

TEST(ModelFile, IsToldByItsEnding) {
  EXPECT_TRUE(isModelFile("m.obj"));
  EXPECT_TRUE(isModelFile("m.DXF"));
  EXPECT_TRUE(isModelFile("m.glb"));
  EXPECT_FALSE(isModelFile("m.stl"));
}

TEST(ModelForm, TurnsAndScalesWithoutMirroring) {
  const ModelForm form{0.001, true};
  EXPECT_EQ(form.place({1000, 2000, 3000}), AcGePoint3d(1, 3, -2));
  EXPECT_EQ(ModelForm().place({1, 2, 3}), AcGePoint3d(1, 2, 3));
}

TEST(FloorSlab, OfAConcaveOutlineIsClosed) {
  FloorSlab slab;
  slab.top = {{0, 0, 5}, {6, 0, 5}, {6, 2, 5}, {2, 2, 5}, {2, 5, 5}, {0, 5, 5}};
  std::vector<AcGePoint2d> outline;
  for (const AcGePoint3d& corner : slab.top) {
    outline.emplace_back(corner.x, corner.y);
  }
  slab.triangles = quoin::plan::meshOf(outline).triangles;
  slab.thickness = 0.5;
  EXPECT_EQ(slab.area(), 18.0);
  quoin::test::expectClosed(slab.faces(), 9.0, 1);
}

}  // namespace
