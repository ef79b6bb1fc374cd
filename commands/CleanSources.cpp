#include "commands/CleanSources.h"

#include <algorithm>
#include <memory>
#include <tuple>

#include "acutmem.h"
#include "adsdef.h"
#include "commands/InsideWalls.h"
#include "commands/Polylines.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "dbpl.h"

namespace quoin::commands {

namespace {

/// Layer, colour, linetype and its scale, line weight, thickness, width; extended data; which way
/// it leads.
using Properties = std::tuple<std::wstring, Adesk::UInt32, std::wstring, double, int, double,
                              double, std::wstring, bool>;

Adesk::UInt32 colorKey(const AcCmEntityColor& color) {
  constexpr int kValueBits = 24;
  return static_cast<Adesk::UInt32>(color.colorMethod()) << kValueBits |
         (color.isByColor() ? color.rgb() : color.colorIndex());
}

/// Texts and real numbers alone: the rest makes data unlike all other.
std::wstring extendedData(const AcDbEntity& entity, const AcDbObjectId& id) {
  struct FreeBuffers {
    void operator()(resbuf* list) const { acutRelRb(list); }
  };
  constexpr int kTextCodes = 1005;
  constexpr int kFirstReal = 1040;
  constexpr int kLastReal = 1042;
  const std::unique_ptr<resbuf, FreeBuffers> data(entity.xData());
  std::wstring text;
  for (const resbuf* link = data.get(); link; link = link->rbnext) {
    text += std::to_wstring(link->restype) + L"=";
    if (link->restype >= 1000 && link->restype <= kTextCodes && link->restype != 1004 &&
        link->resval.rstring) {
      text += link->resval.rstring;
    } else if (link->restype >= kFirstReal && link->restype <= kLastReal) {
      text += std::to_wstring(link->resval.rreal);
    } else {
      return L"of " + std::to_wstring(id.handle().low()) + L"," +
             std::to_wstring(id.handle().high());
    }
    text += L"\n";
  }
  return text;
}

/// Which of two ways a line leads; for lines along the axes far from the border between them.
bool leadsUp(const AcGePoint3d& start, const AcGePoint3d& end) {
  return (end.x - start.x) * 0.7557 + (end.y - start.y) * 0.6549 > 0.0;
}

class Collector {
 public:
  Collector(const std::set<std::wstring>& locked, bool findsDoubled)
      : m_locked(locked), m_findsDoubled(findsDoubled) {}

  void add(const AcDbObjectId& id, const std::wstring& layer) {
    AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) {
      result.skipped.push_back({id, "cannot be opened: " + statusText(entity.openStatus())});
      return;
    }
    const bool isLocked = m_locked.count(layer) != 0;
    const AcDbLine* const line = AcDbLine::cast(entity.object());
    if ((line || isPolyline(*entity.object())) && hostx::hasUnreadableNumber(entity.object())) {
      result.skipped.push_back({id, kUnreadableNumber});
    } else if (line) {
      addLine(*line, id, layer, isLocked);
    } else if (isPolyline(*entity.object())) {
      addPolyline(*entity.object(), id, layer, isLocked);
    } else if (!showsOtherLines(id)) {
      addAnchors(*entity.object());
      ++result.countOfKind[hostx::kindName(id)];
    }
  }

  CleanSources finish() {
    // Keys follow the properties, not the order of lines.
    std::size_t next = 0;
    for (auto& [properties, key] : m_keys) {
      key.second = next++;
    }
    std::vector<std::size_t> ranks(m_keys.size());
    for (const auto& [properties, key] : m_keys) {
      ranks[key.first] = key.second;
    }
    for (auto& [height, level] : result.levels) {
      for (plan::CleanLine& line : level.lines) {
        line.key = ranks[line.key];
      }
    }
    return std::move(result);
  }

  CleanSources result;

 private:
  std::size_t keyOf(const AcDbEntity& entity, const AcDbObjectId& id, const std::wstring& layer,
                    double thickness, double width, const AcGePoint3d& start,
                    const AcGePoint3d& end) {
    std::wstring data = extendedData(entity, id);
    const bool isUp = !data.empty() && leadsUp(start, end);
    const auto [found, isNew] = m_keys.try_emplace(
        Properties{layer, colorKey(entity.entityColor()), takeText(entity.linetype()),
                   entity.linetypeScale(), static_cast<int>(entity.lineWeight()), thickness, width,
                   std::move(data), isUp},
        m_keys.size(), 0);
    return found->second.first;
  }

  void addLine(const AcDbLine& line, const AcDbObjectId& id, const std::wstring& layer,
               bool isLocked) {
    const AcGePoint3d start = line.startPoint();
    const AcGePoint3d end = line.endPoint();
    if (start.x == end.x && start.y == end.y) {
      result.skipped.push_back({id, "has no length"});
      return;
    }
    if (start.z != end.z) {
      result.skipped.push_back({id, "has ends at different heights"});
      return;
    }
    if (isLocked) {
      result.skipped.push_back({id, "is on a locked layer"});
    }
    CleanLevel& level = result.levels[start.z];
    level.lines.push_back({{start.x, start.y},
                           {end.x, end.y},
                           keyOf(line, id, layer, line.thickness(), 0.0, start, end),
                           isLocked,
                           isLocked,
                           isLocked});
    level.sources.push_back({id, -1, {}, start, end});
    ++result.lines;
  }

  void addPolyline(const AcDbEntity& entity, const AcDbObjectId& id, const std::wstring& layer,
                   bool isLocked) {
    const PolylineShape shape = readPolyline(entity);
    if (shape.isCurveFit) {
      result.skipped.push_back({id, "is a curve through its vertices"});
      return;
    }
    if (m_findsDoubled && !isLocked && isDoubled(entity, id, layer, shape)) {
      return;
    }
    // Where the polyline's own coordinates are those of the plan.
    const bool mayMove = !isLocked && !shape.isClosed && shape.normal == AcGeVector3d::kZAxis &&
                         !entity.isKindOf(AcDb3dPolyline::desc());
    const std::size_t count = shape.segmentCount();
    for (std::size_t i = 0; i < count; ++i) {
      const PolylineVertex& from = shape.vertices[i];
      const PolylineVertex& to = shape.segmentEnd(i);
      if (from.world.z != to.world.z ||
          (from.world.x == to.world.x && from.world.y == to.world.y)) {
        continue;
      }
      CleanLevel& level = result.levels[from.world.z];
      if (from.bulge != 0.0) {
        ++result.arcSegments;
        level.anchors.emplace_back(from.world.x, from.world.y);
        level.anchors.emplace_back(to.world.x, to.world.y);
        continue;
      }
      const double width = std::max(from.startWidth, from.endWidth);
      level.lines.push_back({{from.world.x, from.world.y},
                             {to.world.x, to.world.y},
                             keyOf(entity, id, layer, shape.thickness, width, from.world, to.world),
                             !(mayMove && i == 0),
                             !(mayMove && i + 1 == count),
                             true});
      level.sources.push_back({id,
                               static_cast<int>(i),
                               {static_cast<unsigned int>(i),
                                static_cast<unsigned int>((i + 1) % shape.vertices.size())},
                               from.world,
                               to.world});
      ++result.segments;
    }
  }

  /// Whether there was one with the same vertices, in the same order or, where it has neither arcs
  /// nor widths, turned round.
  bool isDoubled(const AcDbEntity& entity, const AcDbObjectId& id, const std::wstring& layer,
                 const PolylineShape& shape) {
    if (shape.vertices.empty()) {
      return false;
    }
    std::vector<double> forward{shape.isClosed ? 1.0 : 0.0, shape.normal.x, shape.normal.y,
                                shape.normal.z};
    std::vector<double> backward = forward;
    bool isPlain = true;
    for (const PolylineVertex& vertex : shape.vertices) {
      isPlain =
          isPlain && vertex.bulge == 0.0 && vertex.startWidth == 0.0 && vertex.endWidth == 0.0;
      forward.insert(forward.end(), {vertex.world.x, vertex.world.y, vertex.world.z, vertex.bulge,
                                     vertex.startWidth, vertex.endWidth});
    }
    for (auto vertex = shape.vertices.rbegin(); vertex != shape.vertices.rend(); ++vertex) {
      backward.insert(backward.end(),
                      {vertex->world.x, vertex->world.y, vertex->world.z, 0.0, 0.0, 0.0});
    }
    const std::size_t key = keyOf(entity, id, layer, shape.thickness, 0.0,
                                  shape.vertices.front().world, shape.vertices.back().world);
    const auto [found, isNew] =
        m_polylines.emplace(std::pair(key, isPlain ? std::min(forward, backward) : forward), id);
    if (!isNew) {
      result.doubled.push_back({id, found->second});
    }
    return !isNew;
  }

  void addAnchors(const AcDbEntity& entity) {
    const AcDbCurve* const curve = AcDbCurve::cast(&entity);
    if (!curve || hostx::hasUnreadableNumber(&entity)) {
      return;
    }
    AcGePoint3d start;
    AcGePoint3d end;
    if (curve->getStartPoint(start) == Acad::eOk && curve->getEndPoint(end) == Acad::eOk &&
        !(start == end)) {
      for (const AcGePoint3d& point : {start, end}) {
        result.levels[point.z].anchors.emplace_back(point.x, point.y);
      }
    }
  }

  const std::set<std::wstring>& m_locked;
  bool m_findsDoubled;
  /// The number of each in order of appearance, and in their own order.
  std::map<Properties, std::pair<std::size_t, std::size_t>> m_keys;
  std::map<std::pair<std::size_t, std::vector<double>>, AcDbObjectId> m_polylines;
};

void moveVertex(AcDbEntity& entity, unsigned int index, const AcGePoint2d& to, Drawing& drawing,
                const AcDbObjectId& id) {
  if (AcDbPolyline* const light = AcDbPolyline::cast(&entity)) {
    check(light->setPointAt(index, to), drawing, id, "move a vertex");
    return;
  }
  const AcDb2dPolyline* const heavy = AcDb2dPolyline::cast(&entity);
  const std::unique_ptr<AcDbObjectIterator> iterator(heavy->vertexIterator());
  for (unsigned int i = 0; iterator && !iterator->done(); iterator->step(), ++i) {
    if (i == index) {
      AcDbObjectPointer<AcDb2dVertex> vertex(iterator->objectId(), AcDb::kForWrite);
      check(vertex.openStatus(), drawing, id, "open a vertex");
      const AcGePoint3d old = vertex->position();
      check(vertex->setPosition({to.x, to.y, old.z}), drawing, id, "move a vertex");
    }
  }
}

}  // namespace

CleanSources collectCleanSources(Drawing& drawing, const std::set<std::wstring>& layers,
                                 bool findsDoubled) {
  const std::set<std::wstring> locked = drawing.lockedLayers();
  Collector collector(locked, findsDoubled);
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (layers.count(layer)) {
      collector.add(id, layer);
    }
  });
  CleanSources sources = collector.finish();
  countInside(drawing, layers, sources);
  return sources;
}

void moveCleanEnd(Drawing& drawing, const CleanSource& source, bool isEnd, const AcGePoint2d& to) {
  AcDbObjectPointer<AcDbEntity> entity(source.entity, AcDb::kForWrite);
  check(entity.openStatus(), drawing, source.entity, "open the line");
  AcDbLine* const line = AcDbLine::cast(entity.object());
  if (!line) {
    moveVertex(*entity.object(), source.vertices[isEnd ? 1 : 0], to, drawing, source.entity);
  } else if (isEnd) {
    check(line->setEndPoint({to.x, to.y, source.end.z}), drawing, source.entity,
          "move the line's end");
  } else {
    check(line->setStartPoint({to.x, to.y, source.start.z}), drawing, source.entity,
          "move the line's start");
  }
}

}  // namespace quoin::commands
