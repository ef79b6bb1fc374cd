#include "rxframe.h"

namespace {

/// Tells the host when the module leaves the process. Made during the handshake, when all
/// static objects of the module exist, it is destroyed before any of them.
class LeavingNotice {
 public:
  LeavingNotice() = default;
  ~LeavingNotice() { acrxNoteDetaching(this); }
  LeavingNotice(const LeavingNotice&) = delete;
  LeavingNotice& operator=(const LeavingNotice&) = delete;
};

}  // namespace

extern "C" void acrxGetApiVersion(Adesk::Int32* version) {
  static const LeavingNotice leavingNotice;
  if (version) {
    *version = kAcRxApiVersion;
  }
}
