// Lets an exception out of its initialisation.
#include <stdexcept>

#include "rxframe.h"

extern "C" AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode, void*) {
  throw std::runtime_error("no licence");
}
extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
