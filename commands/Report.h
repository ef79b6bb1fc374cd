// What a command tells of one drawing, as lines of text and as JSON. The frame prints it
// (DrawingCommand.h); commands only fill it.
#pragma once

#include <fmt/format.h>

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace quoin::commands {

class Report {
 public:
  /// What is asked for: what nobody will see need not be put together.
  struct Wanted {
    bool json = false;
    bool details = false;
  };
  enum class Level : std::uint8_t { Text, Warning };
  struct Line {
    Level level;
    std::string text;
  };

  explicit Report(const Wanted& wanted) : m_wanted(wanted) {}

  /// Whether the report is read as JSON; its lines of text are dropped then.
  bool isJson() const { return m_wanted.json; }
  /// The fields of the JSON report that are the command's own.
  nlohmann::json json = nlohmann::json::object();

  /// A line of the text report.
  template <class... Arguments>
  void line(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
    if (!isJson()) {
      m_lines.push_back({Level::Text, fmt::format(format, std::forward<Arguments>(arguments)...)});
    }
  }
  /// Lines that only --verbose shows.
  void details(std::size_t count, const std::function<std::string(std::size_t)>& text);
  /// Lines of which there may be many: the first few, and how many more there are; all of them
  /// with --verbose.
  void list(std::size_t count, const std::function<std::string(std::size_t)>& text);
  /// A sentence that --quiet does not silence, and that stands under "warnings" in JSON.
  void warn(const std::string& sentence);

  const std::vector<Line>& lines() const { return m_lines; }
  const std::vector<std::string>& warnings() const { return m_warnings; }

  /// The report as bytes, from one process to another.
  std::string packed() const;
  /// What packed() gave.
  void unpack(const std::string& bytes);

 private:
  Wanted m_wanted;
  std::vector<Line> m_lines;
  std::vector<std::string> m_warnings;
};

}  // namespace quoin::commands
