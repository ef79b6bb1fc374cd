// What belongs to blocks and colours beside them: draw order, clipping, colours of a book.
//
// Source: Open Design Specification for .dwg files, chapters of these objects.
#include <string>
#include <utility>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

void codeDrawOrder(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kCount = -101;
  constexpr int kPlace = 5 + kKeyStep;
  coder.H(330, kSoftPointer);
  const std::size_t entries = coder.countBL(kCount, 331);
  for (std::size_t i = 0; i < entries && !coder.hasFailed(); ++i) {
    coder.dataHandle(kPlace, 0);
    coder.H(331, kSoftPointer);
  }
}

void codeSpatialFilter(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kMatrices = 40 + kKeyStep;
  constexpr int kMatrixParts = 2 * 12;  // to the block and back
  const std::size_t points = coder.countBS(70, 10);
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point2RD(10);
  }
  coder.point3BD(210);
  coder.point3BD(11);
  coder.BS(71);
  if (coder.BS(72) != 0) {
    coder.BD(40);
  }
  if (coder.BS(73) != 0) {
    coder.BD(41);
  }
  for (int i = 0; i < kMatrixParts; ++i) {
    coder.BD(kMatrices);
  }
}

void codeBookColor(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kColor = -111;  // to -115
  constexpr int kOldColor = -121;
  // DXF shows it from R2004 on.
  if (!coder.since(dxf::Version::R2004)) {
    coder.BS(kOldColor);
    return;
  }
  codeShownColor(coder, 62, 420, kColor);
  if (coder.isReading() && !coder.hasFailed()) {
    const RecordValues& values = coder.values();
    const Value* const name = values.first(kColor - 3);
    const Value* const book = values.first(kColor - 4);
    std::wstring shown = book == nullptr ? std::wstring() : values.textOf(*book) + L'$';
    shown += name == nullptr ? std::wstring() : values.textOf(*name);
    coder.impliedText(430, std::move(shown));
  }
}

constexpr Kind kKinds[] = {
    {0, "SORTENTSTABLE", Family::Object, codeDrawOrder, "@AcDbSortentsTable 330 ( 331 5#1 )"},
    {0, "SPATIAL_FILTER", Family::Object, codeSpatialFilter,
     "@AcDbFilter @AcDbSpatialFilter 70 ( 10q ) 210p 11p 71 72 40&72 73 41&73 ( 40#1 )"},
    {0, "DBCOLOR", Family::Object, codeBookColor, "@AcDbColor 62 420 430?"},
};

}  // namespace

std::span<const Kind> blockDataKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
