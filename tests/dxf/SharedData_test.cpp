// What other projects publish comes back byte for byte, and takes an appended line.
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include "embedded/dxf/DrawingCodec.h"
#include "embedded/dxf/FileError.h"
#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

using test::savedBytes;

constexpr const char* kAbsent = "the shared drawings are absent; set QUOIN_SHARED_DATA";

/// A LINE as the version of the store asks for it.
std::string lineFor(RecordStore& store, std::uint64_t handle) {
  const Format& format = store.format();
  std::string bytes;
  putAscii(bytes, 0, "LINE", format);
  if (handle != 0) {
    putHandle(bytes, 5, handle, format);
  }
  if (format.hasOwners()) {
    putHandle(bytes, 330, store.modelSpace().record->handle, format);
  }
  if (format.hasSubclassMarkers()) {
    putAscii(bytes, 100, "AcDbEntity", format);
  }
  putText(bytes, 8, L"\u5899", format);
  if (format.hasSubclassMarkers()) {
    putAscii(bytes, 100, "AcDbLine", format);
  }
  for (const int code : {10, 20, 30, 11, 21, 31}) {
    putDouble(bytes, code, code / 3.0, format);
  }
  return bytes;
}

TEST(SharedData, EveryDrawingComesBackByteForByte) {
  const auto files = test::sharedFiles(".dxf");
  if (files.empty()) {
    GTEST_SKIP() << kAbsent;
  }
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const std::string bytes = test::bytesOf(path);
    const DrawingCodec* codec = codecFor(std::string_view(bytes).substr(0, 4096));
    ASSERT_NE(codec, nullptr);
    RecordStore store;
    ASSERT_NO_THROW(codec->read(bytes, path.filename().string(), store, {}));
    EXPECT_FALSE(store.isChanged());
    EXPECT_FALSE(store.modelSpace().entities.empty());
    EXPECT_TRUE(savedBytes(store) == bytes);
  }
}

TEST(SharedData, AnAppendedLineIsTheOnlyChangeOfEveryDrawing) {
  const auto files = test::sharedFiles(".dxf");
  if (files.empty()) {
    GTEST_SKIP() << kAbsent;
  }
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    RecordStore store;
    store.load(test::bytesOf(path), path.filename().string());
    const std::uint64_t handle = store.newHandle();
    const std::string line = lineFor(store, handle);
    store.appendEntity(store.modelSpace(), line, handle);
    RecordStore again;
    again.load(savedBytes(store), "again");
    ASSERT_EQ(again.modelSpace().entities.size(), store.modelSpace().entities.size());
    EXPECT_EQ(again.modelSpace().entities.back()->bytes(), line);
    EXPECT_TRUE(handle == 0 || again.newHandle() > handle);
    // Everything else is as it was, record for record.
    std::size_t other = 0;
    for (const AcDbStub& stub : store.stubs()) {
      if (stub.isNew || stub.bytes().empty()) {
        continue;
      }
      other += again.stubs()[other].bytes() == line ? 1U : 0U;
      ASSERT_EQ(again.stubs()[other].bytes(), stub.bytes()) << store.describe(stub);
      ++other;
    }
  }
}

TEST(SharedData, TheAsciiAndTheBinaryFormOfADrawingHoldTheSameEntities) {
  const auto folder = test::sharedDataFolder();
  if (folder.empty()) {
    GTEST_SKIP() << kAbsent;
  }
  for (const std::string name : {"AC1009", "AC1015", "AC1032"}) {
    SCOPED_TRACE(name);
    RecordStore ascii;
    RecordStore binary;
    ascii.load(test::bytesOf(folder / ("acadsharp_sample_" + name + "_ascii.dxf")), "ascii");
    binary.load(test::bytesOf(folder / ("acadsharp_sample_" + name + "_binary.dxf")), "binary");
    ASSERT_EQ(ascii.blocks().size(), binary.blocks().size());
    for (std::size_t i = 0; i < ascii.blocks().size(); ++i) {
      const Block& left = ascii.blocks()[i];
      const Block& right = binary.blocks()[i];
      EXPECT_EQ(left.name, right.name);
      ASSERT_EQ(left.entities.size(), right.entities.size());
      for (std::size_t j = 0; j < left.entities.size(); ++j) {
        EXPECT_EQ(ascii.kindName(*left.entities[j]), binary.kindName(*right.entities[j]));
      }
    }
  }
}

TEST(SharedData, DwgDrawingsComeBackByteForByte) {
  const auto files = test::sharedFiles(".dwg");
  if (files.empty()) {
    GTEST_SKIP() << kAbsent;
  }
  for (const auto& path : files) {
    const std::string bytes = test::bytesOf(path);
    const DrawingCodec* codec = codecFor(std::string_view(bytes).substr(0, 4096));
    ASSERT_NE(codec, nullptr);
    EXPECT_STREQ(codec->name(), "DWG");
    RecordStore store;
    codec->read(bytes, path.filename().string(), store, {});
    EXPECT_FALSE(store.isEmpty());
    std::string written;
    codec->write(store, [&](std::string_view piece) { written += piece; }, {});
    EXPECT_EQ(written == bytes, true) << path;
  }
}

}  // namespace
}  // namespace quoin::dxf
