#include "embedded/db/entities/InPlace.h"

#include <algorithm>
#include <array>

#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/db/core/Blocks.h"
#include "embedded/db/core/EntityFields.h"
#include "embedded/db/core/RecordKinds.h"
#include "embedded/db/entities/HatchBoundaries.h"
#include "embedded/db/entities/ReferenceFields.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"

namespace quoin::db {
namespace {

constexpr std::wstring_view kLayerZero = L"0";
constexpr std::wstring_view kByLayer = L"ByLayer";
constexpr std::wstring_view kByBlock = L"ByBlock";
constexpr std::wstring_view kContinuous = L"Continuous";
constexpr Adesk::UInt16 kForeground = 7;  // what "by block" is outside of blocks
constexpr std::int64_t kTransparencyByBlock = 0x01000000;
constexpr int kConstantAttribute = 2;

std::int64_t transparencyOf(const TagList& tags) {
  return tags.integer(code::kTransparency, layout::kEntity.in(tags), 0);
}

/// The transparency of a layer, which stands in extended data.
std::int64_t layerTransparency(const TagList& layer) {
  constexpr int kValue = 1071;
  const TagRange data = layer.xData(L"AcCmTransparency");
  for (std::size_t i = data.first; i < data.last; ++i) {
    if (layer[i].code == kValue) {
      return layer.integerAt(i);
    }
  }
  return 0;
}

/// What is passed on to an entity of another layer: by layer stands for the layer's own values
/// then.
Inherited spelledOut(DatabaseImpl& database, const Inherited& outer, std::wstring_view layer) {
  Inherited values = outer;
  const AcDbStub* const record =
      os::sameName(outer.layer, layer) ? nullptr : database.layer(outer.layer);
  if (!record) {
    return values;
  }
  const TagList tags = database.tagsOf(*record);
  const TagRange range = layout::kLayer.in(tags);
  if (values.color.isByLayer()) {
    values.color = colorOf(tags, layout::kLayer);
  }
  if (os::sameName(values.linetype, kByLayer)) {
    const auto name = tags.text(code::kLinetype, range);
    values.linetype = name ? std::wstring_view(*name) : kContinuous;
  }
  if (values.lineWeight == AcDb::kLnWtByLayer) {
    values.lineWeight = static_cast<AcDb::LineWeight>(
        tags.integer(code::kLineWeight, range, AcDb::kLnWtByLwDefault));
  }
  if (values.transparency == 0) {
    values.transparency = layerTransparency(tags);
  }
  return values;
}

/// What "by block" is in model space.
Inherited plain() {
  Inherited values;
  values.layer = kLayerZero;
  values.color.setColorIndex(kForeground);
  values.linetype = kContinuous;
  values.lineWeight = AcDb::kLnWtByLwDefault;
  return values;
}

/// The properties of an entity inside an insert, as its record must spell them outside of it.
Inherited propertiesOf(DatabaseImpl& database, const TagList& tags, const Inherited* outer) {
  Inherited own;
  own.layer = database.layerSpelling(database.layerNameOf(tags));
  if (outer && os::sameName(own.layer, kLayerZero)) {
    own.layer = outer->layer;
  }
  own.color = colorOf(tags, layout::kEntity);
  own.linetype = linetypeNameOf(tags);
  own.lineWeight = static_cast<AcDb::LineWeight>(
      tags.integer(code::kLineWeight, layout::kEntity.in(tags), AcDb::kLnWtByLayer));
  own.transparency = transparencyOf(tags);
  const Inherited values = outer ? spelledOut(database, *outer, own.layer) : plain();
  if (own.color.isByBlock()) {
    own.color = values.color;
  }
  if (os::sameName(own.linetype, kByBlock)) {
    own.linetype = values.linetype;
  }
  if (own.lineWeight == AcDb::kLnWtByBlock) {
    own.lineWeight = values.lineWeight;
  }
  if (own.transparency == kTransparencyByBlock) {
    own.transparency = values.transparency;
  }
  return own;
}

/// Writes what an entity, or one of its parts, inherits.
Acad::ErrorStatus inherit(AcDbObject& entity, DatabaseImpl& database, const Inherited& outer) {
  return change(entity, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const Inherited values = propertiesOf(database, tags, &outer);
    if (!os::sameName(database.layerNameOf(tags), values.layer)) {
      edit.setText(layout::kEntity, code::kLayer, values.layer, kLayerZero);
    }
    if (colorOf(tags, layout::kEntity).isByBlock()) {
      setColor(edit, layout::kEntity, values.color);
    }
    if (os::sameName(linetypeNameOf(tags), kByBlock)) {
      setLinetype(edit, values.linetype);
    }
    if (tags.integer(code::kLineWeight, layout::kEntity.in(tags), AcDb::kLnWtByLayer) ==
        AcDb::kLnWtByBlock) {
      edit.setInteger(layout::kEntity, code::kLineWeight, values.lineWeight, AcDb::kLnWtByLayer);
    }
    if (transparencyOf(tags) == kTransparencyByBlock) {
      if (values.transparency == 0) {
        edit.remove(layout::kEntity, code::kTransparency);
      } else {
        edit.setInteger(layout::kEntity, code::kTransparency, values.transparency);
      }
    }
  });
}

/// Unties a hatch from the entities of the block that it was made of.
Acad::ErrorStatus untieHatch(AcDbEntity& hatch) {
  constexpr int kAssociative = 71;
  constexpr int kSourceCount = 97;
  constexpr int kSource = 330;
  return change(hatch, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const TagRange range = hatchRange(tags);
    const TagRange boundaries = boundariesOf(tags, range);
    const auto setZero = [&](std::size_t index) {
      if (index != TagList::kNone && tags.integerAt(index) != 0) {
        std::string bytes;
        dxf::putInteger(bytes, tags[index].code, 0, tags.format());
        edit.replace({index, index + 1}, std::move(bytes));
      }
    };
    setZero(tags.find(kAssociative, {range.first, boundaries.first}));
    for (std::size_t i = boundaries.first; i < boundaries.last; ++i) {
      // The number of a spline's fit points has this code too, but no entities behind it.
      const bool hasSources =
          tags[i].code == kSourceCount && i + 1 < boundaries.last && tags[i + 1].code == kSource;
      if (!hasSources) {
        continue;
      }
      setZero(i);
      std::size_t end = i + 1;
      while (end < boundaries.last && tags[end].code == kSource) {
        ++end;
      }
      edit.replace({i + 1, end}, "");
      i = end - 1;
    }
  });
}

std::string causeOf(Acad::ErrorStatus status, std::string_view kind) {
  if (status == Acad::eCannotScaleNonUniformly) {
    return "holds " + std::string(kind) + " that uneven scaling would make another kind of entity";
  }
  return "holds " + std::string(kind) +
         " that cannot be moved: " + os::toUtf8(acadErrorStatusText(status));
}

bool hasLiveHandle(const DatabaseImpl& database, const TagList& tags, const TagRange& group) {
  for (std::size_t i = group.first; i < group.last; ++i) {
    const AcDbStub* const named =
        tags[i].code == kGroupCode ? nullptr : database.byHandle(tags.handleAt(i));
    if (named && !named->erased) {
      return true;
    }
  }
  return false;
}

/// What hangs on an entity beside its own tags and cannot go to a copy.
std::string whatHangsOn(const DatabaseImpl& database, const TagList& tags) {
  return hasLiveHandle(database, tags, tags.group("{ACAD_XDICTIONARY"))
             ? "an extension dictionary (a clip, parameters, other data)"
             : "";
}

std::string whyBlockStays(DatabaseImpl& database, const TagList& insert) {
  constexpr int kExplodable = 280;
  AcDbStub* const record = database.record(TableKind::Block, ReferenceFields(insert).name);
  if (!record) {
    return "names no block of the drawing";
  }
  const AcDbObjectPointer<AcDbBlockTableRecord> block(AcDbObjectId(record), AcDb::kForRead);
  if (block.openStatus() == Acad::eOk &&
      (block->isFromExternalReference() || block->isFromOverlayReference())) {
    return "shows an external reference";
  }
  const TagList tags = database.tagsOf(*record);
  return tags.integer(kExplodable, layout::kBlockRecord.in(tags), 1) == 0
             ? "shows a block that is marked as not to be exploded"
             : "";
}

}  // namespace

Inherited inheritedFrom(const AcDbObjectId& insert, const Inherited* outer) {
  const AcDbStub* const stub = insert;
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  return propertiesOf(database, database.tagsOf(*stub), outer);
}

std::string whyIndivisible(const AcDbObjectId& id) {
  const AcDbStub* const stub = id;
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  const TagList tags = database.tagsOf(*stub);
  if (const std::string hanging = whatHangsOn(database, tags); !hanging.empty()) {
    return "has " + hanging;
  }
  if (hasLiveHandle(database, tags, tags.group("{ACAD_REACTORS"))) {
    return "is held by another object (a group, a dimension)";
  }
  if (!tags.xData().isEmpty()) {
    return "has extended data of " + os::toUtf8(tags.textAt(tags.xData().first));
  }
  if (tags.integer(code::kVisibility, layout::kEntity.in(tags), 0) != 0) {
    return "is invisible";
  }
  if (database.kindOf(*stub) != "INSERT") {
    return "";
  }
  bool hasParts = false;
  forEachPartStub(*stub, [&](const AcDbStub&) { hasParts = true; });
  return hasParts ? "has attributes" : whyBlockStays(database, tags);
}

bool showsInInserts(const AcDbObjectId& entity) {
  const AcDbStub* const stub = entity;
  const DatabaseImpl& database = DatabaseImpl::of(*stub);
  if (database.kindOf(*stub) != "ATTDEF") {
    return true;
  }
  const TagList tags = database.tagsOf(*stub);
  const TagRange range = layout::kAttributeDefinition.in(tags);
  return (tags.integer(code::kFlags, range, 0) & kConstantAttribute) != 0;
}

std::unique_ptr<AcDbEntity> copyInPlace(const AcDbObjectId& entity, const AcGeMatrix3d& matrix,
                                        const Inherited& inherited, std::string& cause) {
  const AcDbStub* const stub = entity;
  DatabaseImpl& database = DatabaseImpl::of(*stub);
  const std::string kind(database.kindOf(*stub));
  if (kind == "ATTDEF") {
    cause = "holds an attribute with a constant value";
    return nullptr;
  }
  const RecordKind* const row = entityKind(kind);
  if (!row || !row->isSelfContained) {
    cause = "holds " + kind + ", which cannot be taken out of its block";
    return nullptr;
  }
  if (const std::string hanging = whatHangsOn(database, database.tagsOf(*stub)); !hanging.empty()) {
    cause = "holds " + kind + " with " + hanging;
    return nullptr;
  }
  const AcDbObjectPointer<AcDbEntity> source(entity, AcDb::kForRead);
  std::unique_ptr<AcDbEntity> copy(
      source.openStatus() == Acad::eOk ? static_cast<AcDbEntity*>(source->clone()) : nullptr);
  Acad::ErrorStatus status = copy ? copy->transformBy(matrix) : Acad::eOutOfMemory;
  if (status == Acad::eOk && (kind == "HATCH" || kind == "MPOLYGON")) {
    status = untieHatch(*copy);
  }
  if (status == Acad::eOk) {
    status = inherit(*copy, database, inherited);
  }
  // The attributes of an insert inherit from that insert, as they did.
  const std::size_t parts = !copy || kind == "INSERT" ? 0 : Access::of(*copy).own().parts.size();
  for (std::size_t i = 0; status == Acad::eOk && i < parts; ++i) {
    status = inherit(*Access::of(*copy).own().parts[i], database, inherited);
  }
  if (status != Acad::eOk) {
    cause = causeOf(status, kind);
    return nullptr;
  }
  return copy;
}

}  // namespace quoin::db
