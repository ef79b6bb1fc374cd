#include "embedded/os/CodePage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>

namespace quoin::os {
namespace {

std::string encoded(const CodePage& page, std::wstring_view text) {
  std::string bytes;
  for (const wchar_t character : text) {
    EXPECT_TRUE(page.encode(static_cast<char32_t>(character), bytes));
  }
  return bytes;
}

struct Sample {
  const char* name;
  std::string bytes;
  const wchar_t* text;
};

TEST(CodePage, EveryCodePageOfDrawingsIsKnownAndDecodesItsLetters) {
  const Sample samples[] = {
      {"ANSI_1250", "\xB3", L"\u0142"},
      {"ANSI_1251", "\xF1", L"\u0441"},
      {"ANSI_1252", "\xE9\x80", L"\u00E9\u20AC"},
      {"ANSI_1253", "\xE1", L"\u03B1"},
      {"ANSI_1254", "\xFE", L"\u015F"},
      {"ANSI_1255", "\xE0", L"\u05D0"},
      {"ANSI_1256", "\xC7", L"\u0627"},
      {"ANSI_1257", "\xE0", L"\u0105"},
      {"ANSI_1258", "\xD0", L"\u0110"},
      {"ANSI_874", "\xA1", L"\u0E01"},
      {"ANSI_932", "\x95\xC7\xB1", L"\u58C1\uFF71"},
      {"ANSI_936", "\xC7\xBD", L"\u5899"},
      {"ANSI_949", "\xBA\xAE", L"\uBCBD"},
      {"ANSI_950", "\xC0\xF0", L"\u7246"},
      {"ANSI_1361", "\x88\x61", L"\uAC00"},
      {"DOS437", "\x84", L"\u00E4"},
      {"DOS850", "\xD5", L"\u0131"},
      {"dos852", "\x88", L"\u0142"},
      {"dos855", "\xA0", L"\u0430"},
      {"dos866", "\xA0", L"\u0430"},
      {"dos932", "\x95\xC7", L"\u58C1"},
      {"ISO8859-1", "\xE9", L"\u00E9"},
      {"ISO_8859-2", "\xB3", L"\u0142"},
      {"ISO8859-9", "\xFE", L"\u015F"},
      {"MACINTOSH", "\x8E", L"\u00E9"},
      {"GB2312", "\xC7\xBD", L"\u5899"},
      {"BIG5", "\xC0\xF0", L"\u7246"},
      {"KSC5601", "\xBA\xAE", L"\uBCBD"},
      {"JOHAB", "\x88\x61", L"\uAC00"},
      {"ascii", "abc", L"abc"},
      {"UTF-8", "\xE5\xA2\x99", L"\u5899"},
  };
  for (const Sample& sample : samples) {
    EXPECT_TRUE(CodePage::isKnown(sample.name)) << sample.name;
    const CodePage& page = CodePage::named(sample.name);
    EXPECT_EQ(page.decode(sample.bytes), sample.text) << sample.name;
    EXPECT_EQ(encoded(page, sample.text), sample.bytes) << sample.name;
  }
}

TEST(CodePage, ANameThatNobodyKnowsIsAnsi1252) {
  for (const char* name : {"", "NOBODY", "ANSI_99999", "DOS", "\xFF"}) {
    EXPECT_FALSE(CodePage::isKnown(name)) << name;
    EXPECT_EQ(&CodePage::named(name), &CodePage::named("ANSI_1252")) << name;
  }
}

TEST(CodePage, AsciiIsTheSameInAllOfThem) {
  std::string ascii;
  for (char c = 0; c < 127; ++c) {
    ascii.push_back(c);
  }
  for (const char* name : {"ANSI_1252", "ANSI_932", "ANSI_1361", "ANSI_950", "MACINTOSH"}) {
    const std::wstring text = CodePage::named(name).decode(ascii);
    EXPECT_EQ(text, std::wstring(ascii.begin(), ascii.end())) << name;
    EXPECT_EQ(encoded(CodePage::named(name), text), ascii) << name;
  }
}

TEST(CodePage, EveryByteAloneSurvives) {
  for (const char* name : {"ANSI_1250", "ANSI_1252", "ANSI_1255", "ANSI_874", "ANSI_932",
                           "ANSI_936", "ANSI_949", "ANSI_950", "ANSI_1361", "DOS437"}) {
    const CodePage& page = CodePage::named(name);
    for (int byte = 0; byte < 256; ++byte) {
      const std::string one(1, static_cast<char>(byte));
      EXPECT_EQ(encoded(page, page.decode(one)), one) << name << " " << byte;
    }
  }
}

TEST(CodePage, EveryPairOfBytesKeepsItsTextAndMostKeepTheirBytes) {
  for (const char* name : {"ANSI_932", "ANSI_936", "ANSI_949", "ANSI_950", "ANSI_1361"}) {
    const CodePage& page = CodePage::named(name);
    int respelled = 0;
    for (unsigned pair = 0x8000; pair <= 0xFFFF; ++pair) {
      const std::string bytes = {static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF)};
      const std::wstring text = page.decode(bytes);
      const std::string back = encoded(page, text);
      respelled += back != bytes ? 1 : 0;
      ASSERT_EQ(page.decode(back), text) << name << " " << pair;
    }
    EXPECT_LT(respelled, 500) << name;  // characters that the code page holds twice
  }
  EXPECT_EQ(CodePage::named("ANSI_936").decode("\xB0\xA1"), L"\u554A");
  EXPECT_EQ(CodePage::named("ANSI_936").characterOf(0xB0A1), U'\u554A');
  EXPECT_EQ(CodePage::named("ANSI_936").characterOf(0x0041), U'\0');
  EXPECT_EQ(CodePage::named("ANSI_1252").characterOf(0xB0A1), U'\0');
}

TEST(CodePage, ALeadByteAtTheEndIsKept) {
  const CodePage& page = CodePage::named("ANSI_936");
  EXPECT_EQ(page.decode("a\xC7"), std::wstring(L"a") + L'\xDCC7');
  EXPECT_EQ(encoded(page, page.decode("a\xC7")), "a\xC7");
}

constexpr std::array kDoubleByte{"ANSI_932", "ANSI_936", "ANSI_949", "ANSI_950", "ANSI_1361"};

/// The bytes as the code page itself spells the characters in them: what law (1) compares with.
std::string respelled(const CodePage& page, const std::string& bytes) {
  std::string spelled;
  for (std::size_t at = 0; at < bytes.size();) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const bool isPair =
        at + 1 < bytes.size() && byteAt(at) >= 0x80 &&
        page.decode(bytes.substr(at, 1)) == std::wstring(1, wchar_t(0xDC00 + byteAt(at))) &&
        page.characterOf(static_cast<std::uint16_t>(byteAt(at) << 8 | byteAt(at + 1))) != 0;
    if (isPair) {
      page.encode(page.characterOf(static_cast<std::uint16_t>(byteAt(at) << 8 | byteAt(at + 1))),
                  spelled);
      at += 2;
      continue;
    }
    spelled.push_back(bytes[at]);
    bool isLead = false;
    for (unsigned trail = 0; trail < 256 && byteAt(at) >= 0x80; ++trail) {
      isLead = isLead ||
               page.characterOf(static_cast<std::uint16_t>(unsigned{byteAt(at)} << 8 | trail)) != 0;
    }
    ++at;
    if (isLead && at < bytes.size() && byteAt(at) >= 0x80) {
      spelled.push_back(bytes[at++]);
    }
  }
  return spelled;
}

/// ASCII bytes that form no character with the byte in front of them.
std::size_t lettersOutsidePairs(const CodePage& page, const std::string& bytes) {
  std::size_t letters = 0;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const bool isSecond =
        at > 0 &&
        page.characterOf(static_cast<std::uint16_t>(byteAt(at - 1) << 8 | byteAt(at))) != 0;
    letters += byteAt(at) < 0x80 && !isSecond ? 1 : 0;
  }
  return letters;
}

TEST(CodePage, AStrayLeadByteDoesNotTakeTheLetterBehindIt) {
  // The second byte of a pair that is none would be the first half of one with the letter.
  EXPECT_EQ(CodePage::named("ANSI_932").decode("\xEE\xED\x41"),
            L"\xDCEE\xDCED"
            L"A");
  EXPECT_EQ(CodePage::named("ANSI_950").decode("\xA3\xF9\xFA"), L"\xDCA3\xDCF9\xDCFA");
  EXPECT_EQ(CodePage::named("ANSI_936").decode("\xB0 a"), L"\xDCB0 a");
  for (const char* name : kDoubleByte) {
    const CodePage& page = CodePage::named(name);
    for (const char* bytes : {"\xEE\xED\x41", "\xA3\xF9\xFA", "\xA3\xF9\xFA\x41", "\xFE\xFF"}) {
      const std::wstring text = page.decode(bytes);
      EXPECT_EQ(page.decode(encoded(page, text)), text) << name;
    }
  }
}

TEST(CodePage, EveryPairBeforeEverySortOfByteComesBackAndLeavesLettersAlone) {
  // What may follow a pair: letters and digits, a backslash, first and second halves, no half.
  const std::string behind = "A0z~\\\x80\x81\xA0\xA1\xB0\xED\xF9\xFA\xFC\xFE\xFF";
  for (const char* name : kDoubleByte) {
    const CodePage& page = CodePage::named(name);
    for (unsigned pair = 0x8000; pair <= 0xFFFF; ++pair) {
      for (std::size_t i = pair % 3; i < behind.size(); i += 3) {
        const std::string bytes = {static_cast<char>(pair >> 8), static_cast<char>(pair & 0xFF),
                                   behind[i]};
        const std::wstring text = page.decode(bytes);
        const std::string back = encoded(page, text);
        ASSERT_EQ(page.decode(back), text) << name << std::hex << " " << pair << " at " << i;
        ASSERT_EQ(back.size(), bytes.size()) << name << std::hex << " " << pair << " at " << i;
      }
    }
  }
}

TEST(CodePage, RandomBytesComeBackAsTheCodePageSpellsThem) {
  std::mt19937 random(20);
  for (const char* name : kDoubleByte) {
    const CodePage& page = CodePage::named(name);
    for (int round = 0; round < 4000; ++round) {
      std::string bytes(1 + random() % 8, ' ');
      for (char& byte : bytes) {
        byte = static_cast<char>(random() % 4 == 0 ? 0x41 + random() % 26 : 0x80 + random() % 128);
      }
      const std::wstring text = page.decode(bytes);
      const std::string back = encoded(page, text);
      ASSERT_EQ(page.decode(back), text) << name << " round " << round;
      ASSERT_EQ(back, respelled(page, bytes)) << name << " round " << round;
      const auto letters = std::count_if(text.begin(), text.end(),
                                         [](wchar_t character) { return character < 0x80; });
      ASSERT_GE(static_cast<std::size_t>(letters), lettersOutsidePairs(page, bytes))
          << name << " round " << round;
    }
  }
}

TEST(CodePage, WhatItLacksIsNotEncoded) {
  std::string bytes = "x";
  EXPECT_FALSE(CodePage::named("ANSI_1252").encode(U'\u5899', bytes));
  EXPECT_FALSE(CodePage::named("ANSI_1252").encode(U'\U0001F3E0', bytes));
  EXPECT_EQ(bytes, "x");
}

}  // namespace
}  // namespace quoin::os
