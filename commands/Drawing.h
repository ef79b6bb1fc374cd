// A drawing file as the commands see it: read once, asked for its model space and layers,
// saved in the version and form it was read in.
#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "dbmain.h"
#include "hostextra.h"

namespace quoin::commands {

/// A layer with what stands on it in model space.
struct LayerContent {
  std::wstring name;
  std::map<std::wstring, std::size_t> countOfKind;  // by kind name, "LINE"
  bool isOff = false;
  bool isFrozen = false;
  bool isLocked = false;

  std::size_t count() const;
};

/// What stands for the standard input or output among the names of files.
inline constexpr const char* kStandardStream = "-";

class Drawing {
 public:
  /// Reads the file; kStandardStream is the standard input. Its text is in `codePage`, or where
  /// that is empty in what the file names.
  /// Fails: throws CommandError (InputUnreadable, Interrupted) with file, line and cause; Usage for
  /// a code page that nobody knows.
  explicit Drawing(const std::filesystem::path& file, const std::string& codePage = "");
  ~Drawing();

  AcDbDatabase& database() { return *m_database; }
  const hostx::FileInfo& info() const { return m_info; }
  const std::filesystem::path& file() const { return m_file; }
  /// Millimetres of one drawing unit; a drawing without units counts as one in millimetres.
  double millimetersPerUnit() const;
  /// "mm", "m", "in", ...; "units" where the drawing has none.
  std::string unitName() const;

  /// Takes the drawing for one in these units, whatever it says; the file stays as it is.
  void takeUnits(AcDb::UnitsValue units) { m_info.units = units; }

  AcDbObjectId modelSpaceId();
  /// Calls `visit` for every entity of a block that is not erased, in file order.
  void forEachEntity(const AcDbObjectId& block, const std::function<void(AcDbObjectId)>& visit);
  /// All of them, in that order.
  std::vector<AcDbObjectId> entities(const AcDbObjectId& block);
  /// All layers in table order.
  std::vector<LayerContent> layers();
  /// The names of those that are locked.
  std::set<std::wstring> lockedLayers();

  /// Saves under a name; the file there is the old one or the new one, whole, at every moment.
  /// Fails: throws CommandError (OutputUnwritable, Interrupted).
  void saveAs(const std::filesystem::path& file, bool keepBackup);
  /// Writes the drawing's bytes to the standard output.
  /// Fails: throws CommandError (OutputUnwritable, Interrupted).
  void writeToStandardOutput();

 private:
  std::filesystem::path m_file;
  std::unique_ptr<AcDbDatabase> m_database;
  hostx::FileInfo m_info;
};

/// The model space of a database; null where it has none.
AcDbObjectId modelSpaceOf(AcDbDatabase& database);
/// Calls `visit` for every entity of a block that is not erased, in file order.
void forEachEntityOf(const AcDbObjectId& block, const std::function<void(AcDbObjectId)>& visit);
/// The words for a file that could not be read or written, with its name.
std::string fileMessage(const AcDbDatabase* database, Acad::ErrorStatus status,
                        const std::filesystem::path& file, const char* action);

/// Where an entity stands in the file: its line, or its byte in a binary one; 0 for a new one, and
/// in a DWG file, whose records stand elsewhere than their tags.
Adesk::UInt64 placeInFile(const Drawing& drawing, const AcDbObjectId& id);
/// "LINE 2F at line 1742 of plan.dxf", "LINE 2F of plan.dwg": how messages name an entity.
std::string describe(const Drawing& drawing, const AcDbObjectId& id);
/// The handle in hexadecimal, as drawing files spell it; "" where the file gives none.
std::string handleText(const AcDbObjectId& id);
/// The handle, or "line 1742" where the file gives none: how lists of entities name one.
std::string nameText(const Drawing& drawing, const AcDbObjectId& id);
/// What a status says of an entity.
std::string statusText(Acad::ErrorStatus status);
/// Fails: throws CommandError (EntityFailed) that names the entity and the status.
void check(Acad::ErrorStatus status, const Drawing& drawing, const AcDbObjectId& id,
           const char* action);
/// The name behind a function of the host API that returns a copy to be freed.
std::wstring takeText(ACHAR* text);

}  // namespace quoin::commands
