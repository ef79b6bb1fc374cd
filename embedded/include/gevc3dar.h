// Arrays of vectors of space.
#pragma once

#include "acarray.h"
#include "gevec3d.h"

using AcGeVector3dArray = AcArray<AcGeVector3d>;
