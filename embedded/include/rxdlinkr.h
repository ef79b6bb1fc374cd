// The dynamic linker: how modules enter and leave the host, and what they declare about
// themselves while they are being loaded. A module is locked in memory until it unlocks
// itself; only an unlocked one can be unloaded before the host ends.
#pragma once

#include "rxdict.h"

class HOST_API AcRxDynamicLinker : public AcRxObject {
 public:
  ACRX_DECLARE_MEMBERS(AcRxDynamicLinker);

  /// Loads the module in this file; one that is loaded already stays as it is, which counts
  /// as success. A failure is logged when `printit` is true.
  virtual bool loadModule(const ACHAR* fileName, bool printit, bool asCmd = false) = 0;
  /// Unloads the module that was loaded from this file (path or file name).
  /// Fails: false when no such module is loaded, it is locked, or it refuses.
  virtual bool unloadModule(const ACHAR* fileName, bool asCmd = false) = 0;

  /// Declarations of a module about itself, by the packet that it was initialised with.
  /// Fails: false for a packet that belongs to no loaded module.
  virtual bool unlockApplication(void* appId) = 0;
  virtual bool lockApplication(void* appId) = 0;
  virtual bool registerAppMDIAware(void* appId) = 0;
  virtual bool registerAppNotMDIAware(void* appId) = 0;

  /// By path or file name; false for a module that is not loaded.
  virtual bool isModuleLoaded(const ACHAR* fileName) const = 0;
  virtual bool isApplicationLocked(const ACHAR* fileName) const = 0;
  virtual bool isAppMDIAware(const ACHAR* fileName) const = 0;
};

/// The linker's name in the system registry.
#define ACRX_DYNAMIC_LINKER ACRX_T("DynamicLinker")
/// The running host's dynamic linker; null when no host runs.
#define acrxDynamicLinker AcRxDynamicLinker::cast(acrxSystemObject(ACRX_DYNAMIC_LINKER))
