// Tells whether the editor is prompting for the opposite corner of a rectangle in the watched
// document. There is one watcher in the process; the module makes it when the host loads it
// and destroys it when the host unloads it. Host's main thread only.
#pragma once

#include "afxext.h"

class CUserInputReactor;

class AFX_EXT_CLASS CUserInputStateWatcher {
 public:
  /// The watcher of the process, made on the first call.
  static CUserInputStateWatcher* Instance();

  CUserInputStateWatcher();
  ~CUserInputStateWatcher();
  CUserInputStateWatcher(const CUserInputStateWatcher&) = default;
  /// Copies the reference to the reactor: both watchers then share one, and only one of them
  /// may be destroyed.
  CUserInputStateWatcher& operator=(const CUserInputStateWatcher& other);

  /// Watches the document that is current now, and no longer any earlier one. Without a
  /// current document nothing is watched.
  void TurnOn();
  /// Watches no document.
  void TurnOff();
  /// Whether a document is watched and a corner pick is under way in it.
  bool InGetCorner();

 private:
  friend struct UserInputStateWatcherDoor;

  CUserInputReactor* m_pReactor;  // owned
  static CUserInputStateWatcher* _pInstance;
};
