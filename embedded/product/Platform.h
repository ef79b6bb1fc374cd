// The CAD product's platform in memory: projects, the entity-to-model mapping, the log and
// the fifteen named services. The service objects themselves live as long as the process and
// ask the running platform; callers may keep the pointers for ever, as they do.
#pragma once

#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <string_view>

#include "embedded/product/EntityMapping.h"
#include "embedded/product/LogSink.h"
#include "embedded/product/LookupObserver.h"
#include "embedded/product/Project.h"
#include "embedded/rx/CurrentGuard.h"

namespace quoin::product {

class HOST_API Platform {
 public:
  Platform();
  ~Platform();
  Platform(const Platform&) = delete;
  Platform& operator=(const Platform&) = delete;

  /// The running host's platform; null when no host runs.
  static Platform* current() { return s_current; }

  ProjectManager& projects() { return m_projects; }
  /// Closes a project together with the map of its nodes.
  void closeProject(Project& project);
  EntityMappings& entityMappings() { return m_entityMappings; }
  /// Who is told of look-ups from now on; null for nobody. The observer stays the caller's.
  void setLookupObserver(LookupObserver* observer) { m_lookupObserver = observer; }
  LookupObserver* lookupObserver() const { return m_lookupObserver; }

  /// The names of the fifteen services.
  static std::span<const wchar_t* const> serviceNames();
  /// Withdraws a service, or offers it again: a withdrawn one is not found by look-ups.
  void setOffered(const std::wstring& serviceName, bool offered);
  bool isWithdrawn(std::wstring_view serviceName) const {
    return !m_withdrawn.empty() && m_withdrawn.contains(serviceName);
  }

  /// Replaces where log lines go, and returns what was there. An empty sink stands for the
  /// default, the standard error stream.
  LogSink setLogSink(LogSink sink);
  void log(std::wstring_view line);
  /// How many lines have been logged.
  std::uint64_t loggedLines() const { return m_loggedLines; }

 private:
  static Platform* s_current;
  rx::CurrentGuard<Platform> m_guard;
  ProjectManager m_projects;
  EntityMappings m_entityMappings;
  LookupObserver* m_lookupObserver = nullptr;
  std::set<std::wstring, std::less<>> m_withdrawn;
  LogSink m_sink;
  std::uint64_t m_loggedLines = 0;
};

}  // namespace quoin::product
