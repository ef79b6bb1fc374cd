#include "embedded/os/Utf8.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using quoin::os::fromUtf8;
using quoin::os::toUtf8;

TEST(Utf8, OneToFourBytesACodePoint) {
  const std::string bytes = "a\xC3\xA9\xE5\xA2\x99\xF0\x9F\x8F\xA0";
  EXPECT_EQ(fromUtf8(bytes), L"a\u00E9\u5899\U0001F3E0");
  EXPECT_EQ(toUtf8(L"a\u00E9\u5899\U0001F3E0"), bytes);
}

TEST(Utf8, BytesThatAreNoUtf8SurviveTheRoundTrip) {
  for (const std::string bytes : {"\x80", "\xC0\x80", "\xC3", "\xE5\xA2", "\xED\xA0\x80",
                                  "\xF5\x80\x80\x80", "\xF0\x80\x80\x80", "a\xFFz"}) {
    EXPECT_EQ(toUtf8(fromUtf8(bytes)), bytes);
  }
  EXPECT_EQ(fromUtf8("\xFF"), std::wstring(1, static_cast<wchar_t>(0xDCFF)));
}

TEST(Utf8, EveryByteStringSurvivesTheRoundTrip) {
  std::mt19937 random(20260101);
  for (int round = 0; round < 2000; ++round) {
    std::string bytes;
    for (std::size_t length = random() % 12; length > 0; --length) {
      // Mostly lead and trail bytes, where the decisions are.
      bytes.push_back(static_cast<char>(random() % 4 == 0 ? random() % 128 : 128 + random() % 128));
    }
    ASSERT_EQ(toUtf8(fromUtf8(bytes)), bytes);
  }
}

TEST(Utf8, SurrogatePairsAreJoinedAndLoneOnesReplaced) {
  const std::wstring pair = {static_cast<wchar_t>(0xD83C), static_cast<wchar_t>(0xDFE0)};
  EXPECT_EQ(toUtf8(pair), "\xF0\x9F\x8F\xA0");
  EXPECT_EQ(toUtf8(std::wstring(1, static_cast<wchar_t>(0xD83C))), "\xEF\xBF\xBD");
}

}  // namespace
