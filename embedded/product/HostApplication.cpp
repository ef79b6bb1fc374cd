#include "embedded/product/HostApplication.h"

#include <utility>

#include "embedded/os/Utf8.h"

namespace quoin {

HostApplication* HostApplication::s_current = nullptr;

HostApplication* HostApplication::current() {
  return s_current;
}

HostApplication::HostApplication(const HostOptions& options)
    : m_guard(s_current, this, "running host") {
  m_runtime.setHooks({
      .onLoaded = [this](rx::Module& module) { sendForOpenDocuments(module, AcRx::kLoadDwgMsg); },
      .onUnloading =
          [this](rx::Module& module) { sendForOpenDocuments(module, AcRx::kUnloadDwgMsg); },
      .onReport = [this](const std::string& message) { m_platform.log(os::fromUtf8(message)); },
  });
  m_editor.setHooks({
      .onOpened = [this](AcApDocument&) { m_runtime.loader().sendToAll(AcRx::kLoadDwgMsg); },
      .onClosing = [this](AcApDocument&) { m_runtime.loader().sendToAll(AcRx::kUnloadDwgMsg); },
  });
  if (options.opensProject) {
    m_platform.projects().open(options.projectName, options.projectScale);
  }
  if (options.opensDocument) {
    m_editor.openDocument(L"Drawing1.dwg");
  }
}

HostApplication::~HostApplication() {
  m_runtime.loader().sendToAll(AcRx::kPreQuitMsg);
  m_runtime.loader().sendToAll(AcRx::kQuitMsg);
  // While the documents still exist: modules take their reactors off them.
  unloadAllModules();
}

rx::Module& HostApplication::loadModule(const std::filesystem::path& file) {
  return m_runtime.loader().load(file);
}

void HostApplication::unloadModule(const std::filesystem::path& file) {
  m_runtime.loader().unload(file);
}

void HostApplication::unloadAllModules() {
  m_runtime.loader().unloadAll();
}

product::LogSink HostApplication::setLogSink(product::LogSink sink) {
  return m_platform.setLogSink(std::move(sink));
}

void HostApplication::sendForOpenDocuments(rx::Module& module, AcRx::AppMsgCode message) {
  AcApDocument* const before = m_editor.currentDocument();
  const std::vector<AcApDocument*> documents = m_editor.documents();
  for (AcApDocument* const document : documents) {
    m_editor.setCurrentDocument(document);
    m_runtime.loader().send(module, message);
  }
  m_editor.setCurrentDocument(before);
}

}  // namespace quoin
