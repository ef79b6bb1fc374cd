// AcDbText and the attributes that derive from it.
#include "dbents.h"
#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/PlaneFields.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbText, AcDbEntity, L"TEXT", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbAttributeDefinition, AcDbText, L"ATTDEF", L"ObjectDBX Classes")
ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbAttribute, AcDbText, L"ATTRIB", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kPosition = 10;
constexpr int kAlignment = 11;
constexpr int kHeight = 40;
constexpr int kWidthFactor = 41;
constexpr int kRotation = 50;
constexpr int kOblique = 51;
constexpr int kString = 1;
constexpr int kStyle = 7;
constexpr int kGeneration = 71;
constexpr int kHorizontal = 72;
constexpr int kVertical = 73;
constexpr int kAttributeVertical = 74;  // 73 is an attribute's field length
constexpr int kPrompt = 3;
constexpr std::int64_t kBackwards = 2;
constexpr std::int64_t kUpsideDown = 4;
constexpr std::int64_t kIsInvisible = 1;
constexpr std::int64_t kIsConstant = 2;
constexpr int kPoints[] = {kPosition, kAlignment};
constexpr std::wstring_view kStandardStyle = L"Standard";

bool isAttribute(const AcDbObject& text) {
  return text.isKindOf(AcDbAttribute::desc()) || text.isKindOf(AcDbAttributeDefinition::desc());
}

const Place& attributePlace(const AcDbObject& text) {
  return text.isKindOf(AcDbAttributeDefinition::desc()) ? place::kAttributeDefinition
                                                        : place::kAttribute;
}

/// Where the vertical mode stands: in a second AcDbText subclass, or with the attribute.
Acad::ErrorStatus setVertical(AcDbObject& text, std::int64_t mode) {
  if (isAttribute(text)) {
    return setInteger(text, attributePlace(text), kAttributeVertical, mode, 0);
  }
  return change(text, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const std::size_t present = tags.find(kVertical, place::kText.in(tags));
    std::size_t secondMarker = TagList::kNone;
    for (std::size_t i = tags.head().last; i < tags.body().last; ++i) {
      secondMarker = tags[i].code == kMarkerCode ? i : secondMarker;
    }
    const bool hasSecond =
        secondMarker != TagList::kNone && place::kText.in(tags).first <= secondMarker;
    if (present != TagList::kNone || !hasSecond) {
      edit.setInteger(place::kText, kVertical, mode, 0);
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
  return worldPointOf(*this, place::kText, kPosition);
}

Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& position) {
  return setWorldPoint(*this, place::kText, kPosition, position);
}

AcGePoint3d AcDbText::alignmentPoint() const {
  return worldPointOf(*this, place::kText, kAlignment);
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& point) {
  return setWorldPoint(*this, place::kText, kAlignment, point);
}

AcDb::TextHorzMode AcDbText::horizontalMode() const {
  return static_cast<AcDb::TextHorzMode>(integerOf(*this, place::kText, kHorizontal));
}

Acad::ErrorStatus AcDbText::setHorizontalMode(AcDb::TextHorzMode mode) {
  return setInteger(*this, place::kText, kHorizontal, mode, 0);
}

AcDb::TextVertMode AcDbText::verticalMode() const {
  return static_cast<AcDb::TextVertMode>(
      isAttribute(*this) ? integerOf(*this, attributePlace(*this), kAttributeVertical)
                         : integerOf(*this, place::kText, kVertical));
}

Acad::ErrorStatus AcDbText::setVerticalMode(AcDb::TextVertMode mode) {
  return setVertical(*this, mode);
}

bool AcDbText::isDefaultAlignment() const {
  return horizontalMode() == AcDb::kTextLeft && verticalMode() == AcDb::kTextBase;
}

double AcDbText::height() const {
  return numberOf(*this, place::kText, kHeight);
}

Acad::ErrorStatus AcDbText::setHeight(double height) {
  return setNumber(*this, place::kText, kHeight, height);
}

double AcDbText::widthFactor() const {
  return numberOf(*this, place::kText, kWidthFactor, 1.0);
}

Acad::ErrorStatus AcDbText::setWidthFactor(double factor) {
  return setNumber(*this, place::kText, kWidthFactor, factor, 1.0);
}

double AcDbText::rotation() const {
  return toRadians(numberOf(*this, place::kText, kRotation));
}

Acad::ErrorStatus AcDbText::setRotation(double angle) {
  return setAngle(*this, place::kText, kRotation, angle, 0.0);
}

double AcDbText::oblique() const {
  return toRadians(numberOf(*this, place::kText, kOblique));
}

Acad::ErrorStatus AcDbText::setOblique(double angle) {
  return setAngle(*this, place::kText, kOblique, angle, 0.0);
}

double AcDbText::thickness() const {
  return numberOf(*this, place::kText, code::kThickness);
}

Acad::ErrorStatus AcDbText::setThickness(double thickness) {
  return setNumber(*this, place::kText, code::kThickness, thickness, 0.0);
}

AcGeVector3d AcDbText::normal() const {
  return normalOf(*this, place::kText);
}

Acad::ErrorStatus AcDbText::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, place::kText, normal, kPoints);
}

Adesk::Boolean AcDbText::isMirroredInX() const {
  return (integerOf(*this, place::kText, kGeneration) & kBackwards) != 0;
}

Adesk::Boolean AcDbText::isMirroredInY() const {
  return (integerOf(*this, place::kText, kGeneration) & kUpsideDown) != 0;
}

Acad::ErrorStatus AcDbText::mirrorInX(Adesk::Boolean mirror) {
  return setFlag(*this, place::kText, kGeneration, kBackwards, mirror);
}

Acad::ErrorStatus AcDbText::mirrorInY(Adesk::Boolean mirror) {
  return setFlag(*this, place::kText, kGeneration, kUpsideDown, mirror);
}

ACHAR* AcDbText::textString() const {
  return newText(textOf(*this, place::kText, kString));
}

const ACHAR* AcDbText::textStringConst() const {
  return keptText(*this, kString, textOf(*this, place::kText, kString));
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
  return setText(*this, place::kText, kString, text);
}

AcDbObjectId AcDbText::textStyle() const {
  return recordNamed(*this, TableKind::TextStyle,
                     textOf(*this, place::kText, kStyle, kStandardStyle));
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
  return setRecordName(*this, place::kText, kStyle, TableKind::TextStyle, style, kStandardStyle);
}

// --- attributes -----------------------------------------------------------------------------

AcDbAttributeDefinition::AcDbAttributeDefinition() = default;

ACHAR* AcDbAttributeDefinition::tag() const {
  return newText(textOf(*this, place::kAttributeDefinition, code::kName));
}

ACHAR* AcDbAttributeDefinition::prompt() const {
  return newText(textOf(*this, place::kAttributeDefinition, kPrompt));
}

Acad::ErrorStatus AcDbAttributeDefinition::setTag(const ACHAR* tag) {
  return setText(*this, place::kAttributeDefinition, code::kName, tag);
}

Acad::ErrorStatus AcDbAttributeDefinition::setPrompt(const ACHAR* prompt) {
  return setText(*this, place::kAttributeDefinition, kPrompt, prompt);
}

Adesk::Boolean AcDbAttributeDefinition::isInvisible() const {
  return (integerOf(*this, place::kAttributeDefinition, code::kFlags) & kIsInvisible) != 0;
}

Adesk::Boolean AcDbAttributeDefinition::isConstant() const {
  return (integerOf(*this, place::kAttributeDefinition, code::kFlags) & kIsConstant) != 0;
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
  return newText(textOf(*this, place::kAttribute, code::kName));
}

const ACHAR* AcDbAttribute::tagConst() const {
  return keptText(*this, code::kName, textOf(*this, place::kAttribute, code::kName));
}

Acad::ErrorStatus AcDbAttribute::setTag(const ACHAR* tag) {
  return setText(*this, place::kAttribute, code::kName, tag);
}

Adesk::Boolean AcDbAttribute::isInvisible() const {
  return (integerOf(*this, place::kAttribute, code::kFlags) & kIsInvisible) != 0;
}

Acad::ErrorStatus AcDbAttribute::setInvisible(Adesk::Boolean invisible) {
  return setFlag(*this, place::kAttribute, code::kFlags, kIsInvisible, invisible);
}

Adesk::Boolean AcDbAttribute::isConstant() const {
  return (integerOf(*this, place::kAttribute, code::kFlags) & kIsConstant) != 0;
}
