// The empty drawing that a new database begins with: everything that programs expect in a
// drawing file (nine symbol tables, model and paper space, the root dictionary with layouts,
// groups, multiline and plot styles), units millimetres, no entities.
#pragma once

#include <string>

#include "hostapi.h"

namespace quoin::dxf {

/// The text of a valid ASCII DXF file of version R2010 with CRLF line ends.
HOST_API std::string newDrawingTemplate();

}  // namespace quoin::dxf
