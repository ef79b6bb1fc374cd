#include "embedded/dwg/container/SecondHeader.h"

#include "embedded/dwg/container/Bytes.h"
#include "embedded/dwg/container/Checksum.h"

namespace quoin::dwg::container {
namespace {

using namespace std::string_view_literals;

constexpr auto kBeginMark = "\xD4\x7B\x21\xCE\x28\x93\x9F\xBF\x53\x24\x40\x09\x12\x3C\xAA\x01"sv;
constexpr auto kEndMark = "\x2B\x84\xDE\x31\xD7\x6C\x60\x40\xAC\xDB\xBF\xF6\xED\xC3\x55\xFE"sv;
constexpr std::size_t kHeadSize = 13;

/// Bits, the highest of each byte first.
class Bits {
 public:
  explicit Bits(std::string_view bytes) : m_bytes(bytes) {}

  unsigned take(unsigned count) {
    unsigned bits = 0;
    for (; count > 0; --count, ++m_at) {
      const auto byte = numberAt<std::uint8_t>(m_bytes, m_at / 8);
      bits = bits << 1 | (byte >> (7 - m_at % 8) & 1U);
    }
    return bits;
  }
  std::string bytes(std::size_t count) {
    std::string taken;
    for (; count > 0; --count) {
      taken.push_back(static_cast<char>(take(8)));
    }
    return taken;
  }
  std::uint8_t byte() { return static_cast<std::uint8_t>(take(8)); }
  std::uint16_t number16() { return numberAt<std::uint16_t>(bytes(2), 0); }
  /// BS: 16 bits, 8 bits, 0 or 256.
  std::uint16_t bitShort() {
    switch (take(2)) {
      case 0:
        return number16();
      case 1:
        return byte();
      case 2:
        return 0;
      default:
        return 256;
    }
  }
  /// BL: 32 bits, 8 bits or 0.
  std::uint32_t bitLong() {
    const unsigned code = take(2);
    return code == 0 ? numberAt<std::uint32_t>(bytes(4), 0) : code == 1 ? byte() : 0;
  }
  /// Whole bytes up to here, a begun one counted.
  std::size_t size() const { return (m_at + 7) / 8; }

 private:
  std::string_view m_bytes;
  std::size_t m_at = 0;
};

class BitPutter {
 public:
  void put(unsigned bits, unsigned count) {
    for (; count > 0; --count, ++m_at) {
      if (m_at % 8 == 0) {
        m_bytes.push_back(0);
      }
      const unsigned bit = bits >> (count - 1) & 1U;
      m_bytes.back() =
          static_cast<char>(static_cast<unsigned char>(m_bytes.back()) | bit << (7 - m_at % 8));
    }
  }
  void bytes(std::string_view all) {
    for (const char c : all) {
      put(static_cast<unsigned char>(c), 8);
    }
  }
  template <typename Number>
  void number(Number value) {
    std::string spelled;
    appendNumber(spelled, value);
    bytes(spelled);
  }
  void bitShort(std::uint16_t value) {
    const unsigned code = value == 0 ? 2 : value == 256 ? 3 : value < 256 ? 1 : 0;
    put(code, 2);
    if (code == 0) {
      number(value);
    } else if (code == 1) {
      put(value, 8);
    }
  }
  void bitLong(std::uint32_t value) {
    const unsigned code = value == 0 ? 2 : value < 256 ? 1 : 0;
    put(code, 2);
    if (code == 0) {
      number(value);
    } else if (code == 1) {
      put(value, 8);
    }
  }
  const std::string& all() const { return m_bytes; }

 private:
  std::string m_bytes;
  std::size_t m_at = 0;
};

void readSections(Bits& bits, SecondHeader& header) {
  for (std::uint32_t left = bits.bitLong(); left > 0; --left) {
    Locator& section = header.sections.emplace_back();
    section.number = bits.byte();
    section.place = bits.bitLong();
    section.size = bits.bitLong();
  }
}

void readHandles(Bits& bits, SecondHeader& header) {
  for (std::uint16_t left = bits.bitShort(); left > 0; --left) {
    const std::size_t size = bits.byte();
    SecondHeader::Handle& handle = header.handles.emplace_back();
    handle.number = bits.byte();
    handle.bytes = bits.bytes(size);
  }
}

}  // namespace

std::optional<std::size_t> findSecondHeader(std::string_view file) {
  const std::size_t place = file.rfind(kBeginMark);
  return place == std::string_view::npos ? std::nullopt : std::optional(place);
}

SecondHeader readSecondHeader(std::string_view file, std::size_t place) {
  SecondHeader header;
  const std::size_t begin = place + kBeginMark.size();
  const auto size = numberAt<std::uint32_t>(file, begin);
  const std::string_view counted = slice(file, begin, size);
  if (size < 6 || slice(file, begin + size, kEndMark.size()) != kEndMark) {
    throw Damage("the mark of its end is missing", place);
  }
  Bits bits(counted.substr(sizeof(size)));
  if (bits.bitLong() != place) {
    throw Damage("it is not where it says", place);
  }
  header.head = bits.bytes(kHeadSize);
  header.release = bits.bitShort();
  header.codePage = bits.number16();
  readSections(bits, header);
  readHandles(bits, header);
  const std::size_t sumPlace = sizeof(size) + bits.size();
  if (numberAt<std::uint16_t>(counted, sumPlace) !=
      crc16(kCrc16Seed, counted.substr(0, sumPlace))) {
    throw Damage("its checksum is wrong", place);
  }
  header.rest = counted.substr(sumPlace + 2);
  header.size = kBeginMark.size() + size + kEndMark.size();
  return header;
}

std::string secondHeaderBytes(const SecondHeader& header, std::uint32_t place) {
  BitPutter bits;
  bits.bitLong(place);
  bits.bytes(header.head);
  bits.bitShort(header.release);
  bits.number(header.codePage);
  bits.bitLong(static_cast<std::uint32_t>(header.sections.size()));
  for (const Locator& section : header.sections) {
    bits.put(section.number, 8);
    bits.bitLong(section.place);
    bits.bitLong(section.size);
  }
  bits.bitShort(static_cast<std::uint16_t>(header.handles.size()));
  for (const SecondHeader::Handle& handle : header.handles) {
    bits.put(static_cast<unsigned>(handle.bytes.size()), 8);
    bits.put(handle.number, 8);
    bits.bytes(handle.bytes);
  }
  std::string counted;
  appendNumber(counted, static_cast<std::uint32_t>(sizeof(std::uint32_t) + bits.all().size() +
                                                   sizeof(std::uint16_t) + header.rest.size()));
  counted += bits.all();
  appendNumber(counted, crc16(kCrc16Seed, counted));
  return std::string(kBeginMark) + counted + header.rest + std::string(kEndMark);
}

}  // namespace quoin::dwg::container
