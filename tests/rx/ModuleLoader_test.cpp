#include "embedded/rx/ModuleLoader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>

#include "embedded/os/DynamicLibrary.h"
#include "embedded/rx/ExtensionModules.h"
#include "embedded/rx/Runtime.h"
#include "rxregsvc.h"

namespace {

namespace fs = std::filesystem;
using quoin::rx::Module;
using quoin::rx::ModuleError;
using quoin::rx::ModuleFault;
using testing::AllOf;
using testing::HasSubstr;

fs::path testModule(const char* name) {
  return fs::path(QUOIN_TEST_MODULE_DIR) / (std::string(name) + ".so");
}

class ModuleLoaderTest : public testing::Test {
 protected:
  ModuleLoaderTest() {
    runtime.setHooks(
        {.onLoaded = [this](Module& module) { told.push_back("+" + nameOf(module)); },
         .onUnloading = [this](Module& module) { told.push_back("-" + nameOf(module)); },
         .onReport = [this](const std::string& text) { reports.push_back(text); }});
  }

  static std::string nameOf(const Module& module) { return module.path().stem().string(); }

  /// The error of an action; fails the test when there is none.
  template <class Action>
  static ModuleError errorOf(const Action& action) {
    try {
      action();
    } catch (const ModuleError& error) {
      return error;
    }
    ADD_FAILURE() << "no error";
    return {ModuleFault::NotLoaded, "", "no error"};
  }
  ModuleError loadError(const fs::path& file) {
    const ModuleError error = errorOf([&] { loader.load(file); });
    EXPECT_TRUE(loader.modules().empty());
    return error;
  }

  /// How often the module Plain has served a message since its library was opened.
  static int plainCount(AcRx::AppMsgCode message) {
    const quoin::os::DynamicLibrary library(testModule("Plain"));
    return library.function<int(int)>("messageCount")(message);
  }

  std::vector<std::string> told;
  std::vector<std::string> reports;
  quoin::rx::Runtime runtime;
  quoin::rx::ModuleLoader& loader = runtime.loader();
};

TEST_F(ModuleLoaderTest, AModuleIsInitialisedOnceAndUnloadedOnce) {
  Module& module = loader.load(testModule("Plain"));
  EXPECT_EQ(plainCount(AcRx::kInitAppMsg), 1);
  EXPECT_FALSE(module.isLocked());
  EXPECT_FALSE(module.isMdiAware());
  EXPECT_EQ(loader.find("Plain.so"), &module) << "by file name alone";
  EXPECT_EQ(loader.find(testModule("Plain")), &module);
  const quoin::os::DynamicLibrary kept(testModule("Plain"));
  loader.unload("Plain.so");
  EXPECT_EQ(kept.function<int(int)>("messageCount")(AcRx::kUnloadAppMsg), 1);
  EXPECT_TRUE(loader.modules().empty());
  EXPECT_EQ(told, (std::vector<std::string>{"+Plain", "-Plain"}));
}

TEST_F(ModuleLoaderTest, LoadingALoadedModuleAnswersItAndSendsNothing) {
  Module& module = loader.load(testModule("Plain"));
  EXPECT_EQ(&loader.load(testModule("Plain")), &module);
  EXPECT_EQ(&loader.load(testModule("Locked").parent_path() / "." / "Plain.so"), &module);
  EXPECT_EQ(loader.modules().size(), 1U);
  EXPECT_EQ(plainCount(AcRx::kInitAppMsg), 1);
  loader.unload("Plain.so");
  EXPECT_TRUE(loader.modules().empty()) << "one unload is enough";
}

TEST_F(ModuleLoaderTest, OneLibraryUnderTwoNamesIsOneModule) {
  const fs::path second = testModule("PlainAgain");
  fs::remove(second);
  fs::create_hard_link(testModule("Plain"), second);
  Module& module = loader.load(testModule("Plain"));
  EXPECT_EQ(&loader.load(second), &module);
  EXPECT_EQ(plainCount(AcRx::kInitAppMsg), 1);
  fs::remove(second);
}

TEST_F(ModuleLoaderTest, AModuleCanBeLoadedAgainAndStartsAfresh) {
  for (int round = 0; round < 3; ++round) {
    loader.load(testModule("Plain"));
    EXPECT_EQ(plainCount(AcRx::kInitAppMsg), 1) << "the library was closed in between";
    loader.unload("Plain.so");
  }
}

TEST_F(ModuleLoaderTest, AMissingFileIsNamed) {
  const ModuleError error = loadError("/no/such/folder/module.so");
  EXPECT_EQ(error.fault, ModuleFault::FileNotFound);
  EXPECT_STREQ(error.what(), "/no/such/folder/module.so: no such file");
}

TEST_F(ModuleLoaderTest, AFolderIsNoModule) {
  const ModuleError error = loadError(QUOIN_TEST_MODULE_DIR);
  EXPECT_EQ(error.fault, ModuleFault::NotALibrary);
  EXPECT_THAT(error.what(), HasSubstr("folder"));
}

TEST_F(ModuleLoaderTest, AFileThatIsNoLibraryIsNoModule) {
  for (const char* const content : {"", "this is text\n",
                                    "\x7f"
                                    "ELF"}) {
    const fs::path file = testModule("text");
    std::ofstream(file) << content;
    const ModuleError error = loadError(file);
    EXPECT_EQ(error.fault, ModuleFault::NotALibrary);
    const std::string message = error.what();
    EXPECT_THAT(message, AllOf(HasSubstr(file.string()), HasSubstr("not a shared library")));
    EXPECT_EQ(message.find(file.string()), message.rfind(file.string())) << "named once";
    fs::remove(file);
  }
}

TEST_F(ModuleLoaderTest, ALibraryWithoutEntryPointIsNoModule) {
  const ModuleError error = loadError(testModule("NoEntryPoint"));
  EXPECT_EQ(error.fault, ModuleFault::NoEntryPoint);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("NoEntryPoint.so"), HasSubstr("acrxEntryPoint")));
}

TEST_F(ModuleLoaderTest, TheEntryPointOfADependencyIsNotTheLibrarysOwn) {
  EXPECT_EQ(loadError(testModule("Dependent")).fault, ModuleFault::NoEntryPoint);
}

TEST_F(ModuleLoaderTest, ALibraryWithoutVersionStampIsNoModule) {
  const ModuleError error = loadError(testModule("NoVersionStamp"));
  EXPECT_EQ(error.fault, ModuleFault::NoVersionStamp);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("NoVersionStamp.so"), HasSubstr("acrxGetApiVersion")));
}

TEST_F(ModuleLoaderTest, AnotherVersionIsRefusedAndSaysWhich) {
  const ModuleError error = loadError(testModule("WrongVersion"));
  EXPECT_EQ(error.fault, ModuleFault::WrongVersion);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("WrongVersion.so"), HasSubstr("17.2 (0x00110002)"),
                                  HasSubstr("18.0 (0x00120000)")));
}

TEST_F(ModuleLoaderTest, AModuleThatRefusesToBeAttachedIsClosedAgain) {
  const ModuleError error = loadError(testModule("AttachRefused"));
  EXPECT_EQ(error.fault, ModuleFault::AttachRefused);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("AttachRefused.so"), HasSubstr("refused")));
  loader.load(testModule("Plain"));  // the refusal is not remembered
}

TEST_F(ModuleLoaderTest, AFailedInitialisationSaysItsCodeAndLeavesNothingBehind) {
  const ModuleError error = loadError(testModule("InitRefused"));
  EXPECT_EQ(error.fault, ModuleFault::InitRefused);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("InitRefused.so"), HasSubstr("answered 3")));
  EXPECT_EQ(runtime.commands().lookupCmd(L"LEFTOVER"), nullptr);
  EXPECT_TRUE(told.empty());
}

TEST_F(ModuleLoaderTest, AnExceptionFromTheModuleIsAFailedInitialisation) {
  const ModuleError error = loadError(testModule("InitThrows"));
  EXPECT_EQ(error.fault, ModuleFault::InitRefused);
  EXPECT_THAT(error.what(), HasSubstr("threw: no licence"));
}

TEST_F(ModuleLoaderTest, ALockedModuleStaysUntilTheHostEnds) {
  loader.load(testModule("Locked"));
  const ModuleError error = errorOf([&] { loader.unload("Locked.so"); });
  EXPECT_EQ(error.fault, ModuleFault::Locked);
  EXPECT_THAT(error.what(), AllOf(HasSubstr("Locked.so"), HasSubstr("locked")));
  EXPECT_NE(loader.find("Locked.so"), nullptr);
  EXPECT_TRUE(loader.isApplicationLocked(L"Locked.so"));
  loader.unloadAll();
  EXPECT_TRUE(loader.modules().empty());
}

TEST_F(ModuleLoaderTest, AModuleThatRefusesToUnloadStaysUntilTheHostEnds) {
  loader.load(testModule("UnloadRefused"));
  const ModuleError error = errorOf([&] { loader.unload("UnloadRefused.so"); });
  EXPECT_EQ(error.fault, ModuleFault::UnloadRefused);
  EXPECT_THAT(error.what(), HasSubstr("answered 3"));
  EXPECT_NE(loader.find("UnloadRefused.so"), nullptr);
  EXPECT_EQ(told, (std::vector<std::string>{"+UnloadRefused", "-UnloadRefused", "+UnloadRefused"}));
  loader.unloadAll();
  EXPECT_TRUE(loader.modules().empty());
  ASSERT_EQ(reports.size(), 1U);
  EXPECT_THAT(reports[0], AllOf(HasSubstr("UnloadRefused.so"), HasSubstr("answered 3")));
}

TEST_F(ModuleLoaderTest, WhatIsNotLoadedCannotBeUnloaded) {
  const ModuleError error = errorOf([&] { loader.unload("Plain.so"); });
  EXPECT_EQ(error.fault, ModuleFault::NotLoaded);
  EXPECT_THAT(error.what(), HasSubstr("Plain.so"));
}

TEST_F(ModuleLoaderTest, AllModulesAreUnloadedLastLoadedFirst) {
  loader.load(testModule("Plain"));
  loader.load(testModule("Tables"));
  told.clear();
  loader.unloadAll();
  EXPECT_EQ(told, (std::vector<std::string>{"-Tables", "-Plain"}));
}

TEST_F(ModuleLoaderTest, AMessageToAllReachesEveryModule) {
  loader.load(testModule("Plain"));
  loader.load(testModule("Locked"));
  loader.sendToAll(AcRx::kSaveMsg);
  EXPECT_EQ(plainCount(AcRx::kSaveMsg), 1);
}

TEST_F(ModuleLoaderTest, TheHostApiLoadsAndUnloadsByFileName) {
  const std::wstring plain = testModule("Plain").wstring();
  EXPECT_TRUE(acrxLoadModule(plain.c_str(), true));
  EXPECT_TRUE(acrxDynamicLinker->isModuleLoaded(L"Plain.so"));
  EXPECT_TRUE(acrxUnloadModule(L"Plain.so"));
  EXPECT_FALSE(acrxUnloadModule(L"Plain.so"));
  EXPECT_FALSE(acrxLoadModule(L"/no/such.so", false));
  EXPECT_FALSE(acrxLoadModule(nullptr, false));
  reports.clear();
  EXPECT_FALSE(acrxLoadModule(L"/no/such.so", true));
  EXPECT_EQ(reports, std::vector<std::string>{"/no/such.so: no such file"});
}

TEST_F(ModuleLoaderTest, OnlyALoadedModulesPacketIsServed) {
  int nobody = 0;
  EXPECT_FALSE(loader.unlockApplication(&nobody));
  EXPECT_FALSE(loader.lockApplication(nullptr));
  EXPECT_FALSE(loader.registerAppMDIAware(&nobody));
  EXPECT_FALSE(loader.registerAppNotMDIAware(&nobody));
  Module& module = loader.load(testModule("Plain"));
  EXPECT_TRUE(loader.lockApplication(&module));
  EXPECT_TRUE(module.isLocked());
  EXPECT_TRUE(loader.registerAppMDIAware(&module));
  EXPECT_TRUE(loader.isAppMDIAware(L"Plain.so"));
  EXPECT_TRUE(loader.registerAppNotMDIAware(&module));
  EXPECT_FALSE(loader.isAppMDIAware(L"Plain.so"));
  EXPECT_TRUE(loader.unlockApplication(&module));
  EXPECT_FALSE(loader.isApplicationLocked(L"Plain.so"));
}

TEST_F(ModuleLoaderTest, TheFramesTablesAreRegisteredAndTakenBack) {
  Module& module = loader.load(testModule("Tables"));
  EXPECT_FALSE(module.isMdiAware()) << "that option is off";
  AcEdCommand* const command = acedRegCmds->lookupCmd(L"drawshape");
  ASSERT_NE(command, nullptr);
  EXPECT_STREQ(command->localName(), L"ZEICHNE");
  EXPECT_EQ(acedRegCmds->lookupCmd(L"DROPSHAPE")->commandFlags(), ACRX_CMD_TRANSPARENT);
  ASSERT_NE(acrxFindClass(L"Shape"), nullptr);
  EXPECT_EQ(acrxFindClass(L"Shape")->myParent(), AcRxObject::desc());

  loader.unload("Tables.so");
  EXPECT_TRUE(runtime.commands().groupNames().empty());
  EXPECT_EQ(acrxFindClass(L"Shape"), nullptr);
}

TEST_F(ModuleLoaderTest, AutoLispFunctionsLiveBetweenLoadAndUnloadOfADrawing) {
  Module& module = loader.load(testModule("Tables"));
  const quoin::os::DynamicLibrary library(testModule("Tables"));
  const auto lispCallCount = library.function<int()>("lispCallCount");
  EXPECT_FALSE(runtime.lispFunctions().call(L"C:SHAPE")) << "no drawing is loaded yet";
  loader.send(module, AcRx::kLoadDwgMsg);
  EXPECT_TRUE(runtime.lispFunctions().call(L"c:Shape"));
  EXPECT_EQ(lispCallCount(), 1);
  loader.send(module, AcRx::kUnloadDwgMsg);
  EXPECT_FALSE(runtime.lispFunctions().isDefined(L"C:SHAPE"));
}

TEST_F(ModuleLoaderTest, AutoLispFunctionsOfAClosedModuleAreGone) {
  Module& module = loader.load(testModule("Tables"));
  loader.send(module, AcRx::kLoadDwgMsg);
  loader.unload("Tables.so");
  EXPECT_FALSE(runtime.lispFunctions().isDefined(L"C:SHAPE"));
}

TEST(ModuleLoaderWithoutHost, TheHostApiAnswersFalse) {
  EXPECT_EQ(acrxSysRegistry(), nullptr);
  EXPECT_EQ(acrxDynamicLinker, nullptr);
  EXPECT_EQ(acedRegCmds, nullptr);
  EXPECT_FALSE(acrxLoadModule(L"any.so", true));
  EXPECT_FALSE(acrxUnloadModule(L"any.so"));
}

TEST(RuntimeTest, ThereIsOneAtATimeAndAsManyAsWantedAfterOneAnother) {
  for (int round = 0; round < 3; ++round) {
    const quoin::rx::Runtime runtime;
    EXPECT_EQ(quoin::rx::Runtime::current(), &runtime);
    EXPECT_THROW(quoin::rx::Runtime(), std::logic_error);
    EXPECT_EQ(quoin::rx::Runtime::current(), &runtime);
  }
  EXPECT_EQ(quoin::rx::Runtime::current(), nullptr);
}

TEST(RuntimeDeathTest, AModuleIsUnloadedInOrderWhenTheProcessEndsUnderIt) {
  EXPECT_EXIT(
      {
        static quoin::rx::Runtime runtime;
        runtime.setHooks({.onUnloading = [](Module& module) {
          std::fprintf(stderr, "unloading %s", module.path().filename().c_str());
        }});
        runtime.loader().load(testModule("Tables"));
        std::exit(0);
      },
      testing::ExitedWithCode(0), "^unloading Tables.so$");
}

TEST(RuntimeDeathTest, AProcessThatEndsWithALoadedLibraryDetachesItCleanly) {
  EXPECT_EXIT(
      {
        static quoin::os::DynamicLibrary library(testModule("Tables"));
        std::exit(library.isOpen() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
