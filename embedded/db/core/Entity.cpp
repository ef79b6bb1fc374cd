// AcDbEntity: layer, colour, linetype, line weight, visibility, material.
#include "dbents.h"
#include "dbsymtb.h"
#include "embedded/db/core/EntityFields.h"
#include "embedded/os/CaseFold.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcDbEntity, AcDbObject)
ACRX_NO_CONS_DEFINE_MEMBERS(AcDbCurve, AcDbEntity)

using namespace quoin::db;
namespace dxf = quoin::dxf;
namespace os = quoin::os;

namespace {

constexpr std::wstring_view kByLayer = L"ByLayer";
constexpr std::wstring_view kByBlock = L"ByBlock";
constexpr std::int64_t kByLayerIndex = AcCmEntityColor::kACIbyLayer;

bool isByLayer(std::wstring_view name) {
  return os::sameName(name, kByLayer);
}

}  // namespace

namespace quoin::db {

AcCmColor colorOf(const TagList& tags, const SubclassLayout& layout) {
  AcCmColor color;
  const TagRange range = layout.in(tags);
  if (const std::size_t rgb = tags.find(code::kTrueColor, range); rgb != TagList::kNone) {
    const auto value = static_cast<Adesk::UInt32>(tags.integerAt(rgb));
    color.setRGB(static_cast<Adesk::UInt8>(value >> 16), static_cast<Adesk::UInt8>(value >> 8),
                 static_cast<Adesk::UInt8>(value));
    if (const auto name = tags.text(code::kColorName, range)) {
      const std::size_t dollar = name->find(L'$');
      const bool hasBook = dollar != std::wstring::npos;
      color.setNames(hasBook ? name->substr(dollar + 1).c_str() : name->c_str(),
                     hasBook ? name->substr(0, dollar).c_str() : nullptr);
    }
    return color;
  }
  std::int64_t index = tags.integer(code::kColor, range, kByLayerIndex);
  index = index < 0 ? -index : index;  // of a layer that is off
  color.setColorIndex(static_cast<Adesk::UInt16>(index <= AcCmEntityColor::kACInone ? index : 7));
  return color;
}

void setColor(RecordEdit& edit, const SubclassLayout& layout, const AcCmColor& color) {
  const TagList& tags = edit.tags();
  if (colorOf(tags, layout) == color) {
    return;  // another program's choice of a nearest index stays
  }
  const bool isLayer = layout.marker == layout::kLayer.marker;
  const std::int64_t before = tags.integer(code::kColor, layout.in(tags), kByLayerIndex);
  const bool isOff = isLayer && before < 0;
  const std::int64_t index = color.colorIndex();
  if (color.isByLayer() && !isLayer) {
    if (before != kByLayerIndex) {
      edit.remove(layout, code::kColor);
    }
  } else {
    edit.setInteger(layout, code::kColor, isOff ? -index : index);
  }
  if (!color.isByColor() || tags.format().version < dxf::Version::R2004) {
    edit.remove(layout, code::kTrueColor);
    edit.remove(layout, code::kColorName);
    return;
  }
  edit.setInteger(layout, code::kTrueColor, color.entityColor().rgb());
  if (color.hasColorName()) {
    const std::wstring book = color.hasBookName() ? std::wstring(color.bookName()) + L'$' : L"";
    edit.setText(layout, code::kColorName, book + color.colorName());
  } else {
    edit.remove(layout, code::kColorName);
  }
}

void copyColor(RecordEdit& edit, const TagList& from) {
  const TagRange range = layout::kEntity.in(from);
  if (from.find(code::kTrueColor, range) == TagList::kNone ||
      edit.tags().format().version < dxf::Version::R2004) {
    setColor(edit, layout::kEntity, colorOf(from, layout::kEntity));
    return;
  }
  for (const int integerCode : {code::kColor, code::kTrueColor}) {
    const std::size_t index = from.find(integerCode, range);
    if (index == TagList::kNone) {
      edit.remove(layout::kEntity, integerCode);
    } else {
      edit.setInteger(layout::kEntity, integerCode, from.integerAt(index));
    }
  }
  if (const auto name = from.text(code::kColorName, range)) {
    edit.setText(layout::kEntity, code::kColorName, *name);
  } else {
    edit.remove(layout::kEntity, code::kColorName);
  }
}

bool isHiddenLayer(std::wstring_view name) {
  return name.substr(name.rfind(L'|') + 1).starts_with(L'*');
}

std::wstring linetypeNameOf(const TagList& tags) {
  return tags.text(code::kLinetype, layout::kEntity.in(tags)).value_or(std::wstring(kByLayer));
}

void setLinetype(RecordEdit& edit, std::wstring_view name) {
  if (os::sameName(linetypeNameOf(edit.tags()), name)) {
    return;
  }
  if (isByLayer(name)) {
    edit.remove(layout::kEntity, code::kLinetype);
  } else {
    edit.setText(layout::kEntity, code::kLinetype, name);
  }
}

}  // namespace quoin::db

AcDbEntity::AcDbEntity() = default;
AcDbEntity::~AcDbEntity() = default;
AcDbCurve::AcDbCurve() = default;
AcDbCurve::~AcDbCurve() = default;

Adesk::Boolean AcDbCurve::isClosed() const {
  return false;
}

Acad::ErrorStatus AcDbCurve::getStartPoint(AcGePoint3d&) const {
  return Acad::eNotApplicable;
}

Acad::ErrorStatus AcDbCurve::getEndPoint(AcGePoint3d&) const {
  return Acad::eNotApplicable;
}

// --- layer ----------------------------------------------------------------------------------

ACHAR* AcDbEntity::layer() const {
  return newText(textOf(*this, layout::kEntity, code::kLayer, L"0"));
}

AcDbObjectId AcDbEntity::layerId() const {
  return recordNamed(*this, TableKind::Layer, textOf(*this, layout::kEntity, code::kLayer, L"0"));
}

Acad::ErrorStatus AcDbEntity::setLayer(const ACHAR* name, Adesk::Boolean doSubents,
                                       bool allowHiddenLayer) {
  if (!name || !*name) {
    return Acad::eInvalidInput;
  }
  try {
    if (DatabaseImpl* const database = Access::of(*this).database) {
      AcDbStub* const layer = database->layer(name);
      return layer ? setLayer(AcDbObjectId(layer), doSubents, allowHiddenLayer)
                   : Acad::eKeyNotFound;
    }
  } catch (...) {
    return statusOfException();
  }
  return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
    edit.setText(layout::kEntity, code::kLayer, name, L"0");
  });
}

Acad::ErrorStatus AcDbEntity::setLayer(AcDbObjectId layer, Adesk::Boolean doSubents,
                                       bool allowHiddenLayer) {
  AcDbStub* const stub = layer;
  if (checkRecord(*this, stub, TableKind::Layer) != Acad::eOk) {
    return checkRecord(*this, stub, TableKind::Layer) == Acad::eWrongDatabase ? Acad::eWrongDatabase
                                                                              : Acad::eInvalidLayer;
  }
  try {
    const std::wstring name = DatabaseImpl::of(*stub).recordName(*stub);
    if (isHiddenLayer(name) && !allowHiddenLayer) {
      return Acad::eInvalidLayer;
    }
    return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
      // A name that differs in case only is the same layer.
      const std::wstring before =
          edit.tags().text(code::kLayer, layout::kEntity.in(edit.tags())).value_or(L"0");
      if (!os::sameName(before, name)) {
        edit.setText(layout::kEntity, code::kLayer, name);
      }
    });
  } catch (...) {
    return statusOfException();
  }
}

// --- colour ---------------------------------------------------------------------------------

AcCmColor AcDbEntity::color() const {
  return colorOf(tagsOf(*this), layout::kEntity);
}

Adesk::UInt16 AcDbEntity::colorIndex() const {
  const AcCmColor own = color();
  const std::int64_t written = integerOf(*this, layout::kEntity, code::kColor, -1);
  const bool isNearest = own.isByColor() && written > 0 && written < kByLayerIndex;
  return isNearest ? static_cast<Adesk::UInt16>(written) : own.colorIndex();
}

Acad::ErrorStatus AcDbEntity::setColor(const AcCmColor& color, Adesk::Boolean doSubents,
                                       AcDbDatabase*) {
  return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
    quoin::db::setColor(edit, layout::kEntity, color);
  });
}

Acad::ErrorStatus AcDbEntity::setColorIndex(Adesk::UInt16 index, Adesk::Boolean doSubents) {
  if (index > kByLayerIndex) {
    return Acad::eInvalidInput;
  }
  AcCmColor color;
  color.setColorIndex(index);
  return setColor(color, doSubents);
}

// --- linetype and line weight ---------------------------------------------------------------

ACHAR* AcDbEntity::linetype() const {
  return newText(linetypeNameOf(tagsOf(*this)));
}

AcDbObjectId AcDbEntity::linetypeId() const {
  return recordNamed(*this, TableKind::Linetype, linetypeNameOf(tagsOf(*this)));
}

Acad::ErrorStatus AcDbEntity::setLinetype(const ACHAR* name, Adesk::Boolean doSubents) {
  if (!name || !*name) {
    return Acad::eInvalidInput;
  }
  try {
    DatabaseImpl* const database = Access::of(*this).database;
    const bool isBuiltIn = isByLayer(name) || os::sameName(std::wstring_view(name), kByBlock) ||
                           os::sameName(std::wstring_view(name), L"Continuous");
    if (database && !isBuiltIn && !database->record(TableKind::Linetype, name)) {
      return Acad::eKeyNotFound;
    }
  } catch (...) {
    return statusOfException();
  }
  return changeWithParts(*this, doSubents,
                         [&](RecordEdit& edit) { quoin::db::setLinetype(edit, name); });
}

Acad::ErrorStatus AcDbEntity::setLinetype(AcDbObjectId linetype, Adesk::Boolean doSubents) {
  AcDbStub* const stub = linetype;
  const Acad::ErrorStatus status = checkRecord(*this, stub, TableKind::Linetype);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    const std::wstring name = DatabaseImpl::of(*stub).recordName(*stub);
    return changeWithParts(*this, doSubents,
                           [&](RecordEdit& edit) { quoin::db::setLinetype(edit, name); });
  } catch (...) {
    return statusOfException();
  }
}

double AcDbEntity::linetypeScale() const {
  return numberOf(*this, layout::kEntity, code::kLinetypeScale, 1.0);
}

Acad::ErrorStatus AcDbEntity::setLinetypeScale(double scale, Adesk::Boolean doSubents) {
  if (!(scale > 0.0)) {
    return Acad::eInvalidInput;
  }
  return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
    if (edit.tags().format().version >= dxf::Version::R13) {
      edit.setDouble(layout::kEntity, code::kLinetypeScale, scale, 1.0);
    }
  });
}

AcDb::LineWeight AcDbEntity::lineWeight() const {
  return static_cast<AcDb::LineWeight>(
      integerOf(*this, layout::kEntity, code::kLineWeight, AcDb::kLnWtByLayer));
}

Acad::ErrorStatus AcDbEntity::setLineWeight(AcDb::LineWeight weight, Adesk::Boolean doSubents) {
  return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
    if (edit.tags().format().version >= dxf::Version::R2000) {
      edit.setInteger(layout::kEntity, code::kLineWeight, weight, AcDb::kLnWtByLayer);
    }
  });
}

// --- visibility, material, plot style -------------------------------------------------------

AcDb::Visibility AcDbEntity::visibility() const {
  return integerOf(*this, layout::kEntity, code::kVisibility) == 0 ? AcDb::kVisible
                                                                   : AcDb::kInvisible;
}

Acad::ErrorStatus AcDbEntity::setVisibility(AcDb::Visibility visibility, Adesk::Boolean doSubents) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (tagsOf(*this).format().version < dxf::Version::R13 && visibility == AcDb::kInvisible) {
    return Acad::eNotApplicable;
  }
  return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
    edit.setInteger(layout::kEntity, code::kVisibility, visibility, AcDb::kVisible);
  });
}

AcDbObjectId AcDbEntity::materialId() const {
  const DatabaseImpl* const database = Access::of(*this).database;
  if (!database) {
    return AcDbObjectId::kNull;
  }
  try {
    const TagList& tags = tagsOf(*this);
    AcDbStub* const named =
        database->byHandle(tags.handle(code::kMaterial, layout::kEntity.in(tags)));
    return AcDbObjectId(named ? named : database->material(kByLayer));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

ACHAR* AcDbEntity::material() const {
  try {
    const AcDbStub* const material = materialId();
    std::wstring name(kByLayer);
    if (material) {
      const TagList tags = DatabaseImpl::of(*material).tagsOf(*material);
      constexpr int kMaterialName = 1;
      name = tags.text(kMaterialName, tags.subclass("AcDbMaterial")).value_or(name);
    }
    return newText(name);
  } catch (...) {
    statusOfException();
    return nullptr;
  }
}

Acad::ErrorStatus AcDbEntity::setMaterial(const ACHAR* name, Adesk::Boolean doSubents) {
  if (!name || !*name) {
    return Acad::eInvalidInput;
  }
  try {
    const DatabaseImpl* const database = Access::of(*this).database;
    AcDbStub* const material = database ? database->material(name) : nullptr;
    if (!material && !isByLayer(name)) {
      return Acad::eKeyNotFound;
    }
    return setMaterial(AcDbObjectId(material), doSubents);
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus AcDbEntity::setMaterial(AcDbObjectId material, Adesk::Boolean doSubents) {
  const AcDbStub* const stub = material;
  try {
    std::uint64_t handle = 0;
    if (stub) {
      const DatabaseImpl& database = DatabaseImpl::of(*stub);
      if (database.kindOf(*stub) != "MATERIAL") {
        return Acad::eNotThatKindOfClass;
      }
      const DatabaseImpl* const own = Access::of(*this).database;
      if (own && own != &database) {
        return Acad::eWrongDatabase;
      }
      handle = stub == database.material(kByLayer) ? 0 : stub->handle;
    }
    return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
      if (edit.tags().format().version >= dxf::Version::R2007) {
        edit.setHandle(layout::kEntity, code::kMaterial, handle);
      }
    });
  } catch (...) {
    return statusOfException();
  }
}

AcDbObjectId AcDbEntity::plotStyleNameId() const {
  const DatabaseImpl* const database = Access::of(*this).database;
  const TagList& tags = tagsOf(*this);
  return database ? AcDbObjectId(
                        database->byHandle(tags.handle(code::kPlotStyle, layout::kEntity.in(tags))))
                  : AcDbObjectId::kNull;
}

// --- several at once ------------------------------------------------------------------------

Acad::ErrorStatus AcDbEntity::setPropertiesFrom(const AcDbEntity* entity,
                                                Adesk::Boolean doSubents) {
  if (!entity) {
    return Acad::eNullEntityPointer;
  }
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  try {
    const TagList& from = tagsOf(*entity);
    const TagRange range = layout::kEntity.in(from);
    const std::wstring layer = from.text(code::kLayer, range).value_or(L"0");
    DatabaseImpl* const database = Access::of(*this).database;
    if (database) {
      database->ensureRecord(TableKind::Layer, layer);
      if (const std::wstring linetype = linetypeNameOf(from);
          database != Access::of(*entity).database && !isByLayer(linetype)) {
        database->ensureRecord(TableKind::Linetype, linetype);
      }
    }
    // Handles mean nothing in another drawing.
    const DatabaseImpl* const other = Access::of(*entity).database;
    const bool isSameDrawing = !database || !other || database == other;
    return changeWithParts(*this, doSubents, [&](RecordEdit& edit) {
      const dxf::Version version = edit.tags().format().version;
      edit.setText(layout::kEntity, code::kLayer, layer, L"0");
      copyColor(edit, from);
      quoin::db::setLinetype(edit, linetypeNameOf(from));
      if (version >= dxf::Version::R13) {
        edit.setDouble(layout::kEntity, code::kLinetypeScale,
                       from.number(code::kLinetypeScale, range, 1.0), 1.0);
        edit.setInteger(layout::kEntity, code::kVisibility,
                        from.integer(code::kVisibility, range, 0), 0);
      }
      if (version >= dxf::Version::R2000) {
        edit.setInteger(layout::kEntity, code::kLineWeight,
                        from.integer(code::kLineWeight, range, AcDb::kLnWtByLayer),
                        AcDb::kLnWtByLayer);
      }
      if (version >= dxf::Version::R2004) {
        edit.setInteger(layout::kEntity, code::kTransparency,
                        from.integer(code::kTransparency, range, 0), 0);
      }
      if (isSameDrawing && version >= dxf::Version::R2000) {
        edit.setHandle(layout::kEntity, code::kPlotStyle, from.handle(code::kPlotStyle, range));
      }
      if (isSameDrawing && version >= dxf::Version::R2007) {
        edit.setHandle(layout::kEntity, code::kMaterial, from.handle(code::kMaterial, range));
      }
    });
  } catch (...) {
    return statusOfException();
  }
}

void AcDbEntity::setDatabaseDefaults(AcDbDatabase* database) {
  if (!database) {
    return;
  }
  if (const AcDbObjectId layer = database->clayer(); !layer.isNull()) {
    setLayer(layer, true, true);
  }
  setColor(database->cecolor());
  setLinetype(database->celtype());
  setLinetypeScale(database->celtscale());
  setLineWeight(database->celweight());
}

Acad::ErrorStatus AcDbEntity::getTransformedCopy(const AcGeMatrix3d& matrix,
                                                 AcDbEntity*& copy) const {
  copy = nullptr;
  AcDbEntity* const made = AcDbEntity::cast(clone());
  if (!made) {
    return Acad::eOutOfMemory;
  }
  const Acad::ErrorStatus status = made->transformBy(matrix);
  if (status == Acad::eOk) {
    copy = made;
  } else {
    delete made;
  }
  return status;
}
