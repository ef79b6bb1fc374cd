#include "commands/CommandLine.h"

#include <fmt/format.h>

#include <cstdio>
#include <utility>

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

constexpr int kInternalError = 71;

int runChecked(int argc, const char* const* argv) {
  CLI::App app(kDescription, "quoin");
  app.set_version_flag("--version", std::string("quoin ") + QUOIN_VERSION);
  app.footer(kExitCodes);
  app.require_subcommand(1);

  std::vector<std::pair<CLI::App*, std::unique_ptr<Command>>> commands;
  for (std::unique_ptr<Command> (*make)() :
       {&makeBreakCommand, &makeDrawCommand, &makeMergeCommand, &makeTrimAxesCommand,
        &makeOutlineCommand, &makeSolidCommand, &makeRunCommand, &makeInfoCommand}) {
    std::unique_ptr<Command> command = make();
    CLI::App* const declared = command->declare(app);
    commands.emplace_back(declared, std::move(command));
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

}  // namespace

int runCommandLine(int argc, const char* const* argv) {
  try {
    return runChecked(argc, argv);
  } catch (const CommandError& error) {
    std::fflush(stdout);
    fmt::print(stderr, "quoin: {}\n", error.what());
    return static_cast<int>(error.code);
  } catch (const std::exception& error) {
    std::fflush(stdout);
    fmt::print(stderr, "quoin: internal error: {}\n", error.what());
    return kInternalError;
  }
}

}  // namespace quoin::commands
