// The port entries that a hub yields: how many, their exact properties and names, their log lines, and what a
// failure in the middle leaves.
#include "host/TQSVException.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::TQSVException;
using standin::HostOperation;

class PortProperties : public InventoryTest {
 protected:
  void FillPorts(const std::string& topologyLine) { inventory.FillPortProperties(MakeHub({topologyLine})); }

  /// The ports of the root hub when its line ends in this count.
  void FillPortsOfCount(const std::string& count) { FillPorts(With(kRootHubLine, " 4", count)); }

  /// The "Speed" of a hub's port when its speed reads like this; "(absent)" without one.
  std::string SpeedOf(const std::string& speed) {
    FillPorts(With(kRootHubLine, "480  ", speed));
    return TextsOf(Inventory::fUsbPortData, "Speed").back();
  }

  static std::string IdentifierAt(std::size_t index) {
    return TextsOf(Inventory::fUsbPortData, "DeviceID").at(index);
  }
};

TEST_F(PortProperties, AreExactlyTen) {
  FillPorts(With(kHubLine, "MxCh= 2", "MxCh= 1"));
  const std::string name = "Bus 01  Device  12 Port 00";
  EXPECT_EQ(DescribeAll(Inventory::fUsbPortData),
            (std::vector<Properties>{{{"HubDepth", Uint16(1)},
                                      {"HubName", Text("Bus 01  Device  12")},
                                      {"DeviceID", Text(name)},
                                      {"Name", Text(name)},
                                      {"PortNumber", Text(name)},
                                      {"Speed", Uint64(12000000)},
                                      {"StatusDescriptions", Texts({"No device connected"})},
                                      {"SystemCreationClassName", Text("KALDO_ComputerSystem")},
                                      {"SystemName", Text("testhost")},
                                      {"CreationClassName", Text("KALDO_USBPort")}}}));
}

TEST_F(PortProperties, DifferBetweenPortsOfAHubInTheirIdentifierOnly) {
  FillPorts(kHubLine);
  std::vector<Properties> ports = DescribeAll(Inventory::fUsbPortData);
  ASSERT_EQ(ports.size(), 2U);
  for (const char* identifier : {"DeviceID", "Name", "PortNumber"}) {
    EXPECT_EQ(ports[1].at(identifier), Text("Bus 01  Device  12 Port 01"));
    ports[1].at(identifier) = ports[0].at(identifier);
  }
  EXPECT_EQ(ports[0], ports[1]);
}

TEST_F(PortProperties, LogTheCountAndTheKeysOfEveryPort) {
  FillPorts(kHubLine);
  EXPECT_EQ(log, (Log{Debug("TUsbData::FillPortProperties: Begin"), Debug("Total Ports2"),
                      Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End"),
                      Debug("TUsbData::GetKeyProperties: Begin"), Debug("TUsbData::GetKeyProperties: End"),
                      Debug("TUsbData::FillPortProperties: End")}));
}

TEST_F(PortProperties, DoNotExistForAHubWithoutAReadableCount) {
  for (const char* count : {" 0", "", " x4", "  "}) {
    log.clear();
    FillPortsOfCount(count);
    EXPECT_EQ(Inventory::fUsbPortData.size(), 0U) << count;
    EXPECT_EQ(log, (Log{Debug("TUsbData::FillPortProperties: Begin"), Debug("Total Ports0"),
                        Debug("TUsbData::FillPortProperties: End")}));
  }
}

TEST_F(PortProperties, IdentifiersCountFromZeroInTwoDigits) {
  FillPorts("T:  Bus=01Lev=00 Prnt=00 Dev#=  1 Spd=480  MxCh= 4");
  const std::vector<std::string> expected = {"Bus 01 Device   1 Port 00", "Bus 01 Device   1 Port 01",
                                             "Bus 01 Device   1 Port 02", "Bus 01 Device   1 Port 03"};
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "DeviceID"), expected);
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "Name"), expected);
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "PortNumber"), expected);
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "HubName"), std::vector<std::string>(4, "Bus 01 Device   1"));
}

TEST_F(PortProperties, IdentifiersOfTwelvePortsRunToEleven) {
  FillPortsOfCount("12");
  std::vector<std::string> expected;
  for (const char* number : {"00", "01", "02", "03", "04", "05", "06", "07", "08", "09", "10", "11"}) {
    expected.push_back("Bus 01  Device   1 Port " + std::string(number));
  }
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "DeviceID"), expected);
}

TEST_F(PortProperties, IdentifiersHaveThreeDigitsFromOneHundredOn) {
  FillPortsOfCount("102");
  ASSERT_EQ(Inventory::fUsbPortData.size(), 102U);
  EXPECT_EQ(IdentifierAt(99), "Bus 01  Device   1 Port 99");
  EXPECT_EQ(IdentifierAt(100), "Bus 01  Device   1 Port 100");
  EXPECT_EQ(IdentifierAt(101), "Bus 01  Device   1 Port 101");
  EXPECT_EQ(log.at(1), Debug("Total Ports102"));
}

TEST_F(PortProperties, EndAfterTwoHundredFiftyFiveWhateverTheCountClaims) {
  const std::vector<std::pair<std::string, std::string>> claims = {
      {" 255", "255"}, {" 256", "256"}, {" 300", "300"}, {" 65535", "65535"}, {" 99999", "65535"}};
  for (const auto& [count, logged] : claims) {
    Inventory::Reset();
    log.clear();
    FillPortsOfCount(count);
    ASSERT_EQ(Inventory::fUsbPortData.size(), 255U) << count;
    EXPECT_EQ(IdentifierAt(254), "Bus 01  Device   1 Port 254");
    EXPECT_EQ(log.at(1), Debug("Total Ports" + logged));
    EXPECT_EQ(log.size(), 2 + 2 * 255 + 1U) << "a line per port's keys and no more";
    EXPECT_EQ(log.back(), Debug("TUsbData::FillPortProperties: End"));
  }
}

TEST_F(PortProperties, AreNotCutShortBelowTheBound) {
  FillPortsOfCount(" 254");
  EXPECT_EQ(Inventory::fUsbPortData.size(), 254U);
}

TEST_F(PortProperties, SpeedIsInBitsPerSecond) {
  EXPECT_EQ(SpeedOf("480  "), "480000000");
  EXPECT_EQ(SpeedOf("12   "), "12000000");
  EXPECT_EQ(SpeedOf("5000 "), "5000000000");
  EXPECT_EQ(SpeedOf("20000"), "20000000000");
}

TEST_F(PortProperties, SpeedDropsWhatFollowsThePoint) {
  EXPECT_EQ(SpeedOf("1.5  "), "1000000");
}

TEST_F(PortProperties, SpeedIsAbsentWhenItConvertsToZero) {
  EXPECT_EQ(SpeedOf("0    "), "(absent)");
  EXPECT_EQ(SpeedOf("0.5  "), "(absent)");
  EXPECT_EQ(SpeedOf("fast "), "(absent)");
  EXPECT_EQ(SpeedOf(""), "(absent)");
  EXPECT_EQ(Inventory::fUsbPortData.at(0).size(), 9U);
}

TEST_F(PortProperties, DepthIsTheHubsLevel) {
  FillPorts(With(kRootHubLine, "Lev=00", "Lev=06"));
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "HubDepth"), std::vector<std::string>(4, "6"));
  FillPorts(With(kRootHubLine, "Lev=00", "Lev=65538"));
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "HubDepth").back(), "65535");
}

TEST_F(PortProperties, DepthOfARootHubsPortsIsStoredAsZero) {
  FillPorts(kRootHubLine);
  EXPECT_EQ(Describe(Inventory::fUsbPortData.at(0)).at("HubDepth"), Uint16(0));
}

TEST_F(PortProperties, AreFiledAfterThoseOfEarlierHubs) {
  FillPorts(kHubLine);
  FillPorts(With(kHubLine, "Dev#= 12", "Dev#=  3"));
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "Name"),
            (std::vector<std::string>{"Bus 01  Device  12 Port 00", "Bus 01  Device  12 Port 01",
                                      "Bus 01  Device   3 Port 00", "Bus 01  Device   3 Port 01"}));
}

TEST_F(PortProperties, LeaveBothWorkingMapsEmptyAndOtherListsAlone) {
  FillPorts(kHubLine);
  EXPECT_TRUE(inventory.fPortProperties.empty());
  EXPECT_TRUE(inventory.fProperties.empty());
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
  EXPECT_TRUE(Inventory::fUsbHubData.empty());
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
}

TEST_F(PortProperties, AreAssembledApartFromTheControllersWorkingMap) {
  inventory.fProperties.emplace("Description", NKESTA20::TCIMValue("open"));
  FillPorts(kHubLine);
  EXPECT_EQ(Describe(inventory.fProperties), (Properties{{"Description", Text("open")}}));
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "Description"), std::vector<std::string>(2, "(absent)"));
}

TEST_F(PortProperties, ErrorAbandonsTheRemainingPortsAndKeepsTheEarlierOnes) {
  HostCalls::Fail(HostOperation::kMakeArrayValue, "", 3, ThrowHostError);
  EXPECT_THROW(FillPorts(kRootHubLine), TQSVException);
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "Name"),
            (std::vector<std::string>{"Bus 01  Device   1 Port 00", "Bus 01  Device   1 Port 01"}));
  const std::string third = "Bus 01  Device   1 Port 02";
  EXPECT_EQ(Describe(inventory.fPortProperties), (Properties{{"HubDepth", Uint16(0)},
                                                             {"HubName", Text("Bus 01  Device   1")},
                                                             {"DeviceID", Text(third)},
                                                             {"Name", Text(third)},
                                                             {"PortNumber", Text(third)},
                                                             {"Speed", Uint64(480000000)}}));
  EXPECT_EQ(log.back(), Debug("TUsbData::GetKeyProperties: End"));
}

TEST_F(PortProperties, ErrorOfAnotherTypePassesThroughToo) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "No device connected", 1, ThrowAnotherError);
  EXPECT_THROW(FillPorts(kRootHubLine), AnotherError);
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
}

TEST_F(PortProperties, HostErrorInTheKeysCostsOnlyThatPortsNames) {
  HostCalls::Fail(HostOperation::kGetSystemName, "", 2, ThrowHostError);
  FillPorts(With(kRootHubLine, "MxCh= 4", "MxCh= 3"));
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "SystemName"),
            (std::vector<std::string>{"testhost", "", "testhost"}));
  EXPECT_EQ(log.back(), Debug("TUsbData::FillPortProperties: End"));
}

}  // namespace
}  // namespace usbinfo_test
