// The empty drawing that a new database begins with: everything that programs expect in a
// drawing file (nine symbol tables, model and paper space, the root dictionary with layouts,
// groups, multiline and plot styles), units millimetres, no entities. It is the file
// NewDrawing.dxf beside this header, which the build puts into the library. Handles: 1 to A the
// tables, C the root dictionary, 1F and 1B the block records of model and paper space, 22 and 1E
// their layouts.
#pragma once

#include <string>

#include "hostapi.h"

namespace quoin::dxf {

/// The text of a valid ASCII DXF file of version R2010 with CRLF line ends.
HOST_API std::string newDrawingTemplate();

}  // namespace quoin::dxf
