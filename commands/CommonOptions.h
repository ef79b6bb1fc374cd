// Options that the commands which change a drawing share, and what follows from them: where
// the result goes, the picture, the report, and the project's scale.
#pragma once

#include <CLI/CLI.hpp>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "commands/Drawing.h"
#include "commands/picture/Picture.h"
#include "gepnt3d.h"

namespace quoin::commands {

struct CommonOptions {
  std::string plan;
  std::string output;
  bool isInPlace = false;
  bool isDryRun = false;
  std::string picture;
  std::string report = "text";
  std::vector<std::string> layers;
  std::optional<double> projectScale;

  /// Adds PLAN, -o, --in-place, --dry-run, --picture and --report.
  void declareFiles(CLI::App& command);
  void declareLayers(CLI::App& command, const std::string& what);
  void declareScale(CLI::App& command);
  /// Checks what the parser cannot: that there is one place for the result, that it is not the
  /// input unless asked for, that the picture has a known ending.
  /// Fails: throws CommandError (Usage).
  void checkFiles() const;
  bool isJson() const { return report == "json"; }
  /// Where the changed drawing goes.
  std::filesystem::path target() const;
  /// Saves the drawing there; nothing in a dry run.
  void save(Drawing& drawing) const;
  /// Writes the picture if one was asked for.
  void render(const Picture& picture) const;
  /// The last lines of a text report: where the drawing and the picture went.
  void printOutcome() const;
  /// The same in a JSON report: "output" and "picture".
  void addOutcome(nlohmann::json& report) const;
};

/// How near lines must come to count as touching.
struct Capture {
  double projectScale;
  double distance;  // drawing units
  bool isDefault;   // chosen from the drawing's units
};

/// The capture distance that a drawing gets unless the user sets the project's scale: 10 mm.
inline constexpr double kDefaultCaptureMillimeters = 10.0;

/// Sets the host's current project to the scale of the options, or to the one that makes the
/// capture distance 10 mm in the drawing's units.
Capture setProjectScale(const CommonOptions& options, const Drawing& drawing);
/// "10 mm in the drawing (project scale 1)".
std::string captureText(const Capture& capture, const Drawing& drawing);

/// "X,Y" or "X,Y,Z".
/// Fails: throws CommandError (Usage).
AcGePoint3d parsePoint(const std::string& text);

/// Names in a row, separated by commas.
std::string namesText(const std::set<std::wstring>& names);

/// Parts of JSON reports.
nlohmann::json namesJson(const std::set<std::wstring>& names);
nlohmann::json pointJson(const AcGePoint3d& point);
nlohmann::json fileJson(const Drawing& drawing);
nlohmann::json captureJson(const Capture& capture);
/// Prints a report; bytes of names that are no UTF-8 are replaced.
void printJson(const nlohmann::json& report);

}  // namespace quoin::commands
