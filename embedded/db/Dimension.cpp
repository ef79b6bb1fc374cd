// AcDbDimension: what the drawing shows of a dimension.
#include "dbdim.h"

#include "embedded/db/DatabaseImpl.h"
#include "embedded/db/PlaneFields.h"

ACRX_DXF_CONS_DEFINE_MEMBERS(AcDbDimension, AcDbEntity, L"DIMENSION", L"ObjectDBX Classes")

using namespace quoin::db;

namespace {

constexpr int kText = 1;
constexpr int kBlockName = 2;
constexpr int kStyleName = 3;
constexpr int kTextPosition = 11;
constexpr int kBlockPosition = 12;
constexpr int kMeasurement = 42;
// The subclass that every sort of dimension has. Its tags are only read.
constexpr Place kDimension{"AcDbDimension", {}};

}  // namespace

AcDbDimension::AcDbDimension() = default;

AcDbObjectId AcDbDimension::dimBlockId() const {
  return recordNamed(*this, TableKind::Block, textOf(*this, kDimension, kBlockName));
}

AcGePoint3d AcDbDimension::dimBlockPosition() const {
  return worldPointOf(*this, kDimension, kBlockPosition);
}

AcDbObjectId AcDbDimension::dimensionStyle() const {
  return recordNamed(*this, TableKind::DimStyle,
                     textOf(*this, kDimension, kStyleName, L"Standard"));
}

AcGePoint3d AcDbDimension::textPosition() const {
  return worldPointOf(*this, kDimension, kTextPosition);
}

const ACHAR* AcDbDimension::dimensionText() const {
  return keptText(*this, kText, textOf(*this, kDimension, kText));
}

Acad::ErrorStatus AcDbDimension::getMeasurement(double& measurement) const {
  const TagList& tags = tagsOf(*this);
  const std::size_t at = tags.find(kMeasurement, kDimension.in(tags));
  if (at == TagList::kNone) {
    return Acad::eNotApplicable;
  }
  measurement = tags.doubleAt(at);
  return Acad::eOk;
}

AcGeVector3d AcDbDimension::normal() const {
  return normalOf(*this, kDimension);
}
