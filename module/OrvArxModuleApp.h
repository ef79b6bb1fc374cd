// The module's application object: handles the host's application messages. It lets the frame
// initialise and unload the module, and keeps the input watcher alive in between. The module
// registers no commands, no AutoLISP functions and no custom classes: the frame's tables stay
// empty.
#pragma once

#include "arxEntryPoint.h"

class COrvArxModuleApp : public AcRxArxApp {
 public:
  /// May be unloaded at run time and is MDI-aware.
  COrvArxModuleApp();

  /// The frame's initialisation, then the input watcher is made. Returns the frame's result.
  AcRx::AppRetCode On_kInitAppMsg(void* pkt) override;
  /// The frame's unloading, then the input watcher is destroyed. Returns the frame's result.
  AcRx::AppRetCode On_kUnloadAppMsg(void* pkt) override;
  void RegisterServerComponents() override;
};
