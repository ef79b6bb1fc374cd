// INSERT: block references and their arrays.
#include <cmath>

#include "dbents.h"
#include "embedded/db/core/Append.h"
#include "embedded/db/core/Blocks.h"
#include "embedded/db/core/PlaneFields.h"
#include "embedded/db/entities/EntityKinds.h"
#include "embedded/db/entities/ReferenceFields.h"
#include "embedded/db/geometry/DrawWalk.h"
#include "embedded/db/geometry/EntityGeometry.h"
#include "embedded/db/geometry/PlaneTransform.h"

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
  return count > 0 ? setInteger(reference, layout::kReference, code, count, 1)
                   : Acad::eInvalidInput;
}

}  // namespace

ReferenceFields::ReferenceFields(const TagList& tags) {
  const TagRange range = layout::kReference.in(tags);
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
  return recordNamed(*this, TableKind::Block, textOf(*this, layout::kReference, code::kName));
}

Acad::ErrorStatus AcDbBlockReference::setBlockTableRecord(AcDbObjectId block) {
  return setRecordName(*this, layout::kReference, code::kName, TableKind::Block, block, {});
}

AcGePoint3d AcDbBlockReference::position() const {
  return worldPointOf(*this, layout::kReference, kPosition);
}

Acad::ErrorStatus AcDbBlockReference::setPosition(const AcGePoint3d& position) {
  return setWorldPoint(*this, layout::kReference, kPosition, position);
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
    edit.setDouble(layout::kReference, kScaleX, scale.sx, 1.0);
    edit.setDouble(layout::kReference, kScaleY, scale.sy, 1.0);
    edit.setDouble(layout::kReference, kScaleZ, scale.sz, 1.0);
  });
}

double AcDbBlockReference::rotation() const {
  return toRadians(numberOf(*this, layout::kReference, kRotation));
}

Acad::ErrorStatus AcDbBlockReference::setRotation(double angle) {
  return setAngle(*this, layout::kReference, kRotation, angle, 0.0);
}

AcGeVector3d AcDbBlockReference::normal() const {
  return normalOf(*this, layout::kReference);
}

Acad::ErrorStatus AcDbBlockReference::setNormal(const AcGeVector3d& normal) {
  return turnPlane(*this, layout::kReference, normal, kPoints);
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
  return numberOf(*this, layout::kReference, kColumnSpacing);
}

Acad::ErrorStatus AcDbMInsertBlock::setColumnSpacing(double spacing) {
  return setNumber(*this, layout::kReference, kColumnSpacing, spacing, 0.0);
}

double AcDbMInsertBlock::rowSpacing() const {
  return numberOf(*this, layout::kReference, kRowSpacing);
}

Acad::ErrorStatus AcDbMInsertBlock::setRowSpacing(double spacing) {
  return setNumber(*this, layout::kReference, kRowSpacing, spacing, 0.0);
}

namespace quoin::db {
namespace {

bool isHiddenAttribute(const TagList& attribute) {
  constexpr std::int64_t kIsInvisible = 1;
  const std::int64_t flags = attribute.integer(code::kFlags, layout::kAttribute.in(attribute), 0);
  return (flags & kIsInvisible) ||
         attribute.integer(code::kVisibility, layout::kEntity.in(attribute), 0) != 0;
}

Acad::ErrorStatus extentsOfReference(const Drawn& entity, const AcGeMatrix3d& toWorld,
                                     ExtentsWalk& walk, AcDbExtents& box) {
  const ReferenceFields fields(entity.tags);
  const dxf::Block* const block =
      entity.database ? blockNamed(*entity.database, fields.name) : nullptr;
  if (block) {
    // All cells of an array lie between its four corner cells.
    const AcGePoint3d base = baseOf(*entity.database, *block);
    const std::int64_t lastColumn = fields.columns - 1;
    const std::int64_t lastRow = fields.rows - 1;
    for (std::int64_t column = 0; column <= lastColumn;
         column += std::max<std::int64_t>(lastColumn, 1)) {
      for (std::int64_t row = 0; row <= lastRow; row += std::max<std::int64_t>(lastRow, 1)) {
        walk.show(*block, toWorld * fields.transform(base, column, row));
      }
    }
  }
  const auto addAttribute = [&](const TagList& attribute) {
    if (!isHiddenAttribute(attribute)) {
      walk.addPart({attribute, entity.database, nullptr, nullptr}, toWorld, box);
    }
  };
  if (entity.stub) {
    forEachPart(*entity.stub, addAttribute);
  } else if (entity.object) {
    forEachPart(*entity.object, addAttribute);
  }
  return Acad::eOk;
}

void drawReference(const Drawn& entity, const AcGeMatrix3d& toWorld, DrawWalk& walk) {
  const ReferenceFields fields(entity.tags);
  const dxf::Block* const block =
      entity.database ? blockNamed(*entity.database, fields.name) : nullptr;
  if (block) {
    const AcGePoint3d base = baseOf(*entity.database, *block);
    const AcGeMatrix3d first = toWorld * fields.transform(base);
    BlockCells cells{fields.columns, fields.rows, {}, {}};
    if (fields.columns > 1 || fields.rows > 1) {
      const AcGePoint3d at = first * base;
      cells.columnStep = toWorld * fields.transform(base, 1, 0) * base - at;
      cells.rowStep = toWorld * fields.transform(base, 0, 1) * base - at;
    }
    walk.show(*block, first, cells);
  }
  if (entity.stub) {
    forEachPartStub(*entity.stub, [&](const AcDbStub& part) {
      const bool isShown =
          walk.options().isAllShown || !isHiddenAttribute(entity.database->tagsOf(part));
      if (isShown) {
        walk.showPart(part, toWorld);
      }
    });
  }
}

Acad::ErrorStatus transformReference(RecordEdit& edit, const AcGeMatrix3d& matrix) {
  const ReferenceFields fields(edit.tags());
  const PlaneMap plane(fields.normal, matrix);
  const double cosine = std::cos(fields.rotation);
  const double sine = std::sin(fields.rotation);
  const AcGeVector3d x = plane.map * AcGeVector3d(cosine, sine, 0.0);
  const AcGeVector3d y = plane.map * AcGeVector3d(-sine, cosine, 0.0);
  const double xScale = x.length();
  const double yScale = y.length();
  // The block's axes must stay at right angles; else no reference can show it.
  if (!plane.keepsPerpendicular || std::fabs(x.dotProduct(y)) > kSameShape * xScale * yScale) {
    return Acad::eCannotScaleNonUniformly;
  }
  double rotation = std::atan2(x.y, x.x);
  double xSign = 1.0;
  if (plane.isMirrored) {
    xSign = -1.0;
    rotation = std::atan2(-x.y, -x.x);
  }
  const bool isTurned = plane.isMirrored || plane.turn != 0.0 || !plane.isSimilar;
  const double xFactor = xSign * (plane.isSimilar ? plane.scale : xScale);
  const double yFactor = plane.isSimilar ? plane.scale : yScale;
  const auto setFactor = [&](int code, double before, double factor) {
    if (factor != 1.0) {
      edit.setDouble(layout::kReference, code, before * factor, 1.0);
    }
  };
  edit.setPoint(layout::kReference, kPosition, plane.map * fields.position);
  setFactor(kScaleX, fields.scale.sx, xFactor);
  setFactor(kScaleY, fields.scale.sy, yFactor);
  setFactor(kScaleZ, fields.scale.sz, plane.heightScale);
  if (isTurned) {
    edit.setAngle(layout::kReference, kRotation, rotation < 0.0 ? rotation + kFullTurn : rotation,
                  0.0);
  }
  edit.scaleDouble(layout::kReference, kColumnSpacing, xFactor);
  edit.scaleDouble(layout::kReference, kRowSpacing, yFactor);
  edit.setVector(layout::kReference, code::kNormal, plane.normal, AcGeVector3d::kZAxis);
  return Acad::eOk;
}

Acad::ErrorStatus transformAttribute(RecordEdit& edit, const TagList&, const AcGeMatrix3d& matrix) {
  return entityKind("ATTRIB")->transform(edit, matrix);
}

constexpr std::array kReferenceSubclasses{kEntitySubclass,
                                          Subclass{"AcDbBlockReference", kNoCodes}};
constexpr std::array kArraySubclasses{kEntitySubclass, Subclass{"AcDbMInsertBlock", kNoCodes}};
constexpr std::array kClasses{
    classRow<AcDbBlockReference>(
        "0 INSERT 100 AcDbEntity 8 0 100 AcDbBlockReference 2 ~ 10 0.0 20 0.0 30 0.0",
        kReferenceSubclasses),
    classRow<AcDbMInsertBlock>(
        "0 INSERT 100 AcDbEntity 8 0 100 AcDbMInsertBlock 2 ~ 10 0.0 20 0.0 30 0.0",
        kArraySubclasses)};

const ClassRow* classOfReference(const TagList& tags, const AcDbStub*) {
  const TagRange range = layout::kReference.in(tags);
  const bool isArray = tags.integer(kColumns, range, 1) > 1 || tags.integer(kRows, range, 1) > 1;
  return &kClasses[isArray ? 1 : 0];
}

constexpr std::array kKinds{
    RecordKind{.name = "INSERT",
               .classes = kClasses,
               .classOf = classOfReference,
               .ownCodes = kNoOwnCodes,
               .parts = Parts::Optional,
               .isSelfContained = true,
               .extents = extentsOfReference,
               .draw = drawReference,
               .transform = transformReference,
               .transformPart = transformAttribute},
};

}  // namespace

const std::span<const RecordKind> kBlockReferenceRows{kKinds};

}  // namespace quoin::db
