// Ports linked to what is plugged into them, and marked as occupied: what matches and what is marked.
// Failures and their log lines are tested in PortDeviceFailuresTest.cpp.
#include "tests/association/PortDeviceTest.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using standin::HostOperation;

class PortDeviceAssociation : public PortDeviceTest {};

TEST_F(PortDeviceAssociation, LinksAPortToTheDeviceOfItsPlace) {
  const std::string port = CommitPort("port", 1, "A", "A Port 00");
  const std::string device = CommitDevice("device", 1, "A", "A Port 00");
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, device)});
  EXPECT_EQ(StatusOf("port"), Texts({"Device connected"}));
  EXPECT_EQ(log, Concatenated({{kEntering, kBegin, kEnd, kBegin, kEnd}, MakingOf(kAssociation), {kExiting}}));
}

TEST_F(PortDeviceAssociation, LinksAPortToTheHubOneDeeper) {
  const std::string port = CommitPort("port", 1, "A", "A Port 00");
  const std::string hub = CommitHub("hub", 2, "A", "A Port 00");
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, hub)});
  EXPECT_EQ(StatusOf("port"), Texts({"Device connected"}));
}

TEST_F(PortDeviceAssociation, OfAnEmptyNamespaceOnlyLogsItsFrames) {
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(log, (Log{kEntering, kBegin, kEnd, kBegin, kEnd, kExiting}));
}

TEST_F(PortDeviceAssociation, WithoutPortsMakesNothingAndOnlyLogsItsFrames) {
  CommitDevice("device", 1, "A", "A Port 00");
  CommitHub("hub", 2, "A", "A Port 01");
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(log, (Log{kEntering, kBegin, kEnd, kBegin, kEnd, kExiting}));
}

TEST_F(PortDeviceAssociation, MakesAllDeviceLinksBeforeAllHubLinks) {
  const std::string port0 = CommitPort("0", 0, "A", "0");
  const std::string port1 = CommitPort("1", 0, "A", "1");
  const std::string port2 = CommitPort("2", 0, "A", "2");
  const std::string port3 = CommitPort("3", 0, "A", "3");
  const std::string hub3 = CommitHub("hub 3", 1, "A", "3");
  const std::string hub0 = CommitHub("hub 0", 1, "A", "0");
  const std::string device2 = CommitDevice("device 2", 0, "A", "2");
  const std::string device1 = CommitDevice("device 1", 0, "A", "1");
  EXPECT_TRUE(provider.GetCIMInstances(kAssociation));
  EXPECT_EQ(Committed(kAssociation),
            (Links{Link(port2, device2), Link(port1, device1), Link(port3, hub3), Link(port0, hub0)}));
}

TEST_F(PortDeviceAssociation, DoesNotLinkADeviceAcrossDepths) {
  CommitPort("port", 1, "A", "0");
  CommitDevice("above", 0, "A", "0");
  CommitDevice("below", 2, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(StatusOf("port"), Texts({"No device connected"}));
  EXPECT_EQ(log, (Log{kBegin, kEnd}));
}

TEST_F(PortDeviceAssociation, DoesNotLinkAHubToAPortOfItsOwnDepth) {
  CommitPort("port", 2, "A", "0");
  CommitHub("same", 2, "A", "0");
  CommitHub("two below", 4, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBHub"), Links());
}

TEST_F(PortDeviceAssociation, TakesADevicesDepthUnchangedEvenAtZero) {
  const std::string port = CommitPort("port", 0, "A", "0");
  const std::string device = CommitDevice("device", 0, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
}

TEST_F(PortDeviceAssociation, ComparesDepthsAsSixteenBits) {
  const std::string port = CommitPort("port", 65535, "A", "0");
  const std::string device = CommitDevice("device", 65535, "A", "0");
  CommitHub("root", 0, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
  EXPECT_EQ(MakeLinks("KALDO_USBHub"), Links());
}

TEST_F(PortDeviceAssociation, SkipsARootHubSilentlyAndReadsOnlyItsDepth) {
  CommitPort("port", 0, "", "");
  Commit("KALDO_USBHub", "root", {{"HubDepth", Number(0)}});
  HostCalls made;
  EXPECT_EQ(MakeLinks("KALDO_USBHub"), Links());
  EXPECT_EQ(log, (Log{kBegin, kEnd}));
  EXPECT_EQ(made.Subjects({HostOperation::kGetProperty}), std::vector<std::string>{"HubDepth"});
}

TEST_F(PortDeviceAssociation, ComparesHubNameAndPortNumberByteForByte) {
  CommitPort("port", 1, "Bus 01", "Port 00");
  for (const char* hubName : {"bus 01", "Bus 01 ", "Bus 0", ""}) {
    CommitDevice(std::string("on ") + hubName, 1, hubName, "Port 00");
  }
  for (const char* portNumber : {"port 00", "Port 00 ", "Port 0", "Port 000", ""}) {
    CommitDevice(std::string("at ") + portNumber, 1, "Bus 01", portNumber);
  }
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  EXPECT_EQ(log, (Log{kBegin, kEnd}));
}

TEST_F(PortDeviceAssociation, TakesEmptyTextsForEqual) {
  const std::string port = CommitPort("port", 1, "", "");
  const std::string device = CommitDevice("device", 1, "", "");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
}

TEST_F(PortDeviceAssociation, LinksAndMarksOnlyTheFirstOfTwoEqualPorts) {
  const std::string first = CommitPort("z first", 1, "A", "0");
  CommitPort("a second", 1, "A", "0");
  const std::string device = CommitDevice("device", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(first, device)});
  EXPECT_EQ(StatusOf("z first"), Texts({"Device connected"}));
  EXPECT_EQ(StatusOf("a second"), Texts({"No device connected"}));
}

TEST_F(PortDeviceAssociation, LinksTwoDevicesOfOnePlaceToTheSamePort) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string device1 = CommitDevice("1", 1, "A", "0");
  const std::string device2 = CommitDevice("2", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), (Links{Link(port, device1), Link(port, device2)}));
}

TEST_F(PortDeviceAssociation, SkipsADeviceWithoutAPortSilently) {
  const std::string port = CommitPort("port", 1, "A", "0");
  CommitDevice("lost", 1, "A", "9");
  const std::string device = CommitDevice("found", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
  EXPECT_EQ(log, (Log{kBegin, kEnd}));
}

TEST_F(PortDeviceAssociation, ChangesNothingOfAPortButItsStatus) {
  CommitPort("port", 1, "A", "0");
  CommitPort("free", 1, "A", "1");
  CommitDevice("device", 1, "A", "0");
  Links expected = Committed("KALDO_USBPort");
  expected.at(0).at("StatusDescriptions") = Texts({"Device connected"});
  MakeLinks("KALDO_USBDevice");
  EXPECT_EQ(Committed("KALDO_USBPort"), expected);
}

TEST_F(PortDeviceAssociation, MarksPortsBeforeAnyInstanceIsMadeAndCommitsNoPort) {
  CommitPort("0", 1, "A", "0");
  CommitPort("1", 1, "A", "1");
  CommitDevice("device", 1, "A", "0");
  CommitHub("hub", 2, "A", "1");
  HostCalls made;
  provider.GetCIMInstances(kAssociation);
  const std::vector<std::string> oneInstance = {"KALDO_USBConnection", "Antecedent", "Dependent",
                                                "KALDO_USBConnection"};
  std::vector<std::string> expected = {"StatusDescriptions", "StatusDescriptions"};
  expected.insert(expected.end(), oneInstance.begin(), oneInstance.end());
  expected.insert(expected.end(), oneInstance.begin(), oneInstance.end());
  EXPECT_EQ(
      made.Subjects({HostOperation::kSetProperty, HostOperation::kCreateInstance, HostOperation::kCommit}),
      expected);
}

TEST_F(PortDeviceAssociation, ReadsThePortsAfreshForEveryDependent) {
  CommitPort("0", 1, "A", "0");
  CommitPort("1", 1, "A", "1");
  for (const char* device : {"1", "2", "3"}) CommitDevice(device, 1, "B", "0");
  HostCalls made;
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links());
  for (const char* property : {"HubDepth", "HubName", "PortNumber"}) {
    EXPECT_EQ(made.Count(HostOperation::kGetProperty, property), 3 + 3 * 2) << property;
  }
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyValue, "HubDepth"), 3 + 3 * 2);
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyText, "HubName"), 3 + 3 * 2);
  EXPECT_EQ(made.Count(HostOperation::kGetPropertyText, "PortNumber"), 3 + 3 * 2);
}

TEST_F(PortDeviceAssociation, ReadsInOrderAndStopsAtTheFirstMatch) {
  CommitPort("0", 7, "A", "0");
  CommitPort("1", 1, "A", "1");
  CommitPort("2", 1, "A", "1");
  CommitHub("hub", 2, "A", "1");
  HostCalls made;
  MakeLinks("KALDO_USBHub");
  EXPECT_EQ(made.Subjects({HostOperation::kGetClassNamespace, HostOperation::kGetClass,
                           HostOperation::kEnumerateInstances, HostOperation::kGetProperty,
                           HostOperation::kGetObjectPath, HostOperation::kSetProperty}),
            (std::vector<std::string>{kAssociation, "KALDO_USBPort", "KALDO_USBPort", "KALDO_USBHub",
                                      "KALDO_USBHub", "HubDepth", "HubName", "PortNumber", "HubDepth",
                                      "HubName", "PortNumber", "HubDepth", "HubName", "PortNumber",
                                      "KALDO_USBPort", "KALDO_USBHub", "StatusDescriptions"}));
}

TEST_F(PortDeviceAssociation, SeesAPortThatComesWhileThePortsAreWalked) {
  CommitPort("0", 1, "A", "0");
  const std::string port = CommitPort("1", 1, "A", "1");
  const std::string device = CommitDevice("device", 1, "A", "1");
  const auto ports = boost::make_shared<LateClass>(ClassNamed("KALDO_USBPort"));
  const auto late = MakeProvider<TUsbPortDeviceAsso>(ports, ClassNamed("KALDO_USBDevice"));
  HandOutTheRestAt("HubName", 2, ports);
  EXPECT_EQ(DescribeAll(late->MakePortAssociation("KALDO_USBDevice")), Links{Link(port, device)});
}

TEST_F(PortDeviceAssociation, SeesADeviceThatComesWhileTheDevicesAreWalked) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string first = CommitDevice("1", 1, "A", "0");
  const std::string second = CommitDevice("2", 1, "A", "0");
  const auto devices = boost::make_shared<LateClass>(ClassNamed("KALDO_USBDevice"));
  const auto late = MakeProvider<TUsbPortDeviceAsso>(devices, ClassNamed("KALDO_USBPort"));
  HandOutTheRestAt("HubName", 1, devices);
  EXPECT_EQ(DescribeAll(late->MakePortAssociation("KALDO_USBDevice")),
            (Links{Link(port, first), Link(port, second)}));
}

TEST_F(PortDeviceAssociation, TakesTheDepthOfAllButHubsUnchanged) {
  const std::string port = CommitPort("port", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBPort"), Links{Link(port, port)});
}

TEST_F(PortDeviceAssociation, KeepsNothingBetweenCalls) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string device = CommitDevice("device", 1, "A", "0");
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
  EXPECT_EQ(MakeLinks("KALDO_USBDevice"), Links{Link(port, device)});
  EXPECT_EQ(MakeLinks("KALDO_USBHub"), Links());
}

TEST_F(PortDeviceAssociation, NeitherBuildsNorReadsTheInventory) {
  Inventory::Reset();
  const PropertyMap place = {
      {"HubName", TCIMValue("A")}, {"PortNumber", TCIMValue("0")}, {"HubDepth", Number(1)}};
  Inventory::fUsbPortData = {place};
  Inventory::fUsbDeviceData = {place};
  provider.CollectData();
  EXPECT_FALSE(Inventory::fDataAlreadyCollected);
  EXPECT_EQ(calls, std::vector<std::string>());
  EXPECT_FALSE(provider.GetCIMInstances(kAssociation));
  Inventory::Reset();
}

TEST_F(PortDeviceAssociation, ServesTheArgumentFreeRequestUnderItsClassName) {
  const std::string port = CommitPort("port", 1, "A", "0");
  const std::string device = CommitDevice("device", 1, "A", "0");
  TUsb& base = provider;
  EXPECT_TRUE(base.GetCIMInstances());
  EXPECT_EQ(Committed(kAssociation), Links{Link(port, device)});
}

TEST_F(PortDeviceAssociation, HandsItsArgumentsToTheBase) {
  EXPECT_EQ(provider.GetCIMClass(), ClassNamed(kAssociation).get());
  EXPECT_EQ(provider.GetInfoHandle(), &handle);
  TUsbPortDeviceAsso withoutHandle(ClassNamed(kAssociation));
  EXPECT_EQ(withoutHandle.GetCIMClass(), ClassNamed(kAssociation).get());
}

class ConnectionArrayValue : public PortDeviceTest {};

TEST_F(ConnectionArrayValue, HoldsItsTextsInOrder) {
  EXPECT_EQ(Describe(provider.GetStrCimValue({"b", "", "a"})), Texts({"b", "", "a"}));
}

TEST_F(ConnectionArrayValue, OfNoTextsIsAnEmptyArrayNotNull) {
  const TCIMValue value = provider.GetStrCimValue({});
  EXPECT_FALSE(value.IsNull());
  EXPECT_EQ(Describe(value), Texts({}));
}

}  // namespace
}  // namespace usbinfo_test
