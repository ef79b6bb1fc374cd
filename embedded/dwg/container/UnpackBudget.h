// Memory that the unpacking of one file may take: real drawings stay far below, and what claims
// more has been made to fill memory.
#pragma once

#include <cstddef>
#include <cstdint>

#include "embedded/dwg/container/Bytes.h"

namespace quoin::dwg::container {

class UnpackBudget {
 public:
  explicit UnpackBudget(std::size_t fileSize) : m_left(kMostPerByte * fileSize + kAlways) {}

  /// Fails: throws Damage.
  void take(std::uint64_t size, std::uint64_t place) {
    if (size > m_left) {
      throw Damage("the file claims to unpack to far more than files of its size do", place);
    }
    m_left -= size;
  }
  std::uint64_t left() const { return m_left; }

 private:
  static constexpr std::uint64_t kMostPerByte = 32;
  static constexpr std::uint64_t kAlways = 1 << 20;

  std::uint64_t m_left;
};

}  // namespace quoin::dwg::container
