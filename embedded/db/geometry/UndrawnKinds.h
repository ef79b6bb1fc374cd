// Which kinds of entities nobody can draw.
#pragma once

#include <string>
#include <vector>

#include "hostapi.h"

namespace quoin::db {

/// The names of the kinds whose row has no function that draws, in the order of the rows.
HOST_API std::vector<std::string> undrawnKinds();

}  // namespace quoin::db
