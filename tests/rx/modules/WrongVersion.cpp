// Built against release 17.2 of the host API.
#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) {
  return AcRx::kRetOK;
}
extern "C" void acrxGetApiVersion(Adesk::Int32* version) {
  *version = 0x00110002;
}
