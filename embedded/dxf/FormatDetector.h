// Tells from its first bytes what a file is: ASCII or binary DXF, with which line ends and
// group codes, or no DXF at all. Version and code page come later, from the HEADER section.
#pragma once

#include <cstddef>
#include <string_view>

#include "embedded/dxf/Format.h"

namespace quoin::dxf {

/// The 22 bytes that open a binary DXF file.
inline constexpr std::string_view kBinarySentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

struct DetectedFormat {
  Format format;             // form, line end, padding, width of group codes
  std::size_t firstTag = 0;  // behind a sentinel or a byte order mark
};

/// Reads the habits of a file's writer off its first tag.
/// Fails: throws FileError for a damaged binary sentinel.
DetectedFormat detectFormat(std::string_view bytes);

/// Whether a file that begins with these bytes claims to be DXF: a binary sentinel (damaged
/// ones included, for the sake of the message) or a first tag that is SECTION, EOF or a comment.
bool looksLikeDxf(std::string_view head);

}  // namespace quoin::dxf
