#include "commands/CommandLine.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <string_view>
#include <utility>
#include <vector>

#include "commands/Command.h"
#include "commands/CommandError.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

constexpr const char* kDescription =
    "quoin works on the walls of architectural plan drawings (DXF, R12 to R2018).\n"
    "Try: quoin break plan.dxf -o broken.dxf --picture broken.png\n"
    "     quoin COMMAND --help   for the options of one command";

constexpr const char* kExitCodes =
    "Exit codes:\n"
    "  0    done\n"
    "  2    the command line cannot be understood\n"
    "  3    the drawing cannot be read\n"
    "  4    the drawing has nothing to work on (no wall lines on the chosen layers)\n"
    "  5    the drawing, picture or model cannot be written\n"
    "  6    an entity cannot be changed as asked\n"
    "  7    no project is open\n"
    "  70   a module cannot be loaded\n"
    "  71   internal error\n"
    "  130  interrupted; every file is whole\n";

/// How many letters must be put in, taken out or changed to make one word of the other.
std::size_t editDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i);
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t changed = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, changed});
    }
  }
  return row.back();
}

/// Stops with the nearest command's name where the first word is none of the commands.
void checkCommandName(const CLI::App& app, std::string_view word) {
  std::string nearest;
  std::size_t distance = 3;  // more letters apart is another word
  for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
    const std::size_t found = editDistance(word, command->get_name());
    if (found == 0) {
      return;
    }
    if (found < distance) {
      distance = found;
      nearest = command->get_name();
    }
  }
  throw CommandError(
      ExitCode::Usage,
      fmt::format("there is no command \"{}\"{}; quoin --help lists the commands", word,
                  nearest.empty() ? "" : fmt::format(", did you mean \"{}\"?", nearest)));
}

int runChecked(int argc, const char* const* argv) {
  CLI::App app(kDescription, "quoin");
  app.set_version_flag("--version", std::string("quoin ") + QUOIN_VERSION);
  app.footer(kExitCodes);
  app.require_subcommand(1);

  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
  for (std::unique_ptr<Command> (*make)() :
       {&makeBreakCommand, &makeDrawCommand, &makeMergeCommand, &makeTrimAxesCommand,
        &makeOutlineCommand, &makeSolidCommand, &makeStyleCommand, &makePaintCommand,
        &makeMatchPropertiesCommand, &makeExtentsCommand, &makeToOriginCommand, &makeRescaleCommand,
        &makeRestoreCommand, &makeRunCommand, &makeInfoCommand}) {
    std::unique_ptr<Command> command = make();
    CLI::App* const declared = command->declare(app);
    commands.emplace_back(declared, std::move(command));
  }
  if (argc > 1 && argv[1][0] != '-') {
    checkCommandName(app, argv[1]);
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    // Help and version are no errors; everything else is one kind of error.
    return app.exit(error) == 0 ? static_cast<int>(ExitCode::Ok)
                                : static_cast<int>(ExitCode::Usage);
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
  return static_cast<int>(ExitCode::Ok);
}

/// Where nobody can be told the exit code says it; so nothing is thrown here.
void printError(const std::string& message) {
  std::fprintf(stderr, "quoin: %s\n", message.c_str());
}

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
  try {
    return runChecked(argc, argv);
  } catch (const CommandError& error) {
    std::fflush(stdout);
    printError(error.what());
    return static_cast<int>(error.code);
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
