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

constexpr DrawingVariable kVariables[] = {
    {L"CELTSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.celtscale()); },
     nullptr},
    {L"CELTYPE", [](const AcDbDatabase& drawing) { return nameOf(drawing.celtype()); }, nullptr},
    {L"CELWEIGHT", [](const AcDbDatabase& drawing) { return valueOf(drawing.celweight()); },
     nullptr},
    {L"CLAYER", [](const AcDbDatabase& drawing) { return nameOf(drawing.clayer()); }, writeLayer},
    {L"DIMSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.dimscale()); }, nullptr},
    {L"EXTMAX", [](const AcDbDatabase& drawing) { return valueOf(drawing.extmax()); }, nullptr},
    {L"EXTMIN", [](const AcDbDatabase& drawing) { return valueOf(drawing.extmin()); }, nullptr},
    {L"INSBASE", [](const AcDbDatabase& drawing) { return valueOf(drawing.insbase()); }, nullptr},
    {L"INSUNITS", [](const AcDbDatabase& drawing) { return valueOf(drawing.insunits()); },
     writeUnits},
    {L"LTSCALE", [](const AcDbDatabase& drawing) { return valueOf(drawing.ltscale()); }, nullptr},
    {L"MEASUREMENT", [](const AcDbDatabase& drawing) { return valueOf(drawing.measurement()); },
     nullptr},
    {L"PDMODE", [](const AcDbDatabase& drawing) { return valueOf(drawing.pdmode()); }, nullptr},
    {L"PDSIZE", [](const AcDbDatabase& drawing) { return valueOf(drawing.pdsize()); }, nullptr},
    {L"TEXTSIZE", [](const AcDbDatabase& drawing) { return valueOf(drawing.textsize()); }, nullptr},
    {L"TEXTSTYLE", [](const AcDbDatabase& drawing) { return nameOf(drawing.textstyle()); },
     nullptr},
};

}  // namespace

const DrawingVariable* findDrawingVariable(std::wstring_view name) {
  const auto* const found =
      std::find_if(std::begin(kVariables), std::end(kVariables),
                   [&](const DrawingVariable& variable) { return name == variable.name; });
  return found == std::end(kVariables) ? nullptr : found;
}

}  // namespace quoin::ed
