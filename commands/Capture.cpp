#include "commands/Capture.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>

#include "ProjectScale.h"
#include "commands/CommandError.h"
#include "commands/UnitsJudgement.h"
#include "commands/Usage.h"
#include "commands/Words.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

/// A finite number above zero; nothing else of a text.
std::optional<double> parseAboveZero(std::string_view text) {
  double value = 0.0;
  const auto taken = std::from_chars(text.data(), text.data() + text.size(), value);
  if (taken.ec != std::errc() || taken.ptr != text.data() + text.size() || !std::isfinite(value) ||
      !(value > 0.0)) {
    return std::nullopt;
  }
  return value;
}

std::string checkScale(const std::string& text) {
  return parseAboveZero(text) ? "" : "'" + text + "' is not a number above zero";
}

std::string checkLength(const std::string& text) {
  return parseLength(text) ? "" : "'" + text + "' is no length above zero; write 5mm, 0.2in or 5";
}

}  // namespace

double GivenLength::inUnitsOf(const Drawing& drawing) const {
  return millimeters == 0.0 ? value : value * millimeters / drawing.millimetersPerUnit();
}

double GivenLength::inMillimeters(const Drawing& drawing) const {
  return value * (millimeters == 0.0 ? drawing.millimetersPerUnit() : millimeters);
}

std::optional<GivenLength> parseLength(const std::string& text) {
  std::size_t letters = text.size();
  while (letters > 0 && text[letters - 1] >= 'a' && text[letters - 1] <= 'z') {
    --letters;
  }
  const NamedUnit* const unit = unitNamed(std::string_view(text).substr(letters));
  std::size_t end = letters;
  while (end > 0 && text[end - 1] == ' ') {
    --end;
  }
  const std::optional<double> value = parseAboveZero(std::string_view(text).substr(0, end));
  if (!value || (letters < text.size() && !unit) || (letters == text.size() && end < letters)) {
    return std::nullopt;
  }
  return GivenLength{*value, unit ? unit->millimeters : 0.0};
}

void CaptureOptions::declare(CLI::App& command) {
  std::vector<std::string> names;
  for (const NamedUnit& unit : namedUnits()) {
    names.emplace_back(unit.name);
  }
  CLI::Option* const unitsOption =
      command
          .add_option("--units", units,
                      "What a drawing unit is, where the drawing names none or a wrong one")
          ->check(oneOf(names));
  CLI::Option* const toleranceOption =
      command
          .add_option("--tolerance", tolerance,
                      "Lines closer than this touch: 5mm, 0.2in, or without a unit in drawing "
                      "units. Default: 10mm")
          ->type_name("LENGTH")
          ->check(CLI::Validator(checkLength, "", ""));
  command
      .add_option("--project-scale", projectScale,
                  "The same by the project's scale S: lines closer than 10/S drawing units touch")
      ->type_name("S")
      ->check(CLI::Validator(checkScale, "", ""))
      ->excludes(unitsOption)
      ->excludes(toleranceOption);
}

Capture setCapture(const CaptureOptions& options, Drawing& drawing) {
  if (const NamedUnit* const unit = unitNamed(options.units)) {
    drawing.takeUnits(unit->value);
  }
  Capture capture{};
  capture.units = drawing.unitName();
  if (!options.projectScale.empty()) {
    capture.source = Capture::Source::ProjectScale;
    capture.projectScale = parseAboveZero(options.projectScale).value_or(0.0);
  } else if (!options.tolerance.empty()) {
    capture.source = Capture::Source::Tolerance;
    const GivenLength given = *parseLength(options.tolerance);
    capture.millimeters = given.inMillimeters(drawing);
    capture.projectScale = kCaptureLength / given.inUnitsOf(drawing);
  } else {
    capture.source = Capture::Source::Units;
    capture.millimeters = kDefaultCaptureMillimeters;
    capture.projectScale =
        kCaptureLength / (kDefaultCaptureMillimeters / drawing.millimetersPerUnit());
  }
  capture.distance = GetCaptureDistance(capture.projectScale);
  if (!std::isfinite(capture.projectScale) || !std::isfinite(capture.distance) ||
      !(capture.distance > 0.0)) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("no lines are closer than {} {}: give another --tolerance or "
                                   "--project-scale",
                                   numberText(capture.distance), drawing.unitName()));
  }
  HostApplication::current()->platform().projects().current()->setScale(capture.projectScale);
  return capture;
}

std::string captureText(const Capture& capture, const Drawing& drawing) {
  std::string text = numberText(capture.distance) + " " + drawing.unitName();
  if (capture.source == Capture::Source::ProjectScale) {
    return text + " (project scale " + numberText(capture.projectScale) + ")";
  }
  const AcDb::UnitsValue units = drawing.info().units;
  if (units == AcDb::kUnitsUndefined && capture.source == Capture::Source::Units) {
    text += " (the drawing has no units: taken as millimetres)";
  } else if (units != AcDb::kUnitsUndefined && units != AcDb::kUnitsMillimeters) {
    text += " (" + numberText(capture.millimeters) + " mm)";
  }
  return text;
}

nlohmann::json captureJson(const Capture& capture) {
  return {{"distance", capture.distance},
          {"units", capture.units},
          {"projectScale", capture.projectScale}};
}

void warnOfUnits(const CaptureOptions& options, Drawing& drawing,
                 const std::vector<WallLine>& walls, Report& report) {
  if (!options.units.empty() || !options.isDefault()) {
    return;
  }
  if (const std::optional<UnitsDoubt> doubt = doubtUnits(gatherUnitsEvidence(drawing, walls))) {
    report.warn(fmt::format("{}: {}. If that is right, add --units {}", drawing.file().string(),
                            doubt->reason, doubt->likely->name));
  }
}

}  // namespace quoin::commands
