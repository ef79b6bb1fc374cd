// Small services on the editor's view for interactive commands. Everything is static.
#pragma once

#include "acgi.h"
#include "afxext.h"
#include "gepnt3d.h"

class AFX_EXT_CLASS CAcadCommonTool {
 public:
  CAcadCommonTool& operator=(const CAcadCommonTool& other);

  /// Drawing units per pixel of the current view: the view's height over the screen's.
  static double GetCurScale();
  /// The current viewing direction in world coordinates.
  static AcGeVector3d GetWcsViewDir();
  /// Whether this is a standard display of a plain top view.
  static bool IsZAxisViewPort(AcGiRegenType regenType);
  /// `curPnt` turned about `basePnt` to the nearest multiple of 15 degrees in plan; half-way
  /// angles go up. The result lies at the height of `basePnt` and as far from it as `curPnt`
  /// is in space.
  static AcGePoint3d GetAngleLockPnt(const AcGePoint3d& basePnt, const AcGePoint3d& curPnt);
};
