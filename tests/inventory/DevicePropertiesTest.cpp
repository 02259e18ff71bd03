// The hub and device entries: their exact properties, the identifiers that tie them to their parent, their
// log lines, and what a failure leaves.
#include "host/TQSVException.h"
#include "standin/HostData.h"
#include "tests/inventory/InventoryTest.h"

namespace usbinfo_test {
namespace {

using NKESTA20::PropertyMap;
using NKESTA20::TQSVException;
using standin::HostOperation;

const std::vector<std::string> kStringLines = {"S:  Manufacturer=Acme", "S:  Product=Flash Disk",
                                               "S:  SerialNumber=A1 b2"};

/// The number of handles on a value's data.
unsigned int HoldersOf(const NKESTA20::TCIMValue& value) {
  return NKESTA20::HostData::Of(value)->uses.load();
}

class DeviceProperties : public InventoryTest {
 protected:
  static std::vector<std::string> WholeBlock(const std::string& topologyLine) {
    std::vector<std::string> lines = {topologyLine, kDescriptorLine, kProductLine};
    lines.insert(lines.end(), kStringLines.begin(), kStringLines.end());
    return lines;
  }

  /// What the lines of a whole block yield for hubs and devices alike, wherever they sit.
  static Properties CommonOfWholeBlock() {
    return {{"Description", Text("Flash Disk")},
            {"USBVersion", Uint16(110)},
            {"ClassCode", Uint8(53)},
            {"SubclassCode", Uint8(1)},
            {"ProtocolCode", Uint8(3)},
            {"VendorID", Uint16(0x12ab)},
            {"USBDeviceID", Uint16(0x00ff)},
            {"Manufacturer", Text("Acme")},
            {"SerialNumber", Text("A1 b2")},
            {"NumberOfConfigs", Uint8(5)},
            {"SystemCreationClassName", Text("KALDO_ComputerSystem")},
            {"SystemName", Text("testhost")}};
  }

  Properties HubEntry(const std::vector<std::string>& lines) {
    inventory.FillDeviceProperties(MakeHub(lines));
    return Describe(Inventory::fUsbHubData.back());
  }

  Properties DeviceEntry(const std::vector<std::string>& lines) {
    inventory.FillDeviceProperties(MakeDevice(lines));
    return Describe(Inventory::fUsbDeviceData.back());
  }

  Typed SpeedOf(const std::string& speed) {
    return DeviceEntry({With(kDeviceLine, "1.5  ", speed)}).at("Speed");
  }

  std::string HubNameBelow(const std::string& parent) {
    return DeviceEntry({With(kDeviceLine, "Prnt=12", "Prnt=" + parent)}).at("HubName").content.at(0);
  }
};

TEST_F(DeviceProperties, OfARootHubAreExactlyThese) {
  Properties expected = CommonOfWholeBlock();
  expected.emplace("DeviceID", Text("Bus 01  Device   1"));
  expected.emplace("Name", Text("Bus 01  Device   1"));
  expected.emplace("HubDepth", Uint16(0));
  expected.emplace("NumberOfPorts", Uint8(4));
  expected.emplace("CreationClassName", Text("KALDO_USBHub"));
  EXPECT_EQ(HubEntry(WholeBlock(kRootHubLine)), expected);
  EXPECT_EQ(Inventory::fUsbHubData.size(), 1U);
  EXPECT_EQ(Inventory::fUsbPortData.size(), 4U);
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
}

TEST_F(DeviceProperties, OfAHubBelowTheRootAreExactlyThese) {
  Properties expected = CommonOfWholeBlock();
  expected.emplace("DeviceID", Text("Bus 01  Device  12"));
  expected.emplace("Name", Text("Bus 01  Device  12"));
  expected.emplace("HubName", Text("Bus 01  Device   1"));
  expected.emplace("PortNumber", Text("Bus 01  Device   1 Port 02"));
  expected.emplace("HubDepth", Uint16(1));
  expected.emplace("NumberOfPorts", Uint8(2));
  expected.emplace("CreationClassName", Text("KALDO_USBHub"));
  EXPECT_EQ(HubEntry(WholeBlock(kHubLine)), expected);
  EXPECT_EQ(Inventory::fUsbPortData.size(), 2U);
}

TEST_F(DeviceProperties, OfADeviceAreExactlyThese) {
  Properties expected = CommonOfWholeBlock();
  expected.emplace("DeviceID", Text("Bus 01  Device 123"));
  expected.emplace("Name", Text("Bus 01  Device 123"));
  expected.emplace("HubName", Text("Bus 01  Device  12"));
  expected.emplace("PortNumber", Text("Bus 01  Device  12 Port 01"));
  expected.emplace("HubDepth", Uint16(1));
  expected.emplace("Speed", Uint8(1));
  expected.emplace("CreationClassName", Text("KALDO_USBDevice"));
  EXPECT_EQ(DeviceEntry(WholeBlock(kDeviceLine)), expected);
  EXPECT_EQ(Inventory::fUsbDeviceData.size(), 1U);
  EXPECT_TRUE(Inventory::fUsbHubData.empty());
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
  EXPECT_TRUE(Inventory::fUsbControllerData.empty());
}

TEST_F(DeviceProperties, OfADeviceWithPortsMakeNoPortEntries) {
  const Properties entry = DeviceEntry({With(kDeviceLine, "MxCh= 0", "MxCh= 4")});
  EXPECT_EQ(entry.count("NumberOfPorts"), 0U);
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
}

TEST_F(DeviceProperties, OfAnEmptyRecordKeepWhatHasAValue) {
  EXPECT_EQ(DeviceEntry({}), (Properties{{"Description", Text("Not Available")},
                                         {"DeviceID", Text("Bus  Device ")},
                                         {"Name", Text("Bus  Device ")},
                                         {"USBVersion", Uint16(0)},
                                         {"ClassCode", Uint8(208)},
                                         {"SubclassCode", Uint8(208)},
                                         {"ProtocolCode", Uint8(208)},
                                         {"VendorID", Uint16(0)},
                                         {"USBDeviceID", Uint16(0)},
                                         {"Manufacturer", Text("Not Available")},
                                         {"SerialNumber", Text("Not Available")},
                                         {"NumberOfConfigs", Uint8(208)},
                                         {"Speed", Uint8(0)},
                                         {"HubDepth", Uint16(65535)},
                                         {"SystemCreationClassName", Text("KALDO_ComputerSystem")},
                                         {"SystemName", Text("testhost")},
                                         {"CreationClassName", Text("KALDO_USBDevice")}}));
}

TEST_F(DeviceProperties, OfADeviceOnARootHubPadTheParentAndTakeTheRootsDepth) {
  const Properties entry = DeviceEntry({"T:  Bus=01Lev=01 Prnt=01 Port=02 Cnt=01 Dev#=  2 Spd=480  MxCh= 0"});
  EXPECT_EQ(entry.at("HubName"), Text("Bus 01 Device   1"));
  EXPECT_EQ(entry.at("PortNumber"), Text("Bus 01 Device   1 Port 02"));
  EXPECT_EQ(entry.at("HubDepth"), Uint16(0));
}

TEST_F(DeviceProperties, ParentNumberIsPaddedToThreeCharacters) {
  EXPECT_EQ(HubNameBelow("1"), "Bus 01  Device   1");
  EXPECT_EQ(HubNameBelow("12"), "Bus 01  Device  12");
  EXPECT_EQ(HubNameBelow("123"), "Bus 01  Device 123");
  EXPECT_EQ(HubNameBelow("1234"), "Bus 01  Device 1234");
}

TEST_F(DeviceProperties, ParentNumberIsReadAsADecimalNumber) {
  EXPECT_EQ(HubNameBelow("007"), "Bus 01  Device   7");
  EXPECT_EQ(HubNameBelow("  9"), "Bus 01  Device   9");
  EXPECT_EQ(HubNameBelow(""), "Bus 01  Device   0");
  EXPECT_EQ(HubNameBelow("x"), "Bus 01  Device   0");
}

TEST_F(DeviceProperties, NumbersBeyondSixteenBitsBecomeTheGreatest) {
  const Properties entry = DeviceEntry({With(kDeviceLine, "Lev=02", "Lev=65538"),
                                        With(kDescriptorLine, "Ver= 1.10", "Ver= 655.37"),
                                        "P:  Vendor=10001 ProdID=12345 Rev= 2.06"});
  EXPECT_EQ(entry.at("HubDepth"), Uint16(65534));
  EXPECT_EQ(entry.at("USBVersion"), Uint16(65535));
  EXPECT_EQ(entry.at("VendorID"), Uint16(65535));
  EXPECT_EQ(entry.at("USBDeviceID"), Uint16(65535));
  EXPECT_EQ(HubNameBelow("65537"), "Bus 01  Device 65535");
}

TEST_F(DeviceProperties, PortNumberTakesTheOwnPortTextAsItStands) {
  for (const char* port : {"2", "002", " 2", "", "x"}) {
    const Properties entry = DeviceEntry({With(kDeviceLine, "Port=01", "Port=" + std::string(port))});
    EXPECT_EQ(entry.at("PortNumber"), Text("Bus 01  Device  12 Port " + std::string(port)));
  }
}

TEST_F(DeviceProperties, IdentifiersKeepTheBlanksOfBusAndDeviceNumber) {
  const Properties entry =
      DeviceEntry({"T:  Bus=  7  Lev=01 Prnt=01 Port=02 Cnt=01 Dev#=   42  Spd=480  MxCh= 0"});
  EXPECT_EQ(entry.at("DeviceID"), Text("Bus   7   Device    42 "));
  EXPECT_EQ(entry.at("Name"), Text("Bus   7   Device    42 "));
  EXPECT_EQ(entry.at("HubName"), Text("Bus   7   Device   1"));
}

TEST_F(DeviceProperties, TieADeviceToThePortItIsPluggedInto) {
  inventory.FillDeviceProperties(MakeHub({kHubLine}));
  inventory.FillDeviceProperties(MakeDevice({kDeviceLine}));
  const Properties port = Describe(Inventory::fUsbPortData.at(1));
  const Properties device = Describe(Inventory::fUsbDeviceData.at(0));
  for (const char* tie : {"HubDepth", "HubName", "PortNumber"}) EXPECT_EQ(device.at(tie), port.at(tie));
}

TEST_F(DeviceProperties, DepthOfADeviceAtLevelZeroWraps) {
  const Properties entry = DeviceEntry({With(kDeviceLine, "Lev=02", "Lev=00")});
  EXPECT_EQ(entry.at("HubDepth"), Uint16(65535));
  EXPECT_EQ(entry.count("HubName"), 0U);
  EXPECT_EQ(entry.count("PortNumber"), 0U);
}

TEST_F(DeviceProperties, LevelIsANumberWhateverItsDigits) {
  for (const char* level : {"0", "000", "", "x"}) {
    const Properties entry = HubEntry({With(kHubLine, "Lev=01", "Lev=" + std::string(level))});
    EXPECT_EQ(entry.at("HubDepth"), Uint16(0)) << level;
    EXPECT_EQ(entry.count("HubName"), 0U) << level;
    EXPECT_EQ(entry.count("PortNumber"), 0U) << level;
  }
}

TEST_F(DeviceProperties, DepthIsTheHubsOwnLevelButOneLessForADevice) {
  EXPECT_EQ(HubEntry({With(kHubLine, "Lev=01", "Lev=05")}).at("HubDepth"), Uint16(5));
  EXPECT_EQ(DeviceEntry({With(kDeviceLine, "Lev=02", "Lev=05")}).at("HubDepth"), Uint16(4));
}

TEST_F(DeviceProperties, SpeedClassesMeetAtTheirBoundaries) {
  const std::vector<std::pair<std::string, unsigned int>> classes = {
      {"", 0},      {"0    ", 0}, {"0.9  ", 0}, {"fast ", 0}, {"1    ", 1}, {"1.5  ", 1}, {"2    ", 2},
      {"12   ", 2}, {"13   ", 3}, {"480  ", 3}, {"481  ", 4}, {"5000 ", 4}, {"20000", 4}};
  for (const auto& [text, code] : classes) EXPECT_EQ(SpeedOf(text), Uint8(code)) << text;
}

TEST_F(DeviceProperties, CodesAreTheFirstCharacterLessThatOfZero) {
  const std::vector<std::pair<std::string, unsigned int>> codes = {
      {"09(hub  ) ", 0}, {"3 ", 3}, {"  7 ", 7}, {"ff(vend.) ", 54}, {"e0 ", 53}, {"(x) ", 248}, {"", 208}};
  for (const auto& [text, code] : codes) {
    const std::string cls = "D:  Ver= 2.00 Cls=" + text + "Sub=11 Prot=11 MxPS=64 #Cfgs=1";
    EXPECT_EQ(DeviceEntry({kDeviceLine, cls}).at("ClassCode"), Uint8(code)) << text;
    const std::string subclass = "D:  Ver= 2.00 Cls=11 Sub=" + text + "Prot=11 MxPS=64 #Cfgs=1";
    EXPECT_EQ(DeviceEntry({kDeviceLine, subclass}).at("SubclassCode"), Uint8(code)) << text;
    const std::string protocol = "D:  Ver= 2.00 Cls=11 Sub=11 Prot=" + text + "MxPS=64 #Cfgs=1";
    EXPECT_EQ(DeviceEntry({kDeviceLine, protocol}).at("ProtocolCode"), Uint8(code)) << text;
    const std::string configs = "D:  Ver= 2.00 Cls=11 Sub=11 Prot=11 MxPS=64 #Cfgs=" + text;
    EXPECT_EQ(DeviceEntry({kDeviceLine, configs}).at("NumberOfConfigs"), Uint8(code)) << text;
  }
}

TEST_F(DeviceProperties, VersionIsTheDigitsWithoutThePoint) {
  const std::vector<std::pair<std::string, unsigned int>> versions = {
      {" 2.00 ", 200}, {"1.10", 110}, {"12.34.5", 12345}, {"", 0}, {" x ", 0}};
  for (const auto& [text, number] : versions) {
    const Properties entry = DeviceEntry({kDeviceLine, "D:  Ver=" + text + "Cls=00 Sub=00"});
    EXPECT_EQ(entry.at("USBVersion"), Uint16(number)) << text;
  }
}

TEST_F(DeviceProperties, VendorAndProductAreReadAsHexadecimal) {
  const Properties entry = DeviceEntry({kDeviceLine, "P:  Vendor=FFFF ProdID=0409 Rev= 1.00"});
  EXPECT_EQ(entry.at("VendorID"), Uint16(65535));
  EXPECT_EQ(entry.at("USBDeviceID"), Uint16(1033));
}

TEST_F(DeviceProperties, VendorAndProductAreZeroWhenTheyBeginWithABlank) {
  const Properties entry = DeviceEntry({kDeviceLine, "P:  Vendor= 409 ProdID= 1a Rev= 1.00"});
  EXPECT_EQ(entry.at("VendorID"), Uint16(0));
  EXPECT_EQ(entry.at("USBDeviceID"), Uint16(0));
}

TEST_F(DeviceProperties, ManufacturerAndSerialNumberAreAbsentWhenEmpty) {
  const std::vector<std::string> lines = {kDeviceLine, "S:  Manufacturer=", "S:  SerialNumber="};
  const Properties device = DeviceEntry(lines);
  EXPECT_EQ(device.count("Manufacturer"), 0U);
  EXPECT_EQ(device.count("SerialNumber"), 0U);
  const Properties hub = HubEntry(lines);
  EXPECT_EQ(hub.count("Manufacturer"), 0U);
  EXPECT_EQ(hub.count("SerialNumber"), 0U);
}

TEST_F(DeviceProperties, DescriptionIsStoredEvenWhenEmpty) {
  EXPECT_EQ(DeviceEntry({kDeviceLine, "S:  Product="}).at("Description"), Text(""));
  EXPECT_EQ(HubEntry({kHubLine, "S:  Product="}).at("Description"), Text(""));
}

TEST_F(DeviceProperties, NumberOfPortsIsTheLowEightBitsOfTheCount) {
  const std::vector<std::pair<std::string, unsigned int>> counts = {
      {" 0", 0}, {" 7", 7}, {" 255", 255}, {" 256", 0}, {" 300", 44}, {" 65792", 255}, {"", 0}};
  for (const auto& [text, number] : counts) {
    const Properties entry = HubEntry({With(kHubLine, "MxCh= 2", "MxCh=" + text)});
    EXPECT_EQ(entry.at("NumberOfPorts"), Uint8(number)) << text;
  }
}

TEST_F(DeviceProperties, LogTheStepsOfADevice) {
  DeviceEntry({With(kDeviceLine, "1.5 ", "480 ")});
  EXPECT_EQ(
      log,
      (Log{Debug("TUsbData::FillDeviceProperties: Begin"), Debug("TUsbData::DisplayDeviceDescriptor: Begin"),
           Debug("TUsbData::DisplayDeviceDescriptor: End"),
           Debug("TUsbData::FillDeviceProperties() speed 480"), Debug("TUsbData::GetKeyProperties: Begin"),
           Debug("TUsbData::GetKeyProperties: End"), Debug("TUsbData::FillDeviceProperties: End")}));
}

TEST_F(DeviceProperties, LogTheSpeedAsTheNumberThatWasRead) {
  DeviceEntry({With(kDeviceLine, "1.5  ", "")});
  EXPECT_EQ(log.at(3), Debug("TUsbData::FillDeviceProperties() speed 0"));
  log.clear();
  DeviceEntry({With(kDeviceLine, "1.5  ", "99999999999 ")});
  EXPECT_EQ(log.at(3), Debug("TUsbData::FillDeviceProperties() speed 99999999999"));
}

TEST_F(DeviceProperties, LogTheStepsOfAHubWithItsPortsBeforeTheEnd) {
  HubEntry({With(kHubLine, "MxCh= 2", "MxCh= 1")});
  EXPECT_EQ(
      log,
      (Log{Debug("TUsbData::FillDeviceProperties: Begin"), Debug("TUsbData::DisplayDeviceDescriptor: Begin"),
           Debug("TUsbData::DisplayDeviceDescriptor: End"), Debug("TUsbData::GetKeyProperties: Begin"),
           Debug("TUsbData::GetKeyProperties: End"), Debug("TUsbData::FillPortProperties: Begin"),
           Debug("Total Ports1"), Debug("TUsbData::GetKeyProperties: Begin"),
           Debug("TUsbData::GetKeyProperties: End"), Debug("TUsbData::FillPortProperties: End"),
           Debug("TUsbData::FillDeviceProperties: End")}));
}

TEST_F(DeviceProperties, GiveTheirOwnValuesBackBeforeTheEndIsLogged) {
  for (const bool isHub : {true, false}) {
    const std::vector<PropertyMap>& filed = isHub ? Inventory::fUsbHubData : Inventory::fUsbDeviceData;
    std::vector<unsigned int> holders;
    host.CoreLogger().SetSink([&](auto, const std::string& line) {
      if (line != "TUsbData::FillDeviceProperties: End") return;
      for (const auto& [name, value] : filed.back()) holders.push_back(HoldersOf(value));
    });
    inventory.FillDeviceProperties(isHub ? MakeHub(WholeBlock(kHubLine))
                                         : MakeDevice(WholeBlock(kDeviceLine)));
    EXPECT_EQ(holders, std::vector<unsigned int>(filed.back().size(), 1U)) << isHub;
  }
}

TEST_F(DeviceProperties, LeaveTheWorkingMapsAlone) {
  inventory.fProperties.emplace("Description", NKESTA20::TCIMValue("open"));
  HubEntry({kHubLine});
  DeviceEntry({kDeviceLine});
  EXPECT_EQ(Describe(inventory.fProperties), (Properties{{"Description", Text("open")}}));
  EXPECT_TRUE(inventory.fPortProperties.empty());
}

TEST_F(DeviceProperties, HostErrorLeavesARecordUnfiled) {
  HostCalls::Fail(HostOperation::kMakeNumberValue, "110", 1, ThrowHostError);
  EXPECT_THROW(inventory.FillDeviceProperties(MakeHub(WholeBlock(kHubLine))), TQSVException);
  EXPECT_TRUE(Inventory::fUsbHubData.empty());
  EXPECT_TRUE(Inventory::fUsbPortData.empty());
  EXPECT_EQ(log, (Log{Debug("TUsbData::FillDeviceProperties: Begin"),
                      Debug("TUsbData::DisplayDeviceDescriptor: Begin")}));
}

TEST_F(DeviceProperties, OtherErrorLeavesARecordUnfiled) {
  HostCalls::Fail(HostOperation::kMakeStringValue, "Flash Disk", 1, ThrowAnotherError);
  EXPECT_THROW(inventory.FillDeviceProperties(MakeDevice(WholeBlock(kDeviceLine))), AnotherError);
  EXPECT_TRUE(Inventory::fUsbDeviceData.empty());
  EXPECT_EQ(log, (Log{Debug("TUsbData::FillDeviceProperties: Begin")}));
}

TEST_F(DeviceProperties, LeaveNothingOfAFailedRecordInTheNext) {
  HostCalls::Fail(HostOperation::kMakeNumberValue, "110", 1, ThrowHostError);
  EXPECT_THROW(inventory.FillDeviceProperties(MakeDevice(WholeBlock(kDeviceLine))), TQSVException);
  EXPECT_EQ(DeviceEntry({kDeviceLine, "S:  Product=other"}).at("Description"), Text("other"));
}

TEST_F(DeviceProperties, ErrorInTheSecondPortLeavesTheHubAndTheFirstPort) {
  HostCalls::Fail(HostOperation::kMakeArrayValue, "", 2, ThrowHostError);
  EXPECT_THROW(inventory.FillDeviceProperties(MakeHub({kRootHubLine})), TQSVException);
  EXPECT_EQ(TextsOf(Inventory::fUsbHubData, "Name"), std::vector<std::string>{"Bus 01  Device   1"});
  EXPECT_EQ(TextsOf(Inventory::fUsbPortData, "Name"), std::vector<std::string>{"Bus 01  Device   1 Port 00"});
}

TEST_F(DeviceProperties, AreFiledWithEmptyNamesWhenTheHostDoesNotKnowThem) {
  HostCalls::Fail(HostOperation::kGetClassNamespace, "", HostCalls::kEvery, ThrowHostError);
  for (const Properties& entry : {HubEntry({kHubLine}), DeviceEntry({kDeviceLine})}) {
    EXPECT_EQ(entry.at("SystemName"), Text(""));
    EXPECT_EQ(entry.at("SystemCreationClassName"), Text(""));
  }
  EXPECT_EQ(log.back(), Debug("TUsbData::FillDeviceProperties: End"));
}

}  // namespace
}  // namespace usbinfo_test
