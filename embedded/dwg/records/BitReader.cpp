#include "embedded/dwg/records/BitReader.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace quoin::dwg {

std::uint64_t HandleReference::resolved(std::uint64_t own) const {
  switch (code) {
    case 6:
      return own + 1;
    case 8:
      return own - 1;
    case 10:
      return own + offset;
    case 12:
      return own - offset;
    default:
      return offset;
  }
}

BitReader::BitReader(std::string_view bytes, std::size_t begin, std::size_t end)
    : m_bytes(bytes), m_position(begin), m_end(std::min(end, bytes.size() * 8)) {
  if (begin > m_end) {
    m_position = m_end;
    m_hasFailed = true;
  }
}

std::uint32_t BitReader::bits(unsigned count) {
  if (m_end - m_position < count) {
    m_position = m_end;
    m_hasFailed = true;
    return 0;
  }
  // The bits stand in at most five bytes.
  const std::size_t first = m_position / 8;
  const unsigned shift = static_cast<unsigned>(m_position % 8);
  const std::size_t bytes = (shift + count + 7) / 8;
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes; ++i) {
    value = value << 8 | static_cast<std::uint8_t>(m_bytes[first + i]);
  }
  m_position += count;
  const unsigned below = static_cast<unsigned>(bytes * 8) - shift - count;
  return static_cast<std::uint32_t>(value >> below & ((std::uint64_t{1} << count) - 1));
}

std::uint16_t BitReader::rawShort() {
  const std::uint32_t bigEndian = bits(16);
  return static_cast<std::uint16_t>(bigEndian >> 8 | (bigEndian & 0xFF) << 8);
}

std::uint32_t BitReader::rawLong() {
  const std::uint32_t low = rawShort();
  return low | static_cast<std::uint32_t>(rawShort()) << 16;
}

std::uint64_t BitReader::rawLongLong() {
  const std::uint64_t low = rawLong();
  return low | static_cast<std::uint64_t>(rawLong()) << 32;
}

double BitReader::rawDouble() {
  return std::bit_cast<double>(rawLongLong());
}

Coded<std::uint16_t> BitReader::bitShort() {
  const auto form = static_cast<std::uint8_t>(bits(2));
  switch (form) {
    case 0:
      return {rawShort(), form};
    case 1:
      return {rawChar(), form};
    case 2:
      return {0, form};
    default:
      return {256, form};
  }
}

Coded<std::uint32_t> BitReader::bitLong() {
  const auto form = static_cast<std::uint8_t>(bits(2));
  switch (form) {
    case 0:
      return {rawLong(), form};
    case 1:
      return {rawChar(), form};
    case 2:
      return {0, form};
    default:
      m_hasFailed = true;  // no such form
      return {0, form};
  }
}

std::uint64_t BitReader::bitLongLong() {
  const unsigned count = bits(3);
  std::uint64_t value = 0;
  for (unsigned i = 0; i < count; ++i) {
    value |= static_cast<std::uint64_t>(rawChar()) << (8 * i);
  }
  return value;
}

Coded<double> BitReader::bitDouble() {
  const auto form = static_cast<std::uint8_t>(bits(2));
  switch (form) {
    case 0:
      return {rawDouble(), form};
    case 1:
      return {1.0, form};
    case 2:
      return {0.0, form};
    default:
      m_hasFailed = true;  // no such form
      return {0.0, form};
  }
}

Coded<double> BitReader::defaultDouble(double base) {
  const auto form = static_cast<std::uint8_t>(bits(2));
  auto value = std::bit_cast<std::uint64_t>(base);
  switch (form) {
    case 0:
      return {base, form};
    case 1:
      value = (value & ~std::uint64_t{0xFFFFFFFF}) | rawLong();
      return {std::bit_cast<double>(value), form};
    case 2: {
      const std::uint64_t middle = rawShort();
      const std::uint64_t low = rawLong();
      value = (value & ~std::uint64_t{0xFFFFFFFFFFFF}) | middle << 32 | low;
      return {std::bit_cast<double>(value), form};
    }
    default:
      return {rawDouble(), form};
  }
}

HandleReference BitReader::handle() {
  HandleReference reference;
  reference.code = static_cast<std::uint8_t>(bits(4));
  reference.bytes = static_cast<std::uint8_t>(bits(4));
  if (reference.bytes > sizeof reference.offset) {
    m_hasFailed = true;
    return reference;
  }
  for (unsigned i = 0; i < reference.bytes; ++i) {
    reference.offset = reference.offset << 8 | rawChar();
  }
  return reference;
}

std::uint16_t BitReader::objectType() {
  constexpr std::uint16_t kFirstOfSecondRange = 0x1F0;
  switch (bits(2)) {
    case 0:
      return rawChar();
    case 1:
      return static_cast<std::uint16_t>(rawChar() + kFirstOfSecondRange);
    default:
      return rawShort();
  }
}

void BitReader::skip(std::size_t count) {
  if (m_end - m_position < count) {
    m_position = m_end;
    m_hasFailed = true;
    return;
  }
  m_position += count;
}

}  // namespace quoin::dwg
