#include "commands/FeetAndInches.h"

#include <string>

namespace quoin::commands {

namespace {

constexpr double kMillimetersPerInch = 25.4;
constexpr double kInchesPerFoot = 12.0;

bool isDigit(wchar_t sign) {
  return sign >= L'0' && sign <= L'9';
}

/// Without codes like \A1; and \fArial|b0; and braces; a stacked fraction \S1/2; stays as 1/2.
std::wstring withoutFormatting(std::wstring_view text) {
  std::wstring plain;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == L'{' || text[i] == L'}') {
      continue;
    }
    if (text[i] != L'\\' || i + 1 >= text.size()) {
      plain += text[i];
      continue;
    }
    const wchar_t code = text[++i];
    if (code == L'S') {
      plain += L' ';
      for (++i; i < text.size() && text[i] != L';'; ++i) {
        plain += text[i] == L'#' || text[i] == L'^' ? L'/' : text[i];
      }
    } else if (std::wstring_view(L"ACcFfHQTWp").find(code) != std::wstring_view::npos) {
      while (i < text.size() && text[i] != L';') {
        ++i;
      }
    } else {
      plain += L' ';
    }
  }
  return plain;
}

/// Reads numbers and signs from the front of a text.
class Reader {
 public:
  explicit Reader(std::wstring_view text) : m_text(text) {}

  bool isAtEnd() const { return m_at >= m_text.size(); }
  std::size_t at() const { return m_at; }
  void moveTo(std::size_t at) { m_at = at; }

  std::optional<double> number() {
    double value = 0.0;
    const std::size_t begin = m_at;
    for (; !isAtEnd() && isDigit(m_text[m_at]); ++m_at) {
      value = 10.0 * value + (m_text[m_at] - L'0');
    }
    if (m_at == begin) {
      return std::nullopt;
    }
    if (m_at + 1 < m_text.size() && m_text[m_at] == L'.' && isDigit(m_text[m_at + 1])) {
      double unit = 0.1;
      for (++m_at; !isAtEnd() && isDigit(m_text[m_at]); ++m_at, unit *= 0.1) {
        value += unit * (m_text[m_at] - L'0');
      }
    }
    return value;
  }
  bool takes(std::wstring_view signs) {
    if (m_text.substr(m_at, signs.size()) != signs) {
      return false;
    }
    m_at += signs.size();
    return true;
  }
  void skip(std::wstring_view signs) {
    while (!isAtEnd() && signs.find(m_text[m_at]) != std::wstring_view::npos) {
      ++m_at;
    }
  }
  bool isBeforeLetter() const {
    return !isAtEnd() && ((m_text[m_at] >= L'a' && m_text[m_at] <= L'z') ||
                          (m_text[m_at] >= L'A' && m_text[m_at] <= L'Z'));
  }

 private:
  std::wstring_view m_text;
  std::size_t m_at = 0;
};

bool takesInchSign(Reader& reader) {
  return reader.takes(L"\"") || reader.takes(L"''") || reader.takes(L"\u2033");
}

/// Inches with or without a fraction up to their sign: 6", 6 1/2", 1/2".
std::optional<double> inchesAt(Reader& reader) {
  std::optional<double> whole = reader.number();
  if (!whole || takesInchSign(reader)) {
    return whole;
  }
  double numerator = *whole;
  reader.skip(L" -");
  if (!reader.takes(L"/")) {
    const std::optional<double> second = reader.number();
    if (!second || !reader.takes(L"/")) {
      return std::nullopt;
    }
    numerator = *second;
  } else {
    whole = 0.0;
  }
  const std::optional<double> denominator = reader.number();
  if (!denominator || *denominator == 0.0 || !takesInchSign(reader)) {
    return std::nullopt;
  }
  return *whole + numerator / *denominator;
}

std::optional<double> lengthAt(Reader& reader) {
  const std::size_t begin = reader.at();
  const std::optional<double> first = reader.number();
  if (!first) {
    return std::nullopt;
  }
  const std::size_t behindNumber = reader.at();
  if (!reader.takes(L"''") && (reader.takes(L"'") || reader.takes(L"\u2032"))) {
    reader.skip(L" -");
    const std::size_t behindFeet = reader.at();
    const std::optional<double> inches = inchesAt(reader);
    if (!inches) {
      reader.moveTo(behindFeet);
    }
    return (*first * kInchesPerFoot + inches.value_or(0.0)) * kMillimetersPerInch;
  }
  reader.moveTo(begin);
  if (const std::optional<double> inches = inchesAt(reader)) {
    return *inches * kMillimetersPerInch;
  }
  reader.moveTo(behindNumber);
  reader.skip(L" ");
  const double metric = reader.takes(L"mm")   ? 1.0
                        : reader.takes(L"cm") ? 10.0
                        : reader.takes(L"m")  ? 1000.0
                                              : 0.0;
  if (metric != 0.0 && !reader.isBeforeLetter()) {
    return *first * metric;
  }
  reader.moveTo(behindNumber);
  return std::nullopt;
}

}  // namespace

std::optional<double> writtenMillimeters(std::wstring_view text) {
  const std::wstring plain = withoutFormatting(text);
  Reader reader(plain);
  while (!reader.isAtEnd()) {
    if (!isDigit(plain[reader.at()])) {
      reader.moveTo(reader.at() + 1);
    } else if (const std::optional<double> length = lengthAt(reader); length && *length > 0.0) {
      return length;
    }
  }
  return std::nullopt;
}

}  // namespace quoin::commands
