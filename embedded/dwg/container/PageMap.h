// The page map: all pages of the file in the order in which they stand, with the gaps between them
// (Open Design Specification for .dwg files, chapter 4.4, "Section page map"), and the layout of
// the two pages that hold the maps themselves (4.3, "System section page").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/container/PagedHeader.h"
#include "hostapi.h"

namespace quoin::dwg::container {

constexpr std::uint32_t kPageMapType = 0x41630E3B;
constexpr std::uint32_t kSectionMapType = 0x4163003B;
constexpr std::size_t kSystemHeaderSize = 20;
/// Pages begin and end at multiples of this, counted from kPagesBegin.
constexpr std::uint64_t kPageAlignment = 0x20;

constexpr std::uint64_t alignedSize(std::uint64_t size) {
  return (size + kPageAlignment - 1) / kPageAlignment * kPageAlignment;
}

/// Room in the file: a page, or with number 0 a gap.
struct PageSlot {
  std::uint32_t number = 0;
  std::uint64_t place = 0;
  std::uint64_t size = 0;
};

struct SystemPage {
  std::string contents;  // unpacked
  bool isSumRight = false;
};

/// Unpacks a map's page. `mostBytes` bounds what it may unpack to. Fails: throws Damage.
HOST_API SystemPage readSystemPage(std::string_view file, std::uint64_t place, std::uint32_t type,
                                   std::uint64_t mostBytes);
/// The page, packed, with its header and checksum.
HOST_API std::string systemPageBytes(std::uint32_t type, std::string_view contents);
/// A page map without contents, which files have between the last page and the header's copy.
HOST_API std::string emptyPageMapHeader();
/// The most bytes that systemPageBytes() can give for so many bytes of contents.
HOST_API std::uint64_t mostSystemPageBytes(std::uint64_t contents);

/// Fails: throws Damage, for pages without size and behind the end of the file too.
HOST_API std::vector<PageSlot> readPageMap(std::string_view contents, std::uint64_t fileSize);
/// Numbers the gaps, makes their tree by size and enters both in the header.
HOST_API std::string pageMapContents(const std::vector<PageSlot>& slots, PagedHeader& header);

}  // namespace quoin::dwg::container
