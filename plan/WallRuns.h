// Strips of one line as walls that run on across junctions and openings.
#pragma once

#include <cstddef>
#include <vector>

#include "plan/FindWalls.h"
#include "plan/SegmentGrid.h"
#include "plan/Strips.h"

namespace quoin::plan {

/// A straight wall as long as it runs, before it is parted where others meet it.
struct WallRun {
  struct Gap {
    double from = 0.0;
    double to = 0.0;
    OpeningKind kind = OpeningKind::Opening;
  };

  /// The reference line; what follows is measured along it.
  Axis axis;
  double from = 0.0;
  double to = 0.0;
  /// Distances of the faces from the reference line.
  double left = 0.0;
  double right = 0.0;
  std::vector<Gap> openings;
  std::size_t group = 0;
  std::vector<Strip> strips;
  double share = 0.0;  // StripChain::share

  double width() const { return left + right; }
  double length() const { return to - from; }
  AcGePoint2d start() const { return axis.at(from); }
  AcGePoint2d end() const { return axis.at(to); }
  /// The length over which both faces are drawn.
  double drawnLength() const;
};

/// What a drawing shows in the gap between two faces, or beside its end.
class GapJudge {
 public:
  /// All three must outlive this.
  GapJudge(const PlanDrawing& drawing, const FindWallsOptions& options);

  /// What is drawn in a gap of a wall of this width along the axis, midway between its faces.
  struct Drawn {
    bool isDoor = false;
    bool isWindow = false;
    OpeningKind kind() const {
      return isDoor ? OpeningKind::Door : (isWindow ? OpeningKind::Window : OpeningKind::Opening);
    }
  };
  Drawn drawnIn(const Axis& axis, double from, double to, double width) const;
  /// Whether a line closes the wall there, from face to face and no further.
  bool hasEnd(const Axis& axis, double at, double width) const;
  /// Where lines close or part the wall between two places, ascending.
  std::vector<double> endsBetween(const Axis& axis, double from, double to, double width) const;

 private:
  void lookAtArcs(const Axis& axis, double from, double to, double width, Drawn& drawn) const;

  const PlanDrawing& m_drawing;
  const FindWallsOptions& m_options;
  SegmentGrid m_lines;    // of the drawing, then the symbols'
  SegmentGrid m_centers;  // of arcs
};

/// Narrows a gap to the first and the last line that closes the wall there (GapJudge::endsBetween),
/// of those that are nearer to its beginning and to its end.
void narrow(const std::vector<double>& ends, double& from, double& to);

std::vector<WallRun> makeRuns(const PlanDrawing& drawing, const Faces& faces,
                              const std::vector<StripChain>& chains, const GapJudge& judge,
                              const FindWallsOptions& options);

}  // namespace quoin::plan
