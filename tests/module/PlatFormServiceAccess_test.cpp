#include "PlatFormServiceAccess.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include "PlatFormServiceAccessInternal.h"
#include "ProjectModel.h"
#include "embedded/product/HostApplication.h"
#include "support/HeapWatch.h"
#include "support/ServiceLookups.h"

namespace {

using quoin::test::ServiceLookups;

class ServiceAccessTest : public testing::Test {
 protected:
  ServiceAccessTest() { PlatFormServiceAccessDoor::Forget(); }
  ~ServiceAccessTest() override { PlatFormServiceAccessDoor::Forget(); }

  quoin::HostApplication host;
};

TEST_F(ServiceAccessTest, TheFirstUseLooksUpTheFifteenServicesInOrderEachWithAFreshFactory) {
  const ServiceLookups lookups(host.platform());
  ASSERT_NE(CPlatFormServiceAccess::Instance(), nullptr);
  const std::vector<std::wstring> expected = {
      L"工程管理器服务",         L"工程事件服务",     L"工程目录事件服务",      L"工程报表事件服务",
      L"数据模型事件服务",       L"模型工厂",         L"工程信息事件服务",      L"资源库访问器对象",
      L"实体模型映射服务",       L"图形修改记录服务", L"联动管理服务",          L"资源库管理器服务",
      L"资源库数据模型事件服务", L"数据模型访问工具", L"资源库节点数据访问服务"};
  const auto& records = lookups.records();
  ASSERT_EQ(records.size(), 15U);
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(records[i].name, expected[i]);
    EXPECT_EQ(records[i].second, L"");
    EXPECT_EQ(records[i].factoryCall, i + 1) << "the factory is fetched once a service";
  }
  EXPECT_EQ(lookups.factoryCalls(), 15U);
}

TEST_F(ServiceAccessTest, LaterUsesLookNothingUp) {
  CPlatFormServiceAccess* const access = CPlatFormServiceAccess::Instance();
  const ServiceLookups lookups(host.platform());
  EXPECT_EQ(CPlatFormServiceAccess::Instance(), access);
  EXPECT_EQ(CPlatFormServiceAccess::Instance(), access);
  EXPECT_EQ(lookups.factoryCalls(), 0U);
  EXPECT_TRUE(lookups.records().empty());
}

TEST_F(ServiceAccessTest, KeepsWhatTheFactoryReturnedInThatOrder) {
  const CPlatFormServiceAccess& access = *CPlatFormServiceAccess::Instance();
  std::set<void*> distinct;
  for (int i = 0; i < ePlatFormServiceCount; ++i) {
    void* const service = access.GetService(static_cast<EPlatFormService>(i));
    EXPECT_EQ(service, GetObjectFactory()->GetService(ServiceName::kAll[i], CString())) << i;
    distinct.insert(service);
  }
  EXPECT_EQ(distinct.size(), 15U);
}

TEST_F(ServiceAccessTest, AMissingServiceLeavesANullPointerAndTheOthersAreThere) {
  host.platform().setOffered(L"实体模型映射服务", false);
  std::vector<std::wstring> lines;
  host.setLogSink([&](std::wstring_view line) { lines.emplace_back(line); });
  const CPlatFormServiceAccess& access = *CPlatFormServiceAccess::Instance();
  EXPECT_EQ(access.GetEntityModelMappingService(), nullptr);
  EXPECT_NE(access.GetService(eProjectManagerService), nullptr);
  EXPECT_NE(access.GetService(eResourceLibraryNodeDataAccessService), nullptr);
  EXPECT_TRUE(lines.empty()) << "nothing is logged";
  host.platform().setOffered(L"实体模型映射服务", true);
  EXPECT_EQ(CPlatFormServiceAccess::Instance()->GetEntityModelMappingService(), nullptr)
      << "the pointers are never refreshed";
}

TEST_F(ServiceAccessTest, TheNinthServiceMapsNodesToEntities) {
  auto& project = *host.platform().projects().current();
  const AcDbObjectId entity = AcDbObjectId().setFromOldId(64);
  host.platform().entityMappings().map(project.root(), entity);
  IEntityModelMappingService* const service =
      CPlatFormServiceAccess::Instance()->GetEntityModelMappingService();
  ASSERT_NE(service, nullptr);
  EXPECT_EQ(service->GetMapping(project.root().GetMapKey())->GetEntityId(&project.root()), entity);
}

TEST_F(ServiceAccessTest, WithoutMemoryThereIsNoneAndTheNextUseTriesAgain) {
  const ServiceLookups lookups(host.platform());
  {
    const quoin::test::NoMemoryAfter noMemory(0);
    EXPECT_EQ(CPlatFormServiceAccess::Instance(), nullptr);
  }
  EXPECT_TRUE(lookups.records().empty());
  EXPECT_NE(CPlatFormServiceAccess::Instance(), nullptr);
  EXPECT_EQ(lookups.records().size(), 15U);
}

TEST_F(ServiceAccessTest, OnlyTheObjectIsKeptOfItsLookups) {
  using quoin::test::HeapWatch;
  CPlatFormServiceAccess::Instance();  // the platform's own first time
  PlatFormServiceAccessDoor::Forget();
  const long handedOut = HeapWatch::handedOut;
  const long takenBack = HeapWatch::takenBack;
  CPlatFormServiceAccess::Instance();
  EXPECT_GE(HeapWatch::handedOut - handedOut, 15);
  EXPECT_EQ(HeapWatch::handedOut - handedOut, HeapWatch::takenBack - takenBack + 1);
}

TEST(ServiceAccess, HoldsFifteenPointersBehindOneVirtualDestructor) {
  EXPECT_EQ(sizeof(CPlatFormServiceAccess), 16 * sizeof(void*));
  EXPECT_TRUE(std::has_virtual_destructor_v<CPlatFormServiceAccess>);
}

TEST(ServiceAccess, WithoutAPlatformAllServicesAreMissing) {
  PlatFormServiceAccessDoor::Forget();
  const CPlatFormServiceAccess* const access = CPlatFormServiceAccess::Instance();
  ASSERT_NE(access, nullptr);
  for (int i = 0; i < ePlatFormServiceCount; ++i) {
    EXPECT_EQ(access->GetService(static_cast<EPlatFormService>(i)), nullptr);
  }
  PlatFormServiceAccessDoor::Forget();
}

}  // namespace
