// The frame of the commands that work on drawings, each drawing for itself: it reads the
// drawings, one after another or side by side, and prints what the command reports of each.
#pragma once

#include <string>

#include "commands/Command.h"
#include "commands/CommonOptions.h"
#include "commands/DrawingJob.h"
#include "commands/Outcome.h"
#include "commands/Report.h"

namespace quoin::commands {

class DrawingCommand : public Command {
 public:
  /// Works on all drawings. One that fails does not keep the others back.
  /// Fails: throws CommandError with the exit code of the first drawing that failed; nothing is
  /// begun where the options make no sense (Usage).
  void run() override;

 protected:
  /// The command's name in reports, "style dim".
  virtual std::string name() const = 0;
  /// Looks at the options before any drawing is read.
  /// Fails: throws CommandError (Usage).
  virtual void prepare() {}
  /// Whether the work calls code that may bring its process down. Then even a single drawing is
  /// worked on in a process of its own, and such an end is the command's failure.
  virtual bool runsForeignCode() const { return false; }
  /// Works on one drawing: changes it, saves it, makes the picture (DrawingJob) and reports.
  /// May run in a process of its own, so what it keeps in members is lost.
  /// Fails: throws CommandError.
  virtual void work(Drawing& drawing, const DrawingJob& job, Report& report) = 0;

  CommonOptions m_options;

 private:
  void workOrTell(Drawing& drawing, const DrawingJob& job, Outcome& outcome);
};

}  // namespace quoin::commands
