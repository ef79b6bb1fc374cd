#include "embedded/dxf/Tag.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/TagReader.h"

namespace quoin::dxf {
namespace {

struct CodeRange {
  int first;
  int last;
  TagType type;
};
// Everything that is not listed is text.
constexpr CodeRange kCodeRanges[] = {
    {5, 5, TagType::Handle},       {10, 59, TagType::Double},     {60, 79, TagType::Int16},
    {90, 99, TagType::Int32},      {105, 105, TagType::Handle},   {110, 149, TagType::Double},
    {160, 169, TagType::Int64},    {170, 179, TagType::Int16},    {210, 239, TagType::Double},
    {270, 289, TagType::Int16},    {290, 299, TagType::Bool},     {310, 319, TagType::Binary},
    {320, 369, TagType::Handle},   {370, 389, TagType::Int16},    {390, 399, TagType::Handle},
    {400, 409, TagType::Int16},    {420, 429, TagType::Int32},    {440, 459, TagType::Int32},
    {460, 469, TagType::Double},   {480, 481, TagType::Handle},   {1004, 1004, TagType::Binary},
    {1005, 1005, TagType::Handle}, {1010, 1059, TagType::Double}, {1060, 1070, TagType::Int16},
    {1071, 1071, TagType::Int32}};

constexpr std::array<TagType, kLastGroupCode + 1> makeTypes() {
  std::array<TagType, kLastGroupCode + 1> types{};
  for (const CodeRange& range : kCodeRanges) {
    for (int code = range.first; code <= range.last; ++code) {
      types[static_cast<std::size_t>(code)] = range.type;
    }
  }
  return types;
}
constexpr std::array<TagType, kLastGroupCode + 1> kTypes = makeTypes();

std::uint64_t littleEndian(std::string_view bytes) {
  std::uint64_t number = 0;
  for (std::size_t i = bytes.size(); i-- > 0;) {
    number = number << 8 | static_cast<unsigned char>(bytes[i]);
  }
  return number;
}

/// Whether the value is a number of fixed size rather than text.
bool isBinaryNumber(const TagView& tag, const Format& format) {
  return format.form == Form::Binary && binaryValueSize(tagType(tag.code)) != 0;
}

double doubleFromBits(std::uint64_t bits) {
  double value = 0;
  static_assert(sizeof value == sizeof bits);
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

/// A number that fills the text but for blanks around it and a plus sign; false for none.
template <typename Number>
bool parseWhole(std::string_view text, Number& number) {
  text = trimmed(text);
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end;
}

double doubleFromText(std::string_view text) {
  double value = 0;
  return parseWhole(text, value) && std::isfinite(value) ? value : 0.0;
}

std::int64_t integerFromDouble(double value) {
  constexpr double kLimit = 9223372036854775808.0;  // 2^63
  return value > -kLimit && value < kLimit ? static_cast<std::int64_t>(value) : 0;
}

}  // namespace

TagType tagType(int code) {
  return code >= 0 && code <= kLastGroupCode ? kTypes[static_cast<std::size_t>(code)]
                                             : TagType::Text;
}

std::string causeOf(ReadResult result, const char* at, const char* end, const TagLayout& layout) {
  if (result == ReadResult::CutShort) {
    return "the data ends in the middle of a tag";
  }
  if (layout.isBinary) {
    RawTag tag;
    readTag(at, end, layout, tag);
    return "group code " + std::to_string(tag.code) + " does not exist";
  }
  constexpr std::size_t kShown = 40;
  const auto isEnd = [](char c) { return c == '\n' || c == '\r'; };
  std::string_view line(at, static_cast<std::size_t>(std::find_if(at, end, isEnd) - at));
  line = trimmed(line);
  std::string shown(line.substr(0, kShown));
  std::replace_if(
      shown.begin(), shown.end(), [](char c) { return c >= 0 && c < ' '; }, '?');
  return "group code '" + shown + (line.size() > kShown ? "..." : "") + "' is not a number";
}

Acad::ErrorStatus statusOf(ReadResult result) {
  return result == ReadResult::BadCode ? Acad::eInvalidDxfCode : Acad::eBadDxfFile;
}

bool TagCursor::next(TagView& tag) {
  const char* const begin = m_bytes.data() + m_offset;
  const char* const end = m_bytes.data() + m_bytes.size();
  const TagLayout layout(*m_format);
  RawTag raw;
  const ReadResult result = readTag(begin, end, layout, raw);
  if (result == ReadResult::End) {
    return false;
  }
  if (result != ReadResult::Tag) {
    FileError error(statusOf(result), causeOf(result, begin, end, layout));
    error.offset = m_offset;
    throw error;
  }
  tag.code = raw.code;
  tag.value = {raw.value, raw.valueSize};
  tag.begin = m_offset;
  m_offset = static_cast<std::size_t>(raw.next - m_bytes.data());
  tag.end = m_offset;
  return true;
}

double doubleOf(const TagView& tag, const Format& format) {
  if (!isBinaryNumber(tag, format)) {
    return doubleFromText(tag.value);
  }
  if (tagType(tag.code) == TagType::Double) {
    return doubleFromBits(littleEndian(tag.value));
  }
  return static_cast<double>(integerOf(tag, format));
}

bool isUnreadableDouble(const TagView& tag, const Format& format) {
  if (tagType(tag.code) != TagType::Double) {
    return false;
  }
  double value = 0;
  if (isBinaryNumber(tag, format)) {
    value = doubleFromBits(littleEndian(tag.value));
  } else if (!parseWhole(tag.value, value)) {
    return true;
  }
  return !std::isfinite(value);
}

std::int64_t integerOf(const TagView& tag, const Format& format) {
  if (!isBinaryNumber(tag, format)) {
    std::int64_t value = 0;
    return parseWhole(tag.value, value) ? value : integerFromDouble(doubleFromText(tag.value));
  }
  const std::uint64_t bits = littleEndian(tag.value);
  switch (tagType(tag.code)) {
    case TagType::Double:
      return integerFromDouble(doubleFromBits(bits));
    case TagType::Int16:
      return static_cast<std::int16_t>(bits);
    case TagType::Int32:
      return static_cast<std::int32_t>(bits);
    default:
      return static_cast<std::int64_t>(bits);
  }
}

std::string capitals(std::string_view text) {
  std::string folded(text);
  std::transform(folded.begin(), folded.end(), folded.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return folded;
}

std::uint64_t handleFromText(std::string_view text) {
  text = trimmed(text);
  std::uint64_t handle = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, handle, 16);
  return error == std::errc{} && stop == end ? handle : 0;
}

std::uint64_t handleOf(const TagView& tag, const Format& format) {
  return isBinaryNumber(tag, format) ? static_cast<std::uint64_t>(integerOf(tag, format))
                                     : handleFromText(tag.value);
}

std::string_view trimmedValue(const TagView& tag) {
  return trimmed(tag.value);
}

std::string binaryOf(const TagView& tag, const Format& format) {
  if (format.form == Form::Binary) {
    return std::string(tag.value);
  }
  const auto digit = [](char c) {
    return c >= '0' && c <= '9'   ? c - '0'
           : c >= 'A' && c <= 'F' ? c - 'A' + 10
           : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                  : -1;
  };
  const std::string_view digits = trimmedValue(tag);
  std::string chunk;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    const int high = digit(digits[i]);
    const int low = digit(digits[i + 1]);
    if (high < 0 || low < 0) {
      break;
    }
    chunk.push_back(static_cast<char>(high << 4 | low));
  }
  return chunk;
}

}  // namespace quoin::dxf
