// Linked without the frame: no acrxGetApiVersion.
#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) {
  return AcRx::kRetOK;
}
