// A hatch from bits that the test writes itself: two paths and a pattern, each in the order that
// DXF has.
#include "tests/dwg/records/HandMadeEntity.h"

namespace quoin::dwg::testing {
namespace {

using dxf::Version;

class HatchTest : public HandMadeRecordTest {
 protected:
  RecordBytes made() {
    HandMadeEntity hatch(GetParam(), 78);
    BitWriter& data = hatch.data;
    if (hatch.isNew()) {
      data.bitLong(0);  // no gradient; the rest of one follows all the same
      data.bitLong(0);
      data.bitDouble(0.0);
      data.bitDouble(0.0);
      data.bitLong(0);
      data.bitDouble(0.0);
      data.bitLong(0);
      hatch.text("");
    }
    data.bitDouble(0.0);
    data.bitDouble(0.0);
    data.bitDouble(0.0);
    data.bitDouble(1.0);
    hatch.text("LINES");
    data.bit(false);  // a pattern
    data.bit(true);   // that follows its boundary
    data.bitLong(2);
    data.bitLong(2);  // a polyline
    data.bit(true);   // with bulges
    data.bit(true);   // closed
    data.bitLong(2);
    hatch.point(0.0, 0.0);
    data.bitDouble(0.5);
    hatch.point(8.0, 0.0);
    data.bitDouble(0.0);
    data.bitLong(1);
    hatch.handles.handle(reference(4, 0x30));
    data.bitLong(1);  // edges
    data.bitLong(1);
    data.rawChar(2);  // an arc
    hatch.point(3.0, 1.0);
    data.bitDouble(2.0);
    data.bitDouble(0.0);
    data.bitDouble(1.0);
    data.bit(true);
    data.bitLong(0);
    data.bitShort(1);
    data.bitShort(1);
    data.bitDouble(0.0);
    data.bitDouble(1.0);
    data.bit(false);
    data.bitShort(1);
    for (const double number : {0.0, 0.25, 0.5, 0.0, 2.0}) {
      data.bitDouble(number);
    }
    data.bitShort(2);
    data.bitDouble(1.5);
    data.bitDouble(-0.5);
    data.bitLong(1);
    hatch.point(4.0, 1.0);
    return hatch.finish();
  }
  static std::string tags(const std::string& corner) {
    return entity("HATCH",
                  "100 AcDbHatch, 10 0.0, 20 0.0, 30 0.0, 210 0.0, 220 0.0, 230 1.0, 2 LINES, "
                  "70 0, 71 1, 91 2, 92 2, 72 1, 73 1, 93 2, 10 0.0, 20 0.0, 42 0.5, 10 " +
                      corner +
                      ", 20 0.0, 42 0.0, 97 1, 330 30, 92 1, 93 1, 72 2, 10 3.0, 20 1.0, 40 2.0, "
                      "50 0.0, 51 57.29577951308232, 73 1, 97 0, 75 1, 76 1, 52 0.0, 41 1.0, 77 0, "
                      "78 1, 53 0.0, 43 0.25, 44 0.5, 45 0.0, 46 2.0, 79 2, 49 1.5, 49 -0.5, "
                      "98 1, 10 4.0, 20 1.0");
  }
};

TEST_P(HatchTest, PathsAndPatternsComeInTheOrderOfTheRecord) {
  EXPECT_EQ(decoded(made()), tags("8.0"));
  EXPECT_EQ(edited(tags("8.0")), tags("8.0"));
  EXPECT_EQ(edited(tags("9.0")), tags("9.0"));
}

TEST_P(HatchTest, NoDamagedByteBringsItDown) {
  RecordBytes bytes = made();
  for (std::size_t i = 0; i < bytes.data.size(); ++i) {
    for (const char damage : {'\0', '\xFF', '\x55'}) {
      std::string other = bytes.data;
      other[i] = damage;
      m_codec.decode({kEntity, other, bytes.handleBits}, m_record);
      RecordBytes again;
      m_codec.encode(kEntity, m_record, again);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, HatchTest, ::testing::Values(Version::R2000, Version::R2018),
                         releaseOf);

}  // namespace
}  // namespace quoin::dwg::testing
