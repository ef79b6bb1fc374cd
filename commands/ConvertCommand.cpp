// quoin convert: a drawing of any format as a DXF file of its version.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/OutputFile.h"
#include "commands/UnreadRecords.h"
#include "commands/Words.h"
#include "embedded/db/core/DrawingStream.h"

namespace quoin::commands {

namespace {

class ConvertCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("convert", "Make a DXF file of a DWG drawing, of the same version");
    m_options.declarePlans(*command);
    m_options.declareOutput(*command, "The DXF file to write, or a folder")->required();
    command->add_flag("--leave-behind", m_isLeavingBehind,
                      "Write the file although records are left out that this program does not "
                      "read");
    m_options.resultEnding = ".dxf";
    command->footer(
        "The file is ASCII DXF. Records that this program does not read (bodies of solids, "
        "objects\n"
        "of other programs) are left out, and named, as are those of which DXF gets a part (cells "
        "of\ntables); the DWG file is not touched.\n\n"
        "Example:\n  quoin convert plan.dwg -o plan.dxf");
    return command;
  }

  std::string name() const override { return "convert"; }
  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const std::vector<dxf::UnreadKind> unread = unreadKinds(drawing.database());
    const std::vector<dxf::UnreadKind> partly = partlyReadKinds(drawing.database());
    if (!(unread.empty() && partly.empty()) && !m_isLeavingBehind) {
      throw CommandError(
          ExitCode::EntityFailed,
          fmt::format("{}: DXF would lose what this program does not read: {}{}; nothing was "
                      "written. --leave-behind writes the rest",
                      drawing.file().string(), unreadText(unread),
                      partly.empty() ? "" : "; and a part of " + unreadText(partly)));
    }
    write(drawing, job);
    if (!unread.empty()) {
      report.line("left out, not read: {}", unreadText(unread));
    }
    if (!partly.empty()) {
      report.line("carried over in part: {}", unreadText(partly));
    }
    report.json["leftOut"] = unreadJson(unread);
    report.json["carriedInPart"] = unreadJson(partly);
  }

 private:
  static void write(Drawing& drawing, const DrawingJob& job) {
    if (!job.writesToStandardOutput() && lowerCaseExtension(job.output) != ".dxf") {
      throw CommandError(ExitCode::Usage, job.output + ": DXF files end in .dxf");
    }
    std::string bytes;
    const Acad::ErrorStatus status =
        writeDxfCopy(drawing.database(), [&](std::string_view piece) { bytes += piece; });
    if (status != Acad::eOk) {
      throw CommandError(ExitCode::OutputUnwritable,
                         fileMessage(&drawing.database(), status, job.output, "make the DXF file"));
    }
    if (job.writesToStandardOutput()) {
      std::fwrite(bytes.data(), 1, bytes.size(), stdout);
      return;
    }
    writeWholeFile(bytes, job.output, "write the DXF file");
  }

  bool m_isLeavingBehind = false;
};

}  // namespace

std::unique_ptr<Command> makeConvertCommand() {
  return std::make_unique<ConvertCommand>();
}

}  // namespace quoin::commands
