// Cleans the lines of a plan: snaps ends, removes duplicates, closes gaps and trims overshoots
// where lines meet, removes spurs, joins collinear pieces. What fits already is not touched: steps
// look for dangling ends, those that meet neither another end nor another line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "gepnt2d.h"

namespace quoin::plan {

/// A straight line of any length above zero, with finite coordinates.
struct CleanLine {
  AcGePoint2d start;
  AcGePoint2d end;
  /// Equal for lines that may stand for each other: of duplicates with equal keys one is removed,
  /// and collinear pieces are joined. Between equals the lesser key decides.
  std::size_t key = 0;
  /// The end does not move; others meet it.
  bool isStartFixed = false;
  bool isEndFixed = false;
  /// It is neither removed nor joined, and no duplicate grows over it.
  bool isKept = false;
};

struct CleanOptions {
  /// Lengths in drawing units; a step with a length of 0 is left out.
  double snap = 0.0;   // dangling ends this near to an end move onto it
  double reach = 0.0;  // dangling ends are extended or trimmed by this much at most
  double spur = 0.0;   // shorter lines that stick out of others are removed
  bool removesDuplicates = true;
  bool joins = true;
  /// Of duplicates whose keys differ one is removed, instead of being undecided.
  bool ignoresKeys = false;
};

enum class CleanStep : std::uint8_t {
  Duplicate,  // removed: another line has the same ends, or covers it
  Overlap,    // absorbed by another that now reaches over both
  Snap,       // an end moved onto another end
  Extend,     // an end moved outwards, to where the line meets others
  Trim,       // an end moved inwards, to where the line meets others
  Spur,       // removed
  Join,       // absorbed by a line that continues it
};
inline constexpr std::size_t kCleanSteps = 7;

/// What was done to one line. Lines are named by their index in the input.
struct CleanAction {
  CleanStep step;
  std::size_t line;
  /// The line that stays in place of one that is gone; the line itself otherwise.
  std::size_t survivor;
  /// Where the end was and is; the ends of a line that is gone.
  AcGePoint2d from;
  AcGePoint2d to;
};

enum class UndecidedKind : std::uint8_t {
  SeveralEnds,    // an end with several ends to snap to, or in a row of ends without a middle
  SeveralPlaces,  // an end that meets lines at several places within reach
  OtherKey,       // a line that covers or overlaps one with another key
};

struct UndecidedPlace {
  UndecidedKind kind;
  AcGePoint2d at;
  /// Index of the line; for OtherKey the other one too, elsewhere the same.
  std::size_t line;
  std::size_t other;
};

/// A line that is left, by the index of the input line that it was.
struct CleanedLine {
  std::size_t line;
  AcGePoint2d start;
  AcGePoint2d end;
};

struct CleanResult {
  /// In ascending order of `line`.
  std::vector<CleanedLine> lines;
  /// Step by step; a line's own in the order in which they happened.
  std::vector<CleanAction> actions;
  std::vector<UndecidedPlace> undecided;
  /// Overlaps of two lines that are both kept.
  std::size_t keptOverlaps = 0;
  /// False where the steps were still changing lines when they were stopped (kMostRounds).
  bool isSettled = true;
};

/// Cleans lines. `anchors` are points at which lines may end beside those of lines, as ends of
/// arcs.
///
/// Ends closer than a millionth of `snap` (or of the coordinates' rounding) meet. An end that meets
/// another end or a line, unless that leads the same way, does not move. Of the others
///  - those within `snap` of one place where ends meet move there; where only dangling ends are
///    near each other, they move to the point nearest to all of their lines: for two, the
///    intersection, so that both keep their directions;
///  - those whose lines meet others, extended or trimmed by `reach` at most, move there: onto
///    another line (T), or with another dangling end to the common point (L, X). A stub that others
///    end on is not trimmed, nor is more than half of a line.
/// Collinear lines are never joined across a gap wider than `snap`, and lines that are farther
/// apart than `snap` are no duplicates; so the faces of a wall keep apart and openings stay open.
///
/// Joining runs the module's merge: a project must be open, and its capture distance at most
/// `snap`.
///
/// Laws:  (1) cleaning what was cleaned changes nothing, where isSettled;
///        (2) the result does not depend on the order of the lines, and turns by 90 degrees,
///        mirrors
///            and shifts (within rounding) with them. Which of equal duplicates is the survivor,
///            and the direction of lines, follow the input's order.
///        (3) an action moves an end by `snap` or `reach` at most; an end moves again only where a
///            line that it met was removed, joined, or turned by a move of its own end.
/// Speed: n log n for n lines, as long as few lines are within reach of one place.
CleanResult cleanLines(const std::vector<CleanLine>& lines, const CleanOptions& options,
                       const std::vector<AcGePoint2d>& anchors = {});

}  // namespace quoin::plan
