// A record that is given tags: its own change no bit of it, others are what it says afterwards.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "embedded/dwg/drawing/DwgDrawing.h"
#include "embedded/dxf/Tag.h"
#include "support/SharedData.h"

namespace quoin::dwg {
namespace {

/// Calls with every record that may be edited, and its tags.
void forEachExact(
    const DwgDrawing& drawing,
    const std::function<void(const RecordView&, DecodedRecord&, const std::string&)>& work) {
  DecodedRecord record;
  std::string tags;
  for (const RecordView& view : drawing.file().records()) {
    if (drawing.decodeExact(view.handle, record) && record.isWhole) {
      tags.clear();
      drawing.codec().writeTags(record, tags);
      work(view, record, tags);
    }
  }
}

class OwnTags : public testing::Test {
 protected:
  static void forEachDrawing(const std::function<void(const DwgDrawing&)>& work) {
    if (test::sharedFiles(".dwg").empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
    for (const auto& path : test::sharedFiles(".dwg")) {
      SCOPED_TRACE(path.filename().string());
      DwgDrawing drawing(DwgFile(test::bytesOf(path), path.filename().string()), {});
      drawing.tags({});
      work(drawing);
    }
  }
};

TEST_F(OwnTags, ChangeNoBit) {
  forEachDrawing([](const DwgDrawing& drawing) {
    std::size_t records = 0;
    forEachExact(drawing,
                 [&](const RecordView& view, DecodedRecord& record, const std::string& tags) {
                   SCOPED_TRACE(record.name + " " + std::to_string(view.handle));
                   std::string problem;
                   EXPECT_TRUE(drawing.codec().readTags(tags, record, problem)) << problem;
                   RecordBytes bytes;
                   EXPECT_TRUE(drawing.codec().encode(view.handle, record, bytes));
                   EXPECT_TRUE(bytes.data == view.data && bytes.handleBits == view.handleBits);
                   ++records;
                 });
    EXPECT_GT(records, 100U);
  });
}

/// The tags with every coordinate moved that is not 0: some always are.
std::string moved(const std::string& tags, const dxf::Format& format) {
  std::string result;
  dxf::TagCursor cursor(tags, format);
  for (dxf::TagView tag; cursor.next(tag);) {
    const bool isCoordinate = tag.code >= 10 && tag.code < 19;
    if (isCoordinate && dxf::doubleOf(tag, format) != 0.0) {
      dxf::putDouble(result, tag.code, dxf::doubleOf(tag, format) + 0.3, format);
    } else {
      result += tags.substr(tag.begin, tag.end - tag.begin);
    }
  }
  return result;
}

/// For messages: a tag a line.
std::string readable(const std::string& tags, const dxf::Format& format) {
  std::string result;
  dxf::TagCursor cursor(tags, format);
  for (dxf::TagView tag; cursor.next(tag);) {
    dxf::Format text = format;
    text.form = dxf::Form::Ascii;
    dxf::putTranscoded(result, tag, format, text);
  }
  return result;
}

TEST_F(OwnTags, OfMovedEntitiesAreWhatTheySayAfterwards) {
  forEachDrawing([](const DwgDrawing& drawing) {
    std::map<std::string, int> different;
    forEachExact(drawing,
                 [&](const RecordView& view, DecodedRecord& record, const std::string& tags) {
                   if (!record.isEntity || record.name == "BLOCK") {
                     return;  // what DXF says with BLOCK stands in another record
                   }
                   const std::string wanted = moved(tags, drawing.facts().format);
                   std::string problem;
                   RecordBytes bytes;
                   std::string written;
                   if (drawing.codec().readTags(wanted, record, problem) &&
                       drawing.codec().encode(view.handle, record, bytes)) {
                     drawing.codec().decode({view.handle, bytes.data, bytes.handleBits}, record);
                     drawing.codec().writeTags(record, written);
                   }
                   if (written != wanted && ++different[record.name] == 1) {
                     ADD_FAILURE() << problem << "wanted:\n"
                                   << readable(wanted, drawing.facts().format) << "written:\n"
                                   << readable(written, drawing.facts().format);
                   }
                 });
    for (const auto& [name, count] : different) {
      EXPECT_EQ(count, 0) << name;
    }
  });
}

}  // namespace
}  // namespace quoin::dwg
