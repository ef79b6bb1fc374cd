#include "commands/CurrentDrawing.h"

#include <filesystem>
#include <memory>

#include "dbapserv.h"
#include "embedded/os/Utf8.h"
#include "embedded/product/HostApplication.h"

namespace quoin::commands {

namespace {

AcApDocument& openDocument(Drawing& drawing) {
  std::error_code ignored;
  const std::filesystem::path whole = std::filesystem::absolute(drawing.file(), ignored);
  // The drawing keeps its database; the document only looks at it.
  const std::shared_ptr<AcDbDatabase> database(std::shared_ptr<void>(), &drawing.database());
  return HostApplication::current()->editor().openDocument(os::fromUtf8(whole.string()), database);
}

}  // namespace

WorkingDatabase::WorkingDatabase(AcDbDatabase& database)
    : m_before(acdbHostApplicationServices()->workingDatabase()) {
  acdbHostApplicationServices()->setWorkingDatabase(&database);
}

WorkingDatabase::~WorkingDatabase() {
  acdbHostApplicationServices()->setWorkingDatabase(m_before);
}

CurrentDrawing::CurrentDrawing(Drawing& drawing)
    : m_working(drawing.database()), m_document(openDocument(drawing)) {}

CurrentDrawing::~CurrentDrawing() {
  HostApplication::current()->editor().closeDocument(m_document);
}

}  // namespace quoin::commands
