// A drawing of any format as an ASCII DXF file of its own version.
#pragma once

#include <functional>
#include <string_view>

#include "embedded/dxf/RecordStore.h"

namespace quoin::dxf {

/// Hands the drawing to `sink` as an ASCII DXF file. Records that the store's source has but does
/// not read (DrawingSource::unread) are left out, and so is what refers to them: entries of
/// dictionaries and reactors go, other references become 0.
/// Fails: throws FileError with eUserBreak when `progress` returns false; what `sink` throws passes
/// through.
HOST_API void writeDxfCopy(const RecordStore& store,
                           const std::function<void(std::string_view)>& sink,
                           const Progress& progress = {});

}  // namespace quoin::dxf
