#include "commands/CleanMarks.h"

#include <cmath>
#include <memory>

#include "acutmem.h"
#include "adsdef.h"
#include "commands/PlannedWalls.h"
#include "commands/SingleLines.h"
#include "commands/WallBodies.h"
#include "commands/WallChanges.h"
#include "dbents.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "plan/PointIndex.h"

namespace quoin::commands {

namespace {

constexpr int kXDataName = 1001;
constexpr int kXDataText = 1000;
constexpr const wchar_t* kMarkName = L"clean";
constexpr int kRed = 1;

struct FreeBuffers {
  void operator()(resbuf* list) const { acutRelRb(list); }
};
using Buffers = std::unique_ptr<resbuf, FreeBuffers>;

void tag(AcDbEntity& entity) {
  const Buffers data(acutNewRb(kXDataName));
  acutNewString(kWidthApplication, data->resval.rstring);
  data->rbnext = acutNewRb(kXDataText);
  acutNewString(kMarkName, data->rbnext->resval.rstring);
  entity.setXData(data.get());
}

bool isTagged(const AcDbEntity& entity) {
  const Buffers data(entity.xData(kWidthApplication));
  for (const resbuf* link = data.get(); link; link = link->rbnext) {
    if (link->restype == kXDataText && link->resval.rstring &&
        std::wstring(link->resval.rstring) == kMarkName) {
      return true;
    }
  }
  return false;
}

struct OldMark {
  AcDbObjectId entity;
  AcGePoint3d at;
  bool isUsed = false;
};

std::vector<OldMark> oldMarks(Drawing& drawing, const std::wstring& layer) {
  std::vector<OldMark> marks;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    if (hostx::layerName(id) != layer || hostx::kindName(id) != L"CIRCLE") {
      return;
    }
    AcDbObjectPointer<AcDbCircle> circle(id, AcDb::kForRead);
    if (circle.openStatus() == Acad::eOk && isTagged(*circle.object())) {
      marks.push_back({id, circle->center()});
    }
  });
  return marks;
}

template <class Marks>
plan::PointIndex indexOf(const Marks& marks) {
  std::vector<AcGePoint3d> points;
  points.reserve(marks.size());
  for (const auto& mark : marks) {
    points.push_back(mark.at);
  }
  return plan::PointIndex(points);
}

bool isNear(const AcGePoint3d& a, const AcGePoint3d& b, double slack) {
  return std::hypot(a.x - b.x, a.y - b.y) <= slack;
}

}  // namespace

CleanMarks markPlaces(Drawing& drawing, const std::vector<AcGePoint3d>& places,
                      const std::string& layer, double radius, double slack) {
  CleanMarks result;
  result.handles.resize(places.size());
  const std::wstring layerName = os::fromUtf8(layer);
  std::vector<OldMark> old = oldMarks(drawing, layerName);
  const plan::PointIndex oldIndex = indexOf(old);
  const plan::PointIndex index(places);
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::size_t nearest = old.size();
    oldIndex.visitIn(plan::PointBox(places[i], slack), [&](std::size_t mark) {
      if (isNear(old[mark].at, places[i], slack)) {
        nearest = std::min(nearest, mark);
      }
    });
    if (nearest < old.size()) {
      old[nearest].isUsed = true;
      result.handles[i] = handleText(old[nearest].entity);
      continue;
    }
    std::size_t first = i;
    index.visitIn(plan::PointBox(places[i], slack), [&](std::size_t other) {
      if (other < first && isNear(places[other], places[i], slack)) {
        first = other;
      }
    });
    if (first < i) {
      result.handles[i] = result.handles[first];
      continue;
    }
    if (result.added++ == 0) {
      makeLayer(drawing, layer, kRed);
    }
    auto circle = std::make_unique<AcDbCircle>();
    circle->setCenter(places[i]);
    circle->setNormal(AcGeVector3d::kZAxis);
    circle->setRadius(radius);
    circle->setDatabaseDefaults(&drawing.database());
    circle->setLayer(layerName.c_str());
    tag(*circle);
    result.handles[i] = appendEntity(drawing, drawing.modelSpaceId(), std::move(circle));
  }
  for (const OldMark& mark : old) {
    if (!mark.isUsed) {
      eraseEntity(drawing, mark.entity);
      ++result.erased;
    }
  }
  return result;
}

}  // namespace quoin::commands
