// The tests' door into the input watcher: its reactor, and the static pointer that outlives
// the watcher when the module is unloaded.
#pragma once

#include "UserInputReactor.h"
#include "UserInputStateWatcher.h"

struct UserInputStateWatcherDoor {
  static CUserInputReactor* Reactor(CUserInputStateWatcher& watcher) { return watcher.m_pReactor; }
  static CUserInputStateWatcher*& Instance() { return CUserInputStateWatcher::_pInstance; }
};
