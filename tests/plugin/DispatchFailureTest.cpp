// Data requests that fail: what a provider throws ends in two lines and the request goes on; what the class,
// the logger or the making of a provider throws reaches the host. Null pointers from the host are exceptions
// too.
#include "host/TQSVException.h"
#include "standin/StatusCode.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/Allocations.h"

using NKESTA20::ICIMInstance;
using NKESTA20::ICIMNamespace;
using NKESTA20::TQSVException;
using standin::HostOperation;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::NiceMock;
using ::testing::Return;
using ::testing::ReturnRef;
using ::testing::Throw;

namespace usbinfo_test {
namespace {

const LogLine kBegin{kDebug, "TUsbData::GetUsbDeviceInfomation: Begin"};
const LogLine kNoFile{kStatus, "Could not open usb device file "};

class DispatchFailure : public PluginTest {
 protected:
  /// A class named `name` that returns whatever the test sets up.
  boost::shared_ptr<NiceMock<MockClass>> MakeClass(const std::string& name) {
    const auto cls = boost::make_shared<NiceMock<MockClass>>();
    fName = name;
    ON_CALL(*cls, GetClassName).WillByDefault(ReturnRef(fName));
    ON_CALL(*cls, GetNamespace).WillByDefault(Return(host.Cimv2()));
    return cls;
  }

  /// Requests hubs, then ports, which `fail` cuts short when the line `text` is written.
  template <typename Exception>
  void ExpectLogFailureToLeave(const std::string& text) {
    FailHostCall(HostOperation::kWriteLog, text, [] { throw Exception("no log"); });
    EXPECT_THROW(Request({"KALDO_USBHub", "KALDO_USBPort"}), Exception);
  }

 private:
  std::string fName;
};

TEST_F(DispatchFailure, AProviderThatThrowsWhileCollectingCostsItsOwnClassOnly) {
  FailHostCall(HostOperation::kSpawnProcess, "usb-devices", [] { throw std::runtime_error("no process"); });
  Request({"KALDO_USBHub", "KALDO_USBPort"});
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBHub"), kBegin, kNoFile, kUnknownException, kNoInstances,
                               Received("KALDO_USBPort"),
                               LogLine{kDebug, "Entering TUsbPortData::GetCIMInstances routine"},
                               LogLine{kDebug, "Exiting TUsbPortData::GetCIMInstances routine"}, kNoInstances,
                               kNormalExit));
}

TEST_F(DispatchFailure, AHostExceptionThatNoProviderCatchesEndsTheSameWay) {
  FailHostCall(HostOperation::kSpawnProcess, "usb-devices",
               [] { standin::Throw(standin::StatusCode::kFailed); });
  Request({"KALDO_USBDevice", "KALDO_USBPortOnHub"});
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBDevice"), kUnknownException, kNoInstances,
                                         Received("KALDO_USBPortOnHub"), kNoInstances, kNormalExit));
}

TEST_F(DispatchFailure, AFileThatCannotBeReadForAnyOtherReasonEndsTheSameWay) {
  GiveDeviceList(kRootHubWithMouse);
  FailHostCall(HostOperation::kCaptureFile, "/proc/bus/usb/devices", [] { throw 7; });
  Request({"KALDO_USBController"});
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBController"), kBegin, kUnknownException, kNoInstances,
                               kNormalExit));
}

TEST_F(DispatchFailure, WhatAProviderCannotCatchIsSwallowedWithoutItsLoggingToo) {
  host.SetPluginManager(nullptr);
  NKESTA20::TUSBInfoCallbacks unregistered;
  FailHostCall(HostOperation::kSpawnProcess, "usb-devices", [] { throw std::runtime_error("no process"); });
  ClassList classes = Classes({"KALDO_USBHub"});
  unregistered.GetData(host.Cimv2(), classes);
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBHub"), kUnknownException, kNoInstances, kNormalExit));
}

TEST_F(DispatchFailure, AThrowingProviderIsDeleted) {
  GiveDeviceList(kRootHubWithMouse);
  Request({"KALDO_USBHub"});
  FailHostCall(HostOperation::kCreateInstance, "KALDO_USBHub", [] { throw 7; });
  ClassList classes = Classes({"KALDO_USBHub"});
  plugin.GetData(host.Cimv2(), classes);
  EXPECT_EQ(log[log.size() - 3], kUnknownException);
  host.CoreLogger().SetSink(nullptr);
  const long references = classes[0].use_count();
  const std::size_t before = Allocations::Live();
  plugin.GetData(host.Cimv2(), classes);
  EXPECT_EQ(Allocations::Live(), before);
  EXPECT_EQ(classes[0].use_count(), references);
}

TEST_F(DispatchFailure, AnExceptionFromTheClassNameLeaves) {
  const auto cls = MakeClass("KALDO_USBHub");
  EXPECT_CALL(*cls, GetClassName).WillOnce(Throw(std::runtime_error("no name")));
  ClassList classes = {host.Cimv2()->ClassForRequest("Unknown"), cls,
                       host.Cimv2()->ClassForRequest("KALDO_USBPort")};
  EXPECT_THROW(plugin.GetData(host.Cimv2(), classes), std::runtime_error);
  EXPECT_THAT(log, ElementsAre(Received("Unknown")));
}

TEST_F(DispatchFailure, AHostExceptionFromTheClassNameLeaves) {
  FailHostCall(HostOperation::kGetClassName, "KALDO_USBHub",
               [] { standin::Throw(standin::StatusCode::kFailed); });
  EXPECT_THROW(Request({"KALDO_USBHub"}), TQSVException);
  EXPECT_THAT(log, IsEmpty());
}

TEST_F(DispatchFailure, AnExceptionFromTheLineOfARequestLeaves) {
  ExpectLogFailureToLeave<std::runtime_error>(Received("KALDO_USBPort").text);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub"), kNoInstances));
}

TEST_F(DispatchFailure, AnExceptionFromTheLineOfSuccessLeavesAndIsNotTakenForTheProviders) {
  GiveDeviceList(kRootHubWithMouse);
  ExpectLogFailureToLeave<std::runtime_error>(kRetrieved.text);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub")));
}

TEST_F(DispatchFailure, AnExceptionFromTheLineOfNoInstancesLeavesAndIsNotTakenForTheProviders) {
  ExpectLogFailureToLeave<std::runtime_error>(kNoInstances.text);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub")));
}

TEST_F(DispatchFailure, AnExceptionFromTheLineAboutAnExceptionLeaves) {
  machine->onCall = [](const std::string& call) {
    if (call == "spawn usb-devices 300") throw 7;
  };
  ExpectLogFailureToLeave<std::runtime_error>(kUnknownException.text);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub")));
}

TEST_F(DispatchFailure, AnExceptionFromTheExitLineLeaves) {
  ExpectLogFailureToLeave<std::runtime_error>(kNormalExit.text);
  EXPECT_THAT(DispatchLog(),
              ElementsAre(Received("KALDO_USBHub"), kNoInstances, Received("KALDO_USBPort"), kNoInstances));
}

TEST_F(DispatchFailure, AnExceptionFromGettingTheLoggerLeaves) {
  FailHostCall(HostOperation::kGetCoreLogger, "", [] { throw 7; });
  EXPECT_THROW(Request(std::vector<std::string>()), int);
}

TEST_F(DispatchFailure, AnExceptionFromAProvidersOwnLineIsSwallowed) {
  FailHostCall(HostOperation::kWriteLog, "Entering TUsbHubData::GetCIMInstances routine", [] { throw 7; });
  Request({"KALDO_USBHub"});
  EXPECT_THAT(DispatchLog(),
              ElementsAre(Received("KALDO_USBHub"), kUnknownException, kNoInstances, kNormalExit));
}

TEST_F(DispatchFailure, AnExceptionThatLeavesLeaksNoProvider) {
  Request({"KALDO_USBPort"});
  host.CoreLogger().SetSink(nullptr);
  FailHostCall(HostOperation::kWriteLog, kNoInstances.text, [] { throw 7; });
  ClassList classes = Classes({"KALDO_USBPort"});
  const long references = classes[0].use_count();
  const std::size_t before = Allocations::Live();
  bool thrown = false;
  try {
    plugin.GetData(host.Cimv2(), classes);
  } catch (int) {
    thrown = true;
  }
  EXPECT_EQ(Allocations::Live(), before);
  EXPECT_EQ(classes[0].use_count(), references);
  EXPECT_TRUE(thrown);
}

TEST_F(DispatchFailure, NoMemoryForAProviderIsHeardByTheHost) {
  Request({"KALDO_USBPort"});  // all that is made once is made here
  log.clear();
  host.CoreLogger().SetSink(nullptr);
  FailHostCall(HostOperation::kWriteLog, Received("KALDO_USBPort").text, [] { Allocations::FailNext(); });
  EXPECT_THROW(Request({"KALDO_USBPort"}), std::bad_alloc);
}

TEST_F(DispatchFailure, ANullClassIsAnExceptionAfterTheClassesBeforeIt) {
  ClassList classes = {host.Cimv2()->ClassForRequest("KALDO_USBPortOnHub"), nullptr,
                       host.Cimv2()->ClassForRequest("KALDO_USBHub")};
  EXPECT_THROW(plugin.GetData(host.Cimv2(), classes), std::logic_error);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBPortOnHub"), kNoInstances));
}

TEST(AssertionHandler, ReportsWhatFailedAndWhere) {
  try {
    boost::assertion_failed("pointer != 0", "Operate()", "File.h", 7);
  } catch (const std::logic_error& error) {
    EXPECT_STREQ(error.what(), "assertion failed: pointer != 0 in Operate()");
    return;
  }
  FAIL() << "no std::logic_error";
}

TEST_F(DispatchFailure, ANullInstanceFromTheHostEndsInTheUnknownExceptionLine) {
  GiveDeviceList(kRootHubWithMouse);
  const auto cls = MakeClass("KALDO_USBController");
  EXPECT_CALL(*cls, CreateInstance).WillOnce(Return(boost::shared_ptr<ICIMInstance>()));
  RequestClasses(ClassList{cls});
  EXPECT_THAT(DispatchLog(),
              ElementsAre(Received("KALDO_USBController"), kUnknownException, kNoInstances, kNormalExit));
}

TEST_F(DispatchFailure, ANullNamespaceFromTheHostEndsInTheUnknownExceptionLine) {
  for (const std::string name : {"KALDO_USBPortOnHub", "KALDO_USBConnection"}) {
    log.clear();
    const auto cls = MakeClass(name);
    EXPECT_CALL(*cls, GetNamespace).WillOnce(Return(boost::shared_ptr<ICIMNamespace>()));
    RequestClasses(ClassList{cls});
    EXPECT_THAT(DispatchLog(), ElementsAre(Received(name), kUnknownException, kNoInstances, kNormalExit));
  }
}

}  // namespace
}  // namespace usbinfo_test
