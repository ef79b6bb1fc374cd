#include "commands/CommonOptions.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>
#include <cstdio>

#include "ProjectScale.h"
#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "commands/picture/Render.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

void CommonOptions::declareFiles(CLI::App& command) {
  command.add_option("PLAN", plan, "The drawing to read (DXF, ASCII or binary)")->required();
  command.add_option("-o,--output", output, "The drawing to write, in PLAN's version and form");
  command.add_flag("--in-place", isInPlace,
                   "Write PLAN itself; the old drawing stays beside it as .bak");
  command.add_flag("--dry-run", isDryRun, "Report what would change and write no drawing");
  command.add_option("--picture", picture, "Make a picture of the result (.png, .svg or .pdf)");
  command.add_option("--report", report, "text or json")
      ->check(CLI::IsMember({"text", "json"}))
      ->capture_default_str();
}

void CommonOptions::declareLayers(CLI::App& command, const std::string& what) {
  command.add_option("--layer", layers, what)->type_name("GLOB")->take_all()->expected(1);
}

void CommonOptions::declareScale(CLI::App& command) {
  command.add_option("--project-scale", projectScale,
                     "The project's scale S; lines closer than 10/S drawing units touch. "
                     "Default: what makes that 10 mm");
}

void CommonOptions::checkFiles() const {
  if (isInPlace && !output.empty()) {
    throw CommandError(ExitCode::Usage, "--in-place and -o exclude each other");
  }
  if (output.empty() && !isInPlace && !isDryRun) {
    throw CommandError(ExitCode::Usage,
                       "say where the result goes: -o FILE, --in-place or --dry-run");
  }
  std::error_code ignored;
  if (!output.empty() && std::filesystem::equivalent(plan, output, ignored)) {
    throw CommandError(ExitCode::Usage,
                       output + " is the drawing that is read; use --in-place to replace it");
  }
  if (!picture.empty() && !isPictureFile(picture)) {
    throw CommandError(ExitCode::Usage, picture + ": pictures end in .png, .svg or .pdf");
  }
}

std::filesystem::path CommonOptions::target() const {
  return isInPlace ? plan : output;
}

void CommonOptions::save(Drawing& drawing) const {
  Progress::checkInterrupt();
  if (!isDryRun) {
    drawing.saveAs(target(), isInPlace);
  }
}

void CommonOptions::render(const Picture& drawn) const {
  if (!picture.empty()) {
    Progress::checkInterrupt();
    renderPicture(drawn, picture);
  }
}

void CommonOptions::printOutcome() const {
  if (isDryRun) {
    fmt::print("dry run: no drawing written\n");
  } else {
    fmt::print("written: {}\n", target().string());
  }
  if (!picture.empty()) {
    fmt::print("picture: {}\n", picture);
  }
}

void CommonOptions::addOutcome(nlohmann::json& json) const {
  json["output"] = isDryRun ? nlohmann::json() : nlohmann::json(target().string());
  json["picture"] = picture.empty() ? nlohmann::json() : nlohmann::json(picture);
}

Capture setProjectScale(const CommonOptions& options, const Drawing& drawing) {
  const double defaultDistance = kDefaultCaptureMillimeters / drawing.millimetersPerUnit();
  const double scale = options.projectScale.value_or(kCaptureLength / defaultDistance);
  HostApplication::current()->platform().projects().current()->setScale(scale);
  return {scale, GetCaptureDistance(scale), !options.projectScale};
}

std::string captureText(const Capture& capture, const Drawing& drawing) {
  std::string text = fmt::format("{:g} {}", capture.distance, drawing.unitName());
  if (capture.isDefault) {
    if (drawing.info().units == AcDb::kUnitsUndefined) {
      text += " (the drawing has no units: taken as millimetres)";
    } else if (drawing.info().units != AcDb::kUnitsMillimeters) {
      text += fmt::format(" ({:g} mm)", kDefaultCaptureMillimeters);
    }
  } else {
    text += fmt::format(" (project scale {:g})", capture.projectScale);
  }
  return text;
}

AcGePoint3d parsePoint(const std::string& text) {
  double values[3] = {0.0, 0.0, 0.0};
  const char* at = text.data();
  const char* const end = text.data() + text.size();
  int count = 0;
  for (; count < 3; ++count) {
    const auto taken = std::from_chars(at, end, values[count]);
    if (taken.ec != std::errc() || !std::isfinite(values[count])) {
      count = -1;
      break;
    }
    at = taken.ptr;
    if (at == end || *at != ',') {
      ++count;
      break;
    }
    ++at;
  }
  if (count < 2 || at != end) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("'{}' is no point; write X,Y with no blanks", text));
  }
  return {values[0], values[1], values[2]};
}

std::string namesText(const std::set<std::wstring>& names) {
  std::string text;
  for (const std::wstring& name : names) {
    text += (text.empty() ? "" : ", ") + os::toUtf8(name);
  }
  return text;
}

nlohmann::json namesJson(const std::set<std::wstring>& names) {
  nlohmann::json json = nlohmann::json::array();
  for (const std::wstring& name : names) {
    json.push_back(os::toUtf8(name));
  }
  return json;
}

nlohmann::json pointJson(const AcGePoint3d& point) {
  return {point.x, point.y, point.z};
}

nlohmann::json fileJson(const Drawing& drawing) {
  return {{"file", drawing.file().string()},
          {"release", os::toUtf8(drawing.info().release)},
          {"binary", drawing.info().isBinary},
          {"units", drawing.unitName()}};
}

nlohmann::json captureJson(const Capture& capture) {
  return {{"distance", capture.distance}, {"projectScale", capture.projectScale}};
}

void printJson(const nlohmann::json& report) {
  fmt::print("{}\n", report.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

}  // namespace quoin::commands
