// Which tags of an entity are those that all entities share, wherever they stand, and what the
// pass over a file takes from them: handle, owner, space.
#include "embedded/dxf/SharedTags.h"

#include <gtest/gtest.h>

#include "support/DxfText.h"

namespace quoin::dxf {
namespace {

using test::asciiDxf;
using test::entitiesOnly;

TEST(SharedTags, CountBehindOtherMarkersWhereTheKindHasNoUseOfItsOwnForTheCode) {
  for (const int code : {8, 6, 62, 420, 430, 440, 48, 60, 67, 347, 348, 370, 390, 410, 284, 330}) {
    for (const char* kind : {"LINE", "CIRCLE", "LWPOLYLINE", "INSERT", "TEXT", "XLINE", "SPLINE"}) {
      EXPECT_TRUE(isSharedTag(kind, code)) << kind << " " << code;
    }
    EXPECT_FALSE(isSharedTag("ACAD_TABLE", code)) << code;
    EXPECT_FALSE(isSharedTag("ACAD_PROXY_ENTITY", code)) << code;
    EXPECT_FALSE(isSharedTag("NOBODY_KNOWS", code)) << code;
    EXPECT_FALSE(isSharedTag("LAYER", code)) << code;
  }
  EXPECT_FALSE(isSharedTag("HATCH", 330));
  EXPECT_TRUE(isSharedTag("HATCH", 62));
  EXPECT_FALSE(isSharedTag("MTEXT", 420));
  EXPECT_FALSE(isSharedTag("MTEXT", 430));
  EXPECT_FALSE(isSharedTag("MTEXT", 48));
  EXPECT_TRUE(isSharedTag("MTEXT", 62));
  EXPECT_FALSE(isSharedTag("VIEWPORT", 348));
  EXPECT_FALSE(isSharedTag("MULTILEADER", 330));
  for (const int code : {10, 40, 70, 39, 63, 210, 1001}) {
    EXPECT_FALSE(isSharedTag("LINE", code)) << code;
  }
}

void load(RecordStore& store, const std::string& text) {
  store.load(asciiDxf(text), "plan.dxf");
}

TEST(SharedTags, HandleOwnerAndSpaceOfAnEntityAreFoundBehindMarkers) {
  for (const char* head : {"100 AcDbEntity\n5 2F\n67 1\n100 AcDbLine\n8 A\n",
                           "100 AcDbEntity\n100 AcDbLine\n5 2F\n67 1\n8 A\n",
                           "100 AcDbLine\n8 A\n67 1\n5 2F\n", "5 2F\n67 1\n100 AcDbLine\n8 A\n"}) {
    RecordStore store;
    load(store, entitiesOnly("0 LINE\n" + std::string(head) + "10 0.0\n20 0.0\n11 1.0\n21 0.0\n"));
    ASSERT_NE(store.find(0x2F), nullptr) << head;
    ASSERT_NE(store.paperSpace(), nullptr) << head;
    EXPECT_EQ(store.paperSpace()->entities.size(), 1U) << head;
  }
}

TEST(SharedTags, TheOwnerBehindAMarkerPlacesAnEntityInItsLayout) {
  for (const char* head : {"5 40\n100 AcDbEntity\n330 1B\n100 AcDbLine\n8 0\n",
                           "5 40\n100 AcDbEntity\n100 AcDbLine\n8 0\n330 1B\n"}) {
    RecordStore store;
    load(store,
         test::smallR2000("0 LINE\n" + std::string(head) + "10 0.0\n20 0.0\n11 1.0\n21 0.0\n"));
    ASSERT_NE(store.paperSpace(), nullptr);
    EXPECT_EQ(store.paperSpace()->entities.size(), 1U) << head;
  }
}

TEST(SharedTags, WhatTheKindOrAnApplicationMeansByTheCodeDoesNotCount) {
  RecordStore store;
  load(store,
       test::smallR2000("0 HATCH\n5 40\n100 AcDbEntity\n8 0\n100 AcDbHatch\n330 1B\n"
                        "0 LINE\n5 41\n102 {X\n67 1\n102 }\n100 AcDbEntity\n8 0\n100 AcDbLine\n"
                        "0 MTEXT\n5 42\n100 AcDbEntity\n8 0\n100 AcDbMText\n101 Embedded Object\n"
                        "67 1\n330 1B\n5 99\n"
                        "0 ACAD_TABLE\n5 43\n100 AcDbEntity\n8 0\n100 AcDbTable\n67 1\n330 1B\n"));
  EXPECT_EQ(store.modelSpace().entities.size(), 4U);
  EXPECT_EQ(store.find(0x99), nullptr);
  EXPECT_NE(store.find(0x43), nullptr);
}

}  // namespace
}  // namespace quoin::dxf
