// A drawing's model space, or some of its entities, as parts of a picture.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/Drawing.h"
#include "commands/picture/Box.h"
#include "commands/picture/Picture.h"
#include "hostdraw.h"

namespace quoin::commands {

/// Adds what model space shows to the picture, except for the named entities. What nobody can draw
/// is named and counted among the picture's warnings.
void addPlanShapes(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except);

/// Adds these entities in one colour, and says that the view must hold them; texts count.
void addEntityShapes(Picture& picture, Drawing& drawing, const std::vector<AcDbObjectId>& entities,
                     const Color& color, double width);

/// What a block shows (model space, the space of a layout), drawn into `list`; where it is known
/// that only a box is looked at, what reaches endlessly far is cut off there. `isPlot` leaves out
/// what lies on layers that are not plotted. Fails: throws CommandError (Interrupted).
hostx::DrawReport drawSpace(const AcDbObjectId& block, DrawList& list, const Box& view = {},
                            bool isPlot = false);

/// "12 entities on layers that are not plotted: Defpoints 10, NOTES 2"; empty for none.
std::string notPlottedText(const hostx::DrawReport& report);

/// What the report says was not drawn as it is, as sentences.
std::vector<std::string> warningsOf(const hostx::DrawReport& report);

/// The points of an arc from one point to another with a bulge (the tangent of a quarter of
/// its angle, positive counter-clockwise), the first point left out.
void appendBulge(std::vector<AcGePoint2d>& points, const AcGePoint2d& from, const AcGePoint2d& to,
                 double bulge);
/// A text of a drawing without its %% codes: signs in their place, no underlining.
std::wstring withoutCodes(std::wstring_view text);

}  // namespace quoin::commands
