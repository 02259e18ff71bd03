// Namespace and classes: which names they know, the order in which committed instances come back, and what
// happens when an instance of the same path is committed again.
#include <gmock/gmock.h>

#include <boost/shared_ptr.hpp>
#include <new>
#include <string>
#include <vector>

#include "host/ICIMClass.h"
#include "host/ICIMInstance.h"
#include "host/TAddToVectorCallback.h"
#include "standin/Host.h"
#include "standin/PluginManager.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::ICIMClass;
using NKESTA20::ICIMInstance;
using NKESTA20::TCIMValue;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using usbinfo_test::ClassOf;
using usbinfo_test::CommitEntity;
using usbinfo_test::DeviceIds;
using usbinfo_test::MakeEntity;
using usbinfo_test::PropertyText;
using usbinfo_test::StatusOf;

using InstancePtr = boost::shared_ptr<ICIMInstance>;

class EnumerationTest : public usbinfo_test::HostTest {
 protected:
  const boost::shared_ptr<ICIMClass> hubs = host.Cimv2()->GetClass("KALDO_USBHub", {});

  std::vector<InstancePtr> All() {
    std::vector<InstancePtr> list;
    hubs->EnumerateInstances(NKESTA20::TAddToVectorCallback<ICIMInstance>(list), 0, {});
    return list;
  }
};

TEST_F(EnumerationTest, NamespaceFindsTheServedClassesAndNoOther) {
  for (const auto& schema : schema::ServedClasses()) {
    EXPECT_EQ(host.Cimv2()->GetClass(schema.name, {})->GetClassName({}), schema.name);
  }
  for (const char* name : {"", "KALDO_USBControllerHasHub", "kaldo_usbhub", "KALDO_USBHu"}) {
    EXPECT_EQ(StatusOf([&] { host.Cimv2()->GetClass(name, {}); }), "CIM_ERR_NOT_FOUND") << name;
  }
}

TEST_F(EnumerationTest, NamespaceHandsOutOneClassObjectPerName) {
  EXPECT_EQ(host.Cimv2()->GetClass("KALDO_USBHub", {}), hubs);
  EXPECT_EQ(host.Cimv2()->ClassForRequest("KALDO_USBHub"), hubs);
  EXPECT_EQ(hubs->GetNamespace({}), host.Cimv2());
  EXPECT_STREQ(standin::Namespace::kName, "root/cimv2");
}

TEST_F(EnumerationTest, UnknownClassCanBeAskedForButMakesNoInstances) {
  const auto unknown = ClassOf("KALDO_USBControllerHasHub");
  EXPECT_EQ(unknown->GetClassName({}), "KALDO_USBControllerHasHub");
  EXPECT_EQ(unknown->GetNamespace({}), host.Cimv2());
  EXPECT_EQ(StatusOf([&] { unknown->CreateInstance({}); }), "CIM_ERR_INVALID_CLASS");
  bool isVisited = false;
  unknown->EnumerateInstances([&](InstancePtr) { return isVisited = true; }, 0, {});
  EXPECT_FALSE(isVisited);
}

TEST_F(EnumerationTest, AskingForAnUnknownClassDoesNotMakeItKnown) {
  ClassOf("KALDO_USBControllerHasHub");
  EXPECT_EQ(StatusOf([this] { host.Cimv2()->GetClass("KALDO_USBControllerHasHub", {}); }),
            "CIM_ERR_NOT_FOUND");
}

TEST_F(EnumerationTest, PluginManagerHoldsNoClasses) {
  standin::PluginManager manager;
  EXPECT_EQ(StatusOf([&] { manager.GetClass("KALDO_USBHub", {}); }), "CIM_ERR_NOT_FOUND");
}

TEST_F(EnumerationTest, RunsInTheOrderOfCommits) {
  const InstancePtr last = MakeEntity("KALDO_USBHub", "a");
  const InstancePtr first = CommitEntity("KALDO_USBHub", "c");
  const InstancePtr second = CommitEntity("KALDO_USBHub", "b");
  last->Commit({});
  EXPECT_THAT(All(), ElementsAre(first, second, last));
}

TEST_F(EnumerationTest, SeesNothingBeforeTheFirstCommit) {
  MakeEntity("KALDO_USBHub", "a");
  CommitEntity("KALDO_USBPort", "b");
  EXPECT_THAT(All(), IsEmpty());
}

TEST_F(EnumerationTest, StopsWhenTheCallbackSaysSo) {
  for (const char* id : {"1", "2", "3"}) CommitEntity("KALDO_USBHub", id);
  std::vector<std::string> visited;
  const auto untilSecond = [&visited](InstancePtr hub) {
    visited.push_back(PropertyText(*hub, "DeviceID"));
    return visited.size() < 2;
  };
  hubs->EnumerateInstances(untilSecond, 0, {});
  EXPECT_THAT(visited, ElementsAre("1", "2"));
}

TEST_F(EnumerationTest, DoesNotVisitWhatTheCallbackCommits) {
  CommitEntity("KALDO_USBHub", "1");
  CommitEntity("KALDO_USBHub", "2");
  std::vector<std::string> visited;
  const auto commitMore = [&visited](InstancePtr hub) {
    visited.push_back(PropertyText(*hub, "DeviceID"));
    for (int copy = 0; copy < 50; ++copy) {
      CommitEntity("KALDO_USBHub", visited.back() + "." + std::to_string(copy));
    }
    return visited.size() < 10;
  };
  hubs->EnumerateInstances(commitMore, 0, {});
  EXPECT_THAT(visited, ElementsAre("1", "2"));
  EXPECT_EQ(DeviceIds("KALDO_USBHub").size(), 102U);
}

TEST_F(EnumerationTest, RefusesFlags) {
  CommitEntity("KALDO_USBHub", "1");
  bool isVisited = false;
  for (const int flags : {1, -1, 256}) {
    EXPECT_EQ(
        StatusOf([&] { hubs->EnumerateInstances([&](InstancePtr) { return isVisited = true; }, flags, {}); }),
        "CIM_ERR_INVALID_PARAMETER");
  }
  EXPECT_FALSE(isVisited);
}

TEST_F(EnumerationTest, PassesOnWhatTheCallbackThrows) {
  CommitEntity("KALDO_USBHub", "1");
  EXPECT_THROW(hubs->EnumerateInstances([](InstancePtr) -> bool { throw 42; }, 0, {}), int);
}

TEST_F(EnumerationTest, ReplacesInPlaceWhatIsCommittedAgain) {
  for (const char* id : {"1", "2", "3"}) CommitEntity("KALDO_USBHub", id);
  const InstancePtr replacement = MakeEntity("KALDO_USBHub", "2");
  replacement->SetProperty("Description", TCIMValue("replacement"), {});
  replacement->Commit({});
  EXPECT_THAT(DeviceIds("KALDO_USBHub"), ElementsAre("1", "2", "3"));
  EXPECT_EQ(All()[1], replacement);
}

TEST_F(EnumerationTest, GoesOnInOrderAfterAReplacement) {
  for (const char* id : {"1", "2", "1", "3", "2", "4"}) CommitEntity("KALDO_USBHub", id);
  EXPECT_THAT(DeviceIds("KALDO_USBHub"), ElementsAre("1", "2", "3", "4"));
}

TEST_F(EnumerationTest, KeepsAnInstanceThatIsCommittedTwice) {
  const InstancePtr hub = CommitEntity("KALDO_USBHub", "1");
  hub->Commit({});
  EXPECT_THAT(All(), ElementsAre(hub));
}

TEST_F(EnumerationTest, KeepsWhatDiffersInOneKeyOrInItsClass) {
  CommitEntity("KALDO_USBHub", "1");
  CommitEntity("KALDO_USBDevice", "1");
  const InstancePtr other = MakeEntity("KALDO_USBHub", "1");
  other->SetProperty("SystemName", TCIMValue("other"), {});
  other->Commit({});
  EXPECT_THAT(DeviceIds("KALDO_USBHub"), ElementsAre("1", "1"));
  EXPECT_THAT(DeviceIds("KALDO_USBDevice"), ElementsAre("1"));
}

TEST_F(EnumerationTest, KeepsKeysApartThatImitateOneAnother) {
  const InstancePtr first = MakeEntity("KALDO_USBHub", R"(B",DeviceID="C)");
  first->SetProperty("CreationClassName", TCIMValue("A"), {});
  const InstancePtr second = MakeEntity("KALDO_USBHub", "C");
  second->SetProperty("CreationClassName", TCIMValue(R"(A",DeviceID="B)"), {});
  first->Commit({});
  second->Commit({});
  EXPECT_THAT(All(), ElementsAre(first, second));
}

/// Commits a hub to an empty class while the allocation of that number fails, then again if it failed. True
/// if it failed.
bool CommitsInTheEndAfterFailureAt(std::size_t number) {
  standin::Host::Instance().Reset();
  const InstancePtr hub = MakeEntity("KALDO_USBHub", "hub");
  try {
    const usbinfo_test::Allocations::Failure failure(number, [] {});
    hub->Commit({});
    return false;
  } catch (const std::bad_alloc&) {
    EXPECT_THAT(DeviceIds("KALDO_USBHub"), IsEmpty()) << number;
  }
  hub->Commit({});
  EXPECT_THAT(DeviceIds("KALDO_USBHub"), ElementsAre("hub")) << number;
  return true;
}

TEST_F(EnumerationTest, ForgetsACommitThatLackedMemory) {
  std::size_t failures = 0;
  while (CommitsInTheEndAfterFailureAt(failures)) ++failures;
  EXPECT_GT(failures, 0U);
}

TEST_F(EnumerationTest, CollectingCallbackAppendsAndGoesOn) {
  std::vector<InstancePtr> list = {MakeEntity("KALDO_USBHub", "before")};
  NKESTA20::TAddToVectorCallback<ICIMInstance> collect(list);
  const InstancePtr item = MakeEntity("KALDO_USBHub", "item");
  EXPECT_TRUE(collect(item));
  auto copy = collect;
  EXPECT_TRUE(copy(item));
  EXPECT_TRUE(collect(nullptr));
  ASSERT_EQ(list.size(), 4U);
  EXPECT_EQ(list[1], item);
  EXPECT_EQ(list[2], item);
  EXPECT_EQ(list[3], nullptr);
}

}  // namespace
