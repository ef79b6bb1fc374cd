// Names that all geometry headers share.
#pragma once

#include "getol.h"

namespace AcGe {
/// What a geometric object is, for the run-time check through a base class.
enum EntityId { kEntity3d, kCurve3d, kLinearEnt3d, kLine3d, kLineSeg3d };
}  // namespace AcGe
