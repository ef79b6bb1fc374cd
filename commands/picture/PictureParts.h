// What the pictures of all commands are put together from.
#pragma once

#include <string>

#include "commands/Drawing.h"
#include "commands/picture/Picture.h"
#include "gepnt3d.h"

namespace quoin::commands {

inline constexpr double kPlanWidth = 1.0;
inline constexpr double kWallWidth = 1.6;
inline constexpr double kPieceWidth = 2.4;

/// A picture titled "plan.dxf: what", in the drawing's units.
Picture newPicture(const Drawing& drawing, const std::string& what, const std::string& subtitle);
void addLine(Picture& picture, const AcGePoint3d& start, const AcGePoint3d& end, const Color& color,
             double width, bool isDashed = false);
void addMark(Picture& picture, const AcGePoint3d& at, MarkShape shape, const Color& color,
             double size);
/// Says that the view must hold this line.
void addFocus(Picture& picture, const AcGePoint3d& start, const AcGePoint3d& end);
/// Marks shrink where there are many, so that they do not hide what they mark.
double markSizeFor(std::size_t count);

}  // namespace quoin::commands
