#include "embedded/dwg/records/BitWriter.h"

#include <bit>

namespace quoin::dwg {

void BitWriter::bits(std::uint32_t value, unsigned count) {
  while (count != 0) {
    const unsigned used = static_cast<unsigned>(m_size % 8);
    if (used == 0) {
      m_bytes += '\0';
    }
    const unsigned taken = count < 8 - used ? count : 8 - used;
    const std::uint32_t part = value >> (count - taken) & ((1U << taken) - 1);
    auto& last = m_bytes.back();
    last = static_cast<char>(static_cast<std::uint8_t>(last) | part << (8 - used - taken));
    count -= taken;
    m_size += taken;
  }
}

void BitWriter::rawShort(std::uint16_t value) {
  rawChar(static_cast<std::uint8_t>(value));
  rawChar(static_cast<std::uint8_t>(value >> 8));
}

void BitWriter::rawLong(std::uint32_t value) {
  rawShort(static_cast<std::uint16_t>(value));
  rawShort(static_cast<std::uint16_t>(value >> 16));
}

void BitWriter::rawLongLong(std::uint64_t value) {
  rawLong(static_cast<std::uint32_t>(value));
  rawLong(static_cast<std::uint32_t>(value >> 32));
}

void BitWriter::rawDouble(double value) {
  rawLongLong(std::bit_cast<std::uint64_t>(value));
}

void BitWriter::bitShort(std::uint16_t value, int form) {
  const bool fits = form == 0 || (form == 1 && value < 256) || (form == 2 && value == 0) ||
                    (form == 3 && value == 256);
  if (!fits) {
    form = value == 0 ? 2 : value == 256 ? 3 : value < 256 ? 1 : 0;
  }
  bits(static_cast<std::uint32_t>(form), 2);
  if (form == 0) {
    rawShort(value);
  } else if (form == 1) {
    rawChar(static_cast<std::uint8_t>(value));
  }
}

void BitWriter::bitLong(std::uint32_t value, int form) {
  const bool fits = form == 0 || (form == 1 && value < 256) || (form == 2 && value == 0);
  if (!fits) {
    form = value == 0 ? 2 : value < 256 ? 1 : 0;
  }
  bits(static_cast<std::uint32_t>(form), 2);
  if (form == 0) {
    rawLong(value);
  } else if (form == 1) {
    rawChar(static_cast<std::uint8_t>(value));
  }
}

void BitWriter::bitLongLong(std::uint64_t value) {
  const auto count = static_cast<unsigned>((std::bit_width(value) + 7) / 8);
  bits(count, 3);
  for (unsigned i = 0; i < count; ++i) {
    rawChar(static_cast<std::uint8_t>(value >> (8 * i)));
  }
}

void BitWriter::bitDouble(double value, int form) {
  // -0.0 is neither of the short forms.
  const auto pattern = std::bit_cast<std::uint64_t>(value);
  const bool isOne = pattern == std::bit_cast<std::uint64_t>(1.0);
  const bool fits = form == 0 || (form == 1 && isOne) || (form == 2 && pattern == 0);
  if (!fits) {
    form = isOne ? 1 : pattern == 0 ? 2 : 0;
  }
  bits(static_cast<std::uint32_t>(form), 2);
  if (form == 0) {
    rawDouble(value);
  }
}

void BitWriter::defaultDouble(double value, double base, int form) {
  const auto pattern = std::bit_cast<std::uint64_t>(value);
  const std::uint64_t difference = pattern ^ std::bit_cast<std::uint64_t>(base);
  const bool fits = form == 3 || (form == 0 && difference == 0) ||
                    (form == 1 && difference >> 32 == 0) || (form == 2 && difference >> 48 == 0);
  if (!fits) {
    form = difference == 0 ? 0 : difference >> 32 == 0 ? 1 : difference >> 48 == 0 ? 2 : 3;
  }
  bits(static_cast<std::uint32_t>(form), 2);
  switch (form) {
    case 1:
      rawLong(static_cast<std::uint32_t>(pattern));
      break;
    case 2:
      rawShort(static_cast<std::uint16_t>(pattern >> 32));
      rawLong(static_cast<std::uint32_t>(pattern));
      break;
    case 3:
      rawDouble(value);
      break;
    default:
      break;
  }
}

void BitWriter::handle(const HandleReference& reference) {
  bits(reference.code, 4);
  bits(reference.bytes, 4);
  for (unsigned i = reference.bytes; i-- != 0;) {
    // A damaged reference may claim more bytes than a handle has.
    const bool isIn = i < sizeof reference.offset;
    rawChar(isIn ? static_cast<std::uint8_t>(reference.offset >> (8 * i)) : std::uint8_t{0});
  }
}

void BitWriter::objectType(std::uint16_t type) {
  constexpr std::uint16_t kFirstOfSecondRange = 0x1F0;
  if (type < 256) {
    bits(0, 2);
    rawChar(static_cast<std::uint8_t>(type));
  } else if (type >= kFirstOfSecondRange && type < kFirstOfSecondRange + 256) {
    bits(1, 2);
    rawChar(static_cast<std::uint8_t>(type - kFirstOfSecondRange));
  } else {
    bits(2, 2);
    rawShort(type);
  }
}

void BitWriter::append(const BitWriter& other) {
  std::size_t left = other.m_size;
  for (const char byte : other.m_bytes) {
    const unsigned count = left < 8 ? static_cast<unsigned>(left) : 8;
    bits(static_cast<std::uint8_t>(byte) >> (8 - count), count);
    left -= count;
  }
}

void BitWriter::replaceLong(std::size_t position, std::uint32_t value) {
  for (unsigned i = 0; i < 32; ++i) {
    // Bit i of the stream belongs to byte i / 8 of the value, its highest bit first.
    const bool set = (value >> (i / 8 * 8 + (7 - i % 8)) & 1) != 0;
    const std::size_t at = position + i;
    const auto mask = static_cast<std::uint8_t>(0x80U >> (at % 8));
    auto byte = static_cast<std::uint8_t>(m_bytes[at / 8]);
    byte = static_cast<std::uint8_t>(set ? byte | mask : byte & ~mask);
    m_bytes[at / 8] = static_cast<char>(byte);
  }
}

}  // namespace quoin::dwg
