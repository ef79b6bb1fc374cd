// What this host tells about its measuring of drawings that show more than anybody could visit.
#pragma once

#include "dbmain.h"

namespace hostx {

/// How many entities of the drawing, as it is now, were measured roughly: the blocks that they
/// show hold more entities together than are visited one by one, so that some count with their
/// boxes. The extents of such an entity hold all that it shows, and may reach further.
HOST_API Adesk::UInt64 roughExtents(const AcDbDatabase* database);
/// Entities inside blocks that are visited one by one when a drawing is measured.
HOST_API Adesk::UInt64 exactExtentsLimit();

}  // namespace hostx
