// Loading and unloading modules by file name, for code that needs no more of the dynamic
// linker (rxdlinkr.h) than that.
#pragma once

#include "rxdlinkr.h"

/// As AcRxDynamicLinker::loadModule; false when no host runs.
HOST_API bool acrxLoadModule(const ACHAR* moduleName, bool printit, bool asCmd = false);
/// As AcRxDynamicLinker::unloadModule; false when no host runs.
HOST_API bool acrxUnloadModule(const ACHAR* moduleName, bool asCmd = false);
