// The tags that entities of all kinds share (layer, colour, linetype, ...). Their place is behind
// the marker AcDbEntity, but some writers put them behind the marker of the kind, and readers take
// them there. They count there only where the kind has no use of its own for the group code: its
// row says so (embedded/db/core/RecordKinds.h, where the function is defined).
#pragma once

#include <string_view>

#include "hostapi.h"

namespace quoin::dxf {

/// Whether a tag counts as one that all entities share although it stands behind a marker other
/// than AcDbEntity; false for kinds that are not known well enough.
HOST_API bool isSharedTag(std::string_view kind, int code);

}  // namespace quoin::dxf
