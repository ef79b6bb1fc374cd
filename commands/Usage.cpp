#include "commands/Usage.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "commands/CommandTree.h"
#include "commands/NearestWord.h"

namespace quoin::commands {

namespace {

bool isOptionGroup(const CLI::App& app) {
  return app.get_name().empty();
}

/// All options of a command, those of its groups too.
std::vector<const CLI::Option*> optionsOf(const CLI::App& command) {
  std::vector<const CLI::Option*> options = command.get_options();
  for (const CLI::App* group : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (isOptionGroup(*group)) {
      const std::vector<const CLI::Option*> more = group->get_options();
      options.insert(options.end(), more.begin(), more.end());
    }
  }
  return options;
}

/// "-o", "--layer", every option in every spelling.
std::vector<std::string> spellingsOf(const CLI::App& command) {
  std::vector<std::string> spellings;
  for (const OptionWords& option : wordsOf(command).options) {
    if (!option.isPositional()) {
      spellings.insert(spellings.end(), option.names.begin(), option.names.end());
    }
  }
  return spellings;
}

/// The words that nothing took.
std::string extraWords(const CLI::App& program, const CLI::App& command) {
  for (const std::string& word : program.remaining(true)) {
    if (word.size() > 1 && word.front() == '-' && word != "--") {
      const std::string name = word.substr(0, word.find('='));
      return fmt::format("there is no option {}{}", name, suggestion(name, spellingsOf(command)));
    }
  }
  for (const std::string& word : program.remaining(true)) {
    if (word != "--") {
      return fmt::format("'{}' is one word too many", word);
    }
  }
  return "";
}

std::string listed(const std::vector<std::string>& words) {
  return fmt::format("{}", fmt::join(words, ", "));
}

/// What a group of options lacks, or has too much of.
std::string groupMessage(const CLI::App& command) {
  for (const CLI::App* group : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (!isOptionGroup(*group)) {
      continue;
    }
    std::vector<std::string> all;
    std::vector<std::string> given;
    for (const CLI::Option* option : group->get_options()) {
      all.push_back(option->get_name());
      if (option->count() > 0) {
        given.push_back(option->get_name());
      }
    }
    if (given.size() < group->get_require_option_min()) {
      return fmt::format("one of {} is missing", listed(all));
    }
    if (given.size() > 1 && group->get_require_option_max() == 1) {
      return fmt::format("{} exclude each other", fmt::join(given, " and "));
    }
  }
  return "";
}

std::string missing(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options()) {
    if (option->get_required() && option->count() == 0) {
      names.push_back(option->get_name());
    }
  }
  return names.empty() ? ""
                       : fmt::format("{} {} missing", fmt::join(names, " and "),
                                     names.size() == 1 ? "is" : "are");
}

/// The option that a message of the parser begins with, "--height: 1 required FLOAT missing".
const CLI::Option* optionIn(const std::string& message, const CLI::App& command) {
  for (const CLI::Option* option : optionsOf(command)) {
    if (message.find(option->get_name() + ":") == 0 ||
        message.find(": " + option->get_name() + " = ") != std::string::npos) {
      return option;
    }
  }
  return nullptr;
}

std::string wrongNumber(const std::string& message, const CLI::Option& option) {
  const std::string given = message.substr(message.rfind(" = ") + 3);
  const bool isWhole = option.get_type_name().find("INT") != std::string::npos;
  return fmt::format("{}: '{}' is {}", option.get_name(), given,
                     isWhole ? "not a whole number, 0 or more" : "not a number");
}

}  // namespace

const CLI::App& reachedCommand(const CLI::App& program) {
  const CLI::App* reached = &program;
  for (bool goesOn = true; goesOn;) {
    goesOn = false;
    for (const CLI::App* command : reached->get_subcommands()) {
      if (!isOptionGroup(*command)) {
        reached = command;
        goesOn = true;
        break;
      }
    }
  }
  return *reached;
}

CLI::App* findCommand(CLI::App& parent, const std::string& name) {
  const std::vector<CLI::App*> found = parent.get_subcommands(
      [&](const CLI::App* command) { return !name.empty() && command->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

std::string noCommand(const std::string& word, const CLI::App& parent) {
  std::vector<std::string> names;
  for (const CLI::App* command : parent.get_subcommands([](const CLI::App*) { return true; })) {
    names.push_back(command->get_name());
  }
  return fmt::format("there is no command {}{}", word, suggestion(word, names));
}

std::string helpHint(const CLI::App& command) {
  const CommandWords words = wordsOf(command);
  return fmt::format("quoin {}--help lists the {}", words.name.empty() ? "" : words.name + " ",
                     words.hasSubcommands ? "commands" : "options");
}

std::string usageMessage(const CLI::ParseError& error, const CLI::App& program) {
  const CLI::App& command = reachedCommand(program);
  const std::string words = error.what();
  // A mistyped option leaves others without their values: it is what went wrong.
  if (const std::string extra = extraWords(program, command); !extra.empty()) {
    return extra;
  }
  const CLI::Option* const option = optionIn(words, command);
  if (dynamic_cast<const CLI::RequiredError*>(&error)) {
    const bool wantsCommand =
        !command.get_subcommands([](const CLI::App* app) { return !isOptionGroup(*app); }).empty();
    const std::string lacking = missing(command);
    return wantsCommand       ? "say what to do: a command is missing"
           : !lacking.empty() ? lacking
                              : groupMessage(command);
  }
  if (option && dynamic_cast<const CLI::ArgumentMismatch*>(&error)) {
    return option->get_name() +
           (words.find("missing") != words.npos ? " has no value" : " is given more than once");
  }
  if (option && dynamic_cast<const CLI::ConversionError*>(&error)) {
    return words.find(" = ") != words.npos ? wrongNumber(words, *option)
                                           : option->get_name() + " takes no value";
  }
  if (dynamic_cast<const CLI::ExcludesError*>(&error)) {
    const std::size_t between = words.find(" excludes ");
    return between == words.npos
               ? words
               : fmt::format("{} and {} exclude each other", words.substr(0, between),
                             words.substr(between + std::size(" excludes ") - 1));
  }
  return words;
}

CLI::Validator oneOf(const std::vector<std::string>& words) {
  return CLI::Validator(
      [words](std::string& word) {
        for (const std::string& allowed : words) {
          if (word == allowed) {
            return std::string();
          }
        }
        return fmt::format("'{}' is none of {}{}", word, listed(words), suggestion(word, words));
      },
      fmt::format("{{{}}}", fmt::join(words, "|")));
}

std::vector<std::string> allowedWords(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{');
  const std::size_t end = type.find('}', begin);
  if (begin == type.npos || end == type.npos) {
    return {};
  }
  return CLI::detail::split(type.substr(begin + 1, end - begin - 1), '|');
}

}  // namespace quoin::commands
