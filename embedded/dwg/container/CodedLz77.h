// The packing of R2007: LZ77 with instructions of its own and with literals that stand in another
// order than they are meant (Open Design Specification for .dwg files, chapter 5.6,
// "Decompression").
#pragma once

#include <cstddef>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

/// Unpacks into `size` bytes at `out`; returns how many there were, which may be less.
/// Fails: throws Damage for instructions that reach in front of the beginning, behind `size` or
/// behind the packed bytes.
HOST_API std::size_t unpackCodedLz77(std::string_view packed, char* out, std::size_t size);

}  // namespace quoin::dwg::container
