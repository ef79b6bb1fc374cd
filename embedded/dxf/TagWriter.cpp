// Tags into bytes, in a file's own format.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

#include "embedded/dxf/Tag.h"
#include "embedded/dxf/TagReader.h"
#include "embedded/dxf/TagText.h"

namespace quoin::dxf {
namespace {

// An ASCII line of a chunk holds 254 digits at most; a binary chunk of the same bytes fits
// its length byte.
constexpr std::size_t kChunkBytes = 127;
constexpr int kLastNarrowCode = kWideCodeFollows - 1;

void putLittleEndian(std::string& bytes, std::uint64_t number, std::size_t size) {
  for (std::size_t i = 0; i < size; ++i) {
    bytes.push_back(static_cast<char>(number >> (8 * i) & 0xFF));
  }
}

void putCode(std::string& bytes, int code, const Format& format) {
  if (format.form == Form::Binary) {
    if (format.narrowGroupCodes && code >= 0 && code <= kLastNarrowCode) {
      bytes.push_back(static_cast<char>(code));
      return;
    }
    if (format.narrowGroupCodes) {
      bytes.push_back(static_cast<char>(kWideCodeFollows));
    }
    putLittleEndian(bytes, static_cast<std::uint64_t>(code), 2);
    return;
  }
  const std::string digits = std::to_string(code);
  const auto columns = static_cast<std::size_t>(std::max(format.groupCodeColumns, 0));
  bytes.append(columns > digits.size() ? columns - digits.size() : 0, ' ');
  bytes += digits;
  bytes += format.lineEnd;
}

/// Ends a value that is text: a line end, or a zero byte.
void endText(std::string& bytes, const Format& format) {
  if (format.form == Form::Binary) {
    bytes.push_back('\0');
  } else {
    bytes += format.lineEnd;
  }
}

/// Whether a number of this code is written as bytes rather than as text.
bool isWrittenAsBytes(int code, const Format& format) {
  return format.form == Form::Binary && binaryValueSize(tagType(code)) != 0;
}

double finite(double value) {
  if (std::isnan(value)) {
    return 0.0;
  }
  constexpr double kMost = std::numeric_limits<double>::max();
  return std::clamp(value, -kMost, kMost);
}

void appendDouble(std::string& bytes, double value) {
  std::array<char, 32> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), value);
  const std::string_view digits(text.data(), static_cast<std::size_t>(result.ptr - text.data()));
  const std::size_t exponent = std::min(digits.find('e'), digits.size());
  const std::string_view mantissa = digits.substr(0, exponent);
  bytes += mantissa;
  if (mantissa.find('.') == std::string_view::npos) {
    bytes += ".0";
  }
  bytes += digits.substr(exponent);
}

template <typename Number>
void appendNumber(std::string& bytes, Number number, int base) {
  std::array<char, 24> text{};
  const auto result = std::to_chars(text.data(), text.data() + text.size(), number, base);
  std::transform(text.data(), result.ptr, std::back_inserter(bytes),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
}

void putRaw(std::string& bytes, int code, std::string_view raw, const Format& format) {
  putCode(bytes, code, format);
  bytes += raw;
  endText(bytes, format);
}

}  // namespace

void putText(std::string& bytes, int code, std::wstring_view text, const Format& format) {
  putCode(bytes, code, format);
  encodeText(bytes, text, format);
  endText(bytes, format);
}

void putAscii(std::string& bytes, int code, std::string_view text, const Format& format) {
  putRaw(bytes, code, text, format);
}

void putDouble(std::string& bytes, int code, double value, const Format& format) {
  value = finite(value);
  if (isWrittenAsBytes(code, format) && tagType(code) != TagType::Double) {
    putInteger(bytes, code, static_cast<std::int64_t>(std::clamp(value, -9.2e18, 9.2e18)), format);
    return;
  }
  putCode(bytes, code, format);
  if (isWrittenAsBytes(code, format)) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    putLittleEndian(bytes, bits, sizeof bits);
    return;
  }
  appendDouble(bytes, value);
  endText(bytes, format);
}

void putInteger(std::string& bytes, int code, std::int64_t value, const Format& format) {
  if (isWrittenAsBytes(code, format)) {
    if (tagType(code) == TagType::Double) {
      putDouble(bytes, code, static_cast<double>(value), format);
      return;
    }
    putCode(bytes, code, format);
    putLittleEndian(bytes, static_cast<std::uint64_t>(value), binaryValueSize(tagType(code)));
    return;
  }
  putCode(bytes, code, format);
  appendNumber(bytes, value, 10);
  endText(bytes, format);
}

void putHandle(std::string& bytes, int code, std::uint64_t handle, const Format& format) {
  if (isWrittenAsBytes(code, format)) {
    putInteger(bytes, code, static_cast<std::int64_t>(handle), format);
    return;
  }
  putCode(bytes, code, format);
  appendNumber(bytes, handle, 16);
  endText(bytes, format);
}

void putBinary(std::string& bytes, int code, std::string_view chunk, const Format& format) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  do {
    const std::string_view part = chunk.substr(0, kChunkBytes);
    chunk.remove_prefix(part.size());
    putCode(bytes, code, format);
    if (format.form == Form::Binary) {
      bytes.push_back(static_cast<char>(part.size()));
      bytes += part;
      continue;
    }
    for (const char c : part) {
      bytes.push_back(kDigits[static_cast<unsigned char>(c) >> 4]);
      bytes.push_back(kDigits[static_cast<unsigned char>(c) & 0xF]);
    }
    bytes += format.lineEnd;
  } while (!chunk.empty());
}

void putTranscoded(std::string& bytes, const TagView& tag, const Format& source,
                   const Format& target) {
  switch (tagType(tag.code)) {
    case TagType::Double:
      putDouble(bytes, tag.code, doubleOf(tag, source), target);
      return;
    case TagType::Int16:
    case TagType::Int32:
    case TagType::Int64:
    case TagType::Bool:
      putInteger(bytes, tag.code, integerOf(tag, source), target);
      return;
    case TagType::Handle:
      putRaw(bytes, tag.code, tag.value, target);
      return;
    case TagType::Binary:
      putBinary(bytes, tag.code, binaryOf(tag, source), target);
      return;
    case TagType::Text:
      break;
  }
  if (source.textIsUtf8() == target.textIsUtf8() &&
      (source.textIsUtf8() || source.codePage == target.codePage)) {
    putRaw(bytes, tag.code, tag.value, target);
  } else {
    putText(bytes, tag.code, textOf(tag, source), target);
  }
}

}  // namespace quoin::dxf
