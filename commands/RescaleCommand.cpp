// quoin rescale: scales drawing files in place, several side by side.
#include <fmt/format.h>

#include <cmath>
#include <map>
#include <thread>

#include "EntityTool.h"
#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/FixedEntities.h"
#include "commands/Progress.h"
#include "embedded/os/Process.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/SaveOutcomes.h"

namespace quoin::commands {

namespace {

/// What the algorithm multiplies its factor with.
constexpr double kDrawingFactor = 80.0;

/// The factor whose eightyfold comes nearest to what the drawing is to be scaled by.
double factorFor(double drawingFactor) {
  const double near = drawingFactor / kDrawingFactor;
  for (const double factor : {near, std::nextafter(near, 0.0), std::nextafter(near, 2.0 * near)}) {
    if (factor * kDrawingFactor == drawingFactor) {
      return factor;
    }
  }
  return near;
}

/// What happened to one file.
struct FileOutcome {
  ExitCode code = ExitCode::Ok;
  std::size_t scaled = 0;
  std::string note;  // the cause of a failure, or what was left behind
};

std::string packed(const FileOutcome& outcome) {
  return nlohmann::json{
      {"code", static_cast<int>(outcome.code)}, {"scaled", outcome.scaled}, {"note", outcome.note}}
      .dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

FileOutcome unpacked(const os::SideResult& result) {
  if (!result.isDone) {
    // Saving replaces the file whole, so whatever ended the work left a whole drawing.
    return {os::isInterrupted() ? ExitCode::Interrupted : ExitCode::OutputUnwritable, 0,
            result.text + "; the drawing is the old one or the new one, whole"};
  }
  const nlohmann::json json = nlohmann::json::parse(result.text);
  const FileOutcome outcome{static_cast<ExitCode>(json["code"].get<int>()),
                            json["scaled"].get<std::size_t>(), json["note"].get<std::string>()};
  if (outcome.code == ExitCode::Ok) {
    os::noteFileWritten();  // by the worker
  }
  return outcome;
}

/// Scales one file with the algorithm, which tells nothing of what it did: the file is looked
/// at before, and the saver is asked behind.
FileOutcome rescaleOne(const std::string& file, double factor, bool isLeavingBehind) {
  FileOutcome outcome;
  {
    AcDbDatabase database(false, true);
    const Acad::ErrorStatus status = database.readDwgFile(os::fromUtf8(file).c_str());
    if (status != Acad::eOk) {
      return {ExitCode::InputUnreadable, 0,
              fileMessage(&database, status, file, "read the drawing")};
    }
    const FixedEntities fixed = findFixedEntities(database, outcome.scaled);
    for (const auto& [kind, count] : fixed.countOfKind) {
      outcome.scaled -= count;
    }
    if (!fixed.isEmpty()) {
      if (!isLeavingBehind) {
        return {ExitCode::EntityFailed, 0,
                fmt::format("the host cannot scale {}; --leave-behind scales the others",
                            fixed.text())};
      }
      outcome.note = "left as they are: " + fixed.text();
    }
  }
  if (os::isInterrupted()) {
    return {ExitCode::Interrupted, 0, "interrupted before it was changed"};
  }
  product::takeSaveOutcomes();
  std::vector<CString> files{os::fromUtf8(file).c_str()};
  CEntityTool::AdjustDwgSize(files, factor);
  for (const product::SaveOutcome& saved : product::takeSaveOutcomes()) {
    if (saved.status != Acad::eOk) {
      const std::string cause = os::toUtf8(saved.cause);
      return {ExitCode::OutputUnwritable, 0,
              (cause.empty() ? os::toUtf8(acadErrorStatusText(saved.status)) : cause) +
                  "; the drawing is as it was"};
    }
  }
  return outcome;
}

class RescaleCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("rescale", "Scale drawing files in place, each with a backup");
    command->add_option("FILE", m_files, "Drawings to scale (DXF, ASCII or binary)")->required();
    CLI::Option_group* const factors = command->add_option_group("factor");
    factors->add_option("--factor", m_factor, "Scale by 80 times this");
    factors->add_option("--drawing-factor", m_drawingFactor, "Scale by just this");
    factors->require_option(1);
    command->add_option("--jobs", m_jobs, "How many files at a time; 0 for one a processor core")
        ->capture_default_str();
    command->add_flag("--leave-behind", m_isLeavingBehind,
                      "Save even if entities that cannot be scaled stay as they are");
    command->add_option("--report", m_report, "text or json")
        ->check(CLI::IsMember({"text", "json"}))
        ->capture_default_str();
    command->footer(
        "Model space is scaled about 0,0,0; the old drawing stays beside the new one as .bak. A\n"
        "file that fails stays as it was and does not keep the others back; the exit code is that\n"
        "of the first that failed.\n\n"
        "Examples:\n"
        "  quoin rescale a.dxf b.dxf --factor 1.25        (scales by 100)\n"
        "  quoin rescale *.dxf --drawing-factor 0.001 --jobs 0");
    return command;
  }

  void run() override {
    const double factor = m_drawingFactor ? factorFor(*m_drawingFactor) : *m_factor;
    const double drawingFactor = factor * kDrawingFactor;
    if (!std::isfinite(drawingFactor) || drawingFactor == 0.0) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("a drawing cannot be scaled by {:g}", drawingFactor));
    }
    checkNoneTwice();
    if (m_report == "text") {
      fmt::print("scaling by {}{}\n", drawingFactor,
                 m_drawingFactor ? "" : fmt::format(" (80 times {})", factor));
    }
    const os::StopDelay untilTold;  // what became of each drawing
    const std::vector<FileOutcome> outcomes = rescaleAll(factor);
    m_report == "json" ? printJson(jsonReport(drawingFactor, outcomes)) : printTable(outcomes);
    for (const FileOutcome& outcome : outcomes) {
      if (outcome.code != ExitCode::Ok) {
        throw CommandError(outcome.code, summary(outcomes));
      }
    }
  }

 private:
  /// A file scaled twice would be scaled by the square: nobody wants that.
  void checkNoneTwice() const {
    for (std::size_t i = 0; i < m_files.size(); ++i) {
      for (std::size_t j = i + 1; j < m_files.size(); ++j) {
        std::error_code ignored;
        if (m_files[i] == m_files[j] ||
            std::filesystem::equivalent(m_files[i], m_files[j], ignored)) {
          throw CommandError(
              ExitCode::Usage,
              fmt::format("{} and {} are one file, which would be scaled twice; nothing was done",
                          m_files[i], m_files[j]));
        }
      }
    }
  }

  std::vector<FileOutcome> rescaleAll(double factor) const {
    Progress progress("Scaling");
    const std::size_t jobs =
        m_jobs > 0 ? m_jobs : std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    const auto work = [&](std::size_t i) {
      return packed(rescaleOne(m_files[i], factor, m_isLeavingBehind));
    };
    std::vector<FileOutcome> outcomes;
    for (const os::SideResult& result :
         os::runSideBySide(m_files.size(), jobs, work, [&](std::size_t done) {
           progress.report(static_cast<double>(done) / static_cast<double>(m_files.size()));
         })) {
      outcomes.push_back(unpacked(result));
    }
    return outcomes;
  }

  static std::size_t failures(const std::vector<FileOutcome>& outcomes) {
    return static_cast<std::size_t>(
        std::count_if(outcomes.begin(), outcomes.end(),
                      [](const FileOutcome& outcome) { return outcome.code != ExitCode::Ok; }));
  }

  static std::string summary(const std::vector<FileOutcome>& outcomes) {
    return fmt::format("{} of {} drawings were not scaled", failures(outcomes), outcomes.size());
  }

  void printTable(const std::vector<FileOutcome>& outcomes) const {
    std::size_t width = 0;
    for (const std::string& file : m_files) {
      width = std::max(width, file.size());
    }
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      const FileOutcome& outcome = outcomes[i];
      fmt::print("  {:<{}}  ", m_files[i], width);
      if (outcome.code == ExitCode::Ok) {
        fmt::print("scaled, {} entities; before: {}.bak\n", outcome.scaled, m_files[i]);
      } else {
        fmt::print("not scaled\n");
      }
      if (!outcome.note.empty()) {
        fmt::print("      {}\n", outcome.note);
      }
    }
    fmt::print("{} of {} drawings scaled\n", outcomes.size() - failures(outcomes), outcomes.size());
    std::fflush(stdout);
  }

  nlohmann::json jsonReport(double drawingFactor, const std::vector<FileOutcome>& outcomes) const {
    nlohmann::json report = {{"command", "rescale"},
                             {"drawingFactor", drawingFactor},
                             {"files", nlohmann::json::array()}};
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
      report["files"].push_back({{"file", m_files[i]},
                                 {"scaled", outcomes[i].code == ExitCode::Ok},
                                 {"entities", outcomes[i].scaled},
                                 {"exitCode", static_cast<int>(outcomes[i].code)},
                                 {"note", outcomes[i].note}});
    }
    return report;
  }

  std::vector<std::string> m_files;
  std::optional<double> m_factor;
  std::optional<double> m_drawingFactor;
  std::size_t m_jobs = 1;
  bool m_isLeavingBehind = false;
  std::string m_report = "text";
};

}  // namespace

std::unique_ptr<Command> makeRescaleCommand() {
  return std::make_unique<RescaleCommand>();
}

}  // namespace quoin::commands
