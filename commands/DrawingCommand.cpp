#include "commands/DrawingCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <thread>

#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "embedded/os/File.h"
#include "embedded/os/Process.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// What became of one drawing.
struct Outcome {
  explicit Outcome(const Report::Wanted& wanted) : report(wanted) {}

  bool isDone() const { return code == ExitCode::Ok; }

  ExitCode code = ExitCode::Ok;
  std::string error;  // the cause where it failed
  Report report;
};

std::string packed(const Outcome& outcome) {
  const std::vector<std::uint8_t> bytes = nlohmann::json::to_cbor(
      {static_cast<int>(outcome.code), outcome.error, outcome.report.packed()});
  return {bytes.begin(), bytes.end()};
}

/// What tells whether a file was replaced: replacing gives it another time.
struct FileStamp {
  explicit FileStamp(const std::string& file) {
    std::error_code error;
    time = std::filesystem::last_write_time(file, error);
    exists = !error;
    size = std::filesystem::file_size(file, error);
  }
  bool operator==(const FileStamp&) const = default;

  std::filesystem::file_time_type time;
  std::uintmax_t size = 0;
  bool exists = false;
};

/// What the result of a drawing is where nobody can tell any more how far the work has come. Saving
/// replaces a file whole.
std::string stateText(const DrawingJob& job, const FileStamp& before) {
  if (job.output.empty() || job.isDryRun || job.output == kStandardStream) {
    return "";
  }
  const char* const state = FileStamp(job.output) == before
                                ? (before.exists ? " is as it was" : " was not written")
                                : " is the new one, whole";
  return "; " + job.output + state;
}

Outcome unpacked(const os::SideResult& result, const Report::Wanted& wanted, const DrawingJob& job,
                 const FileStamp& before) {
  Outcome outcome(wanted);
  try {
    if (result.isDone) {
      const nlohmann::json parts = nlohmann::json::from_cbor(result.text);
      outcome.code = static_cast<ExitCode>(parts.at(0).get<int>());
      outcome.error = parts.at(1).get<std::string>();
      outcome.report.unpack(parts.at(2).get<std::string>());
      return outcome;
    }
    outcome.error = result.text;
  } catch (const nlohmann::json::exception&) {
    outcome.error = "the process that worked on it gave no whole answer";
  }
  outcome.code = os::isInterrupted() ? ExitCode::Interrupted : ExitCode::OutputUnwritable;
  outcome.error = job.input + ": " + outcome.error + stateText(job, before);
  return outcome;
}

/// How a run over drawings is printed.
class Printer {
 public:
  Printer(const CommonOptions& options, const std::vector<DrawingJob>& jobs)
      : m_options(options),
        m_jobs(jobs),
        // Where the drawing itself goes to the standard output, words go to the other stream.
        m_stream(jobs.front().writesToStandardOutput() ? stderr : stdout) {}

  void print(const std::vector<Outcome>& outcomes, const std::string& command) const {
    if (m_options.isJson()) {
      printDocument(outcomes, command);
    } else if (outcomes.size() == 1) {
      printLines(outcomes.front().report, "");
    } else {
      printEach(outcomes);
    }
    std::fflush(m_stream);
  }

  static std::size_t doneCount(const std::vector<Outcome>& outcomes) {
    return static_cast<std::size_t>(std::count_if(
        outcomes.begin(), outcomes.end(), [](const Outcome& outcome) { return outcome.isDone(); }));
  }

 private:
  void printLines(const Report& report, const char* indent) const {
    for (const Report::Line& line : report.lines()) {
      if (!m_options.isQuiet) {
        fmt::print(m_stream, "{}{}\n", indent, line.text);
      } else if (line.level == Report::Level::Warning) {
        fmt::print(stderr, "quoin: {}\n", line.text);
      }
    }
  }

  void printEach(const std::vector<Outcome>& outcomes) const {
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      if (!m_options.isQuiet) {
        fmt::print(m_stream, "{}:\n", m_jobs[i].input);
      }
      printLines(outcomes[i].report, "  ");
      if (!outcomes[i].isDone()) {
        if (!m_options.isQuiet) {
          fmt::print(m_stream, "  failed\n");
        }
        std::fflush(m_stream);
        fmt::print(stderr, "quoin: {}\n", outcomes[i].error);
      }
    }
    if (!m_options.isQuiet) {
      printSummary(outcomes);
    }
  }

  void printSummary(const std::vector<Outcome>& outcomes) const {
    fmt::print(m_stream, "{} of {} drawings done\n", doneCount(outcomes), outcomes.size());
    std::size_t width = 0;
    for (const DrawingJob& job : m_jobs) {
      width = std::max(width, job.input.size());
    }
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const bool writes = outcomes[i].isDone() && !m_jobs[i].output.empty() && !m_jobs[i].isDryRun;
      const std::string state =
          outcomes[i].isDone()
              ? "done"
              : fmt::format("failed, exit code {}", static_cast<int>(outcomes[i].code));
      fmt::print(m_stream, "  {:<{}}  {}{}\n", m_jobs[i].input, width, state,
                 writes ? ": " + m_jobs[i].output : "");
    }
  }

  void printDocument(const std::vector<Outcome>& outcomes, const std::string& command) const {
    nlohmann::json drawings = nlohmann::json::array();
    ExitCode first = ExitCode::Ok;
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const Outcome& outcome = outcomes[i];
      nlohmann::json drawing = outcome.report.json;
      if (!drawing.contains("input")) {
        drawing["input"] = {{"file", m_jobs[i].input}};
      }
      drawing["exitCode"] = static_cast<int>(outcome.code);
      drawing["error"] = outcome.isDone() ? nlohmann::json() : nlohmann::json(outcome.error);
      drawing["warnings"] = outcome.report.warnings();
      drawings.push_back(std::move(drawing));
      first = first == ExitCode::Ok ? outcome.code : first;
    }
    printJson({{"version", kReportVersion},
               {"program", "quoin " QUOIN_VERSION},
               {"command", command},
               {"exitCode", static_cast<int>(first)},
               {"done", doneCount(outcomes)},
               {"failed", outcomes.size() - doneCount(outcomes)},
               {"drawings", std::move(drawings)}},
              m_stream);
  }

  const CommonOptions& m_options;
  const std::vector<DrawingJob>& m_jobs;
  std::FILE* m_stream;
};

/// Looks, before a drawing is read, whether its results can be written where they go: a file is
/// begun there and given up.
void checkPlaces(const DrawingJob& job) {
  const bool writesFile = !job.isDryRun && !job.isInPlace && !job.writesToStandardOutput();
  for (const std::string& file : {writesFile ? job.output : std::string(), job.picture}) {
    try {
      if (!file.empty()) {
        const os::AtomicFile begun(file);
      }
    } catch (const os::FileFailure& failure) {
      throw CommandError(ExitCode::OutputUnwritable, failure.message());
    }
  }
}

/// Where the drawing and the picture went: the last words of every report.
void addOutcome(const DrawingJob& job, Drawing& drawing, Report& report) {
  const hostx::SaveResult saved = hostx::lastSave(&drawing.database());
  if (job.isDryRun) {
    report.line("dry run: no drawing written");
  } else if (saved.isUnchanged) {
    report.line("nothing to change: {} is left as it is", job.output);
  } else if (!job.output.empty()) {
    report.line("written: {}", job.output == kStandardStream ? "standard output" : job.output);
  }
  if (!saved.backup.empty()) {
    report.line("before: {}", os::toUtf8(saved.backup));
  }
  if (job.hasPicture()) {
    report.line("picture: {}", job.picture);
  }
  report.json["output"] = job.isDryRun || saved.isUnchanged || job.output.empty()
                              ? nlohmann::json()
                              : nlohmann::json(job.output);
  report.json["backup"] =
      saved.backup.empty() ? nlohmann::json() : nlohmann::json(os::toUtf8(saved.backup));
  report.json["picture"] = job.hasPicture() ? nlohmann::json(job.picture) : nlohmann::json();
}

/// Runs `work` on a drawing; nothing that goes wrong gets out.
Outcome tryWork(const Report::Wanted& wanted, const std::function<void(Report&)>& work) {
  Outcome outcome(wanted);
  try {
    work(outcome.report);
  } catch (const CommandError& error) {
    outcome.code = error.code;
    outcome.error = error.what();
  } catch (const std::exception& error) {
    outcome.code = ExitCode::InternalError;
    outcome.error = fmt::format("internal error: {}", error.what());
  }
  return outcome;
}

/// Each drawing in a process of its own: one that brings its process down takes no other along.
std::vector<Outcome> workSideBySide(const std::vector<DrawingJob>& jobs,
                                    const CommonOptions& options,
                                    const std::function<Outcome(std::size_t)>& work) {
  Progress progress("Working on the drawings");
  const auto inProcess = [&](std::size_t i) {
    Progress::silence();
    return packed(work(i));
  };
  std::vector<FileStamp> before;
  before.reserve(jobs.size());
  for (const DrawingJob& job : jobs) {
    before.emplace_back(job.output);
  }
  const std::vector<os::SideResult> results =
      os::runSideBySide(jobs.size(), options.jobCount(), inProcess, [&](std::size_t done) {
        progress.report(static_cast<double>(done) / static_cast<double>(jobs.size()));
      });
  std::vector<Outcome> outcomes;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    outcomes.push_back(unpacked(results[i], options.wanted(), jobs[i], before[i]));
  }
  return outcomes;
}

}  // namespace

void DrawingCommand::run() {
  const std::vector<DrawingJob> jobs = m_options.drawingJobs();
  prepare();
  m_options.makeFolders();
  if (m_options.isQuiet) {
    Progress::silence();
  }
  const auto workOn = [&](std::size_t i) {
    return tryWork(m_options.wanted(), [&](Report& report) {
      checkPlaces(jobs[i]);
      Drawing drawing(jobs[i].input, m_options.codePage);
      report.json["input"] = fileJson(drawing);
      for (const std::wstring& warning : hostx::warnings(&drawing.database())) {
        report.warn(os::toUtf8(warning));
      }
      work(drawing, jobs[i], report);
      addOutcome(jobs[i], drawing, report);
    });
  };
  // Of several drawings the summary tells what became of each, after Ctrl-C too.
  std::optional<os::StopDelay> untilTold;
  if (jobs.size() > 1) {
    untilTold.emplace();
  }
  const std::vector<Outcome> outcomes =
      jobs.size() == 1 ? std::vector<Outcome>{workOn(0)} : workSideBySide(jobs, m_options, workOn);
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    if (outcomes[i].isDone() && !jobs[i].output.empty() && !jobs[i].isDryRun) {
      os::noteFileWritten();  // by a worker
    }
  }
  Printer(m_options, jobs).print(outcomes, name());
  const auto failed = std::find_if(outcomes.begin(), outcomes.end(),
                                   [](const Outcome& outcome) { return !outcome.isDone(); });
  if (failed != outcomes.end()) {
    throw CommandError(
        failed->code, jobs.size() == 1 ? failed->error
                                       : fmt::format("{} of {} drawings failed",
                                                     outcomes.size() - Printer::doneCount(outcomes),
                                                     outcomes.size()));
  }
}

}  // namespace quoin::commands
