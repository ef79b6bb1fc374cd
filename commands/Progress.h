// Progress of long work on the terminal, and the way out of it: one line on the standard
// error stream that is overwritten, shown only where a person watches and has waited a while.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace quoin::commands {

class Progress {
 public:
  explicit Progress(std::string work);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// Shows the fraction done, 0 to 1; false when the user has asked to stop.
  bool report(double fraction);
  /// The same for one of many steps; asks the clock at some of them alone.
  bool step(std::size_t done, std::size_t all);
  /// Runs work that cannot say how far it is, such as a call into the module, and shows how long
  /// it has been running. Lets its exceptions out.
  static void during(const std::string& work, const std::function<void()>& run);
  /// Fails: throws CommandError (Interrupted) when the user has asked to stop.
  static void checkInterrupt();
  /// From now on nothing is shown: for processes that work side by side, and where the user wants
  /// quiet.
  static void silence();

 private:
  static bool s_isSilent;

  std::string m_work;
  std::chrono::steady_clock::time_point m_begin;
  std::chrono::steady_clock::time_point m_shown;
  bool m_isShown = false;
};

}  // namespace quoin::commands
