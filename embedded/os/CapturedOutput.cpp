#include "embedded/os/CapturedOutput.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <system_error>

namespace quoin::os {

CapturedOutput::CapturedOutput() : m_file(std::tmpfile()), m_output(-1) {
  std::fflush(stdout);
  if (m_file) {
    m_output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  }
  if (m_output < 0 || dup2(fileno(m_file), STDOUT_FILENO) < 0) {
    const int error = errno;
    giveBack();
    throw std::system_error(error, std::generic_category(), "no file for what the command prints");
  }
}

CapturedOutput::~CapturedOutput() {
  giveBack();
}

std::string CapturedOutput::finish() {
  std::string text;
  if (m_output < 0) {
    return text;
  }
  std::cout.flush();
  std::fflush(stdout);
  char buffer[4096];
  std::rewind(m_file);
  while (const std::size_t size = std::fread(buffer, 1, sizeof buffer, m_file)) {
    text.append(buffer, size);
  }
  giveBack();
  return text;
}

void CapturedOutput::giveBack() {
  if (m_output >= 0) {
    std::cout.flush();
    std::fflush(stdout);
    dup2(m_output, STDOUT_FILENO);
    close(m_output);
    m_output = -1;
  }
  if (m_file) {
    std::fclose(m_file);
    m_file = nullptr;
  }
}

}  // namespace quoin::os
