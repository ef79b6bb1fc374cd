#include "embedded/db/geometry/MTextLayout.h"

#include <algorithm>
#include <cmath>
#include <cwchar>
#include <memory>
#include <utility>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/SignStrokes.h"
#include "embedded/db/geometry/TextMeasure.h"

namespace quoin::db {
namespace {

// Stacked fractions, in heights of the text around them.
constexpr double kStackSize = 0.7;
constexpr double kBarHeight = 0.4;
constexpr double kUpperBase = 0.55;
constexpr double kLowerBase = -0.45;

struct Format {
  double height = 0.0;
  double widthFactor = 1.0;
  double oblique = 0.0;
  double tracking = 1.0;
  TextStyle style;
  bool isUnderlined = false;
  bool isOverlined = false;
  bool isStruckThrough = false;
  int lift = 0;  // 0 on the base line, 1 in the middle, 2 at the top
  std::optional<AcCmColor> color;
};

struct TabStop {
  double at = 0.0;     // from the left side
  double share = 0.0;  // of what follows that stands before the stop: 0, 0.5 or 1
};

struct Paragraph {
  double first = 0.0;  // indents
  double left = 0.0;
  double right = 0.0;
  std::optional<double> alignment;
  std::shared_ptr<const std::vector<TabStop>> stops;  // in order; null for none
};

/// What is not broken.
struct Item {
  enum class Kind { Text, Stack, Tab } kind = Kind::Text;
  std::wstring text;
  std::wstring lower;  // of a stack, below `text`
  wchar_t bar = 0;     // '/', '#' or '^'
  std::size_t format = 0;
  double width = 0.0;
  double blanks = 0.0;    // of the width, at the end
  bool mayBreak = false;  // in front of it
};

struct Line {
  std::vector<Item> items;
  double width = 0.0;  // without blanks at its end
  double height = 0.0;
  double above = 0.0;  // what rises above the capitals
  double below = 0.0;
  Paragraph paragraph;
  bool isFirst = false;  // of its paragraph
  bool endsColumn = false;
};

double numberOf(std::wstring_view text) {
  double value = 0.0;
  double place = 0.0;
  bool isNegative = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (i == 0 && (text[i] == L'-' || text[i] == L'+')) {
      isNegative = text[i] == L'-';
    } else if (text[i] == L'.' && place == 0.0) {
      place = 1.0;
    } else if (text[i] >= L'0' && text[i] <= L'9') {
      value = value * 10.0 + static_cast<double>(text[i] - L'0');
      place *= 10.0;
    } else {
      break;
    }
  }
  value = place > 0.0 ? value / place : value;
  return isNegative ? -value : value;
}

class Layout {
 public:
  Layout(std::wstring_view contents, const MTextSettings& settings)
      : m_text(contents), m_settings(settings) {
    Format format;
    format.height = settings.height;
    format.style = settings.style;
    format.widthFactor = settings.style.widthFactor;
    format.oblique = settings.style.oblique;
    m_formats.push_back(std::move(format));
    m_lines.emplace_back().isFirst = true;
  }

  MTextLayout run() {
    if (!(m_settings.height > 0.0) || !std::isfinite(m_settings.height)) {
      return {};
    }
    read();
    endLine();
    place();
    return std::move(m_layout);
  }

 private:
  // --- reading ------------------------------------------------------------------------------
  const Format& format() const { return m_formats.back(); }
  Format& changedFormat() {
    flush();
    if (m_isFormatUsed) {
      m_formats.push_back(m_formats.back());
      m_isFormatUsed = false;
    }
    return m_formats.back();
  }

  void useFormat(Item& item) {
    item.format = m_formats.size() - 1;
    m_isFormatUsed = true;
  }

  double advanceOf(std::wstring_view text, const Format& format) const {
    double advance = 0.0;
    for (const wchar_t letter : text) {
      const double sign = signAdvance(format.style.font, letter);
      advance += sign > 0.0 ? sign : format.style.metrics->advance(letter);
    }
    return advance * format.height * format.widthFactor * format.tracking;
  }

  void put(wchar_t letter) {
    const bool isBlank = letter == L' ';
    const bool isIdeograph = text::isIdeograph(letter);
    const bool mayBreak = (m_endsInBlank && !isBlank) || isIdeograph || m_endsInIdeograph;
    if (mayBreak) {
      flush();
      m_mayBreak = true;
    }
    m_word += letter;
    m_endsInBlank = isBlank;
    m_endsInIdeograph = isIdeograph;
  }

  /// Makes what was read an item.
  void flush() {
    if (m_word.empty()) {
      return;
    }
    Item item;
    useFormat(item);
    item.width = advanceOf(m_word, format());
    const std::size_t end = m_word.find_last_not_of(L' ') + 1;
    item.blanks = advanceOf(std::wstring_view(m_word).substr(end), format());
    item.text = std::move(m_word);
    item.mayBreak = m_mayBreak;
    m_word.clear();
    m_mayBreak = false;
    m_items.push_back(std::move(item));
  }

  std::wstring_view valueAt(std::size_t& i) const {
    const std::size_t semicolon = m_text.find(L';', i + 1);
    const std::size_t end = semicolon == std::wstring_view::npos ? m_text.size() : semicolon;
    const std::wstring_view value = m_text.substr(i + 1, end - i - 1);
    i = end;
    return value;
  }

  void read() {
    for (std::size_t i = 0; i < m_text.size(); ++i) {
      const wchar_t c = m_text[i];
      constexpr std::size_t kDeepest = 1000;
      if (c == L'{') {
        if (m_braces.size() < kDeepest) {
          m_braces.push_back(format());
        } else {
          ++m_deeper;
        }
      } else if (c == L'}') {
        if (m_deeper > 0) {
          --m_deeper;
        } else if (!m_braces.empty()) {
          changedFormat() = std::move(m_braces.back());
          m_braces.pop_back();
        }
      } else if (c == L'^' && i + 1 < m_text.size()) {
        readCaret(m_text[++i]);
      } else if (c == L'%' && m_text.substr(i).starts_with(L"%%") && i + 2 < m_text.size()) {
        readPercents(i);
      } else if (c == L'\n') {
        endParagraph();
      } else if (c == L'\t') {
        putTab();
      } else if (c == L'\\' && i + 1 < m_text.size()) {
        readCode(i);
      } else if (c != L'\r') {
        put(c);
      }
    }
  }

  void readCaret(wchar_t code) {
    if (code == L'I') {
      putTab();
    } else if (code == L'J') {
      endParagraph();
    } else if (code == L' ') {
      put(L'^');
    } else if (code != L'M') {
      put(L'^');
      put(code);
    }
  }

  void readPercents(std::size_t& i) {
    const std::vector<TextRun> runs = runsOf(m_text.substr(i, 5), *format().style.metrics);
    const wchar_t code = m_text[i + 2];
    const bool isNumber = code >= L'0' && code <= L'9';
    const std::wstring_view known = L"dDpPcC%";
    if (!isNumber && known.find(code) == std::wstring_view::npos) {
      put(L'%');
      return;
    }
    if (!runs.empty() && !runs.front().text.empty()) {
      put(runs.front().text.front());
    }
    const bool hasThree = isNumber && i + 4 < m_text.size() && m_text[i + 3] >= L'0' &&
                          m_text[i + 3] <= L'9' && m_text[i + 4] >= L'0' && m_text[i + 4] <= L'9';
    i += hasThree ? 4 : 2;
  }

  void readCode(std::size_t& i) {
    constexpr std::size_t kCodePointLength = 7;
    if (const wchar_t letter = codePointAt(m_text, i)) {
      put(letter);
      i += kCodePointLength - 1;
      return;
    }
    const wchar_t code = m_text[++i];
    switch (code) {
      case L'P':
      case L'X':
        endParagraph();
        break;
      case L'N':
        endParagraph();
        m_lines[m_lines.size() - 2].endsColumn = true;
        break;
      case L'~':
        put(L'\u00A0');
        break;
      case L'L':
        changedFormat().isUnderlined = true;
        break;
      case L'l':
        changedFormat().isUnderlined = false;
        break;
      case L'O':
        changedFormat().isOverlined = true;
        break;
      case L'o':
        changedFormat().isOverlined = false;
        break;
      case L'K':
        changedFormat().isStruckThrough = true;
        break;
      case L'k':
        changedFormat().isStruckThrough = false;
        break;
      case L'H':
      case L'W':
      case L'Q':
      case L'T':
      case L'A':
      case L'C':
      case L'c':
        readNumber(code, valueAt(i));
        break;
      case L'f':
      case L'F':
        readFont(valueAt(i));
        break;
      case L'p':
        readParagraph(valueAt(i));
        break;
      case L'S':
        readStack(i);
        break;
      default:
        put(code);  // \\, \{, \} and what is no code at all
        break;
    }
  }

  void readNumber(wchar_t code, std::wstring_view value) {
    const bool isFactor = !value.empty() && (value.back() == L'x' || value.back() == L'X');
    const double number = numberOf(value);
    Format& format = changedFormat();
    const auto isUsable = [](double size) { return size > 0.0 && std::isfinite(size); };
    if (code == L'H') {
      const double height = isFactor ? format.height * number : number;
      format.height = isUsable(height) ? height : format.height;
    } else if (code == L'W') {
      const double factor = isFactor ? format.widthFactor * number : number;
      format.widthFactor = isUsable(factor) ? factor : format.widthFactor;
    } else if (code == L'Q') {
      constexpr double kMostDegrees = 85.0;
      format.oblique = toRadians(std::clamp(number, -kMostDegrees, kMostDegrees));
    } else if (code == L'T') {
      format.tracking = isUsable(number) ? number : format.tracking;
    } else if (code == L'A') {
      format.lift = static_cast<int>(std::clamp(number, 0.0, 2.0));
    } else {
      AcCmColor color;
      if (code == L'C') {
        color.setColorIndex(static_cast<Adesk::UInt16>(
            std::clamp(number, 0.0, static_cast<double>(AcCmEntityColor::kACIbyLayer))));
      } else {
        // Blue stands in the highest byte.
        const auto bgr = static_cast<Adesk::UInt32>(std::clamp(number, 0.0, 16777215.0));
        color.setRGB(static_cast<Adesk::UInt8>(bgr), static_cast<Adesk::UInt8>(bgr >> 8),
                     static_cast<Adesk::UInt8>(bgr >> 16));
      }
      format.color = color;
    }
  }

  /// "Arial|b1|i0|c0|p34", or a file.
  void readFont(std::wstring_view value) {
    Format& format = changedFormat();
    const std::size_t bar = std::min(value.find(L'|'), value.size());
    if (bar == 0) {
      return;
    }
    format.style.font = std::wstring(value.substr(0, bar));
    format.style.metrics = &text::fontFor(format.style.font);
    format.style.isBold = value.find(L"|b1") != std::wstring_view::npos;
    format.style.isItalic = value.find(L"|i1") != std::wstring_view::npos;
  }

  /// "i-2,l2,qc": indents in heights of the text, and how lines are aligned. "*" takes a value
  /// back.
  void readParagraph(std::wstring_view value) {
    for (std::size_t at = 0; at < value.size();) {
      const std::size_t end = std::min(value.find(L',', at), value.size());
      std::wstring_view part = value.substr(at, end - at);
      at = end + 1;
      if (part.starts_with(L"x")) {
        part.remove_prefix(1);
      }
      if (part.empty()) {
        continue;
      }
      const double length = numberOf(part.substr(1)) * m_settings.height;
      switch (part.front()) {
        case L'i':
          m_paragraph.first = length;
          break;
        case L'l':
          m_paragraph.left = length;
          break;
        case L'r':
          m_paragraph.right = length;
          break;
        case L'q': {
          const wchar_t side = part.size() > 1 ? part[1] : L'*';
          m_paragraph.alignment = side == L'c'   ? std::optional(0.5)
                                  : side == L'r' ? std::optional(1.0)
                                  : side == L'*' ? std::nullopt
                                                 : std::optional(0.0);
          break;
        }
        case L't':  // takes the rest
          readTabStops(value.substr(static_cast<std::size_t>(part.data() - value.data()) + 1));
          return;
        default:
          break;
      }
    }
  }

  /// "4,c10,r15": to the left of, around and to the right of a place; anything else takes them
  /// back.
  void readTabStops(std::wstring_view value) {
    constexpr std::size_t kMostStops = 100;
    std::vector<TabStop> stops;
    for (std::size_t at = 0; at < value.size() && stops.size() < kMostStops;) {
      const std::size_t end = std::min(value.find(L',', at), value.size());
      std::wstring_view part = value.substr(at, end - at);
      at = end + 1;
      TabStop stop;
      if (part.starts_with(L"c") || part.starts_with(L"r")) {
        stop.share = part.front() == L'c' ? 0.5 : 1.0;
        part.remove_prefix(1);
      }
      stop.at = numberOf(part) * m_settings.height;
      if (stop.at > 0.0 && std::isfinite(stop.at)) {
        stops.push_back(stop);
      }
    }
    std::stable_sort(stops.begin(), stops.end(),
                     [](const TabStop& a, const TabStop& b) { return a.at < b.at; });
    m_paragraph.stops =
        stops.empty() ? nullptr : std::make_shared<const std::vector<TabStop>>(std::move(stops));
  }

  void readStack(std::size_t& i) {
    Item item;
    item.kind = Item::Kind::Stack;
    std::wstring* part = &item.text;
    for (++i; i < m_text.size() && m_text[i] != L';'; ++i) {
      const wchar_t c = m_text[i];
      const bool isBar = (c == L'/' || c == L'#' || c == L'^') && !item.bar;
      if (c == L'\\' && i + 1 < m_text.size()) {
        *part += m_text[++i];
      } else if (isBar) {
        item.bar = c;
        part = &item.lower;
      } else if (!(c == L' ' && part->empty())) {
        *part += c;
      }
    }
    flush();
    if (!item.bar) {
      for (const wchar_t letter : item.text) {
        put(letter);
      }
      return;
    }
    useFormat(item);
    const double upper = kStackSize * advanceOf(item.text, format());
    const double lower = kStackSize * advanceOf(item.lower, format());
    item.width = item.bar == L'#' ? upper + lower + 0.5 * format().height : std::fmax(upper, lower);
    item.mayBreak = m_mayBreak || m_endsInBlank;
    m_mayBreak = false;
    m_endsInBlank = false;
    m_endsInIdeograph = false;
    m_items.push_back(std::move(item));
  }

  void putTab() {
    flush();
    Item item;
    item.kind = Item::Kind::Tab;
    useFormat(item);
    item.mayBreak = true;
    m_items.push_back(std::move(item));
    m_endsInBlank = true;
  }

  // --- lines --------------------------------------------------------------------------------
  double limit() const {
    const bool hasColumns = m_settings.columns > 1 && m_settings.columnWidth > 0.0;
    return hasColumns ? m_settings.columnWidth : m_settings.limit;
  }

  void endParagraph() {
    endLine();
    m_lines.emplace_back().isFirst = true;
  }

  /// Sets the items of a paragraph into lines.
  void endLine() {
    flush();
    m_lines.back().paragraph = m_paragraph;
    m_lines.back().height = format().height;
    double width = indentOf(m_lines.back());
    for (std::size_t i = 0; i < m_items.size();) {
      // Up to the next place where a line may end.
      std::size_t end = i + 1;
      double word = widthOf(i, width);
      double blanks = m_items[i].blanks;
      while (end < m_items.size() && !m_items[end].mayBreak) {
        word += m_items[end].width;
        blanks = m_items[end].blanks;
        ++end;
      }
      const double room = limit() - m_paragraph.right;
      const bool isFull = limit() > 0.0 && !m_lines.back().items.empty() &&
                          width + word - blanks > room * (1.0 + 1e-9);
      if (isFull) {
        Line& next = m_lines.emplace_back();
        next.paragraph = m_paragraph;
        next.height = format().height;
        width = indentOf(next);
        word = m_items[i].kind == Item::Kind::Tab ? widthOf(i, width) : word;
      }
      Line& line = m_lines.back();
      for (; i < end; ++i) {
        line.items.push_back(std::move(m_items[i]));
      }
      width += word;
      line.width = width - blanks;
    }
    m_items.clear();
    m_endsInBlank = false;
    m_endsInIdeograph = false;
    m_mayBreak = false;
  }

  /// How wide an item is that begins at `before`; a tab reaches to the next stop.
  double widthOf(std::size_t index, double before) {
    constexpr double kTabStop = 4.0;  // heights, behind the last stop of the paragraph
    Item& item = m_items[index];
    if (item.kind != Item::Kind::Tab) {
      return item.width;
    }
    const double usual = kTabStop * m_settings.height;
    item.width = (std::floor(before / usual + 1e-9) + 1.0) * usual - before;
    if (m_paragraph.stops) {
      const auto stop = std::find_if(m_paragraph.stops->begin(), m_paragraph.stops->end(),
                                     [&](const TabStop& one) { return one.at > before; });
      if (stop != m_paragraph.stops->end()) {
        const double text = stop->share > 0.0 ? widthUpToTab(index + 1) : 0.0;
        item.width = std::fmax(stop->at - stop->share * text - before, 0.0);
      }
    }
    return item.width;
  }

  double widthUpToTab(std::size_t index) const {
    double width = 0.0;
    for (; index < m_items.size() && m_items[index].kind != Item::Kind::Tab; ++index) {
      width += m_items[index].width;
    }
    return width;
  }

  double indentOf(const Line& line) const {
    return m_paragraph.left + (line.isFirst ? m_paragraph.first : 0.0);
  }

  /// How high a line's letters are, and what rises above or hangs below them.
  void measure(Line& line) const {
    if (line.items.empty()) {
      return;
    }
    line.height = 0.0;
    for (const Item& item : line.items) {
      const double height = m_formats[item.format].height;
      line.height = std::fmax(line.height, height);
      if (item.kind == Item::Kind::Stack) {
        line.above = std::fmax(line.above, (kUpperBase + kStackSize - 1.0) * height);
        line.below = std::fmax(line.below, -kLowerBase * height);
      }
    }
  }

  void place() {
    const double box = limit();
    double widest = 0.0;
    for (Line& line : m_lines) {
      measure(line);
      widest = std::fmax(widest, line.width + line.paragraph.right);
    }
    const double columnWidth = box > 0.0 ? box : widest;
    const std::size_t columns = std::max<std::size_t>(m_settings.columns, 1);
    const double boxWidth = columnWidth * static_cast<double>(columns) +
                            m_settings.gutter * static_cast<double>(columns - 1);
    const double left = -m_settings.alignment * boxWidth;
    std::size_t column = 0;
    double y = 0.0;
    double lowest = 0.0;
    bool isFirst = true;
    double hanging = 0.0;
    for (const Line& line : m_lines) {
      const double step = mtext::kLineDistance * m_settings.spacing *
                              (m_settings.isExact ? m_settings.height : line.height) +
                          (m_settings.isExact ? 0.0 : line.above + hanging);
      double base = isFirst ? y - line.height : y - step;
      const double height = columnHeight(column);
      const bool isBelow = !isFirst && height > 0.0 && -base > height * (1.0 + 1e-9);
      if (isBelow && column + 1 < columns) {
        ++column;
        base = -line.height;
      }
      const double start = left + static_cast<double>(column) * (columnWidth + m_settings.gutter);
      const double alignment = line.paragraph.alignment.value_or(m_settings.alignment);
      const double indent = line.paragraph.left + (line.isFirst ? line.paragraph.first : 0.0);
      const double room = columnWidth - line.paragraph.right - line.width;
      set(line, start + indent + alignment * room, base);
      y = base;
      hanging = line.below;
      isFirst = false;
      lowest = std::fmin(lowest, base);
      if (line.endsColumn && column + 1 < columns) {
        ++column;
        y = 0.0;
        isFirst = true;
        hanging = 0.0;
      }
    }
    m_layout.left = left;
    m_layout.right = left + (box > 0.0 ? std::fmax(boxWidth, widest) : boxWidth);
    lift(-lowest * m_settings.rise);
    m_layout.top = -lowest * m_settings.rise;
    m_layout.bottom = lowest + m_layout.top;
  }

  double columnHeight(std::size_t column) const {
    const std::vector<double>& heights = m_settings.columnHeights;
    return m_settings.columns <= 1 || heights.empty()
               ? 0.0
               : heights[std::min(column, heights.size() - 1)];
  }

  /// Raises everything so that the place of the text is where its attachment says.
  void lift(double rise) {
    for (MTextPiece& piece : m_layout.pieces) {
      piece.y += rise;
    }
    for (MTextBar& bar : m_layout.bars) {
      bar.start.y += rise;
      bar.end.y += rise;
    }
  }

  MTextPiece pieceOf(const Format& format, std::wstring text, double x, double y, double width,
                     double size) const {
    MTextPiece piece;
    piece.text = std::move(text);
    piece.x = x;
    piece.y = y;
    piece.width = width;
    piece.height = format.height * size;
    piece.oblique = format.oblique;
    piece.style = format.style;
    piece.isUnderlined = format.isUnderlined;
    piece.isOverlined = format.isOverlined;
    piece.isStruckThrough = format.isStruckThrough;
    piece.color = format.color;
    return piece;
  }

  void set(const Line& line, double x, double base) {
    std::size_t last = m_formats.size();  // the format of the piece that still grows
    for (const Item& item : line.items) {
      const Format& format = m_formats[item.format];
      const double y = base + 0.5 * format.lift * (line.height - format.height);
      if (item.kind == Item::Kind::Text && item.format == last) {
        m_layout.pieces.back().text += item.text;
        m_layout.pieces.back().width += item.width;
      } else if (item.kind == Item::Kind::Text) {
        m_layout.pieces.push_back(pieceOf(format, item.text, x, y, item.width, 1.0));
        last = item.format;
      } else {
        last = m_formats.size();
      }
      if (item.kind == Item::Kind::Stack) {
        setStack(item, format, x, y);
      }
      x += item.width;
    }
  }

  void setStack(const Item& item, const Format& format, double x, double y) {
    const double height = format.height;
    const double upper = kStackSize * advanceOf(item.text, format);
    const double lower = kStackSize * advanceOf(item.lower, format);
    const bool isSlanted = item.bar == L'#';
    const double upperAt = isSlanted || item.bar == L'^' ? x : x + 0.5 * (item.width - upper);
    const double lowerAt = isSlanted          ? x + item.width - lower
                           : item.bar == L'^' ? x
                                              : x + 0.5 * (item.width - lower);
    if (!item.text.empty()) {
      m_layout.pieces.push_back(
          pieceOf(format, item.text, upperAt, y + kUpperBase * height, upper, kStackSize));
    }
    if (!item.lower.empty()) {
      m_layout.pieces.push_back(
          pieceOf(format, item.lower, lowerAt, y + kLowerBase * height, lower, kStackSize));
    }
    if (item.bar == L'/') {
      m_layout.bars.push_back({{x, y + kBarHeight * height, 0.0},
                               {x + item.width, y + kBarHeight * height, 0.0},
                               format.color});
    } else if (isSlanted) {
      m_layout.bars.push_back(
          {{x + upper, y + kLowerBase * height, 0.0},
           {x + upper + 0.5 * height, y + (kUpperBase + kStackSize) * height, 0.0},
           format.color});
    }
  }

  std::wstring_view m_text;
  const MTextSettings& m_settings;
  std::vector<Format> m_formats;
  bool m_isFormatUsed = false;
  std::vector<Format> m_braces;
  std::size_t m_deeper = 0;  // braces that are too deep to be kept
  Paragraph m_paragraph;
  std::wstring m_word;
  bool m_mayBreak = false;
  bool m_endsInBlank = false;
  bool m_endsInIdeograph = false;
  std::vector<Item> m_items;  // of the paragraph
  std::vector<Line> m_lines;
  MTextLayout m_layout;
};

}  // namespace

MTextLayout layoutMText(std::wstring_view contents, const MTextSettings& settings) {
  return Layout(contents, settings).run();
}

void drawMText(const MTextLayout& layout, const AcGeMatrix3d& frame, DrawWalk& walk) {
  const AcGeVector3d x = frame * AcGeVector3d::kXAxis;
  const AcGeVector3d y = frame * AcGeVector3d::kYAxis;
  const double stretch = x.length();
  if (!(stretch > 0.0) || !std::isfinite(stretch)) {
    return;
  }
  hostx::DrawText shown;
  shown.along = x / stretch;
  for (const MTextPiece& piece : layout.pieces) {
    shown.text = piece.text;
    shown.position = frame * AcGePoint3d(piece.x, piece.y, 0.0);
    shown.up = (y + x * std::tan(piece.oblique)) * piece.height;
    shown.width = piece.width * stretch;
    shown.font = piece.style.font;
    shown.isBold = piece.style.isBold;
    shown.isItalic = piece.style.isItalic;
    shown.isUnderlined = piece.isUnderlined;
    shown.isOverlined = piece.isOverlined;
    shown.isStruckThrough = piece.isStruckThrough;
    // Blanks are drawn where a line goes along them only.
    const bool isBlank = piece.text.find_first_not_of(L' ') == std::wstring::npos;
    if (isBlank && !piece.isUnderlined && !piece.isOverlined && !piece.isStruckThrough) {
      continue;
    }
    if (piece.color) {
      walk.text(shown, walk.lookOf(*piece.color));
    } else {
      walk.text(shown);
    }
  }
  for (const MTextBar& bar : layout.bars) {
    const DrawPath path = linePath(frame * bar.start, frame * bar.end);
    if (bar.color) {
      walk.stroke(path, walk.lookOf(*bar.color));
    } else {
      walk.strokePlain(path);
    }
  }
}

}  // namespace quoin::db
