// Solids and faces from bits that the test writes itself.
#include "tests/dwg/records/HandMadeEntity.h"

namespace quoin::dwg::testing {
namespace {

using dxf::Version;

class FillsTest : public HandMadeRecordTest {};

TEST_P(FillsTest, ASolidShowsItsElevationWithEachCorner) {
  HandMadeEntity solid(GetParam(), 31);
  solid.data.bit(true);  // no thickness
  solid.data.bitDouble(2.5);
  solid.point(0.0, 0.0);
  solid.point(4.0, 0.0);
  solid.point(0.0, 3.0);
  solid.point(4.0, 3.0);
  solid.data.bit(true);  // in the plane of the world
  const std::string before = entity("SOLID",
                                    "100 AcDbTrace, 10 0.0, 20 0.0, 30 2.5, 11 4.0, 21 0.0, "
                                    "31 2.5, 12 0.0, 22 3.0, 32 2.5, 13 4.0, 23 3.0, 33 2.5");
  EXPECT_EQ(decoded(solid.finish()), before);
  EXPECT_EQ(edited(before), before);
  const std::string after = entity("SOLID",
                                   "100 AcDbTrace, 10 0.0, 20 0.0, 30 2.5, 11 7.0, 21 0.0, "
                                   "31 2.5, 12 0.0, 22 3.0, 32 2.5, 13 4.0, 23 3.0, 33 2.5");
  EXPECT_EQ(edited(after), after);
}

TEST_P(FillsTest, AFlatFaceHasDifferencesFromCornerToCorner) {
  HandMadeEntity face(GetParam(), 28);
  face.data.bit(false);  // edges may be hidden
  face.data.bit(true);   // flat
  face.point(1.0, 2.0);
  const double corners[4][3] = {{1, 2, 0}, {5, 2, 0}, {5, 6, 0}, {1, 6, 0}};
  for (int i = 1; i < 4; ++i) {
    for (int axis = 0; axis < 3; ++axis) {
      face.data.defaultDouble(corners[i][axis], corners[i - 1][axis]);
    }
  }
  face.data.bitShort(5);
  const std::string before = entity("3DFACE",
                                    "100 AcDbFace, 10 1.0, 20 2.0, 30 0.0, 11 5.0, 21 2.0, 31 0.0, "
                                    "12 5.0, 22 6.0, 32 0.0, 13 1.0, 23 6.0, 33 0.0, 70 5");
  EXPECT_EQ(decoded(face.finish()), before);
  const std::string raised = entity("3DFACE",
                                    "100 AcDbFace, 10 1.0, 20 2.0, 30 9.0, 11 5.0, 21 2.0, 31 0.0, "
                                    "12 5.0, 22 6.0, 32 0.0, 13 1.0, 23 6.0, 33 0.0");
  EXPECT_EQ(edited(raised), raised);
}

INSTANTIATE_TEST_SUITE_P(Versions, FillsTest, ::testing::Values(Version::R2000, Version::R2018),
                         releaseOf);

}  // namespace
}  // namespace quoin::dwg::testing
