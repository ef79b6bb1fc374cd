// The plain functions of the editor that concern system variables and coordinate systems.
#include <algorithm>
#include <cmath>
#include <optional>

#include "acedads.h"
#include "embedded/ed/Editor.h"

using quoin::ed::Editor;

int acedGetVar(const ACHAR* name, resbuf* result) {
  const Editor* const editor = Editor::current();
  return editor && name && result && editor->getVariable(name, *result) ? RTNORM : RTERROR;
}

int acedSetVar(const ACHAR* name, const resbuf* value) {
  Editor* const editor = Editor::current();
  return editor && name && value && editor->setVariable(name, *value) ? RTNORM : RTERROR;
}

namespace {

// Codes of the coordinate systems that a short names.
constexpr short kWorldSystem = 0;
constexpr short kUserSystem = 1;
constexpr short kDisplaySystem = 2;

/// The transform from the system that a result buffer names into the world; nothing for a
/// system that there is not.
std::optional<AcGeMatrix3d> systemToWorld(const resbuf& system) {
  if (system.restype == RT3DPOINT) {
    const ads_real* const n = system.resval.rpoint;
    const AcGeVector3d normal(n[0], n[1], n[2]);
    if (normal.isZeroLength() || !std::isfinite(normal.length())) {
      return std::nullopt;
    }
    return AcGeMatrix3d().setToPlaneToWorld(normal);
  }
  if (system.restype != RTSHORT) {
    return std::nullopt;
  }
  if (system.resval.rint == kWorldSystem) {
    return AcGeMatrix3d();
  }
  const Editor* const editor = Editor::current();
  const AcApDocument* const document = editor ? editor->currentDocument() : nullptr;
  if (document && system.resval.rint == kUserSystem) {
    return editor->userSystem(*document).toWorld();
  }
  if (document && system.resval.rint == kDisplaySystem) {
    return editor->view(*document).toWorld();
  }
  return std::nullopt;
}

}  // namespace

int acedTrans(const ads_point point, const resbuf* from, const resbuf* to, int disp,
              ads_point result) {
  if (!Editor::current() || !point || !from || !to || !result) {
    return RTERROR;
  }
  const std::optional<AcGeMatrix3d> fromWorld = systemToWorld(*from);
  const std::optional<AcGeMatrix3d> toWorld = systemToWorld(*to);
  if (!fromWorld || !toWorld) {
    return RTERROR;
  }
  const AcGeMatrix3d change = toWorld->inverse() * *fromWorld;
  AcGeVector3d moved(point[0], point[1], point[2]);
  moved = disp == 0 ? (change * AcGePoint3d(moved.x, moved.y, moved.z)).asVector() : change * moved;
  result[0] = moved.x;
  result[1] = moved.y;
  result[2] = moved.z;
  return RTNORM;
}
