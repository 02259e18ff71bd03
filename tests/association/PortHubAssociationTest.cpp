// Ports linked to the hub that carries them: what matches, what is skipped, what is logged, and which errors
// leave the provider.
#include "association/TUsbPortHubAsso.h"
#include "host/TCIMSchemaHelper.h"
#include "host/TQSVException.h"
#include "tests/association/AssociationTest.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::TQSVException;
using standin::HostOperation;

constexpr const char* kAssociation = "KALDO_USBPortOnHub";
const LogLine kEntering = Debug("Entering TUsbPortHubAsso::GetCIMInstances routine");
const LogLine kExiting = Debug("Exiting TUsbPortHubAsso::GetCIMInstances routine");

LogLine DependentLinkError(const std::string& code) {
  return Status(
      "Port-Hub association encountered an error\t\t\t\t\t\twhen collecting dependent properties. Error "
      "Code: " +
      code);
}

LogLine AntecedentLinkError(const std::string& code) {
  return Status(
      "Port-Hub association encountered an error\t\t\t\t\t\t\twhen collecting antecedent properties. Error "
      "Code: " +
      code);
}

LogLine GenerationLinkError(const std::string& className) {
  return Status("USB Port-Hub Association encountered an error\t\t\t\t\t\t\t\tgenerating CIM instances for " +
                className + " Error Code: CIM_ERR_ACCESS_DENIED");
}

class PortHubAssociation : public AssociationTest {
 protected:
  std::string CommitHub(const std::string& deviceId, const std::string& name, unsigned short depth) {
    return Commit("KALDO_USBHub", deviceId, {{"Name", TCIMValue(name)}, {"HubDepth", Number(depth)}});
  }

  std::string CommitPort(const std::string& deviceId, const std::string& hubName, unsigned short depth) {
    return Commit("KALDO_USBPort", deviceId, {{"HubName", TCIMValue(hubName)}, {"HubDepth", Number(depth)}});
  }

  Links MakeLinks() { return DescribeAll(provider.MakePortHubAssociation()); }

  TUsbPortHubAsso provider{ClassNamed(kAssociation), &handle};
};

TEST_F(PortHubAssociation, LinksAPortToTheHubOfItsHubNameAndDepth) {
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string port = CommitPort("port", "A", 1);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(hub, port)});
  Log expected = MakingOf(kAssociation);
  expected.insert(expected.begin(), kEntering);
  expected.push_back(kExiting);
  EXPECT_EQ(log, expected);
}

TEST_F(PortHubAssociation, FollowsTheOrderOfThePorts) {
  const std::string hubA = CommitHub("a", "A", 0);
  const std::string hubB = CommitHub("b", "B", 1);
  const std::string port1 = CommitPort("1", "B", 1);
  const std::string port2 = CommitPort("2", "A", 0);
  const std::string port3 = CommitPort("3", "B", 1);
  EXPECT_EQ(MakeLinks(), (Links{Link(hubB, port1), Link(hubA, port2), Link(hubB, port3)}));
  EXPECT_EQ(log, Log());
}

TEST_F(PortHubAssociation, OfAnEmptyNamespaceOnlyLogsItsFrame) {
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(log, (Log{kEntering, kExiting}));
}

TEST_F(PortHubAssociation, NeedsBothHubsAndPorts) {
  CommitHub("hub", "A", 1);
  EXPECT_EQ(MakeLinks(), Links());
  host.Reset();
  TUsbPortHubAsso another(ClassNamed(kAssociation), &handle);
  CommitPort("port", "A", 1);
  EXPECT_EQ(DescribeAll(another.MakePortHubAssociation()), Links());
}

TEST_F(PortHubAssociation, DoesNotLinkAcrossDepths) {
  CommitHub("hub", "A", 2);
  CommitPort("above", "A", 1);
  CommitPort("below", "A", 3);
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log());
}

TEST_F(PortHubAssociation, LinksTheLargestDepthToo) {
  const std::string hub = CommitHub("hub", "A", 65535);
  const std::string port = CommitPort("port", "A", 65535);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port)});
}

TEST_F(PortHubAssociation, ComparesNamesByteForByte) {
  CommitHub("hub", "Bus 01", 1);
  for (const char* name : {"bus 01", "Bus 01 ", " Bus 01", "Bus 0", "Bus  01", ""}) {
    CommitPort(std::string("port of ") + name, name, 1);
  }
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log());
}

TEST_F(PortHubAssociation, TakesTwoEmptyNamesForEqual) {
  const std::string hub = CommitHub("hub", "", 1);
  const std::string port = CommitPort("port", "", 1);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port)});
}

TEST_F(PortHubAssociation, LinksEveryPortToTheFirstOfTwoEqualHubs) {
  const std::string first = CommitHub("z first", "A", 1);
  CommitHub("a second", "A", 1);
  const std::string port1 = CommitPort("1", "A", 1);
  const std::string port2 = CommitPort("2", "A", 1);
  EXPECT_EQ(MakeLinks(), (Links{Link(first, port1), Link(first, port2)}));
}

TEST_F(PortHubAssociation, SkipsAPortWithoutAHubSilently) {
  const std::string hub = CommitHub("hub", "A", 1);
  CommitPort("lost", "B", 1);
  const std::string port = CommitPort("found", "A", 1);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port)});
  EXPECT_EQ(log, Log());
}

TEST_F(PortHubAssociation, LogsAnUnreadableHubOncePerPortAndTriesTheNextHub) {
  Commit("KALDO_USBHub", "nameless", {{"HubDepth", Number(1)}});
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string port1 = CommitPort("1", "A", 1);
  const std::string port2 = CommitPort("2", "A", 1);
  EXPECT_EQ(MakeLinks(), (Links{Link(hub, port1), Link(hub, port2)}));
  EXPECT_EQ(log, (Log{AntecedentLinkError("CIM_ERR_NO_SUCH_PROPERTY"),
                      AntecedentLinkError("CIM_ERR_NO_SUCH_PROPERTY")}));
}

TEST_F(PortHubAssociation, ReadsAHubsNameEvenWhenItsDepthDiffers) {
  Commit("KALDO_USBHub", "nameless", {{"HubDepth", Number(7)}});
  CommitPort("port", "A", 1);
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log{AntecedentLinkError("CIM_ERR_NO_SUCH_PROPERTY")});
}

TEST_F(PortHubAssociation, LogsAHubWithoutADepth) {
  Commit("KALDO_USBHub", "bottomless", {{"Name", TCIMValue("A")}});
  CommitPort("port", "A", 0);
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log{AntecedentLinkError("CIM_ERR_NO_SUCH_PROPERTY")});
}

TEST_F(PortHubAssociation, ReadsAHubAgainForTheNextPort) {
  const std::string hub = CommitHub("hub", "A", 1);
  CommitPort("1", "A", 1);
  const std::string port2 = CommitPort("2", "A", 1);
  HostCalls::Fail(HostOperation::kGetProperty, "Name", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port2)});
  EXPECT_EQ(log, Log{AntecedentLinkError("CIM_ERR_ACCESS_DENIED")});
}

TEST_F(PortHubAssociation, GuardsEveryStepOfReadingAHub) {
  CommitHub("hub", "A", 1);
  CommitPort("port", "A", 1);
  HostCalls::Fail(HostOperation::kGetPropertyText, "Name", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  HostCalls::Fail(HostOperation::kGetPropertyValue, "HubDepth", 2, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  HostCalls::Fail(HostOperation::kConvertToNumber, "", 2, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log(3, AntecedentLinkError("CIM_ERR_ACCESS_DENIED")));
}

TEST_F(PortHubAssociation, LogsAnUnreadablePortAndGoesOnWithTheNext) {
  const std::string hub = CommitHub("hub", "A", 1);
  Commit("KALDO_USBPort", "no depth", {{"HubName", TCIMValue("A")}});
  Commit("KALDO_USBPort", "no hub", {{"HubDepth", Number(1)}});
  const std::string port = CommitPort("port", "A", 1);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port)});
  EXPECT_EQ(log, (Log{DependentLinkError("CIM_ERR_NO_SUCH_PROPERTY"),
                      DependentLinkError("CIM_ERR_NO_SUCH_PROPERTY")}));
}

TEST_F(PortHubAssociation, GuardsEveryStepOfReadingAPort) {
  CommitHub("hub", "A", 1);
  CommitPort("port", "A", 1);
  HostCalls::Fail(HostOperation::kGetPropertyText, "HubName", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  HostCalls::Fail(HostOperation::kGetPropertyValue, "HubDepth", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  HostCalls::Fail(HostOperation::kConvertToNumber, "", 1, ThrowHostError);
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(log, Log(3, DependentLinkError("CIM_ERR_ACCESS_DENIED")));
}

TEST_F(PortHubAssociation, OfAnUnreadablePortAsksNoHub) {
  CommitHub("hub", "A", 1);
  Commit("KALDO_USBPort", "no hub", {{"HubDepth", Number(1)}});
  HostCalls made;
  MakeLinks();
  EXPECT_EQ(made.Count(HostOperation::kGetProperty, "Name"), 0);
}

TEST_F(PortHubAssociation, ReadsThePropertiesAfreshForEveryPair) {
  CommitHub("1", "A", 1);
  CommitHub("2", "B", 1);
  for (const char* port : {"1", "2", "3"}) CommitPort(port, "C", 1);
  HostCalls made;
  EXPECT_EQ(MakeLinks(), Links());
  EXPECT_EQ(made.Count(HostOperation::kGetProperty, "HubName"), 3);
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyText, "HubName"), 3);
  EXPECT_EQ(made.Count(HostOperation::kGetProperty, "Name"), 3 * 2);
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyText, "Name"), 3 * 2);
  EXPECT_EQ(made.Count(HostOperation::kGetProperty, "HubDepth"), 3 + 3 * 2);
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyValue, "HubDepth"), 3 + 3 * 2);
}

TEST_F(PortHubAssociation, ReadsDepthBeforeNameAndStopsAtTheFirstMatch) {
  CommitHub("1", "B", 1);
  CommitHub("2", "A", 1);
  CommitHub("3", "A", 1);
  CommitPort("port", "A", 1);
  HostCalls made;
  MakeLinks();
  EXPECT_EQ(made.Subjects({HostOperation::kGetClassNamespace, HostOperation::kGetClass,
                           HostOperation::kEnumerateInstances, HostOperation::kGetProperty,
                           HostOperation::kGetObjectPath}),
            (std::vector<std::string>{kAssociation, "KALDO_USBHub", "KALDO_USBHub", "KALDO_USBPort",
                                      "KALDO_USBPort", "HubDepth", "HubName", "HubDepth", "Name", "HubDepth",
                                      "Name", "KALDO_USBHub", "KALDO_USBPort"}));
}

class PortHubSetup : public PortHubAssociation, public ::testing::WithParamInterface<HostStep> {};

TEST_P(PortHubSetup, HostErrorIsLoggedAndNothingIsPaired) {
  CommitHub("hub", "A", 1);
  CommitPort("port", "A", 1);
  HostCalls::Fail(GetParam().operation, GetParam().subject, 1, ThrowHostError);
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  EXPECT_TRUE(Committed(kAssociation).empty());
  EXPECT_EQ(log, (Log{kEntering,
                      Status("Port-Hub association encountered an error\t\t\t\t\t\t\tenumerating CIM "
                             "instances for KALDO_USBController OR KALDO_USBHub Error Code: "
                             "CIM_ERR_ACCESS_DENIED"),
                      kExiting}));
}

TEST_P(PortHubSetup, ErrorOfAnotherTypeLeaves) {
  HostCalls::Fail(GetParam().operation, GetParam().subject, 1, ThrowAnotherError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), AnotherError);
  EXPECT_EQ(log, Log{kEntering});
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, PortHubSetup,
                         ::testing::Values(HostStep{HostOperation::kGetClassNamespace, kAssociation},
                                           HostStep{HostOperation::kGetClass, "KALDO_USBHub"},
                                           HostStep{HostOperation::kEnumerateInstances, "KALDO_USBHub"},
                                           HostStep{HostOperation::kGetClass, "KALDO_USBPort"},
                                           HostStep{HostOperation::kEnumerateInstances, "KALDO_USBPort"}));

TEST_F(PortHubAssociation, LetsAFailureToBuildTheContextLeave) {
  HostCalls::Fail(HostOperation::kMakeStringValue, NKESTA20::TCIMSchemaHelper::kPluginNSPName, 1,
                  ThrowHostError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), TQSVException);
  EXPECT_EQ(log, Log{kEntering});
}

class PortHubLinking : public PortHubAssociation, public ::testing::WithParamInterface<HostOperation> {};

TEST_P(PortHubLinking, ErrorInAMatchedPairLeavesAndLosesEarlierLinks) {
  CommitHub("hub", "A", 1);
  CommitPort("1", "A", 1);
  CommitPort("2", "A", 1);
  for (const int turn : {3, 4}) {  // the second pair's antecedent and dependent
    log.clear();
    HostCalls::Fail(GetParam(), "", turn, ThrowHostError);
    EXPECT_THROW(provider.GetCIMInstances(kAssociation), TQSVException);
    EXPECT_EQ(log, Log{kEntering});
    EXPECT_TRUE(Committed(kAssociation).empty());
  }
}

INSTANTIATE_TEST_SUITE_P(AtEveryStep, PortHubLinking,
                         ::testing::Values(HostOperation::kGetObjectPath, HostOperation::kMakeReferenceValue,
                                           HostOperation::kIsNull));

TEST_F(PortHubAssociation, LetsErrorsOfOtherTypesLeaveTheGuardedReads) {
  CommitHub("hub", "A", 1);
  CommitPort("port", "A", 1);
  for (const char* property : {"HubName", "Name"}) {
    HostCalls::Fail(HostOperation::kGetProperty, property, 1, ThrowAnotherError);
    EXPECT_THROW(provider.MakePortHubAssociation(), AnotherError);
  }
  EXPECT_EQ(log, Log());
}

TEST_F(PortHubAssociation, GoesOnAfterAnAssociationThatCannotBeMade) {
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string port1 = CommitPort("1", "A", 1);
  CommitPort("2", "A", 1);
  const std::string port3 = CommitPort("3", "A", 1);
  HostCalls::Fail(HostOperation::kCommit, kAssociation, 2, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), (Links{Link(hub, port1), Link(hub, port3)}));
  Log expected = {kEntering};
  for (int link = 1; link <= 3; ++link) {
    for (const LogLine& line : MakingOf(kAssociation)) expected.push_back(line);
    if (link == 2) expected.push_back(GenerationLinkError(kAssociation));
  }
  expected.push_back(kExiting);
  EXPECT_EQ(log, expected);
}

TEST_F(PortHubAssociation, IsSuccessfulOnlyWhenSomeAssociationWasMade) {
  CommitHub("hub", "A", 1);
  CommitPort("1", "A", 1);
  CommitPort("2", "A", 1);
  HostCalls::Fail(HostOperation::kCommit, kAssociation, 2, ThrowHostError);
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  HostCalls::Fail(HostOperation::kCommit, kAssociation, HostCalls::kEvery, ThrowHostError);
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
}

TEST_F(PortHubAssociation, NamesTheRequestedClassWhenAnAssociationCannotBeMade) {
  CommitHub("hub", "A", 1);
  CommitPort("1", "A", 1);
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowHostError);
  EXPECT_FALSE(provider.GetCIMInstances("KALDO_Other"));
  EXPECT_EQ(log.at(2), GenerationLinkError("KALDO_Other"));
}

TEST_F(PortHubAssociation, LetsErrorsOfOtherTypesLeaveTheMakingOfInstances) {
  CommitHub("hub", "A", 1);
  CommitPort("1", "A", 1);
  HostCalls::Fail(HostOperation::kCreateInstance, "", 1, ThrowAnotherError);
  EXPECT_THROW(provider.GetCIMInstances(kAssociation), AnotherError);
  EXPECT_EQ(log.back(), MakingOf(kAssociation).front());
}

TEST_F(PortHubAssociation, SeesAHubThatComesWhileTheHubsAreWalked) {
  CommitHub("1", "B", 1);
  const std::string hub = CommitHub("2", "A", 1);
  const std::string port = CommitPort("port", "A", 1);
  const auto hubs = boost::make_shared<LateClass>(ClassNamed("KALDO_USBHub"));
  const auto late = MakeProvider<TUsbPortHubAsso>(hubs, ClassNamed("KALDO_USBPort"));
  HandOutTheRestAt("Name", 1, hubs);
  EXPECT_EQ(DescribeAll(late->MakePortHubAssociation()), Links{Link(hub, port)});
}

TEST_F(PortHubAssociation, SeesAPortThatComesWhileThePortsAreWalked) {
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string first = CommitPort("1", "A", 1);
  const std::string second = CommitPort("2", "A", 1);
  const auto ports = boost::make_shared<LateClass>(ClassNamed("KALDO_USBPort"));
  const auto late = MakeProvider<TUsbPortHubAsso>(ports, ClassNamed("KALDO_USBHub"));
  HandOutTheRestAt("HubName", 1, ports);
  EXPECT_EQ(DescribeAll(late->MakePortHubAssociation()), (Links{Link(hub, first), Link(hub, second)}));
}

TEST_F(PortHubAssociation, KeepsNothingBetweenCalls) {
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string port1 = CommitPort("1", "A", 1);
  EXPECT_EQ(MakeLinks(), Links{Link(hub, port1)});
  const std::string port2 = CommitPort("2", "A", 1);
  EXPECT_EQ(MakeLinks(), (Links{Link(hub, port1), Link(hub, port2)}));
}

TEST_F(PortHubAssociation, NeitherBuildsNorReadsTheInventory) {
  Inventory::Reset();
  Inventory::fUsbHubData = {PropertyMap{{"Name", TCIMValue("A")}, {"HubDepth", Number(1)}}};
  Inventory::fUsbPortData = {PropertyMap{{"HubName", TCIMValue("A")}, {"HubDepth", Number(1)}}};
  provider.CollectData();
  EXPECT_FALSE(Inventory::fDataAlreadyCollected);
  EXPECT_EQ(calls, std::vector<std::string>());
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  Inventory::Reset();
}

TEST_F(PortHubAssociation, ServesTheArgumentFreeRequestUnderItsClassName) {
  const std::string hub = CommitHub("hub", "A", 1);
  const std::string port = CommitPort("port", "A", 1);
  TUsb& base = provider;
  EXPECT_TRUE(base.GetCIMInstances());
  EXPECT_EQ(Committed(kAssociation), Links{Link(hub, port)});
}

TEST_F(PortHubAssociation, HandsItsArgumentsToTheBase) {
  EXPECT_EQ(provider.GetCIMClass(), ClassNamed(kAssociation).get());
  EXPECT_EQ(provider.GetInfoHandle(), &handle);
  TUsbPortHubAsso withoutHandle(ClassNamed(kAssociation));
  EXPECT_EQ(withoutHandle.GetCIMClass(), ClassNamed(kAssociation).get());
}

TEST_F(PortHubAssociation, WorksSilentlyWithoutAHandle) {
  const std::string hub = CommitHub("hub", "A", 1);
  Commit("KALDO_USBPort", "no hub", {{"HubDepth", Number(1)}});
  const std::string port = CommitPort("port", "A", 1);
  TUsbPortHubAsso silent(ClassNamed(kAssociation), nullptr);
  EXPECT_TRUE(silent.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(hub, port)});
  EXPECT_EQ(log, Log());
}

}  // namespace
}  // namespace usbinfo_test
