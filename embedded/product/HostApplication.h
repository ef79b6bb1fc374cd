// The embedded host as one object: frame, editor and platform. Making it starts the host,
// dropping it unloads every module and ends it; there is one at a time, and as many in a
// process after one another as anybody likes. The host API's free functions reach the running
// one and fail without it.
#pragma once

#include <filesystem>
#include <string>

#include "embedded/ed/Editor.h"
#include "embedded/product/Platform.h"
#include "embedded/rx/Runtime.h"

namespace quoin {

/// How the host starts.
struct HostOptions {
  /// Opens a project with this scale; without one the project manager has no current project.
  bool opensProject = true;
  std::wstring projectName = L"Project";
  double projectScale = 1.0;
  /// Opens an empty document, "Drawing1.dwg", as the user finds it.
  bool opensDocument = true;
};

class HOST_API HostApplication {
 public:
  /// Fails: throws std::logic_error while another host runs.
  explicit HostApplication(const HostOptions& options = {});
  /// Tells the modules that the host quits (kPreQuitMsg, kQuitMsg), unloads them, last loaded
  /// first, and closes the documents.
  ~HostApplication();
  HostApplication(const HostApplication&) = delete;
  HostApplication& operator=(const HostApplication&) = delete;

  /// The running host; null if there is none.
  static HostApplication* current();

  rx::Runtime& runtime() { return m_runtime; }
  ed::Editor& editor() { return m_editor; }
  product::Platform& platform() { return m_platform; }

  /// Loads a module, initialises it and has it serve the open documents.
  /// Fails: throws rx::ModuleError.
  rx::Module& loadModule(const std::filesystem::path& file);
  /// Unloads one module, by path or file name.
  /// Fails: throws rx::ModuleError.
  void unloadModule(const std::filesystem::path& file);
  /// Unloads all modules, last loaded first, whatever they answer.
  void unloadAllModules();

  /// As product::Platform::setLogSink.
  product::LogSink setLogSink(product::LogSink sink);

 private:
  void sendForOpenDocuments(rx::Module& module, AcRx::AppMsgCode message);

  static HostApplication* s_current;
  rx::CurrentGuard<HostApplication> m_guard;
  product::Platform m_platform;
  rx::Runtime m_runtime;
  ed::Editor m_editor;
};

}  // namespace quoin
