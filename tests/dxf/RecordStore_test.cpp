// What a loaded store knows: roles, tables, blocks, layouts, owners, handles, variables.
#include "embedded/dxf/RecordStore.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "embedded/dxf/FileError.h"
#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

using test::asciiDxf;
using test::binaryDxf;
using test::entitiesOnly;
using test::lineTags;
using test::loadBytes;
using test::savedBytes;
using test::smallR2000;

struct Loaded {
  RecordStore store;
  explicit Loaded(std::string_view text) { loadBytes(store, asciiDxf(text)); }
  std::vector<std::string> names(const std::vector<AcDbStub*>& stubs) const {
    std::vector<std::string> described;
    for (const AcDbStub* stub : stubs) {
      described.push_back(store.describe(*stub));
    }
    return described;
  }
};
using Names = std::vector<std::string>;

TEST(RecordStore, ANewStoreIsEmpty) {
  RecordStore store;
  EXPECT_TRUE(store.isEmpty());
  EXPECT_FALSE(store.isChanged());
  EXPECT_EQ(store.find(1), nullptr);
  EXPECT_EQ(store.table("LAYER"), nullptr);
  EXPECT_THROW(store.modelSpace(), FileError);
}

TEST(RecordStore, AStubIsSmall) {
  EXPECT_LE(sizeof(AcDbStub), 64U);
}

TEST(RecordStore, ARecordIsItsTagsUpToTheNextRecord) {
  const std::string line = lineTags("50");
  Loaded loaded(smallR2000(line + "999 a comment\n"));
  const AcDbStub* stub = loaded.store.find(0x50);
  ASSERT_NE(stub, nullptr);
  EXPECT_EQ(stub->bytes(), asciiDxf(line + "999 a comment\n"));
  EXPECT_EQ(loaded.store.kindName(*stub), "LINE");
  EXPECT_EQ(stub->store, &loaded.store);
  EXPECT_EQ(&loaded.store.stubs()[stub->index], stub);
}

TEST(RecordStore, RecordsKnowTheirRoleAndSection) {
  Loaded loaded(smallR2000(lineTags("50")));
  const auto expectStub = [&](std::uint64_t handle, Section section, Role role) {
    const AcDbStub* stub = loaded.store.find(handle);
    ASSERT_NE(stub, nullptr) << handle;
    EXPECT_EQ(stub->section, section) << handle;
    EXPECT_EQ(stub->role, role) << handle;
  };
  expectStub(0x2, Section::Tables, Role::Table);
  expectStub(0x11, Section::Tables, Role::TableRecord);
  expectStub(0x31, Section::Blocks, Role::BlockBegin);
  expectStub(0x32, Section::Blocks, Role::Entity);
  expectStub(0x33, Section::Blocks, Role::BlockEnd);
  expectStub(0x50, Section::Entities, Role::Entity);
  expectStub(0xC, Section::Objects, Role::Object);
}

TEST(RecordStore, TablesHaveTheirRecordsInFileOrder) {
  Loaded loaded(smallR2000());
  const Table* layers = loaded.store.table("layer");
  ASSERT_NE(layers, nullptr);
  EXPECT_EQ(layers->name, "LAYER");
  EXPECT_EQ(loaded.store.describe(*layers->head), "TABLE 2");
  EXPECT_EQ(loaded.names(layers->records), (Names{"LAYER 10", "LAYER 11"}));
  EXPECT_EQ(layers->records[0]->owner, layers->head);
  EXPECT_EQ(layers->head->owner, nullptr);
}

TEST(RecordStore, ADimensionStyleHasItsHandleInGroup105) {
  Loaded loaded(smallR2000());
  ASSERT_NE(loaded.store.find(0x27), nullptr);
  EXPECT_EQ(loaded.store.describe(*loaded.store.find(0x27)), "DIMSTYLE 27");
  EXPECT_EQ(loaded.store.describe(*loaded.store.find(0xA)), "TABLE A");
}

TEST(RecordStore, Group5OfADimensionStyleIsNoHandle) {
  Loaded loaded(
      "0 SECTION\n2 TABLES\n0 TABLE\n2 DIMSTYLE\n70 1\n0 DIMSTYLE\n2 OLD\n70 0\n5 ABC\n0 ENDTAB\n"
      "0 ENDSEC\n0 EOF\n");
  EXPECT_EQ(loaded.store.find(0xABC), nullptr);
}

TEST(RecordStore, BlocksAreLinkedWithTheirRecordsAndEntities) {
  Loaded loaded(smallR2000());
  Block* door = loaded.store.block(L"DOOR");
  ASSERT_NE(door, nullptr);
  EXPECT_EQ(door->name, L"Door");
  EXPECT_EQ(loaded.store.describe(*door->record), "BLOCK_RECORD 30");
  EXPECT_EQ(loaded.store.describe(*door->begin), "BLOCK 31");
  EXPECT_EQ(loaded.store.describe(*door->end), "ENDBLK 33");
  EXPECT_EQ(loaded.names(door->entities), Names{"LINE 32"});
  EXPECT_EQ(door->entities[0]->owner, door->record);
  EXPECT_EQ(door->begin->owner, door->record);
  EXPECT_EQ(loaded.store.blockOf(*door->record), door);
  EXPECT_EQ(loaded.store.blockOf(*door->begin), nullptr);
}

TEST(RecordStore, ABlockWithoutAnOwnerTagIsLinkedByName) {
  std::string text = smallR2000();
  const std::string tag = "5 31\n330 30\n";
  text.replace(text.find(tag), tag.size(), "5 31\n");
  Loaded loaded(text);
  EXPECT_EQ(loaded.store.describe(*loaded.store.block(L"door")->record), "BLOCK_RECORD 30");
}

TEST(RecordStore, BlockNamesAreDecodedAndFoundInAnyCase) {
  Loaded loaded("0 SECTION\n2 BLOCKS\n0 BLOCK\n8 0\n2 T\xFCr\n0 ENDBLK\n8 0\n0 ENDSEC\n0 EOF\n");
  ASSERT_NE(loaded.store.block(L"T\u00DCR"), nullptr);
  EXPECT_EQ(loaded.store.block(L"T\u00DCR")->name, L"T\u00FCr");
}

TEST(RecordStore, EntitiesBelongToTheLayoutThatOwnsThem) {
  const std::string inPaper = "0 LINE\n5 60\n330 1B\n100 AcDbEntity\n67 1\n8 0\n100 AcDbLine\n";
  Loaded loaded(smallR2000(lineTags("50") + inPaper + lineTags("51")));
  EXPECT_EQ(loaded.names(loaded.store.modelSpace().entities), (Names{"LINE 50", "LINE 51"}));
  ASSERT_NE(loaded.store.paperSpace(), nullptr);
  EXPECT_EQ(loaded.names(loaded.store.paperSpace()->entities), Names{"LINE 60"});
  EXPECT_EQ(loaded.store.find(0x60)->owner, loaded.store.paperSpace()->record);
  EXPECT_EQ(loaded.store.find(0x50)->owner, loaded.store.modelSpace().record);
}

TEST(RecordStore, TheOwnerDecidesAndThePaperSpaceFlagOnlyWithoutOne) {
  Loaded loaded(
      smallR2000("0 LINE\n5 60\n330 1B\n8 0\n"         // owned, without the flag
                 "0 LINE\n5 61\n330 999\n67 1\n8 0\n"  // owner is missing
                 "0 LINE\n5 62\n67 1\n8 0\n"           // no owner
                 "0 LINE\n5 63\n67 0\n8 0\n"
                 "0 LINE\n5 64\n330 30\n8 0\n"));  // an ordinary block
  EXPECT_EQ(loaded.names(loaded.store.paperSpace()->entities),
            (Names{"LINE 60", "LINE 61", "LINE 62"}));
  EXPECT_EQ(loaded.names(loaded.store.modelSpace().entities), (Names{"LINE 63", "LINE 64"}));
}

TEST(RecordStore, EntitiesInFrontOfTheirTablesAreLinkedToo) {
  const std::string text = smallR2000(lineTags("50") + "0 LINE\n5 60\n330 1B\n67 1\n8 0\n");
  const std::size_t tables = text.find("0 SECTION\n2 TABLES");
  const std::size_t entities = text.find("0 SECTION\n2 ENTITIES");
  const std::size_t objects = text.find("0 SECTION\n2 OBJECTS");
  Loaded loaded(text.substr(0, tables) + text.substr(entities, objects - entities) +
                text.substr(tables, entities - tables) + text.substr(objects));
  EXPECT_EQ(loaded.names(loaded.store.modelSpace().entities), Names{"LINE 50"});
  EXPECT_EQ(loaded.names(loaded.store.paperSpace()->entities), Names{"LINE 60"});
  EXPECT_EQ(loaded.store.describe(*loaded.store.find(0x50)->owner), "BLOCK_RECORD 1F");
}

TEST(RecordStore, ObjectsBelongToTheOwnerBehindTheirReactors) {
  Loaded loaded(smallR2000());
  EXPECT_EQ(loaded.names(loaded.store.objects()), (Names{"DICTIONARY C", "DICTIONARY D"}));
  EXPECT_EQ(loaded.store.find(0xC)->owner, nullptr);
  EXPECT_EQ(loaded.store.find(0xD)->owner, loaded.store.find(0xC));
}

TEST(RecordStore, VerticesAndAttributesBelongToTheEntityInFront) {
  Loaded loaded(
      entitiesOnly("0 POLYLINE\n5 1\n66 1\n0 VERTEX\n5 2\n0 VERTEX\n5 3\n0 SEQEND\n5 4\n"
                   "0 INSERT\n5 5\n66 1\n2 X\n0 ATTRIB\n5 6\n0 SEQEND\n5 7\n"
                   "0 LINE\n5 8\n"));
  Block& model = loaded.store.modelSpace();
  EXPECT_EQ(loaded.names(model.entities), (Names{"POLYLINE 1", "INSERT 5", "LINE 8"}));
  EXPECT_EQ(loaded.names(loaded.store.subEntities(*model.entities[0])),
            (Names{"VERTEX 2", "VERTEX 3", "SEQEND 4"}));
  EXPECT_EQ(loaded.names(loaded.store.subEntities(*model.entities[1])),
            (Names{"ATTRIB 6", "SEQEND 7"}));
  EXPECT_TRUE(loaded.store.subEntities(*model.entities[2]).empty());
  EXPECT_EQ(loaded.store.find(3)->role, Role::SubEntity);
  EXPECT_EQ(loaded.store.find(3)->owner, model.entities[0]);
}

TEST(RecordStore, AVertexBehindASequenceEndStandsAlone) {
  Loaded loaded(entitiesOnly("0 POLYLINE\n5 1\n0 SEQEND\n5 2\n0 VERTEX\n5 3\n"));
  EXPECT_EQ(loaded.names(loaded.store.modelSpace().entities), (Names{"POLYLINE 1", "VERTEX 3"}));
}

TEST(RecordStore, TheFirstRecordOfAHandleIsFoundAndOthersAreWarnedOf) {
  Loaded loaded(entitiesOnly("0 LINE\n5 A\n0 CIRCLE\n5 A\n"));
  EXPECT_EQ(loaded.store.describe(*loaded.store.find(0xA)), "LINE A");
  ASSERT_EQ(loaded.store.warnings().size(), 1U);
  EXPECT_EQ(loaded.store.warnings()[0].record, "CIRCLE A");
  EXPECT_EQ(loaded.store.warnings()[0].text, "the handle is taken by the LINE in line 5");
}

TEST(RecordStore, AHandleThatIsNoneIsWarnedOf) {
  Loaded loaded(entitiesOnly("0 LINE\n5 XYZ\n8 0\n"));
  EXPECT_EQ(loaded.store.modelSpace().entities[0]->handle, 0U);
  ASSERT_EQ(loaded.store.warnings().size(), 1U);
  EXPECT_EQ(loaded.store.warnings()[0].text, "'XYZ' is no handle");
}

TEST(RecordStore, WarningsAreBounded) {
  std::string entities;
  for (int i = 0; i < 500; ++i) {
    entities += "0 LINE\n5 A\n";
  }
  Loaded loaded(entitiesOnly(entities));
  EXPECT_EQ(loaded.store.warnings().size(), 100U);
}

TEST(RecordStore, LinesOfRecordsCountFromOne) {
  Loaded loaded(entitiesOnly("0 LINE\n5 A\n8 0\n0 CIRCLE\n5 B\n"));
  EXPECT_EQ(loaded.store.lineOf(*loaded.store.find(0xA)), 5U);
  EXPECT_EQ(loaded.store.lineOf(*loaded.store.find(0xB)), 11U);
}

TEST(RecordStore, BinaryRecordsHaveAnOffsetForALine) {
  RecordStore store;
  const std::string bytes = binaryDxf(entitiesOnly("0 LINE\n5 A\n"), false);
  loadBytes(store, bytes);
  EXPECT_EQ(store.lineOf(*store.find(0xA)), bytes.find(std::string("\0\0LINE", 6)));
}

TEST(RecordStore, BlanksAroundNamesDoNotHideThem) {
  RecordStore store;
  const std::string bytes =
      "0 \r\n SECTION \r\n  2\r\n ENTITIES\r\n 0\r\nLINE  \r\n  5\r\n A \r\n  0\r\nENDSEC "
      "\r\n0\r\nEOF\r\n";
  loadBytes(store, bytes);
  ASSERT_NE(store.find(0xA), nullptr);
  EXPECT_EQ(store.kindName(*store.find(0xA)), "LINE");
  EXPECT_EQ(savedBytes(store), bytes);
}

// --- files that lack things -----------------------------------------------------------------

TEST(RecordStore, EntitiesAloneAreADrawing) {
  Loaded loaded(entitiesOnly("0 LINE\n8 A\n10 0\n20 0\n11 1\n21 1\n"));
  Block& model = loaded.store.modelSpace();
  EXPECT_EQ(model.name, L"*Model_Space");
  EXPECT_EQ(model.entities.size(), 1U);
  ASSERT_NE(model.record, nullptr);
  EXPECT_EQ(model.entities[0]->owner, model.record);
  EXPECT_TRUE(model.record->bytes().empty());
  EXPECT_EQ(model.begin, nullptr);
  EXPECT_EQ(loaded.store.paperSpace(), nullptr);
  EXPECT_EQ(loaded.store.newHandle(), 0U);
}

TEST(RecordStore, LayerZeroExistsInEveryDrawing) {
  Loaded loaded(entitiesOnly(""));
  const Table* layers = loaded.store.table("LAYER");
  ASSERT_NE(layers, nullptr);
  ASSERT_EQ(layers->records.size(), 1U);
  EXPECT_TRUE(layers->records[0]->bytes().empty());
  EXPECT_EQ(savedBytes(loaded.store), asciiDxf(entitiesOnly("")));
}

TEST(RecordStore, TheShortestDrawingIsEofAlone) {
  RecordStore store;
  loadBytes(store, "  0\nEOF\n");
  EXPECT_TRUE(store.modelSpace().entities.empty());
  EXPECT_EQ(savedBytes(store), "  0\nEOF\n");
}

TEST(RecordStore, PaperSpaceIsMadeWhereEntitiesNeedIt) {
  Loaded loaded(entitiesOnly("0 LINE\n8 0\n67 1\n0 LINE\n8 0\n"));
  ASSERT_NE(loaded.store.paperSpace(), nullptr);
  EXPECT_EQ(loaded.store.paperSpace()->name, L"*Paper_Space");
  EXPECT_EQ(loaded.store.paperSpace()->entities.size(), 1U);
  EXPECT_EQ(loaded.store.modelSpace().entities.size(), 1U);
}

TEST(RecordStore, LayoutsThatHaveOnlyTheirRecordsKeepTheirEntities) {
  std::string text = smallR2000(lineTags("50") + "0 LINE\n5 60\n330 1B\n8 0\n");
  const std::size_t blocks = text.find("0 SECTION\n2 BLOCKS");
  text.erase(blocks, text.find("0 SECTION\n2 ENTITIES") - blocks);
  Loaded loaded(text);
  ASSERT_NE(loaded.store.paperSpace(), nullptr);
  EXPECT_EQ(loaded.names(loaded.store.paperSpace()->entities), Names{"LINE 60"});
  EXPECT_EQ(loaded.store.describe(*loaded.store.modelSpace().record), "BLOCK_RECORD 1F");
}

TEST(RecordStore, TheDollarLayoutsOfR12AreTheLayouts) {
  Loaded loaded(
      "0 SECTION\n2 BLOCKS\n0 BLOCK\n8 0\n2 $MODEL_SPACE\n0 ENDBLK\n8 0\n"
      "0 BLOCK\n8 0\n67 1\n2 $PAPER_SPACE\n0 ENDBLK\n8 0\n0 ENDSEC\n"
      "0 SECTION\n2 ENTITIES\n0 LINE\n8 0\n0 LINE\n8 0\n67 1\n0 ENDSEC\n0 EOF\n");
  EXPECT_EQ(loaded.store.blocks().size(), 2U);
  EXPECT_EQ(loaded.store.block(L"*MODEL_SPACE"), &loaded.store.modelSpace());
  EXPECT_EQ(loaded.store.modelSpace().entities.size(), 1U);
  EXPECT_EQ(loaded.store.block(L"*paper_space"), loaded.store.paperSpace());
  EXPECT_EQ(loaded.store.paperSpace()->entities.size(), 1U);
}

TEST(RecordStore, UnknownSectionsAndRecordsAreKept) {
  RecordStore store;
  const std::string bytes = asciiDxf(
      "0 SECTION\n2 ACDSDATA\n70 2\n0 ACDSSCHEMA\n90 0\n0 ENDSEC\n"
      "0 SECTION\n2 WHATEVER\n0 THING\n5 A\n0 ENDSEC\n" +
      entitiesOnly("0 ACAD_PROXY_ENTITY\n5 B\n310 00\n"));
  loadBytes(store, bytes);
  EXPECT_EQ(savedBytes(store), bytes);
  EXPECT_EQ(store.find(0xA), nullptr);  // its group 5 may mean anything
  EXPECT_NE(store.find(0xB), nullptr);
}

TEST(RecordStore, TablesAndBlocksWithoutTheirEndsAreReadAndWarnedOf) {
  RecordStore store;
  const std::string bytes = asciiDxf(
      "0 SECTION\n2 TABLES\n0 TABLE\n2 LAYER\n0 LAYER\n2 0\n0 TABLE\n2 STYLE\n0 ENDSEC\n"
      "0 SECTION\n2 BLOCKS\n0 BLOCK\n2 A\n0 LINE\n8 0\n0 BLOCK\n2 B\n0 ENDSEC\n0 EOF\n");
  loadBytes(store, bytes);
  EXPECT_EQ(store.warnings().size(), 4U);
  EXPECT_EQ(store.table("LAYER")->records.size(), 1U);
  EXPECT_NE(store.table("STYLE"), nullptr);
  EXPECT_EQ(store.block(L"A")->entities.size(), 1U);
  EXPECT_NE(store.block(L"B"), nullptr);
  EXPECT_EQ(savedBytes(store), bytes);
}

TEST(RecordStore, RecordsBetweenTablesAndBlocksAreKeptAndWarnedOf) {
  RecordStore store;
  const std::string bytes = asciiDxf(
      "0 SECTION\n2 TABLES\n0 LAYER\n2 X\n0 ENDTAB\n0 ENDSEC\n"
      "0 SECTION\n2 BLOCKS\n0 LINE\n8 0\n0 ENDBLK\n0 ENDSEC\n0 EOF\n");
  loadBytes(store, bytes);
  EXPECT_EQ(store.warnings().size(), 4U);
  EXPECT_EQ(savedBytes(store), bytes);
}

TEST(RecordStore, TwoBlocksOfOneNameAreBothThereAndTheFirstIsFound) {
  Loaded loaded(
      "0 SECTION\n2 BLOCKS\n0 BLOCK\n2 A\n0 LINE\n8 0\n0 ENDBLK\n0 BLOCK\n2 a\n0 ENDBLK\n"
      "0 ENDSEC\n0 EOF\n");
  EXPECT_EQ(loaded.store.block(L"a")->entities.size(), 1U);
  EXPECT_EQ(loaded.store.warnings().size(), 1U);
}

// --- header variables -----------------------------------------------------------------------

TEST(HeaderVariables, AreTheTagsBehindTheirName) {
  Loaded loaded(smallR2000());
  EXPECT_EQ(loaded.store.headerVariable("$INSUNITS"), asciiDxf("70 4"));
  EXPECT_EQ(loaded.store.headerVariable("$HANDSEED"), asciiDxf("5 100"));
  EXPECT_TRUE(loaded.store.headerVariable("$LTSCALE").empty());
  EXPECT_TRUE(loaded.store.headerVariable("").empty());
}

TEST(HeaderVariables, OfASecondHeaderSectionDoNotCount) {
  Loaded loaded(
      "0 SECTION\n2 HEADER\n9 $A\n70 1\n0 ENDSEC\n0 SECTION\n2 HEADER\n9 $A\n70 2\n"
      "9 $B\n70 3\n0 ENDSEC\n0 EOF\n");
  EXPECT_EQ(loaded.store.headerVariable("$A"), asciiDxf("70 1"));
  EXPECT_TRUE(loaded.store.headerVariable("$B").empty());
}

// --- progress -------------------------------------------------------------------------------

TEST(RecordStore, ProgressRunsFromZeroToOneAndCanStopTheLoad) {
  std::string entities;
  for (int i = 0; i < 60000; ++i) {
    entities += "0 LINE\n8 0\n10 0.5\n20 0.5\n11 1.5\n21 1.5\n";
  }
  const std::string bytes = asciiDxf(entitiesOnly(entities));
  RecordStore store;
  std::vector<double> fractions;
  store.load(bytes, "test.dxf", [&](double fraction) {
    fractions.push_back(fraction);
    return true;
  });
  ASSERT_GE(fractions.size(), 3U);
  EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
  EXPECT_EQ(fractions.back(), 1.0);
  try {
    store.load(bytes, "test.dxf", [](double) { return false; });
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.status, Acad::eUserBreak);
  }
  EXPECT_TRUE(store.isEmpty());
  EXPECT_EQ(store.table("LAYER"), nullptr);
}

// --- files without an end -----------------------------------------------------------------------

constexpr std::string_view kWhole = "0 SECTION\n2 ENTITIES\n0 LINE\n8 0\n0 ENDSEC\n";

TEST(MissingEof, AFileWhoseSectionsAreWholeIsReadWithAWarningAndComesBackAsItWas) {
  std::string noLineEnd = asciiDxf(kWhole);
  noLineEnd.resize(noLineEnd.size() - 2);
  for (const std::string& bytes :
       {asciiDxf(kWhole), noLineEnd, asciiDxf(kWhole) + "\r\n\r\n", asciiDxf(kWhole) + "  0",
        asciiDxf(kWhole) + "  0\r\n", asciiDxf(kWhole) + "  0\r\nEO", asciiDxf(kWhole, "\n"),
        asciiDxf(kWhole, "\r"), test::binaryDxf(kWhole, true), test::binaryDxf(kWhole, false)}) {
    RecordStore store;
    loadBytes(store, bytes);
    EXPECT_EQ(store.modelSpace().entities.size(), 1U);
    ASSERT_EQ(store.warnings().size(), 1U);
    EXPECT_EQ(store.warnings()[0].text, "the file ends without EOF; its sections are whole");
    EXPECT_EQ(savedBytes(store), bytes);
  }
}

TEST(MissingEof, IsWrittenWhenTheDrawingChanges) {
  const std::string text(kWhole);
  const std::string changed = "0 SECTION\n2 ENTITIES\n0 LINE\n8 0\n0 POINT\n8 0\n0 ENDSEC\n";
  std::string noLineEnd = asciiDxf(text);
  noLineEnd.resize(noLineEnd.size() - 2);
  for (const std::string& bytes : {asciiDxf(text), noLineEnd, asciiDxf(text) + "  0\r\nEO"}) {
    RecordStore store;
    loadBytes(store, bytes);
    store.appendEntity(store.modelSpace(), asciiDxf("0 POINT\n8 0\n"), 0);
    EXPECT_EQ(savedBytes(store), asciiDxf(changed + "0 EOF\n"));
    store.appendObject(asciiDxf("0 DICTIONARY\n"), 0);
    EXPECT_EQ(savedBytes(store),
              asciiDxf(changed + "0 SECTION\n2 OBJECTS\n0 DICTIONARY\n0 ENDSEC\n0 EOF\n"));
  }
}

TEST(MissingEof, AFileCutInsideASectionOrInFrontOfTheEntitiesIsRefused) {
  for (const char* text : {"0 SECTION\n2 ENTITIES\n0 LINE\n8 0\n",
                           "0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1015\n0 ENDSEC\n",
                           "0 SECTION\n2 ENTITIES\n0 LINE\n5 A\n100 AcDbEntity\n8 0\n0 ENDSEC\n",
                           "0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 SECTION\n",
                           "0 SECTION\n2 ENTITIES\n0 ENDSEC\n0 LINE\n"}) {
    RecordStore store;
    EXPECT_THROW(loadBytes(store, asciiDxf(text)), FileError) << text;
  }
}

}  // namespace
}  // namespace quoin::dxf
