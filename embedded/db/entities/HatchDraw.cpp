#include "embedded/db/entities/HatchDraw.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/HatchBoundaries.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/PatternLines.h"
#include "embedded/db/geometry/SplineDraw.h"

namespace quoin::db {
namespace {

constexpr int kPoint = 10;
constexpr int kFillColor = 63;
constexpr int kFillTrueColor = 421;

/// A boundary in the hatch's plane.
struct Loop {
  std::int64_t flags = 0;
  DrawPath path;
  std::vector<AcGePoint3d> ring;  // straight from point to point
};

void finishPiece(DrawPath& path, const AcGePoint3d& start) {
  if (path.pieces.empty()) {
    startPath(path, start);
  } else if (!(path.pieces.back().end == start)) {
    addLine(path, start);
  }
}

/// Adds an edge; where it meets what is there with its end, it is turned.
void addPiece(DrawPath& path, const HatchPiece& piece, const DrawWalk& walk) {
  DrawPath own;
  if (piece.type == HatchEdge::kLine) {
    own = linePath(piece.start, piece.end);
  } else if (piece.type == HatchEdge::kArc || piece.type == HatchEdge::kEllipse) {
    own = arcPath(piece.arc);
  } else if (piece.type == HatchEdge::kSpline && !piece.spline.points.empty()) {
    own = splinePath(piece.spline, walk);
  }
  if (own.pieces.empty()) {
    return;
  }
  const AcGePoint3d end = own.pieces.back().end;
  if (!path.pieces.empty()) {
    const AcGePoint3d& last = path.pieces.back().end;
    if ((end - last).length() < (own.start - last).length()) {
      DrawPath turned;
      startPath(turned, end);
      for (std::size_t i = own.pieces.size(); i-- > 0;) {
        hostx::DrawPiece back = own.pieces[i];
        back.end = i > 0 ? own.pieces[i - 1].end : own.start;
        back.start += back.sweep;
        back.sweep = -back.sweep;
        turned.pieces.push_back(back);
      }
      own = std::move(turned);
    }
  }
  finishPiece(path, own.start);
  path.pieces.insert(path.pieces.end(), own.pieces.begin(), own.pieces.end());
}

std::vector<Loop> loopsOf(const TagList& tags, TagRange boundaries, double elevation,
                          const DrawWalk& walk) {
  constexpr int kBoundary = 92;
  std::vector<Loop> loops;
  const AcGeMatrix3d same;
  // Edges follow their boundary's flags: both lists are gone through once.
  std::size_t boundary = TagList::kNone;
  std::size_t seen = boundaries.first;
  bool isNew = true;
  forEachBoundary(
      tags, boundaries,
      [&](TagRange loop) {
        Loop& made = loops.emplace_back();
        made.flags = tags.integerAt(loop.first);
        for (const Segment& segment : hatchLoopOf(tags, loop, elevation)) {
          finishPiece(made.path, segment.start);
          addSegment(made.path, segment, same);
        }
      },
      [&](TagRange edge) {
        for (; seen < edge.first; ++seen) {
          if (tags[seen].code == kBoundary && tags.isOwn(seen)) {
            boundary = seen;
            isNew = true;
          }
        }
        if (isNew) {
          loops.emplace_back().flags = boundary == TagList::kNone ? 0 : tags.integerAt(boundary);
          isNew = false;
        }
        addPiece(loops.back().path, hatchPieceOf(tags, edge, elevation), walk);
      });
  loops.erase(std::remove_if(loops.begin(), loops.end(),
                             [](const Loop& loop) {
                               return loop.path.pieces.empty() || !isFinite(loop.path);
                             }),
              loops.end());
  for (Loop& loop : loops) {
    loop.path.isClosed = true;
    AcDbExtents box;
    box.addPoint(loop.path.start);
    for (const hostx::DrawPiece& piece : loop.path.pieces) {
      box.addPoint(piece.end);
    }
    loop.ring = pointsAlong(loop.path, walk.chordError((box.maxPoint() - box.minPoint()).length()));
  }
  return loops;
}

bool isInside(const AcGePoint3d& point, const std::vector<AcGePoint3d>& ring) {
  bool isOdd = false;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    const AcGePoint3d& a = ring[i];
    const AcGePoint3d& b = ring[(i + 1) % ring.size()];
    if ((a.y > point.y) != (b.y > point.y) &&
        point.x < a.x + (b.x - a.x) * ((point.y - a.y) / (b.y - a.y))) {
      isOdd = !isOdd;
    }
  }
  return isOdd;
}

/// Leaves the boundaries that count by the style of islands: all, those around and the first ones
/// inside, or only those around.
void applyIslands(std::vector<Loop>& loops, std::int64_t style) {
  constexpr std::int64_t kNormal = 0;
  constexpr std::int64_t kIgnore = 2;
  constexpr std::size_t kMostCompared = 1000;
  if (style == kNormal || loops.size() < 2 || loops.size() > kMostCompared) {
    return;
  }
  const std::size_t deepest = style == kIgnore ? 0 : 1;
  std::vector<bool> isKept(loops.size());
  for (std::size_t i = 0; i < loops.size(); ++i) {
    std::size_t depth = 0;
    for (std::size_t j = 0; j < loops.size(); ++j) {
      depth += i != j && isInside(loops[i].ring.front(), loops[j].ring) ? 1 : 0;
    }
    isKept[i] = depth <= deepest;
  }
  std::size_t next = 0;
  for (std::size_t i = 0; i < loops.size(); ++i) {
    if (isKept[i]) {
      if (next != i) {
        loops[next] = std::move(loops[i]);
      }
      ++next;
    }
  }
  loops.resize(next);
}

AcCmColor colorAt(const TagList& tags, std::size_t index) {
  AcCmColor color;
  const auto value = static_cast<Adesk::UInt32>(tags.integerAt(index));
  if (tags[index].code == kFillTrueColor) {
    color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                 static_cast<Adesk::UInt8>(value));
  } else {
    color.setColorIndex(static_cast<Adesk::UInt16>(std::min<Adesk::UInt32>(value, 256)));
  }
  return color;
}

/// The mean of a gradient's colours; the entity's own where it names none.
hostx::DrawColor gradientColor(const TagList& tags, TagRange range, const DrawWalk& walk) {
  double sums[3] = {0.0, 0.0, 0.0};
  double count = 0.0;
  for (const int code : {kFillTrueColor, kFillColor}) {
    for (std::size_t at = tags.find(code, range); at != TagList::kNone;
         at = tags.find(code, range, at + 1)) {
      const AcCmColor color = colorAt(tags, at);
      sums[0] += color.red();
      sums[1] += color.green();
      sums[2] += color.blue();
      count += 1.0;
    }
    if (count > 0.0) {
      break;
    }
  }
  if (count == 0.0) {
    return walk.resolved().color;
  }
  const auto mean = [&](double sum) {
    return static_cast<unsigned char>(std::lround(sum / count));
  };
  return {mean(sums[0]), mean(sums[1]), mean(sums[2]), false};
}

std::vector<PatternFamily> familiesOf(const TagList& tags, TagRange range) {
  constexpr int kAngle = 53;
  constexpr int kBaseX = 43;
  constexpr int kBaseY = 44;
  constexpr int kOffsetX = 45;
  constexpr int kOffsetY = 46;
  constexpr int kDash = 49;
  constexpr std::size_t kMostFamilies = 256;
  constexpr std::size_t kMostDashes = 64;
  std::vector<PatternFamily> families;
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    if (code == kAngle) {
      if (families.size() == kMostFamilies) {
        break;
      }
      families.emplace_back().angle = toRadians(tags.doubleAt(i));
    } else if (families.empty()) {
      continue;
    } else if (code == kBaseX) {
      families.back().base.x = tags.doubleAt(i);
    } else if (code == kBaseY) {
      families.back().base.y = tags.doubleAt(i);
    } else if (code == kOffsetX) {
      families.back().offset.x = tags.doubleAt(i);
    } else if (code == kOffsetY) {
      families.back().offset.y = tags.doubleAt(i);
    } else if (code == kDash && families.back().dashes.size() < kMostDashes) {
      families.back().dashes.push_back(tags.doubleAt(i));
    }
  }
  return families;
}

class HatchArea {
 public:
  HatchArea(std::vector<Loop> loops, const AcGeMatrix3d& plane, DrawWalk& walk)
      : m_plane(plane), m_walk(walk) {
    for (Loop& loop : loops) {
      DrawPath& path = m_paths.emplace_back();
      path.isClosed = true;
      path.start = plane * loop.path.start;
      path.pieces = std::move(loop.path.pieces);
      for (hostx::DrawPiece& piece : path.pieces) {
        piece.end = plane * piece.end;
        piece.center = plane * piece.center;
        piece.u = plane * piece.u;
        piece.v = plane * piece.v;
      }
      m_rings.push_back(std::move(loop.ring));
    }
  }

  void fill(const hostx::DrawColor& color, double share = 1.0) {
    m_walk.look();
    hostx::DrawLook look = m_walk.lookOf(AcCmColor());
    look.color = color;
    look.opacity = m_walk.resolved().opacity * share;
    m_walk.fill(m_paths, look);
  }

  void outline() {
    for (const DrawPath& path : m_paths) {
      m_walk.strokePlain(path);
    }
  }

  void pattern(const std::vector<PatternFamily>& families) {
    // Of one family, and of a whole hatch.
    constexpr std::size_t kMostStrokes = 100'000;
    constexpr double kFewestPixels = 2.0;
    const double pixel = m_walk.options().pixel / std::fmax(lengthScale(m_plane), 1e-300);
    double dense = 0.0;
    for (const PatternFamily& family : families) {
      const double spacing = spacingOf(family);
      const bool isDense = pixel > 0.0 && spacing < kFewestPixels * pixel;
      const bool isDrawn =
          !isDense && forEachPatternStroke(family, m_rings, kMostStrokes,
                                           [&](const AcGePoint3d& start, const AcGePoint3d& end) {
                                             stroke(start, end);
                                           });
      if (!isDrawn && spacing > 0.0) {
        // As much as lines of a pixel would cover.
        const double covered = pixel > 0.0 ? 0.5 * pixel / spacing : kUsualCover;
        dense += std::clamp(covered, kLeastCover, kMostCover);
      }
    }
    if (dense > 0.0 || families.empty()) {
      fill(m_walk.resolved().color, families.empty() ? kUsualCover : std::fmin(dense, kMostCover));
    }
  }

 private:
  static constexpr double kUsualCover = 0.25;
  static constexpr double kLeastCover = 0.1;
  static constexpr double kMostCover = 0.6;

  void stroke(const AcGePoint3d& start, const AcGePoint3d& end) {
    startPath(m_stroke, m_plane * start);
    if (!(start == end)) {
      addLine(m_stroke, m_plane * end);
    }
    m_walk.strokePlain(m_stroke);
  }

  AcGeMatrix3d m_plane;
  DrawWalk& m_walk;
  std::vector<DrawPath> m_paths;
  PatternRings m_rings;
  DrawPath m_stroke;
};

/// The colour behind the lines of a pattern, which stands in extended data.
std::optional<AcCmColor> backgroundOf(const TagList& tags) {
  constexpr int kValue = 1071;
  constexpr std::int64_t kByColor = 0xC2;
  constexpr std::int64_t kByIndex = 0xC3;
  const TagRange data = tags.xData(L"HATCHBACKGROUNDCOLOR");
  for (std::size_t i = data.first; i < data.last; ++i) {
    if (tags[i].code != kValue) {
      continue;
    }
    const std::int64_t value = tags.integerAt(i);
    AcCmColor color;
    if ((value >> 24 & 0xFF) == kByColor) {
      color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                   static_cast<Adesk::UInt8>(value));
      return color;
    }
    if ((value >> 24 & 0xFF) == kByIndex) {
      color.setColorIndex(static_cast<Adesk::UInt16>(value & 0xFF));
      return color;
    }
  }
  return std::nullopt;
}

}  // namespace

void drawHatch(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  constexpr int kSolid = 70;
  constexpr int kSolidPolygon = 71;
  constexpr int kIslands = 75;
  constexpr int kGradient = 450;
  const TagList& tags = entity.tags;
  const TagRange range = hatchRange(tags);
  const bool isPolygon = dxf::trimmedValue(tags[0]) == "MPOLYGON";
  const TagRange boundaries = boundariesOf(tags, range);
  const TagRange head{range.first, boundaries.first};
  const TagRange behind{boundaries.last, range.last};
  const double elevation = tags.point(kPoint, head).z;
  std::vector<Loop> loops = loopsOf(tags, boundaries, elevation, walk);
  applyIslands(loops, tags.integer(kIslands, behind, 0));
  if (loops.empty()) {
    return;
  }
  HatchArea area(std::move(loops), toWorld * planeToWorld(normalOf(tags, range)), walk);
  if (walk.options().isAllFilled) {
    area.fill(walk.resolved().color);
    return;
  }
  if (walk.isFilled()) {
    const bool isSolid = tags.integer(isPolygon ? kSolidPolygon : kSolid, head, 0) != 0;
    if (tags.integer(kGradient, behind, 0) != 0) {
      area.fill(gradientColor(tags, behind, walk));
    } else if (isSolid) {
      const std::size_t color = isPolygon ? tags.find(kFillColor, behind) : TagList::kNone;
      area.fill(color == TagList::kNone
                    ? walk.resolved().color
                    : DrawLooks::colorOf(colorAt(tags, color), walk.resolved()));
    } else {
      if (const auto background = backgroundOf(tags)) {
        area.fill(DrawLooks::colorOf(*background, walk.resolved()));
      }
      const std::vector<PatternFamily> families = familiesOf(tags, behind);
      if (!isPolygon || !families.empty()) {
        area.pattern(families);
      }
    }
  }
  if (isPolygon || !walk.isFilled()) {
    area.outline();
  }
}

}  // namespace quoin::db
