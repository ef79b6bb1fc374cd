// The Reed-Solomon coding of R2007: code words of 255 bytes, interleaved, each with its data in
// front (Open Design Specification for .dwg files, chapter 5.13, "Reed-Solomon encoding").
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

constexpr std::size_t kCodeWordSize = 255;
/// Bytes of data in a code word: of the header and the maps, and of data pages.
constexpr std::size_t kSystemDataSize = 239;
constexpr std::size_t kPageDataSize = 251;

struct Decoded {
  std::string data;
  bool isRight = true;  // whether every code word is one; errors are not corrected
};

/// `words` code words of `encoded`, which has kCodeWordSize bytes for each.
HOST_API Decoded decodeReedSolomon(std::string_view encoded, std::size_t words,
                                   std::size_t dataSize);

}  // namespace quoin::dwg::container
