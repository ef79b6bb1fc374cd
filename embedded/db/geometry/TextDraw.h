// Lines of text as a sink has them: the font of their style, and %% codes as what they mean.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/text/FontMetrics.h"
#include "gepnt3d.h"
#include "gevec3d.h"

namespace quoin::db {

class DrawWalk;

/// What a text style says.
struct TextStyle {
  std::wstring font;  // its file or family; empty for the usual one
  bool isBold = false;
  bool isItalic = false;
  double widthFactor = 1.0;
  double oblique = 0.0;  // radians
  const text::Font* metrics = nullptr;
};
/// `database` is null for a record in no drawing.
TextStyle textStyleOf(DatabaseImpl* database, std::wstring_view name);
TextStyle textStyleOf(const AcDbStub& style);

/// A stretch of a line that looks alike.
struct TextRun {
  std::wstring text;
  bool isUnderlined = false;
  bool isOverlined = false;
  bool isStruckThrough = false;
  double advance = 0.0;  // in units of the height of capitals
};
/// The runs of a line with %% codes. Code points (\U+XXXX) are read too.
std::vector<TextRun> runsOf(std::wstring_view line, const text::Font& font);
double advanceOf(const std::vector<TextRun>& runs);

/// Where a line stands.
struct TextLine {
  AcGePoint3d origin;  // world
  AcGeVector3d along;  // of one unit of the width
  AcGeVector3d up;     // of capitals, world
  double width = 0.0;
  double alongShare = 0.0;
  double upShare = 0.0;
};
void drawLine(const std::vector<TextRun>& runs, const TextStyle& style, const TextLine& line,
              DrawWalk& walk);

/// The character of a code point "\U+XXXX" at a place; 0 for none.
wchar_t codePointAt(std::wstring_view text, std::size_t at);

}  // namespace quoin::db
