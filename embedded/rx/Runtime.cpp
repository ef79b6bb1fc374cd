#include "embedded/rx/Runtime.h"

#include "rxregsvc.h"

namespace quoin::rx {

Runtime* Runtime::s_current = nullptr;

Runtime* Runtime::current() {
  return s_current;
}

Runtime::Runtime()
    : m_guard(s_current, this, "running host"), m_lispFunctions([this](const void* module) {
        for (Module* const candidate : m_loader.modules()) {
          if (candidate == module) {
            m_loader.send(*candidate, AcRx::kInvkSubrMsg);
          }
        }
      }) {
  m_systemRegistry.atPut(ACRX_DYNAMIC_LINKER, &m_loader);
  m_systemRegistry.atPut(ACAD_REGISTERED_COMMANDS, &m_commands);
  setHooks({});
}

Runtime::~Runtime() {
  m_loader.unloadAll();
}

void Runtime::setHooks(Hooks hooks) {
  m_loader.setHooks({
      .onServing =
          [this](const Module* served) {
            m_commands.setOwner(served);
            m_lispFunctions.setServed(served);
          },
      .onLoaded = std::move(hooks.onLoaded),
      .onUnloading = std::move(hooks.onUnloading),
      // What a module leaves behind points into code that is about to disappear.
      .onClosing =
          [this](const Module& module) {
            m_commands.removeCommandsOf(&module);
            m_lispFunctions.removeFunctionsOf(&module);
          },
      .onReport = std::move(hooks.onReport),
  });
}

}  // namespace quoin::rx

AcRxDictionary* acrxSysRegistry() {
  auto* const runtime = quoin::rx::Runtime::current();
  return runtime ? &runtime->systemRegistry() : nullptr;
}

AcRxObject* acrxSystemObject(const ACHAR* key) {
  AcRxDictionary* const registry = acrxSysRegistry();
  return registry ? registry->at(key) : nullptr;
}

bool acrxLoadModule(const ACHAR* moduleName, bool printit, bool asCmd) {
  AcRxDynamicLinker* const linker = acrxDynamicLinker;
  return linker && linker->loadModule(moduleName, printit, asCmd);
}

bool acrxUnloadModule(const ACHAR* moduleName, bool asCmd) {
  AcRxDynamicLinker* const linker = acrxDynamicLinker;
  return linker && linker->unloadModule(moduleName, asCmd);
}
