// The editor, as modules know it: registered commands and the plain functions. The document
// manager is in acdocman.h, input notifications are in acedinpt.h.
#pragma once

#include "accmd.h"
#include "acedads.h"
