// HATCH and MPOLYGON: areas that are filled within boundaries, which lie in a plane.
#include <array>
#include <cmath>

#include "dbhatch.h"
#include "embedded/db/core/ObjectImpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/HatchBoundaries.h"
#include "embedded/db/entities/HatchDraw.h"
#include "embedded/db/geometry/CurveExtents.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"
#include "embedded/db/geometry/TransformSchema.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, L"HATCH", L"ObjectDBX Classes")

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

constexpr int kLoopCount = 91;
constexpr int kLoopType = 92;
constexpr int kStyleOfIslands = 75;
constexpr int kElevationPoint = 10;

constexpr std::array kHatchOrder{10, 20, 30, 210, 220, 230, 2, 70, 71, 91};
constexpr SubclassLayout kHatchLayout{"AcDbHatch", kHatchOrder};

/// One boundary as its tags: a polyline without arcs, closed, of no other objects.
std::string loopBytes(const AcArray<AcGePoint2d>& vertices, Adesk::Int32 type,
                      const dxf::Format& format, RecordEdit& edit) {
  std::string bytes;
  dxf::putInteger(bytes, kLoopType, type | AcDbHatch::kPolyline, format);
  dxf::putInteger(bytes, 72, 0, format);
  dxf::putInteger(bytes, 73, 1, format);
  dxf::putInteger(bytes, 93, vertices.length(), format);
  for (const AcGePoint2d& vertex : vertices) {
    edit.noteNumber(vertex.x);
    edit.noteNumber(vertex.y);
    dxf::putDouble(bytes, 10, vertex.x, format);
    dxf::putDouble(bytes, 20, vertex.y, format);
  }
  dxf::putInteger(bytes, 97, 0, format);
  return bytes;
}

}  // namespace

AcDbHatch::AcDbHatch() = default;

double AcDbHatch::elevation() const {
  return pointOf(*this, kHatchLayout, kElevationPoint).z;
}

Acad::ErrorStatus AcDbHatch::setElevation(double elevation) {
  return setPoint(*this, kHatchLayout, kElevationPoint, AcGePoint3d(0.0, 0.0, elevation));
}

int AcDbHatch::numLoops() const {
  return static_cast<int>(integerOf(*this, kHatchLayout, kLoopCount));
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 type, const AcArray<AcGePoint2d>& vertices) {
  constexpr int kFewestVertices = 3;
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (vertices.length() < kFewestVertices) {
    return Acad::eInvalidInput;
  }
  const int count = numLoops();
  return change(*this, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const TagRange range = kHatchLayout.in(tags);
    std::size_t at = tags.find(kStyleOfIslands, range);
    at = at == TagList::kNone ? range.last : at;
    edit.insertBefore(at, loopBytes(vertices, type, tags.format(), edit));
    edit.setInteger(kHatchLayout, kLoopCount, count + 1);
  });
}

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

constexpr int kPoint = 10;
constexpr int kSecondPoint = 11;
constexpr int kNumber = 40;
constexpr double kFullTurnDegrees = 360.0;

/// An arc or ellipse of a boundary; where it runs clockwise its angles are counted so too.
void setEdgeRange(const TagList& tags, TagRange edge, HatchPiece& piece) {
  constexpr int kStartAngle = 50;
  constexpr int kEndAngle = 51;
  constexpr int kIsCounterClockwise = 73;
  // A full turn is told from an empty one by its written ends, before they lose their turns.
  constexpr double kWholeTurn = kFullTurnDegrees - 1e-9;
  const double start = tags.number(kStartAngle, edge, 0.0);
  const double end = tags.number(kEndAngle, edge, 360.0);
  if (std::fabs(end - start) >= kWholeTurn) {
    return;
  }
  const bool isTurned = tags.integer(kIsCounterClockwise, edge, 1) == 0;
  piece.arc.setRange(toRadians(isTurned ? -end : start), toRadians(isTurned ? -start : end));
}

AcGePoint3d flatPoint(const TagList& tags, int code, TagRange edge, double elevation) {
  AcGePoint3d point = tags.point(code, edge);
  point.z = elevation;
  return point;
}

}  // namespace

HatchPiece hatchPieceOf(const TagList& tags, TagRange edge, double elevation) {
  constexpr int kDegree = 94;
  constexpr int kWeight = 42;
  HatchPiece piece;
  piece.type = static_cast<HatchEdge>(tags.integerAt(edge.first));
  piece.start = flatPoint(tags, kPoint, edge, elevation);
  piece.end = flatPoint(tags, kSecondPoint, edge, elevation);
  if (piece.type == HatchEdge::kArc) {
    const double radius = tags.number(kNumber, edge, 0.0);
    piece.arc = {piece.start, AcGeVector3d::kXAxis * radius, AcGeVector3d::kYAxis * radius};
    setEdgeRange(tags, edge, piece);
  } else if (piece.type == HatchEdge::kEllipse) {
    const AcGeVector3d major(piece.end.x, piece.end.y, 0.0);
    const AcGeVector3d minor =
        AcGeVector3d(-major.y, major.x, 0.0) * tags.number(kNumber, edge, 1.0);
    piece.arc = {piece.start, major, minor};
    setEdgeRange(tags, edge, piece);
  } else if (piece.type == HatchEdge::kSpline) {
    const std::int64_t degree = tags.integer(kDegree, edge, 3);
    piece.spline.degree = SplineImage::degreeOf(degree);
    piece.spline.knots = numbersOf(tags, kNumber, edge);
    piece.spline.weights = numbersOf(tags, kWeight, edge);
    piece.spline.points = pointsOf(tags, kPoint, edge);
    for (AcGePoint3d& point : piece.spline.points) {
      point.z = elevation;
    }
  }
  return piece;
}

std::vector<Segment> hatchLoopOf(const TagList& tags, TagRange loop, double elevation) {
  constexpr int kBulge = 42;
  std::vector<Segment> segments;
  for (std::size_t i = loop.first; i < loop.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    if (code == kPoint) {
      segments.emplace_back().start = {tags.doubleAt(i), 0.0, elevation};
    } else if (code == kPoint + 10 && !segments.empty()) {
      segments.back().start.y = tags.doubleAt(i);
    } else if (code == kBulge && !segments.empty()) {
      segments.back().bulge = tags.doubleAt(i);
    }
  }
  for (std::size_t i = 0; i < segments.size(); ++i) {
    segments[i].end = segments[(i + 1) % segments.size()].start;
  }
  return segments;
}

namespace {

/// One edge of a boundary: [its type (72), the next edge's).
void addEdge(const TagList& tags, TagRange edge, double elevation, const AcGeMatrix3d& plane,
             AcDbExtents& box) {
  const HatchPiece piece = hatchPieceOf(tags, edge, elevation);
  if (piece.type == HatchEdge::kLine) {
    box.addPoint(plane * piece.start);
    box.addPoint(plane * piece.end);
  } else if (piece.type == HatchEdge::kArc || piece.type == HatchEdge::kEllipse) {
    ArcImage arc = piece.arc;
    arc.center = plane * piece.arc.center;
    arc.u = plane * piece.arc.u;
    arc.v = plane * piece.arc.v;
    addArc(arc, box);
  } else if (piece.type == HatchEdge::kSpline) {
    SplineImage spline = piece.spline;
    for (AcGePoint3d& point : spline.points) {
      point = plane * point;
    }
    addSpline(spline, box);
  }
}

Acad::ErrorStatus extentsOfHatch(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                 AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = hatchRange(tags);
  const TagRange boundaries = boundariesOf(tags, range);
  const AcGeMatrix3d plane = toWorld * planeToWorld(normalOf(tags, range));
  const double elevation = tags.point(kPoint, {range.first, boundaries.first}).z;
  forEachBoundary(
      tags, boundaries,
      [&](TagRange loop) {
        for (const Segment& segment : hatchLoopOf(tags, loop, elevation)) {
          addSegment(segment, plane, box);
        }
      },
      [&](TagRange edge) { addEdge(tags, edge, elevation, plane, box); });
  return Acad::eOk;
}

void setIntegerAt(RecordEdit& edit, std::size_t index, std::int64_t value) {
  std::string bytes;
  dxf::putInteger(bytes, edit.tags()[index].code, value, edit.tags().format());
  edit.replace({index, index + 1}, std::move(bytes));
}

/// Hatches are edited in their plane's coordinates.
class HatchTransform {
 public:
  HatchTransform(RecordEdit& edit, const AcGeMatrix3d& matrix)
      : m_edit(edit),
        m_tags(edit.tags()),
        m_range(hatchRange(m_tags)),
        m_parts(normalOf(m_tags, m_range), matrix),
        m_boundaries(boundariesOf(m_tags, m_range)) {
    const std::size_t height = m_tags.find(30, {m_range.first, m_boundaries.first});
    if (height != TagList::kNone) {
      m_elevation = m_tags.doubleAt(height);
      m_edit.setDoubleAt(height, (m_parts.plane.map * AcGePoint3d(0.0, 0.0, m_elevation)).z);
    }
  }

  Acad::ErrorStatus run() {
    forEachBoundary(
        m_tags, m_boundaries, [this](TagRange loop) { moveLoop(loop); },
        [this](TagRange edge) { moveEdge(edge); });
    movePattern({m_boundaries.last, m_range.last});
    transformNormal(m_edit, m_range, m_parts.plane);
    return m_needsSimilar && !m_parts.plane.isSimilar ? Acad::eCannotScaleNonUniformly : Acad::eOk;
  }

 private:
  /// A point (or vector) of the plane whose x stands at the tag.
  void movePair(std::size_t index, bool isVector) {
    if (index + 1 >= m_tags.size()) {
      return;
    }
    const double x = m_tags.doubleAt(index);
    const double y = m_tags.doubleAt(index + 1);
    const AcGeMatrix3d& map = m_parts.plane.map;
    const AcGePoint3d moved = isVector ? AcGePoint3d() + map * AcGeVector3d(x, y, 0.0)
                                       : map * AcGePoint3d(x, y, m_elevation);
    m_edit.setDoubleAt(index, moved.x);
    m_edit.setDoubleAt(index + 1, moved.y);
  }
  void scaleAt(std::size_t index) {
    m_needsSimilar = true;
    m_edit.setDoubleAt(index, m_tags.doubleAt(index) * m_parts.length);
  }
  void turnAt(std::size_t index) {
    m_needsSimilar = true;
    transformTag(m_edit, index, Angle, m_parts);
  }

  template <class Visit>
  void forEachOwn(TagRange range, Visit&& visit) {
    for (std::size_t i = range.first; i < range.last; ++i) {
      if (m_tags.isOwn(i)) {
        visit(i, m_tags[i].code);
      }
    }
  }

  void moveLoop(TagRange loop) {
    constexpr int kBulge = 42;
    forEachOwn(loop, [&](std::size_t i, int code) {
      if (code == 10) {
        movePair(i, false);
      } else if (code == kBulge && m_tags.doubleAt(i) != 0.0) {
        m_needsSimilar = true;
        m_edit.setDoubleAt(i, m_parts.plane.isMirrored ? -m_tags.doubleAt(i) : m_tags.doubleAt(i));
      }
    });
  }

  void moveEdge(TagRange edge) {
    const auto type = static_cast<HatchEdge>(m_tags.integerAt(edge.first));
    constexpr int kRadius = 40;
    forEachOwn({edge.first + 1, edge.last}, [&](std::size_t i, int code) {
      const bool isEllipse = type == HatchEdge::kEllipse;
      if (code == 10) {
        movePair(i, false);
      } else if (code == 11) {
        movePair(i, isEllipse);
      } else if (type == HatchEdge::kSpline && (code == 12 || code == 13)) {
        movePair(i, true);
      } else if (type == HatchEdge::kArc && code == kRadius) {
        scaleAt(i);
      }
    });
    if (type == HatchEdge::kArc || type == HatchEdge::kEllipse) {
      turnRange(edge, type == HatchEdge::kArc);
    }
  }

  /// Arcs count angles from the plane's X axis, ellipses from their own; both count them
  /// clockwise where they run clockwise, so that a mirrored one only changes its orientation.
  void turnRange(TagRange edge, bool isArc) {
    constexpr int kStart = 50;
    constexpr int kEnd = 51;
    constexpr int kIsCounterClockwise = 73;
    m_needsSimilar = true;
    const PlaneMap& plane = m_parts.plane;
    const std::size_t orientation = m_tags.find(kIsCounterClockwise, edge);
    const bool isCounterClockwise =
        orientation == TagList::kNone || m_tags.integerAt(orientation) != 0;
    const std::size_t start = m_tags.find(kStart, edge);
    const std::size_t end = m_tags.find(kEnd, edge);
    if (isArc && plane.turn != 0.0 && start != TagList::kNone && end != TagList::kNone) {
      // Counted in the arc's own direction after the map.
      const bool staysCounterClockwise = isCounterClockwise != plane.isMirrored;
      const double turn = toDegrees(plane.turn) * (staysCounterClockwise ? 1.0 : -1.0);
      const double from = m_tags.doubleAt(start) + turn;
      const double base = wrapped(from, kFullTurnDegrees);
      m_edit.setDoubleAt(start, base);
      m_edit.setDoubleAt(end, base + (m_tags.doubleAt(end) - m_tags.doubleAt(start)));
    }
    if (plane.isMirrored && orientation != TagList::kNone) {
      setIntegerAt(m_edit, orientation, isCounterClockwise ? 0 : 1);
    }
  }

  /// What fills the boundaries: pattern, seeds, gradient.
  void movePattern(TagRange range) {
    constexpr int kPatternAngle = 52;
    constexpr int kPatternScale = 41;
    constexpr int kLineAngle = 53;
    constexpr int kLineBase = 43;
    constexpr int kLineOffset = 45;
    constexpr int kDash = 49;
    constexpr int kSeedCount = 98;
    constexpr int kGradientAngle = 460;
    bool areSeeds = false;
    forEachOwn(range, [&](std::size_t i, int code) {
      switch (code) {
        case kPatternAngle:
        case kLineAngle:
          turnAt(i);
          break;
        case kPatternScale:
        case kDash:
          scaleAt(i);
          break;
        case kLineBase:
          movePair(i, false);
          break;
        case kLineOffset:
          movePair(i, true);
          break;
        case kSeedCount:
          areSeeds = true;
          break;
        case 10:
          if (areSeeds) {
            movePair(i, false);
          }
          break;
        case kGradientAngle:
          transformTag(m_edit, i, AngleRadians, m_parts);
          break;
        default:
          break;
      }
    });
  }

  RecordEdit& m_edit;
  const TagList& m_tags;
  TagRange m_range;
  TransformParts m_parts;
  TagRange m_boundaries;
  double m_elevation = 0.0;
  bool m_needsSimilar = false;
};

Acad::ErrorStatus transformHatch(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return HatchTransform(edit, matrix).run();
}

constexpr std::array kOwnCodes{330};  // the objects that bound it

constexpr std::array kSubclasses{kEntitySubclass, Subclass{"AcDbHatch", kNoCodes}};
// Solid, of no other object's making, islands by nesting, no seeds.
constexpr std::array kClasses{classRow<AcDbHatch>(
    "0 HATCH 100 AcDbEntity 8 0 100 AcDbHatch 10 0.0 20 0.0 30 0.0 210 0.0 220 0.0 230 1.0 2 SOLID "
    "70 1 71 0 91 0 75 0 76 1 98 0",
    kSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "HATCH",
               .since = Version::R14,
               .classes = kClasses,
               .ownCodes = kOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfHatch,
               .draw = drawHatch,
               .transform = transformHatch},
    RecordKind{.name = "MPOLYGON",
               .ownCodes = kOwnCodes,
               .isSelfContained = true,
               .extents = extentsOfHatch,
               .draw = drawHatch,
               .transform = transformHatch},
};

}  // namespace

const std::span<const RecordKind> kHatchRows{kKinds};

}  // namespace quoin::db
