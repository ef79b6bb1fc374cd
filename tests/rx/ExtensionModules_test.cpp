#include "embedded/rx/ExtensionModules.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "embedded/os/DynamicLibrary.h"

namespace {

using quoin::rx::ExtensionModuleCounts;
using quoin::rx::extensionModuleCounts;

TEST(ExtensionModules, AModuleIsInitialisedOnceAndTerminatedOnce) {
  const ExtensionModuleCounts before = extensionModuleCounts();
  static AFX_EXTENSION_MODULE module = {FALSE, nullptr};
  int anchor = 0;
  const auto handle = reinterpret_cast<HMODULE>(&anchor);
  EXPECT_TRUE(AfxInitExtensionModule(module, handle));
  EXPECT_FALSE(AfxInitExtensionModule(module, nullptr)) << "already";
  EXPECT_EQ(module.hModule, handle);
  new CDynLinkLibrary(module);
  EXPECT_EQ(extensionModuleCounts().initialised, before.initialised + 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries + 1);

  AfxTermExtensionModule(module);
  AfxTermExtensionModule(module);
  EXPECT_FALSE(module.bInitialized);
  EXPECT_EQ(extensionModuleCounts().terminated, before.terminated + 1);
  EXPECT_EQ(extensionModuleCounts().libraries, before.libraries);
}

TEST(ExtensionModules, TerminatingOneLeavesTheOthersLibraries) {
  static AFX_EXTENSION_MODULE first = {FALSE, nullptr};
  static AFX_EXTENSION_MODULE second = {FALSE, nullptr};
  const std::size_t before = extensionModuleCounts().libraries;
  AfxInitExtensionModule(first, nullptr);
  AfxInitExtensionModule(second, nullptr);
  new CDynLinkLibrary(first);
  new CDynLinkLibrary(second);
  AfxTermExtensionModule(first);
  EXPECT_EQ(extensionModuleCounts().libraries, before + 1);
  AfxTermExtensionModule(second);
  EXPECT_EQ(extensionModuleCounts().libraries, before);
}

TEST(DynamicLibrary, ReferencesToOneLibraryAreTheSame) {
  const std::filesystem::path folder = QUOIN_TEST_MODULE_DIR;
  const quoin::os::DynamicLibrary first(folder / "Plain.so");
  quoin::os::DynamicLibrary second(folder / "Plain.so");
  const quoin::os::DynamicLibrary other(folder / "Locked.so");
  EXPECT_TRUE(first.isSameAs(second));
  EXPECT_FALSE(first.isSameAs(other));
  second.close();
  EXPECT_FALSE(second.isOpen());
  EXPECT_EQ(second.function<int(int)>("messageCount"), nullptr);
  EXPECT_NE(first.function<int(int)>("messageCount"), nullptr);
  EXPECT_EQ(first.function<int(int)>("malloc"), nullptr) << "a dependency's symbol";
  EXPECT_THROW(quoin::os::DynamicLibrary("libc.so.6"), quoin::os::LibraryError)
      << "system folders are not searched";
}

}  // namespace
