#include "embedded/db/geometry/TextDraw.h"

#include <cmath>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/records/SubclassLayout.h"

namespace quoin::db {

TextStyle textStyleOf(const AcDbStub& record) {
  constexpr int kFontFile = 3;
  constexpr int kWidthFactor = 41;
  constexpr int kOblique = 50;
  constexpr int kText = 1000;
  constexpr int kFlags = 1071;
  constexpr std::int64_t kItalic = 0x1000000;
  constexpr std::int64_t kBold = 0x2000000;
  TextStyle style;
  const TagList tags = DatabaseImpl::of(record).tagsOf(record);
  const TagRange range = layout::kTextStyle.in(tags);
  style.font = tags.text(kFontFile, range).value_or(L"");
  style.widthFactor = tags.number(kWidthFactor, range, 1.0);
  style.oblique = toRadians(tags.number(kOblique, range, 0.0));
  // Styles of system fonts name the family in extended data.
  const TagRange data = tags.xData(L"ACAD");
  for (std::size_t i = data.first; i < data.last; ++i) {
    if (tags[i].code == kText && style.font.empty()) {
      style.font = tags.textAt(i);
    } else if (tags[i].code == kFlags) {
      const std::int64_t flags = tags.integerAt(i);
      style.isItalic = (flags & kItalic) != 0;
      style.isBold = (flags & kBold) != 0;
    }
  }
  style.metrics = &text::fontFor(style.font);
  return style;
}

TextStyle textStyleOf(DatabaseImpl* database, std::wstring_view name) {
  const AcDbStub* const record = database ? database->record(TableKind::TextStyle, name) : nullptr;
  if (record) {
    return textStyleOf(*record);
  }
  TextStyle style;
  style.metrics = &text::usualFont();
  return style;
}

wchar_t codePointAt(std::wstring_view text, std::size_t at) {
  constexpr std::wstring_view kBegin = L"\\U+";
  constexpr std::size_t kDigits = 4;
  constexpr std::size_t kLength = 3 + kDigits;
  if (text.size() < at + kLength || text.substr(at, kBegin.size()) != kBegin) {
    return 0;
  }
  unsigned int value = 0;
  for (const wchar_t digit : text.substr(at + kBegin.size(), kDigits)) {
    const bool isLetter = (digit >= L'a' && digit <= L'f') || (digit >= L'A' && digit <= L'F');
    if (!isLetter && !(digit >= L'0' && digit <= L'9')) {
      return 0;
    }
    value = value * 16 +
            static_cast<unsigned int>(isLetter ? (digit | 0x20) - L'a' + 10 : digit - L'0');
  }
  return static_cast<wchar_t>(value);
}

std::vector<TextRun> runsOf(std::wstring_view line, const text::Font& font) {
  std::vector<TextRun> runs(1);
  const auto toggle = [&](bool TextRun::*flag) {
    if (!runs.back().text.empty()) {
      TextRun next = runs.back();
      next.text.clear();
      next.advance = 0.0;
      runs.push_back(std::move(next));
    }
    runs.back().*flag = !(runs.back().*flag);
  };
  const auto put = [&](wchar_t letter) {
    constexpr wchar_t kFirstPrintable = 32;
    if (letter < kFirstPrintable) {
      return;  // line ends and tabs show nothing in a line
    }
    runs.back().text += letter;
    runs.back().advance += font.advance(letter);
  };
  for (std::size_t i = 0; i < line.size(); ++i) {
    constexpr std::size_t kCodePointLength = 7;
    if (line[i] == L'\\') {
      if (const wchar_t letter = codePointAt(line, i)) {
        put(letter);
        i += kCodePointLength - 1;
        continue;
      }
    }
    if (!line.substr(i).starts_with(L"%%") || i + 2 >= line.size()) {
      put(line[i]);
      continue;
    }
    const wchar_t code = line[i + 2];
    i += 2;
    switch (code) {
      case L'u':
      case L'U':
        toggle(&TextRun::isUnderlined);
        break;
      case L'o':
      case L'O':
        toggle(&TextRun::isOverlined);
        break;
      case L'k':
      case L'K':
        toggle(&TextRun::isStruckThrough);
        break;
      case L'd':
      case L'D':
        put(L'\u00B0');
        break;
      case L'p':
      case L'P':
        put(L'\u00B1');
        break;
      case L'c':
      case L'C':
        put(L'\u00D8');
        break;
      default: {
        // Three digits name a character.
        unsigned int value = 0;
        std::size_t digits = 0;
        while (digits < 3 && i + digits < line.size() && line[i + digits] >= L'0' &&
               line[i + digits] <= L'9') {
          value = value * 10 + static_cast<unsigned int>(line[i + digits] - L'0');
          ++digits;
        }
        constexpr unsigned int kFirstPrintable = 32;
        if (digits == 3 && value >= kFirstPrintable) {
          put(static_cast<wchar_t>(value));
          i += 2;
        } else {
          put(code);
        }
        break;
      }
    }
  }
  if (runs.back().text.empty()) {
    runs.pop_back();
  }
  return runs;
}

double advanceOf(const std::vector<TextRun>& runs) {
  double advance = 0.0;
  for (const TextRun& run : runs) {
    advance += run.advance;
  }
  return advance;
}

void drawLine(const std::vector<TextRun>& runs, const TextStyle& style, const TextLine& line,
              DrawWalk& walk) {
  const double advance = advanceOf(runs);
  const double stretch = line.along.length();
  if (!(advance > 0.0) || !(stretch > 0.0) || !std::isfinite(stretch)) {
    return;
  }
  hostx::DrawText shown;
  shown.font = style.font;
  shown.isBold = style.isBold;
  shown.isItalic = style.isItalic;
  shown.along = line.along / stretch;
  shown.up = line.up;
  const bool isOne = runs.size() == 1;
  AcGePoint3d position = line.origin;
  if (isOne) {
    shown.alongShare = line.alongShare;
    shown.upShare = line.upShare;
  } else {
    position = position - line.along * (line.width * line.alongShare) - line.up * line.upShare;
  }
  for (const TextRun& run : runs) {
    const double width = line.width * (run.advance / advance);
    shown.text = run.text;
    shown.isUnderlined = run.isUnderlined;
    shown.isOverlined = run.isOverlined;
    shown.isStruckThrough = run.isStruckThrough;
    shown.position = position;
    shown.width = width * stretch;
    walk.text(shown);
    position = position + line.along * width;
  }
}

}  // namespace quoin::db
