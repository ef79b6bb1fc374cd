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
TagType tagType(int code);

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
/// Fails: a tag that is cut short or whose group code is no number throws FileError with
/// the offset in the span (the caller adds file and line).
class TagCursor {
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

/// Values of a tag. A value that is no number of that type reads as 0 (a drawing with one
/// bad number stays readable; the audit of a file is not the reader's business).
double doubleOf(const TagView& tag, const Format& format);
std::int64_t integerOf(const TagView& tag, const Format& format);
std::uint64_t handleOf(const TagView& tag, const Format& format);
/// Text decoded from the file's code page or UTF-8, with \U+XXXX and \M+nXXXX resolved.
/// Bytes that the code page does not know become U+DC80 + byte, which encodes back to
/// the same byte.
std::wstring textOf(const TagView& tag, const Format& format);

/// Appends one tag in `format` to `bytes`.
void putText(std::string& bytes, int code, std::wstring_view text, const Format& format);
/// As putText, for text that is plain ASCII (names of entities, subclass markers).
void putAscii(std::string& bytes, int code, std::string_view text, const Format& format);
/// The shortest text that reads back to the same double (8 raw bytes in binary).
void putDouble(std::string& bytes, int code, double value, const Format& format);
void putInteger(std::string& bytes, int code, std::int64_t value, const Format& format);
void putHandle(std::string& bytes, int code, std::uint64_t handle, const Format& format);
/// One tag of `source` copied into another format, value for value.
void putTranscoded(std::string& bytes, const TagView& tag, const Format& source,
                   const Format& target);

}  // namespace quoin::dxf
