#include "embedded/dwg/container/Lz77.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_literals;

std::string unpacked(std::string_view packed, std::size_t size) {
  std::string out(size, '?');
  out.resize(unpackLz77(packed, out.data(), size));
  return out;
}

void expectRoundTrip(const std::string& bytes) {
  const std::string packed = packLz77(bytes);
  ASSERT_EQ(unpacked(packed, bytes.size()), bytes);
  ASSERT_LE(packed.size(), bytes.size() + bytes.size() / 255 + 8);
}

/// The instruction for the literals "abcd", with which these tests begin.
const std::string kAbcd = std::string(1, '\x01') + "abcd";

TEST(Lz77, EachInstructionOfTheFormatIsUnderstood) {
  EXPECT_EQ(unpacked(kAbcd + "\x11", 4), "abcd");
  // 3 bytes from 2 back, then two literals.
  EXPECT_EQ(unpacked(kAbcd + "\x46\x00xy\x11"s, 9), "abcdcdcxy");
  // 4 bytes from 4 back, then literals by an instruction.
  EXPECT_EQ(unpacked(kAbcd + "\x22\x0C\x00\x01wxyz\x11"s, 12), "abcdabcdwxyz");
  // 2 + 31 + 255 + 1 bytes from 1 back.
  EXPECT_EQ(unpacked(kAbcd + "\x20\x00\x01\x00\x00\x11"s, 293), "abc" + std::string(290, 'd'));
  // 18 + 2 literals.
  EXPECT_EQ(unpacked("\x00\x02ghijklmnopqrstuvwxyz\x11"s, 20), "ghijklmnopqrstuvwxyz");
}

TEST(Lz77, FarCopiesReachSoFarBack) {
  std::string bytes = "abcdefgh";
  for (const std::size_t apart : {0x3FF0U, 0x3FF8U, 0x3FF9U, 0x7FF8U, 0x8000U, 0xBFF7U, 0xC000U}) {
    std::mt19937 random(7);
    std::string between;
    while (between.size() < apart) {
      between.push_back(static_cast<char>(random()));
    }
    expectRoundTrip(bytes + between + bytes);
  }
}

TEST(Lz77, WhatIsPackedUnpacksToTheSame) {
  std::mt19937 random(1);
  for (int round = 0; round < 3000; ++round) {
    const auto letters = 1 + random() % 12;
    std::string bytes;
    const std::size_t size = 4 + random() % 700;
    while (bytes.size() < size) {
      if (bytes.size() > 8 && random() % 4 == 0) {
        bytes += bytes.substr(random() % bytes.size(), random() % 60);
      } else {
        bytes.push_back(static_cast<char>(random() % letters));
      }
    }
    ASSERT_NO_FATAL_FAILURE(expectRoundTrip(bytes)) << "round " << round;
  }
}

TEST(Lz77, LiteralsAndCopiesOfEveryLengthComeBack) {
  std::string noise;
  std::mt19937 random(3);
  for (int i = 0; i < 2000; ++i) {
    noise.push_back(static_cast<char>(random()));
  }
  for (std::size_t length = 4; length < 1200; ++length) {
    ASSERT_NO_FATAL_FAILURE(expectRoundTrip(noise.substr(0, length)));
    ASSERT_NO_FATAL_FAILURE(expectRoundTrip(noise + std::string(length, 'a') + noise));
    ASSERT_NO_FATAL_FAILURE(expectRoundTrip(noise + noise.substr(100, length)));
  }
}

TEST(Lz77, PagesOfZeroesBecomeSmall) {
  const std::string zeroes(0x7400, '\0');
  EXPECT_LT(packLz77(zeroes).size(), 140U);
  expectRoundTrip(zeroes);
}

TEST(Lz77, DamagedInstructionsAreRefused) {
  const auto refused = [](std::string_view packed, std::size_t size) {
    EXPECT_THROW(unpacked(packed, size), Damage) << testing::PrintToString(packed);
  };
  refused("", 9);
  refused(kAbcd, 9);                      // no end
  refused("\x02gh", 9);                   // too few literals
  refused(kAbcd + "\x11", 3);             // no room for the literals
  refused(kAbcd + "\x50\x01\x11", 20);    // from in front of the beginning
  refused(kAbcd + "\xF0\x00\x11"s, 9);    // no room for the copy
  refused(kAbcd + "\x41\x00x\x05"s, 99);  // literals behind literals
  refused(std::string(1000, '\0'), 99);   // a length without an end
}

TEST(Lz77, ACutOffPageIsRefused) {
  const std::string packed =
      packLz77("abcdabcdabcdabcdxyzxyzxyzxyz0123456789" + std::string(99, 'q'));
  for (std::size_t size = 0; size + 3 < packed.size(); ++size) {
    EXPECT_THROW(unpacked(std::string_view(packed).substr(0, size), 200), Damage) << size;
  }
}

}  // namespace
}  // namespace quoin::dwg::container
