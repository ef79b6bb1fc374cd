#include "embedded/product/Platform.h"

#include <utility>

namespace quoin::product {

Platform* Platform::s_current = nullptr;

Platform::Platform() : m_guard(s_current, this, "running platform") {}
Platform::~Platform() = default;

void Platform::closeProject(Project& project) {
  m_entityMappings.drop(project.root().GetMapKey());
  m_projects.close(project);
}

void Platform::setOffered(const std::wstring& serviceName, bool offered) {
  if (offered) {
    m_withdrawn.erase(serviceName);
  } else {
    m_withdrawn.insert(serviceName);
  }
}

LogSink Platform::setLogSink(LogSink sink) {
  return std::exchange(m_sink, std::move(sink));
}

void Platform::log(std::wstring_view line) {
  ++m_loggedLines;
  if (m_sink) {
    m_sink(line);
  } else {
    logToStandardError(line);
  }
}

}  // namespace quoin::product
