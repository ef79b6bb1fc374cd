// Records of a small drawing, once for each version.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "dwg/records/SmallDrawing.h"

namespace quoin::dwg::testing {

/// The handle of the record that is looked at.
inline constexpr std::uint64_t kEntity = 0x2AB;

class RecordTest : public ::testing::TestWithParam<dxf::Version> {
 protected:
  explicit RecordTest(const std::string& codePage) : m_facts(smallFacts(GetParam(), codePage)) {}

  /// The tags of a record, which must be whole and exact.
  std::string decoded(const RecordBytes& bytes) {
    const RecordSource source{kEntity, bytes.data, bytes.handleBits};
    m_codec.decode(source, m_record);
    EXPECT_TRUE(m_record.isWhole);
    EXPECT_TRUE(m_codec.isExact(source, m_record));
    std::string tags;
    m_codec.writeTags(m_record, tags);
    return tags;
  }

  DrawingFacts m_facts;
  ClassMap m_classes;
  RecordCodec m_codec{m_facts, m_classes};
  DecodedRecord m_record;
};

inline std::string releaseOf(const ::testing::TestParamInfo<dxf::Version>& info) {
  return std::string(dxf::releaseName(info.param));
}

}  // namespace quoin::dwg::testing
