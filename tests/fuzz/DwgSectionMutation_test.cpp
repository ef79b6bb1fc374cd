// Header variables, classes and object maps of every version, and thousands of damaged ones, the
// same ones on every run: whatever is read obeys every law of the probe.
#include <gtest/gtest.h>

#include <iterator>
#include <string>

#include "dwg/MadeSections.h"
#include "fuzz/DwgSectionProbe.h"
#include "fuzz/SeedFile.h"

namespace quoin::test {
namespace {

constexpr unsigned kMutationsPerSection = 300;

Seeds madeSeeds() {
  Seeds seeds;
  for (std::size_t i = 0; i < std::size(dwg::testing::kVersions); ++i) {
    const dxf::Version version = dwg::testing::kVersions[i];
    const os::CodePage& codePage = os::CodePage::named("ANSI_936");
    const std::string digit(1, static_cast<char>('0' + i));
    const std::string release(dxf::releaseName(version));
    seeds["header_" + release] =
        digit + 'h' +
        madeHeaderSection(version, codePage,
                          {{"HANDSEED", 0x300}, {"CLAYER", 0x10}, {"BLOCK_CONTROL", 1}});
    seeds["classes_" + release] =
        digit + 'c' +
        madeClassSection(version, codePage,
                         {{"WIPEOUT", "AcDbWipeout", true}, {"SCALE", "AcDbScale", false}});
  }
  seeds["map"] =
      "0m" + dwg::container::objectMapOf({{1, 100}, {2, 200}, {0x50, 150}, {0x1000, 70000}});
  return seeds;
}

TEST(DwgSectionMutation, TheSeedsAreEachSectionOfEachVersion) {
  checkSeeds("dwg_sections.txt", madeSeeds());
}

TEST(DwgSectionMutation, DamagedSectionsObeyTheLaws) {
  auto results = probeSeeds(madeSeeds(), kMutationsPerSection, probeDwgSection);
  // Inputs that are all refused at once, or all harmless, would test nothing.
  EXPECT_GT(results[ProbeResult::Loaded], 500);
  EXPECT_GT(results[ProbeResult::Refused], 500);
}

}  // namespace
}  // namespace quoin::test
