// Tags: the (group code, value) pairs that a DXF file is made of, read in place and
// written in a file's own format. Reading never allocates; a tag's value is a view of the
// raw bytes. Text is decoded only when asked for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dxf/Format.h"

namespace quoin::dxf {

/// What a group code's value is (DXF reference, "Group code value types").
enum class TagType : std::uint8_t { Text, Double, Int16, Int32, Int64, Bool, Handle, Binary };

/// The value type of a group code; Text for codes that the reference leaves open.
HOST_API TagType tagType(int code);

/// One tag inside a record's bytes.
struct TagView {
  int code = 0;
  /// Raw value: in ASCII the line without its end, in binary the bytes of the value
  /// (without the terminating zero of a text, without the length byte of a chunk).
  std::string_view value;
  /// Where the whole tag stands in the bytes that the cursor walks.
  std::size_t begin = 0;
  std::size_t end = 0;
};

/// Walks the tags of a span of bytes.
/// Fails: a tag that is cut short or whose group code is not a number throws FileError with
/// the offset in the span (the caller adds file and line).
class HOST_API TagCursor {
 public:
  TagCursor(std::string_view bytes, const Format& format, std::size_t offset = 0)
      : m_bytes(bytes), m_format(&format), m_offset(offset) {}

  /// Reads the next tag; false at the end of the span.
  bool next(TagView& tag);
  std::size_t offset() const { return m_offset; }

 private:
  std::string_view m_bytes;
  const Format* m_format;
  std::size_t m_offset;
};

/// Values of a tag. A value that cannot be read as that type reads as 0 (a drawing with one
/// bad number stays readable; the audit of a file is not the reader's business).
HOST_API double doubleOf(const TagView& tag, const Format& format);
/// Whether the tag's value is meant to be a floating-point number and is none, or not a finite
/// one, so that doubleOf() returns 0 or what it is in its place.
HOST_API bool isUnreadableDouble(const TagView& tag, const Format& format);
HOST_API std::int64_t integerOf(const TagView& tag, const Format& format);
HOST_API std::uint64_t handleOf(const TagView& tag, const Format& format);
/// Text decoded from the file's code page or UTF-8, with \U+XXXX, \M+nXXXX and caret
/// escapes ("^J" is a line feed, "^ " a caret) resolved. Bytes that the code page does not
/// know become U+DC80 + (byte - 0x80), which encodes back to the same byte.
HOST_API std::wstring textOf(const TagView& tag, const Format& format);
/// The value without blanks, tabs and line ends around it: for names, kinds and handles.
HOST_API std::string_view trimmedValue(const TagView& tag);
/// The bytes of a binary chunk (310, 1004): as they stand in a binary file, from hexadecimal
/// digits in an ASCII one; digits that are none end it.
HOST_API std::string binaryOf(const TagView& tag, const Format& format);

/// Appends one tag in `format` to `bytes`. Characters that the code page lacks are written as
/// \U+XXXX, control characters and the caret as caret escapes, so that no text can break
/// the tag structure.
HOST_API void putText(std::string& bytes, int code, std::wstring_view text, const Format& format);
/// As putText, for text that is plain ASCII (names of entities, subclass markers).
HOST_API void putAscii(std::string& bytes, int code, std::string_view text, const Format& format);
/// The shortest text that reads back to the same double, always with a decimal point
/// ("0.0", "1.0e-05"; 8 raw bytes in binary). No DXF reader takes "nan" or "inf": a NaN is
/// written as 0.0, an infinity as the largest double of its sign.
HOST_API void putDouble(std::string& bytes, int code, double value, const Format& format);
/// In binary the value is cut to the width of the code's type.
HOST_API void putInteger(std::string& bytes, int code, std::int64_t value, const Format& format);
HOST_API void putHandle(std::string& bytes, int code, std::uint64_t handle, const Format& format);
/// A binary chunk; more than 127 bytes become several tags of this code.
HOST_API void putBinary(std::string& bytes, int code, std::string_view chunk, const Format& format);
/// One tag of `source` copied into another format, value for value.
HOST_API void putTranscoded(std::string& bytes, const TagView& tag, const Format& source,
                            const Format& target);

}  // namespace quoin::dxf
