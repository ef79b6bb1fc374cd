#include "embedded/dwg/container/Checksum.h"

#include <algorithm>
#include <array>
#include <string>

namespace quoin::dwg::container {
namespace {

/// What one byte does to a reflected checksum of this width, for all bytes.
template <typename Sum>
constexpr std::array<Sum, 256> checksumTable(Sum polynomial) {
  std::array<Sum, 256> table{};
  for (unsigned byte = 0; byte < table.size(); ++byte) {
    auto sum = static_cast<Sum>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      sum = static_cast<Sum>((sum & 1) != 0 ? (sum >> 1) ^ polynomial : sum >> 1);
    }
    table[byte] = sum;
  }
  return table;
}

constexpr auto kCrc16Table = checksumTable<std::uint16_t>(0xA001);
constexpr auto kCrc32Table = checksumTable<std::uint32_t>(0xEDB88320);

constexpr std::uint32_t kPageModulus = 65521;
// So many bytes can be added up before the sums must be reduced to stay below 2^32.
constexpr std::size_t kPageStretch = 5552;

}  // namespace

std::uint16_t crc16(std::uint16_t seed, std::string_view bytes) {
  unsigned sum = seed;
  for (const char c : bytes) {
    sum = (sum >> 8) ^ kCrc16Table[(sum ^ static_cast<unsigned char>(c)) & 0xFF];
  }
  return static_cast<std::uint16_t>(sum);
}

std::uint32_t crc32(std::string_view bytes) {
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char c : bytes) {
    sum = (sum >> 8) ^ kCrc32Table[(sum ^ static_cast<unsigned char>(c)) & 0xFF];
  }
  return ~sum;
}

std::uint32_t pageChecksum(std::uint32_t seed, std::string_view bytes) {
  std::uint32_t plain = seed & 0xFFFF;
  std::uint32_t weighted = seed >> 16;
  while (!bytes.empty()) {
    const std::size_t size = std::min(bytes.size(), kPageStretch);
    for (const char c : bytes.substr(0, size)) {
      plain += static_cast<unsigned char>(c);
      weighted += plain;
    }
    plain %= kPageModulus;
    weighted %= kPageModulus;
    bytes.remove_prefix(size);
  }
  return (weighted << 16) | plain;
}

std::uint32_t codedPageChecksum(std::string_view bytes) {
  // Pairs of bytes from the back to the front, the pairs themselves as they are.
  std::string ordered;
  ordered.reserve(bytes.size());
  for (std::size_t group = 8; group >= 2; group /= 2) {
    for (; bytes.size() >= group; bytes.remove_prefix(group)) {
      for (std::size_t pair = group; pair > 0; pair -= 2) {
        ordered += bytes.substr(pair - 2, 2);
      }
    }
  }
  ordered += bytes;
  const auto size = static_cast<std::uint32_t>(ordered.size());
  return pageChecksum(size * 0x343FD + 0x269EC3, ordered);
}

}  // namespace quoin::dwg::container
