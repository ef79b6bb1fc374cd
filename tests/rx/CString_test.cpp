#include <gtest/gtest.h>

#include <string>

#include "afxwin.h"

namespace {

std::wstring formatted(const wchar_t* format, ...) {
  CString text;
  std::va_list arguments;
  va_start(arguments, format);
  text.FormatV(format, arguments);
  va_end(arguments);
  return text.GetString();
}

TEST(CString, IsMadeFromWideAndNarrowTexts) {
  EXPECT_TRUE(CString().IsEmpty());
  EXPECT_EQ(CString(L"墙"), L"墙");
  EXPECT_EQ(CString("\xE5\xA2\x99"), L"墙") << "narrow text is UTF-8";
  EXPECT_EQ(CString(L'x', 3), L"xxx");
  EXPECT_EQ(CString(L"abcdef", 3), L"abc");
  EXPECT_TRUE(CString(static_cast<const wchar_t*>(nullptr)).IsEmpty());
  EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
}

TEST(CString, CopiesAndMovesAreValues) {
  CString first(L"one");
  CString second(first);
  second += L" two";
  EXPECT_EQ(first, L"one");
  const CString moved(std::move(second));
  EXPECT_EQ(moved, L"one two");
  first = L"three";
  EXPECT_EQ(first, L"three");
  first = "four";
  EXPECT_EQ(first, L"four");
}

TEST(CString, ComparesByCharacterCodes) {
  EXPECT_TRUE(CString(L"a") == CString(L"a"));
  EXPECT_TRUE(L"a" == CString(L"a"));
  EXPECT_TRUE(CString(L"a") != L"A");
  EXPECT_TRUE(CString(L"Z") < CString(L"a"));
  EXPECT_TRUE(CString(L"a") < L"b");
  EXPECT_GT(CString(L"b").Compare(L"a"), 0);
  EXPECT_EQ(CString().Compare(nullptr), 0);
}

TEST(CString, CompareNoCaseIgnoresTheCaseOfLettersOnly) {
  EXPECT_EQ(CString(L"OsMode").CompareNoCase(L"OSMODE"), 0);
  EXPECT_LT(CString(L"A").CompareNoCase(L"b"), 0);
  EXPECT_GT(CString(L"AB").CompareNoCase(L"a"), 0);
  EXPECT_LT(CString(L"a").CompareNoCase(L"AB"), 0);
  EXPECT_NE(CString(L"[").CompareNoCase(L"{"), 0);
}

TEST(CString, FindsCharactersAndParts) {
  const CString text(L"abcabc");
  EXPECT_EQ(text.Find(L'b'), 1);
  EXPECT_EQ(text.Find(L'b', 2), 4);
  EXPECT_EQ(text.Find(L"ca"), 2);
  EXPECT_EQ(text.Find(L"x"), -1);
  EXPECT_EQ(text.Find(L'a', 99), -1);
  EXPECT_EQ(text.ReverseFind(L'c'), 5);
  EXPECT_EQ(text.ReverseFind(L'x'), -1);
}

TEST(CString, PartsAreClampedToTheText) {
  const CString text(L"abcdef");
  EXPECT_EQ(text.Left(2), L"ab");
  EXPECT_EQ(text.Left(99), L"abcdef");
  EXPECT_EQ(text.Left(-1), L"");
  EXPECT_EQ(text.Mid(2), L"cdef");
  EXPECT_EQ(text.Mid(2, 2), L"cd");
  EXPECT_EQ(text.Mid(99, 2), L"");
  EXPECT_EQ(text.Mid(-3, 2), L"ab");
  EXPECT_EQ(text.Right(2), L"ef");
  EXPECT_EQ(text.Right(99), L"abcdef");
  EXPECT_EQ(text.Right(-1), L"");
}

TEST(CString, TrimTakesEveryKindOfWhiteSpaceOffTheEnds) {
  EXPECT_EQ(CString(L" \t\r\n a b \v\f").Trim(), L"a b");
  EXPECT_EQ(CString(L"\x3000\x00A0 a\x2003").Trim(), L"a");
  EXPECT_EQ(CString(L"  a  ").TrimLeft(), L"a  ");
  EXPECT_EQ(CString(L"  a  ").TrimRight(), L"  a");
  EXPECT_EQ(CString(L"   ").Trim(), L"");
  EXPECT_EQ(CString(L"").Trim(), L"");
}

TEST(CString, ChangesTheCaseOfLettersOnly) {
  EXPECT_EQ(CString(L"aZ1墙").MakeUpper(), L"AZ1墙");
  EXPECT_EQ(CString(L"aZ1墙").MakeLower(), L"az1墙");
}

TEST(CString, ReplaceWorksFromLeftToRightAndCounts) {
  CString text(L"aaaa");
  EXPECT_EQ(text.Replace(L"aa", L"b"), 2);
  EXPECT_EQ(text, L"bb");
  EXPECT_EQ(text.Replace(L"b", L"bb"), 2);
  EXPECT_EQ(text, L"bbbb");
  EXPECT_EQ(text.Replace(L"b", nullptr), 4);
  EXPECT_EQ(text, L"");
  text = L"x.y.z";
  EXPECT_EQ(text.Replace(L'.', L'/'), 2);
  EXPECT_EQ(text, L"x/y/z");
  EXPECT_EQ(text.Replace(L"", L"!"), 0);
  EXPECT_EQ(text.Replace(L"q", L"!"), 0);
}

TEST(CString, JoinsTextsAndCharacters) {
  const CString b(L"b");
  EXPECT_EQ(L"a" + b + L"c", L"abc");
  EXPECT_EQ(b + b, L"bb");
  EXPECT_EQ(b + L'!', L"b!");
  EXPECT_EQ(L'!' + b, L"!b");
  CString sum;
  sum += b;
  sum += L"c";
  sum += "d";
  sum += L'e';
  EXPECT_EQ(sum, L"bcde");
  sum += sum;
  EXPECT_EQ(sum, L"bcdebcde");
}

TEST(CString, ABufferIsTakenOverUpToItsZeroOrTheGivenLength) {
  CString text(L"ab");
  wchar_t* buffer = text.GetBuffer(8);
  EXPECT_STREQ(buffer, L"ab");
  buffer[2] = L'c';
  buffer[3] = 0;
  text.ReleaseBuffer();
  EXPECT_EQ(text, L"abc");
  text.GetBuffer(8);
  text.ReleaseBuffer(2);
  EXPECT_EQ(text.GetLength(), 2);
  text.SetAt(0, L'x');
  EXPECT_EQ(text[0], L'x');
  EXPECT_EQ(text.GetAt(1), L'b');
}

TEST(CStringFormat, TakesWideTextForTheLetterSOnEveryPlatform) {
  EXPECT_EQ(formatted(L"断言：%s %s - %d", L"条件", L"a\\b", 33), L"断言：条件 a\\b - 33");
  EXPECT_EQ(formatted(L"%ls|%ws", L"宽", L"w"), L"宽|w");
  EXPECT_EQ(formatted(L"%S|%hs|%hS", "\xE5\xA2\x99", "b", "c"), L"墙|b|c");
  EXPECT_EQ(formatted(L"%c%C", L'墙', 'n'), L"墙n");
}

TEST(CStringFormat, PadsAndCutsTexts) {
  EXPECT_EQ(formatted(L"[%5s][%-5s][%.2s]", L"ab", L"cd", L"efgh"), L"[   ab][cd   ][ef]");
  EXPECT_EQ(formatted(L"[%*s][%-*s][%.*s]", 4, L"a", 4, L"b", 1, L"cd"), L"[   a][b   ][c]");
  EXPECT_EQ(formatted(L"[%*s]", -3, L"a"), L"[a  ]");
  EXPECT_EQ(formatted(L"[%.*s]", -1, L"abc"), L"[abc]") << "a negative precision is none";
}

TEST(CStringFormat, TakesIntegersOfEverySize) {
  EXPECT_EQ(formatted(L"%d %5d %-5d| %05d %+d", 1, 2, 3, 4, 5), L"1     2 3    | 00004 +5");
  EXPECT_EQ(formatted(L"%u %x %X %#x %o", 7U, 255U, 255U, 255U, 8U), L"7 ff FF 0xff 10");
  EXPECT_EQ(formatted(L"%lld %I64d %I64u", -9000000000LL, 9000000000LL, 9000000000ULL),
            L"-9000000000 9000000000 9000000000");
  EXPECT_EQ(formatted(L"%ld %hd %zu", 5L, 70000, static_cast<std::size_t>(6)), L"5 4464 6");
}

TEST(CStringFormat, TakesFloatingPointNumbers) {
  EXPECT_EQ(formatted(L"%f %.2f %8.3f %g %e", 1.5, 2.345, 3.0, 0.1, 1234.5),
            L"1.500000 2.35    3.000 0.1 1.234500e+03");
  EXPECT_EQ(formatted(L"%.1f %s", 0.25, L"next"), L"0.2 next");
}

TEST(CStringFormat, NullTextsAndUnknownConversionsAreNoDisaster) {
  EXPECT_EQ(
      formatted(L"%s %S", static_cast<const wchar_t*>(nullptr), static_cast<const char*>(nullptr)),
      L"(null) (null)");
  EXPECT_EQ(formatted(L"100%% %y %d", 3), L"100% %y 3");
  EXPECT_EQ(formatted(L"ends with %"), L"ends with %");
  EXPECT_EQ(formatted(L""), L"");
}

TEST(CStringFormat, AppendFormatKeepsWhatIsThere) {
  CString text(L"a");
  text.AppendFormat(L"-%d", 1);
  text.AppendFormat(L"-%s", text.GetString());
  EXPECT_EQ(text, L"a-1-a-1");
  text.Format(L"%s!", text.GetString());
  EXPECT_EQ(text, L"a-1-a-1!") << "the text may be its own argument";
}

}  // namespace
