#include "embedded/db/geometry/TextMeasure.h"

#include <algorithm>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/records/SubclassLayout.h"

namespace quoin::db {
namespace {

/// Codes that are followed by a value and a semicolon.
constexpr std::wstring_view kWithValue = L"ACcFfHTQWp";
/// Codes that stand alone.
constexpr std::wstring_view kSwitches = L"LlOoKk";

/// Where the value that begins at `at` ends: behind its semicolon; at the end without one.
std::size_t behindValue(std::wstring_view text, std::size_t at) {
  const std::size_t semicolon = text.find(L';', at);
  return semicolon == std::wstring_view::npos ? text.size() : semicolon + 1;
}

/// The text of a stacked fraction between "\S" and ";".
void appendStack(std::wstring& plain, std::wstring_view stack) {
  for (std::size_t i = 0; i < stack.size(); ++i) {
    if (stack[i] == L'\\' && i + 1 < stack.size()) {
      plain += stack[++i];
    } else if (stack[i] == L'^' || stack[i] == L'#') {
      plain += L'/';
    } else if (stack[i] != L';') {
      plain += stack[i];
    }
  }
}

double wordAdvance(std::wstring_view word, const text::Font& font) {
  double advance = 0.0;
  for (const wchar_t letter : word) {
    advance += font.advance(letter);
  }
  return advance;
}

struct Lines {
  std::size_t count = 0;
  double longest = 0.0;
};

/// Breaks one paragraph at blanks (and between ideographs) so that no line is longer than
/// `limit`, as far as its words allow.
void wrap(std::wstring_view paragraph, double limit, const text::Font& font, Lines& lines) {
  double line = 0.0;
  std::size_t at = 0;
  ++lines.count;
  while (at < paragraph.size()) {
    std::size_t end = at + 1;
    if (!text::isIdeograph(paragraph[at])) {
      while (end < paragraph.size() && !text::isIdeograph(paragraph[end]) &&
             paragraph[end - 1] != L' ') {
        ++end;
      }
    }
    const double word = wordAdvance(paragraph.substr(at, end - at), font);
    if (limit > 0.0 && line > 0.0 && line + word > limit) {
      ++lines.count;
      line = 0.0;
    }
    line += word;
    lines.longest = std::max(lines.longest, line);
    at = end;
  }
}

}  // namespace

std::wstring plainMText(std::wstring_view contents) {
  std::wstring plain;
  for (std::size_t i = 0; i < contents.size(); ++i) {
    const wchar_t c = contents[i];
    if (c == L'{' || c == L'}') {
      continue;
    }
    if (c != L'\\' || i + 1 == contents.size()) {
      plain += c;
      continue;
    }
    const wchar_t code = contents[++i];
    if (code == L'P' || code == L'X' || code == L'N') {
      plain += L'\n';
    } else if (code == L'~') {
      plain += L'\u00A0';
    } else if (code == L'S') {
      const std::size_t end = behindValue(contents, i + 1);
      appendStack(plain, contents.substr(i + 1, end - i - 1));
      i = end - 1;
    } else if (kWithValue.find(code) != std::wstring_view::npos) {
      i = behindValue(contents, i + 1) - 1;
    } else if (kSwitches.find(code) == std::wstring_view::npos) {
      plain += code;  // \\, \{, \} and what is no code at all
    }
  }
  return plain;
}

double lineAdvance(std::wstring_view line, const text::Font& font) {
  std::wstring shown;
  for (std::size_t i = 0; i < line.size(); ++i) {
    const bool isCode = line.substr(i).starts_with(L"%%") && i + 2 < line.size();
    if (!isCode) {
      shown += line[i];
      continue;
    }
    const wchar_t code = line[i + 2];
    const bool isSwitch = std::wstring_view(L"uUoOkK").find(code) != std::wstring_view::npos;
    if (!isSwitch) {
      shown += code;
    }
    i += 2;
    if (code >= L'0' && code <= L'9') {  // %%nnn is one character
      i = std::min(i + 2, line.size() - 1);
    }
  }
  return wordAdvance(shown, font);
}

TextSize mtextSizeOf(const TagList& tags, const text::Font& font) {
  constexpr int kHeight = 40;
  constexpr int kWidth = 41;
  constexpr int kSpacing = 44;
  constexpr int kShownWidth = 42;
  constexpr int kShownHeight = 43;
  const TagRange range = layout::kMText.in(tags);
  const TextSize size{tags.number(kShownWidth, range, 0.0), tags.number(kShownHeight, range, 0.0)};
  if (size.width > 0.0 && size.height > 0.0) {
    return size;
  }
  return textSizeOf(mtextContentsOf(tags), tags.number(kHeight, range, 0.0),
                    tags.number(kWidth, range, 0.0), tags.number(kSpacing, range, 1.0), font);
}

TextSize textSizeOf(std::wstring_view contents, double height, double limit, double spacing,
                    const text::Font& font) {
  const double lineLimit = height > 0.0 ? limit / height : 0.0;
  const std::wstring plain = plainMText(contents);
  Lines lines;
  for (std::size_t at = 0; at <= plain.size();) {
    const std::size_t end = std::min(plain.find(L'\n', at), plain.size());
    wrap(std::wstring_view(plain).substr(at, end - at), lineLimit, font, lines);
    at = end + 1;
  }
  const double distance = mtext::kLineDistance * spacing;
  return {lines.longest * height, height * (1.0 + distance * static_cast<double>(lines.count - 1))};
}

std::wstring mtextContentsOf(const TagList& tags) {
  const TagRange range = layout::kMText.in(tags);
  std::wstring contents;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (tags.isOwn(i) && (tags[i].code == mtext::kChunk || tags[i].code == mtext::kLastChunk)) {
      contents += tags.textAt(i);
    }
  }
  return contents;
}

AcGeVector3d mtextDirectionOf(const TagList& tags) {
  const TagRange range = layout::kMText.in(tags);
  // Of the angle and the vector, whichever comes last in the record counts.
  std::size_t angle = TagList::kNone;
  std::size_t vector = TagList::kNone;
  for (std::size_t i = range.first; i < range.last; ++i) {
    if (tags.isOwn(i) && tags[i].code == mtext::kRotation) {
      angle = i;
    } else if (tags.isOwn(i) && tags[i].code == mtext::kDirection) {
      vector = i;
    }
  }
  const AcGeMatrix3d toWorld = planeToWorld(normalOf(tags, range));
  if (vector != TagList::kNone && (angle == TagList::kNone || vector > angle)) {
    const AcGeVector3d direction = tags.point(mtext::kDirection, range).asVector();
    const double length = direction.length();
    return length > 0.0 && std::isfinite(length) ? direction / length
                                                 : toWorld * AcGeVector3d::kXAxis;
  }
  const double turn = angle == TagList::kNone ? 0.0 : toRadians(tags.doubleAt(angle));
  return toWorld * AcGeVector3d(std::cos(turn), std::sin(turn), 0.0);
}

const text::Font& fontOf(DatabaseImpl* database, const TagList& text, TagRange range) {
  constexpr int kStyle = 7;
  constexpr int kFontFile = 3;
  const std::wstring name = text.text(kStyle, range).value_or(L"Standard");
  const AcDbStub* const style = database ? database->record(TableKind::TextStyle, name) : nullptr;
  if (!style) {
    return text::usualFont();
  }
  const TagList tags = database->tagsOf(*style);
  std::wstring file = tags.text(kFontFile, layout::kTextStyle.in(tags)).value_or(L"");
  if (file.empty()) {
    // Styles of system fonts name the family in extended data.
    const TagRange data = tags.xData(L"ACAD");
    const std::size_t family = data.isEmpty() ? TagList::kNone : data.first + 1;
    constexpr int kText = 1000;
    if (family != TagList::kNone && family < data.last && tags[family].code == kText) {
      file = tags.textAt(family);
    }
  }
  return text::fontFor(file);
}

}  // namespace quoin::db
