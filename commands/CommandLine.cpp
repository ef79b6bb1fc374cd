#include "commands/CommandLine.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/Usage.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

constexpr const char* kDescription =
    "quoin works on the walls of architectural plan drawings (DXF and DWG).\n"
    "Try: quoin break plan.dxf -o broken.dxf --picture broken.png\n"
    "     quoin COMMAND --help   for the options of one command";

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  1    done, and the drawings that were compared differ\n"
    "  2    the command line cannot be understood\n"
    "  3    the drawing cannot be read\n"
    "  4    the drawing has nothing to work on (no wall lines on the chosen layers)\n"
    "  5    the drawing, picture or model cannot be written\n"
    "  6    an entity cannot be changed as asked\n"
    "  7    no project is open\n"
    "  8    a client module's command failed\n"
    "  70   a module cannot be loaded\n"
    "  71   internal error\n"
    "  130  interrupted; every file is whole\n";

/// All subcommands in the order of the help.
using Commands = std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>>;

Commands declareCommands(CLI::App& app) {
  Commands commands;
  for (std::unique_ptr<Command> (*make)() : {&makeSurveyCommand,
                                             &makeCleanCommand,
                                             &makeWallsCommand,
                                             &makeRoomsCommand,
                                             &makeBreakCommand,
                                             &makeDrawCommand,
                                             &makeMergeCommand,
                                             &makeTrimAxesCommand,
                                             &makeOutlineCommand,
                                             &makeSolidCommand,
                                             &makeStyleCommand,
                                             &makePaintCommand,
                                             &makeMatchPropertiesCommand,
                                             &makePictureCommand,
                                             &makeExtentsCommand,
                                             &makeCompareCommand,
                                             &makeToOriginCommand,
                                             &makeRescaleCommand,
                                             &makeConvertCommand,
                                             &makeRestoreCommand,
                                             &makeRunCommand,
                                             &makeInfoCommand,
                                             &makeHelpCommand,
                                             &makeCompletionCommand}) {
    std::unique_ptr<Command> command = make();
    CLI::App* const declared = command->declare(app);
    commands.emplace_back(declared, std::move(command));
  }
  return commands;
}

/// Takes the words behind "--" away for a command that hands them on.
void passWordsOn(std::vector<std::string>& words, const Commands& commands) {
  const auto dashes = std::find(words.begin(), words.end(), "--");
  for (const auto& [declared, command] : commands) {
    if (dashes != words.end() && words.front() == declared->get_name() && command->passedOn()) {
      command->passedOn()->assign(dashes + 1, words.end());
      words.erase(dashes, words.end());
      return;
    }
  }
}

/// Finds the command that the words name. False where it was help or the version, which are
/// printed. Fails: throws CommandError (Usage).
bool parse(CLI::App& app, std::vector<std::string> words) {
  if (!words.empty() && words.front().front() != '-' && !findCommand(app, words.front())) {
    throw CommandError(ExitCode::Usage, noCommand(words.front(), app));
  }
  std::reverse(words.begin(), words.end());  // the parser takes them from the end
  try {
    app.parse(words);
  } catch (const CLI::Success& asked) {
    app.exit(asked);
    return false;
  } catch (const CLI::ParseError& error) {
    throw CommandError(ExitCode::Usage, usageMessage(error, app));
  }
  return true;
}

void runWords(CLI::App& app, std::vector<std::string> words) {
  const Commands commands = declareCommands(app);
  if (!words.empty()) {
    passWordsOn(words, commands);
  }
  if (!parse(app, std::move(words))) {
    return;
  }
  // The algorithms read the project's scale: without a project they must not run.
  HostApplication* const host = HostApplication::current();
  if (!host || !host->platform().projects().current()) {
    throw CommandError(ExitCode::NoProject, "no project is open in the host");
  }
  for (const auto& [declared, command] : commands) {
    if (declared->parsed()) {
      command->run();
    }
  }
}

/// Where nobody can be told the exit code says it; so nothing is thrown here.
void printError(const std::string& message) {
  std::fprintf(stderr, "quoin: %s\n", message.c_str());
}

int runChecked(int argc, const char* const* argv) {
  CLI::App app(kDescription, "quoin");
  app.set_version_flag("-V,--version", std::string("quoin ") + QUOIN_VERSION);
  app.footer(kExitCodes);
  app.require_subcommand(1);
  try {
    runWords(app, {argv + 1, argv + std::max(argc, 1)});
    return static_cast<int>(ExitCode::Ok);
  } catch (const CommandError& error) {
    std::fflush(stdout);
    if (error.code == ExitCode::Different) {
      return static_cast<int>(error.code);  // the report has told it
    }
    printError(error.what() + (error.code == ExitCode::Usage ? "; " + helpHint(reachedCommand(app))
                                                             : std::string()));
    return static_cast<int>(error.code);
  }
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
  try {
    return runChecked(argc, argv);
  } catch (const std::exception& error) {
    if (std::ferror(stdout) != 0) {
      // A report could not be printed. The program looks at the stream at its end, and says so.
      return static_cast<int>(ExitCode::OutputUnwritable);
    }
    std::fflush(stdout);
    printError(std::string("internal error: ") + error.what());
    return static_cast<int>(ExitCode::InternalError);
  }
}

}  // namespace quoin::commands
