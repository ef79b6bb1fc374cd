// Changes to a store and what they do to the file: replaced, erased and added records,
// handles, variables, and the sections and tables that a file may lack.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStore.h"
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
  std::string text;
  explicit Loaded(std::string tags) : text(std::move(tags)) { loadBytes(store, asciiDxf(text)); }
  AcDbStub& at(std::uint64_t handle) {
    AcDbStub* stub = store.find(handle);
    if (stub == nullptr) {
      throw std::runtime_error("no record with this handle");
    }
    return *stub;
  }
  /// The file with a change made to its text.
  std::string with(std::string_view old, std::string_view now) const {
    std::string changed = text;
    const std::size_t found = changed.find(old);
    EXPECT_NE(found, std::string::npos) << old;
    return asciiDxf(changed.replace(found, old.size(), now));
  }
};

/// HANDSEED in a file that was saved, read back.
std::uint64_t seedIn(const RecordStore& store) {
  RecordStore saved;
  loadBytes(saved, savedBytes(store));
  const std::string_view tags = saved.headerVariable("$HANDSEED");
  TagCursor cursor(tags, saved.format());
  TagView tag;
  return cursor.next(tag) ? handleOf(tag, saved.format()) : 0;
}

// --- replacing ------------------------------------------------------------------------------

TEST(Replace, ChangesThisRecordAndNoOtherByte) {
  Loaded loaded(smallR2000(lineTags("50") + lineTags("51") + lineTags("52")));
  loaded.store.replace(loaded.at(0x51), asciiDxf(lineTags("51", "Elsewhere")));
  EXPECT_TRUE(loaded.at(0x51).changed);
  EXPECT_TRUE(loaded.store.isChanged());
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(lineTags("51"), lineTags("51", "Elsewhere")));
}

TEST(Replace, WithTheBytesOfTheFileMakesTheRecordUnchanged) {
  Loaded loaded(smallR2000(lineTags("50")));
  const char* const inFile = loaded.at(0x50).data;
  loaded.store.replace(loaded.at(0x50), asciiDxf(lineTags("50", "Elsewhere")));
  loaded.store.replace(loaded.at(0x50), asciiDxf(lineTags("50")));
  EXPECT_FALSE(loaded.at(0x50).changed);
  EXPECT_EQ(loaded.at(0x50).data, inFile);
  EXPECT_FALSE(loaded.store.isChanged());
}

TEST(Replace, TheLastOfManyReplacementsHolds) {
  Loaded loaded(smallR2000(lineTags("50")));
  for (int i = 0; i < 1000; ++i) {
    loaded.store.replace(loaded.at(0x50), asciiDxf(lineTags("50", "L" + std::to_string(i))));
  }
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(lineTags("50"), lineTags("50", "L999")));
}

TEST(Replace, MayChangeTheKind) {
  Loaded loaded(smallR2000(lineTags("50")));
  loaded.store.replace(loaded.at(0x50), asciiDxf("0 CIRCLE\n5 50\n330 1F\n8 0\n"));
  EXPECT_EQ(loaded.store.describe(loaded.at(0x50)), "CIRCLE 50");
}

TEST(Replace, BytesThatAreNoRecordAreRefused) {
  Loaded loaded(smallR2000(lineTags("50")));
  EXPECT_THROW(loaded.store.replace(loaded.at(0x50), ""), FileError);
  EXPECT_THROW(loaded.store.replace(loaded.at(0x50), asciiDxf("8 Walls\n")), FileError);
  EXPECT_EQ(savedBytes(loaded.store), asciiDxf(loaded.text));
}

TEST(Replace, WorksInBinaryFilesToo) {
  RecordStore store;
  loadBytes(store, binaryDxf(smallR2000(lineTags("50") + lineTags("51")), true));
  std::string bytes = binaryDxf(lineTags("50", "Elsewhere"), true).substr(22);
  store.replace(*store.find(0x50), bytes);
  EXPECT_EQ(savedBytes(store),
            binaryDxf(smallR2000(lineTags("50", "Elsewhere") + lineTags("51")), true));
}

// --- erasing --------------------------------------------------------------------------------

TEST(Erase, TakesTheRecordOutOfTheFileAndUneraseBringsItBack) {
  Loaded loaded(smallR2000(lineTags("50") + lineTags("51")));
  loaded.store.setErased(loaded.at(0x50), true);
  EXPECT_TRUE(loaded.store.isErased(loaded.at(0x50)));
  EXPECT_TRUE(loaded.store.isChanged());
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(lineTags("50"), ""));
  loaded.store.setErased(loaded.at(0x50), false);
  EXPECT_FALSE(loaded.store.isChanged());
  EXPECT_EQ(savedBytes(loaded.store), asciiDxf(loaded.text));
}

TEST(Erase, TakesSubEntitiesAlongAndUneraseBringsBackThoseThatWereThere) {
  const std::string polyline = "0 POLYLINE\n5 60\n0 VERTEX\n5 61\n0 VERTEX\n5 62\n0 SEQEND\n5 63\n";
  Loaded loaded(smallR2000(polyline + lineTags("50")));
  loaded.store.setErased(loaded.at(0x61), true);
  loaded.store.setErased(loaded.at(0x60), true);
  EXPECT_TRUE(loaded.store.isErased(loaded.at(0x62)));
  EXPECT_FALSE(loaded.at(0x62).erased);
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(polyline, ""));
  loaded.store.setErased(loaded.at(0x60), false);
  EXPECT_EQ(savedBytes(loaded.store), loaded.with("0 VERTEX\n5 61\n", ""));
}

TEST(Erase, OfABlockRecordTakesTheWholeBlockAlong) {
  Loaded loaded(smallR2000());
  loaded.store.setErased(loaded.at(0x30), true);
  const std::string saved = savedBytes(loaded.store);
  RecordStore again;
  loadBytes(again, saved);
  EXPECT_EQ(again.block(L"Door"), nullptr);
  EXPECT_EQ(again.find(0x32), nullptr);
  EXPECT_EQ(again.blocks().size(), 2U);
}

TEST(Erase, OfAChangedRecordForgetsTheChangeInTheFileOnly) {
  Loaded loaded(smallR2000(lineTags("50")));
  loaded.store.replace(loaded.at(0x50), asciiDxf(lineTags("50", "Elsewhere")));
  loaded.store.setErased(loaded.at(0x50), true);
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(lineTags("50"), ""));
  loaded.store.setErased(loaded.at(0x50), false);
  EXPECT_EQ(savedBytes(loaded.store), loaded.with(lineTags("50"), lineTags("50", "Elsewhere")));
}

TEST(Erase, OfANewRecordLeavesNoTraceButTheHandle) {
  Loaded loaded(smallR2000());
  AcDbStub* stub =
      loaded.store.appendEntity(loaded.store.modelSpace(), asciiDxf(lineTags("100")), 0x100);
  loaded.store.setErased(*stub, true);
  EXPECT_EQ(savedBytes(loaded.store), loaded.with("5 100\n", "5 101\n"));
}

// --- adding ---------------------------------------------------------------------------------

TEST(Append, AnEntityGoesToTheEndOfModelSpaceWithAFreshHandle) {
  Loaded loaded(smallR2000(lineTags("50")));
  const std::uint64_t handle = loaded.store.newHandle();
  EXPECT_EQ(handle, 0x100U);
  AcDbStub* stub =
      loaded.store.appendEntity(loaded.store.modelSpace(), asciiDxf(lineTags("100")), handle);
  EXPECT_TRUE(stub->isNew);
  EXPECT_EQ(stub->role, Role::Entity);
  EXPECT_EQ(stub->owner, loaded.store.modelSpace().record);
  EXPECT_EQ(loaded.store.modelSpace().entities.back(), stub);
  EXPECT_EQ(loaded.store.find(0x100), stub);
  EXPECT_EQ(loaded.store.lineOf(*stub), 0U);

  std::string expected = smallR2000(lineTags("50") + lineTags("100"));
  expected.replace(expected.find("5 100\n"), 6, "5 101\n");
  EXPECT_EQ(savedBytes(loaded.store), asciiDxf(expected));

  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.modelSpace().entities.size(), 2U);
  EXPECT_EQ(again.describe(*again.modelSpace().entities[1]), "LINE 100");
  EXPECT_TRUE(again.warnings().empty());
}

TEST(Append, EntitiesOfABlockGoInFrontOfItsEnd) {
  Loaded loaded(smallR2000());
  const std::string line = "0 LINE\n5 100\n330 30\n100 AcDbEntity\n8 0\n100 AcDbLine\n";
  loaded.store.appendEntity(*loaded.store.block(L"Door"), asciiDxf(line), 0x100);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.block(L"Door")->entities.size(), 2U);
  EXPECT_EQ(again.describe(*again.block(L"Door")->entities[1]), "LINE 100");
}

TEST(Append, EntitiesComeInTheOrderOfTheirMaking) {
  Loaded loaded(smallR2000(lineTags("50")));
  for (int i = 0; i < 10; ++i) {
    const std::uint64_t handle = loaded.store.newHandle();
    loaded.store.appendEntity(loaded.store.modelSpace(),
                              asciiDxf(lineTags(std::to_string(100 + i))), handle);
  }
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.modelSpace().entities.size(), 11U);
  for (std::size_t i = 1; i < 10; ++i) {
    EXPECT_LT(again.modelSpace().entities[i]->handle, again.modelSpace().entities[i + 1]->handle);
  }
}

TEST(Append, TableRecordsGoInFrontOfTheTablesEnd) {
  Loaded loaded(smallR2000());
  const std::string layer =
      "0 LAYER\n5 100\n330 2\n100 AcDbSymbolTableRecord\n100 AcDbLayerTableRecord\n2 New\n";
  AcDbStub* stub =
      loaded.store.appendTableRecord(*loaded.store.table("LAYER"), asciiDxf(layer), 0x100);
  EXPECT_EQ(stub->owner, loaded.store.table("LAYER")->head);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  EXPECT_EQ(again.table("LAYER")->records.size(), 3U);
  EXPECT_EQ(again.describe(*again.table("LAYER")->records[2]), "LAYER 100");
}

TEST(Append, ObjectsGoToTheEndOfTheirSection) {
  Loaded loaded(smallR2000());
  loaded.store.appendObject(asciiDxf("0 DICTIONARY\n5 100\n330 C\n100 AcDbDictionary\n"), 0x100);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.objects().size(), 3U);
  EXPECT_EQ(again.describe(*again.objects()[2]), "DICTIONARY 100");
  EXPECT_EQ(again.objects()[2]->owner, again.find(0xC));
}

TEST(Append, SubEntitiesGoInFrontOfTheSequenceEnd) {
  Loaded loaded(smallR2000("0 POLYLINE\n5 60\n0 VERTEX\n5 61\n0 SEQEND\n5 63\n" + lineTags("50")));
  AcDbStub& polyline = loaded.at(0x60);
  AcDbStub* vertex = loaded.store.appendSubEntity(polyline, asciiDxf("0 VERTEX\n5 62\n"), 0x62);
  EXPECT_EQ(vertex->owner, &polyline);
  const auto subs = loaded.store.subEntities(polyline);
  ASSERT_EQ(subs.size(), 3U);
  EXPECT_EQ(subs[1], vertex);
  EXPECT_EQ(savedBytes(loaded.store),
            loaded.with("0 SEQEND\n5 63\n", "0 VERTEX\n5 62\n0 SEQEND\n5 63\n"));
}

TEST(Append, SubEntitiesOfTheLastEntityStayWithIt) {
  Loaded loaded(smallR2000("0 INSERT\n5 60\n330 1F\n8 0\n2 Door\n"));
  AcDbStub& insert = loaded.at(0x60);
  AcDbStub* line =
      loaded.store.appendEntity(loaded.store.modelSpace(), asciiDxf(lineTags("70")), 0x70);
  loaded.store.appendSubEntity(insert, asciiDxf("0 SEQEND\n5 62\n"), 0x62);
  loaded.store.appendSubEntity(insert, asciiDxf("0 ATTRIB\n5 61\n"), 0x61);
  loaded.store.replace(insert, asciiDxf("0 INSERT\n5 60\n330 1F\n8 0\n66 1\n2 Door\n"));
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.modelSpace().entities.size(), 2U);
  const auto subs = again.subEntities(*again.find(0x60));
  ASSERT_EQ(subs.size(), 2U);
  EXPECT_EQ(again.describe(*subs[0]), "ATTRIB 61");
  EXPECT_EQ(again.describe(*subs[1]), "SEQEND 62");
  EXPECT_EQ(again.modelSpace().entities[1]->handle, line->handle);
}

TEST(Append, ANewEntityIsWrittenWithItsSubEntities) {
  Loaded loaded(smallR2000());
  Block& model = loaded.store.modelSpace();
  AcDbStub* polyline = loaded.store.appendEntity(model, asciiDxf("0 POLYLINE\n5 60\n"), 0x60);
  loaded.store.appendEntity(model, asciiDxf(lineTags("50")), 0x50);
  loaded.store.appendSubEntity(*polyline, asciiDxf("0 VERTEX\n5 61\n"), 0x61);
  loaded.store.appendSubEntity(*polyline, asciiDxf("0 SEQEND\n5 62\n"), 0x62);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.modelSpace().entities.size(), 2U);
  EXPECT_EQ(again.subEntities(*again.find(0x60)).size(), 2U);
  EXPECT_TRUE(again.subEntities(*again.find(0x50)).empty());
}

TEST(Append, ABlockComesWithItsRecordAndEntities) {
  Loaded loaded(smallR2000());
  Block& block =
      loaded.store.appendBlock(L"Window",
                               asciiDxf("0 BLOCK_RECORD\n5 100\n330 1\n100 AcDbSymbolTableRecord\n"
                                        "100 AcDbBlockTableRecord\n2 Window\n"),
                               0x100, asciiDxf("0 BLOCK\n5 101\n330 100\n8 0\n2 Window\n"), 0x101,
                               asciiDxf("0 ENDBLK\n5 102\n330 100\n8 0\n"), 0x102);
  loaded.store.appendEntity(block, asciiDxf("0 LINE\n5 103\n330 100\n8 0\n"), 0x103);
  EXPECT_EQ(loaded.store.block(L"WINDOW"), &block);
  EXPECT_EQ(loaded.store.blockOf(*block.record), &block);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_NE(again.block(L"Window"), nullptr);
  EXPECT_EQ(again.describe(*again.block(L"Window")->record), "BLOCK_RECORD 100");
  EXPECT_EQ(again.block(L"Window")->entities.size(), 1U);
  EXPECT_TRUE(again.warnings().empty());
  EXPECT_EQ(seedIn(loaded.store), 0x104U);

  loaded.store.setErased(*block.record, true);
  loadBytes(again, savedBytes(loaded.store));
  EXPECT_EQ(again.block(L"Window"), nullptr);
  EXPECT_EQ(again.find(0x103), nullptr);
}

TEST(Append, ARenamedBlockIsFoundByItsNewNameAlone) {
  Loaded loaded(smallR2000());
  Block* door = loaded.store.block(L"Door");
  loaded.store.renameBlock(*door, L"Gate");
  EXPECT_EQ(loaded.store.block(L"Door"), nullptr);
  EXPECT_EQ(loaded.store.block(L"gate"), door);
}

TEST(Append, StubsNeverMove) {
  Loaded loaded(smallR2000(lineTags("50")));
  const AcDbStub* const before = &loaded.at(0x50);
  for (std::uint64_t i = 0; i < 10000; ++i) {
    loaded.store.appendEntity(loaded.store.modelSpace(), asciiDxf("0 LINE\n"), 0x1000 + i);
  }
  EXPECT_EQ(&loaded.at(0x50), before);
  EXPECT_NE(loaded.store.find(0x1000 + 9999), nullptr);
}

// --- into files that lack the place ---------------------------------------------------------

TEST(Append, WhatAFileLacksIsMadeInTheUsualOrder) {
  Loaded loaded("0 EOF\n");
  RecordStore& store = loaded.store;
  EXPECT_EQ(store.newHandle(), 0U);
  store.appendEntity(store.modelSpace(), asciiDxf("0 LINE\n8 Walls\n"), 0);
  store.appendTableRecord(store.ensureTable("LAYER"), asciiDxf("0 LAYER\n2 Walls\n70 0\n"), 0);
  Block& block = store.appendBlock(L"B", {}, 0, asciiDxf("0 BLOCK\n8 0\n2 B\n"), 0,
                                   asciiDxf("0 ENDBLK\n8 0\n"), 0);
  store.appendEntity(block, asciiDxf("0 CIRCLE\n8 0\n"), 0);
  store.setHeaderVariable("$INSUNITS", asciiDxf("70 4"));
  EXPECT_EQ(savedBytes(store),
            asciiDxf("0 SECTION\n2 HEADER\n9 $INSUNITS\n70 4\n0 ENDSEC\n"
                     "0 SECTION\n2 TABLES\n0 TABLE\n2 LAYER\n70 1\n0 LAYER\n2 Walls\n70 0\n"
                     "0 ENDTAB\n0 ENDSEC\n"
                     "0 SECTION\n2 BLOCKS\n0 BLOCK\n8 0\n2 B\n0 CIRCLE\n8 0\n0 ENDBLK\n8 0\n"
                     "0 ENDSEC\n"
                     "0 SECTION\n2 ENTITIES\n0 LINE\n8 Walls\n0 ENDSEC\n0 EOF\n"));
}

TEST(Append, AMissingTableIsAddedToItsSectionWithAHandle) {
  Loaded loaded(smallR2000());
  Table& styles = loaded.store.ensureTable("STYLE");
  EXPECT_EQ(styles.head->handle, 0x100U);
  const std::string style =
      "0 STYLE\n5 101\n330 100\n100 AcDbSymbolTableRecord\n100 AcDbTextStyleTableRecord\n2 S\n";
  loaded.store.appendTableRecord(styles, asciiDxf(style), 0x101);
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_NE(again.table("STYLE"), nullptr);
  EXPECT_EQ(again.describe(*again.table("STYLE")->head), "TABLE 100");
  EXPECT_EQ(again.table("STYLE")->records.size(), 1U);
  EXPECT_EQ(&loaded.store.ensureTable("style"), &styles);
}

TEST(Append, ALayerZeroThatTheFileLacksIsWrittenOnceItIsChanged) {
  Loaded loaded(entitiesOnly("0 LINE\n8 0\n"));
  AcDbStub* zero = loaded.store.table("LAYER")->records[0];
  loaded.store.replace(*zero, asciiDxf("0 LAYER\n2 0\n70 0\n62 3\n"));
  RecordStore again;
  loadBytes(again, savedBytes(loaded.store));
  ASSERT_EQ(again.table("LAYER")->records.size(), 1U);
  EXPECT_EQ(again.table("LAYER")->records[0]->bytes(), asciiDxf("0 LAYER\n2 0\n70 0\n62 3\n"));
}

// --- handles --------------------------------------------------------------------------------

TEST(NewHandle, IsNeverOneThatIsInUse) {
  Loaded loaded(smallR2000(lineTags("FF") + lineTags("200")));
  EXPECT_EQ(loaded.store.newHandle(), 0x201U);  // the seed, 100, is behind
  EXPECT_EQ(loaded.store.newHandle(), 0x202U);
  EXPECT_EQ(seedIn(loaded.store), 0x203U);
}

TEST(NewHandle, TheSeedIsWrittenOnlyWhenHandlesWereHandedOut) {
  Loaded loaded(smallR2000(lineTags("200")));
  loaded.store.replace(loaded.at(0x200), asciiDxf(lineTags("200", "A")));
  EXPECT_EQ(seedIn(loaded.store), 0x100U);
  loaded.store.newHandle();
  EXPECT_EQ(seedIn(loaded.store), 0x202U);
}

TEST(NewHandle, AMissingSeedIsAddedToTheHeader) {
  std::string text = smallR2000();
  const std::string seed = "9 $HANDSEED\n5 100\n";
  text.erase(text.find(seed), seed.size());
  Loaded loaded(text);
  EXPECT_EQ(loaded.store.newHandle(), 0x34U);
  EXPECT_EQ(seedIn(loaded.store), 0x35U);
}

TEST(NewHandle, R12HasHandlesWhereHandlingIsOnOrRecordsShowThem) {
  const auto newHandleOf = [](const std::string& header, const std::string& entities) {
    RecordStore store;
    loadBytes(store, asciiDxf("0 SECTION\n2 HEADER\n9 $ACADVER\n1 AC1009\n" + header +
                              "0 ENDSEC\n" + entitiesOnly(entities)));
    return store.newHandle();
  };
  EXPECT_EQ(newHandleOf("9 $HANDLING\n70 1\n9 $HANDSEED\n5 20\n", "0 LINE\n5 3\n"), 0x20U);
  EXPECT_EQ(newHandleOf("9 $HANDLING\n70 0\n9 $HANDSEED\n5 20\n", "0 LINE\n"), 0U);
  EXPECT_EQ(newHandleOf("", "0 LINE\n5 3\n"), 4U);
  EXPECT_EQ(newHandleOf("", "0 LINE\n"), 0U);
}

// --- header variables -----------------------------------------------------------------------

TEST(SetHeaderVariable, ReplacesTheValueInItsPlace) {
  Loaded loaded(smallR2000());
  loaded.store.setHeaderVariable("$INSUNITS", asciiDxf("70 6"));
  EXPECT_EQ(loaded.store.headerVariable("$INSUNITS"), asciiDxf("70 6"));
  EXPECT_EQ(savedBytes(loaded.store), loaded.with("70 4\n", "70 6\n"));
}

TEST(SetHeaderVariable, AddsAMissingOneAtTheEnd) {
  Loaded loaded(smallR2000());
  loaded.store.setHeaderVariable("$LTSCALE", asciiDxf("40 2.0"));
  EXPECT_EQ(savedBytes(loaded.store),
            loaded.with("5 100\n0 ENDSEC", "5 100\n9 $LTSCALE\n40 2.0\n0 ENDSEC"));
}

TEST(SetHeaderVariable, TheSameValueIsNoChange) {
  Loaded loaded(smallR2000());
  loaded.store.setHeaderVariable("$INSUNITS", asciiDxf("70 4"));
  EXPECT_FALSE(loaded.store.isChanged());
  loaded.store.setHeaderVariable("$INSUNITS", asciiDxf("70 6"));
  loaded.store.setHeaderVariable("$INSUNITS", asciiDxf("70 4"));
  EXPECT_FALSE(loaded.store.isChanged());
  EXPECT_EQ(savedBytes(loaded.store), asciiDxf(loaded.text));
}

// --- everything at once ---------------------------------------------------------------------

TEST(RecordStoreEdit, RandomChangesGiveTheFileThatAModelOfItPredicts) {
  // The model is the list of model space entities as texts, written out anew each time.
  for (unsigned seed = 1; seed <= 30; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> model;
    std::string entities;
    const std::size_t count = 1 + random() % 20;
    for (std::size_t i = 0; i < count; ++i) {
      model.push_back(lineTags(std::to_string(50 + i)));
      entities += model.back();
    }
    Loaded loaded(smallR2000(entities));
    std::vector<AcDbStub*> stubs = loaded.store.modelSpace().entities;
    std::vector<bool> erased(stubs.size(), false);
    for (int step = 0; step < 60; ++step) {
      const std::size_t at = random() % stubs.size();
      switch (random() % 4) {
        case 0:
          model[at] = lineTags("999", "R" + std::to_string(step));
          loaded.store.replace(*stubs[at], asciiDxf(model[at]));
          break;
        case 1:
          erased[at] = !erased[at];
          loaded.store.setErased(*stubs[at], erased[at]);
          break;
        case 2:
          model.push_back(lineTags("998", "N" + std::to_string(step)));
          erased.push_back(false);
          stubs.push_back(
              loaded.store.appendEntity(loaded.store.modelSpace(), asciiDxf(model.back()), 0));
          break;
        default:
          break;
      }
      std::string expected;
      for (std::size_t i = 0; i < model.size(); ++i) {
        expected += erased[i] ? std::string{} : model[i];
      }
      ASSERT_EQ(savedBytes(loaded.store), asciiDxf(smallR2000(expected)))
          << "seed " << seed << ", step " << step;
    }
  }
}

TEST(RecordStoreEdit, ASaveCanBeStopped) {
  Loaded loaded(smallR2000(lineTags("50")));
  try {
    loaded.store.save([](std::string_view) {}, [](double) { return false; });
    FAIL();
  } catch (const FileError& error) {
    EXPECT_EQ(error.status, Acad::eUserBreak);
  }
}

}  // namespace
}  // namespace quoin::dxf
