// Layouts and named page setups.
//
// Source: Open Design Specification for .dwg files, "LAYOUT", "PLOTSETTINGS".
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

/// From R2004 on the record has a handle of the view in place of its name.
constexpr int kPlotView = -101;

void codePlotSettings(RecordCoder& coder, const DrawingFacts& facts) {
  coder.TV(1);
  coder.TV(2);
  coder.BS(70);
  for (int key = 40; key <= 45; ++key) {
    coder.BD(key);
  }
  coder.TV(4);
  coder.BD(46);
  coder.BD(47);
  coder.BS(72);
  coder.BS(73);
  coder.BS(74);
  for (const int key : {48, 49, 140, 141}) {
    coder.BD(key);
  }
  if (!coder.since(Version::R2004)) {
    coder.TV(6);
  }
  coder.BD(142, 1.0);
  coder.BD(143, 1.0);
  coder.TV(7);
  coder.BS(75);
  coder.BD(147, 1.0);
  coder.BD(148);
  coder.BD(149);
  if (coder.since(Version::R2004)) {
    coder.BS(76);
    coder.BS(77);
    coder.BS(78);
    const std::uint64_t view = coder.H(kPlotView, kHardPointer);
    coder.impliedText(6, facts.nameOf(view));
  }
  if (coder.since(Version::R2007)) {
    coder.H(333, kSoftPointer);
  }
}

void codeLayout(RecordCoder& coder, const DrawingFacts& facts) {
  constexpr int kViewportCount = -102;
  constexpr int kViewport = -103;
  const auto second = [](int code) { return code + kKeyStep; };
  codePlotSettings(coder, facts);
  coder.TV(second(1));
  coder.BL(second(71));
  coder.BS(second(70));
  coder.point3BD(13);
  coder.point2RD(10);
  coder.point2RD(11);
  coder.point3BD(12);
  coder.point3BD(16);
  coder.point3BD(17);
  coder.BD(146);
  coder.BS(second(76));
  coder.point3BD(14);
  coder.point3BD(15);
  const std::size_t viewports =
      coder.since(Version::R2004) ? coder.countBL(kViewportCount, kViewport) : 0;
  coder.H(330, kSoftPointer);
  coder.H(331, kSoftPointer);
  coder.H(346, kHardPointer);
  coder.H(345, kHardPointer);
  for (std::size_t i = 0; i < viewports && !coder.hasFailed(); ++i) {
    coder.H(kViewport, kSoftPointer);
  }
}

#define PLOT_SETTINGS                                                                         \
  "@AcDbPlotSettings 1 2 4 6 40 41 42 43 44 45 46 47 48 49 140 141 142 143 70 72 73 74 7 75 " \
  "147 76 77 78 148 149 333?0 "

constexpr Kind kKinds[] = {
    {82, "LAYOUT", Family::Object, codeLayout,
     PLOT_SETTINGS
     "@AcDbLayout 1#1 70#1 71#1 10q 11q 12p 14p 15p 146 13p 16p 17p 76#1 330 331?0 345?0 346?0"},
    {0, "PLOTSETTINGS", Family::Object, codePlotSettings, PLOT_SETTINGS},
};

}  // namespace

std::span<const Kind> layoutKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
