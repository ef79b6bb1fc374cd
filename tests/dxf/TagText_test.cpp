// Text of tags: code pages, escapes, control characters.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "embedded/dxf/Tag.h"

namespace quoin::dxf {
namespace {

Format in(const char* codePage, Version version = Version::R2000) {
  Format format;
  format.version = version;
  format.codePage = codePage;
  format.lineEnd = "\n";
  return format;
}

std::wstring read(const std::string& raw, const Format& format) {
  return textOf({1, raw, 0, raw.size()}, format);
}

std::string written(std::wstring_view text, const Format& format) {
  std::string bytes;
  putText(bytes, 1, text, format);
  return bytes.substr(4, bytes.size() - 5);
}

TEST(TagText, IsDecodedFromTheCodePageThatTheDrawingNames) {
  EXPECT_EQ(read("\xC4rger", in("ANSI_1252")), L"\u00C4rger");
  EXPECT_EQ(read("\xC7\xBD\xCC\xE5", in("ANSI_936")), L"\u5899\u4F53");
  EXPECT_EQ(read("\x95\xC7", in("ANSI_932")), L"\u58C1");
  EXPECT_EQ(read("\xD1\xF2\xE5\xED\xE0", in("ANSI_1251")), L"\u0421\u0442\u0435\u043D\u0430");
}

TEST(TagText, IsUtf8FromR2007OnWhateverTheCodePage) {
  EXPECT_EQ(read("\xE5\xA2\x99", in("ANSI_936", Version::R2007)), L"\u5899");
  EXPECT_EQ(written(L"\u5899", in("ANSI_936", Version::R2018)), "\xE5\xA2\x99");
}

TEST(TagText, IsWrittenInTheCodePageThatItWasReadIn) {
  EXPECT_EQ(written(L"\u00C4rger", in("ANSI_1252")), "\xC4rger");
  EXPECT_EQ(written(L"\u5899\u4F53", in("ANSI_936")), "\xC7\xBD\xCC\xE5");
}

TEST(TagText, CharactersThatTheCodePageLacksAreEscaped) {
  EXPECT_EQ(written(L"a\u5899b", in("ANSI_1252")), "a\\U+5899b");
  EXPECT_EQ(read("a\\U+5899b", in("ANSI_1252")), L"a\u5899b");
}

TEST(TagText, CharactersBeyondTheFirstPlaneAreEscapedAsAPair) {
  const std::wstring house = L"\U0001F3E0";
  EXPECT_EQ(written(house, in("ANSI_1252")), "\\U+D83C\\U+DFE0");
  EXPECT_EQ(read("\\U+D83C\\U+DFE0", in("ANSI_1252")), house);
  EXPECT_EQ(written(house, in("ANSI_1252", Version::R2010)), "\xF0\x9F\x8F\xA0");
}

TEST(TagText, EscapesAreResolvedInNewFilesToo) {
  EXPECT_EQ(read("\\U+5899", in("ANSI_1252", Version::R2018)), L"\u5899");
  EXPECT_EQ(read("\\u+5899", in("ANSI_1252")), L"\\u+5899");
}

TEST(TagText, MultiByteEscapesNameTheirCodePage) {
  EXPECT_EQ(read("\\M+195C7", in("ANSI_1252")), L"\u58C1");  // Japanese
  EXPECT_EQ(read("\\M+2C0F0", in("ANSI_1252")), L"\u7246");  // traditional Chinese
  EXPECT_EQ(read("\\M+3BAAE", in("ANSI_1252")), L"\uBCBD");  // Korean
  EXPECT_EQ(read("\\M+5C7BD", in("ANSI_1252")), L"\u5899");  // simplified Chinese
}

TEST(TagText, WhatIsNoWholeEscapeStaysText) {
  for (const wchar_t* text :
       {L"\\U+12", L"\\U+12G4", L"\\U", L"\\", L"\\M+9C7BD", L"\\M+1", L"\\M+10000", L"\\U+D83C",
        L"\\U+DC80", L"\\U+DFE0\\U+D83C", L"C:\\Users\\U"}) {
    const std::string raw(text, text + std::wstring_view(text).size());
    EXPECT_EQ(read(raw, in("ANSI_1252")), text);
    EXPECT_EQ(written(text, in("ANSI_1252")), raw);
  }
}

TEST(TagText, AnEscapeIsNotSeenInsideADoubleByteCharacter) {
  // The second byte of this character is a backslash.
  EXPECT_EQ(read("\x83\x5CU+0041", in("ANSI_932")), L"\u30BDU+0041");
}

TEST(TagText, ControlCharactersNeverBreakALine) {
  for (const Version version : {Version::R12, Version::R2018}) {
    const Format format = in("ANSI_1252", version);
    EXPECT_EQ(written(L"one\ntwo\r\tx", format), "one^Jtwo^M^Ix");
    EXPECT_EQ(read("one^Jtwo^M^Ix", format), L"one\ntwo\r\tx");
    EXPECT_EQ(written(L"2^3", format), "2^ 3");
    EXPECT_EQ(read("2^ 3", format), L"2^3");
  }
}

TEST(TagText, ACaretThatEscapesNothingStaysOne) {
  EXPECT_EQ(read("a^", in("ANSI_1252")), L"a^");
  EXPECT_EQ(read("1^2", in("ANSI_1252")), L"1^2");
}

TEST(TagText, BytesThatTheCodePageDoesNotKnowComeBack) {
  EXPECT_EQ(read("\x81", in("ANSI_1252")), L"\xDC81");
  EXPECT_EQ(written(L"\xDC81", in("ANSI_1252")), "\x81");
  EXPECT_EQ(read("a\xFFz", in("ANSI_1252", Version::R2010)), std::wstring(L"a\xDCFF") + L"z");
  EXPECT_EQ(written(std::wstring(L"a\xDCFF") + L"z", in("ANSI_1252", Version::R2010)), "a\xFFz");
}

TEST(TagText, AByteOrderMarkedOrUnknownCodePageStillReads) {
  EXPECT_EQ(read("\xC3\x84", in("UTF-8", Version::R12)), L"\u00C4");
  EXPECT_EQ(read("\xC4", in("NOBODY_KNOWS")), L"\u00C4");
}

TEST(TagText, AnyBytesSurviveReadingAndWriting) {
  // The caret is left out (its bare form is respelled), and so is the backslash, whose escapes
  // may name what the code page has.
  std::mt19937 random(815);
  for (const char* codePage : {"ANSI_1252", "ANSI_1251", "ANSI_936", "ANSI_874", "DOS437"}) {
    for (const Version version : {Version::R2000, Version::R2010}) {
      const Format format = in(codePage, version);
      for (int i = 0; i < 2000; ++i) {
        std::string raw;
        for (std::size_t size = random() % 12; raw.size() < size;) {
          const auto byte = static_cast<char>(random() & 0xFF);
          if (static_cast<unsigned char>(byte) >= 0x20 && byte != '^' && byte != '\\') {
            raw.push_back(byte);
          }
        }
        ASSERT_EQ(written(read(raw, format), format), raw) << codePage;
      }
    }
  }
}

}  // namespace
}  // namespace quoin::dxf
