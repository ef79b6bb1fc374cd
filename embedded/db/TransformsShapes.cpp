// transformBy of ellipses, hatches, multileaders, and of what is placed with a scale and a
// rotation: underlays, shapes and tables.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "embedded/db/EntityGeometry.h"
#include "embedded/db/HatchBoundaries.h"
#include "embedded/db/ObjectImpl.h"
#include "embedded/db/TransformSchema.h"

namespace quoin::db {
namespace {

using enum Meaning;

constexpr double kTurn = 2.0 * std::numbers::pi;
constexpr double kDegrees = 360.0;

double wrapped(double value, double turn) {
  const double rest = std::fmod(value, turn);
  return rest < 0.0 ? rest + turn : rest;
}

void setIntegerAt(RecordEdit& edit, std::size_t index, std::int64_t value) {
  std::string bytes;
  dxf::putInteger(bytes, edit.tags()[index].code, value, edit.tags().format());
  edit.replace({index, index + 1}, std::move(bytes));
}

void setVectorAt(RecordEdit& edit, std::size_t index, const AcGeVector3d& vector) {
  edit.setDoubleAt(index, vector.x);
  edit.setDoubleAt(index + 1, vector.y);
  edit.setDoubleAt(index + 2, vector.z);
}

}  // namespace

// --- ellipses -----------------------------------------------------------------------------------

Acad::ErrorStatus transformEllipse(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kCenter = 10;
  constexpr int kMajor = 11;
  constexpr int kRatio = 40;
  constexpr int kStart = 41;
  constexpr int kEnd = 42;
  const TagList& tags = edit.tags();
  const TagRange range = tags.subclass("AcDbEllipse");
  const TransformParts parts(normalOf(tags, range), matrix);
  const std::size_t center = tags.find(kCenter, range);
  const std::size_t major = tags.find(kMajor, range);
  const std::size_t ratioAt = tags.find(kRatio, range);
  if (center == TagList::kNone || major == TagList::kNone || major + 2 >= range.last ||
      ratioAt == TagList::kNone) {
    return Acad::eInvalidInput;
  }
  transformTag(edit, center, Point, parts);
  const AcGeVector3d u = tags.point(kMajor, range).asVector();
  const double ratio = tags.doubleAt(ratioAt);
  const AcGeVector3d v = normalOf(tags, range).crossProduct(u) * ratio;
  // The image is centre + U cos t + V sin t with conjugate half diameters; its axes are where
  // the derivative of the distance vanishes: tan 2t = 2 U.V / (U.U - V.V).
  AcGeVector3d newMajor = matrix * u;
  double shift = 0.0;
  if (!parts.plane.isSimilar) {
    const AcGeVector3d imageU = newMajor;
    const AcGeVector3d imageV = matrix * v;
    shift = 0.5 * std::atan2(2.0 * imageU.dotProduct(imageV),
                             imageU.dotProduct(imageU) - imageV.dotProduct(imageV));
    newMajor = imageU * std::cos(shift) + imageV * std::sin(shift);
    const AcGeVector3d newMinor = imageV * std::cos(shift) - imageU * std::sin(shift);
    edit.setDoubleAt(ratioAt, newMinor.length() / newMajor.length());
  }
  setVectorAt(edit, major, newMajor);
  const std::size_t startAt = tags.find(kStart, range);
  const std::size_t endAt = tags.find(kEnd, range);
  const double start = startAt == TagList::kNone ? 0.0 : tags.doubleAt(startAt);
  const double end = endAt == TagList::kNone ? kTurn : tags.doubleAt(endAt);
  const bool isWhole = std::fabs(end - start) >= kTurn - 1.0e-12;
  if (!isWhole && startAt != TagList::kNone && endAt != TagList::kNone &&
      (parts.plane.isMirrored || shift != 0.0)) {
    // A mirrored curve runs the other way round.
    const double newStart = parts.plane.isMirrored ? shift - end : start - shift;
    const double newEnd = parts.plane.isMirrored ? shift - start : end - shift;
    const double first = wrapped(newStart, kTurn);
    const double last = wrapped(newEnd, kTurn);
    edit.setDoubleAt(startAt, first);
    edit.setDoubleAt(endAt, last <= first ? last + kTurn : last);
  }
  transformNormal(edit, range, parts.plane);
  return Acad::eOk;
}

// --- hatches
// --------------------------------------------------------------------------------------

namespace {

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
  /// clockwise where they run clockwise, so that a mirrored one only changes its sense.
  void turnRange(TagRange edge, bool isArc) {
    constexpr int kStart = 50;
    constexpr int kEnd = 51;
    constexpr int kIsCounterClockwise = 73;
    m_needsSimilar = true;
    const PlaneMap& plane = m_parts.plane;
    const std::size_t sense = m_tags.find(kIsCounterClockwise, edge);
    const bool isCounterClockwise = sense == TagList::kNone || m_tags.integerAt(sense) != 0;
    const std::size_t start = m_tags.find(kStart, edge);
    const std::size_t end = m_tags.find(kEnd, edge);
    if (isArc && plane.turn != 0.0 && start != TagList::kNone && end != TagList::kNone) {
      // Counted in the arc's own sense after the map.
      const bool staysCounterClockwise = isCounterClockwise != plane.isMirrored;
      const double turn = toDegrees(plane.turn) * (staysCounterClockwise ? 1.0 : -1.0);
      const double from = m_tags.doubleAt(start) + turn;
      const double base = wrapped(from, kDegrees);
      m_edit.setDoubleAt(start, base);
      m_edit.setDoubleAt(end, base + (m_tags.doubleAt(end) - m_tags.doubleAt(start)));
    }
    if (plane.isMirrored && sense != TagList::kNone) {
      setIntegerAt(m_edit, sense, isCounterClockwise ? 0 : 1);
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

}  // namespace

Acad::ErrorStatus transformHatch(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  return HatchTransform(edit, matrix).run();
}

// --- multileaders
// -----------------------------------------------------------------------------------

namespace {

/// The parts of a multileader's context, nested by braces.
enum class Level { kOutside, kContext, kLeader, kLine };

struct LeaderRule {
  Level level;
  int code;
  Meaning meaning;
};

constexpr std::array kLeaderRules{
    LeaderRule{Level::kOutside, 41, Length},       LeaderRule{Level::kOutside, 42, Length},
    LeaderRule{Level::kOutside, 45, Length},       LeaderRule{Level::kContext, 40, Length},
    LeaderRule{Level::kContext, 10, Point},        LeaderRule{Level::kContext, 41, Length},
    LeaderRule{Level::kContext, 140, Length},      LeaderRule{Level::kContext, 145, Length},
    LeaderRule{Level::kContext, 11, Normal},       LeaderRule{Level::kContext, 12, Point},
    LeaderRule{Level::kContext, 13, Direction},    LeaderRule{Level::kContext, 42, AngleRadians},
    LeaderRule{Level::kContext, 43, Length},       LeaderRule{Level::kContext, 44, Length},
    LeaderRule{Level::kContext, 14, Normal},       LeaderRule{Level::kContext, 15, Point},
    LeaderRule{Level::kContext, 46, AngleRadians}, LeaderRule{Level::kContext, 110, Point},
    LeaderRule{Level::kContext, 111, Direction},   LeaderRule{Level::kContext, 112, Direction},
    LeaderRule{Level::kLeader, 10, Point},         LeaderRule{Level::kLeader, 11, Direction},
    LeaderRule{Level::kLeader, 12, Point},         LeaderRule{Level::kLeader, 13, Point},
    LeaderRule{Level::kLeader, 40, Length},        LeaderRule{Level::kLine, 10, Point},
    LeaderRule{Level::kLine, 11, Point},           LeaderRule{Level::kLine, 12, Point}};

/// The level behind a tag that opens or closes one.
Level levelBehind(Level level, std::string_view value) {
  if (!value.empty() && value.back() == '{') {
    return value.starts_with("CONTEXT")       ? Level::kContext
           : value.starts_with("LEADER_LINE") ? Level::kLine
                                              : Level::kLeader;
  }
  return level == Level::kLine     ? Level::kLeader
         : level == Level::kLeader ? Level::kContext
                                   : Level::kOutside;
}

/// The sixteen numbers, row by row, that place the block of a multileader.
void transformBlockMatrix(RecordEdit& edit, const std::vector<std::size_t>& at,
                          const AcGeMatrix3d& matrix) {
  if (at.size() != 16) {
    return;
  }
  AcGeMatrix3d before;
  for (std::size_t i = 0; i < at.size(); ++i) {
    before.entry[i / 4][i % 4] = edit.tags().doubleAt(at[i]);
  }
  const AcGeMatrix3d after = matrix * before;
  for (std::size_t i = 0; i < at.size(); ++i) {
    edit.setDoubleAt(at[i], after.entry[i / 4][i % 4]);
  }
}

}  // namespace

Acad::ErrorStatus transformMultileader(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr int kFirstBrace = 300;
  constexpr int kLastBrace = 305;
  constexpr int kBlockMatrix = 47;
  constexpr int kTextNormal = 11;
  const TagList& tags = edit.tags();
  const TagRange range = tags.subclass("AcDbMLeader");
  const AcGeVector3d normal = tags.point(kTextNormal, range, AcGePoint3d(0.0, 0.0, 1.0)).asVector();
  const TransformParts parts(normal.length() > 0.0 ? normal.normal() : AcGeVector3d::kZAxis,
                             matrix);
  if (!parts.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  Level level = Level::kOutside;
  std::vector<std::size_t> blockMatrix;
  for (std::size_t i = range.first; i < range.last; ++i) {
    const int code = tags[i].code;
    const std::string_view value = dxf::trimmedValue(tags[i]);
    if (code >= kFirstBrace && code <= kLastBrace && !value.empty() &&
        (value.back() == '{' || value == "}")) {
      level = levelBehind(level, value);
      continue;
    }
    if (level == Level::kContext && code == kBlockMatrix) {
      blockMatrix.push_back(i);
    }
    const auto rule =
        std::find_if(kLeaderRules.begin(), kLeaderRules.end(),
                     [&](const LeaderRule& one) { return one.level == level && one.code == code; });
    if (rule != kLeaderRules.end() && tags.isOwn(i)) {
      transformTag(edit, i, rule->meaning, parts);
    }
  }
  transformBlockMatrix(edit, blockMatrix, matrix);
  return Acad::eOk;
}

// --- what is placed with a scale and a rotation
// -----------------------------------------------------

namespace {

/// Where the factors and the rotation of a placed entity stand.
struct PlacedCodes {
  std::string_view marker;
  int rotation;    // degrees
  int sideFactor;  // the factor along X, which a mirrored one has with the other sign
  std::span<const int> lengths;
};

Acad::ErrorStatus transformPlaced(RecordEdit& edit, const AcGeMatrix3d& matrix,
                                  const PlacedCodes& codes) {
  const TagList& tags = edit.tags();
  const TagRange range = tags.subclass(codes.marker);
  const TransformParts parts(normalOf(tags, range), matrix);
  if (!parts.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  if (const std::size_t at = tags.find(10, range); at != TagList::kNone) {
    transformTag(edit, at, PlanePoint, parts);
  }
  for (const int code : codes.lengths) {
    const std::size_t at = tags.find(code, range);
    if (at != TagList::kNone) {
      const bool isTurned = code == codes.sideFactor && parts.plane.isMirrored;
      edit.setDoubleAt(at, tags.doubleAt(at) * (isTurned ? -parts.length : parts.length));
    }
  }
  const std::array order{10, 20, 30, 40, 41, 42, 43, codes.rotation, 210, 220, 230};
  const Place place{codes.marker, order};
  const bool isInLengths = std::find(codes.lengths.begin(), codes.lengths.end(),
                                     codes.sideFactor) != codes.lengths.end();
  if (parts.plane.isMirrored && !isInLengths) {
    edit.setDouble(place, codes.sideFactor, -tags.number(codes.sideFactor, range, 1.0), 1.0);
  }
  if (parts.plane.isMirrored || parts.plane.turn != 0.0) {
    // The X axis of a mirrored one points the other way.
    const double rotation = toRadians(tags.number(codes.rotation, range, 0.0));
    const double half = parts.plane.isMirrored ? std::numbers::pi : 0.0;
    edit.setAngle(place, codes.rotation, wrapped(parts.plane.angle(rotation) + half, kTurn), 0.0);
  }
  transformNormal(edit, range, parts.plane);
  return Acad::eOk;
}

}  // namespace

Acad::ErrorStatus transformUnderlay(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr std::array kFactors{41, 42, 43};
  return transformPlaced(edit, matrix, {"AcDbUnderlayReference", 50, 41, kFactors});
}

Acad::ErrorStatus transformShape(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  constexpr std::array kLengths{40, 39};
  return transformPlaced(edit, matrix, {"AcDbShape", 50, 41, kLengths});
}

}  // namespace quoin::db
