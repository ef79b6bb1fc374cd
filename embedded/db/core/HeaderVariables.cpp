// Header variables by name.
#include <cmath>
#include <limits>

#include "dbsymtb.h"
#include "embedded/db/core/EntityFields.h"

using namespace quoin::db;
namespace dxf = quoin::dxf;

namespace {

double numberVariable(const DatabaseImpl& database, std::string_view name, double otherwise) {
  try {
    const TagList tags = database.headerTags(name);
    return tags.size() > 0 ? tags.doubleAt(0) : otherwise;
  } catch (...) {
    statusOfException();
    return otherwise;
  }
}

std::int64_t integerVariable(const DatabaseImpl& database, std::string_view name,
                             std::int64_t otherwise) {
  try {
    const TagList tags = database.headerTags(name);
    return tags.size() > 0 ? tags.integerAt(0) : otherwise;
  } catch (...) {
    statusOfException();
    return otherwise;
  }
}

AcGePoint3d pointVariable(const DatabaseImpl& database, std::string_view name,
                          const AcGePoint3d& otherwise) {
  try {
    const TagList tags = database.headerTags(name);
    AcGePoint3d point = otherwise;
    for (unsigned int i = 0; i < 3 && i < tags.size(); ++i) {
      point[i] = tags.doubleAt(i);
    }
    return point;
  } catch (...) {
    statusOfException();
    return otherwise;
  }
}

/// The record of a table that a variable names.
AcDbObjectId recordVariable(DatabaseImpl& database, std::string_view variable, TableKind kind,
                            std::wstring_view otherwise) {
  try {
    const TagList tags = database.headerTags(variable);
    AcDbStub* const named = tags.size() > 0 ? database.record(kind, tags.textAt(0)) : nullptr;
    return AcDbObjectId(named ? named : database.record(kind, otherwise));
  } catch (...) {
    statusOfException();
    return AcDbObjectId::kNull;
  }
}

template <class Put>
Acad::ErrorStatus setVariable(DatabaseImpl& database, std::string_view name, Put&& put) {
  try {
    std::string tags;
    put(tags);
    if (tags != database.store.headerVariable(name)) {
      database.store.setHeaderVariable(name, std::move(tags));
      ++database.changes;
    }
    return Acad::eOk;
  } catch (...) {
    return statusOfException();
  }
}

/// Writes a number unless the drawing has it already.
Acad::ErrorStatus setNumberVariable(DatabaseImpl& database, std::string_view name, int code,
                                    double before, double value, double least,
                                    dxf::Version since = dxf::Version::R10) {
  if (!std::isfinite(value) || value < least) {
    return Acad::eInvalidInput;
  }
  if (database.format().version < since) {
    return Acad::eNotApplicable;
  }
  return value == before ? Acad::eOk : setVariable(database, name, [&](std::string& tags) {
    dxf::putDouble(tags, code, value, database.format());
  });
}

Acad::ErrorStatus setIntegerVariable(DatabaseImpl& database, std::string_view name, int code,
                                     std::int64_t before, std::int64_t value,
                                     dxf::Version since = dxf::Version::R10) {
  if (database.format().version < since) {
    return Acad::eNotApplicable;
  }
  return value == before ? Acad::eOk : setVariable(database, name, [&](std::string& tags) {
    dxf::putInteger(tags, code, value, database.format());
  });
}

/// Writes the name of a table's record.
Acad::ErrorStatus setRecordVariable(DatabaseImpl& database, std::string_view name, int code,
                                    TableKind kind, AcDbObjectId before, AcDbObjectId value) {
  const AcDbStub* const stub = value;
  if (!stub) {
    return Acad::eNullObjectId;
  }
  if (stub->store != &database.store) {
    return Acad::eWrongDatabase;
  }
  if (stub->role != dxf::Role::TableRecord || database.kindOf(*stub) != fileName(kind)) {
    return Acad::eNotThatKindOfClass;
  }
  if (database.isErased(*stub)) {
    return Acad::eWasErased;
  }
  return value == before ? Acad::eOk : setVariable(database, name, [&](std::string& tags) {
    dxf::putText(tags, code, database.recordName(*stub), database.format());
  });
}

constexpr double kAnyNumber = std::numeric_limits<double>::lowest();
constexpr double kAboveZero = std::numeric_limits<double>::denorm_min();
constexpr int kNumberCode = 40;
constexpr int kTextStyleCode = 7;

}  // namespace

AcDb::UnitsValue AcDbDatabase::insunits() const {
  const std::int64_t units = integerVariable(*m_impl, "$INSUNITS", AcDb::kUnitsUndefined);
  return units >= 0 && units <= AcDb::kUnitsMax ? static_cast<AcDb::UnitsValue>(units)
                                                : AcDb::kUnitsUndefined;
}

Acad::ErrorStatus AcDbDatabase::setInsunits(AcDb::UnitsValue units) {
  if (units < AcDb::kUnitsUndefined || units > AcDb::kUnitsMax) {
    return Acad::eInvalidInput;
  }
  return setVariable(*m_impl, "$INSUNITS", [&](std::string& tags) {
    dxf::putInteger(tags, code::kFlags, units, m_impl->format());
  });
}

Adesk::Int16 AcDbDatabase::measurement() const {
  return static_cast<Adesk::Int16>(integerVariable(*m_impl, "$MEASUREMENT", 0));
}

AcDbObjectId AcDbDatabase::clayer() const {
  return recordVariable(*m_impl, "$CLAYER", TableKind::Layer, L"0");
}

Acad::ErrorStatus AcDbDatabase::setClayer(AcDbObjectId layer) {
  const AcDbStub* const stub = layer;
  if (!stub) {
    return Acad::eNullObjectId;
  }
  if (stub->store != &m_impl->store) {
    return Acad::eWrongDatabase;
  }
  if (stub->role != dxf::Role::TableRecord || m_impl->kindOf(*stub) != fileName(TableKind::Layer) ||
      stub->erased) {
    return Acad::eInvalidLayer;
  }
  return setVariable(*m_impl, "$CLAYER", [&](std::string& tags) {
    dxf::putText(tags, code::kLayer, m_impl->recordName(*stub), m_impl->format());
  });
}

AcCmColor AcDbDatabase::cecolor() const {
  constexpr std::int64_t kByLayer = AcCmEntityColor::kACIbyLayer;
  const std::int64_t index = integerVariable(*m_impl, "$CECOLOR", kByLayer);
  AcCmColor color;
  color.setColorIndex(
      static_cast<Adesk::UInt16>(index >= 0 && index <= kByLayer ? index : kByLayer));
  return color;
}

AcDbObjectId AcDbDatabase::celtype() const {
  return recordVariable(*m_impl, "$CELTYPE", TableKind::Linetype, L"ByLayer");
}

double AcDbDatabase::celtscale() const {
  return numberVariable(*m_impl, "$CELTSCALE", 1.0);
}

AcDb::LineWeight AcDbDatabase::celweight() const {
  return static_cast<AcDb::LineWeight>(integerVariable(*m_impl, "$CELWEIGHT", AcDb::kLnWtByLayer));
}

double AcDbDatabase::ltscale() const {
  return numberVariable(*m_impl, "$LTSCALE", 1.0);
}

double AcDbDatabase::textsize() const {
  constexpr double kFirstSize = 0.2;  // of a drawing that does not say
  return numberVariable(*m_impl, "$TEXTSIZE", kFirstSize);
}

AcDbObjectId AcDbDatabase::textstyle() const {
  return recordVariable(*m_impl, "$TEXTSTYLE", TableKind::TextStyle, L"Standard");
}

double AcDbDatabase::dimscale() const {
  return numberVariable(*m_impl, "$DIMSCALE", 1.0);
}

Adesk::Int16 AcDbDatabase::pdmode() const {
  return static_cast<Adesk::Int16>(integerVariable(*m_impl, "$PDMODE", 0));
}

double AcDbDatabase::pdsize() const {
  return numberVariable(*m_impl, "$PDSIZE", 0.0);
}

AcGePoint3d AcDbDatabase::extmin() const {
  const AcGePoint3d fresh = AcDbExtents().minPoint();
  return pointVariable(*m_impl, "$EXTMIN", fresh);
}

AcGePoint3d AcDbDatabase::extmax() const {
  const AcGePoint3d fresh = AcDbExtents().maxPoint();
  return pointVariable(*m_impl, "$EXTMAX", fresh);
}

AcGePoint3d AcDbDatabase::insbase() const {
  return pointVariable(*m_impl, "$INSBASE", AcGePoint3d::kOrigin);
}

// --- setters --------------------------------------------------------------------------------

Acad::ErrorStatus AcDbDatabase::setCecolor(const AcCmColor& color) {
  if (color.isNone()) {
    return Acad::eInvalidInput;
  }
  return setIntegerVariable(*m_impl, "$CECOLOR", code::kColor, cecolor().colorIndex(),
                            color.colorIndex());
}

Acad::ErrorStatus AcDbDatabase::setCeltype(AcDbObjectId linetype) {
  return setRecordVariable(*m_impl, "$CELTYPE", code::kLinetype, TableKind::Linetype, celtype(),
                           linetype);
}

Acad::ErrorStatus AcDbDatabase::setCeltscale(double scale) {
  return setNumberVariable(*m_impl, "$CELTSCALE", kNumberCode, celtscale(), scale, kAboveZero,
                           dxf::Version::R13);
}

Acad::ErrorStatus AcDbDatabase::setCelweight(AcDb::LineWeight weight) {
  if (weight < AcDb::kLnWtByLwDefault || weight > AcDb::kLnWt211) {
    return Acad::eInvalidInput;
  }
  return setIntegerVariable(*m_impl, "$CELWEIGHT", code::kLineWeight, celweight(), weight,
                            dxf::Version::R2000);
}

Acad::ErrorStatus AcDbDatabase::setLtscale(double scale) {
  return setNumberVariable(*m_impl, "$LTSCALE", kNumberCode, ltscale(), scale, kAboveZero);
}

Acad::ErrorStatus AcDbDatabase::setTextsize(double size) {
  return setNumberVariable(*m_impl, "$TEXTSIZE", kNumberCode, textsize(), size, kAboveZero);
}

Acad::ErrorStatus AcDbDatabase::setTextstyle(AcDbObjectId style) {
  return setRecordVariable(*m_impl, "$TEXTSTYLE", kTextStyleCode, TableKind::TextStyle, textstyle(),
                           style);
}

Acad::ErrorStatus AcDbDatabase::setDimscale(double scale) {
  return setNumberVariable(*m_impl, "$DIMSCALE", kNumberCode, dimscale(), scale, 0.0);
}

Acad::ErrorStatus AcDbDatabase::setPdmode(Adesk::Int16 mode) {
  return setIntegerVariable(*m_impl, "$PDMODE", code::kFlags, pdmode(), mode);
}

Acad::ErrorStatus AcDbDatabase::setPdsize(double size) {
  return setNumberVariable(*m_impl, "$PDSIZE", kNumberCode, pdsize(), size, kAnyNumber);
}

Acad::ErrorStatus AcDbDatabase::setInsbase(const AcGePoint3d& base) {
  if (!std::isfinite(base.x) || !std::isfinite(base.y) || !std::isfinite(base.z)) {
    return Acad::eInvalidInput;
  }
  const AcGePoint3d before = insbase();
  if (before.x == base.x && before.y == base.y && before.z == base.z) {
    return Acad::eOk;
  }
  return setVariable(*m_impl, "$INSBASE", [&](std::string& tags) {
    constexpr int kFirstAxis = 10;
    constexpr int kAxisStep = 10;
    for (unsigned int axis = 0; axis < 3; ++axis) {
      dxf::putDouble(tags, kFirstAxis + kAxisStep * static_cast<int>(axis), base[axis],
                     m_impl->format());
    }
  });
}

Acad::ErrorStatus AcDbDatabase::setMeasurement(Adesk::Int16 system) {
  if (system != 0 && system != 1) {
    return Acad::eInvalidInput;
  }
  return setIntegerVariable(*m_impl, "$MEASUREMENT", code::kFlags, measurement(), system,
                            dxf::Version::R14);
}
