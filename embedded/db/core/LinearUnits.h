// How a drawing's lengths are written for people, from its header.
#pragma once

#include "dbmain.h"

namespace quoin::db {

/// $LUNITS: 1 scientific, 2 decimal, 3 engineering (feet and decimal inches), 4 architectural
/// (feet and fractional inches), 5 fractional. In 3 and 4 a drawing unit is an inch. 2 where the
/// file does not say.
HOST_API int linearUnits(const AcDbDatabase& database);

}  // namespace quoin::db
