#include "embedded/ed/DrawingVariables.h"

#include <algorithm>
#include <iterator>

#include "dbobjptr.h"
#include "dbsymtb.h"

namespace quoin::ed {
namespace {

VariableValue valueOf(double value) {
  return {{value, 0.0, 0.0}, {}};
}
VariableValue valueOf(const AcGePoint3d& point) {
  return {{point.x, point.y, point.z}, {}};
}
/// The name of a symbol table record; empty when the drawing has none.
VariableValue nameOf(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbSymbolTableRecord> record(id);
  const ACHAR* name = nullptr;
  const bool isKnown = record.openStatus() == Acad::eOk && record->getName(name) == Acad::eOk;
  return {{0.0, 0.0, 0.0}, isKnown ? name : L""};
}

bool writeUnits(AcDbDatabase& database, const VariableValue& value) {
  return database.setInsunits(static_cast<AcDb::UnitsValue>(static_cast<int>(value.numbers[0]))) ==
         Acad::eOk;
}

/// Only a layer that the drawing has, and that is not frozen, becomes the current one.
bool writeLayer(AcDbDatabase& database, const VariableValue& value) {
  AcDbObjectId id;
  {
    const AcDbObjectPointer<AcDbLayerTable> table(database.layerTableId());
    if (table.openStatus() != Acad::eOk || table->getAt(value.text.c_str(), id) != Acad::eOk) {
      return false;
    }
  }
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
    if (layer.openStatus() != Acad::eOk || layer->isFrozen()) {
      return false;
    }
  }
  return database.setClayer(id) == Acad::eOk;
}

/// A writer for a variable that is one number.
template <auto Set, class Number = double>
bool writeNumber(AcDbDatabase& database, const VariableValue& value) {
  return (database.*Set)(static_cast<Number>(value.numbers[0])) == Acad::eOk;
}

bool writeWeight(AcDbDatabase& database, const VariableValue& value) {
  return database.setCelweight(static_cast<AcDb::LineWeight>(static_cast<int>(value.numbers[0]))) ==
         Acad::eOk;
}

bool writeBase(AcDbDatabase& database, const VariableValue& value) {
  return database.setInsbase({value.numbers[0], value.numbers[1], value.numbers[2]}) == Acad::eOk;
}

/// The record of a table with this name; null if there is none.
template <class Table>
AcDbObjectId recordNamed(const AcDbObjectId& tableId, const std::wstring& name) {
  AcDbObjectId id;
  const AcDbObjectPointer<Table> table(tableId);
  if (table.openStatus() == Acad::eOk) {
    table->getAt(name.c_str(), id);
  }
  return id;
}

bool writeLinetype(AcDbDatabase& database, const VariableValue& value) {
  return database.setCeltype(
             recordNamed<AcDbLinetypeTable>(database.linetypeTableId(), value.text)) == Acad::eOk;
}

bool writeTextStyle(AcDbDatabase& database, const VariableValue& value) {
  return database.setTextstyle(
             recordNamed<AcDbTextStyleTable>(database.textStyleTableId(), value.text)) == Acad::eOk;
}

constexpr DrawingVariable kVariables[] = {
    {L"CELTSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.celtscale()); },
     writeNumber<&AcDbDatabase::setCeltscale>},
    {L"CELTYPE", [](const AcDbDatabase& drawing) { return nameOf(drawing.celtype()); },
     writeLinetype},
    {L"CELWEIGHT", [](const AcDbDatabase& drawing) { return valueOf(drawing.celweight()); },
     writeWeight},
    {L"CLAYER", [](const AcDbDatabase& drawing) { return nameOf(drawing.clayer()); }, writeLayer},
    {L"DIMSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.dimscale()); },
     writeNumber<&AcDbDatabase::setDimscale>},
    {L"EXTMAX", [](const AcDbDatabase& drawing) { return valueOf(drawing.extmax()); }, nullptr},
    {L"EXTMIN", [](const AcDbDatabase& drawing) { return valueOf(drawing.extmin()); }, nullptr},
    {L"INSBASE", [](const AcDbDatabase& drawing) { return valueOf(drawing.insbase()); }, writeBase},
    {L"INSUNITS", [](const AcDbDatabase& drawing) { return valueOf(drawing.insunits()); },
     writeUnits},
    {L"LTSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.ltscale()); },
     writeNumber<&AcDbDatabase::setLtscale>},
    {L"MEASUREMENT", [](const AcDbDatabase& drawing) { return valueOf(drawing.measurement()); },
     writeNumber<&AcDbDatabase::setMeasurement, Adesk::Int16>},
    {L"PDMODE", [](const AcDbDatabase& drawing) { return valueOf(drawing.pdmode()); },
     writeNumber<&AcDbDatabase::setPdmode, Adesk::Int16>},
    {L"PDSIZE", [](const AcDbDatabase& drawing) { return valueOf(drawing.pdsize()); },
     writeNumber<&AcDbDatabase::setPdsize>},
    {L"TEXTSIZE", [](const AcDbDatabase& drawing) { return valueOf(drawing.textsize()); },
     writeNumber<&AcDbDatabase::setTextsize>},
    {L"TEXTSTYLE", [](const AcDbDatabase& drawing) { return nameOf(drawing.textstyle()); },
     writeTextStyle},
};

}  // namespace

const DrawingVariable* findDrawingVariable(std::wstring_view name) {
  const auto* const found =
      std::find_if(std::begin(kVariables), std::end(kVariables),
                   [&](const DrawingVariable& variable) { return name == variable.name; });
  return found == std::end(kVariables) ? nullptr : found;
}

}  // namespace quoin::ed
