// The packing of R2004 and of R2010 to R2018: LZ77 with its own instructions (Open Design
// Specification for .dwg files, chapter 4.7, "Compression").
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

/// What a packed byte can stand for at most: in a length that goes on, each zero byte adds 255.
constexpr std::size_t kMostUnpackedPerByte = 255;

/// Unpacks into `size` bytes at `out`; returns how many there were, which may be less.
/// Fails: throws Damage for instructions that reach in front of the beginning, behind `size` or
/// behind the packed bytes, and where the closing instruction is missing.
HOST_API std::size_t unpackLz77(std::string_view packed, char* out, std::size_t size);

/// Packs at least 4 bytes; unpackLz77() gives them back. The same bytes give the same result.
HOST_API std::string packLz77(std::string_view bytes);

}  // namespace quoin::dwg::container
