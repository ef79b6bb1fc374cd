// A subcommand: one class in one file, listed in CommandLine.cpp.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "commands/CommandLineNames.h"

namespace quoin::commands {

class Command {
 public:
  virtual ~Command() = default;
  /// Adds the subcommand with its options to the command line.
  virtual CLI::App* declare(CLI::App& app) = 0;
  /// Runs it with the options that the command line gave.
  /// Fails: throws CommandError.
  virtual void run() = 0;
  /// Where the words behind "--" go; null where they are words like all others.
  virtual std::vector<std::string>* passedOn() { return nullptr; }
};

std::unique_ptr<Command> makeBreakCommand();
std::unique_ptr<Command> makeInfoCommand();
std::unique_ptr<Command> makeConvertCommand();
std::unique_ptr<Command> makeDrawCommand();
std::unique_ptr<Command> makeCleanCommand();
std::unique_ptr<Command> makeMergeCommand();
std::unique_ptr<Command> makeTrimAxesCommand();
std::unique_ptr<Command> makeOutlineCommand();
std::unique_ptr<Command> makeSolidCommand();
std::unique_ptr<Command> makeWallsCommand();
std::unique_ptr<Command> makeRoomsCommand();
std::unique_ptr<Command> makeSurveyCommand();
std::unique_ptr<Command> makeStyleCommand();
std::unique_ptr<Command> makePaintCommand();
std::unique_ptr<Command> makeMatchPropertiesCommand();
std::unique_ptr<Command> makePictureCommand();
std::unique_ptr<Command> makeExtentsCommand();
std::unique_ptr<Command> makeCompareCommand();
std::unique_ptr<Command> makeToOriginCommand();
std::unique_ptr<Command> makeRescaleCommand();
std::unique_ptr<Command> makeRestoreCommand();
std::unique_ptr<Command> makeRunCommand();
std::unique_ptr<Command> makeHelpCommand();
std::unique_ptr<Command> makeCompletionCommand();

}  // namespace quoin::commands
