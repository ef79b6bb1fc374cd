// A dimension from bits that the test writes itself: group 70 is put together from its type and
// two bytes of flags.
#include "tests/dwg/records/HandMadeEntity.h"

namespace quoin::dwg::testing {
namespace {

using dxf::Version;

class DimensionsTest : public HandMadeRecordTest {
 protected:
  static std::string tags(const std::string& flags) {
    const bool isNew = GetParam() == Version::R2018;
    return entity("DIMENSION",
                  std::string("100 AcDbDimension, ") + (isNew ? "280 0, " : "") +
                      "2 *D3, 10 1.0, 20 2.0, 30 0.0, 11 5.0, 21 6.0, 31 0.0, 70 " + flags +
                      ", 1 <> mm, 71 5, 42 3.5, " + (isNew ? "73 0, 74 0, 75 1, " : "") +
                      "3 Standard, 100 AcDbOrdinateDimension, 13 1.0, 23 0.0, 33 0.0, 14 7.0, "
                      "24 8.0, 34 0.0");
  }
};

TEST_P(DimensionsTest, FlagsAreThoseOfTypeAndBytes) {
  HandMadeEntity dimension(GetParam(), 20);
  BitWriter& data = dimension.data;
  if (dimension.isNew()) {
    data.rawChar(0);
  }
  for (const double normal : {0.0, 0.0, 1.0}) {
    data.bitDouble(normal);
  }
  dimension.point(5.0, 6.0);
  data.bitDouble(0.0);
  data.rawChar(2);  // a block of its own, its text where the user put it
  dimension.text("<> mm");
  for (const double number : {0.0, 0.0, 1.0, 1.0, 1.0, 0.0}) {
    data.bitDouble(number);
  }
  data.bitShort(5);
  data.bitShort(1);
  data.bitDouble(1.0);
  data.bitDouble(3.5);
  if (dimension.isNew()) {
    data.bit(false);
    data.bit(false);
    data.bit(true);
  }
  dimension.point(0.0, 0.0);
  for (const double number : {1.0, 2.0, 0.0, 1.0, 0.0, 0.0, 7.0, 8.0, 0.0}) {
    data.bitDouble(number);
  }
  data.rawChar(1);  // along X
  dimension.handles.handle(reference(5, 0x27));
  dimension.handles.handle(reference(5, 0x50));
  EXPECT_EQ(decoded(dimension.finish()), tags("230"));  // 128 + 64 + 32 + 6
  EXPECT_EQ(edited(tags("230")), tags("230"));
  EXPECT_EQ(edited(tags("38")), tags("38"));
}

INSTANTIATE_TEST_SUITE_P(Versions, DimensionsTest,
                         ::testing::Values(Version::R2000, Version::R2018), releaseOf);

}  // namespace
}  // namespace quoin::dwg::testing
