// One line of a drawing is moved, from file to file: its record is another one, and nothing else.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "embedded/dwg/container/DwgFile.h"
#include "support/Drawings.h"
#include "support/SharedData.h"

namespace quoin::dwg {
namespace {

const char* const kWritten[] = {"AC1014", "AC1015", "AC1018", "AC1024", "AC1027", "AC1032"};

/// How many bytes of the old file are others in the new one, and of how much of it stand behind.
struct ByteCounts {
  std::size_t different = 0;
  std::size_t appended = 0;
};

ByteCounts countsOf(const std::string& before, const std::string& after) {
  const std::size_t common = std::min(before.size(), after.size());
  ByteCounts counts{0, after.size() - common};
  for (std::size_t i = 0; i < common; ++i) {
    counts.different += before[i] != after[i] ? 1 : 0;
  }
  return counts;
}

class OneLineMoved : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    const std::string name = std::string("acadsharp_sample_") + GetParam() + ".dwg";
    for (const auto& path : test::sharedFiles(".dwg")) {
      if (path.filename() == name) {
        before = test::bytesOf(path);
      }
    }
    if (before.empty()) {
      GTEST_SKIP() << "the shared drawings are absent; set QUOIN_SHARED_DATA";
    }
  }

  /// Moves the first line of model space; returns its handle.
  std::uint64_t move(const AcGeVector3d& by) {
    const test::Drawing drawing(before, "plan.dwg");
    EXPECT_EQ(drawing.status, Acad::eOk);
    for (const AcDbObjectId& id : test::entitiesOf(drawing.db())) {
      if (hostx::kindName(id) != L"LINE") {
        continue;
      }
      {
        const AcDbObjectPointer<AcDbLine> line(id, AcDb::kForWrite);
        EXPECT_EQ(line.openStatus(), Acad::eOk);
        start = line->startPoint() + by;
        end = line->endPoint() + by;
        EXPECT_EQ(line->setStartPoint(start), Acad::eOk);
        EXPECT_EQ(line->setEndPoint(end), Acad::eOk);
      }
      after = drawing.saved("moved.dwg");
      return static_cast<Adesk::UInt64>(id.handle());
    }
    ADD_FAILURE() << "no line";
    return 0;
  }

  /// Every record and every section against those of the old file.
  void expectOnlyChanged(std::uint64_t handle) {
    const DwgFile old(before);
    const DwgFile fresh(after);
    EXPECT_TRUE(fresh.warnings().empty());
    ASSERT_EQ(old.records().size(), fresh.records().size());
    std::size_t changed = 0;
    for (std::size_t i = 0; i < old.records().size(); ++i) {
      const RecordView& one = old.records()[i];
      const RecordView& other = fresh.records()[i];
      ASSERT_EQ(one.handle, other.handle);
      const bool isSame = one.data == other.data && one.handleBits == other.handleBits;
      EXPECT_EQ(isSame, one.handle != handle) << "record " << std::hex << one.handle;
      changed += isSame ? 0 : 1;
    }
    EXPECT_EQ(changed, 1U);
    EXPECT_EQ(old.sectionNames(), fresh.sectionNames());
    for (const std::string& name : old.sectionNames()) {
      // Where the records are, which the map tells, is compared above.
      if (name != "AcDb:AcDbObjects" && name != "AcDb:Handles") {
        EXPECT_TRUE(old.sectionNamed(name) == fresh.sectionNamed(name)) << name;
      }
    }
    const test::Drawing again(after, "again.dwg");
    const AcDbObjectPointer<AcDbLine> line(again.id(handle), AcDb::kForRead);
    EXPECT_TRUE(line->startPoint() == start && line->endPoint() == end);
  }

  bool isFlat() const { return GetParam() == std::string("AC1015"); }

  std::string before;
  std::string after;
  AcGePoint3d start;
  AcGePoint3d end;
};

TEST_P(OneLineMoved, ByAWholeNumber) {
  expectOnlyChanged(move({1000.0, 20.0, 0.0}));
  const ByteCounts counts = countsOf(before, after);
  SCOPED_TRACE(std::to_string(counts.different) + " bytes differ of " +
               std::to_string(before.size()) + ", " + std::to_string(counts.appended) + " behind");
  RecordProperty("different", static_cast<int>(counts.different));
  RecordProperty("appended", static_cast<int>(counts.appended));
  if (isFlat()) {
    // The record where it stands and its checksum; where it has another size, the table of
    // sections and the copy of the file header, the rest is behind.
    EXPECT_LE(counts.different, 300U);
  } else {
    // A page of objects, the maps, the file header.
    EXPECT_LE(counts.different, before.size() / 8);
  }
}

TEST_P(OneLineMoved, ByTheLastBitsStaysInItsPlace) {
  const std::uint64_t handle = move({1e-11, 0.0, 0.0});
  expectOnlyChanged(handle);
  const DwgFile old(before);
  const DwgFile fresh(after);
  if (old.find(handle)->data.size() == fresh.find(handle)->data.size()) {
    EXPECT_TRUE(old.section(SectionName::Handles) == fresh.section(SectionName::Handles));
    const ByteCounts counts = countsOf(before, after);
    EXPECT_LE(counts.different, isFlat() ? 40U : before.size() / 8);
    EXPECT_TRUE(!isFlat() || counts.appended == 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Versions, OneLineMoved, testing::ValuesIn(kWritten),
                         [](const auto& version) { return std::string(version.param); });

}  // namespace
}  // namespace quoin::dwg
