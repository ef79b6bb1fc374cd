#include "rxframe.h"

extern "C" void acrxGetApiVersion(Adesk::Int32* version) {
  if (version) {
    *version = kAcRxApiVersion;
  }
}
