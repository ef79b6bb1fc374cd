// Samples of styles: what is drawn with them looks like.
#pragma once

#include "commands/Drawing.h"
#include "commands/picture/Picture.h"
#include "dbmstyle.h"
#include "dbsymtb.h"

namespace quoin::commands {

/// Two legs of a multiline, one unit of scale to a unit of the drawing.
Picture mlineSample(const Drawing& drawing, const AcDbMlineStyle& style);

/// One dimension over a length that its text has room for.
Picture dimensionSample(const Drawing& drawing, const std::string& name,
                        const AcDbDimStyleTableRecord& style);

}  // namespace quoin::commands
