#include "commands/Completion.h"

#include <fmt/format.h>

#include "commands/CommandTree.h"

namespace quoin::commands {

namespace {

using Commands = std::vector<CommandWords>;

/// A word in single quotes, as all three shells read them.
std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char letter : text) {
    word += letter == '\'' ? std::string("'\\''") : std::string(1, letter);
  }
  return word + "'";
}

/// The last word of a command's name.
std::string lastWord(const CommandWords& command) {
  return command.name.substr(command.name.rfind(' ') + 1);
}

/// What comes before it: "style" of "style dim".
std::string parentOf(const CommandWords& command) {
  const std::size_t blank = command.name.rfind(' ');
  return blank == std::string::npos ? "" : command.name.substr(0, blank);
}

std::vector<std::string> optionNames(const CommandWords& command) {
  std::vector<std::string> names;
  for (const OptionWords& option : command.options) {
    if (!option.isPositional()) {
      names.insert(names.end(), option.names.begin(), option.names.end());
    }
  }
  return names;
}

std::vector<std::string> childrenOf(const std::string& name, const Commands& commands) {
  std::vector<std::string> children;
  for (const CommandWords& command : commands) {
    if (parentOf(command) == name) {
      children.push_back(lastWord(command));
    }
  }
  return children;
}

/// The patterns of a case statement under which the next command's word is found.
std::string steps(const Commands& commands) {
  std::string patterns;
  for (const CommandWords& command : commands) {
    patterns +=
        fmt::format("{}'{} {}'", patterns.empty() ? "" : "|", parentOf(command), lastWord(command));
  }
  return patterns;
}

/// Cases "KEY OPTION" with what `reply` makes of the option's choices, and of values that are
/// no names of files.
template <class Reply>
std::string valueCases(const Commands& commands, const Reply& reply) {
  std::string cases;
  for (const CommandWords& command : commands) {
    for (const OptionWords& option : command.options) {
      if (option.choices.empty() || option.isPositional()) {
        continue;
      }
      std::string patterns;
      for (const std::string& name : option.names) {
        patterns += fmt::format("{}'{} {}'", patterns.empty() ? "" : "|", command.name, name);
      }
      cases += fmt::format("    {}) {}; return ;;\n", patterns,
                           reply(fmt::format("{}", fmt::join(option.choices, " "))));
    }
  }
  return cases;
}

/// The words that may come first behind a command: its subcommands, or what it allows there.
std::vector<std::string> firstWords(const CommandWords& command, const Commands& commands) {
  std::vector<std::string> words = childrenOf(command.name, commands);
  for (const OptionWords& option : command.options) {
    if (option.isPositional()) {
      words.insert(words.end(), option.choices.begin(), option.choices.end());
    }
  }
  return words;
}

std::string bashScript(const Commands& commands, const CommandWords& program) {
  const auto reply = [](const std::string& words) {
    return fmt::format("COMPREPLY=($(compgen -W {} -- \"$word\"))", quoted(words));
  };
  std::string script = fmt::format(
      "# bash completion for quoin: made by `quoin completion bash`.\n"
      "_quoin() {{\n"
      "  local word=${{COMP_WORDS[COMP_CWORD]}} before=${{COMP_WORDS[COMP_CWORD - 1]}} key= i\n"
      "  COMPREPLY=()\n"
      "  for ((i = 1; i < COMP_CWORD; i++)); do\n"
      "    case \"$key ${{COMP_WORDS[i]}}\" in\n"
      "      {}) key=\"${{key:+$key }}${{COMP_WORDS[i]}}\" ;;\n"
      "    esac\n"
      "  done\n"
      "  case \"$key $before\" in\n",
      steps(commands));
  script += valueCases(commands, reply);
  script += "  esac\n  case \"$key\" in\n";
  script += fmt::format("    '') {} ;;\n",
                        reply(fmt::format("{} {}", fmt::join(childrenOf("", commands), " "),
                                          fmt::join(optionNames(program), " "))));
  for (const CommandWords& command : commands) {
    const std::vector<std::string> first = firstWords(command, commands);
    script += fmt::format(
        "    {})\n      if [[ $word == -* ]]; then {}\n      {}fi ;;\n", quoted(command.name),
        reply(fmt::format("{}", fmt::join(optionNames(command), " "))),
        first.empty()
            ? ""
            : fmt::format("else {}\n      ", reply(fmt::format("{}", fmt::join(first, " ")))));
  }
  // Where nothing is offered bash completes names of files.
  return script + "  esac\n}\ncomplete -o bashdefault -o default -F _quoin quoin\n";
}

std::string zshScript(const Commands& commands, const CommandWords& program) {
  const auto reply = [](const std::string& words) { return "compadd -- " + words; };
  std::string script = fmt::format(
      "#compdef quoin\n"
      "# zsh completion for quoin: made by `quoin completion zsh`.\n"
      "_quoin() {{\n"
      "  local word=${{words[CURRENT]}} before=${{words[CURRENT - 1]}} key= i\n"
      "  for ((i = 2; i < CURRENT; i++)); do\n"
      "    case \"$key ${{words[i]}}\" in\n"
      "      {}) key=\"${{key:+$key }}${{words[i]}}\" ;;\n"
      "    esac\n"
      "  done\n"
      "  case \"$key $before\" in\n",
      steps(commands));
  script += valueCases(commands, reply);
  script += "  esac\n  case \"$key\" in\n";
  script += fmt::format("    '') compadd -- {} {} ;;\n", fmt::join(childrenOf("", commands), " "),
                        fmt::join(optionNames(program), " "));
  for (const CommandWords& command : commands) {
    const std::vector<std::string> first = firstWords(command, commands);
    script += fmt::format(
        "    {})\n      if [[ $word == -* ]]; then compadd -- {}\n      else {}; fi ;;\n",
        quoted(command.name), fmt::join(optionNames(command), " "),
        first.empty() ? "_files" : fmt::format("compadd -- {}", fmt::join(first, " ")));
  }
  return script + "  esac\n}\ncompdef _quoin quoin\n";
}

std::string fishScript(const Commands& commands) {
  std::string script = "# fish completion for quoin: made by `quoin completion fish`.\n";
  for (const CommandWords& command : commands) {
    const std::string parent = parentOf(command);
    script += fmt::format(
        "complete -c quoin -n {} -f -a {} -d {}\n",
        parent.empty() ? "__fish_use_subcommand" : quoted("__fish_seen_subcommand_from " + parent),
        lastWord(command), quoted(command.description));
    for (const OptionWords& option : command.options) {
      if (option.isPositional()) {
        continue;
      }
      std::string names;
      for (const std::string& name : option.names) {
        names += name.rfind("--", 0) == 0 ? " -l " + name.substr(2) : " -s " + name.substr(1);
      }
      script +=
          fmt::format("complete -c quoin -n {}{}{}{} -d {}\n",
                      quoted("__fish_seen_subcommand_from " + lastWord(command)), names,
                      option.value.empty() ? "" : " -r",
                      option.choices.empty()
                          ? ""
                          : " -f -a " + quoted(fmt::format("{}", fmt::join(option.choices, " "))),
                      quoted(option.description));
    }
  }
  return script;
}

}  // namespace

const std::vector<std::string>& shellsWithCompletion() {
  static const std::vector<std::string> kShells{"bash", "zsh", "fish"};
  return kShells;
}

std::string completionScript(const CLI::App& program, const std::string& shell) {
  const Commands commands = commandsOf(program);
  const CommandWords words = wordsOf(program);
  return shell == "bash"  ? bashScript(commands, words)
         : shell == "zsh" ? zshScript(commands, words)
                          : fishScript(commands);
}

}  // namespace quoin::commands
