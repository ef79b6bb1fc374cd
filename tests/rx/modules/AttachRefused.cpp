// Refuses to be attached to a process.
#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) {
  return AcRx::kRetOK;
}
extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 0;
}
