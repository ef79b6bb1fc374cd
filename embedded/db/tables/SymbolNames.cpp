#include "embedded/db/tables/SymbolNames.h"

#include <algorithm>

#include "dbsymutl.h"
#include "embedded/os/CaseFold.h"

namespace quoin::db {
namespace {

constexpr std::size_t kLongestName = 255;
constexpr wchar_t kFirstPrintable = 0x20;

/// The group codes with which records other than those of the table itself name one of it.
std::vector<int> namingCodes(TableKind kind) {
  switch (kind) {
    case TableKind::Block:
      return {1, 2, 5, 6, 7};  // inserts, dimensions and their arrows
    case TableKind::Layer:
      return {8};
    case TableKind::Linetype:
      return {6, 7};
    case TableKind::TextStyle:
      return {7};
    case TableKind::DimStyle:
      return {3};
    case TableKind::RegApp:
      return {kAppNameCode};
    case TableKind::Ucs:
    case TableKind::View:
    case TableKind::Viewport:
      break;
  }
  return {};
}

}  // namespace

bool isValidSymbolName(std::wstring_view name, bool allowVerticalBar) {
  constexpr std::wstring_view kForbidden = L"<>/\\\":;?*,=`";
  if (name.empty() || name.size() > kLongestName) {
    return false;
  }
  return std::none_of(name.begin(), name.end(), [&](wchar_t c) {
    return c < kFirstPrintable || kForbidden.find(c) != std::wstring_view::npos ||
           (c == L'|' && !allowVerticalBar);
  });
}

bool mustKeepName(TableKind kind, std::wstring_view name) {
  const auto is = [&](std::wstring_view fixed) { return os::sameName(name, fixed); };
  switch (kind) {
    case TableKind::Layer:
      return is(L"0") || is(L"Defpoints");
    case TableKind::Block:
      return name.starts_with(L'*');
    case TableKind::Linetype:
      return is(L"ByLayer") || is(L"ByBlock") || is(L"Continuous");
    case TableKind::RegApp:
      return is(L"ACAD");
    default:
      return false;
  }
}

bool isNamed(const DatabaseImpl& database, TableKind kind, std::wstring_view name) {
  constexpr std::string_view kCurrent[] = {"$CLAYER", "$CELTYPE", "$TEXTSTYLE", "$DIMSTYLE"};
  const std::vector<int> codes = namingCodes(kind);
  const auto mentions = [&](const TagList& tags) {
    for (std::size_t i = 0; i < tags.size(); ++i) {
      const bool isCandidate = std::find(codes.begin(), codes.end(), tags[i].code) != codes.end();
      if (isCandidate && os::sameName(tags.textAt(i), name)) {
        return true;
      }
    }
    return false;
  };
  for (const std::string_view variable : kCurrent) {
    const TagList tags = database.headerTags(variable);
    if (tags.size() > 0 && os::sameName(tags.textAt(0), name)) {
      return true;
    }
  }
  const auto& stubs = database.store.stubs();
  return std::any_of(stubs.begin(), stubs.end(), [&](const AcDbStub& stub) {
    const bool isOwnTable = database.store.kindName(stub) == fileName(kind);
    const bool isOwnBlock = kind == TableKind::Block && (stub.role == dxf::Role::BlockBegin ||
                                                         stub.role == dxf::Role::BlockEnd);
    return stub.data && !isOwnTable && !isOwnBlock && mentions(database.tagsOf(stub));
  });
}

}  // namespace quoin::db

// --- the shortcuts --------------------------------------------------------------------------

namespace AcDbSymbolUtilities {
namespace {

AcDbObjectId idOf(const AcDbDatabase* database, quoin::db::TableKind kind, const ACHAR* name) {
  using namespace quoin::db;
  try {
    return database && name ? AcDbObjectId(Access::of(*database).record(kind, name))
                            : AcDbObjectId::kNull;
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

Acad::ErrorStatus find(AcDbObjectId& id, const AcDbDatabase* database, quoin::db::TableKind kind,
                       const ACHAR* name) {
  id = idOf(database, kind, name);
  return !database ? Acad::eNoDatabase : id.isNull() ? Acad::eKeyNotFound : Acad::eOk;
}

}  // namespace

AcDbObjectId Services::blockModelSpaceId(const AcDbDatabase* database) const {
  return idOf(database, quoin::db::TableKind::Block, ACDB_MODEL_SPACE);
}

AcDbObjectId Services::blockPaperSpaceId(const AcDbDatabase* database) const {
  return idOf(database, quoin::db::TableKind::Block, ACDB_PAPER_SPACE);
}

AcDbObjectId Services::layerZeroId(const AcDbDatabase* database) const {
  return idOf(database, quoin::db::TableKind::Layer, layerZeroName());
}

AcDbObjectId Services::linetypeContinuousId(const AcDbDatabase* database) const {
  return idOf(database, quoin::db::TableKind::Linetype, L"Continuous");
}

bool Services::isBlockModelSpaceName(const ACHAR* name) const {
  return compareSymbolName(name, ACDB_MODEL_SPACE);
}

bool Services::isBlockPaperSpaceName(const ACHAR* name) const {
  constexpr std::wstring_view kPrefix = ACDB_PAPER_SPACE;
  return name && quoin::os::sameName(std::wstring_view(name).substr(0, kPrefix.size()), kPrefix);
}

Acad::ErrorStatus Services::validateSymbolName(const ACHAR* name, bool allowVerticalBar) const {
  return name && quoin::db::isValidSymbolName(name, allowVerticalBar) ? Acad::eOk
                                                                      : Acad::eInvalidInput;
}

bool Services::compareSymbolName(const ACHAR* a, const ACHAR* b) const {
  return a && b && quoin::os::sameName(std::wstring_view(a), std::wstring_view(b));
}

Acad::ErrorStatus Services::getLayerId(AcDbObjectId& id, const ACHAR* name,
                                       AcDbDatabase* database) const {
  return find(id, database, quoin::db::TableKind::Layer, name);
}

Acad::ErrorStatus Services::getBlockId(AcDbObjectId& id, const ACHAR* name,
                                       AcDbDatabase* database) const {
  return find(id, database, quoin::db::TableKind::Block, name);
}

Acad::ErrorStatus Services::getLinetypeId(AcDbObjectId& id, const ACHAR* name,
                                          AcDbDatabase* database) const {
  return find(id, database, quoin::db::TableKind::Linetype, name);
}

Acad::ErrorStatus Services::getTextStyleId(AcDbObjectId& id, const ACHAR* name,
                                           AcDbDatabase* database) const {
  return find(id, database, quoin::db::TableKind::TextStyle, name);
}

const Services* servicesPtr() {
  static const Services services;
  return &services;
}

}  // namespace AcDbSymbolUtilities
