// Leaders, tolerances, multileaders and their styles.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include "embedded/dwg/records/CommonData.h"
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

// --- leaders --------------------------------------------------------------------------------

void codeLeader(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kUnknownBit = -101;
  constexpr int kOrigin = -501;  // and -491, -481
  constexpr int kGap = -102;
  constexpr int kOldFields = -103;  // to -110
  constexpr int kUnknown = -111;    // to -113
  coder.B(kUnknownBit);
  coder.BS(73, 3);
  coder.BS(72);
  const std::size_t points = coder.countBL(76, 10);
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point3BD(10);
  }
  coder.point3BD(kOrigin);
  coder.point3BD(210);
  coder.point3BD(211);
  coder.point3BD(212);
  if (coder.since(Version::R14)) {
    coder.point3BD(213);
  }
  if (!coder.since(Version::R2000)) {
    coder.BD(kGap);
  }
  if (!coder.since(Version::R2010)) {
    coder.BD(40);
    coder.BD(41);
  }
  coder.B(74);
  coder.B(71, 1);
  if (!coder.since(Version::R2000)) {
    coder.BS(kOldFields);
    coder.BD(kOldFields - 1);
    coder.B(kOldFields - 2);
    coder.B(kOldFields - 3);
    coder.BS(kOldFields - 4);
    coder.BS(77);
    coder.B(kOldFields - 5);
    coder.B(kOldFields - 6);
  } else {
    coder.BS(kUnknown);
    coder.B(kUnknown - 1);
    coder.B(kUnknown - 2);
  }
  const std::uint64_t annotation = coder.H(340, kSoftPointer);
  coder.impliedInteger(75, annotation != 0 ? 1 : 0);
  coder.H(3, kHardPointer);
}

void codeTolerance(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kOldFields = -101;  // to -103
  if (!coder.since(Version::R2000)) {
    coder.BS(kOldFields);
    coder.BD(kOldFields - 1);
    coder.BD(kOldFields - 2);
  }
  coder.point3BD(10);
  coder.point3BD(11);
  coder.point3BD(210);
  coder.TV(1);
  coder.H(3, kHardPointer);
}

// --- multileaders ---------------------------------------------------------------------------

/// Keys of the entity's own fields, behind those of what it shows, and of its leaders.
constexpr int own(int code) {
  return code + kKeyStep;
}
constexpr int leader(int code) {
  return code + 2 * kKeyStep;
}

/// Counts that DXF does not show, and what it shows of some leaders only.
enum MultileaderKey : int {
  kLeaderCount = -101,
  kBreakCount = -102,
  kLineCount = -103,
  kPointCount = -104,
  kBreakInfoCount = -105,
  kSegment = -106,
  kLineBreakCount = -107,
  kLinePath = -108,
  kLineColor = -109,  // to -112
  kLineLinetype = -113,
  kLineWeight = -114,
  kArrowSize = -115,
  kArrow = -116,
  kOverrides = -117,
  kTextColor = -118,        // to -121
  kBackgroundColor = -122,  // to -125
  kColumnCount = -126,
  kUnknownBit = -127,
  kBlockColor = -128,     // to -131
  kOwnColor = -132,       // to -135
  kOwnTextColor = -136,   // to -139
  kOwnBlockColor = -140,  // to -143
  kArrowCount = -144,
  kLabelCount = -145,
  kColorValue = -146,
};

void codeLeaderLine(RecordCoder& coder) {
  coder.impliedText(leader(304), L"LEADER_LINE{");
  const std::size_t points = coder.partsBL(kPointCount);
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point3BD(leader(10));
  }
  if (coder.BL(kBreakInfoCount) > 0) {
    coder.BL(leader(90));
    const std::size_t breaks = coder.partsBL(kLineBreakCount);
    for (std::size_t i = 0; i < breaks && !coder.hasFailed(); ++i) {
      coder.point3BD(leader(11));
      coder.point3BD(leader(12));
    }
  }
  coder.BL(leader(91));
  if (coder.since(Version::R2010)) {
    // DXF shows these where they are not those of the entity.
    coder.BS(kLinePath);
    codeRawColor(coder, kColorValue, kLineColor);
    coder.H(kLineLinetype, kHardPointer);
    coder.BL(kLineWeight);
    coder.BD(kArrowSize);
    coder.H(kArrow, kHardPointer);
    coder.BL(kOverrides);
  }
  coder.impliedText(leader(305), L"}");
}

void codeLeaderRoot(RecordCoder& coder) {
  coder.impliedText(leader(302), L"LEADER{");
  coder.B(leader(290));
  coder.B(leader(291));
  coder.point3BD(leader(10));
  coder.point3BD(leader(11));
  const std::size_t breaks = coder.partsBL(kBreakCount);
  for (std::size_t i = 0; i < breaks && !coder.hasFailed(); ++i) {
    coder.point3BD(leader(12));
    coder.point3BD(leader(13));
  }
  coder.BL(leader(90));
  coder.BD(leader(40));
  const std::size_t lines = coder.partsBL(kLineCount);
  for (std::size_t i = 0; i < lines && !coder.hasFailed(); ++i) {
    codeLeaderLine(coder);
  }
  if (coder.since(Version::R2010)) {
    coder.BS(leader(271));
  }
  coder.impliedText(leader(303), L"}");
}

void codeTextContent(RecordCoder& coder) {
  coder.TV(304);
  coder.point3BD(11);
  coder.H(340, kHardPointer);
  coder.point3BD(12);
  coder.point3BD(13);
  coder.BD(42);
  coder.BD(43);
  coder.BD(44);
  coder.BD(45);
  coder.BS(170);
  codeRawColor(coder, 90, kTextColor);
  coder.BS(171);
  coder.BS(172);
  codeRawColor(coder, 91, kBackgroundColor);
  coder.BD(141);
  coder.BL(92);
  coder.B(291);
  coder.B(292);
  coder.BS(173);
  coder.B(293);
  coder.BD(142);
  coder.BD(143);
  coder.B(294);
  const std::size_t columns = coder.countBL(kColumnCount, 144);
  for (std::size_t i = 0; i < columns && !coder.hasFailed(); ++i) {
    coder.BD(144);
  }
  coder.B(295);
  coder.B(kUnknownBit);
}

void codeBlockContent(RecordCoder& coder) {
  constexpr int kMatrix = 16;
  coder.H(341, kSoftPointer);
  coder.point3BD(14);
  coder.point3BD(15);
  coder.point3BD(16);
  coder.BD(46);
  codeRawColor(coder, 93, kBlockColor);
  for (int i = 0; i < kMatrix; ++i) {
    coder.BD(47);
  }
}

void codeContent(RecordCoder& coder) {
  const std::size_t leaders = coder.partsBL(kLeaderCount);
  for (std::size_t i = 0; i < leaders && !coder.hasFailed(); ++i) {
    codeLeaderRoot(coder);
  }
  coder.BD(40, 1.0);
  coder.point3BD(10);
  coder.BD(41);
  coder.BD(140);
  coder.BD(145);
  coder.BS(174);
  coder.BS(175);
  coder.BS(176);
  coder.BS(177);
  if (coder.B(290) != 0) {
    codeTextContent(coder);
    coder.impliedInteger(296, 0);
  } else if (coder.B(296) != 0) {
    codeBlockContent(coder);
  }
  coder.point3BD(110);
  coder.point3BD(111);
  coder.point3BD(112);
  coder.B(297);
  if (coder.since(Version::R2010)) {
    coder.BS(273);
    coder.BS(272);
  }
}

void codeMultileader(RecordCoder& coder, const DrawingFacts&) {
  if (coder.since(Version::R2010)) {
    coder.BS(270, 2);
  }
  codeContent(coder);
  coder.H(own(340), kHardPointer);
  coder.BL(own(90));
  coder.BS(own(170));
  codeRawColor(coder, own(91), kOwnColor);
  coder.H(own(341), kHardPointer);
  coder.BL(own(171));
  coder.B(own(290));
  coder.B(own(291));
  coder.BD(own(41));
  coder.H(own(342), kHardPointer);
  coder.BD(own(42));
  coder.BS(own(172));
  coder.H(own(343), kHardPointer);
  coder.BS(own(173));
  coder.BS(own(95));
  coder.BS(own(174));
  coder.BS(own(175));
  codeRawColor(coder, own(92), kOwnTextColor);
  coder.B(own(292));
  coder.H(own(344), kHardPointer);
  codeRawColor(coder, own(93), kOwnBlockColor);
  coder.point3BD(own(10));
  coder.BD(own(43));
  coder.BS(own(176));
  coder.B(own(293));
  if (!coder.since(Version::R2010)) {
    const std::size_t arrows = coder.countBL(kArrowCount, own(345));
    for (std::size_t i = 0; i < arrows && !coder.hasFailed(); ++i) {
      coder.B(own(94));
      coder.H(own(345), kHardPointer);
    }
  }
  const std::size_t labels = coder.countBL(kLabelCount, own(330));
  for (std::size_t i = 0; i < labels && !coder.hasFailed(); ++i) {
    coder.H(own(330), kSoftPointer);
    coder.TV(own(302));
    coder.BS(own(177));
    coder.BD(own(44));
  }
  coder.B(own(294));
  coder.BS(own(178));
  coder.BS(own(179));
  coder.BD(own(45), 1.0);
  if (coder.since(Version::R2010)) {
    coder.BS(own(271));
    coder.BS(own(272));
    coder.BS(own(273));
  }
  if (coder.since(Version::R2013)) {
    coder.B(own(295));
  }
}

void codeMultileaderStyle(RecordCoder& coder, const DrawingFacts&) {
  if (coder.since(Version::R2010)) {
    coder.BS(179, 2);
  }
  coder.BS(170);
  coder.BS(171);
  coder.BS(172);
  coder.BL(90);
  coder.BD(40);
  coder.BD(41);
  coder.BS(173);
  codeRawColor(coder, 91, kOwnColor);
  coder.H(340, kHardPointer);
  coder.BL(92);
  coder.B(290);
  coder.BD(42);
  coder.B(291);
  coder.BD(43);
  coder.TV(3);
  coder.H(341, kHardPointer);
  coder.BD(44);
  coder.TV(300);
  coder.H(342, kHardPointer);
  coder.BS(174);
  coder.BS(178);
  coder.BS(175);
  coder.BS(176);
  codeRawColor(coder, 93, kOwnTextColor);
  coder.BD(45);
  coder.B(292);
  coder.B(297);
  coder.BD(46);
  coder.H(343, kHardPointer);
  codeRawColor(coder, 94, kOwnBlockColor);
  coder.BD(47);
  coder.BD(49);
  coder.BD(140);
  coder.B(293);
  coder.BD(141);
  coder.B(294);
  coder.BS(177);
  coder.BD(142);
  coder.B(296);
  coder.B(295);
  coder.BD(143);
  if (coder.since(Version::R2010)) {
    coder.BS(271);
    coder.BS(273);
    coder.BS(272);
  }
  if (coder.since(Version::R2013)) {
    coder.B(298);
  }
}

constexpr Kind kKinds[] = {
    {45, "LEADER", Family::Entity, codeLeader,
     "@AcDbLeader 3:DIMSTYLE 71?1 72?0 73 74 75 40 41 76 ( 10p ) 77?0 340?0 211p?1,0,0 "
     "210p?0,0,1 212p?0,0,0 213p?0,0,0"},
    {46, "TOLERANCE", Family::Entity, codeTolerance,
     "@AcDbFcf 3:DIMSTYLE 10p 1 210p?0,0,1 11p?1,0,0"},
    {0, "MULTILEADER", Family::Entity, codeMultileader,
     "@AcDbMLeader 270 300=CONTEXT_DATA{ 40 10p 41 140 145 174 175 176 177 290 304&290 11p&290 "
     "340&290 12p&290 13p&290 42&290 43&290 44&290 45&290 170&290 90&290 171&290 172&290 91&290 "
     "141&290 92&290 291&290 292&290 173&290 293&290 142&290 143&290 294&290 ( 144 ) 295&290 296 "
     "341&296 14p&296 15p&296 16p&296 46&296 93&296 ( 47 ) 110p 111p 112p 297 "
     "[ 302#2 290#2 291#2 10p#2 11p#2 12p#2 13p#2 90#2 40#2 304#2 91#2 305#2 271#2 303#2 ] "
     "272 273 301=} 340#1 90#1 170#1 91#1 341#1?0 171#1 290#1 291#1 41#1 342#1?0 42#1 172#1 "
     "343#1?0 173#1 95#1 174#1 175#1 92#1 292#1 344#1?0 93#1 10p#1 43#1 176#1 293#1 "
     "( 94#1 345#1 ) ( 330#1 177#1 44#1 302#1 ) 294#1 178#1 179#1 45#1 271#1 272#1 273#1 295#1",
     true},
    {0, "MLEADERSTYLE", Family::Object, codeMultileaderStyle,
     "@AcDbMLeaderStyle 179 170 171 172 90 40 41 173 91 340?0 92 290 42 291 43 3 341?0 44 300 "
     "342?0 "
     "174 178 175 176 93 45 292 297 46 343?0 94 47 49 140 293 141 294 177 142 295 296 143 271 272 "
     "273 298"},
};

}  // namespace

std::span<const Kind> leaderKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
