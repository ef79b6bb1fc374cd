// What other projects publish is read whole, comes back byte for byte, and takes changes.
#include <gtest/gtest.h>

#include <map>

#include "dwg/MadeDwg.h"
#include "embedded/dwg/container/DwgFile.h"
#include "support/SharedData.h"

namespace quoin::dwg {
namespace {

/// How many records independent readers find in the published drawings.
const std::map<std::string, std::size_t> kRecords{
    {"acadsharp_sample_AC1014.dwg", 1242}, {"acadsharp_sample_AC1015.dwg", 1047},
    {"acadsharp_sample_AC1018.dwg", 1014}, {"acadsharp_sample_AC1021.dwg", 925},
    {"acadsharp_sample_AC1024.dwg", 923},  {"acadsharp_sample_AC1027.dwg", 865},
    {"acadsharp_sample_AC1032.dwg", 842},  {"acadsharp_aec_objects.dwg", 1573},
    {"acadsharp_empty.dwg", 145}};

class SharedDwg : public testing::Test {
 protected:
  void SetUp() override {
    if (test::sharedFiles(".dwg").empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }

  /// Calls with every published drawing that can be written.
  static void forEachWritable(const std::function<void(const DwgFile&)>& work) {
    int writable = 0;
    for (const auto& path : test::sharedFiles(".dwg")) {
      SCOPED_TRACE(path.filename().string());
      const DwgFile file(test::bytesOf(path), path.filename().string());
      if (file.whyReadOnly().empty()) {
        work(file);
        ++writable;
      }
    }
    EXPECT_GE(writable, 9);
  }
};

std::size_t differentBytes(const std::string& one, const std::string& other) {
  std::size_t different = 0;
  for (std::size_t i = 0; i < std::min(one.size(), other.size()); ++i) {
    different += one[i] != other[i] ? 1 : 0;
  }
  return different;
}

TEST_F(SharedDwg, EveryDrawingIsReadWithoutAWarningAndComesBackByteForByte) {
  for (const auto& path : test::sharedFiles(".dwg")) {
    SCOPED_TRACE(path.filename().string());
    const std::string bytes = test::bytesOf(path);
    const DwgFile file(bytes, path.filename().string());
    EXPECT_TRUE(file.warnings().empty()) << file.warnings()[0].message();
    const auto known = kRecords.find(path.filename().string());
    EXPECT_TRUE(known == kRecords.end() || file.records().size() == known->second)
        << file.records().size();
    EXPECT_FALSE(file.records().empty());
    EXPECT_FALSE(file.headerVariables().empty());
    EXPECT_FALSE(file.classes().empty());
    EXPECT_EQ(file.codePage(), "ANSI_1252");
    EXPECT_EQ(file.savedBy().empty(), file.version() <= dxf::Version::R2000);
    EXPECT_TRUE(file.section(SectionName::Preview).starts_with("\x1F\x25\x6D\x07"));
    EXPECT_TRUE(file.written({}) == bytes);
  }
}

TEST_F(SharedDwg, AChangeThatKeepsTheSizeStaysInItsPlace) {
  forEachWritable([](const DwgFile& file) {
    const RecordView& record = file.records()[file.records().size() / 2];
    std::string data(record.data);
    data[data.size() / 2] = static_cast<char>(data[data.size() / 2] ^ 8);
    const std::string bytes = file.written({{{record.handle, data, record.handleBits, false}}});
    const DwgFile fresh(bytes);
    EXPECT_TRUE(fresh.warnings().empty());
    EXPECT_EQ(fresh.find(record.handle)->data, data);
    if (file.version() == dxf::Version::R2000) {
      // The byte, the record's checksum; the map and its header as they were.
      EXPECT_EQ(bytes.size(), file.bytes().size());
      EXPECT_LE(differentBytes(bytes, file.bytes()), 3U);
    }
    EXPECT_EQ(bytes.substr(0, container::kPagedHeaderPlace),
              file.bytes().substr(0, container::kPagedHeaderPlace));
  });
}

TEST_F(SharedDwg, RecordsAreAddedErasedAndGrow) {
  forEachWritable([](const DwgFile& file) {
    const RecordView& grown = file.records()[file.records().size() / 2];
    const RecordView& erased = file.records()[file.records().size() / 3];
    const std::uint64_t fresh = file.records().back().handle + 1;
    FileChanges changes;
    changes.records = {{fresh, std::string(100000, 'n'), 0, false},
                       {grown.handle, std::string(grown.data) + "longer", grown.handleBits, false},
                       {erased.handle, "", 0, true}};
    std::string bytes = file.written(changes);
    for (int i = 0; i < 5; ++i) {
      changes.records = {
          {fresh, std::string(static_cast<std::size_t>(9000 * i + 1), 'm'), 0, false}};
      bytes = DwgFile(bytes).written(changes);
    }
    const DwgFile again(bytes);
    EXPECT_TRUE(again.warnings().empty());
    EXPECT_EQ(again.records().size(), file.records().size());
    EXPECT_EQ(again.find(erased.handle), nullptr);
    for (const RecordView& record : file.records()) {
      if (record.handle != erased.handle && record.handle != grown.handle) {
        ASSERT_EQ(again.find(record.handle)->data, record.data) << record.handle;
      }
    }
  });
}

TEST_F(SharedDwg, PagesWithoutChangesKeepBytesAndPlace) {
  forEachWritable([](const DwgFile& file) {
    if (file.version() <= dxf::Version::R2000 || file.bytes().size() < 1000000) {
      return;
    }
    const RecordView& record = file.records()[file.records().size() / 2];
    const std::string bytes = file.written(
        {{{record.handle, std::string(record.data) + "longer", record.handleBits, false}}});
    // New are the last page of the objects, the object map, the two maps, the header twice.
    EXPECT_LT(differentBytes(bytes, file.bytes()), 30000U);
    EXPECT_LT(bytes.size(), file.bytes().size() + 30000);
  });
}

}  // namespace
}  // namespace quoin::dwg
