// Data requests that go well: which class names are served, by which provider, in which order, with which
// lines and with which logging of the provider's own.
#include <cctype>

#include "host/IPluginBasicQueryCallbacks.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/Allocations.h"

using NKESTA20::IPluginBasicQueryCallbacks;
using NKESTA20::IPluginCallbacks;
using NKESTA20::TUSBInfoCallbacks;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::ReturnRef;
using ::testing::StrictMock;

namespace usbinfo_test {
namespace {

class Dispatch : public PluginTest {};

/// A class name and what stands for the provider that serves it.
struct ServedClass {
  std::string className;
  std::string provider;
};

void PrintTo(const ServedClass& served, std::ostream* out) {
  *out << served.className;
}

class ServedClassDispatch : public PluginTest, public ::testing::WithParamInterface<ServedClass> {
 protected:
  LogLine Entering() const {
    return {kDebug, "Entering " + GetParam().provider + "::GetCIMInstances routine"};
  }
  LogLine Exiting() const { return {kDebug, "Exiting " + GetParam().provider + "::GetCIMInstances routine"}; }
};

INSTANTIATE_TEST_SUITE_P(AllSix, ServedClassDispatch,
                         ::testing::Values(ServedClass{"KALDO_USBPort", "TUsbPortData"},
                                           ServedClass{"KALDO_USBHub", "TUsbHubData"},
                                           ServedClass{"KALDO_USBDevice", "TUsbDeviceData"},
                                           ServedClass{"KALDO_USBController", "TUsbControllerData"},
                                           ServedClass{"KALDO_USBPortOnHub", "TUsbPortHubAsso"},
                                           ServedClass{"KALDO_USBConnection", "TUsbPortDeviceAsso"}),
                         [](const auto& testInfo) { return testInfo.param.className; });

TEST_P(ServedClassDispatch, GoesToItsProviderAlone) {
  Request({"KALDO_USBHub"});  // the device list is read and found missing here
  log.clear();
  Request({GetParam().className});
  std::vector<LogLine> entering;
  for (const LogLine& line : log) {
    if (line.text.rfind("Entering ", 0) == 0) entering.push_back(line);
  }
  EXPECT_THAT(entering, ElementsAre(Entering()));
}

TEST_P(ServedClassDispatch, WrapsTheProvidersLinesInItsOwn) {
  Request({GetParam().className});
  ASSERT_GE(log.size(), 5U);
  EXPECT_EQ(log.front(), Received(GetParam().className));
  EXPECT_EQ(log[log.size() - 3], Exiting());
  EXPECT_EQ(log[log.size() - 2], kNoInstances);
  EXPECT_EQ(log[log.size() - 1], kNormalExit);
  EXPECT_THAT(log, Contains(Entering()));
}

TEST_P(ServedClassDispatch, ReportsWhenInstancesWereMade) {
  GiveDeviceList(kRootHubWithMouse);
  Request({"KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice"});
  log.clear();
  Request({GetParam().className});
  EXPECT_THAT(DispatchLog(), ElementsAre(Received(GetParam().className), kRetrieved, kNormalExit));
  EXPECT_EQ(InstanceCount(GetParam().className), 1U);
}

TEST_P(ServedClassDispatch, KeepsTheProvidersSilentWithoutAManager) {
  host.SetPluginManager(nullptr);
  TUSBInfoCallbacks unregistered;
  ClassList classes = Classes({GetParam().className});
  unregistered.GetData(host.Cimv2(), classes);
  EXPECT_THAT(log, ElementsAre(Received(GetParam().className), kNoInstances, kNormalExit));
}

TEST_P(ServedClassDispatch, KeepsTheProvidersSilentWithANamespaceThatIsNoManager) {
  host.SetPluginManager(boost::make_shared<StrictMock<MockNamespace>>());
  TUSBInfoCallbacks unregistered;
  ClassList classes = Classes({GetParam().className});
  unregistered.GetData(host.Cimv2(), classes);
  EXPECT_THAT(log, ElementsAre(Received(GetParam().className), kNoInstances, kNormalExit));
}

TEST_P(ServedClassDispatch, DeletesTheProviderAndReleasesTheClass) {
  GiveDeviceList(kRootHubWithMouse);
  Request(kAllClasses);
  ClassList classes = Classes({GetParam().className});
  plugin.GetData(host.Cimv2(), classes);
  host.CoreLogger().SetSink(nullptr);
  const long references = classes[0].use_count();
  const std::size_t before = Allocations::Live();
  plugin.GetData(host.Cimv2(), classes);
  EXPECT_EQ(Allocations::Live(), before);
  EXPECT_EQ(classes[0].use_count(), references);
}

TEST_F(Dispatch, AnEmptyListWritesTheExitLineAlone) {
  Request(std::vector<std::string>());
  EXPECT_THAT(log, ElementsAre(kNormalExit));
}

TEST_F(Dispatch, AnUnknownClassIsReceivedAndSkipped) {
  Request({"KALDO_Printer"});
  EXPECT_THAT(log, ElementsAre(Received("KALDO_Printer"), kNormalExit));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Dispatch, ControllerHasHubIsNotServed) {
  Request({"KALDO_USBControllerHasHub"});
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBControllerHasHub"), kNormalExit));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Dispatch, AnUnknownClassIsAskedForItsNameAndNothingElse) {
  const std::string name = "KALDO_USBControllerHasHub";
  const auto cls = boost::make_shared<StrictMock<MockClass>>();
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).WillOnce(ReturnRef(name));
  RequestClasses(ClassList{cls});
  EXPECT_THAT(log, ElementsAre(Received(name), kNormalExit));
}

TEST_F(Dispatch, NamesThatDifferInCaseOrLengthAreNotServed) {
  std::vector<std::string> names = {"", "KALDO_USB", "KALDO_USBPort ", " KALDO_USBPort", "KALDO_USBPortOn"};
  names.emplace_back("KALDO_USBPort\0", 14);
  for (const std::string& served : kAllClasses) {
    std::string lower = served;
    lower.back() = static_cast<char>(std::toupper(lower.back()));
    names.push_back(lower);
    names.push_back("k" + served.substr(1));
    names.push_back(served + "s");
    names.push_back(served.substr(0, served.size() - 1));
  }
  std::vector<LogLine> expected;
  for (const std::string& name : names) expected.push_back(Received(name));
  expected.push_back(kNormalExit);
  Request(names);
  EXPECT_THAT(log, ElementsAreArray(expected));
  EXPECT_THAT(calls, IsEmpty());
}

TEST_F(Dispatch, APortRequestIsNoPortOnHubRequest) {
  Request({"KALDO_USBPort"});
  EXPECT_THAT(log, Contains(LogLine{kDebug, "Entering TUsbPortData::GetCIMInstances routine"}));
  log.clear();
  Request({"KALDO_USBPortOnHub"});
  EXPECT_THAT(log, ElementsAre(Received("KALDO_USBPortOnHub"),
                               LogLine{kDebug, "Entering TUsbPortHubAsso::GetCIMInstances routine"},
                               LogLine{kDebug, "Exiting TUsbPortHubAsso::GetCIMInstances routine"},
                               kNoInstances, kNormalExit));
}

TEST_F(Dispatch, ClassesAreServedInTheOrderGiven) {
  const std::vector<std::string> names = {"KALDO_USBConnection", "Unknown",       "KALDO_USBHub",
                                          "KALDO_USBController", "KALDO_USBPort", "KALDO_USBPortOnHub",
                                          "KALDO_USBDevice"};
  Request(names);
  EXPECT_THAT(DispatchLog(),
              ElementsAre(Received(names[0]), kNoInstances, Received(names[1]), Received(names[2]),
                          kNoInstances, Received(names[3]), kNoInstances, Received(names[4]), kNoInstances,
                          Received(names[5]), kNoInstances, Received(names[6]), kNoInstances, kNormalExit));
}

TEST_F(Dispatch, AssociationsSeeWhatTheSameRequestMadeBeforeThem) {
  GiveDeviceList(kRootHubWithMouse);
  Request({"KALDO_USBPortOnHub", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBPortOnHub"});
  EXPECT_THAT(DispatchLog(),
              ElementsAre(Received("KALDO_USBPortOnHub"), kNoInstances, Received("KALDO_USBHub"), kRetrieved,
                          Received("KALDO_USBPort"), kRetrieved, Received("KALDO_USBPortOnHub"), kRetrieved,
                          kNormalExit));
}

TEST_F(Dispatch, AClassRequestedTwiceIsServedTwice) {
  GiveDeviceList(kRootHubWithMouse);
  int created = 0;
  standin::HostSeam::SetObserver([&](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kCreateInstance) ++created;
  });
  Request({"KALDO_USBHub", "KALDO_USBHub"});
  EXPECT_EQ(created, 2);
  EXPECT_THAT(DispatchLog(), ElementsAre(Received("KALDO_USBHub"), kRetrieved, Received("KALDO_USBHub"),
                                         kRetrieved, kNormalExit));
}

TEST_F(Dispatch, TheNameIsAskedForWithAnEmptyContextAndCopied) {
  std::string name = "KALDO_USBHub";
  const auto cls = boost::make_shared<StrictMock<MockClass>>();
  EXPECT_CALL(*cls, GetClassName(IsEmpty())).Times(2).WillRepeatedly(ReturnRef(name));
  // Changed between the question and the comparison: the name as it was when asked for decides.
  standin::HostSeam::SetObserver([&](const standin::HostCall& call) {
    if (call.operation == standin::HostOperation::kWriteLog) name = "changed";
  });
  RequestClasses(ClassList{cls});
  EXPECT_EQ(log.front(), Received("KALDO_USBHub"));
  EXPECT_THAT(log, Contains(LogLine{kDebug, "Entering TUsbHubData::GetCIMInstances routine"}));
}

TEST_F(Dispatch, TheListIsOnlyRead) {
  ClassList classes = Classes({"KALDO_USBPort", "Unknown", "KALDO_USBPort"});
  const ClassList before = classes;
  plugin.GetData(host.Cimv2(), classes);
  EXPECT_EQ(classes, before);
}

TEST_F(Dispatch, TheNamespaceIsNotUsed) {
  ClassList classes = Classes(kAllClasses);
  plugin.GetData(boost::make_shared<StrictMock<MockNamespace>>(), classes);
  const std::vector<LogLine> withAnotherNamespace = DispatchLog();
  log.clear();
  plugin.GetData(nullptr, classes);
  EXPECT_EQ(DispatchLog(), withAnotherNamespace);
  EXPECT_EQ(withAnotherNamespace.size(), 13U);
}

TEST_F(Dispatch, TheQueryViewReachesTheSameRequest) {
  IPluginCallbacks* const lifecycle = &plugin;
  auto* const queries = dynamic_cast<IPluginBasicQueryCallbacks*>(lifecycle);
  ASSERT_NE(queries, nullptr);
  ClassList classes = Classes({"KALDO_USBPortOnHub", "Unknown"});
  queries->GetData(host.Cimv2(), classes);
  const std::vector<LogLine> throughTheView = log;
  log.clear();
  plugin.GetData(host.Cimv2(), classes);
  EXPECT_EQ(throughTheView, log);
  EXPECT_EQ(throughTheView.size(), 6U);
}

TEST_F(Dispatch, ALaterRequestReusesTheInventory) {
  GiveDeviceList(kRootHubWithMouse);
  Request({"KALDO_USBHub"});
  GiveDeviceList(kTwoRootHubs);
  calls.clear();
  Request({"KALDO_USBController"});
  EXPECT_EQ(InstanceCount("KALDO_USBController"), 1U);
  EXPECT_THAT(calls, IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
