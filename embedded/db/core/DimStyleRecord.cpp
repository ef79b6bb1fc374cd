#include "embedded/db/core/DimStyleRecord.h"

#include <algorithm>
#include <array>

#include "dbdimvar.h"

namespace quoin::db {
namespace {

using dxf::Version;

constexpr std::array kReferences{
#define QUOIN_BLOCK_REFERENCE(GET, SET, CODE, LEGACY) \
  DimReference{CODE, LEGACY, TableKind::Block, Version::R2000},
    ACDB_DIMENSION_BLOCKS(QUOIN_BLOCK_REFERENCE)
#undef QUOIN_BLOCK_REFERENCE
        DimReference{340, 0, TableKind::TextStyle, Version::R13},
    DimReference{345, 0, TableKind::Linetype, Version::R2007},
    DimReference{346, 0, TableKind::Linetype, Version::R2007},
    DimReference{347, 0, TableKind::Linetype, Version::R2007}};

struct CodeSince {
  int code;
  Version since;
};

#define QUOIN_CODE_SINCE(GET, SET, CODE, SINCE, ...) CodeSince{CODE, Version::SINCE},
#define QUOIN_WEIGHT_SINCE(GET, SET, CODE) CodeSince{CODE, Version::R2000},
constexpr std::array kSince{
    ACDB_DIMENSION_NUMBERS(QUOIN_CODE_SINCE) ACDB_DIMENSION_INTEGERS(QUOIN_CODE_SINCE)
        ACDB_DIMENSION_FLAGS(QUOIN_CODE_SINCE) ACDB_DIMENSION_WEIGHTS(QUOIN_WEIGHT_SINCE)
    // Variables without accessors here.
    CodeSince{50, Version::R2007},
    CodeSince{69, Version::R2007}, CodeSince{278, Version::R2000}, CodeSince{294, Version::R2010}};
#undef QUOIN_CODE_SINCE
#undef QUOIN_WEIGHT_SINCE

constexpr int kDimFit = 287;  // of R13 and R14, which later variables replace

bool isKnownTo(int code, Version version) {
  if (code == kDimFit && version >= Version::R2000) {
    return false;
  }
  const auto found = std::find_if(kSince.begin(), kSince.end(),
                                  [&](const CodeSince& entry) { return entry.code == code; });
  return found == kSince.end() || found->since <= version;
}

const DimReference* legacyReferenceOf(int code) {
  for (const DimReference& reference : kReferences) {
    if (reference.legacyCode != 0 && reference.legacyCode == code) {
      return &reference;
    }
  }
  return nullptr;
}

/// The name of what a handle stands for; empty if it is no such record.
std::wstring nameBehind(DatabaseImpl& database, std::uint64_t handle, TableKind table) {
  const AcDbStub* const stub = database.byHandle(handle);
  const bool isRecord = stub && stub->role == dxf::Role::TableRecord &&
                        database.kindOf(*stub) == fileName(table) && !database.isErased(*stub);
  return isRecord ? database.recordName(*stub) : std::wstring();
}

}  // namespace

int dimUnitOf(int linearUnit, int fraction) {
  constexpr int kNotStacked = 2;
  switch (linearUnit) {
    case 4:
    case 5:
      return fraction == kNotStacked ? linearUnit + 2 : linearUnit;
    case 6:
      return 8;
    default:
      return linearUnit;
  }
}

int linearUnitOf(int dimUnit) {
  switch (dimUnit) {
    case 6:
    case 7:
      return dimUnit - 2;
    case 8:
      return 6;
    default:
      return dimUnit;
  }
}

int fractionOf(int dimUnit) {
  return dimUnit == 6 || dimUnit == 7 ? 2 : 0;
}

const DimReference* dimReferenceOf(int code) {
  for (const DimReference& reference : kReferences) {
    if (reference.code == code) {
      return &reference;
    }
  }
  return nullptr;
}

std::string freeDimStyle(const TagList& style, DatabaseImpl& database) {
  const dxf::Format& neutral = *neutralFormat();
  const Version version = database.format().version;
  const std::string moved = transferred(style, neutral, {});
  const TagList tags(moved, neutral);
  const TagRange body = tags.body();
  const bool hasLinearUnit = tags.find(dim::kLinearUnit, body) != TagList::kNone;
  RecordEdit edit(tags);
  for (std::size_t i = body.first; i < body.last; ++i) {
    if (!tags.isOwn(i)) {
      continue;
    }
    const int code = tags[i].code;
    std::string bytes;
    if (const DimReference* const legacy = legacyReferenceOf(code);
        legacy && version < Version::R2000) {
      // Read where it stood: under the code of handles texts are not transcoded.
      const std::wstring name = style.text(code, layout::kDimStyle.in(style)).value_or(L"");
      if (!name.empty()) {
        dxf::putText(bytes, legacy->code, name, neutral);
      }
    } else if (const DimReference* const reference = dimReferenceOf(code)) {
      const std::wstring name = nameBehind(database, tags.handleAt(i), reference->table);
      if (!name.empty()) {
        dxf::putText(bytes, code, name, neutral);
      }
    } else if (code == dim::kUnit) {
      const int unit = static_cast<int>(tags.integerAt(i));
      if (!hasLinearUnit) {
        dxf::putInteger(bytes, dim::kFraction, fractionOf(unit), neutral);
        dxf::putInteger(bytes, dim::kLinearUnit, linearUnitOf(unit), neutral);
      }
    } else {
      continue;
    }
    edit.replace({i, i + 1}, std::move(bytes));
  }
  return edit.bytes();
}

std::string placedDimStyle(const TagList& freeStyle, DatabaseImpl& database,
                           const Placement& placement) {
  const dxf::Format& neutral = freeStyle.format();
  const Version version = database.format().version;
  const TagRange body = freeStyle.body();
  std::vector<std::pair<int, std::wstring>> legacyNames;
  RecordEdit edit(freeStyle);
  for (std::size_t i = body.first; i < body.last; ++i) {
    if (!freeStyle.isOwn(i)) {
      continue;
    }
    const int code = freeStyle[i].code;
    std::string bytes;
    if (const DimReference* const reference = dimReferenceOf(code)) {
      const AcDbStub* const found = database.record(reference->table, freeStyle.textAt(i));
      if (found && version >= reference->since && found->handle != 0) {
        dxf::putHandle(bytes, code, found->handle, neutral);
      } else if (found && version < reference->since && reference->legacyCode != 0) {
        legacyNames.emplace_back(reference->legacyCode, database.recordName(*found));
      }
    } else if (code == dim::kLinearUnit && version < Version::R2000 && version >= Version::R13) {
      const auto fraction = freeStyle.integer(dim::kFraction, body, 0);
      const auto unit = freeStyle.integerAt(i);
      dxf::putInteger(bytes, dim::kUnit,
                      dimUnitOf(static_cast<int>(unit), static_cast<int>(fraction)), neutral);
    } else if (isKnownTo(code, version)) {
      continue;
    }
    edit.replace({i, i + 1}, std::move(bytes));
  }
  const std::string adapted = edit.bytes();
  const std::string placed = transferred(TagList(adapted, neutral), database.format(), placement);
  const TagList placedTags(placed, database.format());
  RecordEdit naming(placedTags);
  for (const auto& [code, name] : legacyNames) {
    naming.setText(layout::kDimStyle, code, name);
  }
  return naming.bytes();
}

}  // namespace quoin::db
