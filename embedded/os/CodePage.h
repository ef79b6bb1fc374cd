// The code pages that drawings before R2007 keep their text in, as tables: one or two bytes
// a character. The system's converter is asked once, when a code page is first used; from
// then on decoding and encoding are plain look-ups, the same on every thread.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi.h"

namespace quoin::os {

class HOST_API CodePage {
 public:
  /// The code page that a drawing names: "ANSI_1252", "ANSI_936", "dos850", "ISO8859-1",
  /// "MACINTOSH", "GB2312", "UTF-8", ... in any case; ANSI_1252 for a name nobody knows.
  static const CodePage& named(std::string_view name);
  /// Whether named() knows the name.
  static bool isKnown(std::string_view name);

  /// Text of these bytes. Bytes below 128 are ASCII in every code page, but for the second half of
  /// a pair that is a character; bytes that mean nothing become U+DC80 + (byte - 0x80), one by
  /// one. A first half in front of a byte from 128 on that forms no character with it takes that
  /// byte along; in front of an ASCII byte, and at the end, it stands alone.
  std::wstring decode(std::string_view bytes) const;
  /// Appends the bytes of one character (U+DC80..U+DCFF: the byte it stands for).
  /// Fails: false, nothing appended, when the code page lacks the character.
  /// Laws: (1) decode, then encode gives the same bytes, but for the few characters that a
  ///       double-byte code page holds twice; these come back in the converter's preferred
  ///       spelling. (2) decode(encode(decode(bytes))) == decode(bytes).
  bool encode(char32_t character, std::string& bytes) const;
  /// The character of one double-byte code (0xB0A1); 0 when there is none.
  char32_t characterOf(std::uint16_t doubleByte) const;

 private:
  explicit CodePage(const char* converterName);
  static const CodePage& shared(const std::string& converterName);
  void addDouble(unsigned lead, unsigned trail, char32_t character, std::uint16_t preferred);

  bool m_isUtf8 = false;
  std::array<std::uint16_t, 128> m_single{};  // of the bytes from 128 on; 0: none
  std::array<bool, 128> m_isLead{};           // of the bytes from 128 on
  std::vector<std::uint16_t> m_double;        // [(lead - 128) * 256 + trail]; 0: none
  std::vector<std::uint16_t> m_bytes;         // of a character: its byte or two; 0: none
};

}  // namespace quoin::os
