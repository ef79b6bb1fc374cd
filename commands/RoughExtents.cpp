#include "commands/RoughExtents.h"

#include "hostextents.h"

namespace quoin::commands {

void warnOfRoughExtents(Drawing& drawing, Report& report) {
  const Adesk::UInt64 count = hostx::roughExtents(&drawing.database());
  if (count > 0) {
    report.warn(fmt::format(
        "blocks show more than {} entities: {} measured by the boxes of blocks, which "
        "may reach too far",
        hostx::exactExtentsLimit(), count == 1 ? "1 is" : fmt::format("{} are", count)));
  }
}

}  // namespace quoin::commands
