#include "commands/RoomPlan.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <set>

#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "commands/Units.h"
#include "commands/picture/PlanShapes.h"
#include "dbents.h"
#include "dbmtext.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"
#include "plan/RoomNames.h"

namespace quoin::commands {

namespace {

/// Takes the lines of texts out of a drawing.
class TextReader {
 public:
  TextReader(Drawing& drawing, const std::string& ownLayer)
      : m_drawing(drawing), m_passedOver{os::fromUtf8(ownLayer)} {
    for (const LayerContent& layer : drawing.layers()) {
      if (layer.isOff || layer.isFrozen) {
        m_passedOver.insert(layer.name);
      }
    }
  }

  std::vector<plan::RoomText> read() {
    m_drawing.forEachEntity(m_drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
      if (m_passedOver.count(hostx::layerName(id)) != 0) {
        return;
      }
      const std::wstring kind = hostx::kindName(id);
      if (kind != L"TEXT" && kind != L"MTEXT" && kind != L"INSERT") {
        return;
      }
      AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
      if (entity.openStatus() != Acad::eOk) {
        return;
      }
      if (const AcDbText* const text = AcDbText::cast(entity.object())) {
        add(*text);
      } else if (const AcDbMText* const lines = AcDbMText::cast(entity.object())) {
        add(*lines);
      } else if (const AcDbBlockReference* const insert =
                     AcDbBlockReference::cast(entity.object())) {
        addAttributes(*insert);
      }
    });
    return std::move(m_texts);
  }

 private:
  /// The middle of what shows, or the place that the entity itself names.
  static AcGePoint2d middleOf(const AcDbEntity& entity, const AcGePoint3d& place) {
    AcDbExtents extents;
    if (entity.getGeomExtents(extents) != Acad::eOk) {
      return {place.x, place.y};
    }
    const AcGePoint3d low = extents.minPoint();
    const AcGePoint3d high = extents.maxPoint();
    return {0.5 * (low.x + high.x), 0.5 * (low.y + high.y)};
  }

  void add(const AcDbText& text) {
    m_texts.push_back({middleOf(text, text.position()), text.height(),
                       os::toUtf8(withoutCodes(takeText(text.textString())))});
  }
  void add(const AcDbMText& text) {
    const AcGePoint2d middle = middleOf(text, text.location());
    std::wstring rest = takeText(text.text());
    for (std::size_t line = 0; !rest.empty(); ++line) {
      const std::size_t end = std::min(rest.find(L'\n'), rest.size());
      m_texts.push_back({middle, text.textHeight(), os::toUtf8(rest.substr(0, end)), line});
      rest.erase(0, end + 1);
    }
  }
  void addAttributes(const AcDbBlockReference& insert) {
    const std::unique_ptr<AcDbObjectIterator> attributes(insert.attributeIterator());
    for (; attributes && !attributes->done(); attributes->step()) {
      AcDbObjectPointer<AcDbEntity> attribute(attributes->objectId(), AcDb::kForRead);
      if (attribute.openStatus() == Acad::eOk) {
        if (const AcDbText* const text = AcDbText::cast(attribute.object())) {
          add(*text);
        }
      }
    }
  }

  Drawing& m_drawing;
  std::set<std::wstring> m_passedOver;
  std::vector<plan::RoomText> m_texts;
};

}  // namespace

plan::RoomOptions roomOptions(const Drawing& drawing, double captureDistance,
                              double leastSquareMeters, double leastMillimeters) {
  const double unit = drawing.millimetersPerUnit();
  return {captureDistance,
          leastSquareMeters * (kMillimetersPerMeter / unit) * (kMillimetersPerMeter / unit),
          leastMillimeters / unit};
}

void findRooms(Drawing& drawing, const plan::RoomOptions& options, const std::string& ownLayer,
               RoomPlan& plan) {
  try {
    Progress::during("Finding rooms",
                     [&] { plan.found = plan::findRooms(plan.walls, plan.columns, options); });
  } catch (const plan::GeosError& error) {
    throw CommandError(ExitCode::EntityFailed, fmt::format("{}: the walls cannot be overlaid: {}",
                                                           drawing.file().string(), error.what()));
  }
  Progress::checkInterrupt();
  plan::nameRooms(plan.found.rooms, TextReader(drawing, ownLayer).read());
}

}  // namespace quoin::commands
