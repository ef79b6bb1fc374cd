// How HATCH and MPOLYGON are drawn (HatchDraw.cpp).
#pragma once

#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {

void drawHatch(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk);

}  // namespace quoin::db
