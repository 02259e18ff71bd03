// What crosses the module's border besides plain calls: the host's exceptions, which the module must know by
// their type, the cast to the plug-in manager, and the module's own exceptions on their way to the host.
#include "host/TQSVException.h"
#include "standin/PluginManager.h"
#include "standin/StatusCode.h"
#include "tests/module/ModuleTest.h"

using NKESTA20::TQSVException;
using NKESTA20::TQSVStatusCode;
using standin::HostOperation;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;
using ::testing::StrictMock;

namespace usbinfo_test {
namespace {

const std::string kHubError =
    "TUsbHubData encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for KALDO_USBHub Error Code: ";
const LogLine kEnteringHub{kDebug, "Entering TUsbHubData::GetCIMInstances routine"};
const LogLine kExitingHub{kDebug, "Exiting TUsbHubData::GetCIMInstances routine"};

class BorderCrossing : public ModuleTest {
 protected:
  /// Requests `className` from a fresh load while `operation` on `subject` throws what `fail` throws.
  static void CollectWhile(HostOperation operation, const std::string& subject,
                           const std::function<void()>& fail, const std::string& className) {
    standin::HostSeam::SetObserver([=](const standin::HostCall& call) {
      if (call.operation == operation && call.subject == subject) fail();
    });
    standin::PluginModule module(MODULE_PATH);
    module.Collect({className});
  }

  static void FailToCommitHub(const std::function<void()>& fail) {
    CollectWhile(HostOperation::kCommit, "KALDO_USBHub", fail, "KALDO_USBHub");
  }

  /// The log of a request for associations, which a host without a manager gets from a fresh load.
  void RequestFromUnrecordedPlugin() {
    UnrecordedPlugin plugin;
    auto classes = Classes({"KALDO_USBPortOnHub"});
    plugin.Queries().GetData(host.Cimv2(), classes);
  }
};

TEST_F(BorderCrossing, AHostExceptionIsCaughtByItsTypeWithItsText) {
  GiveDeviceList(kRootHubWithMouse);
  FailToCommitHub([] { standin::Throw(standin::StatusCode::kAccessDenied); });
  EXPECT_THAT(log, Contains(LogLine{kStatus, kHubError + "CIM_ERR_ACCESS_DENIED"}));
  EXPECT_THAT(log, Contains(kExitingHub));
  EXPECT_THAT(log, Not(Contains(kUnknownException)));
  EXPECT_THAT(DispatchLog(),
              ElementsAre(kInit, Received("KALDO_USBHub"), kNoInstances, kNormalExit, kDeInit));
}

TEST_F(BorderCrossing, AHostExceptionThrownByTheProgramItselfIsTheSameType) {
  GiveDeviceList(kRootHubWithMouse);
  FailToCommitHub([] { throw TQSVException(TQSVStatusCode(6)); });
  EXPECT_THAT(log, Contains(LogLine{kStatus, kHubError + "CIM_ERR_NOT_FOUND"}));
  EXPECT_THAT(log, Not(Contains(kUnknownException)));
}

TEST_F(BorderCrossing, AnExceptionDerivedFromTheHostsIsCaughtAsTheHosts) {
  class Derived : public TQSVException {
   public:
    using TQSVException::TQSVException;
  };
  GiveDeviceList(kRootHubWithMouse);
  FailToCommitHub([] { throw Derived(TQSVStatusCode(5)); });
  EXPECT_THAT(log, Contains(LogLine{kStatus, kHubError + "CIM_ERR_INVALID_CLASS"}));
}

TEST_F(BorderCrossing, AHostExceptionWhileReadingTheDeviceListIsCaughtByItsType) {
  machine->files["/proc/bus/usb/devices"] = kRootHubWithMouse;
  CollectWhile(
      HostOperation::kCaptureFile, "/proc/bus/usb/devices",
      [] { standin::Throw(standin::StatusCode::kFailed); }, "KALDO_USBHub");
  EXPECT_THAT(log, Contains(LogLine{kStatus, "Could not read usb device file "}));
  EXPECT_THAT(log, Not(Contains(kUnknownException)));
  EXPECT_THAT(calls, Contains("spawn usb-devices 300"));
}

TEST_F(BorderCrossing, AHostExceptionInAnAssociationIsCaughtByItsType) {
  CollectWhile(
      HostOperation::kGetClass, "KALDO_USBHub", [] { standin::Throw(standin::StatusCode::kNotFound); },
      "KALDO_USBPortOnHub");
  EXPECT_THAT(log, Contains(LogLine{kStatus,
                                    "Port-Hub association encountered an error\t\t\t\t\t\t\tenumerating CIM "
                                    "instances for KALDO_USBController OR KALDO_USBHub Error Code: "
                                    "CIM_ERR_NOT_FOUND"}));
  EXPECT_THAT(log, Not(Contains(kUnknownException)));
}

TEST_F(BorderCrossing, AStandardExceptionIsTheUnknownOne) {
  GiveDeviceList(kRootHubWithMouse);
  FailToCommitHub([] { throw std::runtime_error("disk full"); });
  EXPECT_THAT(log, Contains(kEnteringHub));
  EXPECT_THAT(log, Not(Contains(kExitingHub)));
  EXPECT_THAT(DispatchLog(), ElementsAre(kInit, Received("KALDO_USBHub"), kUnknownException, kNoInstances,
                                         kNormalExit, kDeInit));
}

TEST_F(BorderCrossing, ANumberIsTheUnknownException) {
  GiveDeviceList(kRootHubWithMouse);
  FailToCommitHub([] { throw 7; });
  EXPECT_THAT(DispatchLog(), ElementsAre(kInit, Received("KALDO_USBHub"), kUnknownException, kNoInstances,
                                         kNormalExit, kDeInit));
}

TEST_F(BorderCrossing, WhatTheClassNameThrowsReachesTheHost) {
  standin::PluginModule module(MODULE_PATH);
  standin::HostSeam::SetObserver([](const standin::HostCall& call) {
    if (call.operation == HostOperation::kGetClassName) standin::Throw(standin::StatusCode::kFailed);
  });
  auto classes = Classes({"KALDO_USBHub"});
  EXPECT_THROW(module.Queries().GetData(host.Cimv2(), classes), TQSVException);
}

TEST_F(BorderCrossing, ANullClassReachesTheHostAsAnException) {
  standin::PluginModule module(MODULE_PATH);
  std::vector<boost::shared_ptr<NKESTA20::ICIMClass>> classes(1);
  EXPECT_THROW(module.Queries().GetData(host.Cimv2(), classes), std::logic_error);
}

TEST_F(BorderCrossing, ProvidersLogWhenTheHostHasAManager) {
  standin::PluginModule module(MODULE_PATH);
  module.Collect({"KALDO_USBPortOnHub"});
  EXPECT_THAT(log, ElementsAre(kInit, Received("KALDO_USBPortOnHub"),
                               LogLine{kDebug, "Entering TUsbPortHubAsso::GetCIMInstances routine"},
                               LogLine{kDebug, "Exiting TUsbPortHubAsso::GetCIMInstances routine"},
                               kNoInstances, kNormalExit, kDeInit));
}

TEST_F(BorderCrossing, ProvidersLogWhenTheManagerIsOfAClassThatTheModuleNeverSaw) {
  class OtherManager : public standin::PluginManager {};
  host.SetPluginManager(boost::make_shared<OtherManager>());
  standin::PluginModule module(MODULE_PATH);
  module.Collect({"KALDO_USBPortOnHub"});
  EXPECT_THAT(log, Contains(LogLine{kDebug, "Entering TUsbPortHubAsso::GetCIMInstances routine"}));
}

TEST_F(BorderCrossing, ProvidersAreSilentWhenTheHostsNamespaceIsNoManager) {
  host.SetPluginManager(boost::make_shared<StrictMock<MockNamespace>>());
  RequestFromUnrecordedPlugin();
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBPortOnHub"), kNoInstances, kNormalExit));
}

TEST_F(BorderCrossing, ProvidersAreSilentWithoutAManager) {
  host.SetPluginManager(nullptr);
  RequestFromUnrecordedPlugin();
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBPortOnHub"), kNoInstances, kNormalExit));
}

}  // namespace
}  // namespace usbinfo_test
