#include "commands/PlanReading.h"

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "commands/Capture.h"
#include "commands/CommandError.h"
#include "commands/FilledWalls.h"
#include "commands/InsideWalls.h"
#include "commands/LayerChoice.h"
#include "commands/PlannedWalls.h"
#include "commands/Polylines.h"
#include "commands/Progress.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "embedded/os/CaseFold.h"
#include "embedded/os/Utf8.h"
#include "plan/PlanPoint.h"
#include "plan/SegmentGrid.h"

namespace quoin::commands {

namespace {

using plan::flat;

constexpr double kTurn = 2.0 * std::numbers::pi;

/// Whether a name has one of the words in it.
template <std::size_t N>
bool hasWord(std::wstring_view name, const std::array<const wchar_t*, N>& words) {
  const std::wstring folded = os::foldCase(name);
  return std::any_of(words.begin(), words.end(), [&](const wchar_t* word) {
    return folded.find(os::foldCase(word)) != std::wstring::npos;
  });
}

/// What the name of a layer or a block says of what stands there.
plan::OpeningKind hintOf(std::wstring_view name) {
  constexpr std::array<const wchar_t*, 11> kDoors{L"door",   L"tür",   L"tuer", L"porte",
                                                  L"puerta", L"porta", L"deur", L"дверь",
                                                  L"двер",   L"门",    L"門"};
  constexpr std::array<const wchar_t*, 14> kWindows{
      L"wind",     L"glaz", L"fenster", L"fenêtre", L"fenetre", L"ventana", L"janela",
      L"finestra", L"raam", L"окно",    L"окна",    L"窗",      L"crystal", L"glass"};
  const bool isDoor = hasWord(name, kDoors);
  const bool isWindow = hasWord(name, kWindows);
  // A layer for both says nothing of either.
  if (isDoor == isWindow) {
    return plan::OpeningKind::Opening;
  }
  return isDoor ? plan::OpeningKind::Door : plan::OpeningKind::Window;
}

/// An arc as seen from above; false where it is seen from the side.
bool addArc(const AcGePoint3d& center, const AcGeVector3d& normal, double radius, double start,
            double sweep, std::vector<plan::PlanArc>& arcs) {
  if (std::fabs(normal.z) < 0.5 || !(radius > 0.0) || !std::isfinite(radius)) {
    return false;
  }
  // Seen from below it runs the other way round.
  const double first = normal.z > 0.0 ? start : std::numbers::pi - start - sweep;
  arcs.push_back({flat(center), radius, first, sweep});
  return true;
}

/// The arc of a polyline's segment with a bulge; false where it has no length.
bool addBulge(const AcGePoint3d& from, const AcGePoint3d& to, double bulge,
              std::vector<plan::PlanArc>& arcs) {
  const AcGePoint2d a = flat(from);
  const AcGePoint2d b = flat(to);
  const AcGeVector2d chord = b - a;
  const double length = chord.length();
  if (!(length > 0.0) || !std::isfinite(length) || !std::isfinite(bulge)) {
    return false;
  }
  const double apothem = 0.25 * (1.0 / bulge - bulge);
  const AcGePoint2d center = a + chord * 0.5 + chord.perpVector() * apothem;
  const double sweep = 4.0 * std::atan(std::fabs(bulge));
  const AcGeVector2d first = (bulge > 0.0 ? a : b) - center;
  arcs.push_back({center, first.length(), std::atan2(first.y, first.x), sweep});
  return true;
}

class SymbolReader {
 public:
  SymbolReader(const std::set<std::wstring>& layers, plan::PlanDrawing& drawing)
      : m_layers(layers), m_drawing(drawing) {}

  void add(const AcDbObjectId& id) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk || hostx::hasUnreadableNumber(entity.object())) {
      return;
    }
    const std::wstring layer = hostx::layerName(id);
    const bool isFace = m_layers.count(layer) != 0;
    if (const AcDbArc* arc = AcDbArc::cast(entity.object())) {
      const double sweep = std::remainder(arc->endAngle() - arc->startAngle(), kTurn);
      const bool isSeen = addArc(arc->center(), arc->normal(), arc->radius(), arc->startAngle(),
                                 sweep > 0.0 ? sweep : sweep + kTurn, m_drawing.arcs);
      if (isSeen && isFace) {
        m_drawing.faceArcs.push_back(m_drawing.arcs.back());
      }
    } else if (const AcDbLine* line = AcDbLine::cast(entity.object())) {
      if (!isFace) {
        addLine(line->startPoint(), line->endPoint(), hintOf(layer));
      }
    } else if (isPolyline(*entity.object())) {
      const PolylineShape shape = readPolyline(*entity.object());
      addPolyline(shape, isFace, hintOf(layer));
      addOutline(shape, isFace, looksLikeColumns(layer));
    } else if (const AcDbCircle* circle = AcDbCircle::cast(entity.object())) {
      if (looksLikeColumns(layer)) {
        addRound(flat(circle->center()), circle->radius());
      }
    } else if (const AcDbBlockReference* insert = AcDbBlockReference::cast(entity.object())) {
      addInsert(*insert, layer);
    }
  }

 private:
  void addLine(const AcGePoint3d& start, const AcGePoint3d& end, plan::OpeningKind hint) {
    m_drawing.symbols.push_back({{flat(start), flat(end)}, false, hint});
  }

  void addPolyline(const PolylineShape& shape, bool isFace, plan::OpeningKind hint) {
    if (shape.isCurveFit) {
      return;
    }
    for (std::size_t i = 0; i < shape.segmentCount(); ++i) {
      const AcGePoint3d& start = shape.vertices[i].world;
      const AcGePoint3d& end = shape.segmentEnd(i).world;
      if (shape.vertices[i].bulge != 0.0) {
        const double bulge = shape.vertices[i].bulge;
        const bool isArc =
            addBulge(start, end, shape.normal.z < 0.0 ? -bulge : bulge, m_drawing.arcs);
        if (isArc && isFace) {
          m_drawing.faceArcs.push_back(m_drawing.arcs.back());
        }
      } else if (!isFace) {
        addLine(start, end, hint);
      }
    }
  }

  void addOutline(const PolylineShape& shape, bool isFace, bool isColumn) {
    plan::PlanOutline outline = straightOutline(shape);
    if (!outline.empty() && (isFace || isColumn)) {
      (isColumn ? m_drawing.columns : m_drawing.outlines).push_back(std::move(outline));
    }
  }

  /// A polygon of the circle's area.
  void addRound(const AcGePoint2d& center, double radius) {
    constexpr int kSides = 64;
    if (!(radius > 0.0) || !std::isfinite(radius)) {
      return;
    }
    const double step = kTurn / kSides;
    const double reach = radius * std::sqrt(step / std::sin(step));
    plan::PlanOutline outline;
    for (int i = 0; i < kSides; ++i) {
      outline.push_back(plan::PlanArc{center, reach, 0.0, kTurn}.at(step * i));
    }
    m_drawing.columns.push_back(std::move(outline));
  }

  void addInsert(const AcDbBlockReference& insert, const std::wstring& layer) {
    AcDbExtents box;
    if (insert.getGeomExtents(box) != Acad::eOk) {
      return;
    }
    if (looksLikeColumns(layer)) {
      const AcGePoint2d least = flat(box.minPoint());
      const AcGePoint2d greatest = flat(box.maxPoint());
      m_drawing.columns.push_back({least, {greatest.x, least.y}, greatest, {least.x, greatest.y}});
    }
    plan::OpeningKind hint = hintOf(os::fromUtf8(blockName(insert.blockTableRecord())));
    if (hint == plan::OpeningKind::Opening) {
      hint = hintOf(layer);
    }
    if (hint != plan::OpeningKind::Opening) {
      m_drawing.symbols.push_back({{flat(box.minPoint()), flat(box.maxPoint())}, true, hint});
    }
  }

  const std::set<std::wstring>& m_layers;
  plan::PlanDrawing& m_drawing;
};

/// A straight segment with a width.
struct WideSegment {
  std::size_t line;  // of WallLines
  AcGePoint2d start;
  AcGePoint2d end;
  double width;
};

std::vector<WideSegment> wideSegments(const WallLines& found) {
  std::vector<WideSegment> wide;
  AcDbObjectId last;
  PolylineShape shape;
  for (std::size_t i = 0; i < found.lines.size(); ++i) {
    const WallLine& line = found.lines[i];
    if (!line.isPolylineSegment() || line.within) {
      continue;
    }
    if (line.entity != last) {
      AcDbObjectPointer<AcDbEntity> entity(line.entity, AcDb::kForRead);
      shape = entity.openStatus() == Acad::eOk ? readPolyline(*entity.object()) : PolylineShape();
      last = line.entity;
    }
    const auto segment = static_cast<std::size_t>(line.segment);
    if (segment >= shape.vertices.size()) {
      continue;
    }
    const PolylineVertex& vertex = shape.vertices[segment];
    if (vertex.startWidth > 0.0 && vertex.startWidth == vertex.endWidth) {
      wide.push_back({i, flat(line.start), flat(line.end), vertex.startWidth});
    }
  }
  return wide;
}

/// The two sides of every segment with a width, and an end across where it meets no other: there
/// may be an opening.
void addWideSegments(ReadPlan& plan) {
  const std::vector<WideSegment> wide = wideSegments(plan.found);
  plan::SegmentGrid grid;
  double widest = 0.0;
  for (const WideSegment& segment : wide) {
    grid.add(segment.start, segment.end);
    widest = std::max(widest, segment.width);
  }
  grid.arrange(4.0 * widest);
  const auto meetsOther = [&](std::size_t mine, const AcGePoint2d& point) {
    bool isMet = false;
    const double near = 0.25 * wide[mine].width;
    grid.visitIn(plan::Box(point, point).grownBy(near), [&](std::size_t other) {
      const WideSegment& segment = wide[other];
      const AcGeVector2d way = segment.end - segment.start;
      const double part =
          std::clamp(way.dotProduct(point - segment.start) / way.lengthSqrd(), 0.0, 1.0);
      isMet = isMet || (other != mine && point.distanceTo(segment.start + way * part) <= near);
    });
    return isMet;
  };
  for (std::size_t i = 0; i < wide.size(); ++i) {
    const std::size_t line = wide[i].line;
    const AcGePoint2d& start = wide[i].start;
    const AcGePoint2d& end = wide[i].end;
    const AcGeVector2d aside =
        (end - start).perpVector() / start.distanceTo(end) * (0.5 * wide[i].width);
    const auto add = [&](const AcGePoint2d& from, const AcGePoint2d& to) {
      plan.drawing.lines.push_back({from, to});
      plan.sourceOf.push_back(line);
    };
    // The middle line is no face.
    plan.drawing.lines[line] = {start + aside, end + aside};
    add(start - aside, end - aside);
    for (const AcGePoint2d& point : {start, end}) {
      if (!meetsOther(i, point)) {
        add(point - aside, point + aside);
      }
    }
  }
}

}  // namespace

void ReadingOptions::declare(CLI::App& command) {
  const auto addLength = [&](const char* name, std::string& value, const std::string& what) {
    command.add_option(name, value, what)->type_name("LENGTH")->check([](const std::string& text) {
      return parseLength(text) ? std::string()
                               : "'" + text + "' is no length above zero; write 200, 200mm or 8in";
    });
  };
  addLength("--min-width", minWidth, "The least width of a wall; default 50 mm");
  addLength("--max-width", maxWidth, "The greatest width of a wall; default 600 mm");
  addLength("--max-opening", maxOpening,
            "The widest gap that counts as an opening with nothing drawn in it; default 4000 mm");
  command
      .add_option("--min-confidence", minConfidence,
                  "Leave walls over that are less sure than this, 0 to 1")
      ->check(CLI::Range(0.0, 1.0))
      ->capture_default_str();
}

plan::FindWallsOptions ReadingOptions::inUnitsOf(const Drawing& drawing) const {
  plan::FindWallsOptions options = plan::FindWallsOptions::inUnitsOf(drawing.millimetersPerUnit());
  const auto set = [&](const std::string& text, double& value) {
    if (!text.empty()) {
      value = parseLength(text)->inUnitsOf(drawing);
    }
  };
  set(minWidth, options.minWidth);
  set(maxWidth, options.maxWidth);
  set(maxOpening, options.maxOpening);
  options.minConfidence = minConfidence;
  if (!(options.minWidth < options.maxWidth)) {
    throw CommandError(ExitCode::Usage,
                       fmt::format("no width is between --min-width {} and --max-width {}",
                                   options.minWidth, options.maxWidth));
  }
  // A thin wall's faces must stay two.
  options.tolerance = std::min(options.tolerance, 0.25 * options.minWidth);
  return options;
}

std::set<std::wstring> chooseFaceLayers(Drawing& drawing,
                                        const std::vector<std::string>& patterns) {
  std::set<std::wstring> layers = chooseLayers(drawing.layers(), patterns, drawing);
  if (patterns.empty() && layers.size() > 1) {
    layers.erase(os::fromUtf8(kWallLayer));
  }
  return layers;
}

bool looksLikeColumns(std::wstring_view name) {
  constexpr std::array<const wchar_t*, 12> kColumns{L"column",  L"cols",   L"pillar", L"stütze",
                                                    L"stuetze", L"poteau", L"pilar",  L"pilastr",
                                                    L"kolom",   L"колонн", L"柱",     L"기둥"};
  return hasWord(name, kColumns);
}

ReadPlan readPlan(Drawing& drawing, const std::set<std::wstring>& layers) {
  ReadPlan plan;
  plan.layers = layers;
  plan.found = collectWallLines(drawing, layers, true);
  addFilledAreas(drawing, layers, plan.found);
  checkAnyWallLine(drawing, layers, plan.found);
  plan.drawing.lines.reserve(plan.found.lines.size());
  for (std::size_t i = 0; i < plan.found.lines.size(); ++i) {
    const WallLine& line = plan.found.lines[i];
    plan.drawing.lines.push_back({flat(line.start), flat(line.end)});
    plan.sourceOf.push_back(i);
  }
  addWideSegments(plan);
  SymbolReader reader(plan.layers, plan.drawing);
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) { reader.add(id); });
  // Arcs are read: as faces, or as what is drawn in openings.
  plan.found.countOfKind.erase(L"ARC");
  plan.found.arcSegments = 0;
  return plan;
}

FoundPlan findPlanWalls(Drawing& drawing, const std::set<std::wstring>& layers,
                        const plan::FindWallsOptions& options) {
  FoundPlan plan{readPlan(drawing, layers), {}};
  Progress::during("Finding walls",
                   [&] { plan.found = plan::findWalls(plan.read.drawing, options); });
  Progress::checkInterrupt();
  return plan;
}

}  // namespace quoin::commands
