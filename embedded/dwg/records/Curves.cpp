// Points, lines and curves.
//
// Source: Open Design Specification for .dwg files, chapters of these entities.
#include "embedded/dwg/records/Kinds.h"

namespace quoin::dwg {
namespace {

using dxf::Version;

void codePoint(RecordCoder& coder, const DrawingFacts&) {
  coder.point3BD(10);
  coder.BT(39);
  coder.BE(210);
  coder.BD(50);
}

void codeLine(RecordCoder& coder, const DrawingFacts&) {
  constexpr int kIsFlat = -101;
  if (!coder.since(Version::R2000)) {
    coder.point3BD(10);
    coder.point3BD(11);
  } else {
    const bool isFlat =
        coder.omits(kIsFlat, coder.nextDouble(30) == 0.0 && coder.nextDouble(31) == 0.0);
    coder.DD(11, coder.RD(10));
    coder.DD(21, coder.RD(20));
    if (isFlat) {
      coder.implied(30, 0.0);
      coder.implied(31, 0.0);
    } else {
      coder.DD(31, coder.RD(30));
    }
  }
  coder.BT(39);
  coder.BE(210);
}

void codeCircle(RecordCoder& coder, const DrawingFacts&) {
  coder.point3BD(10);
  coder.BD(40);
  coder.BT(39);
  coder.BE(210);
}

void codeArc(RecordCoder& coder, const DrawingFacts& facts) {
  codeCircle(coder, facts);
  coder.BD(50);
  coder.BD(51);
}

void codeEllipse(RecordCoder& coder, const DrawingFacts&) {
  coder.point3BD(10);
  coder.point3BD(11);
  coder.point3BD(210);
  coder.BD(40, 1.0);
  coder.BD(41);
  coder.BD(42);
}

void codeRay(RecordCoder& coder, const DrawingFacts&) {
  coder.point3BD(10);
  coder.point3BD(11);
}

void codeControlPoints(RecordCoder& coder) {
  constexpr std::int64_t kClosed = 1;
  constexpr std::int64_t kPeriodic = 2;
  constexpr std::int64_t kRational = 4;
  constexpr int kIsRational = -111;
  constexpr int kIsClosed = -112;
  constexpr int kIsPeriodic = -113;
  constexpr int kHasWeights = -114;
  const std::int64_t wanted = coder.nextInteger(70);
  const auto flag = [&](int key, std::int64_t mask) {
    if (coder.isReading()) {
      return coder.B(key) != 0 ? mask : 0;
    }
    coder.dataOut().bit((wanted & mask) != 0);
    return wanted & mask;
  };
  const std::int64_t rational = flag(kIsRational, kRational);
  const std::int64_t closed = flag(kIsClosed, kClosed);
  const std::int64_t periodic = flag(kIsPeriodic, kPeriodic);
  coder.impliedInteger(70, rational | closed | periodic);
  coder.BD(42);
  coder.BD(43);
  const std::size_t knots = coder.countBL(72, 40);
  const std::size_t points = coder.countBL(73, 10);
  const bool hasWeights = coder.isReading() ? coder.B(kHasWeights) != 0 : coder.amount(41) != 0;
  if (!coder.isReading()) {
    coder.dataOut().bit(hasWeights);
  }
  for (std::size_t i = 0; i < knots && !coder.hasFailed(); ++i) {
    coder.BD(40);
  }
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point3BD(10);
    if (hasWeights) {
      coder.BD(41, 1.0);
    }
  }
}

void codeFitPoints(RecordCoder& coder) {
  coder.impliedInteger(70, 0);
  coder.BD(44);
  coder.point3BD(12);
  coder.point3BD(13);
  const std::size_t points = coder.countBL(74, 11);
  for (std::size_t i = 0; i < points && !coder.hasFailed(); ++i) {
    coder.point3BD(11);
  }
}

void codeSpline(RecordCoder& coder, const DrawingFacts&) {
  // By control points (1) or by points that it fits (2).
  constexpr int kScenario = -121;
  constexpr int kFlags = -122;
  constexpr int kKnotParameter = -123;
  constexpr std::int64_t kCustomKnots = 15;
  constexpr std::int64_t kUsesKnotParameter = 8;
  std::int64_t scenario = coder.BL(kScenario, 1);
  if (coder.since(Version::R2013)) {
    const std::int64_t flags = coder.BL(kFlags);
    const std::int64_t knots = coder.BL(kKnotParameter, kCustomKnots);
    scenario = knots == kCustomKnots || (flags & kUsesKnotParameter) == 0 ? 1 : 2;
  }
  coder.BL(71, 3);
  if (scenario == 2) {
    codeFitPoints(coder);
  } else {
    codeControlPoints(coder);
  }
}

constexpr Kind kKinds[] = {
    {17, "ARC", Family::Entity, codeArc, "@AcDbCircle 39?0 10p 40 210p?0,0,1 @AcDbArc 50a 51a"},
    {18, "CIRCLE", Family::Entity, codeCircle, "@AcDbCircle 39?0 10p 40 210p?0,0,1"},
    {19, "LINE", Family::Entity, codeLine, "@AcDbLine 39?0 10p 11p 210p?0,0,1"},
    {27, "POINT", Family::Entity, codePoint, "@AcDbPoint 10p 39?0 210p?0,0,1 50a?0"},
    {35, "ELLIPSE", Family::Entity, codeEllipse, "@AcDbEllipse 10p 11p 210p 40 41 42"},
    {36, "SPLINE", Family::Entity, codeSpline,
     "@AcDbSpline 70 71 72 73 74 42 43 44 12p 13p ( 40 ) ( 10p 41 ) ( 11p )"},
    {40, "RAY", Family::Entity, codeRay, "@AcDbRay 10p 11p"},
    {41, "XLINE", Family::Entity, codeRay, "@AcDbXline 10p 11p"},
};

}  // namespace

std::span<const Kind> curveKinds() {
  return kKinds;
}

}  // namespace quoin::dwg
