// The run-time frame of the embedded host: the system registry with the services that modules
// ask for by name, the module loader, the registered commands and the AutoLISP functions.
#pragma once

#include "embedded/rx/CommandStack.h"
#include "embedded/rx/CurrentGuard.h"
#include "embedded/rx/LispFunctions.h"
#include "embedded/rx/ModuleLoader.h"

namespace quoin::rx {

class HOST_API Runtime {
 public:
  Runtime();
  /// Unloads what is still loaded.
  ~Runtime();
  Runtime(const Runtime&) = delete;
  Runtime& operator=(const Runtime&) = delete;

  /// The running host's frame; null when no host runs.
  static Runtime* current();

  AcRxDictionary& systemRegistry() { return m_systemRegistry; }
  CommandStack& commands() { return m_commands; }
  LispFunctions& lispFunctions() { return m_lispFunctions; }
  ModuleLoader& loader() { return m_loader; }

  /// What the host does beyond the frame when a module comes, goes or has to be reported.
  struct Hooks {
    std::function<void(Module&)> onLoaded = {};
    std::function<void(Module&)> onUnloading = {};
    std::function<void(const std::string& message)> onReport = {};
  };
  void setHooks(Hooks hooks);

 private:
  static Runtime* s_current;
  CurrentGuard<Runtime> m_guard;
  AcRxDictionary m_systemRegistry;
  CommandStack m_commands;
  LispFunctions m_lispFunctions;
  ModuleLoader m_loader;
};

}  // namespace quoin::rx
