// What a multiline (MLINE) shows: its elements as straight lines. The host API's class of
// multilines is not offered; they are read here.
#pragma once

#include <utility>
#include <vector>

#include "dbid.h"
#include "gepnt3d.h"

namespace quoin::db {

/// The straight lines of all elements, segment by segment, world coordinates; stretches that were
/// cut out of an element are left out. Empty for other objects and for a multiline that is not
/// well-formed. Caps and joints are not among them.
HOST_API std::vector<std::pair<AcGePoint3d, AcGePoint3d>> multilineElements(const AcDbObjectId& id);

}  // namespace quoin::db
