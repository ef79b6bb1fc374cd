// The lines of a drawing as cleaning takes them (plan/CleanLines.h), and what becomes of them.
#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/LeftOut.h"
#include "plan/CleanLines.h"

namespace quoin::commands {

/// A LINE or a straight segment of a polyline.
struct CleanSource {
  AcDbObjectId entity;
  int segment = -1;  // -1 for a LINE
  /// Vertices of the polyline at the segment's ends.
  unsigned int vertices[2] = {};
  AcGePoint3d start;
  AcGePoint3d end;
};

/// Lines of one height.
struct CleanLevel {
  std::vector<plan::CleanLine> lines;
  std::vector<CleanSource> sources;  // of each
  std::vector<AcGePoint2d> anchors;
};

/// A polyline that is the same as one before it in the file.
struct DoubledPolyline {
  AcDbObjectId entity;
  AcDbObjectId survivor;
};

struct CleanSources : LeftOut {
  std::map<double, CleanLevel> levels;  // by height
  std::vector<DoubledPolyline> doubled;
  std::size_t lines = 0;
  std::size_t segments = 0;
};

/// The lines on the layers. LINEs may be changed and removed; the free ends of open polylines may
/// move, and their other segments stay as they are, as does all on locked layers. Ends of arcs and
/// of other open curves are anchors. Polylines that are in all the same as others are listed
/// instead, if `findsDoubled`.
/// Keys are equal for lines with the same layer, colour, linetype, line weight, thickness and
/// extended data; with the latter also only for those that lead the same way, as it may belong to
/// sides.
CleanSources collectCleanSources(Drawing& drawing, const std::set<std::wstring>& layers,
                                 bool findsDoubled);

/// Moves the end of a line to a point of the plan, and nothing else.
/// Fails: throws CommandError (EntityFailed).
void moveCleanEnd(Drawing& drawing, const CleanSource& source, bool isEnd, const AcGePoint2d& to);

}  // namespace quoin::commands
