// The checksums of DWG files (Open Design Specification for .dwg files, chapter 2, "Bit codes and
// data definitions", and chapter 4, "R2004 DWG file format organization").
#pragma once

#include <cstdint>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

/// Where the checksums of records, maps and headers begin. (The description gives the header of
/// R13 to R2000 as begun with 0 and combined with a constant for its number of sections; that is
/// the same.)
constexpr std::uint16_t kCrc16Seed = 0xC0C1;

/// 16 bits, reflected polynomial 0xA001.
HOST_API std::uint16_t crc16(std::uint16_t seed, std::string_view bytes);
/// 32 bits, reflected polynomial 0xEDB88320, as the encrypted file header has it.
HOST_API std::uint32_t crc32(std::string_view bytes);
/// The checksum of R2004's pages: two sums modulo 65521; what it gave for the bytes in front is
/// the seed of those that follow.
HOST_API std::uint32_t pageChecksum(std::uint32_t seed, std::string_view bytes);
/// The checksum of R2007's pages (chapter 5): the same sums, begun with the number of bytes, and
/// the bytes of each eight (of the rest, each four) in another order.
HOST_API std::uint32_t codedPageChecksum(std::string_view bytes);

}  // namespace quoin::dwg::container
