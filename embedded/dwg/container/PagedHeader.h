// The encrypted header of R2004 and of R2010 to R2018, which stands at 0x80 and again at the end
// of the file (Open Design Specification for .dwg files, chapter 4.1, "R2004 file header").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

constexpr std::size_t kPagedHeaderPlace = 0x80;
constexpr std::size_t kPagedHeaderSize = 0x6C;
/// Pages begin here; places in the header count from here.
constexpr std::size_t kPagesBegin = 0x100;

struct PagedHeader {
  std::uint32_t rootGap = 0;      // of the tree of gaps by size; 0 without gaps
  std::uint32_t largestGap = 0;   // the description calls it the lowermost left one, and the
  std::uint32_t smallestGap = 0;  // other the lowermost right; files have it the other way round
  std::uint32_t lastPage = 0;     // the number of the one that stands last
  std::uint64_t pagesEnd = 0;     // counts from kPagesBegin
  std::uint64_t copyPlace = 0;    // counts from the beginning of the file
  std::uint32_t gaps = 0;
  std::uint32_t pages = 0;
  std::uint32_t pageMap = 0;       // its page's number
  std::uint64_t pageMapPlace = 0;  // counts from kPagesBegin
  std::uint32_t sectionMap = 0;    // its page's number
  std::uint32_t largestPage = 0;   // number
  std::uint32_t largestGapNumber = 0;
  std::string bytes;  // as it was read, decrypted
  bool isSumRight = false;
};

/// The sequence that the header is encrypted with, and that pads pages.
HOST_API std::string paddingBytes(std::size_t size);

/// Fails: throws Damage where the mark is wrong.
HOST_API PagedHeader readPagedHeader(std::string_view file);
/// Encrypted, with its checksum; what has no name above is taken from `bytes`.
HOST_API std::string pagedHeaderBytes(const PagedHeader& header);

}  // namespace quoin::dwg::container
