// The classes of colours under their older header name.
#pragma once

#include "dbcolor.h"
