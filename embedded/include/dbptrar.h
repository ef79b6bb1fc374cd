// Arrays of untyped pointers: how lists of objects that are not in a database travel.
#pragma once

#include "acarray.h"

using AcDbVoidPtrArray = AcArray<void*>;
