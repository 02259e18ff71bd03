// What the host calls on the plug-in object besides data requests: who it is, its start and end, and its own
// deletion. Compiled so that a call through a null object reaches the operation.
#include <type_traits>

#include "tests/plugin/PluginTest.h"
#include "tests/support/Allocations.h"

using NKESTA20::IPluginCallbacks;
using NKESTA20::TUSBInfoCallbacks;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

namespace usbinfo_test {
namespace {

class Lifecycle : public PluginTest {
 protected:
  IPluginCallbacks& callbacks = plugin;
};

/// Reports when it is destroyed.
class WatchedPlugin : public TUSBInfoCallbacks {
 public:
  explicit WatchedPlugin(int* destroyed) : fDestroyed(destroyed) {}
  ~WatchedPlugin() override { ++*fDestroyed; }

 private:
  int* fDestroyed;
};

TEST_F(Lifecycle, TypeIsZero) {
  EXPECT_EQ(callbacks.GetType(), 0);
}

TEST_F(Lifecycle, NamesItself) {
  EXPECT_EQ(callbacks.GetName(), "USB Information Collector");
}

TEST_F(Lifecycle, VersionIsOneZero) {
  EXPECT_EQ(callbacks.GetVersion(), "1.0");
}

TEST_F(Lifecycle, InterfaceVersionIsOneZero) {
  EXPECT_EQ(callbacks.GetInterfaceVersion(), "1.0");
}

TEST_F(Lifecycle, EveryCallHandsOutAFreshString) {
  static_assert(std::is_same_v<decltype(callbacks.GetName()), std::string>);
  static_assert(std::is_same_v<decltype(callbacks.GetVersion()), std::string>);
  static_assert(std::is_same_v<decltype(callbacks.GetInterfaceVersion()), std::string>);
  std::string name = callbacks.GetName();
  name += ", spoilt";
  EXPECT_EQ(callbacks.GetName(), "USB Information Collector");
}

TEST_F(Lifecycle, IdentityNeedsNoHost) {
  int hostCalls = 0;
  standin::HostSeam::SetObserver([&](const standin::HostCall&) { ++hostCalls; });
  callbacks.GetType();
  callbacks.GetName();
  callbacks.GetVersion();
  callbacks.GetInterfaceVersion();
  EXPECT_EQ(hostCalls, 0);
}

TEST_F(Lifecycle, InitWritesOneDebugLine) {
  callbacks.Init();
  EXPECT_THAT(log, ElementsAre(kInit));
}

TEST_F(Lifecycle, DeInitWritesOneDebugLine) {
  callbacks.DeInit();
  EXPECT_THAT(log, ElementsAre(kDeInit));
}

TEST_F(Lifecycle, InitAndDeInitDoNothingButLog) {
  std::vector<standin::HostOperation> operations;
  standin::HostSeam::SetObserver(
      [&](const standin::HostCall& call) { operations.push_back(call.operation); });
  callbacks.Init();
  callbacks.DeInit();
  EXPECT_THAT(operations,
              ElementsAre(standin::HostOperation::kGetCoreLogger, standin::HostOperation::kWriteLog,
                          standin::HostOperation::kGetCoreLogger, standin::HostOperation::kWriteLog));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Lifecycle, InitAndDeInitMayComeInAnyOrderAndOften) {
  callbacks.DeInit();
  callbacks.Init();
  callbacks.Init();
  callbacks.DeInit();
  callbacks.DeInit();
  EXPECT_THAT(log, ElementsAre(kDeInit, kInit, kInit, kDeInit, kDeInit));
}

TEST_F(Lifecycle, LogsWithoutAPluginManagerToo) {
  host.SetPluginManager(nullptr);
  TUSBInfoCallbacks unregistered;
  unregistered.Init();
  unregistered.DeInit();
  EXPECT_THAT(log, ElementsAre(kInit, kDeInit));
}

TEST_F(Lifecycle, DataIsServedWithoutInitAndAfterDeInit) {
  Request({"KALDO_USBHub"});
  callbacks.DeInit();
  Request({"KALDO_USBHub"});
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub"), kNoInstances, kNormalExit, kDeInit,
                                         Received("KALDO_USBHub"), kNoInstances, kNormalExit));
}

TEST_F(Lifecycle, ALoggerThatThrowsIsHeardByTheCallerOfInit) {
  FailHostCall(standin::HostOperation::kWriteLog, kInit.text, [] { throw 7; });
  EXPECT_THROW(callbacks.Init(), int);
}

TEST_F(Lifecycle, PrepareForUnloadDestroysTheObjectOnce) {
  int destroyed = 0;
  IPluginCallbacks* watched = new WatchedPlugin(&destroyed);
  EXPECT_EQ(destroyed, 0);
  watched->PrepareForUnload();
  EXPECT_EQ(destroyed, 1);
}

TEST_F(Lifecycle, PrepareForUnloadGivesTheMemoryBack) {
  const std::size_t before = Allocations::Live();
  auto* created = new TUSBInfoCallbacks;
  host.Forget(created);
  created->PrepareForUnload();
  EXPECT_EQ(Allocations::Live(), before);
}

TEST_F(Lifecycle, PrepareForUnloadDoesNotAskTheHost) {
  auto* created = new TUSBInfoCallbacks;
  host.Forget(created);
  int hostCalls = 0;
  standin::HostSeam::SetObserver([&](const standin::HostCall&) { ++hostCalls; });
  created->PrepareForUnload();
  EXPECT_EQ(hostCalls, 0);
}

TEST_F(Lifecycle, PrepareForUnloadThroughANullPointerDoesNothing) {
  int hostCalls = 0;
  standin::HostSeam::SetObserver([&](const standin::HostCall&) { ++hostCalls; });
  static TUSBInfoCallbacks* volatile nothing = nullptr;
  TUSBInfoCallbacks* const absent = nothing;
  absent->TUSBInfoCallbacks::PrepareForUnload();
  EXPECT_EQ(hostCalls, 0);
}

TEST_F(Lifecycle, TheExportedIntegerStaysZero) {
  static_assert(std::is_same_v<decltype(NKESTA20::gStarted), int>);
  static_assert(sizeof(NKESTA20::gStarted) == 4);
  EXPECT_EQ(NKESTA20::gStarted, 0);
  callbacks.Init();
  Request({"KALDO_USBHub"});
  EXPECT_EQ(NKESTA20::gStarted, 0);
  callbacks.DeInit();
  EXPECT_EQ(NKESTA20::gStarted, 0);
}

TEST_F(Lifecycle, TheExportedIntegerIsNotRead) {
  GiveDeviceList(kRootHubWithMouse);
  NKESTA20::gStarted = 4711;
  callbacks.Init();
  Request({"KALDO_USBHub"});
  callbacks.DeInit();
  const int afterwards = NKESTA20::gStarted;
  NKESTA20::gStarted = 0;
  EXPECT_EQ(afterwards, 4711);
  EXPECT_THAT(DispatchLog(), ElementsAre(kInit, Received("KALDO_USBHub"), kRetrieved, kNormalExit, kDeInit));
}

}  // namespace
}  // namespace usbinfo_test
