#include "embedded/product/Platform.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "host/Log.h"
#include "host/ObjectFactory.h"
#include "support/ServiceLookups.h"

namespace {

using quoin::product::ModelNode;
using quoin::product::Platform;
using quoin::product::Project;

void* lookUp(const wchar_t* name, const wchar_t* second = L"") {
  return GetObjectFactory()->GetService(CString(name), CString(second));
}

TEST(ObjectFactory, KnowsTheFifteenServicesByName) {
  const Platform platform;
  const wchar_t* const names[] = {
      L"工程管理器服务",         L"工程事件服务",     L"工程目录事件服务",      L"工程报表事件服务",
      L"数据模型事件服务",       L"模型工厂",         L"工程信息事件服务",      L"资源库访问器对象",
      L"实体模型映射服务",       L"图形修改记录服务", L"联动管理服务",          L"资源库管理器服务",
      L"资源库数据模型事件服务", L"数据模型访问工具", L"资源库节点数据访问服务"};
  std::set<void*> services;
  ASSERT_EQ(Platform::serviceNames().size(), std::size(names));
  for (std::size_t i = 0; i < std::size(names); ++i) {
    EXPECT_STREQ(Platform::serviceNames()[i], names[i]);
    EXPECT_NE(lookUp(names[i]), nullptr);
    services.insert(lookUp(names[i]));
  }
  EXPECT_EQ(services.size(), 15U) << "each is an object of its own";
}

TEST(ObjectFactory, AnswersNullForWhatItDoesNotHave) {
  Platform platform;
  EXPECT_EQ(lookUp(L"no such service"), nullptr);
  EXPECT_EQ(lookUp(L""), nullptr);
  EXPECT_EQ(lookUp(L"模型工厂", L"second"), nullptr) << "every service exists once";
  platform.setOffered(L"模型工厂", false);
  EXPECT_EQ(lookUp(L"模型工厂"), nullptr);
  platform.setOffered(L"模型工厂", true);
  EXPECT_NE(lookUp(L"模型工厂"), nullptr);
}

TEST(ObjectFactory, AServicePointerOutlivesThePlatformAndServesTheNextOne) {
  IProjectManagerService* manager = nullptr;
  {
    Platform platform;
    Project& project = platform.projects().open(L"first", 2.0);
    manager = static_cast<IProjectManagerService*>(lookUp(L"工程管理器服务"));
    EXPECT_EQ(manager->GetCurrentProject(), &project);
  }
  EXPECT_EQ(manager->GetCurrentProject(), nullptr);
  Platform platform;
  Project& project = platform.projects().open(L"second", 3.0);
  EXPECT_EQ(manager->GetCurrentProject(), &project);
  EXPECT_EQ(lookUp(L"工程管理器服务"), manager);
}

TEST(ObjectFactory, WithoutAPlatformItHasNoServices) {
  ASSERT_NE(GetObjectFactory(), nullptr);
  EXPECT_EQ(lookUp(L"工程管理器服务"), nullptr);
}

TEST(ObjectFactory, TellsAnObserverOfEveryLookupWhileThereIsOne) {
  Platform platform;
  {
    const quoin::test::ServiceLookups lookups(platform);
    lookUp(L"模型工厂");
    lookUp(L"unknown", L"x");
    IObjectFactory* const factory = GetObjectFactory();
    factory->GetService(L"模型工厂", L"");
    factory->GetService(L"模型工厂", L"");
    EXPECT_EQ(lookups.factoryCalls(), 3U);
    const auto& records = lookups.records();
    ASSERT_EQ(records.size(), 4U);
    EXPECT_EQ(records[0].name, L"模型工厂");
    EXPECT_EQ(records[0].factoryCall, 1U);
    EXPECT_TRUE(records[0].found);
    EXPECT_EQ(records[1].second, L"x");
    EXPECT_FALSE(records[1].found);
    EXPECT_EQ(records[2].factoryCall, records[3].factoryCall) << "one factory for both";
  }
  EXPECT_EQ(platform.lookupObserver(), nullptr);
  EXPECT_NE(lookUp(L"模型工厂"), nullptr);
}

TEST(Projects, TheProjectOpenedLastIsCurrent) {
  Platform platform;
  EXPECT_EQ(platform.projects().current(), nullptr);
  Project& first = platform.projects().open(L"first", 1.0);
  Project& second = platform.projects().open(L"second", 0.5);
  EXPECT_EQ(platform.projects().current(), &second);
  EXPECT_EQ(second.name(), L"second");
  platform.projects().setCurrent(first);
  platform.closeProject(second);
  EXPECT_EQ(platform.projects().current(), &first);
  platform.projects().open(L"third", 1.0);
  platform.closeProject(*platform.projects().current());
  EXPECT_EQ(platform.projects().current(), &first);
  platform.closeProject(first);
  EXPECT_EQ(platform.projects().current(), nullptr);
  EXPECT_EQ(platform.projects().count(), 0U);
}

TEST(Projects, TheScaleIsPropertyElevenOfTheRootNode) {
  Platform platform;
  Project& project = platform.projects().open(L"p", 0.01);
  IModelNode* const root = project.GetRootModelNode();
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->GetType(), 0);
  EXPECT_EQ(static_cast<double>(root->GetProperty(11)), 0.01);
  EXPECT_TRUE(root->GetProperty(12).IsEmpty());
  project.setScale(100.0);
  EXPECT_EQ(project.scale(), 100.0);
  EXPECT_EQ(static_cast<double>(root->GetProperty(11)), 100.0);
}

TEST(VariantData, ReadsAsTheNumberThatItHoldsOrSpells) {
  EXPECT_EQ(static_cast<double>(CVariantData()), 0.0);
  EXPECT_EQ(static_cast<double>(CVariantData(2.5)), 2.5);
  EXPECT_EQ(static_cast<double>(CVariantData(std::int32_t{-3})), -3.0);
  EXPECT_EQ(static_cast<double>(CVariantData(true)), 1.0);
  EXPECT_EQ(static_cast<double>(CVariantData(CString(L"0.25"))), 0.25);
  EXPECT_EQ(static_cast<double>(CVariantData(CString(L"1:100"))), 0.0);
  EXPECT_EQ(static_cast<double>(CVariantData(CString(L""))), 0.0);
  EXPECT_EQ(CVariantData(CString(L"text")).GetText(), L"text");
  EXPECT_TRUE(CVariantData().IsEmpty());
  EXPECT_FALSE(CVariantData(0.0).IsEmpty());
}

TEST(EntityMapping, LeadsFromANodeToTheEntityThatShowsIt) {
  Platform platform;
  Project& project = platform.projects().open(L"p", 1.0);
  ModelNode& wall = project.addNode(7);
  ModelNode& door = project.addNode(8);
  const AcDbObjectId entity = AcDbObjectId().setFromOldId(32);
  platform.entityMappings().map(wall, entity);

  auto* const service = static_cast<IEntityModelMappingService*>(lookUp(L"实体模型映射服务"));
  const IEntityModelMapping* const mapping = service->GetMapping(wall.GetMapKey());
  ASSERT_NE(mapping, nullptr);
  EXPECT_EQ(mapping->GetEntityId(&wall), entity);
  EXPECT_TRUE(mapping->GetEntityId(&door).isNull());
  EXPECT_TRUE(mapping->GetEntityId(nullptr).isNull());
  platform.entityMappings().map(wall, AcDbObjectId::kNull);
  EXPECT_TRUE(mapping->GetEntityId(&wall).isNull());
}

TEST(EntityMapping, EveryProjectHasAMapOfItsOwnThatGoesWithIt) {
  Platform platform;
  Project& first = platform.projects().open(L"first", 1.0);
  Project& second = platform.projects().open(L"second", 1.0);
  ModelNode& node = first.addNode(7);
  EXPECT_NE(node.GetMapKey(), second.root().GetMapKey());
  EXPECT_EQ(node.GetMapKey(), first.root().GetMapKey());
  platform.entityMappings().map(node, AcDbObjectId().setFromOldId(32));
  ModelMapKey key = node.GetMapKey();
  platform.closeProject(first);
  EXPECT_TRUE(platform.entityMappings().under(key).GetEntityId(&node).isNull());
}

TEST(EntityMapping, WithoutAPlatformNothingIsMapped) {
  IEntityModelMappingService* service = nullptr;
  {
    const Platform platform;
    service = static_cast<IEntityModelMappingService*>(lookUp(L"实体模型映射服务"));
  }
  EXPECT_TRUE(service->GetMapping(nullptr)->GetEntityId(nullptr).isNull());
}

TEST(Log, LinesGoToTheSinkFormattedByTheWideRules) {
  Platform platform;
  std::vector<std::wstring> lines;
  platform.setLogSink([&](std::wstring_view line) { lines.emplace_back(line); });
  CLog::LogError(kAssertionFormat, L"条件", L"a\\b/c", 33);
  EXPECT_EQ(lines, std::vector<std::wstring>{L"断言：条件 a\\b/c - 33"});
  EXPECT_EQ(platform.loggedLines(), 1U);
}

TEST(Log, GoesToTheStandardErrorStreamByDefault) {
  {
    Platform platform;
    testing::internal::CaptureStderr();
    CLog::LogError(L"%s", L"墙");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: 墙\n");
    EXPECT_FALSE(platform.setLogSink([](std::wstring_view) {})) << "there was no other sink";
    EXPECT_TRUE(platform.setLogSink({}));
  }
  testing::internal::CaptureStderr();
  CLog::LogError(L"no platform %d", 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: no platform 1\n");
}

}  // namespace
