// A drawing's model space as the grey background of a picture.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "commands/Drawing.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

/// Adds what model space shows (lines, circles, arcs, ellipses, splines, polylines with their
/// arcs, texts, block references and dimensions with what is in them) to the picture, except for
/// the named entities. Layers that are off or frozen do not show. Kinds that the host does not know
/// are left out.
void addPlanShapes(Picture& picture, Drawing& drawing, const std::set<AcDbObjectId>& except);

/// Adds these entities in one colour, and says that the view must hold them; labels count.
void addEntityShapes(Picture& picture, Drawing& drawing, const std::vector<AcDbObjectId>& entities,
                     const Color& color, double width);

/// A text of a drawing without its %% codes: signs in their place, no underlining.
std::wstring withoutCodes(std::wstring_view text);

/// The points of an arc from one point to another with a bulge (the tangent of a quarter of
/// its angle, positive counter-clockwise), the first point left out.
void appendBulge(std::vector<AcGePoint2d>& points, const AcGePoint2d& from, const AcGePoint2d& to,
                 double bulge);

}  // namespace quoin::commands
