#include "embedded/dwg/container/RecordFrame.h"

#include <gtest/gtest.h>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

TEST(RecordFrame, OfAnySizeComesBack) {
  for (const std::size_t size : {1U, 127U, 128U, 0x7FFFU, 0x8000U, 1U << 20}) {
    for (const bool hasHandleBits : {false, true}) {
      const std::string data(size, 'r');
      const std::uint64_t bits = hasHandleBits ? size * 8 : 0;
      const std::string frame = framedRecord(data, bits, hasHandleBits);
      const std::string objects = "front" + frame + "back";
      const RecordFrame read = readRecordFrame(objects, 5, hasHandleBits);
      EXPECT_EQ(read.data, data);
      EXPECT_EQ(read.handleBits, bits);
      EXPECT_EQ(read.size, frame.size());
      EXPECT_TRUE(isRecordSumRight(objects, 5, read.size));
    }
  }
}

TEST(RecordFrame, IsSpelledAsTheFormatHasIt) {
  EXPECT_EQ(framedRecord("ab", 0, false).substr(0, 4),
            "\x02\x00"
            "ab"sv);
  EXPECT_EQ(framedRecord("ab", 9, true).substr(0, 5),
            "\x02\x00\x09"
            "ab"sv);
  EXPECT_EQ(framedRecord(std::string(0x8001, 'x'), 0x81, true).substr(0, 6),
            "\x01\x80\x01\x00\x81\x01"sv);
}

TEST(RecordFrame, AChangedByteIsNoticed) {
  std::string frame = framedRecord("some record", 3, true);
  for (std::size_t i = 3; i < frame.size(); ++i) {
    std::string damaged = frame;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x10);
    EXPECT_FALSE(isRecordSumRight(damaged, 0, damaged.size())) << i;
  }
}

TEST(RecordFrame, WhatCannotBeARecordIsRefused) {
  const std::string frame = framedRecord("some record", 3, true);
  EXPECT_THROW(readRecordFrame(frame, frame.size(), true), Damage);
  EXPECT_THROW(readRecordFrame(frame, ~std::uint64_t{0}, true), Damage);
  EXPECT_THROW(readRecordFrame(std::string_view(frame).substr(0, 6), 0, true), Damage);
  EXPECT_THROW(readRecordFrame("\x00\x00\x00\x00\x00"sv, 0, true), Damage);  // no data
  EXPECT_THROW(readRecordFrame(std::string(99, '\xFF'), 0, false), Damage);  // no end of the size
  EXPECT_THROW(readRecordFrame(framedRecord("ab", 17, true), 0, true), Damage);
}

}  // namespace
}  // namespace quoin::dwg::container
