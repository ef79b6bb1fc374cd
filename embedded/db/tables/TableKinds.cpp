// The rows of symbol tables, their records, and the objects that dictionaries hold.
#include <array>

#include "dbdict.h"
#include "dbmaterial.h"
#include "dbmstyle.h"
#include "dbsymtb.h"
#include "embedded/db/core/RecordKinds.h"

namespace quoin::db {
namespace {

using dxf::Version;

// --- records of symbol tables ---------------------------------------------------------------

constexpr std::array kBlock{
    classRow<AcDbBlockTableRecord>("0 BLOCK_RECORD 100 AcDbSymbolTableRecord "
                                   "100 AcDbBlockTableRecord 2 ~ 70 0 280 1 281 0")};
constexpr std::array kLayer{
    classRow<AcDbLayerTableRecord>("0 LAYER 100 AcDbSymbolTableRecord 100 AcDbLayerTableRecord 2 ~ "
                                   "70 0 62 7 6 Continuous 370 -3")};
constexpr std::array kLinetype{classRow<AcDbLinetypeTableRecord>(
    "0 LTYPE 100 AcDbSymbolTableRecord "
    "100 AcDbLinetypeTableRecord 2 ~ 70 0 3 ~ 72 65 73 0 40 0.0")};
constexpr std::array kTextStyle{classRow<AcDbTextStyleTableRecord>(
    "0 STYLE 100 AcDbSymbolTableRecord 100 AcDbTextStyleTableRecord 2 ~ 70 0 40 0.0 41 1.0 "
    "50 0.0 71 0 42 2.5 3 txt 4 ~")};
// Nothing but the handle comes in front of a style's own tags.
constexpr std::array kHandleCodes{code::kDimStyleHandle};
constexpr std::array<int, 0> kOtherCodes{};
constexpr std::array kDimStyleSubclasses{Subclass{"AcDbSymbolTableRecord", kHandleCodes},
                                         Subclass{"AcDbDimStyleTableRecord", kOtherCodes}};
constexpr std::array kDimStyle{classRow<AcDbDimStyleTableRecord>(
    "0 DIMSTYLE 100 AcDbSymbolTableRecord 100 AcDbDimStyleTableRecord 2 ~ 70 0",
    kDimStyleSubclasses)};
constexpr std::array kRegApp{classRow<AcDbRegAppTableRecord>(
    "0 APPID 100 AcDbSymbolTableRecord 100 AcDbRegAppTableRecord 2 ~ 70 0")};
constexpr std::array kUcs{
    classRow<AcDbUCSTableRecord>("0 UCS 100 AcDbSymbolTableRecord 100 AcDbUCSTableRecord 2 ~ 70 0 "
                                 "10 0.0 20 0.0 30 0.0 11 1.0 21 0.0 31 0.0 12 0.0 22 1.0 32 0.0")};
constexpr std::array kView{classRow<AcDbViewTableRecord>(
    "0 VIEW 100 AcDbSymbolTableRecord 100 AcDbViewTableRecord 2 ~ 70 0")};
constexpr std::array kViewport{classRow<AcDbViewportTableRecord>(
    "0 VPORT 100 AcDbSymbolTableRecord 100 AcDbViewportTableRecord 2 ~ 70 0")};

constexpr std::array kRecords{RecordKind{.name = "BLOCK_RECORD", .classes = kBlock},
                              RecordKind{.name = "LAYER", .classes = kLayer},
                              RecordKind{.name = "LTYPE", .classes = kLinetype},
                              RecordKind{.name = "STYLE", .classes = kTextStyle},
                              RecordKind{.name = "DIMSTYLE", .classes = kDimStyle},
                              RecordKind{.name = "APPID", .classes = kRegApp},
                              RecordKind{.name = "UCS", .classes = kUcs},
                              RecordKind{.name = "VIEW", .classes = kView},
                              RecordKind{.name = "VPORT", .classes = kViewport}};
static_assert(kRecords.size() == kTableKinds);

constexpr std::array kTables{classRow<AcDbBlockTable>(""),    classRow<AcDbLayerTable>(""),
                             classRow<AcDbLinetypeTable>(""), classRow<AcDbTextStyleTable>(""),
                             classRow<AcDbDimStyleTable>(""), classRow<AcDbRegAppTable>(""),
                             classRow<AcDbUCSTable>(""),      classRow<AcDbViewTable>(""),
                             classRow<AcDbViewportTable>("")};
static_assert(kTables.size() == kTableKinds);

// --- objects --------------------------------------------------------------------------------

constexpr std::array kDictionary{classRow<AcDbDictionary>("0 DICTIONARY 100 AcDbDictionary 281 1")};
constexpr std::array kDictionaryWithDefault{classRow<AcDbDictionaryWithDefault>(
    "0 ACDBDICTIONARYWDFLT 100 AcDbDictionary 281 1 100 AcDbDictionaryWithDefault")};
constexpr std::array kMlineStyle{classRow<AcDbMlineStyle>(
    "0 MLINESTYLE 100 AcDbMlineStyle 2 ~ 70 0 3 ~ 62 256 51 90.0 52 90.0 71 0")};
constexpr std::array kMaterial{classRow<AcDbMaterial>("0 MATERIAL 100 AcDbMaterial 1 ~ 2 ~")};

constexpr std::array kObjects{
    RecordKind{.name = "DICTIONARY", .since = Version::R13, .classes = kDictionary},
    RecordKind{
        .name = "ACDBDICTIONARYWDFLT", .since = Version::R2000, .classes = kDictionaryWithDefault},
    RecordKind{.name = "MLINESTYLE", .since = Version::R13, .classes = kMlineStyle},
    RecordKind{.name = "MATERIAL", .since = Version::R2007, .classes = kMaterial}};

}  // namespace

std::span<const RecordKind> tableRecordKinds() {
  return kRecords;
}

std::span<const ClassRow> tableClasses() {
  return kTables;
}

std::span<const RecordKind> objectKinds() {
  return kObjects;
}

}  // namespace quoin::db
