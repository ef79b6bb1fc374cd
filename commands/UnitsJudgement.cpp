#include "commands/UnitsJudgement.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "commands/FaceSpacing.h"
#include "commands/FeetAndInches.h"
#include "dbdim.h"
#include "dbents.h"
#include "dbmtext.h"
#include "dbobjptr.h"
#include "embedded/db/core/LinearUnits.h"

namespace quoin::commands {

namespace {

/// What most walls are near to, to choose between units that both make walls.
constexpr double kUsualWall = 180.0;
/// A plan across, millimetres: less is a detail, more a town. Single lines in a large plan lie as
/// far apart as rooms are wide, so that a large plan alone is no reason for doubt.
constexpr double kSmallestPlan = 3.0e3;
constexpr double kLargestPlan = 150.0e3;
/// So few pairs of faces say nothing of a plan.
constexpr std::size_t kFewestPairs = 10;
/// Shares of the pairs that are as far apart as a wall is thick: with no more the named unit is
/// doubted, with no less another one is believed.
constexpr double kImplausibleShare = 0.2;
constexpr double kPlausibleShare = 0.5;
/// Walls of one plan come in few thicknesses; gaps between single lines are all different.
constexpr std::size_t kThicknesses = 4;
constexpr double kSameThickness = 0.02;
constexpr double kConcentration = 0.5;
/// Texts are rounded, and one dimension may have been typed over.
constexpr std::size_t kFewestDimensions = 3;
constexpr double kSameUnit = 0.02;
/// So many dimensions tell it; more would only take time.
constexpr std::size_t kMostDimensions = 200;
constexpr double kShortestMeasured = 300.0;  // mm as written: shorter ones are rounded too much

double millimetersOf(AcDb::UnitsValue units) {
  const double millimeters = hostx::millimetersPerUnit(units);
  return millimeters > 0.0 ? millimeters : 1.0;
}

std::string nameOf(AcDb::UnitsValue units) {
  for (const NamedUnit& unit : namedUnits()) {
    if (unit.value == units) {
      return unit.name;
    }
  }
  return "its unit";
}

double medianOf(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// Which of the spacings are walls if a drawing unit has so many millimetres.
std::vector<double> thicknessesIn(const std::vector<double>& spacings, double millimeters) {
  std::vector<double> walls;
  for (const double spacing : spacings) {
    const double thickness = spacing * millimeters;
    if (thickness >= kThinnestWallMillimeters && thickness <= kThickestWallMillimeters) {
      walls.push_back(thickness);
    }
  }
  return walls;
}

/// Whether few thicknesses make up most of them.
bool areConcentrated(std::vector<double> thicknesses) {
  std::sort(thicknesses.begin(), thicknesses.end());
  std::vector<std::size_t> counts;
  double first = 0.0;
  for (const double thickness : thicknesses) {
    if (counts.empty() || thickness > first * (1.0 + kSameThickness)) {
      counts.push_back(0);
      first = thickness;
    }
    ++counts.back();
  }
  std::sort(counts.rbegin(), counts.rend());
  std::size_t common = 0;
  for (std::size_t i = 0; i < std::min(kThicknesses, counts.size()); ++i) {
    common += counts[i];
  }
  return static_cast<double>(common) >= kConcentration * static_cast<double>(thicknesses.size());
}

double shareOf(std::size_t part, std::size_t all) {
  return all == 0 ? 0.0 : static_cast<double>(part) / static_cast<double>(all);
}

std::string lengthText(double millimeters) {
  return millimeters < 1000.0 ? fmt::format("{:.3g} mm", millimeters)
                              : fmt::format("{:.3g} m", millimeters / 1000.0);
}

/// How many millimetres the dimensions make of a drawing unit, if most of them agree.
std::optional<double> agreedMillimeters(const std::vector<double>& dimensions) {
  if (dimensions.size() < kFewestDimensions) {
    return std::nullopt;
  }
  const double median = medianOf(dimensions);
  const auto agreeing = std::count_if(dimensions.begin(), dimensions.end(), [&](double value) {
    return std::fabs(value - median) <= kSameUnit * median;
  });
  if (2 * static_cast<std::size_t>(agreeing) <= dimensions.size()) {
    return std::nullopt;
  }
  return median;
}

const NamedUnit* unitOf(double millimeters) {
  for (const NamedUnit& unit : namedUnits()) {
    if (std::fabs(millimeters - unit.millimeters) <= kSameUnit * unit.millimeters) {
      return &unit;
    }
  }
  return nullptr;
}

/// The unit that makes common walls of the spacings and a plan of the span; null if none does.
const NamedUnit* unitOfWalls(const UnitsEvidence& evidence) {
  const NamedUnit* best = nullptr;
  double least = 0.0;
  for (const NamedUnit& unit : namedUnits()) {
    const std::vector<double> walls = thicknessesIn(evidence.spacings, unit.millimeters);
    const double across = evidence.span * unit.millimeters;
    if (shareOf(walls.size(), evidence.spacings.size()) < kPlausibleShare ||
        across < kSmallestPlan || across > kLargestPlan || !areConcentrated(walls)) {
      continue;
    }
    double distance = std::fabs(std::log(medianOf(walls) / kUsualWall));
    // The header's system decides where both are near.
    const bool isImperial = unit.value == AcDb::kUnitsInches || unit.value == AcDb::kUnitsFeet;
    distance += isImperial == (evidence.isImperial || evidence.showsFeetAndInches) ? 0.0 : 0.25;
    if (!best || distance < least) {
      best = &unit;
      least = distance;
    }
  }
  return best;
}

/// What the first text in a dimension's block says; "" where there is none.
std::wstring shownText(const AcDbDimension& dimension) {
  std::wstring shown = dimension.dimensionText();
  if (!shown.empty() && shown.find(L"<>") == std::wstring::npos) {
    return shown;
  }
  shown.clear();
  forEachEntityOf(dimension.dimBlockId(), [&](const AcDbObjectId& id) {
    if (!shown.empty()) {
      return;
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (entity.openStatus() != Acad::eOk) {
      return;
    }
    if (const AcDbMText* paragraph = AcDbMText::cast(entity.object())) {
      shown = takeText(paragraph->contents());
    } else if (const AcDbText* text = AcDbText::cast(entity.object())) {
      shown = takeText(text->textString());
    }
  });
  return shown;
}

std::vector<double> readDimensions(Drawing& drawing) {
  std::vector<double> found;
  std::size_t count = 0;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    if (count >= kMostDimensions || hostx::kindName(id) != L"DIMENSION") {
      return;
    }
    const AcDbObjectPointer<AcDbDimension> dimension(id, AcDb::kForRead);
    double measured = 0.0;
    if (dimension.openStatus() != Acad::eOk || dimension->getMeasurement(measured) != Acad::eOk ||
        !(measured > 0.0)) {
      return;
    }
    ++count;
    const std::optional<double> written = writtenMillimeters(shownText(*dimension.object()));
    if (written && *written >= kShortestMeasured && std::isfinite(*written / measured)) {
      found.push_back(*written / measured);
    }
  });
  return found;
}

}  // namespace

bool writesFeetAndInches(Drawing& drawing) {
  constexpr int kEngineering = 3;
  constexpr int kArchitectural = 4;
  const int linear = db::linearUnits(drawing.database());
  return linear == kEngineering || linear == kArchitectural;
}

UnitsEvidence gatherUnitsEvidence(Drawing& drawing, const std::vector<WallLine>& walls) {
  UnitsEvidence evidence;
  evidence.named = drawing.info().units;
  evidence.spacings = faceSpacings(walls);
  AcGePoint3d least(HUGE_VAL, HUGE_VAL, 0.0);
  AcGePoint3d most(-HUGE_VAL, -HUGE_VAL, 0.0);
  for (const WallLine& wall : walls) {
    for (const AcGePoint3d& end : {wall.start, wall.end}) {
      least.set(std::min(least.x, end.x), std::min(least.y, end.y), 0.0);
      most.set(std::max(most.x, end.x), std::max(most.y, end.y), 0.0);
    }
  }
  evidence.span = walls.empty() ? 0.0 : std::max(most.x - least.x, most.y - least.y);
  evidence.dimensions = readDimensions(drawing);
  evidence.showsFeetAndInches = writesFeetAndInches(drawing);
  evidence.isImperial = drawing.database().measurement() == 0;
  return evidence;
}

std::optional<UnitsDoubt> doubtUnits(const UnitsEvidence& evidence) {
  const double named = millimetersOf(evidence.named);
  const bool namesOne = evidence.named != AcDb::kUnitsUndefined;
  const std::string says = namesOne ? "the drawing says " + nameOf(evidence.named)
                                    : "the drawing names no unit, which is taken for mm";
  if (const std::optional<double> written = agreedMillimeters(evidence.dimensions)) {
    const NamedUnit* const unit = unitOf(*written);
    if (std::fabs(*written - named) <= kSameUnit * named) {
      return std::nullopt;
    }
    if (unit) {
      return UnitsDoubt{unit, fmt::format("{}, but by the texts of its dimensions a unit is 1 {}",
                                          says, unit->name)};
    }
  }
  const std::size_t pairs = evidence.spacings.size();
  const std::size_t walls = thicknessesIn(evidence.spacings, named).size();
  const double across = evidence.span * named;
  const bool isOddPlan = across < kSmallestPlan || across > kLargestPlan;
  const bool isInches = evidence.named == AcDb::kUnitsInches;
  if (pairs < kFewestPairs || shareOf(walls, pairs) > kImplausibleShare ||
      !(isOddPlan || (evidence.showsFeetAndInches && !isInches))) {
    return std::nullopt;
  }
  const NamedUnit* const unit = unitOfWalls(evidence);
  if (!unit || unit->value == evidence.named) {
    return std::nullopt;
  }
  const double spacing = medianOf(evidence.spacings);
  return UnitsDoubt{
      unit, fmt::format("{}, but most faces of its walls would be {} apart and the plan {} across; "
                        "with 1 {} a unit they are {} and {}",
                        says, lengthText(spacing * named), lengthText(across), unit->name,
                        lengthText(spacing * unit->millimeters),
                        lengthText(evidence.span * unit->millimeters))};
}

}  // namespace quoin::commands
