// The DWG drawings of examples/ are what the DXF drawings beside them are.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "dwg/DwgMaker.h"
#include "embedded/dwg/drawing/DwgCodec.h"
#include "embedded/dxf/FileError.h"
#include "embedded/dxf/RecordStore.h"
#include "support/SharedData.h"

namespace quoin::test {
namespace {

class ExampleDrawings : public testing::TestWithParam<const char*> {
 protected:
  ExampleDrawings() {
    const std::filesystem::path plan =
        std::filesystem::path(QUOIN_SOURCE_DIR) / "examples" / GetParam();
    m_dwg = std::filesystem::path(plan).replace_extension(".dwg");
    m_dxf.load(bytesOf(plan), plan.string());
  }

  dxf::RecordStore m_dxf;
  std::filesystem::path m_dwg;
};

TEST_P(ExampleDrawings, AreMadeOfTheDxfDrawings) {
  DwgMaker maker(m_dxf);
  const std::string made = maker.file();
  for (const std::string& why : maker.leftOut()) {
    // Materials are no record that this program reads.
    EXPECT_TRUE(why.starts_with("MATERIAL")) << why;
  }
  if (std::getenv("QUOIN_WRITE_EXAMPLES") != nullptr) {
    std::ofstream(m_dwg, std::ios::binary) << made;
    return;
  }
  EXPECT_TRUE(bytesOf(m_dwg) == made)
      << "QUOIN_WRITE_EXAMPLES=1 build/dev/bin/test_dwg --gtest_filter='*ExampleDrawings*' writes "
      << m_dwg;
}

TEST_P(ExampleDrawings, HaveTheSameEntitiesAndAreAllOpen) {
  dxf::RecordStore store;
  dwg::DwgCodec().read(bytesOf(m_dwg), m_dwg.string(), store, {});
  for (const dxf::Warning& warning : store.warnings()) {
    ADD_FAILURE() << warning.record << ": " << warning.text;
  }
  std::size_t entities = 0;
  for (const AcDbStub& stub : m_dxf.stubs()) {
    if (stub.role != dxf::Role::Entity && stub.role != dxf::Role::SubEntity) {
      continue;
    }
    ++entities;
    const AcDbStub* const same = store.find(stub.handle);
    ASSERT_NE(same, nullptr) << m_dxf.describe(stub);
    EXPECT_EQ(store.kindName(*same), m_dxf.kindName(stub));
    EXPECT_EQ(same->owner->handle, stub.owner->handle) << m_dxf.describe(stub);
    EXPECT_TRUE(store.source()->canEdit(stub.handle)) << m_dxf.describe(stub);
  }
  EXPECT_GT(entities, 20U);
}

INSTANTIATE_TEST_SUITE_P(Plans, ExampleDrawings,
                         testing::Values("flat/flat.dxf", "house-gbk/house.dxf",
                                         "studio/studio.dxf"));

}  // namespace
}  // namespace quoin::test
