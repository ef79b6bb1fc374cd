// Writes the bit codes that BitReader reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "embedded/dwg/records/BitReader.h"

namespace quoin::dwg {

class HOST_API BitWriter {
 public:
  std::size_t size() const { return m_size; }
  /// Whole bytes; the last one is filled up with zeros.
  const std::string& bytes() const { return m_bytes; }

  void bit(bool value) { bits(value ? 1 : 0, 1); }
  /// The lower bits of a number, up to 32.
  void bits(std::uint32_t value, unsigned count);
  void rawChar(std::uint8_t value) { bits(value, 8); }
  void rawShort(std::uint16_t value);
  void rawLong(std::uint32_t value);
  void rawLongLong(std::uint64_t value);
  void rawDouble(double value);
  /// In the wanted form where that can hold the value, else in the shortest.
  void bitShort(std::uint16_t value, int form = kShortest);
  void bitLong(std::uint32_t value, int form = kShortest);
  void bitLongLong(std::uint64_t value);
  void bitDouble(double value, int form = kShortest);
  void defaultDouble(double value, double base, int form = kShortest);
  void handle(const HandleReference& reference);
  void objectType(std::uint16_t type);
  void append(const BitWriter& other);
  /// Puts a raw long where one was written before.
  void replaceLong(std::size_t position, std::uint32_t value);

  static constexpr int kShortest = -1;

 private:
  std::string m_bytes;
  std::size_t m_size = 0;
};

}  // namespace quoin::dwg
