#include "embedded/rx/ExtensionModules.h"

#include <algorithm>
#include <vector>

namespace {

/// The process's list, not a host's: libraries are attached whether or not a host runs. Never
/// destroyed, since libraries leave the process in an order that nobody knows.
struct ExtensionModules {
  std::vector<CDynLinkLibrary*> libraries;
  quoin::rx::ExtensionModuleCounts counts;

  static ExtensionModules& instance() {
    static ExtensionModules& modules = *new ExtensionModules;
    return modules;
  }
};

}  // namespace

BOOL AfxInitExtensionModule(AFX_EXTENSION_MODULE& module, HMODULE handle) {
  if (module.bInitialized) {
    return FALSE;
  }
  module.bInitialized = TRUE;
  module.hModule = handle;
  ++ExtensionModules::instance().counts.initialised;
  return TRUE;
}

void AfxTermExtensionModule(AFX_EXTENSION_MODULE& module, BOOL) {
  if (!module.bInitialized) {
    return;
  }
  module.bInitialized = FALSE;
  ExtensionModules& modules = ExtensionModules::instance();
  ++modules.counts.terminated;
  const std::vector<CDynLinkLibrary*> libraries = modules.libraries;
  for (CDynLinkLibrary* const library : libraries) {
    if (library->module() == &module) {
      delete library;  // takes itself out of the list
    }
  }
}

CDynLinkLibrary::CDynLinkLibrary(AFX_EXTENSION_MODULE& module, BOOL) : m_module(&module) {
  ExtensionModules::instance().libraries.push_back(this);
}

CDynLinkLibrary::~CDynLinkLibrary() {
  std::erase(ExtensionModules::instance().libraries, this);
}

quoin::rx::ExtensionModuleCounts quoin::rx::extensionModuleCounts() {
  const ExtensionModules& modules = ExtensionModules::instance();
  ExtensionModuleCounts counts = modules.counts;
  counts.libraries = modules.libraries.size();
  return counts;
}
