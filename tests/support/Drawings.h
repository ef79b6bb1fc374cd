// Drawings in databases, for tests of the host API: read from text, looked into and saved.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "dbents.h"
#include "dbobjptr.h"
#include "dbsymutl.h"
#include "embedded/os/Utf8.h"
#include "hostextra.h"
#include "support/DxfText.h"
#include "support/TemporaryFolder.h"

namespace quoin::test {

/// A database read from a file of these bytes; the file's folder lives as long.
struct Drawing {
  explicit Drawing(const std::string& bytes, const std::string& name = "plan.dxf")
      : path(folder.put(name, bytes)) {
    status = database->readDwgFile(os::fromUtf8(path).c_str());
  }
  /// An empty drawing of the newest version.
  Drawing() : path(folder.file("plan.dxf")), database(std::make_unique<AcDbDatabase>()) {}

  AcDbDatabase& db() const { return *database; }
  /// Saves it and returns the bytes of the file.
  std::string saved(const std::string& name = "saved.dxf") const {
    const Acad::ErrorStatus result = database->saveAs(os::fromUtf8(folder.file(name)).c_str());
    EXPECT_EQ(result, Acad::eOk) << os::toUtf8(hostx::lastFileError(database.get()));
    return folder.get(name);
  }
  AcDbObjectId id(Adesk::UInt64 handle) const {
    AcDbObjectId found;
    database->getAcDbObjectId(found, false, AcDbHandle(handle));
    return found;
  }

  TemporaryFolder folder;
  std::string path;
  std::unique_ptr<AcDbDatabase> database = std::make_unique<AcDbDatabase>(false, true);
  Acad::ErrorStatus status = Acad::eOk;
};

/// The small R2000 drawing with these entities in model space, each tag on a line.
inline std::string smallDrawing(std::string_view entities = {}) {
  return asciiDxf(smallR2000(entities));
}

/// Changes entity 40 of a drawing and returns the saved bytes.
template <class Entity = AcDbEntity, class Change>
std::string changed(const std::string& bytes, Change&& change) {
  const Drawing drawing(bytes);
  EXPECT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
  Entity* entity = nullptr;
  EXPECT_EQ(acdbOpenObject(entity, drawing.id(0x40), AcDb::kForWrite), Acad::eOk);
  change(*entity);
  EXPECT_EQ(entity->close(), Acad::eOk);
  return drawing.saved();
}

/// Appends to model space (or another block) and closes the entity.
inline AcDbObjectId append(AcDbDatabase& database, AcDbEntity* entity,
                           const wchar_t* block = ACDB_MODEL_SPACE) {
  AcDbObjectId id;
  acdbSymUtil()->getBlockId(id, block, &database);
  const AcDbObjectPointer<AcDbBlockTableRecord> record(id, AcDb::kForWrite);
  EXPECT_EQ(record.openStatus(), Acad::eOk);
  AcDbObjectId appended;
  const Acad::ErrorStatus status =
      record.object() ? record->appendAcDbEntity(appended, entity) : Acad::eInvalidInput;
  EXPECT_EQ(status, Acad::eOk) << os::toUtf8(acadErrorStatusText(status));
  if (status == Acad::eOk) {
    entity->close();
  } else {
    delete entity;
  }
  return appended;
}

/// The ids of a block's entities in order.
inline std::vector<AcDbObjectId> entitiesOf(const AcDbDatabase& database,
                                            const wchar_t* block = ACDB_MODEL_SPACE,
                                            bool skipErased = true) {
  std::vector<AcDbObjectId> ids;
  AcDbObjectId id;
  acdbSymUtil()->getBlockId(id, block, const_cast<AcDbDatabase*>(&database));
  const AcDbObjectPointer<AcDbBlockTableRecord> record(id);
  AcDbBlockTableRecordIterator* walk = nullptr;
  if (!record.object() || record->newIterator(walk, true, skipErased) != Acad::eOk) {
    return ids;
  }
  const std::unique_ptr<AcDbBlockTableRecordIterator> owned(walk);
  for (; !walk->done(); walk->step(true, skipErased)) {
    walk->getEntityId(id);
    ids.push_back(id);
  }
  return ids;
}

/// The text of a buffer that the host allocated; frees it.
inline std::wstring taken(ACHAR* text) {
  const std::wstring copy = text ? text : L"(null)";
  acutDelString(text);
  return copy;
}

/// Fails the test at its end if an object was misused or left open since the guard was made.
class NoMisuse {
 public:
  NoMisuse() { hostx::resetMisuse(); }
  ~NoMisuse() {
    for (const std::wstring& message : hostx::misuse().messages) {
      ADD_FAILURE() << os::toUtf8(message);
    }
    EXPECT_TRUE(hostx::misuse().isEmpty());
  }
  NoMisuse(const NoMisuse&) = delete;
  NoMisuse& operator=(const NoMisuse&) = delete;
};

}  // namespace quoin::test
