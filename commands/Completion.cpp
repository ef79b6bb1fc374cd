#include "commands/Completion.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <string_view>

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

/// How one of the two shells says what the others say too.
struct Dialect {
  std::string_view head;
  std::string_view words;    // the words of the line
  std::string_view current;  // the number of the one that is completed
  int first;                 // the number of the first behind the program
  std::string_view reset;    // what is offered at the begin
  std::string (*offer)(const std::string& words);
  std::string_view offerFiles;  // empty where names of files are offered by themselves
  std::string_view end;
};

constexpr Dialect kBash{"# bash completion for quoin: made by `quoin completion bash`.\n",
                        "COMP_WORDS",
                        "COMP_CWORD",
                        1,
                        "  COMPREPLY=()\n",
                        [](const std::string& words) {
                          return fmt::format("COMPREPLY=($(compgen -W {} -- \"$word\"))",
                                             quoted(words));
                        },
                        "",
                        "complete -o bashdefault -o default -F _quoin quoin\n"};

constexpr Dialect kZsh{
    "#compdef quoin\n# zsh completion for quoin: made by `quoin completion zsh`.\n", "words",
    "CURRENT", 2, "", [](const std::string& words) { return "compadd -- " + words; }, "_files",
    // Read as a function of its own, it is called; read by `source`, known.
    "if [[ $funcstack[1] == _quoin ]]; then _quoin; else compdef _quoin quoin; fi\n"};

/// Walks along the words to the command that they reach, `key`; then offers what it takes.
std::string wordsScript(const Dialect& shell, const Commands& commands,
                        const CommandWords& program) {
  const auto offer = [&](const std::vector<std::string>& words) {
    return shell.offer(fmt::format("{}", fmt::join(words, " ")));
  };
  std::string script = fmt::format(
      "{0}_quoin() {{\n"
      "  local word=${{{1}[{2}]}} before=${{{1}[{2} - 1]}} key= i\n{5}"
      "  for ((i = {3}; i < {2}; i++)); do\n"
      "    case \"$key ${{{1}[i]}}\" in\n"
      "      {4}) key=\"${{key:+$key }}${{{1}[i]}}\" ;;\n"
      "    esac\n"
      "  done\n"
      "  case \"$key $before\" in\n",
      shell.head, shell.words, shell.current, shell.first, steps(commands), shell.reset);
  script += valueCases(commands, shell.offer);
  std::vector<std::string> begin = childrenOf("", commands);
  const std::vector<std::string> options = optionNames(program);
  begin.insert(begin.end(), options.begin(), options.end());
  script += fmt::format("  esac\n  case \"$key\" in\n    '') {} ;;\n", offer(begin));
  for (const CommandWords& command : commands) {
    const std::vector<std::string> first = firstWords(command, commands);
    const std::string other = first.empty() ? std::string(shell.offerFiles) : offer(first);
    script += fmt::format("    {})\n      if [[ $word == -* ]]; then {}\n      {}fi ;;\n",
                          quoted(command.name), offer(optionNames(command)),
                          other.empty() ? "" : fmt::format("else {}\n      ", other));
  }
  return script + fmt::format("  esac\n}}\n{}", shell.end);
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
  return shell == "bash"  ? wordsScript(kBash, commands, words)
         : shell == "zsh" ? wordsScript(kZsh, commands, words)
                          : fishScript(commands);
}

}  // namespace quoin::commands
