#include "commands/picture/PictureParts.h"

#include <algorithm>
#include <cmath>

#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

LengthKind lengthKindOf(AcDb::UnitsValue units) {
  switch (units) {
    case AcDb::kUnitsUndefined:
      return LengthKind::Unknown;
    case AcDb::kUnitsInches:
    case AcDb::kUnitsFeet:
    case AcDb::kUnitsMiles:
    case AcDb::kUnitsMicroinches:
    case AcDb::kUnitsMils:
    case AcDb::kUnitsYards:
      return LengthKind::Imperial;
    default:
      return LengthKind::Metric;
  }
}

}  // namespace

Picture newPicture(const Drawing& drawing, const std::string& what, const std::string& subtitle) {
  Picture picture;
  picture.title = drawing.file().filename().string() + ": " + what;
  picture.subtitle = subtitle;
  picture.millimetersPerUnit =
      drawing.info().units == AcDb::kUnitsUndefined ? 0.0 : drawing.millimetersPerUnit();
  picture.lengthKind = lengthKindOf(drawing.info().units);
  picture.layerName = [](const AcDbObjectId& layer) {
    const AcDbObjectPointer<AcDbLayerTableRecord> record(layer, AcDb::kForRead);
    const ACHAR* name = L"";
    if (record.openStatus() == Acad::eOk) {
      record->getName(name);
    }
    return os::toUtf8(name);
  };
  return picture;
}

void addLine(Picture& picture, const AcGePoint3d& start, const AcGePoint3d& end, const Color& color,
             double width, bool isDashed) {
  picture.paths.push_back({{{start.x, start.y}, {end.x, end.y}}, false, color, width, isDashed});
}

void addMark(Picture& picture, const AcGePoint3d& at, MarkShape shape, const Color& color,
             double size) {
  picture.marks.push_back({{at.x, at.y}, shape, color, size});
}

void addFocus(Picture& picture, const AcGePoint3d& start, const AcGePoint3d& end) {
  picture.focus.push_back({start.x, start.y});
  picture.focus.push_back({end.x, end.y});
}

double markSizeFor(std::size_t count) {
  return std::clamp(90.0 / std::sqrt(static_cast<double>(count) + 1.0), 3.0, 6.5);
}

}  // namespace quoin::commands
