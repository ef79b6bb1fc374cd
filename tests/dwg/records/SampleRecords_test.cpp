// Every record of a known kind in every published drawing is written again with its own bits.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "dwg/records/SampleSections.h"
#include "embedded/dwg/drawing/DwgDrawing.h"

namespace quoin::dwg {
namespace {

struct Counts {
  std::size_t exact = 0;
  std::size_t unread = 0;  // of kinds that are kept as they stand

  bool operator==(const Counts&) const = default;
};

void PrintTo(const Counts& counts, std::ostream* out) {
  *out << counts.exact << " exact, " << counts.unread << " unread";
}

using SampleRecords = test::SampleTest;

TEST_F(SampleRecords, OfKnownKindsAreExact) {
  std::map<std::string, Counts> counts;
  for (const auto& path : samples()) {
    SCOPED_TRACE(path.filename());
    const DwgDrawing drawing(DwgFile(quoin::test::bytesOf(path)), "");
    Counts& ofVersion = counts[std::string(dxf::releaseName(drawing.file().version()))];
    DecodedRecord record;
    for (const RecordView& view : drawing.file().records()) {
      const RecordSource source{view.handle, view.data, view.handleBits};
      drawing.codec().decode(source, record);
      const bool isKnown = record.kind != nullptr;
      EXPECT_TRUE(!isKnown || drawing.codec().isExact(source, record))
          << record.name << ' ' << std::hex << view.handle;
      ++(isKnown ? ofVersion.exact : ofVersion.unread);
    }
  }
  const std::map<std::string, Counts> known{
      {"R14", {1161, 81}},  {"R2000", {966, 81}}, {"R2004", {933, 81}},   {"R2007", {846, 79}},
      {"R2010", {843, 80}}, {"R2013", {785, 80}}, {"R2018", {1915, 1137}}};
  EXPECT_EQ(counts, known) << "other drawings than those that were counted have other numbers";
}

// What an edit does to the fields that it does not change.
TEST_F(SampleRecords, ThatAreGivenTheirOwnTagsKeepTheirBits) {
  std::map<std::string, std::size_t> others;
  for (const auto& path : samples()) {
    const DwgDrawing drawing(DwgFile(quoin::test::bytesOf(path)), "");
    const RecordCodec& codec = drawing.codec();
    for (const RecordView& view : drawing.file().records()) {
      DecodedRecord record;
      codec.decode({view.handle, view.data, view.handleBits}, record);
      if (record.kind == nullptr || record.kind->family == Family::Table) {
        continue;
      }
      std::string tags;
      codec.writeTags(record, tags);
      std::string problem;
      RecordBytes bytes;
      if (!codec.readTags(tags, record, problem)) {
        ++others[record.name + ": " + problem];
      } else if (!codec.encode(view.handle, record, bytes)) {
        ++others[record.name + ": not written"];
      } else if (bytes.data != view.data) {
        ++others[record.name + ": other bits"];
      } else {
        std::string again;
        codec.writeTags(record, again);
        others[record.name + ": other tags"] += again == tags ? 0 : 1;
      }
    }
  }
  std::erase_if(others, [](const auto& entry) { return entry.second == 0; });
  EXPECT_TRUE(others.empty()) << ::testing::PrintToString(others);
}

}  // namespace
}  // namespace quoin::dwg
