// Options that the commands share, and what follows from them: the drawings, where their results
// go, pictures, how it is reported, and the project's scale.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "commands/Capture.h"
#include "commands/CommandLineNames.h"
#include "commands/Drawing.h"
#include "commands/DrawingJob.h"
#include "commands/Report.h"
#include "gepnt3d.h"

namespace quoin::commands {

struct CommonOptions {
  std::vector<std::string> plans;
  std::string output;
  bool isInPlace = false;
  bool isDryRun = false;
  std::string picture;
  bool isBeforeAfter = false;
  std::string report = "text";
  bool isQuiet = false;
  bool isVerbose = false;
  std::string codePage;  // of the drawings' text; empty: as they say themselves
  std::size_t jobs = 1;
  std::vector<std::string> layers;
  CaptureOptions capture;
  /// Lines that blocks and multilines show take part.
  bool takesInside = false;
  /// What replaces the ending of DRAWING's name in a folder; empty: the result is named as DRAWING
  /// is.
  std::string resultEnding;

  /// Adds DRAWING... with --code-page, and what tells how the run goes and is reported: --report,
  /// --quiet, --verbose, --jobs.
  void declarePlans(CLI::App& command);
  void declarePicture(CLI::App& command, const std::string& what);
  /// Adds all of the above with -o, --in-place and --dry-run.
  void declareFiles(CLI::App& command);
  CLI::Option* declareOutput(CLI::App& command, const std::string& what);
  void declareLayers(CLI::App& command, const std::string& what);
  void declareScale(CLI::App& command) { capture.declare(command); }
  /// `outcome` says what becomes of what shows them.
  void declareInBlocks(CLI::App& command,
                       const std::string& outcome = "they are not changed themselves");

  /// The drawings to work on and where their results go.
  /// Fails: throws CommandError (Usage) unless there is one place for each result, which is no
  /// drawing that is read (unless asked for) and no other's place, and pictures have a known
  /// ending.
  std::vector<DrawingJob> drawingJobs() const;
  /// Where a table that `place` asks for goes for this drawing; empty where none is asked for. The
  /// folder is made.
  /// Fails: throws CommandError (OutputUnwritable).
  std::string tableOf(const DrawingJob& job, const std::string& place,
                      const std::string& ending) const;
  /// Looks at the places of tables before any drawing is read.
  /// Fails: throws CommandError (Usage) unless each drawing has one for each table, which is no
  /// drawing that is read and no other result.
  void checkTables(const std::vector<std::string>& places) const;
  /// Makes the folders for results and pictures that are not there.
  /// Fails: throws CommandError (OutputUnwritable).
  void makeFolders() const;
  bool isJson() const { return report == "json"; }
  Report::Wanted wanted() const { return {isJson(), isVerbose}; }
  /// How many drawings to work on at a time.
  std::size_t jobCount() const;

 private:
  bool isSeveral() const { return plans.size() > 1; }
  bool isResultFolder(const std::string& place) const;
  std::string placeFor(const std::string& plan, const std::string& place,
                       const std::string& ending) const;
  void checkPlaces() const;

  bool m_writesDrawing = false;
};

/// An option that takes one value and may be repeated.
CLI::Option* addRepeated(CLI::App& command, const std::string& names,
                         std::vector<std::string>& values, const std::string& what,
                         const std::string& type);

/// "X,Y" or "X,Y,Z".
/// Fails: throws CommandError (Usage).
AcGePoint3d parsePoint(const std::string& text);

/// Names in a row, separated by commas.
std::string namesText(const std::set<std::wstring>& names);

}  // namespace quoin::commands
