// The copy of the file header that R13 to R2000 keep behind the object map, for the repair of
// files whose beginning is lost: where it stands, where the sections are, a few handles (Open
// Design Specification for .dwg files, chapter 25, "Second file header").
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "hostapi.h"

namespace quoin::dwg::container {

/// Where a section of a file up to R2000 is.
struct Locator {
  std::uint8_t number = 0;
  std::uint32_t place = 0;
  std::uint32_t size = 0;
};

struct SecondHeader {
  std::string head;  // version mark and what else the file begins with, 13 bytes
  std::uint16_t release = 0;
  std::uint16_t codePage = 0;
  std::vector<Locator> sections;
  struct Handle {
    std::uint8_t number = 0;  // 0: the next free handle
    std::string bytes;        // the highest first
  };
  std::vector<Handle> handles;
  std::string rest;      // between the checksum and the end mark: nobody knows what
  std::size_t size = 0;  // with both marks
};

/// Where the last second header of the file begins.
HOST_API std::optional<std::size_t> findSecondHeader(std::string_view file);
/// Fails: throws Damage.
HOST_API SecondHeader readSecondHeader(std::string_view file, std::size_t place);
/// Its bytes for this place in the file.
HOST_API std::string secondHeaderBytes(const SecondHeader& header, std::uint32_t place);

}  // namespace quoin::dwg::container
