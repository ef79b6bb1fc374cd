// Opening and closing: who may have an object when, and what misuse is found.
#include <gtest/gtest.h>

#include "dbpl.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

class OpenClose : public testing::Test {
 protected:
  void SetUp() override {
    hostx::resetMisuse();
    ASSERT_EQ(drawing.status, Acad::eOk);
  }
  Drawing drawing{smallDrawing(lineTags("40") + lineTags("41"))};
  AcDbObjectId id = drawing.id(0x40);
};

TEST_F(OpenClose, AWriterIsAlone) {
  AcDbLine* writer = nullptr;
  ASSERT_EQ(acdbOpenObject(writer, id, AcDb::kForWrite), Acad::eOk);
  AcDbLine* other = nullptr;
  EXPECT_EQ(acdbOpenObject(other, id, AcDb::kForRead), Acad::eWasOpenForWrite);
  EXPECT_EQ(other, nullptr);
  EXPECT_EQ(acdbOpenObject(other, id, AcDb::kForWrite), Acad::eWasOpenForWrite);
  EXPECT_EQ(writer->close(), Acad::eOk);
  EXPECT_EQ(acdbOpenObject(other, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(other->close(), Acad::eOk);
}

TEST_F(OpenClose, ReadersShareTheObjectAndKeepWritersOut) {
  AcDbLine* first = nullptr;
  AcDbLine* second = nullptr;
  ASSERT_EQ(acdbOpenObject(first, id, AcDb::kForRead), Acad::eOk);
  ASSERT_EQ(acdbOpenObject(second, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(first, second);
  AcDbLine* writer = nullptr;
  EXPECT_EQ(acdbOpenObject(writer, id, AcDb::kForWrite), Acad::eWasOpenForRead);
  EXPECT_EQ(first->upgradeOpen(), Acad::eWasOpenForRead);
  EXPECT_EQ(first->close(), Acad::eOk);
  EXPECT_EQ(second->upgradeOpen(), Acad::eOk);
  EXPECT_TRUE(second->isWriteEnabled());
  EXPECT_EQ(second->upgradeOpen(), Acad::eWasOpenForWrite);
  EXPECT_EQ(second->downgradeOpen(), Acad::eOk);
  EXPECT_FALSE(second->isWriteEnabled());
  EXPECT_EQ(second->downgradeOpen(), Acad::eNotOpenForWrite);
  EXPECT_EQ(second->close(), Acad::eOk);
  EXPECT_TRUE(hostx::misuse().isEmpty());
}

TEST_F(OpenClose, ThereAreAtMost256Readers) {
  AcDbObject* reader = nullptr;
  for (int i = 0; i < 256; ++i) {
    ASSERT_EQ(acdbOpenAcDbObject(reader, id, AcDb::kForRead), Acad::eOk);
  }
  AcDbObject* oneMore = nullptr;
  EXPECT_EQ(acdbOpenAcDbObject(oneMore, id, AcDb::kForRead), Acad::eAtMaxReaders);
  EXPECT_EQ(oneMore, nullptr);
  for (int i = 0; i < 256; ++i) {
    EXPECT_EQ(reader->close(), Acad::eOk);
  }
}

TEST_F(OpenClose, IdsThatLeadNowhereAnswerWhy) {
  AcDbObject* object = nullptr;
  EXPECT_EQ(acdbOpenAcDbObject(object, AcDbObjectId::kNull, AcDb::kForRead), Acad::eNullObjectId);
  EXPECT_EQ(acdbOpenAcDbObject(object, id, AcDb::kForNotify), Acad::eInvalidInput);
  AcDbObjectId none;
  EXPECT_EQ(drawing.db().getAcDbObjectId(none, false, AcDbHandle(0x7777)), Acad::eUnknownHandle);
  EXPECT_EQ(drawing.db().getAcDbObjectId(none, false, AcDbHandle()), Acad::eNullHandle);
  EXPECT_TRUE(none.isNull());
  AcDbCircle* circle = nullptr;
  EXPECT_EQ(acdbOpenObject(circle, id, AcDb::kForRead), Acad::eNotThatKindOfClass);
  EXPECT_EQ(circle, nullptr);
  AcDbEntity* entity = nullptr;
  EXPECT_EQ(acdbOpenAcDbEntity(entity, drawing.db().layerZero(), AcDb::kForRead),
            Acad::eNotThatKindOfClass);
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
}

TEST_F(OpenClose, ErasedObjectsOpenOnRequestOnly) {
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(line->erase(), Acad::eOk);
  EXPECT_EQ(line->erase(), Acad::eWasErased);
  EXPECT_TRUE(line->isErased());
  line->close();
  EXPECT_TRUE(id.isErased());
  EXPECT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eWasErased);
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite, true), Acad::eOk);
  EXPECT_EQ(line->erase(false), Acad::eOk);
  EXPECT_EQ(line->erase(false), Acad::eNotApplicable);
  line->close();
  EXPECT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  line->close();
}

TEST_F(OpenClose, WritingWithoutWriteIsRefusedAndNamed) {
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  EXPECT_EQ(line->setEndPoint(AcGePoint3d(9.0, 9.0, 9.0)), Acad::eNotOpenForWrite);
  EXPECT_EQ(line->setColorIndex(1), Acad::eNotOpenForWrite);
  EXPECT_EQ(line->erase(), Acad::eNotOpenForWrite);
  EXPECT_EQ(line->endPoint().x, 2.0);
  line->close();
  const hostx::Misuse misuse = hostx::misuse();
  EXPECT_EQ(misuse.writtenWithoutWrite, 3U);
  ASSERT_FALSE(misuse.messages.empty());
  EXPECT_EQ(misuse.messages.front(), L"LINE 40 changed without being open for write");
}

TEST_F(OpenClose, AClosedPointerGivesHarmlessAnswersAndIsCounted) {
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  line->close();
  EXPECT_EQ(line->startPoint().x, 0.0);
  EXPECT_EQ(line->setStartPoint(AcGePoint3d(5.0, 5.0, 5.0)), Acad::eNotOpenForWrite);
  EXPECT_EQ(line->close(), Acad::eNotOpenForRead);
  EXPECT_EQ(line->clone(), nullptr);
  EXPECT_TRUE(line->objectId().isNull());
  const hostx::Misuse misuse = hostx::misuse();
  EXPECT_EQ(misuse.usedAfterClose, 4U);
  EXPECT_EQ(misuse.messages.front(), L"AcDbLine 40 used after it was closed");
}

TEST_F(OpenClose, AClosedPointerStaysHarmlessWhileTheObjectIsOpenAgain) {
  AcDbLine* before = nullptr;
  ASSERT_EQ(acdbOpenObject(before, id, AcDb::kForRead), Acad::eOk);
  before->close();
  AcDbLine* now = nullptr;
  ASSERT_EQ(acdbOpenObject(now, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_NE(before, now);
  EXPECT_EQ(before->setStartPoint(AcGePoint3d(5.0, 5.0, 5.0)), Acad::eNotOpenForWrite);
  EXPECT_EQ(now->startPoint().x, 1.5);
  now->close();
}

TEST_F(OpenClose, ObjectsLeftOpenAreNamedWhenTheDatabaseGoes) {
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(hostx::openObjects(&drawing.db()), std::vector<std::wstring>{L"LINE 40 for write"});
  drawing.database.reset();
  const hostx::Misuse misuse = hostx::misuse();
  EXPECT_EQ(misuse.leftOpen, 1U);
  EXPECT_EQ(misuse.messages, std::vector<std::wstring>{L"LINE 40 left open for write"});
  EXPECT_EQ(line->endPoint().x, 0.0);  // harmless still
}

TEST_F(OpenClose, DeletingWhatADatabaseOwnsIsNamedAndTheObjectLivesOn) {
  AcDbLine* line = nullptr;
  ASSERT_EQ(acdbOpenObject(line, id, AcDb::kForWrite), Acad::eOk);
  delete line;
  EXPECT_EQ(hostx::misuse().deletedInDatabase, 1U);
  EXPECT_EQ(acdbOpenObject(line, id, AcDb::kForRead), Acad::eOk);
  line->close();
}

TEST_F(OpenClose, FreeObjectsAreNeitherOpenedNorClosed) {
  AcDbLine line(AcGePoint3d(1.0, 2.0, 3.0), AcGePoint3d(4.0, 5.0, 6.0));
  EXPECT_TRUE(line.objectId().isNull());
  EXPECT_EQ(line.database(), nullptr);
  EXPECT_TRUE(line.isWriteEnabled());
  EXPECT_EQ(line.close(), Acad::eNotInDatabase);
  EXPECT_EQ(line.upgradeOpen(), Acad::eNotInDatabase);
  EXPECT_EQ(line.erase(), Acad::eNotInDatabase);
  EXPECT_TRUE(hostx::misuse().isEmpty());
}

TEST_F(OpenClose, WhatADrawingCannotBeWithoutStays) {
  AcDbObject* object = nullptr;
  ASSERT_EQ(acdbOpenAcDbObject(object, drawing.db().layerZero(), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(object->erase(), Acad::eNotApplicable);
  object->close();
  ASSERT_EQ(acdbOpenAcDbObject(object, drawing.db().layerTableId(), AcDb::kForWrite), Acad::eOk);
  EXPECT_EQ(object->erase(), Acad::eNotApplicable);
  object->close();
  ASSERT_EQ(
      acdbOpenAcDbObject(object, acdbSymUtil()->blockModelSpaceId(&drawing.db()), AcDb::kForWrite),
      Acad::eOk);
  EXPECT_EQ(object->erase(), Acad::eNotApplicable);
  object->close();
}

TEST_F(OpenClose, PointersThatCloseThemselvesHoldOneOpening) {
  {
    const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
    ASSERT_EQ(line.openStatus(), Acad::eOk);
    EXPECT_EQ(line->setStartPoint(AcGePoint3d::kOrigin), Acad::eOk);
    const AcDbObjectPointer<AcDbLine> second(id);
    EXPECT_EQ(second.openStatus(), Acad::eWasOpenForWrite);
    EXPECT_EQ(second.object(), nullptr);
  }
  EXPECT_TRUE(hostx::openObjects(&drawing.db()).empty());
}

TEST_F(OpenClose, IdsTellWhatTheyName) {
  EXPECT_EQ(id.objectClass(), AcDbLine::desc());
  EXPECT_EQ(id.handle(), AcDbHandle(0x40));
  EXPECT_EQ(id.database(), drawing.database.get());
  EXPECT_EQ(drawing.db().layerZero().objectClass(), AcDbLayerTableRecord::desc());
  EXPECT_EQ(drawing.db().blockTableId().objectClass(), AcDbBlockTable::desc());
  EXPECT_LT(id, drawing.id(0x41));
  EXPECT_LT(AcDbObjectId::kNull, id);
  EXPECT_FALSE(id < id);
  EXPECT_TRUE(AcDbObjectId().setFromOldId(id.asOldId()) == id);
  EXPECT_FALSE(AcDbObjectId::kNull.isValid());
}

TEST(Handles, SpellAndReadHexadecimalDigits) {
  ACHAR text[AcDbHandle::kTextSize];
  EXPECT_TRUE(AcDbHandle(0x2F).getIntoAsciiBuffer(text));
  EXPECT_EQ(std::wstring(text), L"2F");
  EXPECT_TRUE(AcDbHandle(0xFFFFFFFFFFFFFFFF).getIntoAsciiBuffer(text));
  EXPECT_EQ(std::wstring(text), L"FFFFFFFFFFFFFFFF");
  EXPECT_TRUE(AcDbHandle().getIntoAsciiBuffer(text));
  EXPECT_EQ(std::wstring(text), L"0");
  EXPECT_FALSE(AcDbHandle(0x123).getIntoAsciiBuffer(text, 3));
  EXPECT_EQ(AcDbHandle(L"2f"), AcDbHandle(0x2F));
  EXPECT_TRUE(AcDbHandle(L"2G").isNull());
  EXPECT_TRUE(AcDbHandle(L"10000000000000000").isNull());
  EXPECT_EQ(AcDbHandle(0x11223344U, 0x5U).asUInt64(), 0x511223344U);
}

}  // namespace
}  // namespace quoin::test
