// How wide letters are: the advances of the font that stands for what a text style names.
//
// Fonts are looked for in the standard folders of the system under fixed names (docs/formats.md
// has the table), not by a user's settings, so that a drawing measures alike for everybody who
// has the fonts. Where none is installed, letters have the average width of common ones.
#pragma once

#include <string_view>

#include "hostapi.h"

namespace quoin::text {

class Font {
 public:
  virtual ~Font() = default;
  /// The advance of a letter over the height of the font's capitals. A letter that the font
  /// does not have is as wide as on average.
  virtual double advance(wchar_t letter) const = 0;
};

/// The font for a style's font file ("arial.ttf", "txt.shx", "Arial"; in any case, with or
/// without ending). Lives as long as the process.
HOST_API const Font& fontFor(std::wstring_view fontFile);
/// The family of that font, for who draws with it.
struct Family {
  std::string_view name;  // "Liberation Sans"; lives as long as the process
  bool isBold = false;
};
HOST_API Family familyFor(std::wstring_view fontFile);
/// The font of texts that name none.
HOST_API const Font& usualFont();

/// The advance of a letter in common fonts, without any font installed.
HOST_API double averageAdvance(wchar_t letter);
HOST_API bool isIdeograph(wchar_t letter);

}  // namespace quoin::text
