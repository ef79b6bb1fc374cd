// What foreign code prints, kept apart from what the program itself prints.
#pragma once

#include <cstdio>
#include <string>

#include "hostapi.h"

namespace quoin::os {

/// While one lives, the process's standard output goes into a file without a name.
class HOST_API CapturedOutput {
 public:
  /// Fails: throws std::system_error where the system gives no such file.
  CapturedOutput();
  ~CapturedOutput();
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  /// Gives the standard output back, and what was printed meanwhile.
  std::string finish();

 private:
  void giveBack();

  std::FILE* m_file;
  int m_output;  // what the standard output was; -1 once it is that again
};

}  // namespace quoin::os
