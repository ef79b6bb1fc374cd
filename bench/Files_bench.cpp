// Drawing files of many lines: reading one, writing one in which every line has changed, writing
// one in which nothing has. Peers: the dime library, and plain write() of the same bytes.
#include <fcntl.h>
#include <unistd.h>

#include <dime/Input.h>
#include <dime/Model.h>
#include <dime/Output.h>
#include <dime/sections/EntitiesSection.h>
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>

#include "acdb.h"
#include "bench/Measure.h"
#include "bench/Registration.h"
#include "bench/Workloads.h"
#include "dbents.h"
#include "dbsymtb.h"

namespace quoin::bench {
namespace {

namespace fs = std::filesystem;

/// A folder of its own that goes with the program.
class Folder {
 public:
  Folder() : m_path(fs::temp_directory_path() / ("quoin-bench-" + std::to_string(getpid()))) {
    fs::create_directories(m_path);
  }
  ~Folder() {
    std::error_code ignored;
    fs::remove_all(m_path, ignored);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  fs::path file(const std::string& name) const { return m_path / name; }

 private:
  fs::path m_path;
};

const Folder& folder() {
  static const Folder made;
  return made;
}

/// The drawing of this many lines on twenty layers, an R2010 file with all that such a file has.
const fs::path& drawingOf(std::size_t size) {
  static std::map<std::size_t, fs::path> made;
  fs::path& path = made[size];
  if (!path.empty()) {
    return path;
  }
  path = folder().file(std::to_string(size) + ".dxf");
  AcDbDatabase empty(true, true);
  if (empty.saveAs(path.wstring().c_str()) != Acad::eOk) {
    throw std::runtime_error("cannot write " + path.string());
  }
  std::ifstream input(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(input), {}};
  input.close();
  const std::size_t begin = text.find("ENTITIES");
  const std::size_t end = text.find("  0", text.find('\n', begin) - 0);
  if (begin == std::string::npos || end == std::string::npos) {
    throw std::runtime_error("no section of entities in " + path.string());
  }
  std::ofstream output(path, std::ios::binary);
  output << text.substr(0, end);
  Random random;
  char line[512];
  for (std::size_t i = 0; i < size; ++i) {
    const double x = random.between(0.0, 1e6);
    const double y = random.between(0.0, 1e6);
    const double dx = random.between(-5e3, 5e3);
    const double dy = random.between(-5e3, 5e3);
    std::snprintf(line, sizeof line,
                  "  0\nLINE\n  5\n%zX\n330\n1F\n100\nAcDbEntity\n  8\nL%02zu\n100\nAcDbLine\n"
                  " 10\n%.17g\n 20\n%.17g\n 30\n0.0\n 11\n%.17g\n 21\n%.17g\n 31\n0.0\n",
                  i + 0x10000, i % 20, x, y, x + dx, y + dy);
    output << line;
  }
  output << text.substr(end);
  return path;
}

std::unique_ptr<AcDbDatabase> load(const fs::path& path) {
  auto database = std::make_unique<AcDbDatabase>(false, true);
  if (database->readDwgFile(path.wstring().c_str()) != Acad::eOk) {
    throw std::runtime_error("cannot read " + path.string());
  }
  return database;
}

struct Target {
  std::unique_ptr<AcDbDatabase> database;
  fs::path file;
};

auto untouched(std::size_t size) {
  auto target = std::make_unique<Target>();
  target->database = load(drawingOf(size));
  target->file = folder().file("out.dxf");
  return target;
}

/// Every line gets another end.
auto changed(std::size_t size) {
  auto target = untouched(size);
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  target->database->getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
  blocks->close();
  AcDbBlockTableRecordIterator* made = nullptr;
  space->newIterator(made);
  space->close();
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  Random random(2);
  for (; !iterator->done(); iterator->step()) {
    AcDbEntity* entity = nullptr;
    if (iterator->getEntity(entity, AcDb::kForWrite) == Acad::eOk) {
      if (AcDbLine* const line = AcDbLine::cast(entity)) {
        line->setEndPoint(line->startPoint() +
                          AcGeVector3d(random.between(-5e3, 5e3), random.between(-5e3, 5e3), 0));
      }
      entity->close();
    }
  }
  return target;
}

void save(Target& target) {
  if (target.database->saveAs(target.file.wstring().c_str()) != Acad::eOk) {
    throw std::runtime_error("cannot write " + target.file.string());
  }
}

/// How many lines a file holds.
Found linesIn(const fs::path& path) {
  std::ifstream input(path, std::ios::binary);
  std::string code;
  std::string value;
  Found found;
  while (std::getline(input, code) && std::getline(input, value)) {
    if (code.find_first_not_of(" 0\r") == std::string::npos && value.starts_with("LINE")) {
      found.count += 1.0;
    }
  }
  return found;
}
Found linesWritten(const Target& target) {
  return linesIn(target.file);
}
Found bytesWritten(const Target& target) {
  return {static_cast<double>(fs::file_size(target.file)), 0.0};
}

void loadByModule(Target& target) {
  target.database = load(target.file);
}
Found linesLoaded(const Target& target) {
  AcDbBlockTable* blocks = nullptr;
  AcDbBlockTableRecord* space = nullptr;
  target.database->getBlockTable(blocks, AcDb::kForRead);
  blocks->getAt(ACDB_MODEL_SPACE, space, AcDb::kForRead);
  blocks->close();
  AcDbBlockTableRecordIterator* made = nullptr;
  space->newIterator(made);
  space->close();
  const std::unique_ptr<AcDbBlockTableRecordIterator> iterator(made);
  Found found;
  for (; !iterator->done(); iterator->step()) {
    found.count += 1.0;
  }
  return found;
}

struct DimeTarget {
  dimeModel model;
  fs::path file;
};
auto dimeTargetFor(std::size_t size) {
  auto target = std::make_unique<DimeTarget>();
  target->file = drawingOf(size);
  return target;
}
void loadByDime(DimeTarget& target) {
  dimeInput input;
  if (!input.setFile(target.file.c_str()) || !target.model.read(&input)) {
    throw std::runtime_error("dime cannot read " + target.file.string());
  }
}
Found linesLoadedByDime(DimeTarget& target) {
  auto* const entities = static_cast<dimeEntitiesSection*>(target.model.findSection("ENTITIES"));
  return {static_cast<double>(entities->getNumEntities()), 0.0};
}
auto readByDime(std::size_t size) {
  auto target = dimeTargetFor(size);
  loadByDime(*target);
  target->file = folder().file("dime.dxf");
  return target;
}
void saveByDime(DimeTarget& target) {
  dimeOutput output;
  if (!output.setFilename(target.file.c_str()) || !target.model.write(&output)) {
    throw std::runtime_error("dime cannot write");
  }
}
Found linesWrittenByDime(const DimeTarget& target) {
  return linesIn(target.file);
}

auto bytesOf(std::size_t size) {
  std::ifstream input(drawingOf(size), std::ios::binary);
  return std::make_unique<std::string>(std::istreambuf_iterator<char>(input),
                                       std::istreambuf_iterator<char>());
}
void writeBytes(const std::string& bytes, bool synchronised) {
  const fs::path file = folder().file("plain.dxf");
  const int handle = ::open(file.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t count = ::write(handle, bytes.data() + done, bytes.size() - done);
    if (count <= 0) {
      throw std::runtime_error("cannot write");
    }
    done += static_cast<std::size_t>(count);
  }
  if (synchronised) {
    ::fsync(handle);
  }
  ::close(handle);
}
void writePlainly(const std::string& bytes) {
  writeBytes(bytes, false);
}
void writeSafely(const std::string& bytes) {
  writeBytes(bytes, true);
}
Found bytesOfPlain(const std::string& bytes) {
  return {static_cast<double>(bytes.size()), 0.0};
}
/// How quickly the ends of the lines in a file can be found at all.
void scanLines(const std::string& bytes) {
  benchmark::DoNotOptimize(std::count(bytes.begin(), bytes.end(), '\n'));
}

auto fileOf(std::size_t size) {
  auto target = std::make_unique<Target>();
  target->file = drawingOf(size);
  return target;
}

}  // namespace

void registerFiles() {
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    const int rounds = size > 10000 ? 5 : 15;
    Row("load", size, rounds)
        .form("ours", fileOf, loadByModule, linesLoaded)
        .form("dime", dimeTargetFor, loadByDime, linesLoadedByDime)
        .form("scan", bytesOf, scanLines)
        .add();
    Row("save-changed", size, rounds)
        .form("ours", changed, save, linesWritten)
        .form("dime", readByDime, saveByDime, linesWrittenByDime)
        .add();
    // Often, as long as that is quick: how long the disk takes varies most of all.
    Row("save-untouched", size, size > 100000 ? 5 : 31)
        .form("ours", untouched, save, bytesWritten)
        .form("write-fsync", bytesOf, writeSafely, bytesOfPlain)
        .form("write", bytesOf, writePlainly, bytesOfPlain)
        .add();
  }
}

}  // namespace quoin::bench
