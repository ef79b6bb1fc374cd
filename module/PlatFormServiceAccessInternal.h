// The tests' door into the service access: lets them begin without its object, as a process
// does.
#pragma once

#include "PlatFormServiceAccess.h"

struct PlatFormServiceAccessDoor {
  /// Destroys the object, if there is one, so that the next use makes a new one.
  static void Forget() {
    delete CPlatFormServiceAccess::s_pInstance;
    CPlatFormServiceAccess::s_pInstance = nullptr;
  }
};
