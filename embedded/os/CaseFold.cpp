#include "embedded/os/CaseFold.h"

#include <algorithm>

namespace quoin::os {
namespace {

/// A run of small letters whose capitals lie `distance` below.
struct LetterRun {
  char32_t first;
  char32_t last;
  char32_t distance;
};
constexpr LetterRun kRuns[] = {
    {U'a', U'z', 0x20},  {0xE0, 0xF6, 0x20}, {0xF8, 0xFE, 0x20},
    {0x3B1, 0x3C1, 32},  {0x3C3, 0x3C9, 32},  // Greek, without the final sigma
    {0x430, 0x44F, 32},  {0x450, 0x45F, 80},  // Cyrillic
    {0xFF41, 0xFF5A, 32}                      // full-width Latin
};
// Latin Extended-A and the rest of Cyrillic alternate capital and small letter; these
// stretches have the capital on the even code point, kOddRuns on the odd one.
struct PairRun {
  char32_t first;
  char32_t last;
};
constexpr PairRun kEvenRuns[] = {{0x100, 0x12F}, {0x132, 0x137}, {0x14A, 0x177},
                                 {0x460, 0x481}, {0x48A, 0x4BF}, {0x4D0, 0x52F}};
constexpr PairRun kOddRuns[] = {{0x139, 0x148}, {0x179, 0x17E}, {0x4C1, 0x4CE}};

char asciiCapital(char letter) {
  return letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
}

}  // namespace

wchar_t foldCase(wchar_t letter) {
  const auto code = static_cast<char32_t>(letter);
  for (const LetterRun& run : kRuns) {
    if (code >= run.first && code <= run.last) {
      return static_cast<wchar_t>(code - run.distance);
    }
  }
  for (const PairRun& run : kEvenRuns) {
    if (code >= run.first && code <= run.last) {
      return static_cast<wchar_t>(code & ~char32_t{1});
    }
  }
  for (const PairRun& run : kOddRuns) {
    if (code >= run.first && code <= run.last) {
      return static_cast<wchar_t>((code & 1U) != 0 ? code : code - 1);
    }
  }
  return letter;
}

std::wstring foldCase(std::wstring_view text) {
  std::wstring folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(),
                 [](wchar_t letter) { return foldCase(letter); });
  return folded;
}

bool sameName(std::wstring_view left, std::wstring_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](wchar_t a, wchar_t b) { return a == b || foldCase(a) == foldCase(b); });
}

bool sameName(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return asciiCapital(a) == asciiCapital(b); });
}

}  // namespace quoin::os
