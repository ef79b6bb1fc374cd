// Symbol tables: look-up in any case, iteration, new records, and what files leave out.
#include <gtest/gtest.h>

#include "support/Drawings.h"

namespace quoin::test {
namespace {

std::wstring nameOf(const AcDbObjectId& id) {
  const AcDbObjectPointer<AcDbSymbolTableRecord> record(id, AcDb::kForRead, true);
  const ACHAR* name = L"?";
  if (record.object()) {
    record->getName(name);
  }
  return name;
}

std::vector<std::wstring> layerNames(const Drawing& drawing, bool skipDeleted = true) {
  std::vector<std::wstring> names;
  AcDbLayerTable* table = nullptr;
  EXPECT_EQ(drawing.db().getLayerTable(table), Acad::eOk);
  AcDbLayerTableIterator* walk = nullptr;
  EXPECT_EQ(table->newIterator(walk, true, skipDeleted), Acad::eOk);
  for (; !walk->done(); walk->step(true, skipDeleted)) {
    AcDbObjectId id;
    EXPECT_EQ(walk->getRecordId(id), Acad::eOk);
    names.push_back(nameOf(id));
  }
  delete walk;
  table->close();
  return names;
}

TEST(SymbolTables, NamesCompareInAnyCase) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.db().layerTableId());
  AcDbObjectId id;
  EXPECT_EQ(layers->getAt(L"WALLS", id), Acad::eOk);
  EXPECT_EQ(id, drawing.id(0x11));
  EXPECT_EQ(nameOf(id), L"Walls");
  EXPECT_TRUE(layers->has(L"walls"));
  EXPECT_TRUE(layers->has(id));
  EXPECT_FALSE(layers->has(drawing.id(0x27)));
  EXPECT_EQ(layers->getAt(L"Roof", id), Acad::eKeyNotFound);
  EXPECT_TRUE(id.isNull());
  EXPECT_EQ(layers->getAt(nullptr, id), Acad::eInvalidInput);
  EXPECT_EQ(layerNames(drawing), (std::vector<std::wstring>{L"0", L"Walls"}));
}

TEST(SymbolTables, ErasedRecordsAreSkippedUnlessAskedFor) {
  const Drawing drawing(smallDrawing());
  AcDbObjectId id = drawing.id(0x11);
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> walls(id, AcDb::kForWrite);
    EXPECT_EQ(walls->erase(), Acad::eOk);
  }
  EXPECT_EQ(layerNames(drawing), (std::vector<std::wstring>{L"0"}));
  EXPECT_EQ(layerNames(drawing, false), (std::vector<std::wstring>{L"0", L"Walls"}));
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.db().layerTableId());
  AcDbObjectId found;
  EXPECT_EQ(layers->getAt(L"Walls", found), Acad::eWasErased);
  EXPECT_EQ(layers->getAt(L"Walls", found, true), Acad::eOk);
  EXPECT_EQ(found, id);
  EXPECT_FALSE(layers->has(L"Walls"));
}

TEST(SymbolTables, ANewLayerIsWrittenAsItsVersionHasIt) {
  const Drawing drawing(smallDrawing());
  AcDbLayerTable* layers = nullptr;
  ASSERT_EQ(drawing.db().getLayerTable(layers, AcDb::kForWrite), Acad::eOk);
  auto* const made = new AcDbLayerTableRecord;
  EXPECT_EQ(layers->add(made), Acad::eInvalidInput);  // no name yet
  EXPECT_EQ(made->setName(L"Roof"), Acad::eOk);
  EXPECT_EQ(made->setIsFrozen(true), Acad::eOk);
  EXPECT_EQ(made->setIsOff(true), Acad::eOk);
  AcDbObjectId id;
  EXPECT_EQ(layers->add(id, made), Acad::eOk);
  EXPECT_EQ(layers->add(made), Acad::eAlreadyInDb);
  AcDbLayerTableRecord twin;
  twin.setName(L"ROOF");
  EXPECT_EQ(layers->add(&twin), Acad::eDuplicateRecordName);
  AcDbTextStyleTableRecord style;
  style.setName(L"Other");
  EXPECT_EQ(static_cast<AcDbSymbolTable*>(layers)->add(&style), Acad::eNotThatKindOfClass);
  EXPECT_EQ(made->close(), Acad::eOk);
  EXPECT_EQ(layers->close(), Acad::eOk);
  std::string expected = smallR2000();
  const std::string roof =
      "0 LAYER\n5 100\n330 2\n100 AcDbSymbolTableRecord\n100 AcDbLayerTableRecord\n2 Roof\n70 1\n"
      "62 -7\n6 Continuous\n370 -3\n";
  expected.insert(expected.find("0 ENDTAB"), roof);
  expected.replace(expected.find("5 100\n"), 6, "5 101\n");  // the seed comes first
  EXPECT_EQ(drawing.saved(), asciiDxf(expected));
  const Drawing again(drawing.saved());
  const AcDbObjectPointer<AcDbLayerTableRecord> roofLayer(again.id(0x100));
  EXPECT_TRUE(roofLayer->isOff());
  EXPECT_TRUE(roofLayer->isFrozen());
  EXPECT_FALSE(roofLayer->isLocked());
  EXPECT_FALSE(roofLayer->isHidden());
  EXPECT_EQ(roofLayer->color().colorIndex(), 7);
}

TEST(SymbolTables, LayersThatOnlyEntitiesNameAreThere) {
  const std::string bytes = asciiDxf(
      entitiesOnly("0 LINE\n8 B\n10 1\n20 2\n11 3\n21 4\n0 LINE\n8 A\n10 1\n20 2\n11 3\n21 4\n"
                   "0 LINE\n8 b\n10 1\n20 2\n11 3\n21 4\n"));
  const Drawing drawing(bytes);
  EXPECT_EQ(layerNames(drawing), (std::vector<std::wstring>{L"0", L"B", L"A"}));
  const AcDbObjectPointer<AcDbEntity> line(entitiesOf(drawing.db())[2]);
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(line->layerId());
  ASSERT_EQ(layer.openStatus(), Acad::eOk);
  EXPECT_FALSE(layer->isOff());
  EXPECT_EQ(layer->color().colorIndex(), 7);
  EXPECT_EQ(layer->ownerId(), drawing.db().layerTableId());
  EXPECT_EQ(drawing.saved(), bytes);  // showing them writes nothing
}

TEST(SymbolTables, ChangingALayerThatNoTableListsWritesIt) {
  const Drawing drawing(asciiDxf(entitiesOnly("0 LINE\n8 B\n10 1\n20 2\n11 3\n21 4\n")));
  AcDbObjectId id;
  acdbSymUtil()->getLayerId(id, L"B", &drawing.db());
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(id, AcDb::kForWrite);
    EXPECT_EQ(layer->setIsOff(true), Acad::eOk);
  }
  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk);
  acdbSymUtil()->getLayerId(id, L"B", &again.db());
  const AcDbObjectPointer<AcDbLayerTableRecord> layer(id);
  ASSERT_EQ(layer.openStatus(), Acad::eOk);
  EXPECT_TRUE(layer->isOff());
  EXPECT_EQ(hostx::lineNumber(id) > 0, true);
}

TEST(SymbolTables, EveryTableOpensEvenWhereTheFileHasNone) {
  const Drawing drawing(asciiDxf(entitiesOnly({})));
  AcDbDatabase& db = drawing.db();
  AcDbTextStyleTable* styles = nullptr;
  AcDbDimStyleTable* dimStyles = nullptr;
  AcDbRegAppTable* apps = nullptr;
  AcDbUCSTable* systems = nullptr;
  AcDbViewTable* views = nullptr;
  AcDbViewportTable* viewports = nullptr;
  AcDbBlockTable* blocks = nullptr;
  EXPECT_EQ(db.getTextStyleTable(styles), Acad::eOk);
  EXPECT_EQ(db.getDimStyleTable(dimStyles), Acad::eOk);
  EXPECT_EQ(db.getRegAppTable(apps), Acad::eOk);
  EXPECT_EQ(db.getUCSTable(systems), Acad::eOk);
  EXPECT_EQ(db.getViewTable(views), Acad::eOk);
  EXPECT_EQ(db.getViewportTable(viewports), Acad::eOk);
  EXPECT_EQ(db.getBlockTable(blocks), Acad::eOk);
  EXPECT_TRUE(blocks->has(ACDB_MODEL_SPACE));
  EXPECT_FALSE(styles->has(L"Standard"));
  for (AcDbObject* const table : std::initializer_list<AcDbObject*>{
           styles, dimStyles, apps, systems, views, viewports, blocks}) {
    EXPECT_TRUE(table->objectId().isValid());
    EXPECT_EQ(table->close(), Acad::eOk);
  }
}

TEST(SymbolTables, RecordsAreRenamedWhileNothingNamesThem) {
  const Drawing drawing(smallDrawing());
  {
    const AcDbObjectPointer<AcDbLayerTableRecord> walls(drawing.id(0x11), AcDb::kForWrite);
    EXPECT_EQ(walls->setName(L"0"), Acad::eDuplicateRecordName);
    EXPECT_EQ(walls->setName(L"a/b"), Acad::eInvalidInput);
    EXPECT_EQ(walls->setName(nullptr), Acad::eInvalidInput);
    EXPECT_EQ(walls->setName(L"Mauern"), Acad::eOk);
  }
  EXPECT_EQ(layerNames(drawing), (std::vector<std::wstring>{L"0", L"Mauern"}));
  AcDbObjectId id;
  EXPECT_EQ(acdbSymUtil()->getLayerId(id, L"mauern", &drawing.db()), Acad::eOk);
  const AcDbObjectPointer<AcDbLayerTableRecord> zero(drawing.db().layerZero(), AcDb::kForWrite);
  EXPECT_EQ(zero->setName(L"Zero"), Acad::eNotApplicable);
  const Drawing used(smallDrawing(lineTags("40")));
  const AcDbObjectPointer<AcDbLayerTableRecord> named(used.id(0x11), AcDb::kForWrite);
  EXPECT_EQ(named->setName(L"Mauern"), Acad::eNotApplicable);
}

TEST(SymbolTables, TheCurrentLayerIsNotFrozen) {
  const Drawing drawing(smallDrawing());
  EXPECT_EQ(drawing.db().clayer(), drawing.db().layerZero());
  const AcDbObjectPointer<AcDbLayerTableRecord> zero(drawing.db().layerZero(), AcDb::kForWrite);
  EXPECT_EQ(zero->setIsFrozen(true), Acad::eNotApplicable);
  EXPECT_EQ(drawing.db().setClayer(drawing.id(0x27)), Acad::eInvalidLayer);
  EXPECT_EQ(drawing.db().setClayer(drawing.id(0x11)), Acad::eOk);
  EXPECT_EQ(drawing.db().clayer(), drawing.id(0x11));
  EXPECT_EQ(zero->setIsFrozen(true), Acad::eOk);
}

TEST(SymbolTables, IteratorsRunBackwardsToo) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbLayerTable> layers(drawing.db().layerTableId());
  AcDbLayerTableIterator* walk = nullptr;
  ASSERT_EQ(layers->newIterator(walk, false), Acad::eOk);
  AcDbLayerTableRecord* record = nullptr;
  ASSERT_EQ(walk->getRecord(record), Acad::eOk);
  EXPECT_EQ(record->objectId(), drawing.id(0x11));
  record->close();
  walk->step(false);
  walk->step(false);
  EXPECT_TRUE(walk->done());
  EXPECT_EQ(walk->getRecord(record), Acad::eInvalidInput);
  EXPECT_EQ(record, nullptr);
  delete walk;
}

// --- blocks ---------------------------------------------------------------------------------

TEST(Blocks, ANewBlockIsThreeRecordsAndItsEntities) {
  const Drawing drawing(smallDrawing());
  AcDbBlockTable* blocks = nullptr;
  ASSERT_EQ(drawing.db().getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
  auto* const block = new AcDbBlockTableRecord;
  block->setName(L"Fenster");
  AcDbObjectId blockId;
  EXPECT_EQ(blocks->add(blockId, block), Acad::eOk);
  EXPECT_EQ(block->setOrigin(AcGePoint3d(1.0, 2.0, 0.0)), Acad::eOk);
  auto* const line = new AcDbLine(AcGePoint3d(1.0, 2.0, 0.0), AcGePoint3d(3.0, 2.0, 0.0));
  EXPECT_EQ(block->appendAcDbEntity(line), Acad::eOk);
  line->close();
  block->close();
  blocks->close();
  append(drawing.db(), new AcDbBlockReference(AcGePoint3d(10.0, 0.0, 0.0), blockId));

  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&again.db()));
  EXPECT_EQ(entitiesOf(again.db(), L"FENSTER").size(), 1U);
  const AcDbObjectPointer<AcDbBlockReference> reference(entitiesOf(again.db()).at(0));
  ASSERT_EQ(reference.openStatus(), Acad::eOk);
  EXPECT_EQ(nameOf(reference->blockTableRecord()), L"Fenster");
  const AcDbObjectPointer<AcDbBlockTableRecord> record(reference->blockTableRecord());
  EXPECT_TRUE(record->origin().isEqualTo(AcGePoint3d(1.0, 2.0, 0.0)));
  EXPECT_FALSE(record->isLayout());
  AcDbExtents box;
  EXPECT_EQ(reference->getGeomExtents(box), Acad::eOk);
  EXPECT_TRUE(box.minPoint().isEqualTo(AcGePoint3d(10.0, 0.0, 0.0)));
  EXPECT_TRUE(box.maxPoint().isEqualTo(AcGePoint3d(12.0, 0.0, 0.0)));
}

TEST(Blocks, ANewBlockInR12HasNoRecord) {
  const Drawing drawing(asciiDxf(entitiesOnly({})));
  AcDbBlockTable* blocks = nullptr;
  ASSERT_EQ(drawing.db().getBlockTable(blocks, AcDb::kForWrite), Acad::eOk);
  auto* const block = new AcDbBlockTableRecord;
  block->setName(L"DOOR");
  EXPECT_EQ(blocks->add(block), Acad::eOk);
  auto* const line = new AcDbLine;
  EXPECT_EQ(block->appendAcDbEntity(line), Acad::eOk);
  line->close();
  block->close();
  blocks->close();
  const Drawing again(drawing.saved());
  ASSERT_EQ(again.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&again.db()));
  EXPECT_EQ(entitiesOf(again.db(), L"DOOR").size(), 1U);
  EXPECT_EQ(drawing.saved().find("BLOCK_RECORD"), std::string::npos);
}

TEST(Blocks, ReferencesToNoBlockAreRefused) {
  const Drawing drawing(smallDrawing());
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()), AcDb::kForWrite);
  AcDbBlockReference reference;
  EXPECT_EQ(space->appendAcDbEntity(&reference), Acad::eNullBlockName);
  EXPECT_TRUE(reference.blockTableRecord().isNull());
  EXPECT_EQ(reference.setScaleFactors(AcGeScale3d(1.0, 0.0, 1.0)), Acad::eInvalidInput);
}

TEST(Blocks, TheIteratorSeesWhatIsAppendedAndErasedMeanwhile) {
  const Drawing drawing(smallDrawing(lineTags("40") + lineTags("41")));
  const AcDbObjectPointer<AcDbBlockTableRecord> space(
      acdbSymUtil()->blockModelSpaceId(&drawing.db()), AcDb::kForWrite);
  AcDbBlockTableRecordIterator* walk = nullptr;
  ASSERT_EQ(space->newIterator(walk), Acad::eOk);
  auto* const line = new AcDbLine;
  AcDbObjectId added;
  EXPECT_EQ(space->appendAcDbEntity(added, line), Acad::eOk);
  line->close();
  {
    const AcDbObjectPointer<AcDbLine> second(drawing.id(0x41), AcDb::kForWrite);
    second->erase();
  }
  AcDbObjectId id;
  walk->getEntityId(id);
  EXPECT_EQ(id, drawing.id(0x40));
  walk->step();
  walk->getEntityId(id);
  EXPECT_EQ(id, added);
  walk->step();
  EXPECT_TRUE(walk->done());
  EXPECT_EQ(walk->seek(drawing.id(0x40)), Acad::eOk);
  EXPECT_FALSE(walk->done());
  EXPECT_EQ(walk->seek(drawing.id(0x32)), Acad::eInvalidInput);
  delete walk;
}

TEST(Blocks, EntitiesOfPaperSpaceAreMarked) {
  const Drawing drawing(smallDrawing());
  append(drawing.db(), new AcDbPoint(AcGePoint3d(1.0, 1.0, 0.0)), ACDB_PAPER_SPACE);
  const Drawing again(drawing.saved());
  EXPECT_TRUE(entitiesOf(again.db()).empty());
  EXPECT_EQ(entitiesOf(again.db(), ACDB_PAPER_SPACE).size(), 1U);
  EXPECT_NE(drawing.saved().find(" 67\r\n1\r\n"), std::string::npos);
}

TEST(SymbolNames, AreCheckedAsTheHostDoes) {
  const AcDbSymbolUtilities::Services* const names = acdbSymUtil();
  EXPECT_EQ(names->validateSymbolName(L"Wände 墙 1"), Acad::eOk);
  EXPECT_EQ(names->validateSymbolName(L""), Acad::eInvalidInput);
  EXPECT_EQ(names->validateSymbolName(nullptr), Acad::eInvalidInput);
  EXPECT_EQ(names->validateSymbolName(L"a|b"), Acad::eInvalidInput);
  EXPECT_EQ(names->validateSymbolName(L"a|b", true), Acad::eOk);
  EXPECT_EQ(names->validateSymbolName(L"a\nb"), Acad::eInvalidInput);
  EXPECT_EQ(names->validateSymbolName(std::wstring(256, L'a').c_str()), Acad::eInvalidInput);
  EXPECT_TRUE(names->isBlockModelSpaceName(L"*MODEL_SPACE"));
  EXPECT_TRUE(names->isBlockPaperSpaceName(L"*Paper_Space12"));
}

}  // namespace
}  // namespace quoin::test
