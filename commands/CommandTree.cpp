#include "commands/CommandTree.h"

#include <CLI/CLI.hpp>
#include <algorithm>

#include "commands/Usage.h"

namespace quoin::commands {

namespace {

OptionWords optionWordsOf(const CLI::Option& option) {
  OptionWords words;
  for (const std::string& name : option.get_snames()) {
    words.names.push_back("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    words.names.push_back("--" + name);
  }
  if (words.names.empty()) {
    words.names.push_back(option.get_name());
  }
  words.choices = allowedWords(option);
  if (option.get_items_expected_max() > 0) {
    words.value = option.get_type_name();
    words.value.erase(std::min(words.value.find(':'), words.value.size()));
  }
  words.description = option.get_description();
  words.isRequired = option.get_required();
  words.isRepeatable = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll ||
                       (words.isPositional() && option.get_items_expected_max() > 1);
  return words;
}

void addOptions(const CLI::App& command, CommandWords& words) {
  for (const CLI::Option* option : command.get_options()) {
    words.options.push_back(optionWordsOf(*option));
  }
  for (const CLI::App* part : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (part->get_name().empty()) {
      addOptions(*part, words);  // a group of options
    } else {
      words.hasSubcommands = true;
    }
  }
}

void addCommands(const CLI::App& command, std::vector<CommandWords>& all) {
  for (const CLI::App* part : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (!part->get_name().empty()) {
      all.push_back(wordsOf(*part));
      addCommands(*part, all);
    }
  }
}

}  // namespace

CommandWords wordsOf(const CLI::App& command) {
  CommandWords words;
  words.name = commandName(command);
  words.description = command.get_description();
  words.footer = command.get_footer();
  addOptions(command, words);
  return words;
}

std::vector<CommandWords> commandsOf(const CLI::App& program) {
  std::vector<CommandWords> all;
  addCommands(program, all);
  return all;
}

std::string commandName(const CLI::App& command) {
  const CLI::App* const parent = command.get_parent();
  if (!parent) {
    return "";
  }
  const std::string before = commandName(*parent);
  return before.empty() ? command.get_name() : before + " " + command.get_name();
}

}  // namespace quoin::commands
