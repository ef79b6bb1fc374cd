// Text of tags: code pages and the three kinds of escapes that DXF text may hold.
#include "embedded/dxf/TagText.h"

#include <array>

#include "embedded/dxf/Tag.h"
#include "embedded/os/CodePage.h"
#include "embedded/os/Utf8.h"

namespace quoin::dxf {
namespace {

constexpr char32_t kHighSurrogate = 0xD800;
constexpr char32_t kLowSurrogate = 0xDC00;
constexpr char32_t kSurrogateEnd = 0xE000;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
constexpr std::size_t kUnicodeEscapeSize = 7;    // \U+XXXX
constexpr std::size_t kMultiByteEscapeSize = 8;  // \M+nXXXX

/// The code pages of \M+1 to \M+5.
constexpr std::array<const char*, 5> kMultiByteCodePages = {"ANSI_932", "ANSI_950", "ANSI_949",
                                                            "ANSI_1361", "ANSI_936"};

/// Four hexadecimal digits from `at` on; -1 when they are none.
int fourHexDigits(std::wstring_view text, std::size_t at) {
  if (text.size() < at + 4) {
    return -1;
  }
  int value = 0;
  for (std::size_t i = at; i < at + 4; ++i) {
    const wchar_t c = text[i];
    const int digit = c >= L'0' && c <= L'9'   ? c - L'0'
                      : c >= L'A' && c <= L'F' ? c - L'A' + 10
                      : c >= L'a' && c <= L'f' ? c - L'a' + 10
                                               : -1;
    if (digit < 0) {
      return -1;
    }
    value = value * 16 + digit;
  }
  return value;
}

int unicodeEscapeAt(std::wstring_view text, std::size_t at) {
  return text.substr(at, 3) == L"\\U+" ? fourHexDigits(text, at + 3) : -1;
}

void appendWide(std::wstring& text, char32_t code) {
  if (sizeof(wchar_t) == 2 && code >= kFirstSupplementary) {
    text.push_back(static_cast<wchar_t>(kHighSurrogate + ((code - kFirstSupplementary) >> 10)));
    text.push_back(static_cast<wchar_t>(kLowSurrogate + ((code - kFirstSupplementary) & 0x3FF)));
    return;
  }
  text.push_back(static_cast<wchar_t>(code));
}

/// Resolves the escape at `at` into `out`; returns its length, 0 when there is none.
std::size_t resolveEscape(std::wstring_view text, std::size_t at, std::wstring& out) {
  if (const int unit = unicodeEscapeAt(text, at); unit >= 0) {
    const auto code = static_cast<char32_t>(unit);
    if (code < kHighSurrogate || code >= kSurrogateEnd) {
      out.push_back(static_cast<wchar_t>(code));
      return kUnicodeEscapeSize;
    }
    // Half a pair means nothing alone (and U+DCxx stands for raw bytes here): it stays text.
    const int second = code < kLowSurrogate ? unicodeEscapeAt(text, at + kUnicodeEscapeSize) : -1;
    const auto low = static_cast<char32_t>(second);
    if (second < 0 || low < kLowSurrogate || low >= kSurrogateEnd) {
      return 0;
    }
    appendWide(out, kFirstSupplementary + ((code - kHighSurrogate) << 10) + (low - kLowSurrogate));
    return 2 * kUnicodeEscapeSize;
  }
  if (text.substr(at, 3) == L"\\M+" && at + 3 < text.size()) {
    const wchar_t page = text[at + 3];
    const int code = page >= L'1' && page <= L'5' ? fourHexDigits(text, at + 4) : -1;
    if (code >= 0) {
      const char* const name = kMultiByteCodePages[static_cast<std::size_t>(page - L'1')];
      const char32_t character =
          os::CodePage::named(name).characterOf(static_cast<std::uint16_t>(code));
      if (character != 0) {
        out.push_back(static_cast<wchar_t>(character));
        return kMultiByteEscapeSize;
      }
    }
  }
  return 0;
}

/// Resolves a caret escape ("^J", "^ "); returns its length, 0 when there is none.
std::size_t resolveCaret(std::wstring_view text, std::size_t at, std::wstring& out) {
  if (at + 1 == text.size()) {
    return 0;
  }
  const wchar_t next = text[at + 1];
  if (next == L' ') {
    out.push_back(L'^');
  } else if (next >= L'@' && next <= L'_') {
    out.push_back(static_cast<wchar_t>(next - L'@'));
  } else {
    return 0;
  }
  return 2;
}

void appendUnicodeEscape(std::string& bytes, char32_t unit) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  bytes += "\\U+";
  for (int shift = 12; shift >= 0; shift -= 4) {
    bytes.push_back(kDigits[(unit >> shift) & 0xF]);
  }
}

void appendEncoded(std::string& bytes, char32_t code, const os::CodePage& page) {
  if (code > kLastCodePoint) {
    code = 0xFFFD;
  }
  if (page.encode(code, bytes)) {
    return;
  }
  if (code >= kFirstSupplementary) {
    appendUnicodeEscape(bytes, kHighSurrogate + ((code - kFirstSupplementary) >> 10));
    appendUnicodeEscape(bytes, kLowSurrogate + ((code - kFirstSupplementary) & 0x3FF));
  } else {
    appendUnicodeEscape(bytes, code);
  }
}

}  // namespace

std::wstring decodeText(std::string_view raw, const Format& format) {
  const std::wstring text =
      format.textIsUtf8() ? os::fromUtf8(raw) : os::CodePage::named(format.codePage).decode(raw);
  if (text.find_first_of(L"\\^") == std::wstring::npos) {
    return text;
  }
  std::wstring out;
  out.reserve(text.size());
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = text[at] == L'\\'  ? resolveEscape(text, at, out)
                               : text[at] == L'^' ? resolveCaret(text, at, out)
                                                  : 0;
    if (length == 0) {
      out.push_back(text[at]);
    }
    at += length == 0 ? 1 : length;
  }
  return out;
}

void encodeText(std::string& bytes, std::wstring_view text, const Format& format) {
  const os::CodePage& page = os::CodePage::named(format.textIsUtf8() ? "UTF-8" : format.codePage);
  for (std::size_t at = 0; at < text.size(); ++at) {
    auto code = static_cast<char32_t>(text[at]);
    if (code < 0x20) {
      bytes.push_back('^');
      bytes.push_back(static_cast<char>(code + U'@'));
      continue;
    }
    if (code == U'^') {
      bytes += "^ ";
      continue;
    }
    const bool isHigh = code >= kHighSurrogate && code < kLowSurrogate;
    if (isHigh && at + 1 < text.size()) {
      const auto low = static_cast<char32_t>(text[at + 1]);
      if (low >= kLowSurrogate && low < kSurrogateEnd) {
        code = kFirstSupplementary + ((code - kHighSurrogate) << 10) + (low - kLowSurrogate);
        ++at;
      }
    }
    appendEncoded(bytes, code, page);
  }
}

std::wstring textOf(const TagView& tag, const Format& format) {
  return decodeText(tag.value, format);
}

}  // namespace quoin::dxf
