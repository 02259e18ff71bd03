// What big lists cost, counted rather than timed: allocations of the cutter, calls of the host for instances,
// and the pairs that the associations look at. And that the sizes that a machine can have, and some that it
// cannot, come out whole in every format.
#include <gtest/gtest.h>

#include <map>
#include <string>

#include "standin/HostSeam.h"
#include "tests/damage/BigLists.h"
#include "tests/fuzz/PluginTarget.h"
#include "tests/support/Allocations.h"
#include "usbfs/DeviceListCutter.h"

using standin::HostOperation;
using standin::HostSeam;

namespace usbinfo_test {
namespace {

std::size_t AllocationsOfCutting(const std::string& text) {
  const std::size_t before = Allocations::Made();
  const auto records = CutDeviceList(text, [](const std::string&) {});
  return Allocations::Made() - before;
}

/// The calls of the host during one run over `text`, by operation.
class HostCalls {
 public:
  explicit HostCalls(const std::string& text) {
    HostSeam::SetObserver([this](const standin::HostCall& call) { ++fCounts[call.operation]; });
    const PluginRun run(text);
    HostSeam::SetObserver(nullptr);
  }

  std::size_t Of(HostOperation operation) const {
    const auto found = fCounts.find(operation);
    return found == fCounts.end() ? 0 : found->second;
  }
  std::size_t All() const {
    std::size_t all = 0;
    for (const auto& [operation, count] : fCounts) all += count;
    return all;
  }

 private:
  std::map<HostOperation, std::size_t> fCounts;
};

TEST(Scale, CutsAListWithAllocationsInProportion) {
  const std::size_t once = AllocationsOfCutting(DevicesOnNoHub(1000));
  const std::size_t twice = AllocationsOfCutting(DevicesOnNoHub(2000));
  const std::size_t fourTimes = AllocationsOfCutting(DevicesOnNoHub(4000));
  EXPECT_GT(once, 1000U);
  EXPECT_LE(twice, once * 2 + once / 100);
  EXPECT_LE(fourTimes, twice * 2 + twice / 100);
}

TEST(Scale, ServesDevicesWithTheSameNumberOfHostCallsEach) {
  const std::size_t some = HostCalls(DevicesOnNoHub(100)).All();
  const std::size_t twice = HostCalls(DevicesOnNoHub(200)).All();
  const std::size_t threeTimes = HostCalls(DevicesOnNoHub(300)).All();
  EXPECT_GT(twice, some);
  EXPECT_EQ(threeTimes - twice, twice - some);
}

TEST(Scale, ServesPortsWithTheSameNumberOfHostCallsEach) {
  const std::size_t some = HostCalls(RootHub(80)).All();
  const std::size_t twice = HostCalls(RootHub(160)).All();
  const std::size_t threeTimes = HostCalls(RootHub(240)).All();
  EXPECT_GT(twice, some);
  EXPECT_EQ(threeTimes - twice, twice - some);
}

TEST(Scale, ReadsThreePropertiesOfEveryPortForEveryDeviceThatFindsNone) {
  constexpr std::size_t kPorts = 100;
  constexpr std::size_t kDevices = 50;
  const std::string list = RootHub(kPorts) + DevicesOnNoHub(kDevices);
  std::string astray = list;
  // Their port is not one of the hub's.
  for (std::size_t at = astray.find("Prnt=01"); at != std::string::npos; at = astray.find("Prnt=01", at)) {
    astray.replace(at, 7, "Prnt=99");
  }
  // Linking a port takes two of its properties and two of its hub's; of the root hub, which is not plugged
  // into a port, only the depth is read.
  const std::size_t linked = kPorts * (2 + 2) + 1;
  EXPECT_EQ(HostCalls(astray).Of(HostOperation::kGetProperty), linked + kDevices * (3 + kPorts * 3));
  // Port 00 is the first that is looked at.
  EXPECT_EQ(HostCalls(list).Of(HostOperation::kGetProperty), linked + kDevices * (3 + 3));
}

TEST(Scale, HoldsEveryDeviceOfFullBuses) {
  const std::string list = FullBuses(4);
  ASSERT_NO_THROW(CheckPlugin(list));
  const PluginRun run(list);
  EXPECT_EQ(run.Result().Controllers().size(), 4U);
  EXPECT_EQ(run.Result().Hubs().size(), 4U * 19);
  EXPECT_EQ(run.Result().Devices().size(), 4U * 108);
  EXPECT_EQ(run.Result().Ports().size(), 4U * 126);
  EXPECT_EQ(run.Result().PortsOnHubs().size(), 4U * 126);
  EXPECT_EQ(run.Result().Connections().size(), 4U * 126);
}

TEST(Scale, TakesALineOfAMegabyte) {
  const std::string name(1U << 20U, 'x');
  const std::string list =
      "T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=12   MxCh= 0\nS:  Product=" + name;
  ASSERT_NO_THROW(CheckPlugin(list + "\n\n"));
  const PluginRun run(list + "\n\n");
  ASSERT_EQ(run.Result().Devices().size(), 1U);
  EXPECT_EQ(run.Result().Devices().front().String(schema::PropertyId::kDescription), name);
}

TEST(Scale, MakesNothingOfBlocksWithoutATopologyLine) {
  constexpr std::size_t kBlocks = 10000;
  std::string list;
  for (std::size_t block = 0; block < kBlocks; ++block) list += "S:  Product=Lost\n\n";
  ASSERT_NO_THROW(CheckPlugin(list));
  const PluginRun run(list);
  EXPECT_TRUE(run.Result().IsEmpty());
  std::size_t unmatched = 0;
  for (const auto& [severity, text] : run.Log()) {
    if (text == "\n can't match the data") ++unmatched;
  }
  EXPECT_EQ(unmatched, kBlocks);
}

}  // namespace
}  // namespace usbinfo_test
