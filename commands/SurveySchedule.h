// The schedule of a surveyed plan: walls by layer and width, openings by kind and width.
#pragma once

#include <string>
#include <vector>

#include "commands/PlanReading.h"
#include "commands/RoomOutputs.h"

namespace quoin::commands {

/// Widths that are the same in whole millimetres are one.
struct SurveySchedule {
  struct WallRow {
    std::string layer;  // UTF-8; of the faces
    long width = 0;     // millimetres
    std::size_t count = 0;
    double length = 0.0;  // metres, along reference lines
    double area = 0.0;    // square metres in plan: length by width
  };
  struct OpeningRow {
    plan::OpeningKind kind = plan::OpeningKind::Opening;
    long width = 0;  // millimetres
    std::size_t count = 0;
    double length = 0.0;  // metres, all widths together
  };

  std::vector<WallRow> walls;        // by layer, then width
  std::vector<OpeningRow> openings;  // by kind, then width
};

SurveySchedule makeSchedule(const Drawing& drawing, const ReadPlan& read,
                            const plan::FoundWalls& found);

/// One table (RFC 4180, UTF-8): walls, openings, then a line a room.
std::string scheduleCsv(const Drawing& drawing, const SurveySchedule& schedule,
                        const RoomPlan& rooms);

}  // namespace quoin::commands
