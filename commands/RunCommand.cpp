// quoin run: loads a client module and runs one of its commands, alone or on drawings.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <optional>

#include "accmd.h"
#include "commands/CommandError.h"
#include "commands/CurrentDrawing.h"
#include "commands/DrawingCommand.h"
#include "commands/NearestWord.h"
#include "commands/ReportFields.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/CapturedOutput.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

/// What a command did to model space.
struct SpaceDifference {
  std::size_t count = 0;  // of entities that are there now
  std::vector<AcDbObjectId> added;
  std::vector<AcDbObjectId> erased;
};

SpaceDifference differenceSince(const std::vector<AcDbObjectId>& before, Drawing& drawing) {
  SpaceDifference difference;
  for (const AcDbObjectId& id : drawing.entities(drawing.modelSpaceId())) {
    ++difference.count;
    if (hostx::lineNumber(id) == 0) {
      difference.added.push_back(id);
    }
  }
  std::copy_if(before.begin(), before.end(), std::back_inserter(difference.erased),
               [](const AcDbObjectId& id) { return id.isErased(); });
  return difference;
}

class RunCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("run", "Run a command of a client module, on drawings or without one");
    m_declared = command;
    command->add_option("MODULE", m_module, "The module's shared library")->required();
    command->add_option("COMMAND", m_command, "The command's name, as the module registers it")
        ->required();
    m_options.declareFiles(*command);
    command->get_option("DRAWING")->required(false);
    m_options.declareScale(*command);
    command->footer(
        "Words behind -- answer the command's prompts, one each, in their order; the command can\n"
        "also take them all at once. The drawing is the current one while the command runs, and\n"
        "is saved when it has come to its end.\n\n"
        "The folder examples/client_module holds a module to begin with.\n\n"
        "Examples:\n"
        "  quoin run wall_sketch.so WALLSKETCH\n"
        "  quoin run wall_sketch.so WALLFACE plan.dxf -o faced.dxf -- AXIS 120");
    return command;
  }

  std::vector<std::string>* passedOn() override { return &m_arguments; }
  std::string name() const override { return "run"; }
  bool runsForeignCode() const override { return true; }

  void run() override {
    if (!m_options.plans.empty()) {
      DrawingCommand::run();
      return;
    }
    for (const CLI::Option* option : m_declared->get_options()) {
      if (option->count() > 0 && option->nonpositional()) {
        throw CommandError(ExitCode::Usage,
                           option->get_name() + ": name the drawing to run the command on");
      }
    }
    prepare();
    call();
    if (const std::string words = unusedText(); !words.empty()) {
      fmt::print(stderr, "quoin: {}\n", words);
    }
    std::fflush(stdout);
  }

  /// Processes that work on drawings begin with the module that is loaded here.
  void prepare() override {
    try {
      HostApplication::current()->loadModule(m_module);
    } catch (const rx::ModuleError& error) {
      throw CommandError(ExitCode::ModuleUnloadable,
                         fmt::format("cannot load the module: {}", error.what()));
    }
    const AcEdCommandStack* const stack = acedRegCmds;
    m_found = stack ? stack->lookupCmd(os::fromUtf8(m_command).c_str()) : nullptr;
    if (!m_found) {
      throw CommandError(ExitCode::Usage, noCommandText());
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    setCapture(m_options.capture, drawing);
    const std::vector<AcDbObjectId> before = drawing.entities(drawing.modelSpaceId());
    callOn(drawing, report);
    for (const std::wstring& open : hostx::openObjects(&drawing.database())) {
      report.warn(fmt::format("{} has left open: {}", m_command, os::toUtf8(open)));
    }
    if (const std::string words = unusedText(); !words.empty()) {
      report.warn(words);
    }
    const SpaceDifference difference = differenceSince(before, drawing);
    job.save(drawing);
    if (job.hasPicture()) {
      job.render(pictureOf(drawing, difference), report);
    }
    report.line("{}: {} in model space, {} new, {} erased", m_command,
                countText(difference.count, "entity", "entities"), difference.added.size(),
                difference.erased.size());
    addJson(drawing, difference, report.json);
  }

 private:
  /// "wall.so registers no command WALLFAC, did you mean WALLFACE? It has WALLFACE, ...".
  std::string noCommandText() const {
    std::vector<std::string> names;
    for (const std::wstring& registered :
         HostApplication::current()->runtime().commands().commandNames()) {
      names.push_back(os::toUtf8(registered));
    }
    // Names of commands are the same in any letter case.
    const std::string word = os::toUtf8(os::foldCase(os::fromUtf8(m_command)));
    const std::string meant = suggestion(word, names);
    return fmt::format(
        "{} registers no command {}{} {}", m_module, m_command, meant.empty() ? "." : meant,
        names.empty() ? "It registers none" : fmt::format("It has {}", fmt::join(names, ", ")));
  }

  ed::CommandInput& input() const { return HostApplication::current()->editor().commandInput(); }

  /// Runs the command with its arguments.
  /// Fails: throws CommandError; Usage where a prompt finds no argument, or none that fits.
  void call() const {
    std::vector<std::wstring> words;
    for (const std::string& argument : m_arguments) {
      words.push_back(os::fromUtf8(argument));
    }
    input().begin(std::move(words));
    std::string thrown;
    try {
      m_found->functionAddr()();
    } catch (const std::exception& error) {
      thrown = error.what();
    } catch (...) {
      thrown = "it has thrown something that is no exception";
    }
    if (const std::wstring& failure = input().failure(); !failure.empty()) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{} cannot go on: {}", m_command, os::toUtf8(failure)));
    }
    if (!thrown.empty()) {
      throw CommandError(ExitCode::CommandFailed,
                         fmt::format("{} has failed: {}", m_command, thrown));
    }
  }

  /// The same on a drawing; what it prints goes into the report, whatever becomes of it.
  void callOn(Drawing& drawing, Report& report) const {
    os::CapturedOutput output;
    std::optional<CommandError> failure;
    {
      const CurrentDrawing current(drawing);
      try {
        call();
      } catch (const CommandError& error) {
        failure.emplace(error.code, drawing.file().string() + ": " + error.what());
      }
    }
    report.json["printed"] = linesOf(output.finish());
    for (const nlohmann::json& line : report.json["printed"]) {
      report.line("{}", line.get_ref<const std::string&>());
    }
    if (failure) {
      throw CommandError(*failure);
    }
  }

  std::string unusedText() const {
    const std::vector<std::wstring> words = input().unused();
    if (words.empty()) {
      return "";
    }
    std::string list;
    for (const std::wstring& word : words) {
      list += " " + os::toUtf8(word);
    }
    return fmt::format("{} has not asked for {}:{}", m_command, countText(words.size(), "argument"),
                       list);
  }

  Picture pictureOf(Drawing& drawing, const SpaceDifference& difference) const {
    Picture picture = newPicture(drawing, m_command,
                                 countText(difference.added.size(), "new entity", "new entities"));
    addPlanShapes(picture, drawing, {difference.added.begin(), difference.added.end()});
    addEntityShapes(picture, drawing, difference.added, palette::kFirst, kPieceWidth);
    picture.legend = {{"new", palette::kFirst, false, MarkShape::Dot, kPieceWidth},
                      {"rest of the plan", palette::kPlan, false, MarkShape::Dot, 2.0}};
    return picture;
  }

  void addJson(const Drawing& drawing, const SpaceDifference& difference,
               nlohmann::json& report) const {
    report.update({{"module", m_module},
                   {"moduleCommand", m_command},
                   {"arguments", m_arguments},
                   {"entities", difference.count},
                   {"added", difference.added.size()},
                   {"erased", difference.erased.size()},
                   {"addedEntities", changesJson(drawing, difference.added)},
                   {"erasedEntities", changesJson(drawing, difference.erased)}});
  }

  CLI::App* m_declared = nullptr;
  std::string m_module;
  std::string m_command;
  std::vector<std::string> m_arguments;
  const AcEdCommand* m_found = nullptr;
};

}  // namespace

std::unique_ptr<Command> makeRunCommand() {
  return std::make_unique<RunCommand>();
}

}  // namespace quoin::commands
