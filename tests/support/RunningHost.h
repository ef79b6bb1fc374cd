// A running embedded host for a test, with a project of a given scale and a log that the test
// reads.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "embedded/product/HostApplication.h"

namespace quoin::test {

class RunningHost {
 public:
  explicit RunningHost(double projectScale = 1.0) : m_host(optionsFor(projectScale)) {
    m_host.setLogSink([this](std::wstring_view line) { m_log.emplace_back(line); });
  }

  HostApplication& host() { return m_host; }
  product::Project& project() { return *m_host.platform().projects().current(); }
  void setScale(double scale) { project().setScale(scale); }
  const std::vector<std::wstring>& log() const { return m_log; }
  /// How often the project's scale has been read.
  std::uint64_t scaleReads() { return project().root().reads(); }

 private:
  static HostOptions optionsFor(double projectScale) {
    HostOptions options;
    options.projectScale = projectScale;
    return options;
  }

  std::vector<std::wstring> m_log;
  HostApplication m_host;
};

}  // namespace quoin::test
