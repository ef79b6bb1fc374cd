#include "embedded/rx/ModuleLoader.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <utility>

#include "embedded/os/Trace.h"
#include "embedded/os/Utf8.h"
#include "embedded/rx/Runtime.h"

ACRX_NO_CONS_DEFINE_MEMBERS(AcRxDynamicLinker, AcRxObject)

namespace {

// Set while a library is being opened, when its DllMain refuses. A library's load hook cannot
// answer the one who opens it in any other way.
bool s_attachRefused = false;

}  // namespace

void acrxNoteAttachRefused() {
  s_attachRefused = true;
}

void acrxNoteDetaching(const void* addressInLibrary) {
  if (auto* const runtime = quoin::rx::Runtime::current()) {
    runtime->loader().unloadLeaving(addressInLibrary);
  }
}

namespace quoin::rx {
namespace {

namespace fs = std::filesystem;

std::string versionText(Adesk::Int32 version) {
  char text[32];
  std::snprintf(text, sizeof text, "%d.%d (0x%08X)", static_cast<int>(version >> 16),
                static_cast<int>(version & 0xFFFF), static_cast<unsigned>(version));
  return text;
}

/// The file under one name, whichever way it was spelled.
fs::path canonicalPath(const fs::path& file) {
  std::error_code failed;
  fs::path path = fs::weakly_canonical(file, failed);
  return failed ? file : path;
}

fs::path pathOf(const ACHAR* fileName) {
  return fs::path(os::toUtf8(fileName ? fileName : L""));
}

void trace(const fs::path& path, const std::string& what) {
  os::trace(os::Traced::Loader, [&] { return path.string() + ": " + what; });
}

}  // namespace

ModuleError::ModuleError(ModuleFault what, const fs::path& file, const std::string& cause)
    : std::runtime_error(file.string() + ": " + cause), fault(what), path(file) {}

std::string ModuleAnswer::text() const {
  return thrown.empty() ? "answered " + std::to_string(code) : "threw: " + thrown;
}

Module::Module(fs::path path, os::DynamicLibrary library)
    : m_path(std::move(path)),
      m_library(std::move(library)),
      m_entryPoint(m_library.function<decltype(acrxEntryPoint)>(kAcRxEntryPointName)),
      m_getApiVersion(m_library.function<decltype(acrxGetApiVersion)>(kAcRxApiVersionName)) {}

ModuleLoader::ModuleLoader() = default;
ModuleLoader::~ModuleLoader() {
  unloadAll();
}

std::unique_ptr<Module> ModuleLoader::open(const fs::path& file) const {
  std::error_code unused;
  const fs::file_status status = fs::status(file, unused);
  if (!fs::exists(status)) {
    throw ModuleError(ModuleFault::FileNotFound, file, "no such file");
  }
  if (fs::is_directory(status)) {
    throw ModuleError(ModuleFault::NotALibrary, file, "not a module: it is a folder");
  }
  s_attachRefused = false;
  os::DynamicLibrary library;
  try {
    library = os::DynamicLibrary(file);
  } catch (const os::LibraryError& error) {
    throw ModuleError(ModuleFault::NotALibrary, file,
                      std::string("not a shared library that can be opened: ") + error.what());
  }
  if (std::exchange(s_attachRefused, false)) {
    throw ModuleError(ModuleFault::AttachRefused, file, "the module refused to be attached");
  }
  std::unique_ptr<Module> module(new Module(file, std::move(library)));
  if (!module->m_entryPoint) {
    throw ModuleError(ModuleFault::NoEntryPoint, file,
                      std::string("not a module: it has no ") + kAcRxEntryPointName);
  }
  if (!module->m_getApiVersion) {
    throw ModuleError(ModuleFault::NoVersionStamp, file,
                      std::string("not a module: it has no ") + kAcRxApiVersionName);
  }
  Adesk::Int32 version = 0;
  module->m_getApiVersion(&version);
  if (version != kAcRxApiVersion) {
    throw ModuleError(ModuleFault::WrongVersion, file,
                      "built against host API " + versionText(version) + ", this host has " +
                          versionText(kAcRxApiVersion));
  }
  return module;
}

Module& ModuleLoader::load(const fs::path& file) {
  const fs::path path = canonicalPath(file);
  if (Module* const known = find(path)) {
    return *known;
  }
  trace(path, "opens");
  std::unique_ptr<Module> opened = open(path);
  if (Module* const known = bySameLibrary(*opened)) {
    return *known;
  }
  Module& module = *m_modules.emplace_back(std::move(opened));
  const ModuleAnswer answer = send(module, AcRx::kInitAppMsg);
  if (!answer.isOk()) {
    takeOut(module);
    throw ModuleError(ModuleFault::InitRefused, path,
                      "the module's initialisation " + answer.text());
  }
  if (m_hooks.onLoaded) {
    m_hooks.onLoaded(module);
  }
  return module;
}

void ModuleLoader::unload(const fs::path& file) {
  Module* const module = find(file);
  if (!module) {
    throw ModuleError(ModuleFault::NotLoaded, file, "no such module is loaded");
  }
  if (module->isLocked()) {
    throw ModuleError(ModuleFault::Locked, module->path(), "the module is locked in memory");
  }
  if (m_hooks.onUnloading) {
    m_hooks.onUnloading(*module);
  }
  const ModuleAnswer answer = send(*module, AcRx::kUnloadAppMsg);
  if (!answer.isOk()) {
    if (m_hooks.onLoaded) {
      m_hooks.onLoaded(*module);
    }
    throw ModuleError(ModuleFault::UnloadRefused, module->path(),
                      "the module's unloading " + answer.text());
  }
  takeOut(*module);
}

void ModuleLoader::unloadAll() {
  while (!m_modules.empty()) {
    unloadWhateverItAnswers(*m_modules.back());
  }
}

void ModuleLoader::unloadLeaving(const void* addressInLibrary) {
  for (Module* const module : modules()) {
    if (module->m_library.contains(addressInLibrary)) {
      unloadWhateverItAnswers(*module)->m_library.release();
      return;
    }
  }
}

std::unique_ptr<Module> ModuleLoader::unloadWhateverItAnswers(Module& module) {
  if (m_hooks.onUnloading) {
    m_hooks.onUnloading(module);
  }
  const ModuleAnswer answer = send(module, AcRx::kUnloadAppMsg);
  if (!answer.isOk()) {
    report(module.path().string() + ": the module's unloading " + answer.text());
  }
  return takeOut(module);
}

std::unique_ptr<Module> ModuleLoader::takeOut(Module& module) {
  if (m_hooks.onClosing) {
    m_hooks.onClosing(module);
  }
  const auto place = std::find_if(m_modules.begin(), m_modules.end(),
                                  [&](const auto& entry) { return entry.get() == &module; });
  std::unique_ptr<Module> taken = std::move(*place);
  m_modules.erase(place);
  trace(taken->path(), "taken out");
  return taken;
}

Module* ModuleLoader::find(const fs::path& file) const {
  const bool byName = !file.has_parent_path();
  const fs::path path = canonicalPath(file);
  const auto found = std::find_if(m_modules.begin(), m_modules.end(), [&](const auto& entry) {
    return entry->path() == path || (byName && entry->path().filename() == file);
  });
  return found == m_modules.end() ? nullptr : found->get();
}

std::vector<Module*> ModuleLoader::modules() const {
  std::vector<Module*> all;
  for (const auto& entry : m_modules) {
    all.push_back(entry.get());
  }
  return all;
}

ModuleAnswer ModuleLoader::send(Module& module, AcRx::AppMsgCode message) {
  const Module* const before = std::exchange(m_served, &module);
  const auto tellServed = [&] {
    if (m_hooks.onServing) {
      m_hooks.onServing(m_served);
    }
  };
  tellServed();
  ModuleAnswer answer;
  try {
    answer.code = module.m_entryPoint(message, &module);
  } catch (const std::exception& error) {
    answer = {AcRx::kRetError, error.what()};
  } catch (...) {
    answer = {AcRx::kRetError, "something that is no exception"};
  }
  trace(module.path(), "message " + std::to_string(message) + " " + answer.text());
  m_served = before;
  tellServed();
  return answer;
}

void ModuleLoader::sendToAll(AcRx::AppMsgCode message) {
  for (Module* const module : modules()) {
    send(*module, message);
  }
}

bool ModuleLoader::loadModule(const ACHAR* fileName, bool printit, bool) {
  try {
    load(pathOf(fileName));
    return true;
  } catch (const ModuleError& error) {
    if (printit) {
      report(error.what());
    }
    return false;
  }
}

bool ModuleLoader::unloadModule(const ACHAR* fileName, bool) {
  try {
    unload(pathOf(fileName));
    return true;
  } catch (const ModuleError& error) {
    report(error.what());
    return false;
  }
}

bool ModuleLoader::unlockApplication(void* appId) {
  Module* const module = byAppId(appId);
  if (module) {
    module->m_locked = false;
  }
  return module != nullptr;
}

bool ModuleLoader::lockApplication(void* appId) {
  Module* const module = byAppId(appId);
  if (module) {
    module->m_locked = true;
  }
  return module != nullptr;
}

bool ModuleLoader::registerAppMDIAware(void* appId) {
  Module* const module = byAppId(appId);
  if (module) {
    module->m_mdiAware = true;
  }
  return module != nullptr;
}

bool ModuleLoader::registerAppNotMDIAware(void* appId) {
  Module* const module = byAppId(appId);
  if (module) {
    module->m_mdiAware = false;
  }
  return module != nullptr;
}

bool ModuleLoader::isModuleLoaded(const ACHAR* fileName) const {
  return find(pathOf(fileName)) != nullptr;
}

bool ModuleLoader::isApplicationLocked(const ACHAR* fileName) const {
  const Module* const module = find(pathOf(fileName));
  return module && module->isLocked();
}

bool ModuleLoader::isAppMDIAware(const ACHAR* fileName) const {
  const Module* const module = find(pathOf(fileName));
  return module && module->isMdiAware();
}

Module* ModuleLoader::byAppId(const void* appId) const {
  const auto found = std::find_if(m_modules.begin(), m_modules.end(),
                                  [&](const auto& entry) { return entry.get() == appId; });
  return found == m_modules.end() ? nullptr : found->get();
}

Module* ModuleLoader::bySameLibrary(const Module& module) const {
  const auto found = std::find_if(m_modules.begin(), m_modules.end(), [&](const auto& entry) {
    return entry->m_library.isSameAs(module.m_library);
  });
  return found == m_modules.end() ? nullptr : found->get();
}

void ModuleLoader::report(const std::string& message) const {
  if (m_hooks.onReport) {
    m_hooks.onReport(message);
  }
}

}  // namespace quoin::rx
