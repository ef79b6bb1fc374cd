// How POLYLINE is drawn (HeavyPolylineDraw.cpp).
#pragma once

#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {

void drawHeavyPolyline(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk);

}  // namespace quoin::db
