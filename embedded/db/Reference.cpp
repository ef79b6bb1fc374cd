// Block references and their arrays.
#include "dbents.h"
#include "embedded/db/Blocks.h"
#include "embedded/db/PlaneFields.h"
#include "embedded/db/Transfer.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbBlockReference, AcDbEntity, L"INSERT", L"ObjectDBX Classes")
ACRX_CONS_DEFINE_MEMBERS(AcDbMInsertBlock, AcDbBlockReference)

using namespace quoin::db;

namespace {

constexpr int kPosition = 10;
constexpr int kScaleX = 41;
constexpr int kScaleY = 42;
constexpr int kScaleZ = 43;
constexpr int kRotation = 50;
constexpr int kColumns = 70;
constexpr int kRows = 71;
constexpr int kColumnSpacing = 44;
constexpr int kRowSpacing = 45;
constexpr int kPoints[] = {kPosition};

Acad::ErrorStatus setCount(AcDbObject& reference, int code, Adesk::UInt16 count) {
  const Acad::ErrorStatus status = checkWritable(reference);
  if (status != Acad::eOk) {
    return status;
  }
  return count > 0 ? setInteger(reference, place::kReference, code, count, 1) : Acad::eInvalidInput;
}

}  // namespace

ReferenceFields::ReferenceFields(const TagList& tags) {
  const TagRange range = place::kReference.in(tags);
  name = tags.text(code::kName, range).value_or(std::wstring());
  position = tags.point(kPosition, range);
  scale.set(tags.number(kScaleX, range, 1.0), tags.number(kScaleY, range, 1.0),
            tags.number(kScaleZ, range, 1.0));
  rotation = toRadians(tags.number(kRotation, range, 0.0));
  normal = normalOf(tags, range);
  columns = std::max<std::int64_t>(tags.integer(kColumns, range, 1), 1);
  rows = std::max<std::int64_t>(tags.integer(kRows, range, 1), 1);
  columnSpacing = tags.number(kColumnSpacing, range, 0.0);
  rowSpacing = tags.number(kRowSpacing, range, 0.0);
}

AcGeMatrix3d ReferenceFields::transform(const AcGePoint3d& base, std::int64_t column,
                                        std::int64_t row) const {
  const double cosine = std::cos(rotation);
  const double sine = std::sin(rotation);
  const AcGeVector3d x(cosine, sine, 0.0);
  const AcGeVector3d y(-sine, cosine, 0.0);
  const AcGePoint3d cell = position + x * (columnSpacing * static_cast<double>(column)) +
                           y * (rowSpacing * static_cast<double>(row));
  AcGeMatrix3d inPlane;
  inPlane.setCoordSystem(cell, x * scale.sx, y * scale.sy, AcGeVector3d::kZAxis * scale.sz);
  const AcGeMatrix3d toBase = AcGeMatrix3d().setToTranslation(AcGePoint3d::kOrigin - base);
  return planeToWorld(normal) * inPlane * toBase;
}

// --- block references -----------------------------------------------------------------------

AcDbBlockReference::AcDbBlockReference() = default;

AcDbBlockReference::AcDbBlockReference(const AcGePoint3d& position, AcDbObjectId blockTableRecord) {
  setBlockTableRecord(blockTableRecord);
  setPosition(position);
}

AcDbObjectId AcDbBlockReference::blockTableRecord() const {
  return recordNamed(*this, TableKind::Block, textOf(*this, place::kReference, code::kName));
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
  return setRecordName(*this, place::kReference, code::kName, TableKind::Block, block, {});
}

AcGePoint3d AcDbBlockReference::position() const {
  return worldPointOf(*this, place::kReference, kPosition);
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
  return setWorldPoint(*this, place::kReference, kPosition, position);
}

AcGeScale3d AcDbBlockReference::scaleFactors() const {
  return ReferenceFields(tagsOf(*this)).scale;
}

Acad::ErrorStatus AcDbBlockReference::setScaleFactors(const AcGeScale3d& scale) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (scale.sx == 0.0 || scale.sy == 0.0 || scale.sz == 0.0) {
    return Acad::eInvalidInput;
  }
  return change(*this, [&](RecordEdit& edit) {
    edit.setDouble(place::kReference, kScaleX, scale.sx, 1.0);
    edit.setDouble(place::kReference, kScaleY, scale.sy, 1.0);
    edit.setDouble(place::kReference, kScaleZ, scale.sz, 1.0);
  });
}

double AcDbBlockReference::rotation() const {
  return toRadians(numberOf(*this, place::kReference, kRotation));
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
  return setAngle(*this, place::kReference, kRotation, angle, 0.0);
}

AcGeVector3d AcDbBlockReference::normal() const {
  return normalOf(*this, place::kReference);
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, place::kReference, normal, kPoints);
}

AcGeMatrix3d AcDbBlockReference::blockTransform() const {
  const ReferenceFields fields(tagsOf(*this));
  DatabaseImpl* const database = Access::of(*this).database;
  AcGePoint3d base;
  try {
    const quoin::dxf::Block* const block = database ? blockNamed(*database, fields.name) : nullptr;
    base = block ? baseOf(*database, *block) : base;
  } catch (...) {
    statusOfException();
  }
  return fields.transform(base);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbObjectId& id, AcDbAttribute* attribute) {
  return appendPart(*this, id, attribute);
}

Acad::ErrorStatus AcDbBlockReference::appendAttribute(AcDbAttribute* attribute) {
  AcDbObjectId id;
  return appendPart(*this, id, attribute);
}

AcDbObjectIterator* AcDbBlockReference::attributeIterator() const {
  return Access::newPartIterator(*this);
}

// --- arrays ---------------------------------------------------------------------------------

AcDbMInsertBlock::AcDbMInsertBlock() = default;

Adesk::UInt16 AcDbMInsertBlock::columns() const {
  return static_cast<Adesk::UInt16>(ReferenceFields(tagsOf(*this)).columns);
}

Acad::ErrorStatus AcDbMInsertBlock::setColumns(Adesk::UInt16 count) {
  return setCount(*this, kColumns, count);
}

Adesk::UInt16 AcDbMInsertBlock::rows() const {
  return static_cast<Adesk::UInt16>(ReferenceFields(tagsOf(*this)).rows);
}

Acad::ErrorStatus AcDbMInsertBlock::setRows(Adesk::UInt16 count) {
  return setCount(*this, kRows, count);
}

double AcDbMInsertBlock::columnSpacing() const {
  return numberOf(*this, place::kReference, kColumnSpacing);
}

Acad::ErrorStatus AcDbMInsertBlock::setColumnSpacing(double spacing) {
  return setNumber(*this, place::kReference, kColumnSpacing, spacing, 0.0);
}

double AcDbMInsertBlock::rowSpacing() const {
  return numberOf(*this, place::kReference, kRowSpacing);
}

Acad::ErrorStatus AcDbMInsertBlock::setRowSpacing(double spacing) {
  return setNumber(*this, place::kReference, kRowSpacing, spacing, 0.0);
}
