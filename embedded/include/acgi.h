// The graphics interface, as far as modules ask for it: why something is drawn.
#pragma once

#include "adesk.h"

/// What kind of regeneration a drawing is for.
enum AcGiRegenType {
  eAcGiRegenTypeInvalid = 0,
  kAcGiStandardDisplay = 2,
  kAcGiHideOrShadeCommand,
  kAcGiShadedDisplay,
  kAcGiForExplode,
  kAcGiSaveWorldDrawForProxy,
  kAcGiForExtents
};
