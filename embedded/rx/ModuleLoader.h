// Loads modules as the host's dynamic linker does: open the library, check the version
// handshake, send kInitAppMsg; at the end send kUnloadAppMsg and close the library. Whatever
// goes wrong is a ModuleError that names the file and the cause, and leaves the library
// closed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "embedded/os/DynamicLibrary.h"
#include "rxdlinkr.h"
#include "rxframe.h"

namespace quoin::rx {

/// What can be wrong with loading or unloading a module.
enum class ModuleFault : std::uint8_t {
  FileNotFound,
  NotALibrary,     // a folder, no shared library, or one that the system cannot open
  NoEntryPoint,    // the library has no acrxEntryPoint of its own
  NoVersionStamp,  // the library has no acrxGetApiVersion of its own
  WrongVersion,    // built against another version of the host API
  AttachRefused,   // the module's DllMain refused the attachment
  InitRefused,     // kInitAppMsg was not answered with kRetOK
  NotLoaded,       // unloading what is not loaded
  Locked,          // the module has not unlocked itself
  UnloadRefused    // kUnloadAppMsg was not answered with kRetOK
};

class HOST_API ModuleError : public std::runtime_error {
 public:
  /// The message is "<path>: <cause>".
  ModuleError(ModuleFault what, const std::filesystem::path& file, const std::string& cause);

  ModuleFault fault;
  std::filesystem::path path;
};

/// What a module answered to a message, and the text of an exception that it let out (then
/// the code is kRetError).
struct ModuleAnswer {
  AcRx::AppRetCode code = AcRx::kRetOK;
  std::string thrown;

  bool isOk() const { return code == AcRx::kRetOK; }
  /// "answered 3" or "threw: text", for messages.
  std::string text() const;
};

/// One loaded module. Its address is the packet that the module's messages carry.
class HOST_API Module {
 public:
  const std::filesystem::path& path() const { return m_path; }
  bool isLocked() const { return m_locked; }
  bool isMdiAware() const { return m_mdiAware; }

 private:
  friend class ModuleLoader;
  Module(std::filesystem::path path, os::DynamicLibrary library);

  std::filesystem::path m_path;
  os::DynamicLibrary m_library;
  decltype(&acrxEntryPoint) m_entryPoint;
  decltype(&acrxGetApiVersion) m_getApiVersion;
  bool m_locked = true;
  bool m_mdiAware = false;
};

class HOST_API ModuleLoader : public AcRxDynamicLinker {
 public:
  /// Called on behalf of a module: before and after it serves a message (the module, then
  /// what was served before), after it was initialised, before it is unloaded, and when its
  /// code leaves the process.
  struct Hooks {
    std::function<void(const Module* served)> onServing = {};
    std::function<void(Module&)> onLoaded = {};
    std::function<void(Module&)> onUnloading = {};
    std::function<void(const Module&)> onClosing = {};
    std::function<void(const std::string& message)> onReport = {};
  };

  ModuleLoader();
  ~ModuleLoader() override;
  void setHooks(Hooks hooks) { m_hooks = std::move(hooks); }

  /// Loads the module in this file; one that is loaded already is returned as it is.
  /// Fails: throws ModuleError.
  Module& load(const std::filesystem::path& file);
  /// Unloads the module that was loaded from this file (path, or file name alone).
  /// Fails: throws ModuleError (NotLoaded, Locked, UnloadRefused); it stays loaded then.
  void unload(const std::filesystem::path& file);
  /// Unloads all modules, last loaded first, locked ones too, whatever they answer.
  void unloadAll();

  /// Unloads a module whose library leaves the process on its own, as libraries do when the
  /// process ends; an address inside the library names it.
  void unloadLeaving(const void* addressInLibrary);

  /// The loaded module of this path or file name; null if there is none.
  Module* find(const std::filesystem::path& file) const;
  /// The loaded modules in load order.
  std::vector<Module*> modules() const;

  /// Sends a message to one module, or to all in load order. An exception that a module lets
  /// out is caught here.
  ModuleAnswer send(Module& module, AcRx::AppMsgCode message);
  void sendToAll(AcRx::AppMsgCode message);

  // The host API's side of it.
  bool loadModule(const ACHAR* fileName, bool printit, bool asCmd) override;
  bool unloadModule(const ACHAR* fileName, bool asCmd) override;
  bool unlockApplication(void* appId) override;
  bool lockApplication(void* appId) override;
  bool registerAppMDIAware(void* appId) override;
  bool registerAppNotMDIAware(void* appId) override;
  bool isModuleLoaded(const ACHAR* fileName) const override;
  bool isApplicationLocked(const ACHAR* fileName) const override;
  bool isAppMDIAware(const ACHAR* fileName) const override;

 private:
  std::unique_ptr<Module> open(const std::filesystem::path& file) const;
  Module* byAppId(const void* appId) const;
  Module* bySameLibrary(const Module& module) const;
  std::unique_ptr<Module> unloadWhateverItAnswers(Module& module);
  /// Takes a module off the list; dropping the result closes its library.
  std::unique_ptr<Module> takeOut(Module& module);
  void report(const std::string& message) const;

  Hooks m_hooks;
  std::vector<std::unique_ptr<Module>> m_modules;
  const Module* m_served = nullptr;
};

}  // namespace quoin::rx
