// The published drawings through the database: looking changes nothing, and what is added is
// there afterwards.
#include <gtest/gtest.h>

#include <set>

#include "dbmtext.h"
#include "dbpl.h"
#include "support/Drawings.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

class SharedDrawings : public testing::Test {
 protected:
  void SetUp() override {
    if (files.empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }
  const std::vector<std::filesystem::path> files = sharedFiles(".dxf");
  NoMisuse noMisuse;
};

/// Every id that the API leads to: tables, records, blocks, entities and their parts.
std::vector<AcDbObjectId> everyId(const Drawing& drawing) {
  std::vector<AcDbObjectId> ids;
  for (Adesk::UInt64 handle = 1; handle < drawing.db().handseed().asUInt64(); ++handle) {
    const AcDbObjectId id = drawing.id(handle);
    if (!id.isNull()) {
      ids.push_back(id);
    }
  }
  const AcDbObjectPointer<AcDbBlockTable> blocks(drawing.db().blockTableId());
  AcDbBlockTableIterator* walk = nullptr;
  blocks->newIterator(walk);
  for (; !walk->done(); walk->step()) {
    const ACHAR* name = nullptr;
    AcDbBlockTableRecord* record = nullptr;
    EXPECT_EQ(walk->getRecord(record), Acad::eOk);
    record->getName(name);
    const std::wstring block = name;
    record->close();
    for (const AcDbObjectId& id : entitiesOf(drawing.db(), block.c_str())) {
      ids.push_back(id);
    }
  }
  delete walk;
  return ids;
}

/// Calls every getter that an entity has.
void look(AcDbEntity& entity) {
  taken(entity.layer());
  taken(entity.linetype());
  taken(entity.material());
  entity.layerId();
  entity.linetypeId();
  entity.color();
  entity.colorIndex();
  entity.linetypeScale();
  entity.lineWeight();
  entity.visibility();
  entity.ownerId();
  entity.extensionDictionary();
  acutRelRb(entity.xData());
  AcDbExtents extents;
  entity.getGeomExtents(extents);
  if (const AcDbText* const text = AcDbText::cast(&entity)) {
    taken(text->textString());
    text->textStyle();
  }
  if (const AcDbMText* const text = AcDbMText::cast(&entity)) {
    taken(text->text());
    text->actualWidth();
  }
  if (const AcDbPolyline* const polyline = AcDbPolyline::cast(&entity)) {
    AcGePoint3d point;
    for (unsigned int i = 0; i < polyline->numVerts(); ++i) {
      EXPECT_EQ(polyline->getPointAt(i, point), Acad::eOk);
      polyline->segType(i);
    }
  }
}

TEST_F(SharedDrawings, LookingAtEverythingChangesNothing) {
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const std::string bytes = bytesOf(path);
    const Drawing drawing(bytes);
    ASSERT_EQ(drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&drawing.db()));
    for (const AcDb::OpenMode mode : {AcDb::kForRead, AcDb::kForWrite}) {
      for (const AcDbObjectId& id : everyId(drawing)) {
        AcDbObject* object = nullptr;
        ASSERT_EQ(acdbOpenAcDbObject(object, id, mode), Acad::eOk);
        if (AcDbEntity* const entity = AcDbEntity::cast(object)) {
          look(*entity);
        }
        EXPECT_EQ(object->isA(), id.objectClass());
        EXPECT_EQ(object->close(), Acad::eOk);
      }
    }
    EXPECT_FALSE(hostx::isModified(&drawing.db()));
    EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
    EXPECT_TRUE(drawing.saved() == bytes);
  }
}

TEST_F(SharedDrawings, SettingEverythingToWhatItIsChangesNothing) {
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const std::string bytes = bytesOf(path);
    const Drawing drawing(bytes);
    for (const AcDbObjectId& id : entitiesOf(drawing.db())) {
      AcDbEntity* entity = nullptr;
      ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForWrite), Acad::eOk);
      entity->setLayer(entity->layerId(), false, true);
      entity->setColor(entity->color(), false);
      entity->setLinetype(entity->linetypeId(), false);
      entity->setLinetypeScale(entity->linetypeScale(), false);
      entity->setLineWeight(entity->lineWeight(), false);
      entity->setVisibility(entity->visibility(), false);
      entity->setMaterial(entity->materialId(), false);
      entity->transformBy(AcGeMatrix3d::kIdentity);
      if (AcDbLine* const line = AcDbLine::cast(entity)) {
        line->setStartPoint(line->startPoint());
        line->setEndPoint(line->endPoint());
        line->setNormal(line->normal());
      }
      if (AcDbArc* const arc = AcDbArc::cast(entity)) {
        arc->setStartAngle(arc->startAngle());
        arc->setRadius(arc->radius());
      }
      if (AcDbText* const text = AcDbText::cast(entity)) {
        text->setTextString(text->textStringConst());
        text->setRotation(text->rotation());
      }
      if (AcDbMText* const text = AcDbMText::cast(entity)) {
        ACHAR* const contents = text->contents();
        text->setContents(contents);
        taken(contents);
      }
      entity->close();
    }
    EXPECT_TRUE(drawing.saved() == bytes);
  }
}

TEST_F(SharedDrawings, AnAppendedLineComesBackAndNothingElseChanges) {
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const Drawing drawing(bytesOf(path));
    const std::size_t before = entitiesOf(drawing.db()).size();
    auto* const line = new AcDbLine(AcGePoint3d(1.25, -2.5, 0.0), AcGePoint3d(3.0, 4.0, 5.0));
    line->setLayer(L"quoin 墙");
    line->setColorIndex(3);
    const AcDbObjectId id = append(drawing.db(), line);
    EXPECT_TRUE(hostx::isModified(&drawing.db()));
    const bool hasHandles = !drawing.db().handseed().isNull();
    EXPECT_EQ(id.handle().isNull(), !hasHandles);

    const Drawing again(drawing.saved());
    ASSERT_EQ(again.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&again.db()));
    const std::vector<AcDbObjectId> entities = entitiesOf(again.db());
    ASSERT_EQ(entities.size(), before + 1);
    const AcDbObjectPointer<AcDbLine> read(entities.back());
    ASSERT_EQ(read.openStatus(), Acad::eOk);
    EXPECT_EQ(read->startPoint().x, 1.25);
    EXPECT_EQ(read->endPoint().z, 5.0);
    EXPECT_EQ(taken(read->layer()), L"quoin 墙");
    EXPECT_FALSE(read->layerId().isNull());
    EXPECT_EQ(read->colorIndex(), 3);
    EXPECT_EQ(entities.back().handle(), id.handle());
    EXPECT_EQ(hostx::fileInfo(&again.db()).release, hostx::fileInfo(&drawing.db()).release);
    EXPECT_EQ(hostx::fileInfo(&again.db()).isBinary, hostx::fileInfo(&drawing.db()).isBinary);
  }
}

TEST_F(SharedDrawings, EveryEntityOfATypedKindClonesIntoItsDrawing) {
  for (const auto& path : files) {
    SCOPED_TRACE(path.filename().string());
    const Drawing drawing(bytesOf(path));
    const std::vector<AcDbObjectId> before = entitiesOf(drawing.db());
    for (const AcDbObjectId& id : before) {
      AcDbEntity* entity = nullptr;
      ASSERT_EQ(acdbOpenAcDbEntity(entity, id, AcDb::kForRead), Acad::eOk);
      AcDbEntity* const copy = AcDbEntity::cast(entity->clone());
      ASSERT_NE(copy, nullptr);
      EXPECT_EQ(copy->isA(), entity->isA());
      AcDbExtents box;
      AcDbExtents copyBox;
      const Acad::ErrorStatus status = entity->getGeomExtents(box);
      entity->close();
      const AcDbObjectId copied = append(drawing.db(), copy);
      AcDbEntity* appended = nullptr;
      ASSERT_EQ(acdbOpenAcDbEntity(appended, copied, AcDb::kForRead), Acad::eOk);
      EXPECT_EQ(appended->getGeomExtents(copyBox), status);
      EXPECT_TRUE(box.minPoint() == copyBox.minPoint() || status != Acad::eOk);
      EXPECT_TRUE(appended->ownerId() == id.database()->blockTableId() ||
                  appended->ownerId().objectClass() == AcDbBlockTableRecord::desc());
      appended->close();
    }
    const Drawing again(drawing.saved());
    ASSERT_EQ(again.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&again.db()));
    EXPECT_EQ(entitiesOf(again.db()).size(), 2 * before.size());
    std::set<Adesk::UInt64> handles;
    for (const AcDbObjectId& id : entitiesOf(again.db())) {
      EXPECT_TRUE(id.handle().isNull() || handles.insert(id.handle().asUInt64()).second);
    }
  }
}

}  // namespace
}  // namespace quoin::test
