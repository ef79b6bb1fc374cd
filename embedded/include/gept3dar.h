// Arrays of points of space.
#pragma once

#include "acarray.h"
#include "gepnt3d.h"

using AcGePoint3dArray = AcArray<AcGePoint3d>;
