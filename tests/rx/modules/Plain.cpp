// A well-behaved module without the application frame's classes: counts its messages in an
// exported function that nobody but the tests knows.
#include "rxdlinkr.h"
#include "rxframe.h"

namespace {

int s_messages[AcRx::kEndTabGroupMsg + 1];

}  // namespace

extern "C" AFX_EXT_API int messageCount(int message) {
  return s_messages[message];
}

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt) {
  ++s_messages[msg];
  if (msg == AcRx::kInitAppMsg) {
    acrxDynamicLinker->unlockApplication(pkt);
  }
  return AcRx::kRetOK;
}

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
