// quoin run: loads a client module and runs one of its commands.
#include <fmt/format.h>

#include <cstdio>

#include "accmd.h"
#include "commands/Command.h"
#include "commands/CommandError.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

class RunCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command =
        app.add_subcommand("run", "Load a client module and run one of its commands");
    command->add_option("MODULE", m_module, "The module's shared library")->required();
    command->add_option("COMMAND", m_command, "The command's name, as the module registers it")
        ->required();
    command->footer(
        "The folder examples/client_module holds a module to begin with.\n\n"
        "Example:\n  quoin run wall_sketch.so WALLSKETCH");
    return command;
  }

  void run() override {
    try {
      HostApplication::current()->loadModule(m_module);
    } catch (const rx::ModuleError& error) {
      throw CommandError(ExitCode::InputUnreadable,
                         fmt::format("cannot load the module: {}", error.what()));
    }
    AcEdCommandStack* const stack = acedRegCmds;
    const AcEdCommand* const command =
        stack ? stack->lookupCmd(os::fromUtf8(m_command).c_str()) : nullptr;
    if (!command) {
      throw CommandError(ExitCode::NothingToDo,
                         fmt::format("{} registers no command {}", m_module, m_command));
    }
    command->functionAddr()();
    std::fflush(stdout);
  }

 private:
  std::string m_module;
  std::string m_command;
};

}  // namespace

std::unique_ptr<Command> makeRunCommand() {
  return std::make_unique<RunCommand>();
}

}  // namespace quoin::commands
