#include "embedded/os/Utf8.h"

#include <cstddef>
#include <cstdint>

namespace quoin::os {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr char32_t kHighSurrogate = 0xD800;
constexpr char32_t kLowSurrogate = 0xDC00;
constexpr char32_t kSurrogateEnd = 0xE000;
constexpr char32_t kFirstSupplementary = 0x10000;
constexpr char32_t kLastCodePoint = 0x10FFFF;
// Byte 0x80 is escaped as U+DC80, byte 0xFF as U+DCFF.
constexpr char32_t kEscapeFirst = 0xDC80;
constexpr char32_t kEscapeLast = 0xDCFF;

void appendWide(std::wstring& text, char32_t code) {
  if (sizeof(wchar_t) == 2 && code >= kFirstSupplementary) {
    const char32_t rest = code - kFirstSupplementary;
    text.push_back(static_cast<wchar_t>(kHighSurrogate + (rest >> 10)));
    text.push_back(static_cast<wchar_t>(kLowSurrogate + (rest & 0x3FF)));
    return;
  }
  text.push_back(static_cast<wchar_t>(code));
}

/// Decodes one code point at `at`; returns its length in bytes, 0 when there is none.
std::size_t decodeOne(std::string_view bytes, std::size_t at, char32_t& code) {
  const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(bytes[index]); };
  const unsigned char lead = byteAt(at);
  std::size_t length = 0;
  char32_t least = 0;
  if (lead < 0x80) {
    code = lead;
    return 1;
  }
  if (lead >= 0xC2 && lead < 0xE0) {
    length = 2;
    code = lead & 0x1FU;
    least = 0x80;
  } else if (lead >= 0xE0 && lead < 0xF0) {
    length = 3;
    code = lead & 0x0FU;
    least = 0x800;
  } else if (lead >= 0xF0 && lead < 0xF5) {
    length = 4;
    code = lead & 0x07U;
    least = kFirstSupplementary;
  } else {
    return 0;
  }
  if (bytes.size() - at < length) {
    return 0;
  }
  for (std::size_t i = 1; i < length; ++i) {
    const unsigned char next = byteAt(at + i);
    if ((next & 0xC0U) != 0x80U) {
      return 0;
    }
    code = (code << 6) | (next & 0x3FU);
  }
  const bool isSurrogate = code >= kHighSurrogate && code < kSurrogateEnd;
  return code < least || code > kLastCodePoint || isSurrogate ? 0 : length;
}

void appendUtf8(std::string& bytes, char32_t code) {
  const auto put = [&](char32_t value) { bytes.push_back(static_cast<char>(value)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0U | (code >> 6));
    put(0x80U | (code & 0x3FU));
  } else if (code < kFirstSupplementary) {
    put(0xE0U | (code >> 12));
    put(0x80U | ((code >> 6) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | (code >> 18));
    put(0x80U | ((code >> 12) & 0x3FU));
    put(0x80U | ((code >> 6) & 0x3FU));
    put(0x80U | (code & 0x3FU));
  }
}

char32_t unitAt(std::wstring_view text, std::size_t at) {
  return sizeof(wchar_t) == 2 ? static_cast<char32_t>(static_cast<std::uint16_t>(text[at]))
                              : static_cast<char32_t>(text[at]);
}

}  // namespace

std::wstring fromUtf8(std::string_view bytes) {
  std::wstring text;
  text.reserve(bytes.size());
  for (std::size_t at = 0; at < bytes.size();) {
    char32_t code = 0;
    const std::size_t length = decodeOne(bytes, at, code);
    if (length == 0) {
      const auto raw = static_cast<unsigned char>(bytes[at]);
      appendWide(text, kEscapeFirst + (raw - 0x80U));
      ++at;
      continue;
    }
    appendWide(text, code);
    at += length;
  }
  return text;
}

std::string toUtf8(std::wstring_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    char32_t code = unitAt(text, at);
    if (code >= kHighSurrogate && code < kLowSurrogate && at + 1 < text.size()) {
      const char32_t low = unitAt(text, at + 1);
      if (low >= kLowSurrogate && low < kSurrogateEnd) {
        code = kFirstSupplementary + ((code - kHighSurrogate) << 10) + (low - kLowSurrogate);
        ++at;
      }
    }
    if (code >= kEscapeFirst && code <= kEscapeLast) {
      bytes.push_back(static_cast<char>(code - kEscapeFirst + 0x80U));
      continue;
    }
    const bool isSurrogate = code >= kHighSurrogate && code < kSurrogateEnd;
    appendUtf8(bytes, isSurrogate || code > kLastCodePoint ? kReplacement : code);
  }
  return bytes;
}

}  // namespace quoin::os
