#include "commands/DrawingJob.h"

#include "commands/Progress.h"
#include "commands/picture/Render.h"
#include "commands/picture/SheetLayout.h"

namespace quoin::commands {

void DrawingJob::save(Drawing& drawing) const {
  Progress::checkInterrupt();
  if (writesToStandardOutput()) {
    drawing.writeToStandardOutput();
  } else if (!isDryRun) {
    drawing.saveAs(output, isInPlace);
  }
}

void DrawingJob::render(const Picture& drawn, Report& report) const {
  if (hasPicture()) {
    renderAny(drawn, report);
  }
}

void DrawingJob::renderAny(const Picture& drawn, Report& report) const {
  for (const std::string& warning : drawn.warnings) {
    report.warn("picture: " + warning);
  }
  std::string leftOut;
  viewOf(drawn, leftOut);
  if (!leftOut.empty()) {
    report.warn("picture: " + leftOut);
  }
  Progress::checkInterrupt();
  renderPicture(drawn, picture);
}

}  // namespace quoin::commands
