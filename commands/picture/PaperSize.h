// Sheets of paper, and the scales that plans are printed at.
#pragma once

#include <optional>
#include <string>

namespace quoin::commands {

/// Millimetres.
struct PaperSize {
  std::string name;
  double width = 0.0;
  double height = 0.0;
  bool turns = false;  // may lie on either side
};

/// "A0" to "A5", "A3-landscape", "A4-portrait", "letter", "legal", "tabloid", "arch-a" to
/// "arch-e", "420x297": in any case; without an orientation the sheet turns as the plan needs it.
/// Fails: throws CommandError (Usage).
PaperSize parsePaper(const std::string& text);

/// Millimetres of the drawing that one on paper stands for: "1:100" is 100, "2:1" is 0.5,
/// "1/4in=1ft" is 48.
/// Fails: throws CommandError (Usage).
double parseScale(const std::string& text);

/// The first usual scale that is no larger than this: 87 gives 100.
double usualScaleFrom(double least);
/// "1:100", "2:1".
std::string scaleText(double scale);

}  // namespace quoin::commands
