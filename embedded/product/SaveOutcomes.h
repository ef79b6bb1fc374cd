// What the drawing saver did, for those who call it through an algorithm that does not tell.
#pragma once

#include <string>
#include <vector>

#include "acadstrc.h"
#include "hostapi.h"
#include "hostextra.h"

namespace quoin::product {

/// One call of CAcadDbTool::SaveDb.
struct SaveOutcome {
  std::wstring path;
  Acad::ErrorStatus status;
  std::wstring cause;  // in words, with the file's name; empty when it went well
  bool isInPlace;      // the file is the new drawing; so it may be after a failure too
  hostx::SaveResult result;
};

/// What was saved since the last call, in order.
HOST_API std::vector<SaveOutcome> takeSaveOutcomes();

}  // namespace quoin::product
