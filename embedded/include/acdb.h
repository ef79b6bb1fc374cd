// Enumerations of the drawing database.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

namespace AcDb {

enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };

enum BoolOperType { kBoolUnite = 0, kBoolIntersect = 1, kBoolSubtract = 2 };

enum Visibility { kVisible = 0, kInvisible = 1 };

/// Hundredths of a millimetre, or one of the three relative weights.
enum LineWeight {
  kLnWt000 = 0,
  kLnWt005 = 5,
  kLnWt009 = 9,
  kLnWt013 = 13,
  kLnWt015 = 15,
  kLnWt018 = 18,
  kLnWt020 = 20,
  kLnWt025 = 25,
  kLnWt030 = 30,
  kLnWt035 = 35,
  kLnWt040 = 40,
  kLnWt050 = 50,
  kLnWt053 = 53,
  kLnWt060 = 60,
  kLnWt070 = 70,
  kLnWt080 = 80,
  kLnWt090 = 90,
  kLnWt100 = 100,
  kLnWt106 = 106,
  kLnWt120 = 120,
  kLnWt140 = 140,
  kLnWt158 = 158,
  kLnWt200 = 200,
  kLnWt211 = 211,
  kLnWtByLayer = -1,
  kLnWtByBlock = -2,
  kLnWtByLwDefault = -3
};

enum Poly2dType { k2dSimplePoly = 0, k2dFitCurvePoly, k2dQuadSplinePoly, k2dCubicSplinePoly };
enum Poly3dType { k3dSimplePoly = 0, k3dQuadSplinePoly, k3dCubicSplinePoly };
enum Vertex2dType { k2dVertex = 0, k2dSplineCtlVertex, k2dSplineFitVertex, k2dCurveFitVertex };
enum Vertex3dType { k3dSimpleVertex = 0, k3dControlVertex, k3dFitVertex };

enum TextHorzMode {
  kTextLeft = 0,
  kTextCenter = 1,
  kTextRight = 2,
  kTextAlign = 3,
  kTextMid = 4,
  kTextFit = 5
};
enum TextVertMode { kTextBase = 0, kTextBottom = 1, kTextVertMid = 2, kTextTop = 3 };

/// Units of a drawing ($INSUNITS).
enum UnitsValue {
  kUnitsUndefined = 0,
  kUnitsInches = 1,
  kUnitsFeet = 2,
  kUnitsMiles = 3,
  kUnitsMillimeters = 4,
  kUnitsCentimeters = 5,
  kUnitsMeters = 6,
  kUnitsKilometers = 7,
  kUnitsMicroinches = 8,
  kUnitsMils = 9,
  kUnitsYards = 10,
  kUnitsAngstroms = 11,
  kUnitsNanometers = 12,
  kUnitsMicrons = 13,
  kUnitsDecimeters = 14,
  kUnitsDekameters = 15,
  kUnitsHectometers = 16,
  kUnitsGigameters = 17,
  kUnitsAstronomical = 18,
  kUnitsLightYears = 19,
  kUnitsParsecs = 20,
  kUnitsMax = kUnitsParsecs
};

/// Versions of drawing files, in ascending order.
enum AcDbDwgVersion {
  kDHL_Unknown = 0,
  kDHL_1006,
  kDHL_1009,
  kDHL_1012,
  kDHL_1014,
  kDHL_1015,
  kDHL_1800,
  kDHL_1021,
  kDHL_1024,
  kDHL_1027,
  kDHL_1032,
  kDHL_CURRENT = kDHL_1024
};

}  // namespace AcDb

#define ACDB_MODEL_SPACE ACRX_T("*Model_Space")
#define ACDB_PAPER_SPACE ACRX_T("*Paper_Space")

/// How a file is shared while it is read; the values are those of the C run-time library.
#ifndef _SH_DENYRW
#define _SH_DENYRW 0x10
#define _SH_DENYWR 0x20
#define _SH_DENYRD 0x30
#define _SH_DENYNO 0x40
#endif
