// Unloading and loading again: the module is removed from the process, and a new load keeps no state of the
// old one.
#include "standin/ValueView.h"
#include "tests/module/ModuleTest.h"
#include "tests/support/Allocations.h"

using ::testing::ElementsAre;
using ::testing::Not;

namespace usbinfo_test {
namespace {

class Unload : public ModuleTest {
 protected:
  /// Loads the module, has it serve every class and unloads it.
  static void LoadCollectUnload() {
    standin::PluginModule module(MODULE_PATH);
    module.Collect(kAllClasses);
  }

  std::vector<std::string> ControllerIds() {
    std::vector<std::string> ids;
    for (const auto& instance : host.Cimv2()->ClassForRequest("KALDO_USBController")->Instances()) {
      ids.push_back(standin::TextOf(*instance->Find("DeviceID")));
    }
    return ids;
  }
};

TEST_F(Unload, TakesTheModuleOutOfTheProcess) {
  EXPECT_FALSE(IsMapped(MODULE_PATH));
  {
    const standin::PluginModule module(MODULE_PATH);
    EXPECT_TRUE(IsMapped(MODULE_PATH));
  }
  EXPECT_FALSE(IsMapped(MODULE_PATH));
}

TEST_F(Unload, TakesTheModuleOutOfTheProcessAfterItServedEveryClass) {
  GiveDeviceList(kRootHubWithMouse);
  LoadCollectUnload();
  EXPECT_FALSE(IsMapped(MODULE_PATH));
}

TEST_F(Unload, TakesTheModuleOutOfTheProcessAfterExceptionsCrossedItsBorder) {
  GiveDeviceList(kRootHubWithMouse);
  standin::HostSeam::SetObserver([](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kCreateInstance) throw std::runtime_error("no instance");
  });
  LoadCollectUnload();
  EXPECT_THAT(log, ::testing::Contains(kUnknownException));
  EXPECT_FALSE(IsMapped(MODULE_PATH));
}

TEST_F(Unload, FreesAllThatTheModuleAllocated) {
  GiveDeviceList(kRootHubWithMouse);
  LoadCollectUnload();  // the host keeps the instances, which the next round replaces one by one
  host.CoreLogger().SetSink(nullptr);
  const std::size_t before = Allocations::Live();
  LoadCollectUnload();
  EXPECT_EQ(Allocations::Live(), before);
}

TEST_F(Unload, LeavesTheHostsInstancesUsable) {
  GiveDeviceList(kRootHubWithMouse);
  LoadCollectUnload();
  EXPECT_THAT(ControllerIds(), ElementsAre("Bus 01  Device   1"));
  const auto port = host.Cimv2()->ClassForRequest("KALDO_USBPort")->Instances().at(0);
  EXPECT_THAT(standin::StringsOf(*port->Find("StatusDescriptions")), ElementsAre("Device connected"));
}

TEST_F(Unload, ForgetsThePlugin) {
  LoadCollectUnload();
  EXPECT_TRUE(host.Plugins().empty());
}

TEST_F(Unload, ALaterLoadReadsTheDeviceListAgain) {
  LoadCollectUnload();
  const std::vector<std::string> firstTime = calls;
  EXPECT_THAT(firstTime, Not(::testing::IsEmpty()));
  calls.clear();
  LoadCollectUnload();
  EXPECT_EQ(calls, firstTime);
}

TEST_F(Unload, ALaterLoadStartsFromEmptyLists) {
  GiveDeviceList(kRootHubWithMouse);
  LoadCollectUnload();
  EXPECT_THAT(ControllerIds(), ElementsAre("Bus 01  Device   1"));
  host.Reset();
  GiveDeviceList(kTwoRootHubs);
  LoadCollectUnload();
  EXPECT_THAT(ControllerIds(), ElementsAre("Bus 07  Device   1", "Bus 08  Device   1"));
  EXPECT_EQ(InstanceCount("KALDO_USBHub"), 2U);
  EXPECT_EQ(InstanceCount("KALDO_USBPort"), 3U);
  EXPECT_EQ(InstanceCount("KALDO_USBDevice"), 0U);
}

TEST_F(Unload, WithoutUnloadingTheFirstListStays) {
  GiveDeviceList(kRootHubWithMouse);
  standin::PluginModule module(MODULE_PATH);
  module.Collect({"KALDO_USBHub"});
  GiveDeviceList(kTwoRootHubs);
  module.Collect({"KALDO_USBController"});
  EXPECT_THAT(ControllerIds(), ElementsAre("Bus 01  Device   1"));
}

}  // namespace
}  // namespace usbinfo_test
