// quoin survey: the whole chain on a plan: cleaned, its walls found, rooms, schedule, pictures,
// model, and a page that shows them.
#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <set>
#include <utility>

#include "commands/CleanSources.h"
#include "commands/Cleaning.h"
#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/FloorSlabs.h"
#include "commands/OutputFile.h"
#include "commands/PlanReading.h"
#include "commands/PlannedWalls.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "commands/RoomOutputs.h"
#include "commands/SolidPicture.h"
#include "commands/SurveyPage.h"
#include "commands/SurveySchedule.h"
#include "commands/Units.h"
#include "commands/WallBodies.h"
#include "commands/WallCuts.h"
#include "commands/WallModel.h"
#include "commands/WallsOutputs.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/Render.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

constexpr const char* kPage = "index.html";

/// The files of one drawing's survey, in the order in which they are written: the page last, when
/// all that it shows is there.
struct SurveyFiles {
  std::filesystem::path cleaned, surveyed, walls, rooms, solid, model, schedule, roomTable,
      roomShapes, report, page;

  explicit SurveyFiles(const DrawingJob& job, const std::string& drawingEnding) {
    const std::filesystem::path folder = std::filesystem::path(job.output).parent_path();
    const std::string name = nameOf(job);
    cleaned = folder / (name + "-clean" + drawingEnding);
    surveyed = folder / (name + "-survey" + drawingEnding);
    walls = folder / "walls.svg";
    rooms = folder / "rooms.svg";
    solid = folder / "model.svg";
    model = folder / "model.glb";
    schedule = folder / "schedule.csv";
    roomTable = folder / "rooms.csv";
    roomShapes = folder / "rooms.geojson";
    report = folder / "report.json";
    page = job.output;
  }

  static std::string nameOf(const DrawingJob& job) {
    return job.input == kStandardStream ? "standard-input"
                                        : std::filesystem::path(job.input).stem().string();
  }
  std::vector<std::pair<const std::filesystem::path*, const char*>> all() const {
    return {{&cleaned, "the drawing, cleaned"},
            {&surveyed, "the drawing with walls, openings and rooms"},
            {&walls, "picture of the walls"},
            {&rooms, "picture of the rooms"},
            {&solid, "picture of the model"},
            {&model, "the model, binary glTF in metres"},
            {&schedule, "schedule of walls, openings and rooms"},
            {&roomTable, "the rooms with all that is known of them"},
            {&roomShapes, "the rooms' polygons in the drawing's coordinates"},
            {&report, "all of it with every digit"},
            {&page, "this page"}};
  }
};

/// What one drawing's survey found.
struct Survey {
  Capture capture;
  std::array<std::size_t, plan::kCleanSteps> cleaned{};
  std::size_t undecided = 0;
  ReadPlan read;
  plan::FoundWalls found;
  RoomPlan rooms;
  SurveySchedule schedule;
  Picture wallsShown;
  Picture roomsShown;
  Picture modelShown;
  std::string wallsSvg;  // the files' bytes
  std::string roomsSvg;
  std::string modelSvg;

  // What stands for them in the drawing.
  std::vector<std::string> wallHandles;
  std::vector<std::string> columnHandles;
  std::vector<std::string> openingHandles;
  std::vector<RoomEntities> roomEntities;
  std::vector<AcDbObjectId> added;  // the walls, then all else

  Model model;
  WallCuts cuts;

  std::size_t count(plan::OpeningKind kind) const {
    return static_cast<std::size_t>(
        std::count_if(found.plan.openings.begin(), found.plan.openings.end(),
                      [&](const plan::Opening& opening) { return opening.kind == kind; }));
  }
};

class SurveyCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "survey", "Clean a plan, find its walls and rooms, and show all of it on a page");
    m_options.declarePlans(*command);
    m_options
        .declareOutput(*command,
                       "The folder to write to, made where it is not there; of several drawings: "
                       "the folder of a folder for each, or a name with {name} in it")
        ->type_name("FOLDER")
        ->required();
    // The results are several files of their own names.
    m_options.resultEnding = ".html";
    m_options.declareLayers(
        *command,
        "Layers with the walls' faces, * and ? allowed; may be repeated. "
        "Default: layers whose name has a word for wall (wall, mur, muro, Wand, 墙, ...)");
    m_options.declareScale(*command);
    m_reading.declare(*command);
    command->add_option("--height", m_height, "Height of the walls in the model")
        ->type_name("LENGTH")
        ->check(CLI::Validator(
            [](const std::string& text) {
              return parseLength(text)
                         ? ""
                         : "'" + text + "' is no length above zero; write 2800mm, 9ft or 2.8m";
            },
            "", ""))
        ->capture_default_str();
    command->footer(
        "Writes to FOLDER: index.html, a page with pictures and tables that needs no other file;\n"
        "NAME-clean and NAME-survey, the drawing cleaned and with walls, openings and rooms on\n"
        "layers of their own; walls.svg, rooms.svg, model.svg; model.glb; schedule.csv, "
        "rooms.csv,\n"
        "rooms.geojson, report.json. What is done is that of 'quoin clean', 'walls', 'rooms' and\n"
        "'solid' with their defaults; --tolerance is the distance at which ends snap, too.\n\n"
        "Examples:\n"
        "  quoin survey plan.dxf -o survey\n"
        "  quoin survey plan.dxf --layer 'A-WALL*' --max-width 400mm --height 3m -o survey");
    return command;
  }

  std::string name() const override { return "survey"; }

  /// The page stands for the folder.
  void run() override {
    const bool isNamed = m_options.output.find("{name}") != std::string::npos;
    if (m_options.output == kStandardStream || m_options.output.empty()) {
      throw CommandError(ExitCode::Usage, "a survey is a folder of files; name it: -o FOLDER");
    }
    std::filesystem::path folder = m_options.output;
    if (m_options.plans.size() > 1 && !isNamed) {
      folder /= "{name}";
    }
    m_options.output = (folder / kPage).string();
    DrawingCommand::run();
  }

  void prepare() override {
    const std::vector<DrawingJob> jobs = m_options.drawingJobs();
    std::set<std::filesystem::path> read;
    std::error_code ignored;
    for (const DrawingJob& job : jobs) {
      read.insert(std::filesystem::weakly_canonical(job.input, ignored));
    }
    for (const DrawingJob& job : jobs) {
      for (const char* ending : {".dxf", ".dwg"}) {
        const SurveyFiles files(job, ending);
        for (const auto& [file, what] : files.all()) {
          if (read.count(std::filesystem::weakly_canonical(*file, ignored)) > 0) {
            throw CommandError(ExitCode::Usage,
                               file->string() + " is a drawing that is read; name another folder");
          }
        }
      }
    }
    for (const DrawingJob& job : jobs) {
      makeFolder(std::filesystem::path(job.output).parent_path());
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const SurveyFiles files(job, drawing.info().format == L"DWG" ? ".dwg" : ".dxf");
    const std::set<std::wstring> layers = chooseFaceLayers(drawing, m_options.layers);
    warnOfEarlier(drawing, report);
    Survey survey;
    clean(drawing, layers, survey);
    survey.capture = setCapture(m_options.capture, drawing);
    find(drawing, layers, survey);
    warnOfUnits(m_options.capture, drawing, survey.read.found.lines, report);
    drawing.saveAs(files.cleaned, false);
    append(drawing, survey);
    build(drawing, survey);
    drawing.saveAs(files.surveyed, false);
    survey.modelShown = modelPicture(drawing, survey);
    survey.wallsSvg = writePicture(survey.wallsShown, files.walls);
    survey.roomsSvg = writePicture(survey.roomsShown, files.rooms);
    survey.modelSvg = writePicture(survey.modelShown, files.solid);
    writeModel(survey.model,
               {drawing.millimetersPerUnit() / kMillimetersPerMeter, true, AcDb::kUnitsMeters},
               files.model);
    for (const Picture* picture : {&survey.wallsShown, &survey.roomsShown}) {
      for (const std::string& warning : picture->warnings) {
        warnOnce("picture: " + warning, report);
      }
    }
    Progress::checkInterrupt();
    const char* const action = "write the table";
    writeWholeFile(scheduleCsv(drawing, survey.schedule, survey.rooms), files.schedule, action);
    writeWholeFile(roomsCsv(drawing, survey.rooms), files.roomTable, action);
    writeWholeFile(roomsGeoJson(drawing, survey.rooms), files.roomShapes, action);
    writeWholeFile(reportText(drawing, survey, report), files.report, "write the report");
    Progress::checkInterrupt();
    writeWholeFile(surveyHtml(pageOf(drawing, job, files, survey, report)), files.page,
                   "write the page");
    tell(drawing, files, survey, report);
    tellLeftOut(drawing, survey.read.found, false, report);
    if (report.isJson()) {
      addJson(drawing, files, survey, report.json);
    }
  }

 private:
  static void warnOnce(const std::string& sentence, Report& report) {
    const std::vector<std::string>& known = report.warnings();
    if (std::find(known.begin(), known.end(), sentence) == known.end()) {
      report.warn(sentence);
    }
  }

  /// What an earlier survey left in the drawing stays.
  static void warnOfEarlier(Drawing& drawing, Report& report) {
    for (const LayerContent& layer : drawing.layers()) {
      for (const char* own : {kWallLayer, kOpeningLayer, kRoomLayer}) {
        if (layer.name == os::fromUtf8(own) && layer.count() > 0) {
          report.warn(fmt::format("{} holds {} already; what is found now comes beside", own,
                                  countText(layer.count(), "entity", "entities")));
        }
      }
    }
  }

  void clean(Drawing& drawing, const std::set<std::wstring>& layers, Survey& survey) const {
    CaptureOptions capture = m_options.capture;
    if (capture.isDefault()) {
      capture.tolerance = kCleanSnap;
    }
    const double distance = setCapture(capture, drawing).distance;
    plan::CleanOptions options = defaultCleanOptions(drawing);
    options.snap =
        capture.tolerance.empty() ? distance : parseLength(capture.tolerance)->inUnitsOf(drawing);
    const CleanSources sources = collectCleanSources(drawing, layers, options.removesDuplicates);
    const std::vector<CleanedLevel> levels = cleanLevels(sources, options);
    survey.cleaned = cleanCounts(sources, levels);
    survey.undecided = undecidedCount(levels);
    applyCleaning(drawing, sources, levels);
    markUndecided(drawing, levels, options, kMarkLayer);
  }

  /// Changes nothing in the drawing.
  void find(Drawing& drawing, const std::set<std::wstring>& layers, Survey& survey) const {
    const plan::FindWallsOptions options = m_reading.inUnitsOf(drawing);
    FoundPlan found = findPlanWalls(drawing, layers, options);
    survey.read = std::move(found.read);
    survey.found = std::move(found.found);
    if (survey.found.plan.walls.empty()) {
      throw CommandError(
          ExitCode::NothingToDo,
          fmt::format("{}: no wall among {} on {}: no two faces run side by side at {} to {} {}; "
                      "--min-width and --max-width set the widths, --layer the layers",
                      drawing.file().string(), countText(survey.read.drawing.lines.size(), "line"),
                      namesText(layers), numberText(options.minWidth), numberText(options.maxWidth),
                      drawing.unitName()));
    }
    survey.rooms.walls = survey.found.plan;
    for (const plan::PlanOutline& column : survey.found.columns) {
      survey.rooms.columns.push_back({column, {}});
    }
    findRooms(drawing, roomOptions(drawing, survey.capture.distance), kRoomLayer, survey.rooms);
    survey.schedule = makeSchedule(drawing, survey.read, survey.found);
    survey.wallsShown = wallsPicture(drawing, survey.read, survey.found);
    survey.roomsShown =
        roomsPicture(drawing, survey.rooms, survey.capture.distance, roomsText(drawing, survey));
  }

  static void append(Drawing& drawing, Survey& survey) {
    const std::size_t before = drawing.entities(drawing.modelSpaceId()).size();
    makeLayer(drawing, kWallLayer, kWallColor);
    makeLayer(drawing, kOpeningLayer, kOpeningColor);
    for (const plan::Wall& wall : survey.found.plan.walls) {
      survey.wallHandles.push_back(appendWall(drawing, wall, kWallLayer));
    }
    for (const plan::Opening& opening : survey.found.plan.openings) {
      survey.openingHandles.push_back(
          appendOpening(drawing, survey.found.plan, opening, kOpeningLayer));
    }
    if (!survey.found.columns.empty()) {
      makeLayer(drawing, kColumnLayer, kColumnColor);
    }
    for (const plan::PlanOutline& column : survey.found.columns) {
      survey.columnHandles.push_back(appendOutline(drawing, column, kColumnLayer));
    }
    if (!survey.rooms.found.rooms.empty()) {
      survey.roomEntities = appendRooms(drawing, survey.rooms, kRoomLayer);
    }
    const std::vector<AcDbObjectId> all = drawing.entities(drawing.modelSpaceId());
    survey.added.assign(all.begin() + static_cast<std::ptrdiff_t>(before), all.end());
  }

  void build(Drawing& drawing, Survey& survey) const {
    const double unit = 1.0 / drawing.millimetersPerUnit();
    const double height = parseLength(m_height)->inUnitsOf(drawing);
    const std::vector<plan::Wall>& found = survey.found.plan.walls;
    std::vector<BodyWall> walls;
    walls.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
      WallLine line;
      line.start = {found[i].start.x, found[i].start.y, 0.0};
      line.end = {found[i].end.x, found[i].end.y, 0.0};
      line.entity = survey.added[i];
      line.segment = WallLine::kWholeEntity;
      walls.push_back({line, {found[i].left, found[i].right}});
    }
    Progress::during("Building the model", [&] {
      const auto ends = prepareWalls(walls, survey.capture.distance);
      for (std::size_t i = 0; i < walls.size(); ++i) {
        survey.model.walls.push_back(makePrism(walls[i], ends[i], height));
        // A mesh a layer: the layers that the plan has tell more than the one of what was found.
        const std::string layer = faceLayer(survey.read, survey.found.faces[i]);
        if (!layer.empty()) {
          survey.model.walls.back().layer = layer;
        }
      }
      FoundOpenings openings;
      openings.openings = survey.found.plan.openings;
      openings.entities.assign(survey.added.begin() + static_cast<std::ptrdiff_t>(found.size()),
                               survey.added.begin() + static_cast<std::ptrdiff_t>(
                                                          found.size() + openings.openings.size()));
      survey.cuts = cutOpenings(survey.model.walls, openings,
                                {kWindowSill * unit, kOpeningHead * unit, kOpeningHead * unit},
                                survey.capture.distance);
    });
    if (!survey.roomEntities.empty()) {
      const std::set<AcDbObjectId> own(survey.added.begin(), survey.added.end());
      for (FloorSlab& slab :
           collectSlabs(drawing, {os::fromUtf8(kRoomLayer)}, kSlabThickness * unit).slabs) {
        if (own.count(slab.source) > 0) {
          survey.model.slabs.push_back(std::move(slab));
        }
      }
    }
    survey.model.materials = materialsOf(drawing, survey.model);
    Progress::checkInterrupt();
  }

  /// Returns the file's bytes.
  static std::string writePicture(const Picture& picture, const std::filesystem::path& file) {
    std::string bytes = pictureBytes(picture, file);
    writeWholeFile(bytes, file, "write the picture");
    return bytes;
  }

  static Picture modelPicture(const Drawing& drawing, const Survey& survey) {
    Picture picture =
        newPicture(drawing, "walls as bodies",
                   fmt::format("{}, {} cut out, {}", countText(survey.model.walls.size(), "wall"),
                               countText(survey.cuts.cuts.size(), "opening"),
                               countText(survey.model.slabs.size(), "floor slab")));
    addBodies(picture, survey.model);
    return picture;
  }

  static double netArea(const Drawing& drawing, const Survey& survey) {
    double area = 0.0;
    for (const plan::Room& room : survey.rooms.found.rooms) {
      area += squareMeters(drawing, room.netArea);
    }
    return area;
  }
  static std::string roomsText(const Drawing& drawing, const Survey& survey) {
    return fmt::format("{}, {:.2f} m\u00B2 net", countText(survey.rooms.found.rooms.size(), "room"),
                       netArea(drawing, survey));
  }
  static std::string openingsText(const Survey& survey) {
    return fmt::format("{} ({}, {})", countText(survey.found.plan.openings.size(), "opening"),
                       countText(survey.count(plan::OpeningKind::Door), "door"),
                       countText(survey.count(plan::OpeningKind::Window), "window"));
  }
  /// "28 duplicates removed, 104 ends snapped".
  static std::string cleanedText(const Survey& survey) {
    std::string text;
    for (std::size_t step = 0; step < survey.cleaned.size(); ++step) {
      if (survey.cleaned[step] > 0) {
        text += fmt::format("{}{} {}", text.empty() ? "" : ", ", survey.cleaned[step],
                            wordsOf(static_cast<plan::CleanStep>(step)).told);
      }
    }
    return text.empty() ? "nothing to clean" : text;
  }

  static void tell(const Drawing& drawing, const SurveyFiles& files, const Survey& survey,
                   Report& report) {
    report.line("layers: {}", namesText(survey.read.layers));
    report.line("ends closer than {} meet", captureText(survey.capture, drawing));
    report.line("{}", cleanedText(survey));
    if (survey.undecided > 0) {
      report.line("{} undecided, marked on {}", countText(survey.undecided, "place"), kMarkLayer);
    }
    report.line("{} of {}, {:.2f} m long, with {}",
                countText(survey.found.plan.walls.size(), "wall"),
                countText(survey.read.drawing.lines.size(), "line"),
                meters(drawing, lengthOf(survey.found.plan)), openingsText(survey));
    report.line("{}", roomsText(drawing, survey));
    report.line("{} left over", countText(survey.found.leftOver.size(), "line"));
    const auto all = files.all();
    report.line("{} in {}:", countText(all.size(), "file"), folderText(files));
    for (const auto& [file, what] : all) {
      report.line("  {}", file->filename().string());
    }
  }

  static std::string folderText(const SurveyFiles& files) {
    const std::filesystem::path folder = files.page.parent_path();
    return folder.empty() ? "." : folder.string();
  }

  static nlohmann::json countsJson(const Survey& survey) {
    return {{"walls", survey.found.plan.walls.size()},
            {"openings", survey.found.plan.openings.size()},
            {"doors", survey.count(plan::OpeningKind::Door)},
            {"windows", survey.count(plan::OpeningKind::Window)},
            {"columns", survey.found.columns.size()},
            {"rooms", survey.rooms.found.rooms.size()},
            {"leftOver", survey.found.leftOver.size()},
            {"undecided", survey.undecided},
            {"cut", survey.cuts.cuts.size()},
            {"slabs", survey.model.slabs.size()}};
  }
  static nlohmann::json cleanedJson(const Survey& survey) {
    nlohmann::json json = nlohmann::json::object();
    for (std::size_t step = 0; step < survey.cleaned.size(); ++step) {
      json[wordsOf(static_cast<plan::CleanStep>(step)).name] = survey.cleaned[step];
    }
    return json;
  }

  void addJson(const Drawing& drawing, const SurveyFiles& files, const Survey& survey,
               nlohmann::json& report) const {
    report.update({{"capture", captureJson(survey.capture)},
                   {"layers", namesJson(survey.read.layers)},
                   {"lines", survey.read.drawing.lines.size()},
                   {"height", parseLength(m_height)->inUnitsOf(drawing)},
                   {"folder", folderText(files)},
                   {"files", nlohmann::json::array()},
                   {"cleaned", cleanedJson(survey)},
                   {"counts", countsJson(survey)},
                   {"wallLength", meters(drawing, lengthOf(survey.found.plan))},
                   {"netArea", netArea(drawing, survey)}});
    for (const auto& [file, what] : files.all()) {
      report["files"].push_back(file->filename().string());
    }
    addLeftOut(drawing, survey.read.found, report);
  }

  /// The file's text; of names of folders it has those in warnings alone.
  std::string reportText(const Drawing& drawing, const Survey& survey, const Report& report) const {
    nlohmann::json json;
    // The openings are those of the walls, with their handles.
    addRooms(drawing, survey.rooms, survey.roomEntities, {}, json);
    addFoundWalls(drawing, survey.read, survey.found,
                  {survey.wallHandles, survey.openingHandles, survey.columnHandles}, json);
    json.update({{"drawing", drawing.file().filename().string()},
                 {"units", drawing.unitName()},
                 {"capture", captureJson(survey.capture)},
                 {"layers", namesJson(survey.read.layers)},
                 {"lines", survey.read.drawing.lines.size()},
                 {"height", parseLength(m_height)->inUnitsOf(drawing)},
                 {"cleaned", cleanedJson(survey)},
                 {"counts", countsJson(survey)},
                 {"wallLength", meters(drawing, lengthOf(survey.found.plan))},
                 {"netArea", netArea(drawing, survey)},
                 {"warnings", report.warnings()}});
    addLeftOut(drawing, survey.read.found, json);
    return json.dump(1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
  }

  static SurveyPage::Table roomTable(const Drawing& drawing, const Survey& survey) {
    SurveyPage::Table table{{"Number", "Name", "Net m\u00B2", "Stated m\u00B2", "Gross m\u00B2",
                             "Perimeter m", "Doors"},
                            {},
                            {},
                            2};
    double gross = 0.0;
    for (const plan::Room& room : survey.rooms.found.rooms) {
      gross += squareMeters(drawing, room.grossArea);
      table.rows.push_back({room.number, room.name,
                            fmt::format("{:.2f}", squareMeters(drawing, room.netArea)),
                            room.statedArea ? fmt::format("{:.2f}", *room.statedArea) : "",
                            fmt::format("{:.2f}", squareMeters(drawing, room.grossArea)),
                            fmt::format("{:.2f}", meters(drawing, room.perimeter)),
                            std::to_string(room.ways.size())});
    }
    table.foot = {"",
                  countText(survey.rooms.found.rooms.size(), "room"),
                  fmt::format("{:.2f}", netArea(drawing, survey)),
                  "",
                  fmt::format("{:.2f}", gross),
                  "",
                  ""};
    return table;
  }

  static SurveyPage::Table wallTable(const Survey& survey) {
    SurveyPage::Table table{
        {"Layer", "Width mm", "Walls", "Length m", "Area in plan m\u00B2"}, {}, {}, 1};
    std::size_t count = 0;
    double length = 0.0;
    double area = 0.0;
    for (const SurveySchedule::WallRow& row : survey.schedule.walls) {
      table.rows.push_back({row.layer, std::to_string(row.width), std::to_string(row.count),
                            fmt::format("{:.2f}", row.length), fmt::format("{:.2f}", row.area)});
      count += row.count;
      length += row.length;
      area += row.area;
    }
    table.foot = {"all", "", std::to_string(count), fmt::format("{:.2f}", length),
                  fmt::format("{:.2f}", area)};
    return table;
  }

  static SurveyPage::Table openingTable(const Survey& survey) {
    SurveyPage::Table table{{"Kind", "Width mm", "Openings"}, {}, {}, 1};
    for (const SurveySchedule::OpeningRow& row : survey.schedule.openings) {
      table.rows.push_back(
          {plan::nameOf(row.kind), std::to_string(row.width), std::to_string(row.count)});
    }
    table.foot = {"all", "", std::to_string(survey.found.plan.openings.size())};
    return table;
  }

  /// For the page: as SVG where that is small, else with a size that is bounded.
  static SurveyPage::Picture embedded(const Picture& picture, const std::string& svg,
                                      const std::string& alt) {
    constexpr std::size_t kMostSvgBytes = 1U << 20U;
    return svg.size() <= kMostSvgBytes
               ? SurveyPage::Picture{"image/svg+xml", svg, alt}
               : SurveyPage::Picture{"image/png", pictureBytes(picture, "page.png"), alt};
  }

  SurveyPage pageOf(const Drawing& drawing, const DrawingJob& job, const SurveyFiles& files,
                    const Survey& survey, const Report& report) const {
    SurveyPage page;
    page.title = job.input == kStandardStream
                     ? SurveyFiles::nameOf(job)
                     : std::filesystem::path(job.input).filename().string();
    page.subtitle = fmt::format("Survey of the walls on {}", namesText(survey.read.layers));
    page.figures = {
        {std::to_string(survey.rooms.found.rooms.size()), "rooms"},
        {fmt::format("{:.1f} m\u00B2", netArea(drawing, survey)), "net area"},
        {std::to_string(survey.found.plan.walls.size()), "walls"},
        {fmt::format("{:.1f} m", meters(drawing, lengthOf(survey.found.plan))), "of wall"},
        {std::to_string(survey.count(plan::OpeningKind::Door)), "doors"},
        {std::to_string(survey.count(plan::OpeningKind::Window)), "windows"}};
    page.sections.push_back(
        {"Rooms",
         {embedded(survey.roomsShown, survey.roomsSvg, "The rooms of " + page.title)},
         {roomTable(drawing, survey)},
         {},
         {}});
    page.sections.push_back(
        {"Walls",
         {embedded(survey.wallsShown, survey.wallsSvg, "The walls of " + page.title)},
         {wallTable(survey)},
         {},
         {}});
    page.sections.push_back({"Openings", {}, {openingTable(survey)}, {}, {}});
    page.sections.push_back({"Model",
                             {embedded(survey.modelShown, survey.modelSvg,
                                       "The walls of " + page.title + " as bodies")},
                             {},
                             {fmt::format("Walls {} high with {} of {} cut out, and {}.", m_height,
                                          survey.cuts.cuts.size(),
                                          countText(survey.found.plan.openings.size(), "opening"),
                                          countText(survey.model.slabs.size(), "floor slab"))},
                             {}});
    page.sections.push_back(leftSection(drawing, survey, report));
    page.sections.push_back({"Files", {}, {}, {}, {}});
    for (const auto& [file, what] : files.all()) {
      page.sections.back().items.push_back(fmt::format("{}: {}", file->filename().string(), what));
    }
    return page;
  }

  static SurveyPage::Section leftSection(const Drawing& drawing, const Survey& survey,
                                         const Report& report) {
    SurveyPage::Section section{"Cleaned, and left over", {}, {}, {}, {}};
    section.sentences.push_back(fmt::format("Lines of the walls: {}.", cleanedText(survey)));
    if (survey.undecided > 0) {
      section.items.push_back(
          fmt::format("{} that cleaning could not decide, circled on the layer {}",
                      countText(survey.undecided, "place"), kMarkLayer));
    }
    section.items.push_back(
        fmt::format("{} of {} on these layers are part of no wall, opening or column",
                    survey.found.leftOver.size(), survey.read.drawing.lines.size()));
    if (!survey.rooms.found.slivers.empty()) {
      section.items.push_back(fmt::format("{} too small or too narrow for a room",
                                          countText(survey.rooms.found.slivers.size(), "space")));
    }
    if (!survey.cuts.leftOut.empty()) {
      section.items.push_back(fmt::format("{} not cut out of the model",
                                          countText(survey.cuts.leftOut.size(), "opening")));
    }
    for (const SkippedEntity& entity : survey.read.found.skipped) {
      section.items.push_back(
          fmt::format("left out: {} {}", describe(drawing, entity.entity), entity.reason));
    }
    if (!survey.read.found.countOfKind.empty()) {
      section.items.push_back("other entities on these layers: " +
                              kindsText(survey.read.found.countOfKind));
    }
    for (const std::string& warning : report.warnings()) {
      section.items.push_back("warning: " + warning);
    }
    return section;
  }

  ReadingOptions m_reading;
  std::string m_height = "2800mm";
};

}  // namespace

std::unique_ptr<Command> makeSurveyCommand() {
  return std::make_unique<SurveyCommand>();
}

}  // namespace quoin::commands
