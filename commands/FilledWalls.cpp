#include "commands/FilledWalls.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <vector>

#include "hostdraw.h"
#include "plan/PlanPoint.h"
#include "plan/SegmentGrid.h"

namespace quoin::commands {

namespace {

using plan::flat;

/// Sides and lines no further apart than this are one, millimetres.
constexpr double kTolerance = 1.0;
/// The part of an outline that lines must cover for the area to add nothing.
constexpr double kCovered = 0.5;

struct Side {
  AcGePoint2d start;
  AcGePoint2d end;
  AcDbObjectId entity;
  bool isInside = false;

  double length() const { return start.distanceTo(end); }
};

/// The straight sides of what one entity fills.
class FillSink : public hostx::DrawSink {
 public:
  std::vector<Side> sides;

  void stroke(const hostx::DrawPath&, const hostx::DrawLook&) override {}
  void fill(const std::vector<hostx::DrawPath>& paths, const hostx::DrawLook&) override {
    for (const hostx::DrawPath& path : paths) {
      AcGePoint3d from = path.start;
      for (const hostx::DrawPiece& piece : path.pieces) {
        if (piece.kind == hostx::DrawPiece::Kind::Line) {
          add(from, piece.end);
        }
        from = piece.end;
      }
      add(from, path.start);
    }
  }
  void wipe(const hostx::DrawPath&) override {}
  void text(const hostx::DrawText&, const hostx::DrawLook&) override {}
  void image(const hostx::DrawImage&, const hostx::DrawLook&) override {}

 private:
  void add(const AcGePoint3d& from, const AcGePoint3d& to) {
    const AcGePoint2d start = flat(from);
    const AcGePoint2d end = flat(to);
    const double length = start.distanceTo(end);
    if (length > 0.0 && std::isfinite(length)) {
      sides.push_back({start, end, {}, false});
    }
  }
};

bool isFillKind(const std::wstring& kind) {
  constexpr std::array<const wchar_t*, 4> kKinds{L"HATCH", L"MPOLYGON", L"SOLID", L"TRACE"};
  return std::any_of(kKinds.begin(), kKinds.end(),
                     [&](const wchar_t* name) { return kind == name; });
}

/// Segments, to ask what runs along a side.
class Alongside {
 public:
  Alongside(double cellSize, double tolerance) : m_cellSize(cellSize), m_tolerance(tolerance) {}

  void add(const AcGePoint2d& start, const AcGePoint2d& end) {
    m_segments.push_back({start, end, {}, false});
    m_grid.add(start, end);
  }
  void arrange() { m_grid.arrange(m_cellSize); }

  /// Whether a segment other than that one runs through the point along the side.
  bool runsAt(const AcGePoint2d& point, const Side& side, std::size_t but) const {
    bool isMet = false;
    const AcGeVector2d along = (side.end - side.start) / side.length();
    m_grid.visitIn(plan::Box(point, point).grownBy(m_tolerance), [&](std::size_t number) {
      const Side& other = m_segments[number];
      const AcGeVector2d way = other.end - other.start;
      const double length = way.length();
      if (number == but || !(length > 0.0)) {
        return;
      }
      const double at = way.dotProduct(point - other.start) / length;
      const AcGeVector2d across = way.perpVector() / length;
      isMet = isMet || (at >= -m_tolerance && at <= length + m_tolerance &&
                        std::fabs(across.dotProduct(point - other.start)) <= m_tolerance &&
                        std::fabs(across.dotProduct(along)) * std::min(length, side.length()) <=
                            2.0 * m_tolerance);
    });
    return isMet;
  }

 private:
  double m_cellSize;
  double m_tolerance;
  std::vector<Side> m_segments;
  plan::SegmentGrid m_grid;
};

}  // namespace

void addFilledAreas(Drawing& drawing, const std::set<std::wstring>& layers, WallLines& found) {
  std::vector<std::vector<Side>> areas;
  hostx::DrawOptions options;
  options.isAllShown = true;
  options.isAllFilled = true;
  std::map<std::wstring, std::size_t> taken;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring kind = hostx::kindName(id);
    if (!isFillKind(kind) || layers.count(hostx::layerName(id)) == 0) {
      return;
    }
    FillSink sink;
    hostx::drawEntity(id, sink, options);
    for (Side& side : sink.sides) {
      side.entity = id;
    }
    if (!sink.sides.empty()) {
      areas.push_back(std::move(sink.sides));
      ++taken[kind];
    }
  });
  if (areas.empty()) {
    return;
  }
  const double unit = 1.0 / drawing.millimetersPerUnit();
  constexpr double kCell = 2000.0;  // millimetres
  Alongside lines(kCell * unit, kTolerance * unit);
  for (const WallLine& line : found.lines) {
    const AcGePoint2d start = flat(line.start);
    const AcGePoint2d end = flat(line.end);
    if (std::isfinite(start.distanceTo(end))) {
      lines.add(start, end);
    }
  }
  lines.arrange();
  const auto at = [](const Side& side, double part) {
    return side.start + (side.end - side.start) * part;
  };
  constexpr std::array<double, 3> kPlaces{0.25, 0.5, 0.75};
  constexpr auto kNone = static_cast<std::size_t>(-1);
  std::vector<Side> sides;
  for (const std::vector<Side>& area : areas) {
    double length = 0.0;
    double covered = 0.0;
    for (const Side& side : area) {
      length += side.length();
      for (const double place : kPlaces) {
        covered +=
            lines.runsAt(at(side, place), side, kNone) ? side.length() / kPlaces.size() : 0.0;
      }
    }
    if (covered < kCovered * length) {
      sides.insert(sides.end(), area.begin(), area.end());
    }
  }
  Alongside others(kCell * unit, kTolerance * unit);
  for (const Side& side : sides) {
    others.add(side.start, side.end);
  }
  others.arrange();
  for (std::size_t i = 0; i < sides.size(); ++i) {
    sides[i].isInside = others.runsAt(at(sides[i], 0.5), sides[i], i);
  }
  for (const Side& side : sides) {
    if (!side.isInside) {
      WallLine line;
      line.start = {side.start.x, side.start.y, 0.0};
      line.end = {side.end.x, side.end.y, 0.0};
      line.entity = side.entity;
      line.segment = WallLine::kWholeEntity;
      found.lines.push_back(std::move(line));
    }
  }
  for (const auto& [kind, count] : taken) {
    const auto left = found.countOfKind.find(kind);
    if (left != found.countOfKind.end()) {
      left->second -= std::min(left->second, count);
      if (left->second == 0) {
        found.countOfKind.erase(left);
      }
    }
  }
}

}  // namespace quoin::commands
