// Blocks, references to them, and the ends of what they own.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

void codeBlockBegin(RecordCoder& coder, const DrawingFacts& facts) {
  coder.TV(2);
  if (!coder.isReading()) {
    return;
  }
  const RecordValues& values = coder.values();
  const Value* const owner = values.first(kOwner);
  const Value* const name = values.first(2);
  if (owner == nullptr || name == nullptr) {
    return;
  }
  const auto found = facts.blocks.find(static_cast<std::uint64_t>(owner->integer));
  const BlockFacts none;
  const BlockFacts& block = found == facts.blocks.end() ? none : found->second;
  coder.impliedInteger(70, block.flags);
  for (int i = 0; i < 3; ++i) {
    coder.implied(10 + 10 * i, block.base[i]);
  }
  coder.impliedText(3, values.textOf(*values.first(2)));
  coder.impliedText(1, block.path);
  coder.impliedText(4, block.description);
}

void codeNothing(RecordCoder&, const DrawingFacts&) {}

// --- references -----------------------------------------------------------------------------

/// Which scales a reference stores, in two bits.
enum Scales : std::int64_t { kAll = 0, kXIsOne = 1, kAllEqual = 2, kAllOne = 3 };

void codeScales(RecordCoder& coder) {
  if (!coder.since(Version::R2000)) {
    coder.BD(41, 1.0);
    coder.BD(42, 1.0);
    coder.BD(43, 1.0);
    return;
  }
  std::int64_t scales = kAll;
  if (coder.isReading()) {
    scales = coder.BB(kHiddenFlags);
  } else {
    const double x = coder.nextDouble(41, 1.0);
    const bool isUniform = coder.nextDouble(42, 1.0) == x && coder.nextDouble(43, 1.0) == x;
    const std::int64_t shortest = isUniform  ? (x == 1.0 ? kAllOne : kAllEqual)
                                  : x == 1.0 ? kXIsOne
                                             : kAll;
    const std::int64_t former = coder.nextInteger(kHiddenFlags, shortest);
    const bool fits =
        former == kAll || (former == kXIsOne && x == 1.0) || (former == kAllEqual && isUniform);
    scales = fits ? former : shortest;
    coder.dataOut().bits(static_cast<std::uint32_t>(scales), 2);
  }
  double x = 1.0;
  if (scales == kAll || scales == kAllEqual) {
    x = coder.RD(41);
  } else {
    coder.implied(41, 1.0);
  }
  if (scales == kAll || scales == kXIsOne) {
    coder.DD(42, x);
    coder.DD(43, x);
  } else {
    coder.implied(42, x);
    coder.implied(43, x);
  }
}

void codeReferenceEnd(RecordCoder& coder, bool hasAttributes, std::size_t attributes) {
  coder.H(2, kHardPointer);
  if (hasAttributes) {
    codeOwned(coder, attributes);
  }
}

/// Position, scales, rotation, and whether attributes follow.
bool codeReferenceBegin(RecordCoder& coder, std::size_t& attributes) {
  constexpr int kAttributeCount = -151;
  coder.point3BD(10);
  codeScales(coder);
  coder.BD(50);
  coder.point3BD(210);
  const bool hasAttributes = coder.B(66) != 0;
  attributes =
      hasAttributes && coder.since(Version::R2004) ? coder.countBL(kAttributeCount, kOwned) : 0;
  return hasAttributes;
}

void codeReference(RecordCoder& coder, const DrawingFacts&) {
  std::size_t attributes = 0;
  const bool hasAttributes = codeReferenceBegin(coder, attributes);
  codeReferenceEnd(coder, hasAttributes, attributes);
}

void codeArrayReference(RecordCoder& coder, const DrawingFacts&) {
  std::size_t attributes = 0;
  const bool hasAttributes = codeReferenceBegin(coder, attributes);
  coder.BS(70);
  coder.BS(71);
  coder.BD(44);
  coder.BD(45);
  codeReferenceEnd(coder, hasAttributes, attributes);
}

/// A table shows a block that was made of it; what it is made from is kept as it stands.
void codeTable(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kRest = -161;  // to -165
  std::size_t attributes = 0;
  const bool hasAttributes = codeReferenceBegin(coder, attributes);
  codeReferenceEnd(coder, hasAttributes, attributes);
  coder.rest(kRest);
}

constexpr Kind kKinds[] = {
    {4, "BLOCK", Family::Entity, codeBlockBegin, "@AcDbBlockBegin 2 70 10p 3 1 4?"},
    {5, "ENDBLK", Family::Entity, codeNothing, "@AcDbBlockEnd"},
    {6, "SEQEND", Family::Entity, codeNothing, ""},
    {7, "INSERT", Family::Entity, codeReference,
     "@AcDbBlockReference 66?0 2:BLOCK_RECORD 10p 41?1 42?1 43?1 50a?0 210p?0,0,1"},
    {8, "INSERT", Family::Entity, codeArrayReference,
     "@AcDbMInsertBlock 66?0 2:BLOCK_RECORD 10p 41?1 42?1 43?1 50a?0 70?1 71?1 44?0 45?0 "
     "210p?0,0,1"},
    {0, "ACAD_TABLE", Family::Entity, codeTable,
     "@AcDbBlockReference 2:BLOCK_RECORD 10p 41?1 42?1 43?1 50a?0 210p?0,0,1 @AcDbTable", true},
};

}  // namespace

std::span<const Kind> blockKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
