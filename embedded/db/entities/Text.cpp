// TEXT, ATTRIB and ATTDEF: AcDbText and the attributes that derive from it.
#include <cmath>
#include <numbers>

#include "dbents.h"
#include "embedded/db/core/DatabaseImpl.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/MTextFields.h"
#include "embedded/db/entities/TextFields.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"
#include "embedded/db/geometry/TextMeasure.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbText, AcDbEntity, L"TEXT", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, L"ATTDEF", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbAttribute, AcDbText, L"ATTRIB", L"ObjectDBX Classes")

using namespace quoin::db;
using namespace quoin::db::text_code;

namespace {

constexpr int kPrompt = 3;
constexpr std::int64_t kBackwards = TextFields::kBackwards;
constexpr std::int64_t kUpsideDown = TextFields::kUpsideDown;
constexpr std::int64_t kIsInvisible = 1;
constexpr std::int64_t kIsConstant = 2;
constexpr int kPoints[] = {kPosition, kAlignment};
constexpr std::wstring_view kStandardStyle = L"Standard";

bool isAttribute(const AcDbObject& text) {
  return text.isKindOf(AcDbAttribute::desc()) || text.isKindOf(AcDbAttributeDefinition::desc());
}

const SubclassLayout& attributePlace(const AcDbObject& text) {
  return text.isKindOf(AcDbAttributeDefinition::desc()) ? layout::kAttributeDefinition
                                                        : layout::kAttribute;
}

/// Where the vertical mode stands: in a second AcDbText subclass, or with the attribute.
Acad::ErrorStatus setVertical(AcDbObject& text, std::int64_t mode) {
  if (isAttribute(text)) {
    return setInteger(text, attributePlace(text), kAttributeVertical, mode, 0);
  }
  return change(text, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const std::size_t present = tags.find(kVertical, layout::kText.in(tags));
    std::size_t secondMarker = TagList::kNone;
    for (std::size_t i = tags.head().last; i < tags.body().last; ++i) {
      secondMarker = tags[i].code == kMarkerCode ? i : secondMarker;
    }
    const bool hasSecond =
        secondMarker != TagList::kNone && layout::kText.in(tags).first <= secondMarker;
    if (present != TagList::kNone || !hasSecond) {
      edit.setInteger(layout::kText, kVertical, mode, 0);
    } else if (mode != 0) {
      std::string bytes;
      quoin::dxf::putInteger(bytes, kVertical, mode, tags.format());
      edit.insertBefore(secondMarker + 1, std::move(bytes));
    }
  });
}

}  // namespace

AcDbText::AcDbText() = default;

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style,
                   double height, double rotation) {
  setPosition(position);
  setTextString(text);
  if (!style.isNull()) {
    setTextStyle(style);
  }
  setHeight(height);
  setRotation(rotation);
}

AcGePoint3d AcDbText::position() const {
  return worldPointOf(*this, layout::kText, kPosition);
}

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
  return setWorldPoint(*this, layout::kText, kPosition, position);
}

AcGePoint3d AcDbText::alignmentPoint() const {
  return worldPointOf(*this, layout::kText, kAlignment);
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& point) {
  return setWorldPoint(*this, layout::kText, kAlignment, point);
}

AcDb::TextHorzMode AcDbText::horizontalMode() const {
  return static_cast<AcDb::TextHorzMode>(integerOf(*this, layout::kText, kHorizontal));
}

Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
  return setInteger(*this, layout::kText, kHorizontal, mode, 0);
}

AcDb::TextVertMode AcDbText::verticalMode() const {
  return static_cast<AcDb::TextVertMode>(
      isAttribute(*this) ? integerOf(*this, attributePlace(*this), kAttributeVertical)
                         : integerOf(*this, layout::kText, kVertical));
}

Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
  return setVertical(*this, mode);
}

bool AcDbText::isDefaultAlignment() const {
  return horizontalMode() == AcDb::kTextLeft && verticalMode() == AcDb::kTextBase;
}

double AcDbText::height() const {
  return numberOf(*this, layout::kText, kHeight);
}

Acad::ErrorStatus AcDbText::setHeight(double height) {
  return setNumber(*this, layout::kText, kHeight, height);
}

double AcDbText::widthFactor() const {
  return numberOf(*this, layout::kText, kWidthFactor, 1.0);
}

Acad::ErrorStatus AcDbText::setWidthFactor(double factor) {
  return setNumber(*this, layout::kText, kWidthFactor, factor, 1.0);
}

double AcDbText::rotation() const {
  return toRadians(numberOf(*this, layout::kText, kRotation));
}

Acad::ErrorStatus AcDbText::setRotation(double angle) {
  return setAngle(*this, layout::kText, kRotation, angle, 0.0);
}

double AcDbText::oblique() const {
  return toRadians(numberOf(*this, layout::kText, kOblique));
}

Acad::ErrorStatus AcDbText::setOblique(double angle) {
  return setAngle(*this, layout::kText, kOblique, angle, 0.0);
}

double AcDbText::thickness() const {
  return numberOf(*this, layout::kText, code::kThickness);
}

Acad::ErrorStatus AcDbText::setThickness(double thickness) {
  return setNumber(*this, layout::kText, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbText::normal() const {
  return normalOf(*this, layout::kText);
}

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, layout::kText, normal, kPoints);
}

Adesk::Boolean AcDbText::isMirroredInX() const {
  return (integerOf(*this, layout::kText, kGeneration) & kBackwards) != 0;
}

Adesk::Boolean AcDbText::isMirroredInY() const {
  return (integerOf(*this, layout::kText, kGeneration) & kUpsideDown) != 0;
}

Acad::ErrorStatus AcDbText::mirrorInX(Adesk::Boolean mirror) {
  return setFlag(*this, layout::kText, kGeneration, kBackwards, mirror);
}

Acad::ErrorStatus AcDbText::mirrorInY(Adesk::Boolean mirror) {
  return setFlag(*this, layout::kText, kGeneration, kUpsideDown, mirror);
}

ACHAR* AcDbText::textString() const {
  return newText(textOf(*this, layout::kText, kString));
}

const ACHAR* AcDbText::textStringConst() const {
  return keptText(*this, kString, textOf(*this, layout::kText, kString));
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
  return setText(*this, layout::kText, kString, text);
}

AcDbObjectId AcDbText::textStyle() const {
  return recordNamed(*this, TableKind::TextStyle,
                     textOf(*this, layout::kText, kStyle, kStandardStyle));
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
  return setRecordName(*this, layout::kText, kStyle, TableKind::TextStyle, style, kStandardStyle);
}

// --- attributes -----------------------------------------------------------------------------

AcDbAttributeDefinition::AcDbAttributeDefinition() = default;

ACHAR* AcDbAttributeDefinition::tag() const {
  return newText(textOf(*this, layout::kAttributeDefinition, code::kName));
}

ACHAR* AcDbAttributeDefinition::prompt() const {
  return newText(textOf(*this, layout::kAttributeDefinition, kPrompt));
}

Acad::ErrorStatus AcDbAttributeDefinition::setTag(const ACHAR* tag) {
  return setText(*this, layout::kAttributeDefinition, code::kName, tag);
}

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR* prompt) {
  return setText(*this, layout::kAttributeDefinition, kPrompt, prompt);
}

Adesk::Boolean AcDbAttributeDefinition::isInvisible() const {
  return (integerOf(*this, layout::kAttributeDefinition, code::kFlags) & kIsInvisible) != 0;
}

Adesk::Boolean AcDbAttributeDefinition::isConstant() const {
  return (integerOf(*this, layout::kAttributeDefinition, code::kFlags) & kIsConstant) != 0;
}

AcDbAttribute::AcDbAttribute() = default;

AcDbAttribute::AcDbAttribute(const AcGePoint3d& position, const ACHAR* text, const ACHAR* tag,
                             AcDbObjectId style) {
  setPosition(position);
  setTextString(text);
  setTag(tag);
  if (!style.isNull()) {
    setTextStyle(style);
  }
}

ACHAR* AcDbAttribute::tag() const {
  return newText(textOf(*this, layout::kAttribute, code::kName));
}

const ACHAR* AcDbAttribute::tagConst() const {
  return keptText(*this, code::kName, textOf(*this, layout::kAttribute, code::kName));
}

Acad::ErrorStatus AcDbAttribute::setTag(const ACHAR* tag) {
  return setText(*this, layout::kAttribute, code::kName, tag);
}

Adesk::Boolean AcDbAttribute::isInvisible() const {
  return (integerOf(*this, layout::kAttribute, code::kFlags) & kIsInvisible) != 0;
}

Acad::ErrorStatus AcDbAttribute::setInvisible(Adesk::Boolean invisible) {
  return setFlag(*this, layout::kAttribute, code::kFlags, kIsInvisible, invisible);
}

Adesk::Boolean AcDbAttribute::isConstant() const {
  return (integerOf(*this, layout::kAttribute, code::kFlags) & kIsConstant) != 0;
}

namespace quoin::db {
namespace {

using namespace text_code;

/// A box in a text's own axes, as seen through `toWorld`.
void addSlantedBox(double left, double bottom, double right, double top,
                   const AcGeMatrix3d& toWorld, double slant, AcDbExtents& box) {
  for (const double y : {bottom, top}) {
    box.addPoint(toWorld * AcGePoint3d(left + y * slant, y, 0.0));
    box.addPoint(toWorld * AcGePoint3d(right + y * slant, y, 0.0));
  }
}

Acad::ErrorStatus extentsOfText(const Drawn& entity, const AcGeMatrix3d& toWorld, ExtentsWalk&,
                                AcDbExtents& box) {
  if (const auto lines = linesOf(entity.tags)) {
    addMTextExtents({lines->tags(), entity.database, entity.stub, nullptr}, toWorld, box);
    return Acad::eOk;
  }
  const TextFields fields(entity.tags);
  const TextPlace place = placeOf(
      fields, lineAdvance(fields.text,
                          fontOf(entity.database, entity.tags, layout::kText.in(entity.tags))) *
                  fields.height * fields.widthFactor);
  AcDbExtents shape;
  addSlantedBox(place.left, place.bottom, place.left + place.width, place.bottom + fields.height,
                toWorld * planeToWorld(fields.normal) * place.line, std::tan(fields.oblique),
                shape);
  box.addExt(shape);
  shape.expandBy(toWorld * (fields.normal * fields.thickness));
  box.addExt(shape);
  return Acad::eOk;
}

/// The multiline text inside an attribute of several lines, which is laid out as an MTEXT
/// record.
void transformInner(RecordEdit& edit, const AcGeMatrix3d& matrix, const PlaneMap& plane) {
  constexpr int kDirection = 11;
  constexpr int kBehindText = 73;  // the first tag that follows text and direction
  const TagList& tags = edit.tags();
  if (tags.body().last == tags.xData().first) {
    return;  // nothing is inside
  }
  std::size_t directionAt = TagList::kNone;
  std::size_t angleAt = TagList::kNone;
  std::size_t insertAt = tags.xData().first;
  const auto pointAt = [&](std::size_t i) {
    return AcGePoint3d(tags.doubleAt(i), tags.doubleAt(i + 1), tags.doubleAt(i + 2));
  };
  const auto setPointAt = [&](std::size_t i, const AcGePoint3d& point) {
    for (unsigned int axis = 0; axis < 3; ++axis) {
      edit.setDoubleAt(i + axis, point[axis]);
    }
  };
  for (std::size_t i = tags.body().last; i < tags.xData().first; ++i) {
    const int code = tags[i].code;
    const bool isLength = (code >= 40 && code <= 43) || code == 46;
    if (code == kPosition && i + 2 < tags.size()) {
      setPointAt(i, matrix * pointAt(i));
    } else if (isLength) {
      edit.setDoubleAt(i, tags.doubleAt(i) * plane.scale);
    } else if (code == kDirection && i + 2 < tags.size()) {
      directionAt = i;
    } else if (code == kRotation) {
      angleAt = i;
    } else if (code == kBehindText) {
      insertAt = std::min(insertAt, i);
    }
  }
  const bool isTurned = plane.isMirrored || plane.turn != 0.0;
  if (angleAt != TagList::kNone && isTurned) {
    edit.setDoubleAt(angleAt, toDegrees(plane.angle(toRadians(tags.doubleAt(angleAt)))));
  } else if (directionAt != TagList::kNone) {
    const AcGeVector3d direction = (matrix * pointAt(directionAt).asVector()).normal();
    setPointAt(directionAt, AcGePoint3d::kOrigin + direction);
  } else if (isTurned) {
    const AcGeVector3d direction =
        planeToWorld(plane.normal) * AcGeVector3d(std::cos(plane.turn), std::sin(plane.turn), 0.0);
    std::string bytes;
    for (int axis = 0; axis < 3; ++axis) {
      dxf::putDouble(bytes, kDirection + 10 * axis, direction[static_cast<unsigned int>(axis)],
                     tags.format());
    }
    edit.insertBefore(insertAt, std::move(bytes));
  }
}

Acad::ErrorStatus transformText(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const TagList& tags = edit.tags();
  const TagRange range = layout::kText.in(tags);
  const PlaneMap plane(normalOf(tags, range), matrix);
  if (!plane.isSimilar) {
    return Acad::eCannotScaleNonUniformly;
  }
  edit.setPoint(layout::kText, kPosition, plane.map * tags.point(kPosition, range));
  if (tags.find(kAlignment, range) != TagList::kNone) {
    edit.setPoint(layout::kText, kAlignment, plane.map * tags.point(kAlignment, range));
  }
  edit.scaleDouble(layout::kText, kHeight, plane.scale);
  edit.scaleDouble(layout::kText, code::kThickness, plane.heightScale);
  double rotation = plane.angle(toRadians(tags.number(kRotation, range, 0.0)));
  if (plane.isMirrored) {
    // Written backwards, it reads along the mirrored line from the other end.
    rotation = std::fmod(rotation + std::numbers::pi, kFullTurn);
    edit.setInteger(layout::kText, kGeneration, tags.integer(kGeneration, range, 0) ^ kBackwards,
                    0);
  }
  edit.setAngle(layout::kText, kRotation, rotation, 0.0);
  edit.setVector(layout::kText, code::kNormal, plane.normal, AcGeVector3d::kZAxis);
  // Attributes of several lines keep a second point, and their text, in newer files.
  for (const SubclassLayout& attribute : {layout::kAttribute, layout::kAttributeDefinition}) {
    const TagRange own = attribute.in(tags);
    if (tags.hasMarkers() && own.first > range.last &&
        tags.find(kAlignment, own) != TagList::kNone) {
      edit.setPoint(attribute, kAlignment, plane.map * tags.point(kAlignment, own));
    }
  }
  transformInner(edit, matrix, plane);
  return Acad::eOk;
}

constexpr std::array kModeCodes{kVertical};
constexpr std::array kTextSubclasses{kEntitySubclass, Subclass{"AcDbText", kNoCodes},
                                     Subclass{"AcDbText", kModeCodes}};
constexpr std::array kAttributeSubclasses{kEntitySubclass, Subclass{"AcDbText", kNoCodes},
                                          Subclass{"AcDbAttribute", order::kAttribute}};
constexpr std::array kTextClasses{classRow<AcDbText>(
    "0 TEXT 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 1 ~ 100 AcDbText",
    kTextSubclasses)};
constexpr std::array kDefinitionClasses{classRow<AcDbAttributeDefinition>(
    "0 ATTDEF 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 1 ~ "
    "100 AcDbAttributeDefinition 3 ~ 2 ~ 70 0")};
constexpr std::array kAttributeClasses{classRow<AcDbAttribute>(
    "0 ATTRIB 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 1 ~ "
    "100 AcDbAttribute 2 ~ 70 0",
    kAttributeSubclasses)};

constexpr std::array kKinds{
    RecordKind{.name = "TEXT",
               .classes = kTextClasses,
               .ownCodes = kNoOwnCodes,
               .textStyle = &layout::kText,
               .isSelfContained = true,
               .extents = extentsOfText,
               .draw = drawText,
               .transform = transformText},
    RecordKind{.name = "ATTDEF",
               .classes = kDefinitionClasses,
               .ownCodes = kNoOwnCodes,
               .textStyle = &layout::kText,
               .isSelfContained = true,
               .extents = extentsOfText,
               .draw = drawText,
               .transform = transformText},
    RecordKind{.name = "ATTRIB",
               .classes = kAttributeClasses,
               .ownCodes = kNoOwnCodes,
               .textStyle = &layout::kText,
               .extents = extentsOfText,
               .draw = drawText,
               .transform = transformText},
};

}  // namespace

const std::span<const RecordKind> kTextRows{kKinds};

}  // namespace quoin::db
