// Multilines and their styles.
//
// Source: Open Design Specification for .dwg files, "MLINE", "MLINESTYLE".
#include <algorithm>
#include <utility>

#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

void codeParameters(RecordCoder& coder, int countKey, int key) {
  const std::size_t count = coder.partsBS(countKey);
  for (std::size_t i = 0; i < count && !coder.hasFailed(); ++i) {
    coder.BD(key);
  }
}

void codeMultiline(RecordCoder& coder, const DrawingFacts&) {
  // 1: open, 3: closed; group 71 has 1 for a multiline with vertices, 2 for a closed one, and
  // caps that are left out, which DWG does not know.
  constexpr int kOpenOrClosed = -101;
  constexpr std::int64_t kClosed = 2;
  coder.BD(40, 1.0);
  coder.RC(70);
  coder.point3BD(10);
  coder.point3BD(210);
  if (coder.isReading()) {
    coder.impliedInteger(71, coder.BS(kOpenOrClosed));
  } else {
    const std::int64_t former = coder.nextInteger(kOpenOrClosed, 1);
    const std::int64_t flags = (former & ~kClosed) | (coder.nextInteger(71, 1) & kClosed);
    const Value* const kept = coder.next(kOpenOrClosed);
    coder.dataOut().bitShort(static_cast<std::uint16_t>(flags),
                             kept != nullptr && flags == former ? kept->form : -1);
  }
  const std::size_t lines = coder.partsRC(73);
  const std::size_t vertices = coder.partsBS(72);
  for (std::size_t i = 0; i < vertices && !coder.hasFailed(); ++i) {
    coder.point3BD(11);
    coder.point3BD(12);
    coder.point3BD(13);
    for (std::size_t j = 0; j < lines && !coder.hasFailed(); ++j) {
      codeParameters(coder, 74, 41);
      codeParameters(coder, 75, 42);
    }
  }
  const std::uint64_t style = coder.H(340, kHardPointer);
  coder.impliedHandle(2, style);
}

/// The bits of a style's flags that DXF has in another place.
std::int64_t exchangedFlags(std::int64_t flags) {
  constexpr std::pair<std::int64_t, std::int64_t> kPairs[] = {{1, 2}, {32, 64}, {512, 1024}};
  for (const auto& [low, high] : kPairs) {
    const std::int64_t kept = flags & ~(low | high);
    flags = kept | ((flags & low) != 0 ? high : 0) | ((flags & high) != 0 ? low : 0);
  }
  return flags;
}

/// Up to R2013 an element has the place of its linetype in the table.
void codeLinetypeIndex(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kIndex = -131;
  constexpr std::int64_t kByLayer = 0x7FFF;
  constexpr std::int64_t kByBlock = 0x7FFE;
  const auto handleAt = [&](std::int64_t index) -> std::uint64_t {
    return index == kByLayer   ? facts.byLayerLinetype
           : index == kByBlock ? facts.byBlockLinetype
           : index >= 0 && index < static_cast<std::int64_t>(facts.linetypes.size())
               ? facts.linetypes[static_cast<std::size_t>(index)]
               : 0;
  };
  if (coder.isReading()) {
    coder.impliedHandle(6, handleAt(coder.BS(kIndex)));
    return;
  }
  const std::uint64_t handle = coder.nextHandle(6);
  coder.impliedHandle(6, 0);
  if (coder.next(kIndex) != nullptr && handleAt(coder.nextInteger(kIndex)) == handle) {
    coder.BS(kIndex);
    return;
  }
  const auto found = std::find(facts.linetypes.begin(), facts.linetypes.end(), handle);
  const std::int64_t index = handle == facts.byBlockLinetype  ? kByBlock
                             : found == facts.linetypes.end() ? kByLayer
                                                              : found - facts.linetypes.begin();
  coder.impliedInteger(kIndex, 0);
  coder.dataOut().bitShort(static_cast<std::uint16_t>(index));
}

void codeMultilineStyle(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kFlags = -111;
  constexpr int kFillColor = -112;     // to -116
  constexpr int kElementColor = -122;  // to -126
  constexpr int kFill = 62 + kKeyStep;
  coder.TV(2);
  coder.TV(3);
  if (coder.isReading()) {
    coder.impliedInteger(70, exchangedFlags(coder.BS(kFlags)));
  } else {
    const std::int64_t flags = exchangedFlags(coder.nextInteger(70));
    const Value* const kept = coder.next(kFlags);
    coder.dataOut().bitShort(static_cast<std::uint16_t>(flags),
                             kept != nullptr && kept->integer == flags ? kept->form : -1);
  }
  codeShownColor(coder, kFill, 420 + kKeyStep, kFillColor);
  coder.BD(51);
  coder.BD(52);
  const std::size_t elements = coder.partsRC(71);
  for (std::size_t i = 0; i < elements && !coder.hasFailed(); ++i) {
    coder.BD(49);
    codeShownColor(coder, 62, 0, kElementColor);
    if (coder.since(Version::R2018)) {
      coder.H(6, kHardPointer);
      continue;
    }
    codeLinetypeIndex(coder, facts);
  }
}

constexpr Kind kKinds[] = {
    {47, "MLINE", Family::Entity, codeMultiline,
     "@AcDbMline 2:MLINESTYLE 340 40 70 71 72 73 10p 210p [ 11p 12p 13p 74 41 75 42 ]"},
    {73, "MLINESTYLE", Family::Object, codeMultilineStyle,
     "@AcDbMlineStyle 2 70 3 62#1 420#1 51a 52a 71 ( 49 62 6:LTYPE )"},
};

}  // namespace

std::span<const Kind> multilineKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
