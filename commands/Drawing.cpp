#include "commands/Drawing.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdio>

#include "acutmem.h"
#include "commands/CommandError.h"
#include "commands/Progress.h"
#include "dbobjptr.h"
#include "dbsymtb.h"
#include "embedded/db/core/DrawingStream.h"
#include "embedded/os/Process.h"
#include "embedded/os/Utf8.h"

namespace quoin::commands {

namespace {

/// Shows the progress of reading or saving for as long as it lives.
class FileProgress {
 public:
  FileProgress(AcDbDatabase* database, std::string work)
      : m_database(database), m_progress(std::move(work)) {
    hostx::setProgress(m_database, [this](double done) { return m_progress.report(done); });
  }
  ~FileProgress() { hostx::setProgress(m_database, {}); }
  FileProgress(const FileProgress&) = delete;
  FileProgress& operator=(const FileProgress&) = delete;

 private:
  AcDbDatabase* m_database;
  Progress m_progress;
};

/// All layers in table order; what is on them is not counted.
std::vector<LayerContent> layersOf(AcDbDatabase& database) {
  std::vector<LayerContent> layers;
  AcDbLayerTable* table = nullptr;
  AcDbLayerTableIterator* made = nullptr;
  if (database.getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
    return layers;
  }
  table->newIterator(made);
  table->close();
  const std::unique_ptr<AcDbLayerTableIterator> iterator(made);
  for (; iterator && !iterator->done(); iterator->step()) {
    AcDbLayerTableRecord* record = nullptr;
    if (iterator->getRecord(record, AcDb::kForRead) != Acad::eOk) {
      continue;
    }
    LayerContent layer;
    const ACHAR* name = L"";
    record->getName(name);
    layer.name = name;
    layer.isOff = record->isOff();
    layer.isFrozen = record->isFrozen();
    layer.isLocked = record->isLocked();
    record->close();
    layers.push_back(std::move(layer));
  }
  return layers;
}

}  // namespace

std::size_t LayerContent::count() const {
  std::size_t sum = 0;
  for (const auto& [kind, count] : countOfKind) {
    sum += count;
  }
  return sum;
}

Drawing::Drawing(const std::filesystem::path& file, const std::string& codePage)
    : m_file(file == kStandardStream ? "standard input" : file),
      m_database(std::make_unique<AcDbDatabase>(false, true)) {
  if (hostx::setCodePage(m_database.get(), os::fromUtf8(codePage).c_str()) != Acad::eOk) {
    throw CommandError(ExitCode::Usage, fmt::format("no code page '{}' is known", codePage));
  }
  Acad::ErrorStatus status;
  {
    const FileProgress progress(m_database.get(), "Reading " + m_file.filename().string());
    const std::string path = file == kStandardStream ? os::standardInputPath() : file.string();
    status = m_database->readDwgFile(os::fromUtf8(path).c_str());
  }
  if (status == Acad::eUserBreak) {
    Progress::checkInterrupt();
  }
  if (status != Acad::eOk) {
    throw CommandError(ExitCode::InputUnreadable,
                       fileMessage(m_database.get(), status, file, "read the drawing"));
  }
  m_info = hostx::fileInfo(m_database.get());
}

Drawing::~Drawing() = default;

double Drawing::millimetersPerUnit() const {
  const double millimeters = hostx::millimetersPerUnit(m_info.units);
  return millimeters > 0.0 ? millimeters : 1.0;
}

std::string Drawing::unitName() const {
  switch (m_info.units) {
    case AcDb::kUnitsUndefined:
      return "units";
    case AcDb::kUnitsMillimeters:
      return "mm";
    case AcDb::kUnitsCentimeters:
      return "cm";
    case AcDb::kUnitsMeters:
      return "m";
    case AcDb::kUnitsInches:
      return "in";
    case AcDb::kUnitsFeet:
      return "ft";
    default:
      return os::toUtf8(hostx::unitsName(m_info.units));
  }
}

AcDbObjectId Drawing::modelSpaceId() {
  const AcDbObjectId id = modelSpaceOf(*m_database);
  if (id.isNull()) {
    throw CommandError(ExitCode::InputUnreadable, m_file.string() + ": it has no model space");
  }
  return id;
}

std::vector<AcDbObjectId> Drawing::entities(const AcDbObjectId& block) {
  std::vector<AcDbObjectId> ids;
  forEachEntity(block, [&](const AcDbObjectId& id) { ids.push_back(id); });
  return ids;
}

void Drawing::forEachEntity(const AcDbObjectId& block,
                            const std::function<void(AcDbObjectId)>& visit) {
  // Records are a little more than entities; blocks inside come and go in no time.
  Progress progress("Looking at " + m_file.filename().string());
  std::size_t count = 0;
  forEachEntityOf(block, [&](const AcDbObjectId& id) {
    if (!progress.step(++count, m_info.recordCount)) {
      Progress::checkInterrupt();
    }
    visit(id);
  });
}

std::set<std::wstring> Drawing::lockedLayers() {
  std::set<std::wstring> locked;
  for (const LayerContent& layer : layersOf(*m_database)) {
    if (layer.isLocked) {
      locked.insert(layer.name);
    }
  }
  return locked;
}

std::vector<LayerContent> Drawing::layers() {
  std::vector<LayerContent> layers = layersOf(*m_database);
  std::map<std::wstring, std::size_t> numberOf;
  for (std::size_t i = 0; i < layers.size(); ++i) {
    numberOf.emplace(layers[i].name, i);
  }
  forEachEntity(modelSpaceId(), [&](const AcDbObjectId& id) {
    const auto found = numberOf.find(hostx::layerName(id));
    if (found != numberOf.end()) {
      ++layers[found->second].countOfKind[hostx::kindName(id)];
    }
  });
  return layers;
}

void Drawing::saveAs(const std::filesystem::path& file, bool keepBackup) {
  Progress::checkInterrupt();
  Acad::ErrorStatus status;
  {
    const FileProgress progress(m_database.get(), "Saving " + file.filename().string());
    status = m_database->saveAs(os::fromUtf8(file.string()).c_str(), keepBackup);
  }
  if (status == Acad::eUserBreak) {
    Progress::checkInterrupt();
  }
  if (status != Acad::eOk) {
    throw CommandError(ExitCode::OutputUnwritable,
                       fileMessage(m_database.get(), status, file, "save the drawing"));
  }
}

void Drawing::writeToStandardOutput() {
  Progress::checkInterrupt();
  const Acad::ErrorStatus status = writePieces(*m_database, [](std::string_view piece) {
    std::fwrite(piece.data(), 1, piece.size(), stdout);
  });
  if (status == Acad::eUserBreak) {
    Progress::checkInterrupt();
  }
  if (status != Acad::eOk) {
    throw CommandError(
        ExitCode::OutputUnwritable,
        fileMessage(m_database.get(), status, "standard output", "write the drawing"));
  }
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw CommandError(ExitCode::OutputUnwritable,
                       "standard output: cannot write the drawing: the reader is gone, or the disk "
                       "is full");
  }
}

AcDbObjectId modelSpaceOf(AcDbDatabase& database) {
  AcDbBlockTable* table = nullptr;
  AcDbObjectId id;
  if (database.getBlockTable(table, AcDb::kForRead) == Acad::eOk) {
    table->getAt(L"*Model_Space", id);
    table->close();
  }
  return id;
}

std::string fileMessage(const AcDbDatabase* database, Acad::ErrorStatus status,
                        const std::filesystem::path& file, const char* action) {
  const std::string words = os::toUtf8(hostx::lastFileError(database));
  if (!words.empty()) {
    return words;
  }
  return fmt::format("{}: cannot {}: {}", file.string(), action,
                     os::toUtf8(acadErrorStatusText(status)));
}

void forEachEntityOf(const AcDbObjectId& block, const std::function<void(AcDbObjectId)>& visit) {
  AcDbObjectPointer<AcDbBlockTableRecord> record(block, AcDb::kForRead);
  AcDbBlockTableRecordIterator* made = nullptr;
  if (record.openStatus() != Acad::eOk || record->newIterator(made) != Acad::eOk) {
    return;
  }
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  record.close();
  for (; !iterator->done(); iterator->step()) {
    AcDbObjectId id;
    if (iterator->getEntityId(id) == Acad::eOk) {
      visit(id);
    }
  }
}

Adesk::UInt64 placeInFile(const Drawing& drawing, const AcDbObjectId& id) {
  return drawing.info().format == L"DXF" ? hostx::lineNumber(id) : 0;
}

namespace {

/// "line 1742", "byte 90312"; "" for an entity that is in no file.
std::string placeText(const Drawing& drawing, const AcDbObjectId& id) {
  const Adesk::UInt64 place = placeInFile(drawing, id);
  return place == 0 ? "" : fmt::format("{} {}", drawing.info().isBinary ? "byte" : "line", place);
}

}  // namespace

std::string describe(const Drawing& drawing, const AcDbObjectId& id) {
  std::string text = os::toUtf8(hostx::kindName(id));
  if (const std::string handle = handleText(id); !handle.empty()) {
    text += " " + handle;
  }
  if (const std::string place = placeText(drawing, id); !place.empty()) {
    text += fmt::format(" at {} of {}", place, drawing.file().string());
  } else if (drawing.info().format != L"DXF") {
    text += fmt::format(" of {}", drawing.file().string());
  }
  return text;
}

std::string handleText(const AcDbObjectId& id) {
  const AcDbHandle handle = id.handle();
  if (handle.isNull()) {
    return "";
  }
  return fmt::format("{:X}", static_cast<Adesk::UInt64>(handle));
}

std::string nameText(const Drawing& drawing, const AcDbObjectId& id) {
  const std::string handle = handleText(id);
  return handle.empty() ? placeText(drawing, id) : handle;
}

std::string statusText(Acad::ErrorStatus status) {
  return status == Acad::eDwgObjectImproperlyRead
             ? "it is closed, this program does not know all that the drawing says of it"
             : os::toUtf8(acadErrorStatusText(status));
}

void check(Acad::ErrorStatus status, const Drawing& drawing, const AcDbObjectId& id,
           const char* action) {
  if (status == Acad::eOk) {
    return;
  }
  throw CommandError(ExitCode::EntityFailed, fmt::format("{}: cannot {}: {}", describe(drawing, id),
                                                         action, statusText(status)));
}

std::wstring takeText(ACHAR* text) {
  const std::wstring copy = text ? text : L"";
  acutDelString(text);
  return copy;
}

}  // namespace quoin::commands
