// Header variables that the database answers by name.
#include "dbsymtb.h"
#include "embedded/db/EntityFields.h"

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
