#include "commands/WallWords.h"

#include <algorithm>
#include <array>
#include <vector>

#include "embedded/os/CaseFold.h"

namespace quoin::commands {

namespace {

using Words = std::wstring_view;

/// So long or so peculiar that they count anywhere in a name.
constexpr std::array kAnywhere{
    Words(L"wall"),                                                       // English
    Words(L"mauer"),                                                      // German
    Words(L"muur"),                                                       // Dutch
    Words(L"vägg"),                                                       // Swedish
    Words(L"vegg"),                                                       // Norwegian, Icelandic
    Words(L"seinä"),                                                      // Finnish
    Words(L"ścian"),   Words(L"scian"),                                   // Polish
    Words(L"duvar"),                                                      // Turkish
    Words(L"dinding"),                                                    // Indonesian, Malay
    Words(L"墙"),      Words(L"牆"),    Words(L"墻"),                     // Chinese
    Words(L"壁"),                                                         // Japanese
    Words(L"벽"),                                                         // Korean
    Words(L"ผนัง"),     Words(L"กำแพง"),                                   // Thai
    Words(L"جدار"),    Words(L"جدران"), Words(L"حائط"), Words(L"دیوار"),  // Arabic, Persian
    Words(L"दीवार"),                                                      // Hindi
};

/// At the beginning of a word: what follows is an ending.
constexpr std::array kAtBegin{
    Words(L"pared"),                                       // Spanish, Portuguese
    Words(L"paret"),                                       // Italian, Catalan
    Words(L"perete"), Words(L"pereti"), Words(L"pereți"),  // Romanian
    Words(L"murat"),                                       // Italian: muratura, murature
    Words(L"stěn"),                                        // Czech
    Words(L"zidov"),                                       // Croatian, Serbian, Slovenian
    Words(L"стена"),  Words(L"стены"),  Words(L"стене"),   // Russian, Bulgarian
    Words(L"стени"),  Words(L"стено"),  Words(L"стенк"),
    Words(L"стін"),                    // Ukrainian
    Words(L"зидов"),                   // Serbian
    Words(L"τοίχ"),   Words(L"τοιχ"),  // Greek
};

/// At the end of a word: compounds end in them.
constexpr std::array kAtEnd{
    Words(L"wand"),   Words(L"wände"), Words(L"waende"),  // German
    Words(L"wanden"),                                     // Dutch
    Words(L"væg"),    Words(L"vægge"),                    // Danish
};

/// Only as a whole word.
constexpr std::array kAlone{
    Words(L"mur"),    Words(L"murs"),   Words(L"muret"),   // French, Catalan, Danish
    Words(L"muro"),   Words(L"muros"),  Words(L"muri"),    // Spanish, Portuguese, Italian
    Words(L"mura"),   Words(L"muren"),                     // Italian, Dutch
    Words(L"vagg"),   Words(L"vaggar"), Words(L"seina"),   // without their dots
    Words(L"seinat"), Words(L"sein"),   Words(L"seinad"),  // Finnish, Estonian
    Words(L"fal"),    Words(L"falak"),                     // Hungarian
    Words(L"zid"),    Words(L"зид"),                       // Croatian, Serbian, Slovenian
    Words(L"stena"),  Words(L"steny"),  Words(L"stene"),   // Slovak, Slovenian, Czech
    Words(L"siena"),  Words(L"sienos"), Words(L"sienas"),  // Lithuanian, Latvian
    Words(L"стен"),                                        // Russian
    Words(L"tường"),  Words(L"tuong"),                     // Vietnamese
    Words(L"קיר"),    Words(L"קירות"),                     // Hebrew
};

/// Letters are what has two cases, and what lies beyond the scripts that have them.
bool isLetter(wchar_t sign) {
  constexpr wchar_t kFirstBeyondAscii = 0xC0;
  return (sign >= L'a' && sign <= L'z') || (sign >= L'A' && sign <= L'Z') ||
         sign >= kFirstBeyondAscii;
}

bool isSmall(wchar_t sign) {
  return os::foldCase(sign) != sign;
}

/// Of the scripts that run words together with humps: Latin, Greek, Cyrillic.
bool isCapital(wchar_t sign) {
  constexpr wchar_t kToSmall = 0x20;
  return isLetter(sign) && isSmall(static_cast<wchar_t>(sign + kToSmall)) &&
         os::foldCase(static_cast<wchar_t>(sign + kToSmall)) == sign;
}

/// The words of a name, folded.
std::vector<std::wstring> wordsOf(std::wstring_view name) {
  std::vector<std::wstring> words(1);
  for (std::size_t i = 0; i < name.size(); ++i) {
    const bool isHump = i > 0 && isCapital(name[i]) && isSmall(name[i - 1]);
    if ((isHump || !isLetter(name[i])) && !words.back().empty()) {
      words.emplace_back();
    }
    if (isLetter(name[i])) {
      words.back() += os::foldCase(name[i]);
    }
  }
  return words;
}

}  // namespace

bool looksLikeWalls(std::wstring_view name) {
  const std::wstring folded = os::foldCase(name);
  const auto isIn = [&](Words word) { return folded.find(os::foldCase(word)) != folded.npos; };
  if (std::any_of(kAnywhere.begin(), kAnywhere.end(), isIn)) {
    return true;
  }
  const std::vector<std::wstring> words = wordsOf(name);
  return std::any_of(words.begin(), words.end(), [](const std::wstring& word) {
    const auto begins = [&](Words begin) { return word.starts_with(os::foldCase(begin)); };
    const auto ends = [&](Words end) { return word.ends_with(os::foldCase(end)); };
    const auto is = [&](Words whole) { return os::sameName(word, whole); };
    return std::any_of(kAtBegin.begin(), kAtBegin.end(), begins) ||
           std::any_of(kAtEnd.begin(), kAtEnd.end(), ends) ||
           std::any_of(kAlone.begin(), kAlone.end(), is);
  });
}

}  // namespace quoin::commands
