// How a record lies in the section of objects: its size, from R2010 on the size of its stream of
// handles, the record, a checksum over all of these (Open Design Specification for .dwg files,
// chapter 20, "Data section AcDb:AcDbObjects").
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "hostapi.h"

namespace quoin::dwg::container {

struct RecordFrame {
  std::string_view data;         // from its type on
  std::uint64_t handleBits = 0;  // R2010 and later
  std::uint64_t size = 0;        // of the frame as a whole
};

/// What the smallest record takes.
constexpr std::uint64_t kLeastRecordSize = 5;

/// The record at a place; the checksum is not looked at.
/// Fails: throws Damage where none can be.
HOST_API RecordFrame readRecordFrame(std::string_view objects, std::uint64_t place,
                                     bool hasHandleBits);

/// Whether the checksum of the record of this size at this place is right.
HOST_API bool isRecordSumRight(std::string_view objects, std::uint64_t place, std::uint64_t size);

/// The record in its frame.
HOST_API std::string framedRecord(std::string_view data, std::uint64_t handleBits,
                                  bool hasHandleBits);

}  // namespace quoin::dwg::container
