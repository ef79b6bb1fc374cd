// Records that nobody reads: what all records share is read of them, the rest is kept.
#include "embedded/dwg/records/CommonData.h"
#include "tests/dwg/records/HandMadeEntity.h"

namespace quoin::dwg {
namespace {

using testing::HandMadeEntity;
using testing::kEntity;

class UnreadRecordTest : public testing::HandMadeRecordTest {
 protected:
  static constexpr std::uint16_t kSolid3d = 38;
  static constexpr std::uint32_t kOwnBits = 0x2AAAAAAA;
  static constexpr unsigned kOwnBitCount = 30;

  static RecordBytes solid(std::uint16_t type) {
    HandMadeEntity entity(GetParam(), type);
    entity.data.bits(kOwnBits, kOwnBitCount);
    entity.handles.handle(testing::reference(4, 0x77));
    return entity.finish();
  }
  RecordSource source(const RecordBytes& bytes) const {
    return {kEntity, bytes.data, bytes.handleBits};
  }
};

TEST_P(UnreadRecordTest, SaysWhatAllRecordsShare) {
  const RecordBytes bytes = solid(kSolid3d);
  m_codec.decode(source(bytes), m_record);
  EXPECT_EQ(m_record.name, "3DSOLID");
  EXPECT_FALSE(m_record.isWhole);
  EXPECT_EQ(m_record.handleAt(common(8)), 0x10U);
}

TEST_P(UnreadRecordTest, TakesNeighboursUpToR2000AndKeepsTheRest) {
  const RecordBytes bytes = solid(kSolid3d);
  m_codec.decode(source(bytes), m_record);
  if (GetParam() != dxf::Version::R2000) {
    EXPECT_FALSE(m_codec.isExact(source(bytes), m_record));
    return;
  }
  ASSERT_TRUE(m_codec.isExact(source(bytes), m_record));

  RecordValues& values = m_record.values;
  values.addHandle(kPrevious, 0x2A0);
  values.addHandle(kNext, 0x2B0);
  values.removeAll(kNoLinks);
  values.addInteger(kNoLinks, 0);
  RecordBytes linked;
  ASSERT_TRUE(m_codec.encode(kEntity, m_record, linked));
  DecodedRecord again;
  m_codec.decode(source(linked), again);
  EXPECT_EQ(again.handleAt(kPrevious), 0x2A0U);
  EXPECT_EQ(again.handleAt(kNext), 0x2B0U);

  // Without the links it is what it was.
  for (const int key : {kPrevious, kNext, kNoLinks}) {
    again.values.removeAll(key);
  }
  again.values.addInteger(kNoLinks, 1);
  RecordBytes back;
  ASSERT_TRUE(m_codec.encode(kEntity, again, back));
  EXPECT_EQ(back.data, bytes.data);
}

TEST_P(UnreadRecordTest, IsAlsoOneOfAKnownKindThatEndsTooEarly) {
  constexpr std::uint16_t kSpline = 36;
  const RecordBytes bytes = solid(kSpline);
  m_codec.decode(source(bytes), m_record);
  EXPECT_FALSE(m_record.isWhole);
  m_codec.decodeShared(source(bytes), m_record);
  EXPECT_EQ(m_record.name, "SPLINE");
  EXPECT_EQ(m_codec.isExact(source(bytes), m_record), GetParam() == dxf::Version::R2000);
}

INSTANTIATE_TEST_SUITE_P(Versions, UnreadRecordTest,
                         ::testing::Values(dxf::Version::R2000, dxf::Version::R2018),
                         testing::releaseOf);

}  // namespace
}  // namespace quoin::dwg
