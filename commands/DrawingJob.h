// One drawing of a run, and where what becomes of it goes.
#pragma once

#include <string>

#include "commands/Drawing.h"
#include "commands/Report.h"
#include "commands/picture/Picture.h"

namespace quoin::commands {

struct DrawingJob {
  std::string input;
  std::string output;   // empty: no drawing is written
  std::string picture;  // empty: none was asked for
  bool isInPlace = false;
  bool isDryRun = false;
  /// The picture shows the drawing before and after, which the frame makes for all commands.
  bool isBeforeAfter = false;

  /// Whether the command is to make one.
  bool hasPicture() const { return !picture.empty() && !isBeforeAfter; }
  /// The report must not get among the drawing's bytes.
  bool writesToStandardOutput() const { return output == kStandardStream && !isDryRun; }

  /// Saves the drawing where it goes; nothing in a dry run.
  /// Fails: throws CommandError (OutputUnwritable, Interrupted).
  void save(Drawing& drawing) const;
  /// Writes the command's picture if one was asked for, behind the drawing; what it leaves out is
  /// reported. Fails: throws CommandError (OutputUnwritable, Interrupted).
  void render(const Picture& drawn, Report& report) const;
  /// The same for a picture that is not the command's own.
  void renderAny(const Picture& drawn, Report& report) const;
};

}  // namespace quoin::commands
