#include "embedded/db/Registry.h"

#include <array>
#include <unordered_map>

#include "dbdict.h"
#include "dbdim.h"
#include "dbelipse.h"
#include "dbents.h"
#include "dbmaterial.h"
#include "dbmstyle.h"
#include "dbmtext.h"
#include "dbpl.h"
#include "dbspline.h"
#include "dbsymtb.h"
#include "embedded/db/PolylineKind.h"

namespace quoin::db {
namespace {

using dxf::Version;

template <class T>
AcDbObject* make() {
  return new T;
}

template <class T>
constexpr ClassEntry entry(std::string_view kind, std::string_view newRecord,
                           Version since = Version::R10,
                           std::span<const Subclass> subclasses = {}) {
  return {&T::desc, &make<T>, kind, newRecord, since, subclasses};
}

// --- subclasses of the kinds that R12 has too -----------------------------------------------

constexpr std::array<int, 0> kNoCodes{};
constexpr std::array kArcCodes{50, 51};
constexpr std::array kTextModeCodes{73};
constexpr std::array kVertexCodes{10, 20, 30, 40, 41, 42, 70, 50, 71, 72, 73, 74};

constexpr Subclass kEntitySubclass{"AcDbEntity", order::kEntity};
constexpr std::array kPointParts{kEntitySubclass, Subclass{"AcDbPoint", kNoCodes}};
constexpr std::array kLineParts{kEntitySubclass, Subclass{"AcDbLine", kNoCodes}};
constexpr std::array kFaceParts{kEntitySubclass, Subclass{"AcDbFace", kNoCodes}};
constexpr std::array kCircleParts{kEntitySubclass, Subclass{"AcDbCircle", kNoCodes}};
constexpr std::array kArcParts{kEntitySubclass, Subclass{"AcDbCircle", kNoCodes},
                               Subclass{"AcDbArc", kArcCodes}};
constexpr std::array kTextParts{kEntitySubclass, Subclass{"AcDbText", kNoCodes},
                                Subclass{"AcDbText", kTextModeCodes}};
constexpr std::array kAttributeParts{kEntitySubclass, Subclass{"AcDbText", kNoCodes},
                                     Subclass{"AcDbAttribute", order::kAttribute}};
constexpr std::array kMInsertParts{kEntitySubclass, Subclass{"AcDbMInsertBlock", kNoCodes}};
constexpr std::array kReferenceParts{kEntitySubclass, Subclass{"AcDbBlockReference", kNoCodes}};
constexpr std::array kVertex2dParts{kEntitySubclass, Subclass{"AcDbVertex", kNoCodes},
                                    Subclass{"AcDb2dVertex", kVertexCodes}};
constexpr std::array kVertex3dParts{kEntitySubclass, Subclass{"AcDbVertex", kNoCodes},
                                    Subclass{"AcDb3dPolylineVertex", kVertexCodes}};
constexpr std::array kPolyline2dParts{kEntitySubclass, Subclass{"AcDb2dPolyline", kNoCodes}};
constexpr std::array kPolyline3dParts{kEntitySubclass, Subclass{"AcDb3dPolyline", kNoCodes}};
constexpr std::array kEndParts{kEntitySubclass};
// Nothing but the handle comes in front of a style's own tags.
constexpr std::array kDimStyleHandleCodes{code::kDimStyleHandle};
constexpr std::array kDimStyleParts{Subclass{"AcDbSymbolTableRecord", kDimStyleHandleCodes},
                                    Subclass{"AcDbDimStyleTableRecord", kNoCodes}};

// --- the classes ------------------------------------------------------------------------------

const std::array kEntries{
    entry<AcDbPoint>("POINT", "0 POINT 100 AcDbEntity 8 0 100 AcDbPoint 10 0.0 20 0.0 30 0.0",
                     Version::R10, kPointParts),
    entry<AcDbLine>("LINE",
                    "0 LINE 100 AcDbEntity 8 0 100 AcDbLine 10 0.0 20 0.0 30 0.0 11 0.0 21 0.0 "
                    "31 0.0",
                    Version::R10, kLineParts),
    entry<AcDbFace>("3DFACE",
                    "0 3DFACE 100 AcDbEntity 8 0 100 AcDbFace 10 0.0 20 0.0 30 0.0 11 0.0 21 0.0 "
                    "31 0.0 12 0.0 22 0.0 32 0.0 13 0.0 23 0.0 33 0.0",
                    Version::R10, kFaceParts),
    entry<AcDbCircle>("CIRCLE",
                      "0 CIRCLE 100 AcDbEntity 8 0 100 AcDbCircle 10 0.0 20 0.0 30 0.0 40 0.0",
                      Version::R10, kCircleParts),
    entry<AcDbArc>("ARC",
                   "0 ARC 100 AcDbEntity 8 0 100 AcDbCircle 10 0.0 20 0.0 30 0.0 40 0.0 "
                   "100 AcDbArc 50 0.0 51 0.0",
                   Version::R10, kArcParts),
    entry<AcDbText>(
        "TEXT",
        "0 TEXT 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 1 ~ 100 AcDbText",
        Version::R10, kTextParts),
    entry<AcDbAttributeDefinition>(
        "ATTDEF",
        "0 ATTDEF 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 1 ~ "
        "100 AcDbAttributeDefinition 3 ~ 2 ~ 70 0"),
    entry<AcDbAttribute>("ATTRIB",
                         "0 ATTRIB 100 AcDbEntity 8 0 100 AcDbText 10 0.0 20 0.0 30 0.0 40 0.0 "
                         "1 ~ 100 AcDbAttribute 2 ~ 70 0",
                         Version::R10, kAttributeParts),
    entry<AcDbBlockReference>(
        "INSERT", "0 INSERT 100 AcDbEntity 8 0 100 AcDbBlockReference 2 ~ 10 0.0 20 0.0 30 0.0",
        Version::R10, kReferenceParts),
    entry<AcDbMInsertBlock>(
        "INSERT", "0 INSERT 100 AcDbEntity 8 0 100 AcDbMInsertBlock 2 ~ 10 0.0 20 0.0 30 0.0",
        Version::R10, kMInsertParts),
    entry<AcDb2dPolyline>(
        "POLYLINE",
        "0 POLYLINE 100 AcDbEntity 8 0 100 AcDb2dPolyline 66 1 10 0.0 20 0.0 30 0.0 70 0",
        Version::R10, kPolyline2dParts),
    entry<AcDb3dPolyline>(
        "POLYLINE",
        "0 POLYLINE 100 AcDbEntity 8 0 100 AcDb3dPolyline 66 1 10 0.0 20 0.0 30 0.0 70 8",
        Version::R10, kPolyline3dParts),
    entry<AcDb2dVertex>("VERTEX",
                        "0 VERTEX 100 AcDbEntity 8 0 100 AcDbVertex 100 AcDb2dVertex 10 0.0 "
                        "20 0.0 30 0.0",
                        Version::R10, kVertex2dParts),
    entry<AcDb3dPolylineVertex>("VERTEX",
                                "0 VERTEX 100 AcDbEntity 8 0 100 AcDbVertex "
                                "100 AcDb3dPolylineVertex 10 0.0 20 0.0 30 0.0 70 32",
                                Version::R10, kVertex3dParts),
    entry<AcDbSequenceEnd>("SEQEND", "0 SEQEND 100 AcDbEntity 8 0", Version::R10, kEndParts),
    entry<AcDbPolyline>("LWPOLYLINE", "0 LWPOLYLINE 100 AcDbEntity 8 0 100 AcDbPolyline 90 0 70 0",
                        Version::R14),
    entry<AcDbMText>("MTEXT",
                     "0 MTEXT 100 AcDbEntity 8 0 100 AcDbMText 10 0.0 20 0.0 30 0.0 40 0.2 41 0.0 "
                     "71 1 72 5 1 ~",
                     Version::R13),
    entry<AcDbEllipse>("ELLIPSE",
                       "0 ELLIPSE 100 AcDbEntity 8 0 100 AcDbEllipse 10 0.0 20 0.0 30 0.0 11 1.0 "
                       "21 0.0 31 0.0 40 1.0 41 0.0 42 6.283185307179586",
                       Version::R13),
    // Read, copied and changed, but not made: a new one has no record.
    entry<AcDbDimension>("DIMENSION", ""),
    entry<AcDbSpline>("SPLINE", "", Version::R13),
    // Records of symbol tables.
    entry<AcDbLayerTableRecord>(
        "LAYER",
        "0 LAYER 100 AcDbSymbolTableRecord 100 AcDbLayerTableRecord 2 ~ 70 0 62 7 6 Continuous "
        "370 -3"),
    entry<AcDbLinetypeTableRecord>(
        "LTYPE",
        "0 LTYPE 100 AcDbSymbolTableRecord 100 AcDbLinetypeTableRecord 2 ~ 70 0 3 ~ 72 65 73 0 "
        "40 0.0"),
    entry<AcDbTextStyleTableRecord>(
        "STYLE",
        "0 STYLE 100 AcDbSymbolTableRecord 100 AcDbTextStyleTableRecord 2 ~ 70 0 40 0.0 41 1.0 "
        "50 0.0 71 0 42 2.5 3 txt 4 ~"),
    entry<AcDbDimStyleTableRecord>(
        "DIMSTYLE", "0 DIMSTYLE 100 AcDbSymbolTableRecord 100 AcDbDimStyleTableRecord 2 ~ 70 0",
        Version::R10, kDimStyleParts),
    entry<AcDbRegAppTableRecord>(
        "APPID", "0 APPID 100 AcDbSymbolTableRecord 100 AcDbRegAppTableRecord 2 ~ 70 0"),
    entry<AcDbUCSTableRecord>("UCS",
                              "0 UCS 100 AcDbSymbolTableRecord 100 AcDbUCSTableRecord 2 ~ 70 0 "
                              "10 0.0 20 0.0 30 0.0 11 1.0 21 0.0 31 0.0 12 0.0 22 1.0 32 0.0"),
    entry<AcDbViewTableRecord>("VIEW",
                               "0 VIEW 100 AcDbSymbolTableRecord 100 AcDbViewTableRecord 2 ~ 70 0"),
    entry<AcDbViewportTableRecord>(
        "VPORT", "0 VPORT 100 AcDbSymbolTableRecord 100 AcDbViewportTableRecord 2 ~ 70 0"),
    entry<AcDbBlockTableRecord>(
        "BLOCK_RECORD",
        "0 BLOCK_RECORD 100 AcDbSymbolTableRecord 100 AcDbBlockTableRecord 2 ~ 70 0 280 1 281 0"),
};

// Objects of dictionaries: records of the OBJECTS section and none other.
const std::array kObjectEntries{
    entry<AcDbDictionary>("DICTIONARY", "0 DICTIONARY 100 AcDbDictionary 281 1", Version::R13),
    entry<AcDbDictionaryWithDefault>("ACDBDICTIONARYWDFLT",
                                     "0 ACDBDICTIONARYWDFLT 100 AcDbDictionary 281 1 "
                                     "100 AcDbDictionaryWithDefault",
                                     Version::R2000),
    entry<AcDbMlineStyle>("MLINESTYLE",
                          "0 MLINESTYLE 100 AcDbMlineStyle 2 ~ 70 0 3 ~ 62 256 51 90.0 52 90.0 "
                          "71 0",
                          Version::R13),
    entry<AcDbMaterial>("MATERIAL", "0 MATERIAL 100 AcDbMaterial 1 ~ 2 ~", Version::R2007),
};

const ClassEntry* objectEntry(std::string_view kind) {
  for (const ClassEntry& entry : kObjectEntries) {
    if (entry.kind == kind) {
      return &entry;
    }
  }
  return nullptr;
}

const std::array kTableEntries{
    entry<AcDbBlockTable>("BLOCK_RECORD", ""),
    entry<AcDbLayerTable>("LAYER", ""),
    entry<AcDbLinetypeTable>("LTYPE", ""),
    entry<AcDbTextStyleTable>("STYLE", ""),
    entry<AcDbDimStyleTable>("DIMSTYLE", ""),
    entry<AcDbRegAppTable>("APPID", ""),
    entry<AcDbUCSTable>("UCS", ""),
    entry<AcDbViewTable>("VIEW", ""),
    entry<AcDbViewportTable>("VPORT", ""),
};
static_assert(kTableEntries.size() == kTableKinds);  // in the order of TableKind

/// The first entry of each kind.
const ClassEntry* firstEntry(std::string_view kind) {
  static const std::unordered_map<std::string_view, const ClassEntry*> byKind = [] {
    std::unordered_map<std::string_view, const ClassEntry*> map;
    for (const ClassEntry& entry : kEntries) {
      map.emplace(entry.kind, &entry);
    }
    return map;
  }();
  const auto found = byKind.find(kind);
  return found == byKind.end() ? nullptr : found->second;
}

const ClassEntry* polylineEntry(PolylineKind kind, AcRxClass* flat, AcRxClass* spatial) {
  return kind == PolylineKind::Mesh ? nullptr
                                    : entryOf(kind == PolylineKind::Spatial ? spatial : flat);
}

const ClassEntry* vertexEntry(PolylineKind owner, const TagList& tags) {
  constexpr std::int64_t kIsOfMesh = 64 | 128;
  const bool isOfMesh = (tags.integer(code::kFlags, tags.body(), 0) & kIsOfMesh) != 0;
  return isOfMesh ? nullptr
                  : polylineEntry(owner, AcDb2dVertex::desc(), AcDb3dPolylineVertex::desc());
}

/// A vertex without its polyline: its own flags are all there is.
const ClassEntry* vertexEntry(const TagList& tags) {
  constexpr std::int64_t kIsSpatial = 32;
  const bool isSpatial = (tags.integer(code::kFlags, tags.body(), 0) & kIsSpatial) != 0;
  return vertexEntry(isSpatial ? PolylineKind::Spatial : PolylineKind::Flat, tags);
}

/// What a vertex is its polyline says: some writers leave the vertices' flags out.
const ClassEntry* vertexEntry(const AcDbStub& stub) {
  const DatabaseImpl& database = DatabaseImpl::of(stub);
  const TagList tags = database.tagsOf(stub);
  const AcDbStub* const owner = stub.role == dxf::Role::SubEntity ? stub.owner : nullptr;
  return owner && database.kindOf(*owner) == "POLYLINE"
             ? vertexEntry(polylineKindOf(database.tagsOf(*owner)), tags)
             : vertexEntry(tags);
}

const ClassEntry* referenceEntry(const TagList& tags) {
  constexpr int kColumns = 70;
  constexpr int kRows = 71;
  const TagRange range = place::kReference.in(tags);
  const bool isArray = tags.integer(kColumns, range, 1) > 1 || tags.integer(kRows, range, 1) > 1;
  return entryOf(isArray ? AcDbMInsertBlock::desc() : AcDbBlockReference::desc());
}

}  // namespace

const ClassEntry* entryOf(const AcRxClass* descriptor) {
  static const std::unordered_map<const AcRxClass*, const ClassEntry*> byClass = [] {
    std::unordered_map<const AcRxClass*, const ClassEntry*> map;
    for (const ClassEntry& entry : kEntries) {
      map.emplace(entry.descriptor(), &entry);
    }
    for (const ClassEntry& entry : kObjectEntries) {
      map.emplace(entry.descriptor(), &entry);
    }
    return map;
  }();
  const auto found = byClass.find(descriptor);
  return found == byClass.end() ? nullptr : found->second;
}

const ClassEntry* entryOf(std::string_view kind, const TagList& tags) {
  if (kind == "POLYLINE") {
    return polylineEntry(polylineKindOf(tags), AcDb2dPolyline::desc(), AcDb3dPolyline::desc());
  }
  if (kind == "VERTEX") {
    return vertexEntry(tags);
  }
  return kind == "INSERT" ? referenceEntry(tags) : firstEntry(kind);
}

const ClassEntry* entryOf(const AcDbStub& stub) {
  const DatabaseImpl& database = DatabaseImpl::of(stub);
  switch (stub.role) {
    case dxf::Role::Table: {
      TableKind kind{};
      return database.isTable(stub, kind) ? &kTableEntries[static_cast<std::size_t>(kind)]
                                          : nullptr;
    }
    case dxf::Role::TableRecord:
      return firstEntry(database.kindOf(stub));
    case dxf::Role::Entity:
    case dxf::Role::SubEntity: {
      const std::string_view kind = database.kindOf(stub);
      if (kind == "VERTEX") {
        return vertexEntry(stub);
      }
      const bool needsTags = kind == "POLYLINE" || kind == "INSERT";
      return needsTags ? entryOf(kind, database.tagsOf(stub)) : firstEntry(kind);
    }
    case dxf::Role::Object:
      return objectEntry(database.kindOf(stub));
    case dxf::Role::BlockBegin:
    case dxf::Role::BlockEnd:
    case dxf::Role::Other:
      break;
  }
  return nullptr;
}

dxf::Version firstVersionOf(std::string_view kind) {
  static const std::unordered_map<std::string_view, Version> versions{
      {"LWPOLYLINE", Version::R14},      {"HATCH", Version::R14},
      {"IMAGE", Version::R14},           {"ARC_DIMENSION", Version::R2004},
      {"MTEXT", Version::R13},           {"ELLIPSE", Version::R13},
      {"SPLINE", Version::R13},          {"LEADER", Version::R13},
      {"MLINE", Version::R13},           {"RAY", Version::R13},
      {"XLINE", Version::R13},           {"TOLERANCE", Version::R13},
      {"REGION", Version::R13},          {"BODY", Version::R13},
      {"3DSOLID", Version::R13},         {"OLEFRAME", Version::R13},
      {"OLE2FRAME", Version::R14},       {"ACAD_PROXY_ENTITY", Version::R14},
      {"WIPEOUT", Version::R2000},       {"ACAD_TABLE", Version::R2004},
      {"PDFUNDERLAY", Version::R2007},   {"DGNUNDERLAY", Version::R2007},
      {"DWFUNDERLAY", Version::R2007},   {"HELIX", Version::R2007},
      {"LIGHT", Version::R2007},         {"SECTION", Version::R2007},
      {"SURFACE", Version::R2007},       {"EXTRUDEDSURFACE", Version::R2007},
      {"LOFTEDSURFACE", Version::R2007}, {"REVOLVEDSURFACE", Version::R2007},
      {"DICTIONARY", Version::R13},      {"MLINESTYLE", Version::R13},
      {"MATERIAL", Version::R2007},      {"ACDBDICTIONARYWDFLT", Version::R2000},
      {"SWEPTSURFACE", Version::R2007},  {"PLANESURFACE", Version::R2007},
      {"MULTILEADER", Version::R2007},   {"MESH", Version::R2010}};
  const auto found = versions.find(kind);
  return found == versions.end() ? Version::R10 : found->second;
}

std::string newRecordOf(const ClassEntry& entry) {
  std::string record;
  record.reserve(entry.newRecord.size() + 1);
  for (const char c : entry.newRecord) {
    if (c != '~') {
      record += c == ' ' ? '\n' : c;
    }
  }
  record += '\n';
  return record;
}

std::unique_ptr<AcDbObject> makeView(const AcDbStub& stub) {
  if (const ClassEntry* const entry = entryOf(stub)) {
    return std::unique_ptr<AcDbObject>(entry->make());
  }
  const bool isEntity = DatabaseImpl::of(stub).isEntity(stub);
  return std::unique_ptr<AcDbObject>(isEntity ? Access::newPlainEntity()
                                              : Access::newPlainObject());
}

}  // namespace quoin::db
