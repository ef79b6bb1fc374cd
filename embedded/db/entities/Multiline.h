// What a multiline (MLINE) shows: its elements as straight lines. The host API's class of
// multilines is not offered; they are read here.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dbents.h"

namespace quoin::db {

/// The straight lines of all elements, segment by segment, world coordinates; stretches that were
/// cut out of an element are left out. Empty for other objects and for a multiline that is not
/// well-formed. Caps and joints are not among them.
HOST_API std::vector<std::pair<AcGePoint3d, AcGePoint3d>> multilineElements(const AcDbObjectId& id);

/// What a multiline shows as lines in no database that look as it does: its elements as above, the
/// lines across its ends and joints, each with the look that the style gives it. Nothing with the
/// cause where lines cannot show it: "has a fill".
HOST_API std::vector<std::unique_ptr<AcDbLine>> multilineAsLines(const AcDbObjectId& id,
                                                                 std::string& cause);

}  // namespace quoin::db
