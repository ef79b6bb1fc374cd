#include "embedded/product/HostApplication.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "embedded/os/DynamicLibrary.h"
#include "embedded/rx/ExtensionModules.h"
#include "host/ObjectFactory.h"
#include "rxregsvc.h"
#include "support/ServiceLookups.h"

namespace {

namespace fs = std::filesystem;
using quoin::HostApplication;
using quoin::rx::ExtensionModuleCounts;
using quoin::rx::extensionModuleCounts;

const fs::path kModule = fs::path(QUOIN_LIB_DIR) / "libquoin.so";

TEST(HostApplication, BeginsWithAProjectAndADocument) {
  HostApplication host({.projectName = L"House", .projectScale = 0.01});
  ASSERT_NE(host.platform().projects().current(), nullptr);
  EXPECT_EQ(host.platform().projects().current()->name(), L"House");
  EXPECT_EQ(host.platform().projects().current()->scale(), 0.01);
  ASSERT_NE(curDoc(), nullptr);
  EXPECT_STREQ(curDoc()->docTitle(), L"Drawing1.dwg");
  EXPECT_EQ(HostApplication::current(), &host);
}

TEST(HostApplication, BeginsEmptyWhenToldSo) {
  HostApplication host({.opensProject = false, .opensDocument = false});
  EXPECT_EQ(host.platform().projects().current(), nullptr);
  EXPECT_EQ(curDoc(), nullptr);
}

TEST(HostApplication, ThereIsOneAtATimeAndAsManyAsWantedAfterOneAnother) {
  for (int round = 0; round < 3; ++round) {
    HostApplication host;
    EXPECT_THROW(HostApplication(), std::logic_error);
    EXPECT_EQ(HostApplication::current(), &host);
    EXPECT_NE(acrxDynamicLinker, nullptr);
  }
  EXPECT_EQ(HostApplication::current(), nullptr);
  EXPECT_EQ(acrxDynamicLinker, nullptr);
  EXPECT_EQ(acDocManager->curDocument(), nullptr);
}

TEST(HostApplication, ReportsOfTheLoaderGoToTheLog) {
  HostApplication host;
  std::vector<std::wstring> lines;
  host.setLogSink([&](std::wstring_view line) { lines.emplace_back(line); });
  EXPECT_FALSE(acrxLoadModule(L"/no/such.so", true));
  EXPECT_EQ(lines, std::vector<std::wstring>{L"/no/such.so: no such file"});
}

/// The real module, through the loader.
class QuoinModuleTest : public testing::Test {
 protected:
  static int attached(const ExtensionModuleCounts& before) {
    return static_cast<int>(extensionModuleCounts().initialised - before.initialised);
  }
  static int detached(const ExtensionModuleCounts& before) {
    return static_cast<int>(extensionModuleCounts().terminated - before.terminated);
  }
};

TEST_F(QuoinModuleTest, IsAttachedOnceUnlockedAndMdiAwareAndDetachedOnce) {
  const ExtensionModuleCounts before = extensionModuleCounts();
  HostApplication host;
  quoin::rx::Module& module = host.loadModule(kModule);
  EXPECT_EQ(attached(before), 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries + 1);
  EXPECT_FALSE(module.isLocked());
  EXPECT_TRUE(module.isMdiAware());
  host.unloadModule("libquoin.so");
  EXPECT_EQ(attached(before), 1);
  EXPECT_EQ(detached(before), 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries);
}

TEST_F(QuoinModuleTest, CanBeLoadedAgainAndAgain) {
  const ExtensionModuleCounts before = extensionModuleCounts();
  HostApplication host;
  for (int round = 1; round <= 3; ++round) {
    host.loadModule(kModule);
    host.loadModule(kModule);  // a second load of a loaded module changes nothing
    EXPECT_EQ(attached(before), round);
    host.unloadModule(kModule);
    EXPECT_EQ(detached(before), round);
  }
  EXPECT_TRUE(host.runtime().loader().modules().empty());
}

TEST_F(QuoinModuleTest, IsUnloadedWhenTheHostEndsAndServesTheNextHost) {
  const ExtensionModuleCounts before = extensionModuleCounts();
  for (int round = 1; round <= 2; ++round) {
    HostApplication host;
    host.loadModule(kModule);
    EXPECT_EQ(attached(before), round);
  }
  EXPECT_EQ(detached(before), 2);
}

TEST_F(QuoinModuleTest, RegistersNothingAndLooksNothingUpWhenItIsLoaded) {
  HostApplication host;
  const quoin::test::ServiceLookups lookups(host.platform());
  host.loadModule(kModule);
  EXPECT_TRUE(host.runtime().commands().groupNames().empty());
  EXPECT_EQ(lookups.factoryCalls(), 0U);
  EXPECT_EQ(host.editor().prompts(*curDoc()).reactorCount(), 0) << "the watcher is not turned on";
}

TEST_F(QuoinModuleTest, AnswersOkToEveryMessage) {
  HostApplication host;
  quoin::rx::Module& module = host.loadModule(kModule);
  for (int code = 3; code <= 20; ++code) {
    EXPECT_TRUE(host.runtime().loader().send(module, static_cast<AcRx::AppMsgCode>(code)).isOk());
  }
  EXPECT_TRUE(host.runtime().loader().send(module, AcRx::kNullMsg).isOk());
}

TEST_F(QuoinModuleTest, ServesDocumentsThatComeAndGoWhileItIsLoaded) {
  HostApplication host;
  host.loadModule(kModule);
  AcApDocument& document = host.editor().openDocument(L"another.dwg");
  host.editor().closeDocument(document);
  host.unloadAllModules();
  EXPECT_TRUE(host.runtime().loader().modules().empty());
}

TEST_F(QuoinModuleTest, StampsTheVersionOfTheHostApi) {
  const quoin::os::DynamicLibrary library(kModule);
  const auto getVersion = library.function<void(Adesk::Int32*)>("acrxGetApiVersion");
  ASSERT_NE(getVersion, nullptr);
  Adesk::Int32 version = 0;
  getVersion(&version);
  EXPECT_EQ(version, 0x00120000);
  getVersion(nullptr);  // is not a disaster
}

TEST_F(QuoinModuleTest, AProcessMayEndWithTheModuleLoaded) {
  // The library's static objects go before the host's: it is unloaded when it leaves.
  EXPECT_EXIT(
      {
        static HostApplication host;
        host.loadModule(kModule);
        std::exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
