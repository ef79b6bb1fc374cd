// quoin help and quoin completion: the program tells about itself.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/Command.h"
#include "commands/CommandError.h"
#include "commands/Completion.h"
#include "commands/ManualPage.h"
#include "commands/NearestWord.h"
#include "commands/Usage.h"

namespace quoin::commands {

namespace {

class HelpCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    m_program = &app;
    CLI::App* const command = app.add_subcommand("help", "Tell about the program or a command");
    command->add_option("COMMAND", m_words, "The command to tell about")->type_name("");
    command->add_flag("--man", m_isManual, "Print the manual page, as man reads it");
    command->footer("Examples:\n  quoin help break\n  quoin help --man | man -l -");
    return command;
  }

  void run() override { fmt::print("{}", m_isManual ? manualPage(*m_program) : helpOfNamed()); }

 private:
  /// What `quoin WORDS --help` prints.
  std::string helpOfNamed() const {
    CLI::App* reached = m_program;
    std::string path = m_program->get_name();
    for (const std::string& word : m_words) {
      CLI::App* const next = findCommand(*reached, word);
      if (!next) {
        throw CommandError(ExitCode::Usage, noCommand(word, *reached));
      }
      reached = next;
      path += " " + reached->get_name();
    }
    return reached->get_formatter()->make_help(reached, path, CLI::AppFormatMode::Normal);
  }

  CLI::App* m_program = nullptr;
  std::vector<std::string> m_words;
  bool m_isManual = false;
};

class CompletionCommand : public Command {
 public:
  CLI::App* declare(CLI::App& app) override {
    m_program = &app;
    CLI::App* const command =
        app.add_subcommand("completion", "Print what a shell needs to complete command lines");
    command->add_option("SHELL", m_shell, "The shell")
        ->check(oneOf(shellsWithCompletion()))
        ->required();
    command->footer("Example:\n  source <(quoin completion bash)");
    return command;
  }

  void run() override { fmt::print("{}", completionScript(*m_program, m_shell)); }

 private:
  const CLI::App* m_program = nullptr;
  std::string m_shell;
};

}  // namespace

std::unique_ptr<Command> makeHelpCommand() {
  return std::make_unique<HelpCommand>();
}

std::unique_ptr<Command> makeCompletionCommand() {
  return std::make_unique<CompletionCommand>();
}

}  // namespace quoin::commands
