// The object map: where the record of each handle stands (Open Design Specification for .dwg
// files, chapter 23, "Data section AcDb:Handles (object map)").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "embedded/dwg/container/Warnings.h"
#include "hostapi.h"

namespace quoin::dwg::container {

struct MapEntry {
  std::uint64_t handle = 0;
  std::uint64_t place = 0;  // in the file up to R2000, in the section of objects later
};

/// The entries in order of handle; of two with one handle the first counts.
/// What is damaged is left out, with a warning; `offset` is that of the section in the file.
/// `mostEntries` is how many records there is room for; what claims more is damaged.
HOST_API std::vector<MapEntry> readObjectMap(std::string_view section, std::uint64_t offset,
                                             std::uint64_t mostEntries, Warnings& warnings);

/// The section for these entries, which are in order of handle. `size` of readObjectMap's section
/// may be larger than what this gives: it ends with its empty chunk.
HOST_API std::string objectMapOf(const std::vector<MapEntry>& entries);

}  // namespace quoin::dwg::container
