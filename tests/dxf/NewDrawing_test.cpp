#include "embedded/dxf/NewDrawing.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "embedded/dxf/RecordStore.h"
#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

TEST(NewDrawing, HasEverythingThatADrawingNeeds) {
  RecordStore store;
  test::loadBytes(store, newDrawingTemplate());
  EXPECT_EQ(store.format().version, Version::R2010);
  EXPECT_EQ(store.format().lineEnd, "\r\n");
  EXPECT_TRUE(store.warnings().empty());
  for (const char* name :
       {"VPORT", "LTYPE", "LAYER", "STYLE", "VIEW", "UCS", "APPID", "DIMSTYLE", "BLOCK_RECORD"}) {
    EXPECT_NE(store.table(name), nullptr) << name;
  }
  EXPECT_EQ(store.tables().size(), 9U);
  EXPECT_EQ(store.blocks().size(), 2U);
  EXPECT_TRUE(store.modelSpace().entities.empty());
  ASSERT_NE(store.paperSpace(), nullptr);
  EXPECT_TRUE(store.paperSpace()->entities.empty());
  EXPECT_EQ(store.describe(*store.objects().front()), "DICTIONARY C");
}

TEST(NewDrawing, EveryRecordHasAHandleOfItsOwnAndEveryReferenceATarget) {
  RecordStore store;
  test::loadBytes(store, newDrawingTemplate());
  for (const AcDbStub& stub : store.stubs()) {
    if (stub.section == Section::Classes) {
      continue;
    }
    EXPECT_NE(stub.handle, 0U) << store.kindName(stub);
    TagCursor cursor(stub.bytes(), store.format());
    TagView tag;
    while (cursor.next(tag)) {
      if (tagType(tag.code) == TagType::Handle && handleOf(tag, store.format()) != 0) {
        EXPECT_NE(store.find(handleOf(tag, store.format())), nullptr)
            << store.describe(stub) << " names " << tag.value << " in group " << tag.code;
      }
    }
  }
}

TEST(NewDrawing, TheFirstFreeHandleIsTheSeed) {
  RecordStore store;
  test::loadBytes(store, newDrawingTemplate());
  EXPECT_EQ(store.newHandle(), 0x30U);
}

}  // namespace
}  // namespace quoin::dxf
