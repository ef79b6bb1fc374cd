// Messages that the host sends to a module's entry point, and what the module returns.
#pragma once

#include "acadstrc.h"
#include "adesk.h"

namespace AcRx {

/// Application messages. A module's dispatcher serves the codes 0 to 15; the host may send codes
/// that are not listed here.
enum AppMsgCode : int {
  kNullMsg = 0,
  kInitAppMsg = 1,
  kUnloadAppMsg = 2,
  kLoadDwgMsg = 3,
  kUnloadDwgMsg = 4,
  kInvkSubrMsg = 5,
  kCfgMsg = 6,
  kEndMsg = 7,
  kQuitMsg = 8,
  kSaveMsg = 9,
  kDependencyMsg = 10,
  kNoDependencyMsg = 11,
  kOleUnloadAppMsg = 12,
  kPreQuitMsg = 13,
  kInitDialogMsg = 14,
  kEndDialogMsg = 15,
  kSuspendMsg = 16,
  kInitTabGroupMsg = 17,
  kEndTabGroupMsg = 18
};

enum AppRetCode { kRetOK = 0, kRetError = 3 };

/// How two objects compare.
enum Ordering { kLessThan = -1, kEqual = 0, kGreaterThan = 1, kNotOrderable = 2 };

}  // namespace AcRx
