// Strips between two faces that run side by side with nothing between them, and which of them are
// walls: a face has a wall on one of its sides at most.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "plan/Faces.h"

namespace quoin::plan {

/// The space between two faces of one group, from `begin` to `end` along its axis.
struct Strip {
  /// Its own among all strips of the plan, whatever is cut off it.
  std::size_t number = 0;
  std::size_t right = 0;  // the face on the right of the axis' direction; index into Faces::faces
  std::size_t left = 0;
  double begin = 0.0;
  double end = 0.0;
  double middle = 0.0;  // the offset midway between the faces, at the strip's middle
  double slope = 0.0;   // by which that rises
  double width = 0.0;   // there
  /// By how much the faces' distances differ between the ends.
  double taper = 0.0;

  double length() const { return end - begin; }
  double middleAt(double at) const { return middle + slope * (at - 0.5 * (begin + end)); }
};

/// Lengths of what has a width, to ask how much of them is of about one width.
class LengthsByWidth {
 public:
  /// Pairs of width and length.
  explicit LengthsByWidth(std::vector<std::pair<double, double>> lengths);
  /// The part of all length of which the width differs by the tolerance at most, from 0 to 1.
  double shareOf(double width, double tolerance) const;

 private:
  std::vector<double> m_widths;
  std::vector<double> m_sums;
};

/// Strips of one width on one line, with gaps between them that may be openings or junctions.
struct StripChain {
  std::size_t group = 0;
  /// In their order along the axis.
  std::vector<Strip> strips;
  /// The part of the plan's length of strips that is of this width, from 0 to 1.
  double share = 0.0;
  /// How much speaks for it; greater wins where two exclude each other.
  double score = 0.0;

  double length() const;
};

/// All strips of the plan as chains.
std::vector<StripChain> findStrips(const Faces& faces, const FindWallsOptions& options);

/// The chains, or what others leave of them, that do not exclude one another; the one with the
/// greatest score first.
std::vector<StripChain> chooseStrips(std::vector<StripChain> chains, const Faces& faces,
                                     const FindWallsOptions& options);

/// A strip's four corners, counter-clockwise, beginning at the right of its begin.
std::vector<AcGePoint2d> cornersOf(const Strip& strip, const Axis& axis);

}  // namespace quoin::plan
