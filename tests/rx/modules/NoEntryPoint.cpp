// A library with the version stamp, but without acrxEntryPoint.
#include "rxframe.h"

extern "C" int APIENTRY DllMain(HINSTANCE, DWORD, LPVOID) {
  return 1;
}
