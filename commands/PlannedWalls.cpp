#include "commands/PlannedWalls.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "acutmem.h"
#include "adsdef.h"
#include "commands/CommandError.h"
#include "commands/Polylines.h"
#include "commands/WallChanges.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"
#include "plan/PlanPoint.h"
#include "plan/PointIndex.h"

namespace quoin::commands {

namespace {

using plan::flat;

constexpr int kXDataName = 1001;
constexpr int kXDataText = 1000;
constexpr int kXDataReal = 1040;

struct FreeBuffers {
  void operator()(resbuf* list) const { acutRelRb(list); }
};
using Buffers = std::unique_ptr<resbuf, FreeBuffers>;

/// Extended data of the application, value by value.
class ExtendedData {
 public:
  ExtendedData() : m_first(acutNewRb(kXDataName)), m_last(m_first.get()) {
    setText(*m_last, kWidthApplication);
  }
  void addReal(double value) { append(kXDataReal).resval.rreal = value; }
  void addText(const ACHAR* text) { setText(append(kXDataText), text); }
  void putOn(AcDbEntity& entity) const { entity.setXData(m_first.get()); }

 private:
  static void setText(resbuf& buffer, const ACHAR* text) {
    acutNewString(text, buffer.resval.rstring);
  }
  resbuf& append(int code) {
    m_last->rbnext = acutNewRb(code);
    m_last = m_last->rbnext;
    return *m_last;
  }

  Buffers m_first;
  resbuf* m_last;
};

void readOpening(const AcDbEntity& entity, plan::Opening& opening) {
  const Buffers data(entity.xData(kWidthApplication));
  std::vector<double> heights;
  for (const resbuf* link = data.get(); link; link = link->rbnext) {
    if (link->restype == kXDataReal) {
      heights.push_back(link->resval.rreal);
    } else if (link->restype == kXDataText && link->resval.rstring) {
      opening.kind = plan::openingKindNamed(os::toUtf8(link->resval.rstring))
                         .value_or(plan::OpeningKind::Opening);
    }
  }
  if (heights.size() >= 2) {
    opening.sill = heights[0];
    opening.head = heights[1];
  }
}

/// Finds the wall that a line lies on by the boxes of walls: sorted by their least x, with the
/// greatest x so far, so that a search sees those alone that reach its place.
class WallsOfPlaces {
 public:
  WallsOfPlaces(const std::vector<plan::Wall>& walls, double captureDistance)
      : m_walls(walls), m_captureDistance(captureDistance) {
    m_order.resize(walls.size());
    for (std::size_t i = 0; i < walls.size(); ++i) {
      m_order[i] = i;
    }
    std::stable_sort(m_order.begin(), m_order.end(), [&](std::size_t a, std::size_t b) {
      return leastX(walls[a]) < leastX(walls[b]);
    });
    double reach = -HUGE_VAL;
    m_reach.reserve(walls.size());
    for (const std::size_t wall : m_order) {
      reach = std::max(reach, std::max(walls[wall].start.x, walls[wall].end.x));
      m_reach.push_back(reach);
    }
  }

  /// Sets the opening's wall and where it lies on it; false where no wall is near.
  bool place(const AcGePoint2d& start, const AcGePoint2d& end, plan::Opening& opening) const {
    const AcGePoint2d middle = start + (end - start) * 0.5;
    const auto past = std::partition_point(m_order.begin(), m_order.end(), [&](std::size_t wall) {
      return leastX(m_walls[wall]) <= middle.x + m_captureDistance;
    });
    double nearest = HUGE_VAL;
    for (auto next = past; next != m_order.begin();) {
      --next;
      if (m_reach[static_cast<std::size_t>(next - m_order.begin())] <
          middle.x - m_captureDistance) {
        break;
      }
      const plan::Wall& wall = m_walls[*next];
      const double distance = distanceTo(wall, middle);
      const bool isNearer = distance < nearest || (distance == nearest && *next < opening.wall);
      if (isNearer && distance < m_captureDistance && liesOn(wall, start) && liesOn(wall, end)) {
        nearest = distance;
        opening.wall = *next;
        const double a = along(wall, start);
        const double b = along(wall, end);
        opening.from = std::clamp(std::min(a, b), 0.0, wall.length());
        opening.to = std::clamp(std::max(a, b), 0.0, wall.length());
      }
    }
    return nearest < HUGE_VAL && opening.to > opening.from;
  }

 private:
  static double leastX(const plan::Wall& wall) { return std::min(wall.start.x, wall.end.x); }
  static double along(const plan::Wall& wall, const AcGePoint2d& point) {
    return wall.direction().dotProduct(point - wall.start);
  }
  static double distanceTo(const plan::Wall& wall, const AcGePoint2d& point) {
    return point.distanceTo(wall.at(std::clamp(along(wall, point), 0.0, wall.length())));
  }
  bool liesOn(const plan::Wall& wall, const AcGePoint2d& point) const {
    return distanceTo(wall, point) < m_captureDistance;
  }

  const std::vector<plan::Wall>& m_walls;
  double m_captureDistance;
  std::vector<std::size_t> m_order;
  std::vector<double> m_reach;
};

std::string append(Drawing& drawing, const AcGePoint2d& start, const AcGePoint2d& end,
                   double elevation, const std::string& layer, const ExtendedData& data) {
  auto line = std::make_unique<AcDbLine>(AcGePoint3d(start.x, start.y, elevation),
                                         AcGePoint3d(end.x, end.y, elevation));
  line->setDatabaseDefaults(&drawing.database());
  line->setLayer(os::fromUtf8(layer).c_str());
  data.putOn(*line);
  return appendEntity(drawing, drawing.modelSpaceId(), std::move(line));
}

}  // namespace

std::vector<plan::Wall> planWalls(const std::vector<BodyWall>& walls) {
  std::vector<plan::Wall> result;
  result.reserve(walls.size());
  for (const BodyWall& wall : walls) {
    result.push_back(
        {flat(wall.line.start), flat(wall.line.end), wall.widths.left, wall.widths.right});
  }
  return result;
}

FoundOpenings collectOpenings(Drawing& drawing, const std::set<std::wstring>& layers,
                              const std::vector<plan::Wall>& walls, double captureDistance) {
  FoundOpenings found;
  const WallsOfPlaces places(walls, captureDistance);
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    if (layers.count(hostx::layerName(id)) == 0) {
      return;
    }
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    const AcDbLine* const line =
        entity.openStatus() == Acad::eOk ? AcDbLine::cast(entity.object()) : nullptr;
    if (!line) {
      return;
    }
    plan::Opening opening;
    if (!places.place(flat(line->startPoint()), flat(line->endPoint()), opening)) {
      found.skipped.push_back({id, "lies on no wall"});
      return;
    }
    readOpening(*entity.object(), opening);
    found.openings.push_back(opening);
    found.entities.push_back(id);
  });
  return found;
}

void makeLayer(Drawing& drawing, const std::string& layer, int colorIndex) {
  AcDbLayerTable* table = nullptr;
  if (drawing.database().getLayerTable(table, AcDb::kForWrite) != Acad::eOk) {
    return;
  }
  const std::wstring name = os::fromUtf8(layer);
  if (!table->has(name.c_str())) {
    auto record = std::make_unique<AcDbLayerTableRecord>();
    record->setName(name.c_str());
    AcCmColor color;
    color.setColorIndex(static_cast<Adesk::UInt16>(colorIndex));
    record->setColor(color);
    if (table->add(record.get()) == Acad::eOk) {
      record.release()->close();
    }
  }
  table->close();
}

std::string appendWall(Drawing& drawing, const plan::Wall& wall, const std::string& layer,
                       double elevation) {
  ExtendedData data;
  data.addReal(wall.left);
  data.addReal(wall.right);
  return append(drawing, wall.start, wall.end, elevation, layer, data);
}

std::string appendOpening(Drawing& drawing, const plan::WallPlan& plan,
                          const plan::Opening& opening, const std::string& layer,
                          double elevation) {
  ExtendedData data;
  data.addText(os::fromUtf8(plan::nameOf(opening.kind)).c_str());
  if (opening.sill && opening.head) {
    data.addReal(*opening.sill);
    data.addReal(*opening.head);
  }
  return append(drawing, plan.startOf(opening), plan.endOf(opening), elevation, layer, data);
}

bool hasLightPolylines(const Drawing& drawing) {
  const std::wstring& version = drawing.info().acadVersion;
  return version.substr(0, 3) == L"AC1" && version >= L"AC1014" &&
         version.find(L'.') == version.npos;
}

std::string appendOutline(Drawing& drawing, const std::vector<AcGePoint2d>& corners,
                          const std::string& layer, double elevation) {
  if (hasLightPolylines(drawing)) {
    auto polyline = std::make_unique<AcDbPolyline>(static_cast<unsigned int>(corners.size()));
    for (const AcGePoint2d& corner : corners) {
      polyline->addVertexAt(polyline->numVerts(), corner);
    }
    polyline->setClosed(Adesk::kTrue);
    polyline->setElevation(elevation);
    polyline->setDatabaseDefaults(&drawing.database());
    polyline->setLayer(os::fromUtf8(layer).c_str());
    return appendEntity(drawing, drawing.modelSpaceId(), std::move(polyline));
  }
  AcGePoint3dArray points;
  for (const AcGePoint2d& corner : corners) {
    points.append(AcGePoint3d(corner.x, corner.y, elevation));
  }
  auto polyline = std::make_unique<AcDb2dPolyline>(points, elevation, true);
  polyline->setDatabaseDefaults(&drawing.database());
  polyline->setLayer(os::fromUtf8(layer).c_str());
  return appendEntity(drawing, drawing.modelSpaceId(), std::move(polyline));
}

std::vector<plan::PlanOutline> collectColumns(Drawing& drawing) {
  std::vector<plan::PlanOutline> columns;
  const std::wstring layer = os::fromUtf8(kColumnLayer);
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (hostx::layerName(id) == layer && entity.openStatus() == Acad::eOk &&
        isPolyline(*entity.object())) {
      plan::PlanOutline outline = straightOutline(readPolyline(*entity.object()));
      if (!outline.empty()) {
        columns.push_back(std::move(outline));
      }
    }
  });
  return columns;
}

plan::PlanOutline straightOutline(const PolylineShape& shape) {
  plan::PlanOutline outline;
  const bool isStraight = std::all_of(shape.vertices.begin(), shape.vertices.end(),
                                      [](const PolylineVertex& v) { return v.bulge == 0.0; });
  if (shape.isClosed && !shape.isCurveFit && isStraight && shape.vertices.size() >= 3) {
    for (const PolylineVertex& vertex : shape.vertices) {
      outline.emplace_back(vertex.world.x, vertex.world.y);
    }
  }
  return outline;
}

}  // namespace quoin::commands
