#include "commands/CommonOptions.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <string_view>
#include <thread>

#include "commands/CommandError.h"
#include "commands/OutputFile.h"
#include "commands/Usage.h"
#include "commands/picture/Render.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Stands for the name of a drawing, without its ending, in names of results.
constexpr std::string_view kNamePlace = "{name}";

bool isStandardStream(const std::string& file) {
  return file == kStandardStream;
}

/// One spelling for each file, whether it is there or not.
std::string fileKey(const std::string& file) {
  std::error_code ignored;
  const std::filesystem::path whole =
      std::filesystem::weakly_canonical(std::filesystem::absolute(file, ignored), ignored);
  return whole.empty() ? file : whole.string();
}

/// A drawing under the name of another format would deceive whoever opens it: drawings are written
/// in the format that they were read in.
void checkDrawingName(const std::string& plan, const std::string& file) {
  const std::string ending = lowerCaseExtension(file);
  const auto refuse = [&](const std::string& hint) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("{}: drawings are written in the format that they were read in, "
                                   "not as {}{}",
                                   file, ending.substr(1), hint));
  };
  for (const std::string_view other :
       {".png", ".svg", ".pdf", ".jpg", ".jpeg", ".obj", ".glb", ".json"}) {
    if (ending == other) {
      refuse(isPictureFile(file) ? "; --picture makes pictures" : "");
    }
  }
  const bool isDwg = lowerCaseExtension(plan) == ".dwg";
  if (ending == ".dwg" && !isDwg) {
    refuse("");
  }
  if (ending == ".dxf" && isDwg) {
    refuse("; 'quoin convert' makes a DXF file of a DWG drawing");
  }
}

/// Allows the names that drawings can be read with.
CLI::Validator knownCodePage() {
  return CLI::Validator(
      [](const std::string& name) {
        if (hostx::isKnownCodePage(os::fromUtf8(name).c_str())) {
          return std::string();
        }
        return fmt::format(
            "'{}' is no code page that is known; there are utf-8, gbk, big5, shift_jis, johab, "
            "euc-kr, koi8-r, macintosh, and those with a number: cp1252, ansi_936, dos850, "
            "iso8859-1",
            name);
      },
      "");
}

}  // namespace

CLI::Option* addRepeated(CLI::App& command, const std::string& names,
                         std::vector<std::string>& values, const std::string& what,
                         const std::string& type) {
  return command.add_option(names, values, what)
      ->type_name(type)
      ->take_all()
      ->expected(1)
      ->allow_extra_args(false);
}

void CommonOptions::declarePlans(CLI::App& command) {
  command
      .add_option("DRAWING", plans,
                  "Drawings to read (DXF or DWG, by content); - is the standard input")
      ->type_name("")
      ->required();
  command.add_option("--jobs", jobs, "How many drawings at a time; 0 for one a processor core")
      ->capture_default_str();
  command.add_option("--report", report, "text or json")
      ->check(oneOf({"text", "json"}))
      ->capture_default_str();
  command
      .add_option(
          "--code-page", codePage,
          "What DRAWING's text is written in, where it says nothing or is wrong: gbk, big5, "
          "shift_jis, cp1251, utf-8, ...")
      ->type_name("NAME")
      ->check(knownCodePage());
  CLI::Option* const quiet =
      command.add_flag("-q,--quiet", isQuiet, "Print errors and warnings alone");
  command.add_flag("-v,--verbose", isVerbose, "Name every change in the text report")
      ->excludes(quiet);
}

void CommonOptions::declarePicture(CLI::App& command, const std::string& what) {
  command.add_option("--picture", picture,
                     what +
                         " (.png, .svg or .pdf); of several drawings: a folder, or a name with "
                         "{name} in it");
}

CLI::Option* CommonOptions::declareOutput(CLI::App& command, const std::string& what) {
  m_writesDrawing = true;
  return command.add_option("-o,--output", output, what);
}

void CommonOptions::declareFiles(CLI::App& command) {
  declarePlans(command);
  declareOutput(
      command,
      "The drawing to write, in DRAWING's version and form; of several drawings: a folder, "
      "or a name with {name} in it; - is the standard output");
  CLI::Option* const inPlace = command.add_flag(
      "--in-place", isInPlace,
      "Write DRAWING itself; the old drawing stays beside it as .bak, .2.bak, ...");
  // A setting of the host, which keeps the old drawings.
  command
      .add_option_function<std::string>(
          "--backup-dir",
          [](const std::string& folder) { hostx::setBackupFolder(os::fromUtf8(folder)); },
          "Where --in-place keeps the old drawing instead")
      ->type_name("DIR")
      ->needs(inPlace);
  command.add_flag("--dry-run", isDryRun, "Report what would change and write no drawing");
  declarePicture(command, "Make a picture of the result");
  command
      .add_flag("--before-after", isBeforeAfter,
                "Draw into the picture what changed: old red, new green, the rest faint")
      ->needs(command.get_option("--picture"));
}

void CommonOptions::declareLayers(CLI::App& command, const std::string& what) {
  addRepeated(command, "--layer", layers, what, "GLOB");
}

void CommonOptions::declareInBlocks(CLI::App& command, const std::string& outcome) {
  command.add_flag(
      "--in-blocks", takesInside,
      "Lines that blocks and multilines show take part, as they stand in the plan; " + outcome);
}

bool CommonOptions::isResultFolder(const std::string& place) const {
  std::error_code ignored;
  return !place.empty() && !isStandardStream(place) && place.find(kNamePlace) == place.npos &&
         (isSeveral() || place.back() == '/' || std::filesystem::is_directory(place, ignored));
}

std::string CommonOptions::placeFor(const std::string& plan, const std::string& place,
                                    const std::string& ending) const {
  const std::filesystem::path file = isStandardStream(plan) ? "standard-input.dxf" : plan;
  if (isResultFolder(place)) {
    const std::string name =
        ending.empty() ? file.filename().string() : file.stem().string() + ending;
    return (std::filesystem::path(place) / name).string();
  }
  std::string named = place;
  for (std::size_t at = 0; (at = named.find(kNamePlace, at)) != named.npos;) {
    const std::string name = file.stem().string();
    named.replace(at, kNamePlace.size(), name);
    at += name.size();
  }
  return named;
}

void CommonOptions::checkPlaces() const {
  const auto refuse = [](const std::string& words) { throw CommandError(ExitCode::Usage, words); };
  if (isInPlace && !output.empty()) {
    refuse("--in-place and -o exclude each other");
  }
  if (m_writesDrawing && output.empty() && !isInPlace && !isDryRun) {
    refuse("say where the result goes: -o FILE, --in-place or --dry-run");
  }
  const bool readsStream = std::any_of(plans.begin(), plans.end(), isStandardStream);
  if (readsStream && isSeveral()) {
    refuse("the standard input is one drawing; it cannot be read beside others");
  }
  if (readsStream && isInPlace) {
    refuse("the standard input cannot be written in place; use -o");
  }
  if (isSeveral() && isStandardStream(output)) {
    refuse("the standard output takes one drawing; name a folder for several: -o FOLDER");
  }
  for (const std::string& place : {output, picture}) {
    std::error_code ignored;
    if (isSeveral() && isResultFolder(place) && !std::filesystem::is_directory(place, ignored) &&
        (std::filesystem::exists(place, ignored) || std::filesystem::path(place).has_extension())) {
      refuse(fmt::format("{} is one file for {} drawings; name a folder, or put {} into the name",
                         place, plans.size(), kNamePlace));
    }
  }
}

std::vector<DrawingJob> CommonOptions::drawingJobs() const {
  checkPlaces();
  std::vector<DrawingJob> made;
  std::map<std::string, std::string> planOf;    // by file, whatever its spelling
  std::map<std::string, std::string> writerOf;  // which drawing writes a file
  for (const std::string& plan : plans) {
    const auto [known, isNew] = planOf.emplace(fileKey(plan), plan);
    if (!isNew && isInPlace) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{} and {} are one file, which would be changed twice; "
                                     "nothing was done",
                                     known->second, plan));
    }
  }
  for (const std::string& plan : plans) {
    if (isBeforeAfter && isStandardStream(plan)) {
      throw CommandError(ExitCode::Usage,
                         "--before-after reads the drawing twice, which standard input does not "
                         "give; name a file");
    }
    DrawingJob job{plan,
                   isInPlace ? plan : placeFor(plan, output, resultEnding),
                   placeFor(plan, picture, ".png"),
                   isInPlace,
                   isDryRun,
                   isBeforeAfter};
    if (m_writesDrawing && resultEnding.empty() && !isInPlace) {
      checkDrawingName(plan, job.output);
    }
    for (const std::string& file : {isInPlace ? std::string() : job.output, job.picture}) {
      if (file.empty() || isStandardStream(file)) {
        continue;
      }
      if (planOf.count(fileKey(file))) {
        throw CommandError(ExitCode::Usage,
                           file + " is a drawing that is read; use --in-place to replace it");
      }
      const auto [writer, isNew] = writerOf.emplace(fileKey(file), plan);
      if (!isNew) {
        throw CommandError(ExitCode::Usage,
                           fmt::format("{} and {} would both be written to {}; nothing was done",
                                       writer->second, plan, file));
      }
    }
    if (!job.picture.empty() && !isPictureFile(job.picture)) {
      throw CommandError(ExitCode::Usage, job.picture + ": pictures end in .png, .svg or .pdf");
    }
    made.push_back(std::move(job));
  }
  return made;
}

std::string CommonOptions::tableOf(const DrawingJob& job, const std::string& place,
                                   const std::string& ending) const {
  if (isResultFolder(place)) {
    makeFolder(place);
  }
  return place.empty() ? place : placeFor(job.input, place, ending);
}

void CommonOptions::checkTables(const std::vector<std::string>& places) const {
  std::set<std::string> taken;
  for (const std::string& plan : plans) {
    taken.insert(fileKey(plan));
  }
  for (const DrawingJob& job : drawingJobs()) {
    for (const std::string& file : {job.output, job.picture}) {
      if (!file.empty() && !isStandardStream(file)) {
        taken.insert(fileKey(file));
      }
    }
  }
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::error_code ignored;
    const bool isFile = isSeveral() && isResultFolder(places[i]) &&
                        !std::filesystem::is_directory(places[i], ignored) &&
                        (std::filesystem::exists(places[i], ignored) ||
                         std::filesystem::path(places[i]).has_extension());
    if (isFile) {
      throw CommandError(ExitCode::Usage,
                         fmt::format("{} is one file for {} drawings; name a folder, or put {} "
                                     "into the name",
                                     places[i], plans.size(), kNamePlace));
    }
    for (const std::string& plan : plans) {
      if (places[i].empty()) {
        continue;
      }
      // Tables of several kinds in one folder differ by their ending.
      const std::string file = placeFor(plan, places[i], fmt::format(".table{}", i));
      if (isStandardStream(file) || !taken.insert(fileKey(file)).second) {
        throw CommandError(ExitCode::Usage,
                           fmt::format("{}: a table needs a file of its own for every drawing: "
                                       "name a folder, or put {} into the name",
                                       file, kNamePlace));
      }
    }
  }
}

void CommonOptions::makeFolders() const {
  if (isResultFolder(output) && !isDryRun) {
    makeFolder(output);
  }
  if (isResultFolder(picture)) {
    makeFolder(picture);
  }
}

std::size_t CommonOptions::jobCount() const {
  return jobs > 0 ? jobs : std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
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

}  // namespace quoin::commands
