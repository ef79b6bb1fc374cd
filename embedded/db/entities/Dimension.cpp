// DIMENSION and its relatives, AcDbDimension: what the drawing shows of a dimension.
#include "dbdim.h"

#include <cmath>
#include <string>

#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/geometry/Annotation.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/MTextLayout.h"
#include "embedded/db/geometry/TransformSchema.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbDimension, AcDbEntity, L"DIMENSION", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kText = 1;
constexpr int kBlockName = 2;
constexpr int kStyleName = 3;
constexpr int kTextPosition = 11;
constexpr int kBlockPosition = 12;
constexpr int kMeasurement = 42;
// The subclass that every sort of dimension has. Its tags are only read.
constexpr SubclassLayout kDimension{"AcDbDimension", {}};

}  // namespace

AcDbDimension::AcDbDimension() = default;

AcDbObjectId AcDbDimension::dimBlockId() const {
  return recordNamed(*this, TableKind::Block, textOf(*this, kDimension, kBlockName));
}

AcGePoint3d AcDbDimension::dimBlockPosition() const {
  return worldPointOf(*this, kDimension, kBlockPosition);
}

AcDbObjectId AcDbDimension::dimensionStyle() const {
  return recordNamed(*this, TableKind::DimStyle,
                     textOf(*this, kDimension, kStyleName, L"Standard"));
}

AcGePoint3d AcDbDimension::textPosition() const {
  return worldPointOf(*this, kDimension, kTextPosition);
}

const ACHAR* AcDbDimension::dimensionText() const {
  return keptText(*this, kText, textOf(*this, kDimension, kText));
}

Acad::ErrorStatus AcDbDimension::getMeasurement(double& measurement) const {
  const TagList& tags = tagsOf(*this);
  const std::size_t at = tags.find(kMeasurement, kDimension.in(tags));
  if (at == TagList::kNone) {
    return Acad::eNotApplicable;
  }
  measurement = tags.doubleAt(at);
  return Acad::eOk;
}

AcGeVector3d AcDbDimension::normal() const {
  return normalOf(*this, kDimension);
}

namespace quoin::db {
namespace {

using dxf::Version;
using enum Meaning;

/// The block shows the dimension where it was made; it has moved by its position since.
AcGeMatrix3d movedBy(const TagList& tags, TagRange range) {
  const AcGeMatrix3d plane = planeToWorld(normalOf(tags, range));
  AcGeMatrix3d moved;
  moved.setToTranslation((plane * tags.point(kBlockPosition, range)).asVector());
  return moved;
}

/// What a dimension without a block is known by.
Acad::ErrorStatus extentsOfDefinition(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                      ExtentsWalk&, AcDbExtents& box) {
  constexpr int kWorldPoints[] = {10, 13, 14, 15};
  constexpr int kPlanePoints[] = {11, 16};
  const TagList& tags = entity.tags;
  const AcGeMatrix3d plane = planeToWorld(normalOf(tags, kDimension.in(tags)));
  const TagRange all = tags.subclassAndBeyond("AcDbDimension");
  for (const int code : kWorldPoints) {
    if (tags.find(code, all) != TagList::kNone) {
      box.addPoint(toWorld * tags.point(code, all));
    }
  }
  for (const int code : kPlanePoints) {
    if (tags.find(code, all) != TagList::kNone) {
      box.addPoint(toWorld * (plane * tags.point(code, all)));
    }
  }
  return Acad::eOk;
}

/// "12.5": what a dimension measures where it says nothing else.
std::wstring measuredText(const TagList& tags, TagRange range) {
  constexpr double kPlaces = 1e4;
  std::wstring text = tags.text(kText, range).value_or(std::wstring());
  const std::size_t place = text.find(L"<>");
  if (!text.empty() && place == std::wstring::npos) {
    return text;
  }
  const double value = std::round(tags.number(kMeasurement, range, 0.0) * kPlaces) / kPlaces;
  std::wstring number = std::to_wstring(value);
  number.erase(number.find_last_not_of(L'0') + 1);
  if (!number.empty() && (number.back() == L'.' || number.back() == L',')) {
    number.pop_back();
  }
  return text.empty() ? number : text.replace(place, 2, number);
}

/// A dimension without a block: lines between the points that define it, and its text.
void drawDefinition(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  enum { kRotated, kAligned, kAngular, kDiametric, kRadial, kThreePoints, kOrdinate };
  constexpr int kDefinition = 10;
  constexpr int kFirst = 13;
  constexpr int kSecond = 14;
  constexpr int kThird = 15;
  constexpr int kAngle = 50;
  constexpr int kTextHeight = 140;
  constexpr double kUsualHeight = 0.18;
  constexpr std::int64_t kTypeBits = 7;
  const TagList& tags = entity.tags;
  const TagRange range = kDimension.in(tags);
  const TagRange all = tags.subclassAndBeyond("AcDbDimension");
  const AcGePoint3d definition = tags.point(kDefinition, all);
  const AcGePoint3d first = tags.point(kFirst, all);
  const AcGePoint3d second = tags.point(kSecond, all);
  const AcGePoint3d third = tags.point(kThird, all);
  const auto line = [&](const AcGePoint3d& a, const AcGePoint3d& b) {
    if (!(a == b)) {
      walk.stroke(linePath(toWorld * a, toWorld * b));
    }
  };
  const std::int64_t type = tags.integer(code::kFlags, range, 0) & kTypeBits;
  if (type == kRotated || type == kAligned) {
    const double angle = toRadians(tags.number(kAngle, all, 0.0));
    const AcGeVector3d span = second - first;
    AcGeVector3d along =
        planeToWorld(normalOf(tags, range)) * AcGeVector3d(std::cos(angle), std::sin(angle), 0.0);
    along = type == kAligned && span.length() > 0.0 ? span.normal() : along;
    // The dimension line runs through its point; the others stand on it.
    const AcGePoint3d foot = definition + along * (first - definition).dotProduct(along);
    const AcGePoint3d otherFoot = definition + along * (second - definition).dotProduct(along);
    line(first, foot);
    line(second, otherFoot);
    line(foot, otherFoot);
  } else if (type == kDiametric || type == kRadial) {
    line(definition, third);
  } else if (type == kThreePoints) {
    line(third, first);
    line(third, second);
  } else {
    line(first, second);
    if (type == kAngular) {
      line(third, definition);
    }
  }
  MTextSettings settings;
  settings.height = scaledVariable(entity, range, kTextHeight, kUsualHeight);
  settings.alignment = 0.5;
  settings.rise = 0.5;
  settings.style = textStyleOf(nullptr, {});
  const AcGeMatrix3d plane = planeToWorld(normalOf(tags, range));
  const AcGePoint3d place = plane * tags.point(kTextPosition, range);
  if (tags.find(kTextPosition, range) != TagList::kNone) {
    drawMText(layoutMText(measuredText(tags, range), settings),
              toWorld * frameAt(place, plane * AcGeVector3d::kXAxis, normalOf(tags, range)), walk);
  }
}

Acad::ErrorStatus extentsOfDimension(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                     ExtentsWalk& walk, AcDbExtents& box) {
  const TagList& tags = entity.tags;
  const TagRange range = kDimension.in(tags);
  const dxf::Block* const block = blockOf(entity, kBlockName, range);
  if (!block) {
    return extentsOfDefinition(entity, toWorld, walk, box);
  }
  walk.showOr(*block, toWorld * movedBy(tags, range), entity, extentsOfDefinition);
  return Acad::eOk;
}

void drawDimension(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const TagList& tags = entity.tags;
  const TagRange range = kDimension.in(tags);
  const dxf::Block* const block = blockOf(entity, kBlockName, range);
  if (!block) {
    drawDefinition(entity, toWorld, walk);
    return;
  }
  walk.showOr(*block, toWorld * movedBy(tags, range), entity, drawDefinition);
}

/// The X axis by which a dimension calls directions horizontal (51, counted clockwise) turns
/// along. A missing one is the plane's; ordinates say by it what they measure.
void transformHorizontal(RecordEdit& edit, const TransformParts& parts) {
  constexpr int kHorizontal = 51;
  const TagList& tags = edit.tags();
  const TagRange range = stretchOf(tags, "AcDbDimension");
  const std::size_t index = tags.find(kHorizontal, range);
  const bool isOrdinate = !stretchOf(tags, "AcDbOrdinateDimension").isEmpty() && tags.hasMarkers();
  const double before = index == TagList::kNone ? 0.0 : tags.doubleAt(index);
  const double turned = parts.plane.angle(-toRadians(before));
  if ((index == TagList::kNone && !isOrdinate) || turned == -toRadians(before)) {
    return;
  }
  if (index != TagList::kNone) {
    edit.setDoubleAt(index, -toDegrees(turned));
    return;
  }
  std::string bytes;
  edit.noteNumber(turned);
  dxf::putDouble(bytes, kHorizontal, -toDegrees(turned), tags.format());
  edit.insertBefore(range.last, std::move(bytes));
}

/// A dimension's block is in world coordinates.
OwnBlock ownBlockOf(DatabaseImpl& database, const TagList& tags, const AcGeMatrix3d& matrix) {
  return {anonymousBlock(database, tags, kDimension.in(tags)), matrix};
}

// The measured value (42) is computed anew by who draws the dimension.
constexpr std::array kRules{Rule{"AcDbDimension", 10, Point},
                            Rule{"AcDbDimension", 11, PlanePoint},
                            Rule{"AcDbDimension", 53, TurnedAngle},
                            Rule{"AcDbDimension", 12, PlaneDisplacement},
                            Rule{"AcDbAlignedDimension", 12, PlaneDisplacement},
                            Rule{"AcDbAlignedDimension", 13, Point},
                            Rule{"AcDbAlignedDimension", 14, Point},
                            Rule{"AcDbAlignedDimension", 50, Angle},
                            Rule{"AcDbRadialDimension", 15, Point},
                            Rule{"AcDbRadialDimension", 40, Length},
                            Rule{"AcDbDiametricDimension", 15, Point},
                            Rule{"AcDbDiametricDimension", 40, Length},
                            Rule{"AcDb3PointAngularDimension", 13, Point},
                            Rule{"AcDb3PointAngularDimension", 14, Point},
                            Rule{"AcDb3PointAngularDimension", 15, Point},
                            Rule{"AcDb3PointAngularDimension", 16, PlanePoint},
                            Rule{"AcDb2LineAngularDimension", 13, Point},
                            Rule{"AcDb2LineAngularDimension", 14, Point},
                            Rule{"AcDb2LineAngularDimension", 15, Point},
                            Rule{"AcDb2LineAngularDimension", 16, PlanePoint},
                            Rule{"AcDbOrdinateDimension", 13, Point},
                            Rule{"AcDbOrdinateDimension", 14, Point},
                            Rule{"AcDbArcDimension", 13, Point},
                            Rule{"AcDbArcDimension", 14, Point},
                            Rule{"AcDbArcDimension", 15, Point},
                            Rule{"AcDbArcDimension", 16, Point},
                            Rule{"AcDbArcDimension", 17, Point},
                            Rule{"AcDbRadialDimensionLarge", 13, Point},
                            Rule{"AcDbRadialDimensionLarge", 14, Point},
                            Rule{"AcDbRadialDimensionLarge", 15, Point}};
constexpr TransformSchema kSchema{.normalMarker = "AcDbDimension",
                                  .rules = kRules,
                                  .subclassesNeeded = 2,
                                  .finish = transformHorizontal};

// Read, copied and changed, but not made.
constexpr std::array kClasses{classRow<AcDbDimension>("")};

constexpr std::array kKinds{
    RecordKind{.name = "DIMENSION",
               .classes = kClasses,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfDimension,
               .draw = drawDimension,
               .schema = &kSchema,
               .ownBlock = ownBlockOf},
    RecordKind{.name = "ARC_DIMENSION",
               .since = Version::R2004,
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfDimension,
               .draw = drawDimension,
               .schema = &kSchema,
               .ownBlock = ownBlockOf},
    RecordKind{.name = "LARGE_RADIAL_DIMENSION",
               .ownCodes = kNoOwnCodes,
               .extents = extentsOfDimension,
               .draw = drawDimension,
               .schema = &kSchema,
               .ownBlock = ownBlockOf},
};

}  // namespace

const std::span<const RecordKind> kDimensionRows{kKinds};

}  // namespace quoin::db
