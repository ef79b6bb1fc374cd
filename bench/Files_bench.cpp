// Drawing files of many lines: reading one, writing one in which every line has changed, writing
// one in which nothing has. Peers: the dime library, and plain write() of the same bytes.
#include <fcntl.h>
#include <unistd.h>

#include <dime/Input.h>
#include <dime/Model.h>
#include <dime/Output.h>
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

std::size_t save(Target& target) {
  if (target.database->saveAs(target.file.wstring().c_str()) != Acad::eOk) {
    throw std::runtime_error("cannot write " + target.file.string());
  }
  return fs::file_size(target.file);
}

std::size_t loadByModule(const fs::path& path) {
  return load(path) != nullptr ? fs::file_size(path) : 0;
}
std::size_t loadByDime(const fs::path& path) {
  dimeInput input;
  dimeModel model;
  if (!input.setFile(path.c_str()) || !model.read(&input)) {
    throw std::runtime_error("dime cannot read " + path.string());
  }
  return fs::file_size(path);
}

struct DimeTarget {
  dimeModel model;
};
auto readByDime(std::size_t size) {
  auto target = std::make_unique<DimeTarget>();
  dimeInput input;
  if (!input.setFile(drawingOf(size).c_str()) || !target->model.read(&input)) {
    throw std::runtime_error("dime cannot read");
  }
  return target;
}
std::size_t saveByDime(DimeTarget& target) {
  const fs::path file = folder().file("dime.dxf");
  {
    dimeOutput output;
    if (!output.setFilename(file.c_str()) || !target.model.write(&output)) {
      throw std::runtime_error("dime cannot write");
    }
  }
  return fs::file_size(file);
}

auto bytesOf(std::size_t size) {
  std::ifstream input(drawingOf(size), std::ios::binary);
  return std::make_unique<std::string>(std::istreambuf_iterator<char>(input),
                                       std::istreambuf_iterator<char>());
}
std::size_t writeBytes(const std::string& bytes, bool synchronised) {
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
  return done;
}
std::size_t writePlainly(const std::string& bytes) {
  return writeBytes(bytes, false);
}
std::size_t writeSafely(const std::string& bytes) {
  return writeBytes(bytes, true);
}
/// How quickly the ends of the lines in a file can be found at all.
std::size_t scanLines(const std::string& bytes) {
  return static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n'));
}

auto pathOf(std::size_t size) {
  return std::make_unique<fs::path>(drawingOf(size));
}

}  // namespace

void registerFiles() {
  for (const std::size_t size : {10000u, 100000u, 1000000u}) {
    measure("load", "ours", size, pathOf, loadByModule, size > 100000 ? 6 : 0);
    measure("load", "dime", size, pathOf, loadByDime, size > 100000 ? 1 : 3);
    measure("load", "scan", size, bytesOf, scanLines);
    measure("save-changed", "ours", size, changed, save, 3);
    measure("save-changed", "dime", size, readByDime, saveByDime, size > 100000 ? 1 : 3);
    // Often, as long as that is quick: how long the disk takes varies most of all.
    const int writes = size > 100000 ? 5 : 30;
    measure("save-untouched", "ours", size, untouched, save, writes);
    measure("save-untouched", "write-fsync", size, bytesOf, writeSafely, writes);
    measure("save-untouched", "write", size, bytesOf, writePlainly, writes);
  }
}

}  // namespace quoin::bench
