#include "commands/ChosenEntities.h"

#include <fmt/format.h>

#include "commands/CommandError.h"
#include "commands/CommonOptions.h"
#include "commands/Progress.h"
#include "commands/ReportFields.h"
#include "dbobjptr.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

ChosenEntities chooseEntities(Drawing& drawing, const std::set<std::wstring>& layers,
                              const AcDbObjectId& except) {
  const std::set<std::wstring> locked = drawing.lockedLayers();
  ChosenEntities chosen;
  drawing.forEachEntity(drawing.modelSpaceId(), [&](const AcDbObjectId& id) {
    const std::wstring layer = hostx::layerName(id);
    if (id == except || !layers.count(layer)) {
      return;
    }
    if (locked.count(layer)) {
      ++chosen.onLockedLayers;
      return;
    }
    chosen.entities.push_back(id);
    ++chosen.countOfKind[hostx::kindName(id)];
  });
  if (chosen.entities.empty() && chosen.onLockedLayers == 0) {
    throw CommandError(ExitCode::NothingToDo,
                       fmt::format("{}: nothing to change on {} in model space",
                                   drawing.file().string(), namesText(layers)));
  }
  return chosen;
}

void changeEach(const Drawing& drawing, const ChosenEntities& chosen,
                const std::function<void(AcDbEntity&)>& change) {
  Progress progress("Changing the drawing");
  std::size_t count = 0;
  for (const AcDbObjectId& id : chosen.entities) {
    if (!progress.step(++count, chosen.entities.size())) {
      Progress::checkInterrupt();
    }
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForWrite);
    check(entity.openStatus(), drawing, id, "open");
    change(*entity.object());
  }
}

}  // namespace quoin::commands
