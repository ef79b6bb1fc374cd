#include "ProjectScale.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <iostream>
#include <limits>
#include <string>
#include <vector>

#include "embedded/product/HostApplication.h"
#include "support/HeapWatch.h"
#include "support/ServiceLookups.h"

namespace {

class ProjectScaleTest : public testing::Test {
 protected:
  ProjectScaleTest() {
    host.setLogSink([this](std::wstring_view line) { lines.emplace_back(line); });
  }
  quoin::product::Project& project() { return *host.platform().projects().current(); }

  quoin::HostApplication host;
  std::vector<std::wstring> lines;
};

TEST_F(ProjectScaleTest, IsTheRawValueOfPropertyEleven) {
  EXPECT_EQ(kProjectScaleProperty, 11);
  for (const double scale : {1.0, 0.01, 100.0, 0.0, -2.0, 1.0 / 3.0}) {
    project().setScale(scale);
    EXPECT_EQ(GetProjectScale(), scale);
  }
  project().root().setProperty(10, CVariantData(7.0));
  project().setScale(5.0);
  EXPECT_EQ(GetProjectScale(), 5.0);
  EXPECT_TRUE(lines.empty());
}

TEST_F(ProjectScaleTest, EveryCallIsACompleteLookup) {
  const quoin::test::ServiceLookups lookups(host.platform());
  const auto reads = project().root().reads();
  project().setScale(2.0);
  EXPECT_EQ(GetProjectScale(), 2.0);
  project().setScale(3.0);
  EXPECT_EQ(GetProjectScale(), 3.0) << "nothing is kept";
  const auto& records = lookups.records();
  ASSERT_EQ(records.size(), 2U);
  for (std::size_t i = 0; i < records.size(); ++i) {
    EXPECT_EQ(records[i].name, L"工程管理器服务");
    EXPECT_EQ(records[i].second, L"");
    EXPECT_EQ(records[i].factoryCall, i + 1);
  }
  EXPECT_EQ(project().root().reads(), reads + 2) << "the property is read once a call";
}

TEST_F(ProjectScaleTest, FollowsTheCurrentProject) {
  EXPECT_EQ(GetProjectScale(), 1.0);
  auto& first = project();
  host.platform().projects().open(L"second", 0.5);
  EXPECT_EQ(GetProjectScale(), 0.5);
  host.platform().projects().setCurrent(first);
  EXPECT_EQ(GetProjectScale(), 1.0);
}

TEST_F(ProjectScaleTest, ARootNodeOfAnotherTypeIsLoggedOnceACallAndReadAllTheSame) {
  project().root().setType(4);
  project().setScale(0.25);
  EXPECT_EQ(GetProjectScale(), 0.25);
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_EQ(lines[0],
            L"断言：!pModelNode || pModelNode->GetType() == ROOT_MODEL "
            L"businessaccess\\PaperWrapper/PaperWrapper - 33");
  EXPECT_EQ(GetProjectScale(), 0.25);
  EXPECT_EQ(lines.size(), 2U);
}

TEST_F(ProjectScaleTest, TheNamesThatAreAskedForLiveOnlyForTheirCall) {
  using quoin::test::HeapWatch;
  GetProjectScale();  // what the platform makes at the first call is its own
  for (int call = 0; call < 3; ++call) {
    const long handedOut = HeapWatch::handedOut;
    const long takenBack = HeapWatch::takenBack;
    GetProjectScale();
    EXPECT_GT(HeapWatch::handedOut, handedOut) << "the name is too long for a string without heap";
    EXPECT_EQ(HeapWatch::handedOut - handedOut, HeapWatch::takenBack - takenBack);
  }
}

/// A project that notes what is asked of its model.
class NotingProject : public quoin::product::Project {
 public:
  class Node : public quoin::product::ModelNode {
   public:
    explicit Node(std::vector<std::string>& calls)
        : ModelNode(ROOT_MODEL, nullptr), m_calls(calls) {}
    std::int32_t GetType() const override {
      m_calls.push_back("type");
      return ModelNode::GetType();
    }
    CVariantData GetProperty(std::int32_t propertyId) const override {
      m_calls.push_back("property " + std::to_string(propertyId));
      return ModelNode::GetProperty(propertyId);
    }

   private:
    std::vector<std::string>& m_calls;
  };

  NotingProject() : Project(L"noting", 1.0) { node.setProperty(11, CVariantData(0.5)); }
  IModelNode* GetRootModelNode() override {
    calls.push_back("root");
    return hasRoot ? &node : nullptr;
  }

  std::vector<std::string> calls;
  bool hasRoot = true;
  Node node{calls};
};

TEST_F(ProjectScaleTest, TheRootIsAskedForItsTypeAndThenForTheProperty) {
  NotingProject noting;
  host.platform().projects().setCurrent(noting);
  EXPECT_EQ(GetProjectScale(), 0.5);
  EXPECT_EQ(noting.calls, (std::vector<std::string>{"root", "type", "property 11"}));
}

TEST_F(ProjectScaleTest, AMissingRootNodeIsNotLoggedAndAskedAllTheSame) {
  NotingProject rootless;
  rootless.hasRoot = false;
  host.platform().projects().setCurrent(rootless);
  host.setLogSink([](std::wstring_view) { std::cerr << "a line was logged"; });
  EXPECT_DEATH(GetProjectScale(), testing::Not(testing::HasSubstr("a line was logged")));
}

TEST(CaptureDistance, IsTheReciprocalTimesTen) {
  EXPECT_EQ(GetCaptureDistance(1.0), 10.0);
  EXPECT_EQ(GetCaptureDistance(0.01), 1000.0);
  EXPECT_EQ(GetCaptureDistance(100.0), 0.1);
}

TEST(CaptureDistance, RoundsTheReciprocalFirst) {
  // 1 / 49 rounded, times ten, is not 10 / 49 rounded.
  const double reciprocal = 1.0 / 49.0;
  EXPECT_EQ(GetCaptureDistance(49.0), reciprocal * 10.0);
  bool differs = false;
  for (int scale = 1; scale < 1000; ++scale) {
    differs = differs || GetCaptureDistance(scale) != 10.0 / scale;
  }
  EXPECT_TRUE(differs) << "the order of the two roundings shows";
}

TEST(CaptureDistance, ZeroGivesInfinityAndANegativeScaleANegativeDistance) {
  EXPECT_EQ(GetCaptureDistance(0.0), std::numeric_limits<double>::infinity());
  EXPECT_EQ(GetCaptureDistance(-2.0), -5.0);
}

}  // namespace
