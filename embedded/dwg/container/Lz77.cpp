#include "embedded/dwg/container/Lz77.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

// Instructions, by their first byte:
//   00..0F    literals: 3 + the byte, or 18 + what follows for 00
//   11        the end
//   10..1F    a copy from 0x4000 to 0xBFFF back: bits 0 to 2 the length, bit 3 of the distance
//   20..3F    a copy from 1 to 0x4000 back: bits 0 to 4 the length
//   40..FF    a copy of 3 to 14 bytes from 1 to 0x400 back
// The last two bits of a copy's distance are the number of literals that follow, 0 for a copy or
// an instruction for literals. A length of 0 goes on in further bytes: each 00 adds 255, the first
// other byte ends it.
constexpr unsigned kEnd = 0x11;
constexpr std::size_t kLeastLiterals = 4;  // fewer have room in the copy in front alone
constexpr std::size_t kShortMost = 14;
constexpr std::size_t kShortDistance = 0x400;
constexpr std::size_t kMiddleDistance = 0x4000;
constexpr std::size_t kFarDistance = 0xBFFF;

class Unpacker {
 public:
  Unpacker(std::string_view packed, char* out, std::size_t size)
      : m_packed(packed), m_out(out), m_size(size) {}

  std::size_t run() {
    unsigned code = next();
    if (code < 0x10) {
      literals(literalCount(code));
      code = next();
    }
    while (code != kEnd) {
      const unsigned follow = copyInstruction(code) & 3;
      if (follow != 0) {
        literals(follow);
        code = next();
        continue;
      }
      code = next();
      if (code < 0x10) {
        literals(literalCount(code));
        code = next();
      }
    }
    return m_done;
  }

 private:
  unsigned next() {
    if (m_at == m_packed.size()) {
      throw Damage("the packed data has no end", m_at);
    }
    return static_cast<unsigned char>(m_packed[m_at++]);
  }

  /// A length that began with 0 bits: what further bytes add to it.
  std::size_t longLength() {
    std::size_t length = 0;
    unsigned byte = next();
    for (; byte == 0; byte = next()) {
      length += kMostUnpackedPerByte;
    }
    return length + byte;
  }

  std::size_t literalCount(unsigned code) { return 3 + (code != 0 ? code : 0xF + longLength()); }

  /// Returns the byte whose last two bits count the literals that follow.
  unsigned copyInstruction(unsigned code) {
    if (code < 0x10) {
      throw Damage("the packed data has literals where it cannot", m_at - 1);
    }
    if (code >= 0x40) {
      copy((code >> 4) - 1, (next() << 2 | (code >> 2 & 3)) + 1);
      return code;
    }
    const bool isFar = code < 0x20;
    const unsigned mask = isFar ? 7 : 0x1F;
    const std::size_t length = 2 + ((code & mask) != 0 ? code & mask : mask + longLength());
    const unsigned low = next();
    const std::size_t distance = next() << 6 | low >> 2;
    copy(length, isFar ? (distance | (code & 8) << 11) + kMiddleDistance : distance + 1);
    return low;
  }

  void literals(std::size_t count) {
    if (count > m_packed.size() - m_at || count > m_size - m_done) {
      throw Damage("the packed data has more literals than there is room", m_at);
    }
    std::memcpy(m_out + m_done, m_packed.data() + m_at, count);
    m_at += count;
    m_done += count;
  }

  void copy(std::size_t length, std::size_t distance) {
    if (distance > m_done || length > m_size - m_done) {
      throw Damage("the packed data copies from in front of its beginning or behind its end", m_at);
    }
    char* to = m_out + m_done;
    m_done += length;
    if (distance >= length) {
      std::memcpy(to, to - distance, length);
      return;
    }
    // The copied bytes run into themselves: that is how repetitions are packed.
    for (const char* from = to - distance; length > 0; --length) {
      *to++ = *from++;
    }
  }

  std::string_view m_packed;
  char* m_out;
  std::size_t m_size;
  std::size_t m_at = 0;
  std::size_t m_done = 0;
};

class Packer {
 public:
  explicit Packer(std::string_view bytes) : m_bytes(bytes), m_last(kSlots, kNowhere) {
    m_packed.reserve(bytes.size() / 2);
  }

  std::string run() {
    std::size_t at = kLeastLiterals;  // the beginning must be literals, and so many of them
    for (std::size_t i = 0; i + kProbe <= m_bytes.size() && i < at; ++i) {
      remember(i);
    }
    while (at + kProbe <= m_bytes.size()) {
      const std::size_t from = remember(at);
      const std::size_t length = from == kNowhere ? 0 : matchLength(from, at);
      if (length < kProbe) {
        ++at;
        continue;
      }
      putCopy(at, at - from, length);
      const std::size_t end = std::min(at + length, m_bytes.size() - kProbe + 1);
      for (std::size_t i = at + 1; i < end; ++i) {
        remember(i);
      }
      at += length;
    }
    putLiterals(m_bytes.size());
    // The two bytes behind the end are those of a distance of 0, which files have.
    m_packed.append({static_cast<char>(kEnd), 0, 0});
    return std::move(m_packed);
  }

 private:
  static constexpr std::size_t kProbe = 4;  // shorter copies save next to nothing
  static constexpr std::size_t kSlots = std::size_t{1} << 14;
  static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

  /// Enters the place; returns the last one before it that may begin alike and is near enough.
  std::size_t remember(std::size_t at) {
    std::uint32_t probe = 0;
    std::memcpy(&probe, m_bytes.data() + at, kProbe);
    std::size_t& slot = m_last[probe * 2654435761U >> 18];
    const std::size_t before = slot;
    slot = at;
    return before == kNowhere || at - before > kFarDistance ? kNowhere : before;
  }

  std::size_t matchLength(std::size_t from, std::size_t at) const {
    std::size_t length = 0;
    while (at + length < m_bytes.size() && m_bytes[from + length] == m_bytes[at + length]) {
      ++length;
    }
    return length;
  }

  void put(std::size_t byte) { m_packed.push_back(static_cast<char>(byte)); }

  void putLongLength(std::size_t length) {
    for (; length > kMostUnpackedPerByte; length -= kMostUnpackedPerByte) {
      put(0);
    }
    put(length);
  }

  /// The literals from the last copy's end up to `end`. Those that have room in the copy in front
  /// are told of in its last bits.
  void putLiterals(std::size_t end) {
    const std::size_t count = end - m_written;
    if (count >= kLeastLiterals) {
      if (count <= 3 + 0xF) {
        put(count - 3);
      } else {
        put(0);
        putLongLength(count - 3 - 0xF);
      }
    } else if (count > 0) {
      m_packed[m_follow] = static_cast<char>(m_packed[m_follow] | static_cast<char>(count));
    }
    m_packed.append(m_bytes.substr(m_written, count));
    m_written = end;
  }

  void putCopy(std::size_t at, std::size_t distance, std::size_t length) {
    putLiterals(at);
    m_written = at + length;
    if (distance <= kShortDistance && length <= kShortMost) {
      m_follow = m_packed.size();
      put((length + 1) << 4 | ((distance - 1) & 3) << 2);
      put((distance - 1) >> 2);
      return;
    }
    const bool isFar = distance > kMiddleDistance;
    const std::size_t rest = isFar ? distance - kMiddleDistance : distance - 1;
    const std::size_t mask = isFar ? 7 : 0x1F;
    const std::size_t code = isFar ? 0x10 | (rest >> 11 & 8) : 0x20;
    if (length - 2 <= mask) {
      put(code | (length - 2));
    } else {
      put(code);
      putLongLength(length - 2 - mask);
    }
    m_follow = m_packed.size();
    put((rest & 0x3F) << 2);
    put(rest >> 6 & 0xFF);
  }

  std::string_view m_bytes;
  std::string m_packed;
  std::vector<std::size_t> m_last;  // by hash: the last place with such bytes
  std::size_t m_written = 0;        // up to here the bytes are packed
  std::size_t m_follow = 0;         // where the last copy counts the literals behind it
};

}  // namespace

std::size_t unpackLz77(std::string_view packed, char* out, std::size_t size) {
  return Unpacker(packed, out, size).run();
}

std::string packLz77(std::string_view bytes) {
  return Packer(bytes).run();
}

}  // namespace quoin::dwg::container
