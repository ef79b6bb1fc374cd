// The capture distance: how near lines must come to count as touching. By default 10 mm in the
// drawing's unit; options set it, or say what the unit is where the drawing names a wrong one.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

#include "commands/CommandLineNames.h"
#include "commands/Drawing.h"
#include "commands/Report.h"
#include "commands/WallLines.h"

namespace quoin::commands {

/// The capture distance that a drawing gets unless the user sets another: 10 mm.
inline constexpr double kDefaultCaptureMillimeters = 10.0;

/// A length with or without its unit, as --tolerance takes it.
struct GivenLength {
  double value;
  /// 0 for drawing units.
  double millimeters;

  double inUnitsOf(const Drawing& drawing) const;
  double inMillimeters(const Drawing& drawing) const;
};
/// "5mm", "0.2 in", "5"; nothing for what is no length above zero.
std::optional<GivenLength> parseLength(const std::string& text);

struct CaptureOptions {
  std::string units;      // "" for the drawing's own
  std::string tolerance;  // "" for 10 mm
  std::string projectScale;

  /// Adds --units, --tolerance and --project-scale, which exclude each other where they would say
  /// the same twice; values that are no length or scale above zero are refused.
  void declare(CLI::App& command);
  bool isDefault() const { return tolerance.empty() && projectScale.empty(); }
};

struct Capture {
  double projectScale;
  double distance;     // drawing units
  double millimeters;  // what was asked for; 0 with --project-scale
  std::string units;   // what these are taken for
  /// Set by --tolerance or --project-scale, or chosen from the drawing's units.
  enum class Source { Units, Tolerance, ProjectScale } source;
};

/// Takes the drawing for one in --units, if they are given, and sets the host's current project to
/// the scale whose capture distance the options name.
/// Fails: throws CommandError (Usage) where that distance is not finite or 0.
Capture setCapture(const CaptureOptions& options, Drawing& drawing);
/// "0.01 m (10 mm)", "5 mm (--tolerance)".
std::string captureText(const Capture& capture, const Drawing& drawing);
nlohmann::json captureJson(const Capture& capture);

/// Warns where the drawing is not likely to be in the unit it names and the capture distance
/// follows from that, with what to type.
void warnOfUnits(const CaptureOptions& options, Drawing& drawing,
                 const std::vector<WallLine>& walls, Report& report);

}  // namespace quoin::commands
