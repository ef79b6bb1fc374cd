// Reads the bit codes that a DWG record is made of, most significant bit first. Reading past the
// end gives zeros and marks the reader as failed; nothing throws.
//
// Source: Open Design Specification for .dwg files, "Bit codes and data definitions".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg {

/// A number together with the two bits that say how it is stored.
template <typename Number>
struct Coded {
  Number value{};
  std::uint8_t form = 0;
};

/// A reference to another object: how it refers, in how many bytes, and what it says.
struct HOST_API HandleReference {
  std::uint8_t code = 0;  // 2 to 5: absolute; 6, 8: own handle plus, minus one; 10, 12: plus, minus
  std::uint8_t bytes = 0;  // of `offset` in the record
  std::uint64_t offset = 0;

  /// The handle that is meant, for a reference in the record with this handle.
  std::uint64_t resolved(std::uint64_t own) const;
};

class HOST_API BitReader {
 public:
  BitReader() = default;
  /// Reads bits [begin, end) of these bytes.
  BitReader(std::string_view bytes, std::size_t begin, std::size_t end);

  std::size_t position() const { return m_position; }
  std::size_t end() const { return m_end; }
  bool isAtEnd() const { return m_position >= m_end; }
  /// Whether something was read that is not there.
  bool hasFailed() const { return m_hasFailed; }

  bool bit() { return bits(1) != 0; }
  /// Up to 32 bits as a number.
  std::uint32_t bits(unsigned count);
  std::uint8_t rawChar() { return static_cast<std::uint8_t>(bits(8)); }
  std::uint16_t rawShort();
  std::uint32_t rawLong();
  std::uint64_t rawLongLong();
  double rawDouble();
  Coded<std::uint16_t> bitShort();
  Coded<std::uint32_t> bitLong();
  std::uint64_t bitLongLong();
  Coded<double> bitDouble();
  /// A double as its difference to `base`.
  Coded<double> defaultDouble(double base);
  HandleReference handle();
  /// An object type: two bits and one or two bytes, from R2010 on.
  std::uint16_t objectType();
  void skip(std::size_t count);

 private:
  std::string_view m_bytes;
  std::size_t m_position = 0;
  std::size_t m_end = 0;
  bool m_hasFailed = false;
};

}  // namespace quoin::dwg
