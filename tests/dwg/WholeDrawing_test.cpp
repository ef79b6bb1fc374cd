// A whole DWG drawing of the project's own, opened, changed and saved through the database as any
// other one.
#include "dwg/WholeDrawing.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>

#include "dbents.h"
#include "dbmtext.h"
#include "dbpl.h"
#include "dbsymtb.h"
#include "embedded/dwg/container/DwgFile.h"
#include "embedded/dwg/drawing/DwgCodec.h"
#include "support/Drawings.h"

namespace quoin::test {
namespace {

using dxf::Version;

class WholeDrawingTest : public testing::TestWithParam<Version> {
 protected:
  const std::string m_bytes = wholeDwg(GetParam());
  const Drawing m_drawing{m_bytes, "plan.dwg"};
};

/// Opens an entity that a drawing must have.
template <class Entity>
AcDbObjectPointer<Entity> opened(const Drawing& drawing, std::uint64_t handle,
                                 AcDb::OpenMode mode = AcDb::kForRead) {
  return AcDbObjectPointer<Entity>(drawing.id(handle), mode);
}

void expectLine(const Drawing& drawing, std::uint64_t handle, const AcGePoint3d& from,
                const AcGePoint3d& to) {
  const auto line = opened<AcDbLine>(drawing, handle);
  ASSERT_EQ(line.openStatus(), Acad::eOk);
  EXPECT_TRUE(line->startPoint() == from);
  EXPECT_TRUE(line->endPoint() == to);
}

/// The handles of model space in order.
std::vector<std::uint64_t> inModelSpace(const Drawing& drawing) {
  std::vector<std::uint64_t> handles;
  for (const AcDbObjectId& id : entitiesOf(drawing.db())) {
    handles.push_back(static_cast<Adesk::UInt64>(id.handle()));
  }
  return handles;
}

const std::vector<std::uint64_t> kAllOfModelSpace{
    kFirstLine, kSecondLine, kOutline, kArc, kCircle, kText, kMText, kDoor, kPolyline, kLastLine};

TEST_P(WholeDrawingTest, IsReadWithAllThatItHas) {
  ASSERT_EQ(m_drawing.status, Acad::eOk) << os::toUtf8(hostx::lastFileError(&m_drawing.db()));
  EXPECT_EQ(inModelSpace(m_drawing), kAllOfModelSpace);
  EXPECT_EQ(entitiesOf(m_drawing.db(), L"Door").size(), 2U);
  EXPECT_EQ(entitiesOf(m_drawing.db(), ACDB_PAPER_SPACE).size(), 1U);
  expectLine(m_drawing, kSecondLine, {0, 0, 0}, {4000, 3000, 0});
  const auto outline = opened<AcDbPolyline>(m_drawing, kOutline);
  ASSERT_EQ(outline.openStatus(), Acad::eOk);
  EXPECT_EQ(outline->numVerts(), 3U);
  EXPECT_TRUE(outline->isClosed());
  double bulge = 0.0;
  outline->getBulgeAt(1, bulge);
  EXPECT_EQ(bulge, 0.5);
  EXPECT_EQ(taken(outline->layer()), L"Walls");
  const auto text = opened<AcDbText>(m_drawing, kText);
  ASSERT_EQ(text.openStatus(), Acad::eOk);
  EXPECT_EQ(taken(text->textString()), L"Kitchen");
  const auto door = opened<AcDbBlockReference>(m_drawing, kDoor);
  ASSERT_EQ(door.openStatus(), Acad::eOk);
  EXPECT_TRUE(door->position() == AcGePoint3d(700, 0, 0));
  const auto number = opened<AcDbAttribute>(m_drawing, kDoorNumber);
  ASSERT_EQ(number.openStatus(), Acad::eOk);
  EXPECT_EQ(taken(number->textString()), L"D7");
}

TEST_P(WholeDrawingTest, HasNothingThatIsOddOrClosed) {
  const dwg::DwgFile file(m_bytes);
  EXPECT_TRUE(file.warnings().empty());
  dxf::RecordStore store;
  dwg::DwgCodec().read(m_bytes, "plan.dwg", store, {});
  for (const dxf::Warning& warning : store.warnings()) {
    ADD_FAILURE() << warning.record << ": " << warning.text;
  }
  EXPECT_TRUE(store.source()->unread().empty());
  for (const dwg::RecordView& record : file.records()) {
    EXPECT_TRUE(store.source()->canEdit(record.handle)) << std::hex << record.handle;
  }
}

TEST_P(WholeDrawingTest, SaysWhatTheDxfDrawingSays) {
  dxf::RecordStore dxfStore;
  drawWhole(dxfStore, GetParam());
  dxf::RecordStore store;
  dwg::DwgCodec().read(m_bytes, "plan.dwg", store, {});
  for (const AcDbStub& stub : dxfStore.stubs()) {
    if (stub.role == dxf::Role::Entity || stub.role == dxf::Role::SubEntity) {
      const AcDbStub* const same = store.find(stub.handle);
      ASSERT_NE(same, nullptr) << dxfStore.describe(stub);
      EXPECT_EQ(store.kindName(*same), dxfStore.kindName(stub));
      EXPECT_EQ(same->owner->handle, stub.owner->handle) << dxfStore.describe(stub);
    }
  }
}

TEST_P(WholeDrawingTest, UntouchedComesBackByteForByte) {
  ASSERT_EQ(m_drawing.status, Acad::eOk);
  if (GetParam() >= Version::R2000) {
    EXPECT_EQ(m_drawing.saved("saved.dwg"), m_bytes);
  }
}

class WrittenDrawingTest : public WholeDrawingTest {
 protected:
  /// The drawing as it is now, saved and opened again; what was not meant to change must not have.
  Drawing reopened(const std::set<std::uint64_t>& meant) const {
    const std::string bytes = m_drawing.saved("saved.dwg");
    const dwg::DwgFile before(m_bytes);
    const dwg::DwgFile after(bytes);
    EXPECT_TRUE(after.warnings().empty());
    for (const dwg::RecordView& record : before.records()) {
      const dwg::RecordView* const same = after.find(record.handle);
      if (!meant.contains(record.handle)) {
        EXPECT_TRUE(same != nullptr && same->data == record.data) << std::hex << record.handle;
      }
    }
    return Drawing(bytes, "again.dwg");
  }
};

TEST_P(WrittenDrawingTest, AMovedLineIsThereAndNothingElseChanged) {
  {
    const auto line = opened<AcDbLine>(m_drawing, kSecondLine, AcDb::kForWrite);
    ASSERT_EQ(line.openStatus(), Acad::eOk);
    EXPECT_EQ(line->setEndPoint({4000.25, 1.0 / 3.0, 7}), Acad::eOk);
  }
  const Drawing again = reopened({kSecondLine});
  ASSERT_EQ(again.status, Acad::eOk);
  EXPECT_EQ(inModelSpace(again), kAllOfModelSpace);
  expectLine(again, kSecondLine, {0, 0, 0}, {4000.25, 1.0 / 3.0, 7});
}

TEST_P(WrittenDrawingTest, AVertexOfAPolylineMovesAndATextTurns) {
  {
    const auto outline = opened<AcDbPolyline>(m_drawing, kOutline, AcDb::kForWrite);
    ASSERT_EQ(outline.openStatus(), Acad::eOk);
    EXPECT_EQ(outline->setPointAt(2, {5000.0, 4100.25}), Acad::eOk);
    const auto text = opened<AcDbMText>(m_drawing, kMText, AcDb::kForWrite);
    ASSERT_EQ(text.openStatus(), Acad::eOk);
    EXPECT_EQ(text->transformBy(AcGeMatrix3d::rotation(1.5, AcGeVector3d::kZAxis)), Acad::eOk);
  }
  const Drawing again = reopened({kOutline, kMText});
  ASSERT_EQ(again.status, Acad::eOk);
  const auto outline = opened<AcDbPolyline>(again, kOutline);
  ASSERT_EQ(outline.openStatus(), Acad::eOk);
  AcGePoint2d vertex;
  outline->getPointAt(2, vertex);
  EXPECT_TRUE(vertex == AcGePoint2d(5000.0, 4100.25));
  const auto text = opened<AcDbMText>(again, kMText);
  ASSERT_EQ(text.openStatus(), Acad::eOk);
  EXPECT_NEAR(text->rotation(), 1.5, 1e-12);
}

TEST_P(WrittenDrawingTest, AnAttributeGetsAnotherText) {
  {
    const auto number = opened<AcDbAttribute>(m_drawing, kDoorNumber, AcDb::kForWrite);
    ASSERT_EQ(number.openStatus(), Acad::eOk);
    EXPECT_EQ(number->setTextString(L"D8"), Acad::eOk);
  }
  const Drawing again = reopened({kDoorNumber});
  ASSERT_EQ(again.status, Acad::eOk);
  const auto number = opened<AcDbAttribute>(again, kDoorNumber);
  ASSERT_EQ(number.openStatus(), Acad::eOk);
  EXPECT_EQ(taken(number->textString()), L"D8");
}

TEST_P(WrittenDrawingTest, AnAppendedLineIsTheLastOfItsBlock) {
  const AcDbObjectId id =
      append(m_drawing.db(), new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6)));
  const std::uint64_t fresh = static_cast<Adesk::UInt64>(id.handle());
  const Drawing again = reopened({0x1F, kLastLine});
  ASSERT_EQ(again.status, Acad::eOk);
  auto expected = kAllOfModelSpace;
  expected.push_back(fresh);
  EXPECT_EQ(inModelSpace(again), expected);
  expectLine(again, fresh, {1, 2, 3}, {4, 5, 6});
}

TEST_P(WrittenDrawingTest, NeighboursThatAreErasedLeaveTheRestInOrder) {
  std::vector<std::uint64_t> expected;
  const std::set<std::uint64_t> erased{kFirstLine, kOutline, kArc, kDoor, kLastLine};
  for (const std::uint64_t handle : kAllOfModelSpace) {
    if (erased.contains(handle)) {
      const auto entity = opened<AcDbEntity>(m_drawing, handle, AcDb::kForWrite);
      EXPECT_EQ(entity->erase(), Acad::eOk);
    } else {
      expected.push_back(handle);
    }
  }
  // In a chain neighbours change; the attribute goes with its reference.
  const Drawing again = reopened({0x1F, kFirstLine, kSecondLine, kOutline, kArc, kCircle, kMText,
                                  kDoor, kDoorNumber, 0x49, kPolyline, kLastLine, kDoorBlock});
  ASSERT_EQ(again.status, Acad::eOk);
  EXPECT_EQ(inModelSpace(again), expected);
  expectLine(again, kSecondLine, {0, 0, 0}, {4000, 3000, 0});
}

TEST_P(WrittenDrawingTest, ALayerIsMadeForALine) {
  AcDbObjectId layerId;
  {
    AcDbLayerTable* table = nullptr;
    ASSERT_EQ(m_drawing.db().getLayerTable(table, AcDb::kForWrite), Acad::eOk);
    auto* const layer = new AcDbLayerTableRecord;
    layer->setName(L"Marks");
    EXPECT_EQ(table->add(layerId, layer), Acad::eOk);
    layer->close();
    table->close();
  }
  auto* const line = new AcDbLine(AcGePoint3d(1, 2, 3), AcGePoint3d(4, 5, 6));
  line->setLayer(layerId);
  const AcDbObjectId id = append(m_drawing.db(), line);
  const std::uint64_t fresh = static_cast<Adesk::UInt64>(id.handle());
  const Drawing again = reopened({0x1F, 2, kLastLine});
  ASSERT_EQ(again.status, Acad::eOk);
  const auto same = opened<AcDbLine>(again, fresh);
  ASSERT_EQ(same.openStatus(), Acad::eOk);
  EXPECT_EQ(taken(same->layer()), L"Marks");
}

std::string releaseOf(const testing::TestParamInfo<Version>& info) {
  return std::string(dxf::releaseName(info.param));
}

INSTANTIATE_TEST_SUITE_P(Versions, WholeDrawingTest,
                         testing::Values(Version::R14, Version::R2000, Version::R2004,
                                         Version::R2010, Version::R2013, Version::R2018),
                         releaseOf);
INSTANTIATE_TEST_SUITE_P(Versions, WrittenDrawingTest,
                         testing::Values(Version::R14, Version::R2000, Version::R2004,
                                         Version::R2010, Version::R2013, Version::R2018),
                         releaseOf);

}  // namespace
}  // namespace quoin::test
