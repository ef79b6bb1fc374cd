// Records of symbol tables: layers, linetypes, text styles, applications, coordinate systems.
#include "dbsymtb.h"
#include "embedded/db/core/EntityFields.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbLayerTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbLinetypeTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbRegAppTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbUCSTableRecord, AcDbSymbolTableRecord)
ACRX_CONS_DEFINE_MEMBERS(AcDbViewportTableRecord, AcDbSymbolTableRecord)

using namespace quoin::db;
namespace dxf = quoin::dxf;

// --- layers ---------------------------------------------------------------------------------

namespace {
constexpr std::int64_t kFrozen = 1;
constexpr std::int64_t kLocked = 4;
constexpr int kPlottable = 290;
constexpr std::int64_t kWhite = 7;
constexpr std::wstring_view kContinuous = L"Continuous";
}  // namespace

AcDbLayerTableRecord::AcDbLayerTableRecord() = default;

bool AcDbLayerTableRecord::isOff() const {
  return integerOf(*this, layout::kLayer, code::kColor, kWhite) < 0;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsOff(bool off) {
  return change(*this, [&](RecordEdit& edit) {
    const std::int64_t color =
        edit.tags().integer(code::kColor, layout::kLayer.in(edit.tags()), kWhite);
    const std::int64_t shown = color < 0 ? -color : color;
    edit.setInteger(layout::kLayer, code::kColor, off ? -shown : shown);
  });
}

bool AcDbLayerTableRecord::isFrozen() const {
  return (integerOf(*this, layout::kLayer, code::kFlags) & kFrozen) != 0;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsFrozen(bool frozen) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  const AcDbDatabase* const drawing = database();
  if (frozen && drawing && drawing->clayer() == objectId()) {
    return Acad::eNotApplicable;
  }
  return setFlag(*this, layout::kLayer, code::kFlags, kFrozen, frozen);
}

bool AcDbLayerTableRecord::isLocked() const {
  return (integerOf(*this, layout::kLayer, code::kFlags) & kLocked) != 0;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsLocked(bool locked) {
  return setFlag(*this, layout::kLayer, code::kFlags, kLocked, locked);
}

bool AcDbLayerTableRecord::isHidden() const {
  return isHiddenLayer(textOf(*this, layout::kSymbol, code::kName));
}

bool AcDbLayerTableRecord::isPlottable() const {
  return integerOf(*this, layout::kLayer, kPlottable, 1) != 0;
}

Acad::ErrorStatus AcDbLayerTableRecord::setIsPlottable(bool plottable) {
  return change(*this, [&](RecordEdit& edit) {
    if (edit.tags().format().version >= dxf::Version::R2000) {
      edit.setInteger(layout::kLayer, kPlottable, plottable ? 1 : 0, 1);
    }
  });
}

AcCmColor AcDbLayerTableRecord::color() const {
  return colorOf(tagsOf(*this), layout::kLayer);
}

Acad::ErrorStatus AcDbLayerTableRecord::setColor(const AcCmColor& color) {
  return change(*this, [&](RecordEdit& edit) { quoin::db::setColor(edit, layout::kLayer, color); });
}

AcDbObjectId AcDbLayerTableRecord::linetypeObjectId() const {
  return recordNamed(*this, TableKind::Linetype,
                     textOf(*this, layout::kLayer, code::kLinetype, kContinuous));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLinetypeObjectId(AcDbObjectId linetype) {
  return setRecordName(*this, layout::kLayer, code::kLinetype, TableKind::Linetype, linetype,
                       kContinuous);
}

AcDb::LineWeight AcDbLayerTableRecord::lineWeight() const {
  return static_cast<AcDb::LineWeight>(
      integerOf(*this, layout::kLayer, code::kLineWeight, AcDb::kLnWtByLwDefault));
}

Acad::ErrorStatus AcDbLayerTableRecord::setLineWeight(AcDb::LineWeight weight) {
  return change(*this, [&](RecordEdit& edit) {
    if (edit.tags().format().version >= dxf::Version::R2000) {
      edit.setInteger(layout::kLayer, code::kLineWeight, weight, AcDb::kLnWtByLwDefault);
    }
  });
}

AcDbObjectId AcDbLayerTableRecord::materialId() const {
  const DatabaseImpl* const database = Access::of(*this).database;
  const TagList& tags = tagsOf(*this);
  return database ? AcDbObjectId(
                        database->byHandle(tags.handle(code::kMaterial, layout::kLayer.in(tags))))
                  : AcDbObjectId::kNull;
}

// --- linetypes ------------------------------------------------------------------------------

namespace {
constexpr int kComments = 3;
constexpr int kPatternLength = 40;
constexpr int kDashCount = 73;
constexpr int kDash = 49;
}  // namespace

AcDbLinetypeTableRecord::AcDbLinetypeTableRecord() = default;

ACHAR* AcDbLinetypeTableRecord::comments() const {
  return newText(textOf(*this, layout::kLinetype, kComments));
}

double AcDbLinetypeTableRecord::patternLength() const {
  return numberOf(*this, layout::kLinetype, kPatternLength);
}

int AcDbLinetypeTableRecord::numDashes() const {
  return static_cast<int>(integerOf(*this, layout::kLinetype, kDashCount));
}

double AcDbLinetypeTableRecord::dashLengthAt(int index) const {
  const TagList& tags = tagsOf(*this);
  const TagRange range = layout::kLinetype.in(tags);
  std::size_t at = tags.find(kDash, range);
  for (int i = 0; i < index && at != TagList::kNone; ++i) {
    at = tags.find(kDash, range, at + 1);
  }
  return index < 0 || at == TagList::kNone ? 0.0 : tags.doubleAt(at);
}

// --- text styles ----------------------------------------------------------------------------

namespace {
constexpr int kFontFile = 3;
constexpr int kBigFontFile = 4;
constexpr int kTextSize = 40;
constexpr int kXScale = 41;
constexpr int kOblique = 50;
constexpr std::int64_t kIsShapeFile = 1;
constexpr std::int64_t kIsVertical = 4;
}  // namespace

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() = default;

Acad::ErrorStatus AcDbTextStyleTableRecord::fileName(const ACHAR*& fileName) const {
  fileName = keptText(*this, kFontFile, textOf(*this, layout::kTextStyle, kFontFile));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* fileName) {
  return setText(*this, layout::kTextStyle, kFontFile, fileName);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::bigFontFileName(const ACHAR*& fileName) const {
  fileName = keptText(*this, kBigFontFile, textOf(*this, layout::kTextStyle, kBigFontFile));
  return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setBigFontFileName(const ACHAR* fileName) {
  return setText(*this, layout::kTextStyle, kBigFontFile, fileName);
}

double AcDbTextStyleTableRecord::textSize() const {
  return numberOf(*this, layout::kTextStyle, kTextSize);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
  return setNumber(*this, layout::kTextStyle, kTextSize, size);
}

double AcDbTextStyleTableRecord::xScale() const {
  return numberOf(*this, layout::kTextStyle, kXScale, 1.0);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double factor) {
  return setNumber(*this, layout::kTextStyle, kXScale, factor, 1.0);
}

double AcDbTextStyleTableRecord::obliquingAngle() const {
  return toRadians(numberOf(*this, layout::kTextStyle, kOblique));
}

bool AcDbTextStyleTableRecord::isShapeFile() const {
  return (integerOf(*this, layout::kTextStyle, code::kFlags) & kIsShapeFile) != 0;
}

bool AcDbTextStyleTableRecord::isVertical() const {
  return (integerOf(*this, layout::kTextStyle, code::kFlags) & kIsVertical) != 0;
}

// --- applications, views, coordinate systems ------------------------------------------------

namespace {
constexpr SubclassLayout kUcs{"AcDbUCSTableRecord", order::kRecordName};
}  // namespace

AcDbRegAppTableRecord::AcDbRegAppTableRecord() = default;
AcDbViewTableRecord::AcDbViewTableRecord() = default;
AcDbViewportTableRecord::AcDbViewportTableRecord() = default;
AcDbUCSTableRecord::AcDbUCSTableRecord() = default;

AcGePoint3d AcDbUCSTableRecord::origin() const {
  constexpr int kOrigin = 10;
  return pointOf(*this, kUcs, kOrigin);
}

AcGeVector3d AcDbUCSTableRecord::xAxis() const {
  constexpr int kXAxis = 11;
  return pointOf(*this, kUcs, kXAxis, {1.0, 0.0, 0.0}).asVector();
}

AcGeVector3d AcDbUCSTableRecord::yAxis() const {
  constexpr int kYAxis = 12;
  return pointOf(*this, kUcs, kYAxis, {0.0, 1.0, 0.0}).asVector();
}
