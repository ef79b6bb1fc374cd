// What became of each file of a run, and how all of it is printed: one text or one JSON document.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "commands/CommandError.h"
#include "commands/Report.h"

namespace quoin::commands {

/// What became of one file.
struct Outcome {
  Outcome(std::string file, const Report::Wanted& wanted)
      : input(std::move(file)), report(wanted) {}

  bool isDone() const { return code == ExitCode::Ok || code == ExitCode::Different; }

  std::string input;
  std::string written;  // where the result went; empty: nowhere
  ExitCode code = ExitCode::Ok;
  std::string error;  // the cause where it failed
  Report report;
};

/// Runs `work` on a file; nothing that goes wrong gets out.
Outcome tryWork(const std::string& input, const Report::Wanted& wanted,
                const std::function<void(Outcome&)>& work);

struct PrintedRun {
  std::string command;  // "style dim"
  bool isJson = false;
  bool isQuiet = false;
  std::FILE* stream = stdout;
};

/// Prints the outcomes of a run, at least one.
void printOutcomes(const std::vector<Outcome>& outcomes, const PrintedRun& run);
/// Fails: throws CommandError with the exit code of the first file that failed.
void throwWhereFailed(const std::vector<Outcome>& outcomes);

}  // namespace quoin::commands
