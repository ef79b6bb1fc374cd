// Little-endian numbers in bytes that nobody vouches for: every access is checked, and a failure
// says where. All places are offsets in the bytes that are given, not in the file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

namespace quoin::dwg::container {

/// Bytes that are not what they should be; `place` counts in the bytes that were read.
class Damage : public std::runtime_error {
 public:
  explicit Damage(const std::string& cause, std::uint64_t where = 0)
      : std::runtime_error(cause), place(where) {}

  std::uint64_t place;
};

/// `size` bytes from `place` on. Fails: throws Damage where there are not so many.
inline std::string_view slice(std::string_view bytes, std::uint64_t place, std::uint64_t size) {
  if (place > bytes.size() || size > bytes.size() - place) {
    throw Damage("it ends before its data does", place);
  }
  return bytes.substr(static_cast<std::size_t>(place), static_cast<std::size_t>(size));
}

/// The number of this type at `place`. Fails: throws Damage.
template <typename Number>
Number numberAt(std::string_view bytes, std::uint64_t place) {
  const std::string_view spelled = slice(bytes, place, sizeof(Number));
  std::make_unsigned_t<Number> number = 0;
  for (std::size_t i = sizeof(Number); i-- > 0;) {
    number = static_cast<std::make_unsigned_t<Number>>((std::uint64_t{number} << 8) |
                                                       static_cast<unsigned char>(spelled[i]));
  }
  return static_cast<Number>(number);
}

template <typename Number>
void appendNumber(std::string& bytes, Number number) {
  auto rest = static_cast<std::uint64_t>(number);
  for (std::size_t i = 0; i < sizeof(Number); ++i, rest >>= 8) {
    bytes.push_back(static_cast<char>(rest & 0xFF));
  }
}

/// Writes a number over the bytes at `place`, which must exist.
template <typename Number>
void replaceNumber(std::string& bytes, std::size_t place, Number number) {
  std::string spelled;
  appendNumber(spelled, number);
  bytes.replace(place, sizeof(Number), spelled);
}

/// Reads numbers one behind the other.
class ByteReader {
 public:
  explicit ByteReader(std::string_view bytes, std::uint64_t place = 0)
      : m_bytes(bytes), m_place(place) {}

  template <typename Number>
  Number next() {
    const auto number = numberAt<Number>(m_bytes, m_place);
    m_place += sizeof(Number);
    return number;
  }
  std::string_view take(std::uint64_t size) {
    const std::string_view taken = slice(m_bytes, m_place, size);
    m_place += size;
    return taken;
  }
  std::uint64_t place() const { return m_place; }
  bool isAtEnd() const { return m_place >= m_bytes.size(); }

 private:
  std::string_view m_bytes;
  std::uint64_t m_place;
};

}  // namespace quoin::dwg::container
