#include "commands/DrawingCommand.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <thread>

#include "commands/CommandError.h"
#include "commands/Outcome.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/compare/DifferencePicture.h"
#include "commands/compare/DrawingDifference.h"
#include "embedded/os/File.h"
#include "embedded/os/Process.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

std::string packed(const Outcome& outcome) {
  const std::vector<std::uint8_t> bytes = nlohmann::json::to_cbor(
      {static_cast<int>(outcome.code), outcome.error, outcome.written, outcome.report.packed()});
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
                 const FileStamp& before, ExitCode codeOfDeath) {
  Outcome outcome(job.input, wanted);
  try {
    if (result.isDone) {
      const nlohmann::json parts = nlohmann::json::from_cbor(result.text);
      outcome.code = static_cast<ExitCode>(parts.at(0).get<int>());
      outcome.error = parts.at(1).get<std::string>();
      outcome.written = parts.at(2).get<std::string>();
      outcome.report.unpack(parts.at(3).get<std::string>());
      return outcome;
    }
    outcome.error = result.text;
  } catch (const nlohmann::json::exception&) {
    outcome.error = "the process that worked on it sent no whole result";
  }
  outcome.code = os::isInterrupted() ? ExitCode::Interrupted : codeOfDeath;
  outcome.error = job.input + ": " + outcome.error + stateText(job, before);
  return outcome;
}

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
void tellPlaces(const DrawingJob& job, Drawing& drawing, Outcome& outcome) {
  Report& report = outcome.report;
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
  if (!job.picture.empty()) {
    report.line("picture: {}", job.picture);
  }
  if (!job.isDryRun && !saved.isUnchanged) {
    outcome.written = job.output;
  }
  report.json["output"] =
      outcome.written.empty() ? nlohmann::json() : nlohmann::json(outcome.written);
  report.json["backup"] =
      saved.backup.empty() ? nlohmann::json() : nlohmann::json(os::toUtf8(saved.backup));
  report.json["picture"] = job.picture.empty() ? nlohmann::json() : nlohmann::json(job.picture);
}

/// Each drawing in a process of its own: one that brings its process down takes no other along,
/// and fails with `codeOfDeath`.
std::vector<Outcome> workSideBySide(const std::vector<DrawingJob>& jobs,
                                    const CommonOptions& options, ExitCode codeOfDeath,
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
    outcomes.push_back(unpacked(results[i], options.wanted(), jobs[i], before[i], codeOfDeath));
  }
  return outcomes;
}

}  // namespace

/// What fails behind the saving must not hide that the result is there.
void DrawingCommand::workOrTell(Drawing& drawing, const DrawingJob& job, Outcome& outcome) {
  const FileStamp before(job.output);
  try {
    std::optional<Drawing> asItWas;
    if (job.isBeforeAfter) {
      // The file may be replaced before the picture is made.
      asItWas.emplace(job.input, m_options.codePage);
    }
    work(drawing, job, outcome.report);
    if (asItWas) {
      const DrawingDifference difference = differenceOf(*asItWas, drawing, {});
      job.renderAny(differencePicture(*asItWas, drawing, difference, "before and after"),
                    outcome.report);
    }
  } catch (const CommandError& error) {
    if (job.isDryRun || FileStamp(job.output) == before) {
      throw;
    }
    outcome.written = job.output;
    throw CommandError(error.code, error.what() + ("; the drawing is written: " + job.output));
  }
}

void DrawingCommand::run() {
  const std::vector<DrawingJob> jobs = m_options.drawingJobs();
  prepare();
  m_options.makeFolders();
  if (m_options.isQuiet) {
    Progress::silence();
  }
  const auto workOn = [&](std::size_t i) {
    return tryWork(jobs[i].input, m_options.wanted(), [&](Outcome& outcome) {
      Report& report = outcome.report;
      checkPlaces(jobs[i]);
      Drawing drawing(jobs[i].input, m_options.codePage);
      report.json["input"] = fileJson(drawing);
      for (const std::wstring& warning : hostx::warnings(&drawing.database())) {
        report.warn(os::toUtf8(warning));
      }
      workOrTell(drawing, jobs[i], outcome);
      tellPlaces(jobs[i], drawing, outcome);
    });
  };
  // Of several drawings the summary tells what became of each, after Ctrl-C too.
  std::optional<os::StopDelay> untilTold;
  if (jobs.size() > 1) {
    untilTold.emplace();
  }
  const std::vector<Outcome> outcomes =
      jobs.size() == 1 && !runsForeignCode()
          ? std::vector<Outcome>{workOn(0)}
          : workSideBySide(jobs, m_options,
                           runsForeignCode() ? ExitCode::CommandFailed : ExitCode::OutputUnwritable,
                           workOn);
  for (const Outcome& outcome : outcomes) {
    if (!outcome.written.empty()) {
      os::noteFileWritten();  // by a worker
    }
  }
  // Where the drawing itself goes to the standard output, words go to the other stream.
  std::FILE* const stream = jobs.front().writesToStandardOutput() ? stderr : stdout;
  printOutcomes(outcomes, {name(), m_options.isJson(), m_options.isQuiet, stream});
  throwWhereFailed(outcomes);
}

}  // namespace quoin::commands
