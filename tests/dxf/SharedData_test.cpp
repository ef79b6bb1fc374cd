// Every published drawing comes back byte for byte.
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include "embedded/dxf/DrawingCodec.h"
#include "embedded/dxf/FileError.h"

namespace quoin::dxf {
namespace {

std::string savedBytes(const RecordStore& store) {
  std::string bytes;
  store.save([&](std::string_view piece) { bytes += piece; });
  return bytes;
}

TEST(SharedData, EveryDrawingComesBackByteForByte) {
  const auto files = test::sharedFiles(".dxf");
  if (files.empty()) {
    GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
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

}  // namespace
}  // namespace quoin::dxf
