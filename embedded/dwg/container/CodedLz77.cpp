#include "embedded/dwg/container/CodedLz77.h"

#include <array>
#include <cstring>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {
namespace {

// Instructions, by the upper half of their first byte, all of them copies:
//   0    19 to 50 bytes from 1 to 0x1000 back
//   1    3 to 18 bytes from 1 to 0x2000 back
//   2    longer ones from anywhere back
//   3..F so many bytes from 1 to 0x200 back; F at once behind another copy counts as 0
// The last three bits of an instruction's last byte are the number of literals that follow. For 0
// another instruction follows, or with an upper half of 0 a length of literals.
constexpr std::size_t kStretch = 32;

/// Literals are copied in stretches of 32 bytes and a rest; of each its groups of these sizes are
/// taken from the back to the front. By the stretch's size.
constexpr std::array<std::string_view, kStretch + 1> kGroups{
    "",       "1",     "11",    "111",    "4",       "14",     "141",   "1141", "8",
    "18",     "181",   "1181",  "48",     "148",     "1481",   "11481", "88",   "818",
    "1881",   "11188", "488",   "1488",   "11488",   "111488", "888",   "8188", "18188",
    "118188", "4888",  "14888", "114888", "1488811", "8888"};

class Unpacker {
 public:
  Unpacker(std::string_view packed, char* out, std::size_t size)
      : m_packed(packed), m_out(out), m_size(size) {}

  std::size_t run() {
    if (m_packed.size() < 2) {
      return 0;
    }
    unsigned code = next();
    std::size_t count = 0;
    if ((code & 0xF0) == 0x20) {
      next();
      next();
      count = next() & 7;
    }
    while (m_at < m_packed.size()) {
      literals(count != 0 ? count : literalCount(code));
      if (m_at < m_packed.size()) {
        count = copies(code);
      }
    }
    return m_done;
  }

 private:
  unsigned next() {
    if (m_at == m_packed.size()) {
      throw Damage("the packed data ends within an instruction", m_at);
    }
    return static_cast<unsigned char>(m_packed[m_at++]);
  }
  unsigned nextTwo() {
    const unsigned low = next();
    return low | next() << 8;
  }

  std::size_t literalCount(unsigned code) {
    std::size_t count = code + 8;
    if (count == 0x17) {
      unsigned more = next();
      count += more;
      if (more == 0xFF) {
        do {
          more = nextTwo();
          count += more;
        } while (more == 0xFFFF);
      }
    }
    return count;
  }

  void literals(std::size_t count) {
    if (count > m_packed.size() - m_at || count > m_size - m_done) {
      throw Damage("the packed data has more literals than there is room", m_at);
    }
    while (count > 0) {
      const std::size_t stretch = count < kStretch ? count : kStretch;
      std::size_t end = m_at + stretch;
      for (const char group : kGroups[stretch]) {
        const auto size = static_cast<std::size_t>(group - '0');
        end -= size;
        std::memcpy(m_out + m_done, m_packed.data() + end, size);
        m_done += size;
      }
      m_at += stretch;
      count -= stretch;
    }
  }

  /// Copies up to the next literals. Returns how many of these there are, 0 where `code` tells it.
  std::size_t copies(unsigned& code) {
    code = next();
    while (true) {
      copy(code);
      const std::size_t count = code & 7;
      if (count != 0 || m_at == m_packed.size()) {
        return count;
      }
      code = next();
      if (code >> 4 == 0) {
        return 0;
      }
      if (code >> 4 == 0xF) {
        code &= 0xF;
      }
    }
  }

  /// `code` becomes the instruction's last byte.
  void copy(unsigned& code) {
    std::size_t length = code & 0xF;
    std::size_t distance = 0;
    switch (code >> 4) {
      case 0:
        distance = next() + 1;
        code = next();
        length += 0x13 + (code >> 3 & 0x10);
        distance += (code & 0x78) << 5;
        break;
      case 1:
        distance = next() + 1;
        code = next();
        length += 3;
        distance += (code & 0xF8) << 5;
        break;
      case 2:
        length = longCopy(code, distance);
        break;
      default:
        length = code >> 4;
        distance = (code & 0xF) + 1;
        code = next();
        distance += (code & 0xF8) << 1;
        break;
    }
    copyBack(length, distance);
  }

  std::size_t longCopy(unsigned& code, std::size_t& distance) {
    std::size_t length = code & 7;
    const bool isLonger = (code & 8) != 0;
    distance = nextTwo();
    if (isLonger) {
      ++distance;
      length += next() << 3;
    }
    code = next();
    return isLonger ? length + ((code & 0xF8) << 8) + 0x100 : length + (code & 0xF8);
  }

  void copyBack(std::size_t length, std::size_t distance) {
    if (distance == 0 || distance > m_done || length > m_size - m_done) {
      throw Damage("the packed data copies from in front of its beginning or behind its end", m_at);
    }
    char* to = m_out + m_done;
    m_done += length;
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

}  // namespace

std::size_t unpackCodedLz77(std::string_view packed, char* out, std::size_t size) {
  return Unpacker(packed, out, size).run();
}

}  // namespace quoin::dwg::container
