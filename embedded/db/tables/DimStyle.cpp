// AcDbDimStyleTableRecord: the dimension variables of a style.
#include <cmath>
#include <limits>

#include "dbapserv.h"
#include "dbsymtb.h"
#include "embedded/db/core/DimStyleRecord.h"
#include "embedded/db/core/EntityFields.h"
#include "embedded/db/core/ObjectCopy.h"
#include "embedded/os/CaseFold.h"

ACRX_CONS_DEFINE_MEMBERS(AcDbDimStyleTableRecord, AcDbSymbolTableRecord)

using namespace quoin::db;
namespace dxf = quoin::dxf;
namespace os = quoin::os;

namespace {

constexpr const SubclassLayout& kDimStyle = layout::kDimStyle;
constexpr int kTextStyleCode = 340;

dxf::Version versionOf(const AcDbDimStyleTableRecord& style) {
  return tagsOf(style).format().version;
}

// Writes nothing where the file's release does not know the variable.
Acad::ErrorStatus setVariable(AcDbDimStyleTableRecord& style, int code, dxf::Version since,
                              double value) {
  return change(style, [&](RecordEdit& edit) {
    edit.noteNumber(value);
    if (edit.tags().format().version >= since) {
      edit.setDouble(kDimStyle, code, value);
    }
  });
}

Acad::ErrorStatus setVariable(AcDbDimStyleTableRecord& style, int code, dxf::Version since,
                              int value, int least, int most) {
  const Acad::ErrorStatus status = checkWritable(style);
  if (status != Acad::eOk || value < least || value > most) {
    return status == Acad::eOk ? Acad::eInvalidInput : status;
  }
  return change(style, [&](RecordEdit& edit) {
    if (edit.tags().format().version >= since) {
      edit.setInteger(kDimStyle, code, value);
    }
  });
}

AcCmColor colorVariable(const AcDbDimStyleTableRecord& style, int code) {
  constexpr std::int64_t kByBlock = AcCmEntityColor::kACIbyBlock;
  constexpr std::int64_t kByLayer = AcCmEntityColor::kACIbyLayer;
  const std::int64_t index = integerOf(style, kDimStyle, code, kByBlock);
  AcCmColor color;
  color.setColorIndex(
      static_cast<Adesk::UInt16>(index >= 0 && index <= kByLayer ? index : kByBlock));
  return color;
}

// --- blocks and styles that a style points to -----------------------------------------------

/// The host's own arrows; their blocks are spelled with an underscore in front.
bool isOwnArrow(std::wstring_view name) {
  constexpr std::array<std::wstring_view, 20> kArrows{
      L"ArchTick",     L"Oblique",   L"Open",     L"Open30",      L"Open90",
      L"Dot",          L"DotSmall",  L"DotBlank", L"Small",       L"Origin",
      L"Origin2",      L"Integral",  L"None",     L"Closed",      L"ClosedBlank",
      L"ClosedFilled", L"BoxFilled", L"BoxBlank", L"DatumFilled", L"DatumBlank"};
  return std::any_of(kArrows.begin(), kArrows.end(),
                     [&](std::wstring_view arrow) { return os::sameName(arrow, name); });
}

/// The drawing in which a style's names are looked up; null if there is none.
DatabaseImpl* lookUpDatabase(const AcDbDimStyleTableRecord& style) {
  const ObjectImpl& impl = Access::of(style);
  if (impl.database) {
    return impl.database;
  }
  if (const auto remembered = impl.own().namesFrom.lock()) {
    return *remembered;
  }
  const AcDbDatabase* const working = acdbHostApplicationServices()->workingDatabase();
  return working ? &Access::of(*working) : nullptr;
}

AcDbObjectId referenceOf(const AcDbDimStyleTableRecord& style, int code) {
  const DimReference& reference = *dimReferenceOf(code);
  DatabaseImpl* const database = lookUpDatabase(style);
  if (!database) {
    return AcDbObjectId::kNull;
  }
  try {
    const TagList& tags = tagsOf(style);
    const TagRange range = kDimStyle.in(tags);
    const bool isResident = Access::of(style).stub != nullptr;
    if (isResident && versionOf(style) >= reference.since) {
      AcDbStub* const stub = database->byHandle(tags.handle(code, range));
      return AcDbObjectId(stub && !database->isErased(*stub) ? stub : nullptr);
    }
    const int nameCode = isResident ? reference.legacyCode : code;
    const auto name = nameCode == 0 ? std::nullopt : tags.text(nameCode, range);
    return AcDbObjectId(name && !name->empty() ? database->record(reference.table, *name)
                                               : nullptr);
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

Acad::ErrorStatus setReference(AcDbDimStyleTableRecord& style, int code, AcDbObjectId id) {
  const DimReference& reference = *dimReferenceOf(code);
  const AcDbStub* const stub = id;
  Acad::ErrorStatus status = checkWritable(style);
  if (status == Acad::eOk && stub) {
    status = checkRecord(style, stub, reference.table);
  }
  if (status != Acad::eOk) {
    return status;
  }
  try {
    const std::wstring name = stub ? DatabaseImpl::of(*stub).recordName(*stub) : std::wstring();
    const bool isResident = Access::of(style).stub != nullptr;
    status = change(style, [&](RecordEdit& edit) {
      const bool hasHandles = edit.tags().format().version >= reference.since;
      if (isResident && hasHandles) {
        edit.setHandle(kDimStyle, code, stub ? stub->handle : 0);
        return;
      }
      const int nameCode = isResident ? reference.legacyCode : code;
      if (nameCode == 0) {
        return;  // the file's release has no such setting
      }
      if (name.empty()) {
        edit.remove(kDimStyle, nameCode);
      } else {
        edit.setText(kDimStyle, nameCode, name);
      }
    });
    if (status == Acad::eOk && stub && !isResident) {
      Access::of(style).ownToChange().namesFrom = DatabaseImpl::of(*stub).token;
    }
    return status;
  } catch (...) {
    return statusOfException();
  }
}

Acad::ErrorStatus setBlockNamed(AcDbDimStyleTableRecord& style, int code, const ACHAR* name) {
  const Acad::ErrorStatus status = checkWritable(style);
  if (status != Acad::eOk || !name) {
    return status == Acad::eOk ? Acad::eInvalidInput : status;
  }
  if (!*name || std::wstring_view(name) == L".") {
    return setReference(style, code, AcDbObjectId::kNull);
  }
  DatabaseImpl* const database = lookUpDatabase(style);
  if (!database) {
    return Acad::eNoDatabase;
  }
  try {
    AcDbStub* block = database->record(TableKind::Block, name);
    if (!block && isOwnArrow(name)) {
      block = database->record(TableKind::Block, L'_' + std::wstring(name));
    }
    return block ? setReference(style, code, AcDbObjectId(block)) : Acad::eKeyNotFound;
  } catch (...) {
    return statusOfException();
  }
}

}  // namespace

AcDbDimStyleTableRecord::AcDbDimStyleTableRecord() = default;

// --- the variables, by their lists ----------------------------------------------------------

#define QUOIN_DEFINE_NUMBER(GET, SET, CODE, SINCE, MISSING)      \
  double AcDbDimStyleTableRecord::GET() const {                  \
    return numberOf(*this, kDimStyle, CODE, MISSING);            \
  }                                                              \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(double value) { \
    return setVariable(*this, CODE, dxf::Version::SINCE, value); \
  }
ACDB_DIMENSION_NUMBERS(QUOIN_DEFINE_NUMBER)

#define QUOIN_DEFINE_INTEGER(GET, SET, CODE, SINCE, MISSING, LEAST, MOST)     \
  int AcDbDimStyleTableRecord::GET() const {                                  \
    return static_cast<int>(integerOf(*this, kDimStyle, CODE, MISSING));      \
  }                                                                           \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(int value) {                 \
    return setVariable(*this, CODE, dxf::Version::SINCE, value, LEAST, MOST); \
  }
ACDB_DIMENSION_INTEGERS(QUOIN_DEFINE_INTEGER)

#define QUOIN_DEFINE_FLAG(GET, SET, CODE, SINCE, MISSING)                      \
  bool AcDbDimStyleTableRecord::GET() const {                                  \
    return integerOf(*this, kDimStyle, CODE, MISSING) != 0;                    \
  }                                                                            \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(bool value) {                 \
    return setVariable(*this, CODE, dxf::Version::SINCE, value ? 1 : 0, 0, 1); \
  }
ACDB_DIMENSION_FLAGS(QUOIN_DEFINE_FLAG)

#define QUOIN_DEFINE_COLOR(GET, SET, CODE)                                          \
  AcCmColor AcDbDimStyleTableRecord::GET() const {                                  \
    return colorVariable(*this, CODE);                                              \
  }                                                                                 \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(const AcCmColor& value) {          \
    return setVariable(*this, CODE, dxf::Version::R10, value.colorIndex(),          \
                       AcCmEntityColor::kACIbyBlock, AcCmEntityColor::kACIbyLayer); \
  }
ACDB_DIMENSION_COLORS(QUOIN_DEFINE_COLOR)

#define QUOIN_DEFINE_WEIGHT(GET, SET, CODE)                                                      \
  AcDb::LineWeight AcDbDimStyleTableRecord::GET() const {                                        \
    return static_cast<AcDb::LineWeight>(integerOf(*this, kDimStyle, CODE, AcDb::kLnWtByBlock)); \
  }                                                                                              \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(AcDb::LineWeight value) {                       \
    return setVariable(*this, CODE, dxf::Version::R2000, value, AcDb::kLnWtByLwDefault,          \
                       AcDb::kLnWt211);                                                          \
  }
ACDB_DIMENSION_WEIGHTS(QUOIN_DEFINE_WEIGHT)

#define QUOIN_DEFINE_TEXT(GET, SET, CODE)                              \
  const ACHAR* AcDbDimStyleTableRecord::GET() const {                  \
    return keptText(*this, CODE, textOf(*this, kDimStyle, CODE));      \
  }                                                                    \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(const ACHAR* value) { \
    return setText(*this, kDimStyle, CODE, value);                     \
  }
ACDB_DIMENSION_TEXTS(QUOIN_DEFINE_TEXT)

#define QUOIN_DEFINE_BLOCK(GET, SET, CODE, LEGACY)                     \
  AcDbObjectId AcDbDimStyleTableRecord::GET() const {                  \
    return referenceOf(*this, CODE);                                   \
  }                                                                    \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(AcDbObjectId block) { \
    return setReference(*this, CODE, block);                           \
  }                                                                    \
  Acad::ErrorStatus AcDbDimStyleTableRecord::SET(const ACHAR* name) {  \
    return setBlockNamed(*this, CODE, name);                           \
  }
ACDB_DIMENSION_BLOCKS(QUOIN_DEFINE_BLOCK)

// --- what is not one tag --------------------------------------------------------------------

int AcDbDimStyleTableRecord::dimunit() const {
  constexpr std::int64_t kDecimal = 2;
  const TagList& tags = tagsOf(*this);
  const TagRange range = kDimStyle.in(tags);
  const std::size_t linear = tags.find(dim::kLinearUnit, range);
  if (linear == TagList::kNone) {
    return static_cast<int>(tags.integer(dim::kUnit, range, kDecimal));
  }
  return dimUnitOf(static_cast<int>(tags.integerAt(linear)),
                   static_cast<int>(tags.integer(dim::kFraction, range, 0)));
}

Acad::ErrorStatus AcDbDimStyleTableRecord::setDimunit(int value) {
  constexpr int kScientific = 1;
  constexpr int kDesktop = 8;
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk || value < kScientific || value > kDesktop) {
    return status == Acad::eOk ? Acad::eInvalidInput : status;
  }
  return change(*this, [&](RecordEdit& edit) {
    const TagList& tags = edit.tags();
    const dxf::Version version = tags.format().version;
    const bool hasOld = tags.find(dim::kUnit, kDimStyle.in(tags)) != TagList::kNone;
    if (hasOld || (version >= dxf::Version::R13 && version < dxf::Version::R2000)) {
      edit.setInteger(kDimStyle, dim::kUnit, value);
    }
    if (version >= dxf::Version::R2000) {
      const bool isFraction = linearUnitOf(value) == 4 || linearUnitOf(value) == 5;
      if (isFraction) {
        edit.setInteger(kDimStyle, dim::kFraction, fractionOf(value), 0);
      }
      edit.setInteger(kDimStyle, dim::kLinearUnit, linearUnitOf(value));
    }
  });
}

AcDbObjectId AcDbDimStyleTableRecord::dimtxsty() const {
  return referenceOf(*this, kTextStyleCode);
}

Acad::ErrorStatus AcDbDimStyleTableRecord::setDimtxsty(AcDbObjectId textStyle) {
  return setReference(*this, kTextStyleCode, textStyle);
}

Acad::ErrorStatus AcDbDimStyleTableRecord::copyFrom(const AcRxObject* other) {
  const Acad::ErrorStatus status = checkWritable(*this);
  if (status != Acad::eOk) {
    return status;
  }
  if (!other) {
    return Acad::eNullObjectPointer;
  }
  const AcDbDimStyleTableRecord* const source = AcDbDimStyleTableRecord::cast(other);
  if (!source) {
    return Acad::eNotThatKindOfClass;
  }
  if (source == this) {
    return Acad::eOk;
  }
  try {
    const ObjectImpl& from = Access::of(*source);
    ObjectImpl& own = Access::of(*this);
    const std::wstring name = textOf(*this, layout::kSymbol, code::kName);
    const std::string copied = from.stub ? freeDimStyle(tagsOf(*source), *from.database)
                                         : std::string(tagsOf(*source).bytes());
    const TagList copiedTags(copied, *neutralFormat());
    RecordEdit edit(copiedTags);
    edit.setText(layout::kSymbol, code::kName, name);
    std::string bytes = edit.bytes();
    if (own.stub) {
      bytes = placedDimStyle(TagList(bytes, *neutralFormat()), *own.database, placementOf(*this));
    } else {
      ObjectImpl::Own& kept = own.ownToChange();
      kept.format = neutralFormat();
      kept.namesFrom = from.stub ? from.database->token : from.own().namesFrom;
    }
    setBytes(*this, std::move(bytes));
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}
