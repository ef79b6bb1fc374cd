// quoin restore: puts the last backup of a drawing in its place.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/Outcome.h"
#include "commands/Progress.h"
#include "commands/Usage.h"
#include "embedded/os/Backups.h"
#include "embedded/os/File.h"

namespace quoin::commands {

namespace {

/// What happened, or would happen, to one file.
struct Restored {
  std::string file;
  os::Backup backup;
  std::vector<os::Backup> older;
  std::string formerVersion;  // where it is kept; empty: there was none, or nothing was done
  bool isSame = false;        // the backup holds the very bytes of the file
};

class RestoreCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("restore", "Put the last backup of a drawing back in its place");
    command->add_option("FILE", m_files, "Drawings that a run has replaced")->required();
    command->add_option("--backup-dir", m_backupFolder, "Where the backups are, if not beside FILE")
        ->type_name("DIR");
    command->add_option("--from", m_from, "The backup to take, if not the last one (one FILE only)")
        ->type_name("BACKUP");
    command->add_flag("--dry-run", m_isDryRun, "Name the backup and put nothing back");
    command->add_option("--report", m_report, "text or json")
        ->check(oneOf({"text", "json"}))
        ->capture_default_str();
    command->add_flag("-q,--quiet", m_isQuiet, "Print errors alone");
    command->footer(
        "What stands in FILE becomes its newest backup, and the one that is put back is none any\n"
        "more: the same command again undoes it. FILE.bak is the oldest backup, FILE.2.bak the\n"
        "next.\n\n"
        "Examples:\n"
        "  quoin restore plan.dxf\n"
        "  quoin restore plan.dxf --from plan.dxf.bak");
    return command;
  }

  void run() override {
    if (!m_from.empty() && m_files.size() > 1) {
      throw CommandError(ExitCode::Usage, "--from is the backup of one FILE, not of several");
    }
    const Report::Wanted wanted{m_report == "json", false};
    std::vector<Outcome> outcomes;
    for (const std::string& file : m_files) {
      outcomes.push_back(tryWork(file, wanted, [&](Outcome& outcome) {
        Progress::checkInterrupt();  // those behind the one that was stopped are named too
        Restored restored = find(file);
        if (!m_isDryRun) {
          putBack(restored);
        }
        outcome.written = m_isDryRun || restored.isSame ? "" : file;
        tell(restored, outcome.report);
      }));
    }
    printOutcomes(outcomes, {"restore", wanted.json, m_isQuiet});
    throwWhereFailed(outcomes);
  }

 private:
  Restored find(const std::string& file) const {
    Restored restored{file, {0, m_from}, os::backupsOf(file, m_backupFolder), {}};
    if (!m_from.empty()) {
      return restored;
    }
    if (restored.older.empty()) {
      throw CommandError(ExitCode::NothingToDo,
                         fmt::format("{}: there is no backup of it, neither {} nor a later one",
                                     file, os::backupPath(file, 1, m_backupFolder)));
    }
    restored.backup = restored.older.back();
    restored.older.pop_back();
    return restored;
  }

  void putBack(Restored& restored) const {
    try {
      const os::PutBack done = os::putBack(restored.file, restored.backup, m_backupFolder);
      restored.formerVersion = done.formerVersion;
      restored.isSame = done.isSame;
    } catch (const os::FileFailure& failure) {
      const ExitCode code =
          failure.status == Acad::eUserBreak ? ExitCode::Interrupted : ExitCode::OutputUnwritable;
      throw CommandError(code, failure.message());
    }
  }

  void tell(const Restored& restored, Report& report) const {
    const std::string older =
        restored.older.empty() || !m_from.empty()
            ? ""
            : fmt::format("; an older one is {} (--from)", restored.older.back().path);
    if (m_isDryRun) {
      report.line("{}: {} would be put back{}", restored.file, restored.backup.path, older);
    } else if (restored.isSame) {
      report.line("{}: {} holds the same, nothing to put back{}", restored.file,
                  restored.backup.path, older);
    } else {
      report.line(
          "{}: {} is put back{}", restored.file, restored.backup.path,
          restored.formerVersion.empty() ? "" : "; what stood there is " + restored.formerVersion);
    }
    const bool isRestored = !m_isDryRun && !restored.isSame;
    report.json["from"] = restored.backup.path;
    report.json["output"] = isRestored ? nlohmann::json(restored.file) : nlohmann::json();
    report.json["backup"] =
        restored.formerVersion.empty() ? nlohmann::json() : nlohmann::json(restored.formerVersion);
  }

  std::vector<std::string> m_files;
  std::string m_backupFolder;
  std::string m_from;
  bool m_isDryRun = false;
  bool m_isQuiet = false;
  std::string m_report = "text";
};

}  // namespace

std::unique_ptr<Command> makeRestoreCommand() {
  return std::make_unique<RestoreCommand>();
}

}  // namespace quoin::commands
