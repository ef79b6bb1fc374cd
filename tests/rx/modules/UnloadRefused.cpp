// Unlocked, but does not want to go.
#include "rxdlinkr.h"
#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  if (msg == AcRx::kInitAppMsg) {
    acrxDynamicLinker->unlockApplication(pkt);
  }
  return msg == AcRx::kUnloadAppMsg ? AcRx::kRetError : AcRx::kRetOK;
}
extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
