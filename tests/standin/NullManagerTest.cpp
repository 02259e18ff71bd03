// Registration in a host without a plug-in manager. Plug-ins call through the null pointer that they get
// then; this file and the host's are compiled so that the check on it is kept.
#include <gmock/gmock.h>

#include "host/TPluginManagerNamespace.h"
#include "host/TRootObject.h"
#include "standin/HostSeam.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::TPluginManagerNamespace;
using NKESTA20::TRootObject;
using ::testing::IsEmpty;
using usbinfo_test::IdlePlugin;

class NullManagerTest : public usbinfo_test::HostTest {
 protected:
  /// Registers as a plug-in does, without checking the result of the cast.
  void RegisterUnchecked() {
    const auto manager = TRootObject::GetPluginManager();
    dynamic_cast<TPluginManagerNamespace*>(manager.get())->RegisterPlugin(&plugin);
  }

  IdlePlugin plugin;
};

TEST_F(NullManagerTest, RecordsNothingThroughNoManager) {
  host.SetPluginManager(nullptr);
  RegisterUnchecked();
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(NullManagerTest, RecordsNothingThroughAnotherNamespace) {
  host.SetPluginManager(host.Cimv2());
  RegisterUnchecked();
  EXPECT_THAT(host.Plugins(), IsEmpty());
}

TEST_F(NullManagerTest, SeesTheCallAllTheSame) {
  host.SetPluginManager(nullptr);
  int registrations = 0;
  standin::HostSeam::SetObserver([&registrations](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kRegisterPlugin) ++registrations;
  });
  RegisterUnchecked();
  EXPECT_EQ(registrations, 1);
}

TEST_F(NullManagerTest, RecordsThroughAManager) {
  RegisterUnchecked();
  EXPECT_THAT(host.Plugins(), ::testing::ElementsAre(&plugin));
}

}  // namespace
