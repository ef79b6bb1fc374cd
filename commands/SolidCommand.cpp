// quoin solid: builds walls given by reference lines and widths as closed prisms.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "commands/CommandError.h"
#include "commands/DrawingCommand.h"
#include "commands/ReferenceWalls.h"
#include "commands/ReportFields.h"
#include "commands/WallBodies.h"
#include "commands/WallModel.h"
#include "commands/Words.h"
#include "commands/picture/PictureParts.h"
#include "commands/picture/PlanShapes.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

class SolidCommand : public DrawingCommand {
 public:
  CLI::App* declare(CLI::App& app) override {
    CLI::App* const command = app.add_subcommand(
        "solid", "Build walls given by reference lines and widths as closed prisms (DXF or OBJ)");
    m_options.declarePlans(*command);
    m_options
        .declareOutput(*command,
                       "The model to write: .obj (Wavefront, a group a wall) or .dxf (3DFACE "
                       "entities, a layer a wall layer); of several drawings: a folder, or a name "
                       "with {name} in it")
        ->required();
    m_options.resultEnding = ".obj";
    command->add_option("--height", m_height, "Height of the walls, drawing units")->required();
    m_options.declarePicture(*command, "Make a picture of the bodies, seen from above at an angle");
    declareReferenceWalls(*command, m_options, m_widths);
    command->footer(
        "Walls stand on their reference lines' height. Bodies are closed; those of walls that\n"
        "meet share the faces' middle points.\n\n"
        "Example:\n"
        "  quoin solid axes.dxf --layer WALL-AXIS --left 120 --right 120 --height 2800 \\\n"
        "        -o model.obj --picture model.png");
    return command;
  }

  std::string name() const override { return "solid"; }
  void prepare() override {
    if (!(m_height > 0.0) || !std::isfinite(m_height)) {
      throw CommandError(ExitCode::Usage, fmt::format("--height {} builds no wall", m_height));
    }
    for (const DrawingJob& job : m_options.drawingJobs()) {
      if (!isModelFile(job.output)) {
        throw CommandError(ExitCode::Usage, job.output + ": models end in .dxf or .obj");
      }
    }
  }

  void work(Drawing& drawing, const DrawingJob& job, Report& report) override {
    const ReferenceWalls reference = collectReferenceWalls(drawing, m_options, m_widths);
    const std::vector<BodyWall>& walls = reference.walls;
    const Capture& capture = reference.capture;
    const std::vector<PrepareFrom2dTo3dData> ends = prepareWalls(walls, capture.distance);
    std::vector<WallPrism> prisms;
    for (std::size_t i = 0; i < walls.size(); ++i) {
      prisms.push_back(makePrism(walls[i], ends[i], m_height));
    }
    writeModel(prisms, job.output);
    if (job.hasPicture()) {
      job.render(paint(drawing, prisms), report);
    }
    tell(drawing, capture, ends, prisms, report);
    tellReferenceWalls(drawing, m_options, reference, report);
    if (report.isJson()) {
      addJson(drawing, reference, ends, report.json);
    }
  }

 private:
  static std::size_t freeEnds(const std::vector<PrepareFrom2dTo3dData>& ends) {
    std::size_t count = 0;
    for (const PrepareFrom2dTo3dData& end : ends) {
      count += (end.bHasStartWall ? 1U : 0U) + (end.bHasEndWall ? 1U : 0U);
    }
    return count;
  }

  /// Bodies seen from above at an angle: the faces that look at the viewer, far ones first.
  /// Ceilings come last, since all are at one height and nothing stands above them.
  Picture paint(const Drawing& drawing, const std::vector<WallPrism>& prisms) const {
    Picture picture =
        newPicture(drawing, "walls as bodies",
                   fmt::format("{}, {} {} high", countText(prisms.size(), "closed prism"),
                               numberText(m_height), drawing.unitName()));
    struct SeenFace {
      WallPrism::Face face;
      bool isCeiling;
      double depth;
    };
    std::vector<SeenFace> seen;
    for (const WallPrism& prism : prisms) {
      const std::vector<WallPrism::Face> faces = prism.faces();
      for (std::size_t i = 0; i < faces.size(); ++i) {
        if (!prism.isHiddenInJoint(i) && areaOnSheet(faces[i]) > 0.0) {
          const AcGeVector3d normal =
              (faces[i][1] - faces[i][0]).crossProduct(faces[i][3] - faces[i][0]);
          seen.push_back({faces[i], normal.x == 0.0 && normal.y == 0.0, depthOf(faces[i])});
        }
      }
    }
    std::stable_sort(seen.begin(), seen.end(), [](const SeenFace& a, const SeenFace& b) {
      return a.isCeiling != b.isCeiling ? b.isCeiling : a.depth > b.depth;
    });
    for (const SeenFace& part : seen) {
      Path path;
      for (const AcGePoint3d& corner : part.face) {
        path.points.push_back(onSheet(corner));
      }
      path.isClosed = true;
      path.isFilled = true;
      path.fill = shadeOf(part.face);
      path.color = part.isCeiling ? path.fill : palette::kWall;
      path.width = 0.8;
      picture.paths.push_back(std::move(path));
    }
    addCeilingEdges(picture, prisms);
    return picture;
  }

  /// The ceilings' long and end edges, without the line between their halves.
  static void addCeilingEdges(Picture& picture, const std::vector<WallPrism>& prisms) {
    for (const WallPrism& prism : prisms) {
      const AcGeVector3d up(0.0, 0.0, prism.height);
      for (const auto& [from, to] : {std::pair(prism.startLeft, prism.endLeft),
                                     std::pair(prism.startRight, prism.endRight)}) {
        Path path;
        path.points = {onSheet(from + up), onSheet(to + up)};
        path.color = palette::kWall;
        picture.paths.push_back(std::move(path));
      }
    }
  }

  // A parallel view: depth runs up the page, shortened and to the side, heights nearly keep
  // their length.
  static constexpr double kDepthUp = 0.62;
  static constexpr double kDepthAcross = 0.28;
  static constexpr double kHeightUp = 0.75;

  static AcGePoint2d onSheet(const AcGePoint3d& point) {
    return {point.x + kDepthAcross * point.y, kDepthUp * point.y + kHeightUp * point.z};
  }
  /// Twice the area on the sheet, positive for a face that looks at the viewer.
  static double areaOnSheet(const WallPrism::Face& face) {
    double area = 0.0;
    for (std::size_t i = 0; i < face.size(); ++i) {
      const AcGePoint2d a = onSheet(face[i]);
      const AcGePoint2d b = onSheet(face[(i + 1) % face.size()]);
      area += a.x * b.y - b.x * a.y;
    }
    return area;
  }
  /// Along the direction that the view flattens, away from the viewer.
  static double depthOf(const WallPrism::Face& face) {
    const AcGeVector3d away(-kDepthAcross, 1.0, -kDepthUp / kHeightUp);
    double sum = 0.0;
    for (const AcGePoint3d& corner : face) {
      sum += corner.asVector().dotProduct(away);
    }
    return sum;
  }

  /// Faces are lighter the more they look up, and a little darker the more they look right.
  static Color shadeOf(const WallPrism::Face& face) {
    const AcGeVector3d normal = (face[1] - face[0]).crossProduct(face[2] - face[0]).normal();
    const double light = 0.72 + 0.22 * std::max(0.0, normal.z) - 0.10 * normal.x;
    const double shade = std::clamp(light, 0.45, 0.97);
    return {shade, shade * 0.985, shade * 0.95};
  }

  void tell(const Drawing& drawing, const Capture& capture,
            const std::vector<PrepareFrom2dTo3dData>& ends, const std::vector<WallPrism>& prisms,
            Report& report) const {
    report.line("ends closer than {} meet", captureText(capture, drawing));
    report.line("{} as closed prisms {} {} high; {}, {} joined", countText(prisms.size(), "wall"),
                numberText(m_height), drawing.unitName(), countText(freeEnds(ends), "free end"),
                2 * ends.size() - freeEnds(ends));
  }

  void addJson(const Drawing& drawing, const ReferenceWalls& reference,
               const std::vector<PrepareFrom2dTo3dData>& ends, nlohmann::json& report) const {
    std::vector<nlohmann::json> results;
    results.reserve(ends.size());
    for (const PrepareFrom2dTo3dData& end : ends) {
      results.push_back(
          {{"freeStart", end.bHasStartWall},
           {"freeEnd", end.bHasEndWall},
           {"start",
            {pointJson(end.ptStartLeft), pointJson(end.ptStartMid), pointJson(end.ptStartRight)}},
           {"end",
            {pointJson(end.ptEndLeft), pointJson(end.ptEndMid), pointJson(end.ptEndRight)}}});
    }
    report["height"] = m_height;
    addReferenceWalls(drawing, reference, results, report);
  }

  WidthOptions m_widths;
  double m_height = 0.0;
};

}  // namespace

std::unique_ptr<Command> makeSolidCommand() {
  return std::make_unique<SolidCommand>();
}

}  // namespace quoin::commands
