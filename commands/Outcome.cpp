#include "commands/Outcome.h"

#include <fmt/format.h>

#include <algorithm>

namespace quoin::commands {

namespace {

/// The version of the JSON reports' form; it grows when a reader must change.
constexpr int kReportVersion = 1;

std::size_t doneCount(const std::vector<Outcome>& outcomes) {
  return static_cast<std::size_t>(std::count_if(
      outcomes.begin(), outcomes.end(), [](const Outcome& outcome) { return outcome.isDone(); }));
}

void printLines(const Report& report, const char* indent, const PrintedRun& run) {
  for (const Report::Line& line : report.lines()) {
    if (!run.isQuiet) {
      fmt::print(run.stream, "{}{}\n", indent, line.text);
    } else if (line.level == Report::Level::Warning) {
      fmt::print(stderr, "quoin: {}\n", line.text);
    }
  }
}

void printSummary(const std::vector<Outcome>& outcomes, std::FILE* stream) {
  fmt::print(stream, "{} of {} drawings done\n", doneCount(outcomes), outcomes.size());
  std::size_t width = 0;
  for (const Outcome& outcome : outcomes) {
    width = std::max(width, outcome.input.size());
  }
  for (const Outcome& outcome : outcomes) {
    const std::string state =
        outcome.isDone() ? "done"
                         : fmt::format("failed, exit code {}", static_cast<int>(outcome.code));
    fmt::print(stream, "  {:<{}}  {}{}\n", outcome.input, width, state,
               outcome.written.empty() ? "" : ": " + outcome.written);
  }
}

void printEach(const std::vector<Outcome>& outcomes, const PrintedRun& run) {
  for (const Outcome& outcome : outcomes) {
    if (!run.isQuiet) {
      fmt::print(run.stream, "{}:\n", outcome.input);
    }
    printLines(outcome.report, "  ", run);
    if (!outcome.isDone()) {
      if (!run.isQuiet) {
        fmt::print(run.stream, "  failed\n");
      }
      std::fflush(run.stream);
      fmt::print(stderr, "quoin: {}\n", outcome.error);
    }
  }
  if (!run.isQuiet) {
    printSummary(outcomes, run.stream);
  }
}

nlohmann::json drawingJson(const Outcome& outcome) {
  nlohmann::json drawing = outcome.report.json;
  if (!drawing.contains("input")) {
    drawing["input"] = {{"file", outcome.input}};
  }
  drawing["exitCode"] = static_cast<int>(outcome.code);
  drawing["error"] = outcome.isDone() ? nlohmann::json() : nlohmann::json(outcome.error);
  drawing["warnings"] = outcome.report.warnings();
  return drawing;
}

void printDocument(const std::vector<Outcome>& outcomes, const PrintedRun& run) {
  nlohmann::json drawings = nlohmann::json::array();
  ExitCode first = ExitCode::Ok;
  for (const Outcome& outcome : outcomes) {
    drawings.push_back(drawingJson(outcome));
    first = first == ExitCode::Ok ? outcome.code : first;
  }
  const nlohmann::json document = {
      {"version", kReportVersion},      {"program", "quoin " QUOIN_VERSION},
      {"command", run.command},         {"exitCode", static_cast<int>(first)},
      {"done", doneCount(outcomes)},    {"failed", outcomes.size() - doneCount(outcomes)},
      {"drawings", std::move(drawings)}};
  // Bytes of names that are no UTF-8 are replaced.
  fmt::print(run.stream, "{}\n",
             document.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace

Outcome tryWork(const std::string& input, const Report::Wanted& wanted,
                const std::function<void(Outcome&)>& work) {
  Outcome outcome(input, wanted);
  try {
    work(outcome);
  } catch (const CommandError& error) {
    outcome.code = error.code;
    outcome.error = error.what();
  } catch (const std::exception& error) {
    outcome.code = ExitCode::InternalError;
    outcome.error = fmt::format("internal error: {}", error.what());
  }
  return outcome;
}

void printOutcomes(const std::vector<Outcome>& outcomes, const PrintedRun& run) {
  if (run.isJson) {
    printDocument(outcomes, run);
  } else if (outcomes.size() == 1) {
    printLines(outcomes.front().report, "", run);
  } else {
    printEach(outcomes, run);
  }
  std::fflush(run.stream);
}

void throwWhereFailed(const std::vector<Outcome>& outcomes) {
  const auto failed = std::find_if(outcomes.begin(), outcomes.end(),
                                   [](const Outcome& outcome) { return !outcome.isDone(); });
  if (failed != outcomes.end()) {
    throw CommandError(failed->code,
                       outcomes.size() == 1
                           ? failed->error
                           : fmt::format("{} of {} drawings failed",
                                         outcomes.size() - doneCount(outcomes), outcomes.size()));
  }
}

}  // namespace quoin::commands
