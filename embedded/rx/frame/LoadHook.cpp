// Calls the module's DllMain when its library enters the process and leaves it, once each. On
// Windows the system does that itself; elsewhere a static object does. Where it stands among
// the module's own static objects is the linker's choice, so DllMain relies on constants and
// on what the host's libraries offer alone.
#include "rxframe.h"

#if !defined(_WIN32)

namespace {

class LoadHook {
 public:
  LoadHook() : m_attached(callDllMain(DLL_PROCESS_ATTACH)) {
    if (!m_attached) {
      callDllMain(DLL_PROCESS_DETACH);
      acrxNoteAttachRefused();
    }
  }
  ~LoadHook() {
    if (m_attached) {
      callDllMain(DLL_PROCESS_DETACH);
    }
  }
  LoadHook(const LoadHook&) = delete;
  LoadHook& operator=(const LoadHook&) = delete;

 private:
  /// An exception must not leave a library's initialisation: it counts as a refusal.
  bool callDllMain(DWORD reason) noexcept {
    try {
      // The object's address is the module's own for as long as it is loaded.
      return DllMain(reinterpret_cast<HINSTANCE>(this), reason, nullptr) != 0;
    } catch (...) {
      return false;
    }
  }

  bool m_attached;
};

LoadHook s_loadHook;

}  // namespace

#endif
