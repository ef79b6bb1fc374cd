// The one place that knows how a tag lies in bytes: two lines in ASCII, a group code and a
// value of the code's type in binary. Everything that walks tags (TagCursor, the loader)
// goes through readTag(). Nothing is allocated and nothing thrown here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "acadstrc.h"
#include "embedded/dxf/Format.h"
#include "embedded/dxf/Tag.h"

namespace quoin::dxf {

/// How the bytes of a file are cut into tags.
struct TagLayout {
  bool isBinary = false;
  bool narrowGroupCodes = false;
  char terminator = '\n';

  explicit TagLayout(const Format& format)
      : isBinary(format.form == Form::Binary),
        narrowGroupCodes(format.narrowGroupCodes),
        terminator(format.lineEnd == "\r" ? '\r' : '\n') {}
};

enum class ReadResult : std::uint8_t {
  Tag,
  End,       // no byte left
  CutShort,  // the bytes end inside the tag
  BadCode    // the group code is not a number (ASCII) or none that exists (binary)
};

/// A tag where it lies: the value without line end, terminating zero or length byte.
struct RawTag {
  int code = 0;
  const char* value = nullptr;
  std::size_t valueSize = 0;
  const char* next = nullptr;
};

/// The highest group code that the reference knows.
inline constexpr int kLastGroupCode = 1071;
/// Opens a two-byte group code in a file whose group codes have one byte.
inline constexpr unsigned char kWideCodeFollows = 255;

inline ReadResult readAsciiTag(const char* at, const char* end, char terminator, RawTag& tag) {
  if (at == end) {
    return ReadResult::End;
  }
  const auto isBlank = [terminator](char c) {
    return c == ' ' || c == '\t' || (c == '\r' && terminator == '\n');
  };
  const char* position = at;
  while (position != end && isBlank(*position)) {
    ++position;
  }
  const bool isNegative = position != end && *position == '-';
  position += isNegative ? 1 : 0;
  const char* const digits = position;
  int code = 0;
  while (position != end && *position >= '0' && *position <= '9') {
    // Five digits are more than any group code has; the rest is refused below.
    code = position - digits < 5 ? code * 10 + (*position - '0') : code;
    ++position;
  }
  const auto digitCount = position - digits;
  while (position != end && isBlank(*position)) {
    ++position;
  }
  if (position == end) {
    return ReadResult::CutShort;
  }
  if (*position != terminator || digitCount == 0 || digitCount > 5) {
    return ReadResult::BadCode;
  }
  ++position;
  // Files of both worlds: a line feed behind the carriage return belongs to the line end.
  const auto skipLineFeed = [&] {
    if (terminator == '\r' && position != end && *position == '\n') {
      ++position;
    }
  };
  skipLineFeed();
  if (position == end) {
    return ReadResult::CutShort;
  }
  tag.code = isNegative ? -code : code;
  tag.value = position;
  const auto* lineEnd = static_cast<const char*>(
      std::memchr(position, terminator, static_cast<std::size_t>(end - position)));
  const char* valueEnd = lineEnd == nullptr ? end : lineEnd;
  position = lineEnd == nullptr ? end : lineEnd + 1;
  skipLineFeed();
  while (terminator == '\n' && valueEnd != tag.value && valueEnd[-1] == '\r') {
    --valueEnd;
  }
  tag.valueSize = static_cast<std::size_t>(valueEnd - tag.value);
  tag.next = position;
  return ReadResult::Tag;
}

/// Bytes of a value of fixed size; 0 for text and chunks.
inline std::size_t binaryValueSize(TagType type) {
  switch (type) {
    case TagType::Double:
    case TagType::Int64:
      return 8;
    case TagType::Int32:
      return 4;
    case TagType::Int16:
      return 2;
    case TagType::Bool:
      return 1;
    case TagType::Text:
    case TagType::Handle:
    case TagType::Binary:
      break;
  }
  return 0;
}

inline ReadResult readBinaryTag(const char* at, const char* end, bool narrow, RawTag& tag) {
  const auto left = [&] { return static_cast<std::size_t>(end - at); };
  const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(at[index]); };
  if (at == end) {
    return ReadResult::End;
  }
  const std::size_t codeAt = narrow && byteAt(0) == kWideCodeFollows ? 1 : 0;
  if (narrow && codeAt == 0) {
    tag.code = byteAt(0);
    at += 1;
  } else {
    if (left() < codeAt + 2) {
      return ReadResult::CutShort;
    }
    tag.code = static_cast<std::int16_t>(byteAt(codeAt) | byteAt(codeAt + 1) << 8);
    at += codeAt + 2;
  }
  if (tag.code < 0 || tag.code > kLastGroupCode) {
    return ReadResult::BadCode;
  }
  const TagType type = tagType(tag.code);
  std::size_t size = binaryValueSize(type);
  std::size_t behind = 0;
  if (type == TagType::Binary) {
    if (left() == 0) {
      return ReadResult::CutShort;
    }
    size = byteAt(0);
    at += 1;
  } else if (size == 0) {
    const void* zero = left() == 0 ? nullptr : std::memchr(at, 0, left());
    if (zero == nullptr) {
      return ReadResult::CutShort;
    }
    size = static_cast<std::size_t>(static_cast<const char*>(zero) - at);
    behind = 1;
  }
  if (left() < size + behind) {
    return ReadResult::CutShort;
  }
  tag.value = at;
  tag.valueSize = size;
  tag.next = at + size + behind;
  return ReadResult::Tag;
}

inline ReadResult readTag(const char* at, const char* end, const TagLayout& layout, RawTag& tag) {
  return layout.isBinary ? readBinaryTag(at, end, layout.narrowGroupCodes, tag)
                         : readAsciiTag(at, end, layout.terminator, tag);
}

/// A view without blanks, tabs and line ends around it.
inline std::string_view trimmed(std::string_view text) {
  const auto isBlank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

/// The text in capitals, as far as it is ASCII: names of records are equal in any case.
std::string capitals(std::string_view text);

/// The number of a handle's hexadecimal text (blanks around it allowed); 0 when it is none.
std::uint64_t handleFromText(std::string_view text);

/// Why readTag() could not read the tag that begins at `at`: the cause for a FileError.
std::string causeOf(ReadResult result, const char* at, const char* end, const TagLayout& layout);
/// The status that belongs to it.
Acad::ErrorStatus statusOf(ReadResult result);

}  // namespace quoin::dxf
