// Real device lists: how many records each yields, which of them are hubs, which lines go unmatched, and
// fields that show each capture's peculiarity. The numbers were counted in the texts.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "tests/support/HostTest.h"
#include "tests/usbfs/CutText.h"

namespace {

using ::testing::ElementsAre;
using usbinfo_test::CutText;

/// What a capture holds: per record 'H' for a hub and '-' for anything else, and its unmatched lines by type.
struct Expectation {
  const char* name;
  const char* hubs;
  std::map<std::string, int> unmatched;
};

std::ostream& operator<<(std::ostream& out, const Expectation& expectation) {
  return out << expectation.name;
}

const std::vector<Expectation>& Expectations() {
  static const std::vector<Expectation> all = {
      {"debugfs-hand-edited-spacing", "HH", {{"\n", 1}, {"", 1}}},
      {"debugfs-rk3588-8bus-mtt", "HH-HHHHHHHHH", {{"\n", 12}, {"B", 8}, {"E", 27}}},
      {"kerneldoc-acm-2configs-indent2", "", {{" ", 26}, {"", 1}}},
      {"proc-2.4.0-hub7-latin", "HH------", {{"B", 1}, {"E", 20}, {"", 1}}},
      {"proc-2.6.16-4bus-mtt7", "HHH-H-HH--", {{"\n", 10}, {"B", 4}, {"E", 35}}},
      {"proc-manufacturer-keyword", "-", {{"E", 3}, {"", 1}}},
      {"usbdevices-3.5-8bus-mtt7", "H-H-H--H-H-HH-H-H", {{"\n", 17}}},
      {"usbdevices-4.2-nonascii", "H-H---H", {{"\n", 7}}},
      {"usbdevices-rpi-nested-mtt-nostrings", "HHH-", {{"\n", 8}, {"E", 6}}},
      {"usbdevices-unauthorized-stale-if", "H", {{"/", 6}, {"", 1}}},
      {"vm-deep-hubs-debugfs", "HHHHH---", {{"\n", 8}, {"B", 1}, {"E", 8}}},
      {"vm-desktop-debugfs", "HH---H--HH-", {{"\n", 11}, {"B", 4}, {"E", 15}}},
      {"vm-desktop-usb-devices", "HH---H--HH-", {{"\n", 11}, {"E", 14}}},
  };
  return all;
}

CutText Cut(const std::string& name) {
  return CutText(usbinfo_test::ReadFile(std::string(TEST_DATA_DIR "/captures/") + name + ".txt"));
}

std::vector<std::string> TopologyOf(const UsbDevice& device) {
  const auto line = device.getTopology();
  return {line->getBus(),   line->getLevel(),          line->getParentDevice(),
          line->getPort(),  line->getDeviceLevelNum(), line->getDeviceBusNumber(),
          line->getSpeed(), line->getConnections()};
}

std::vector<std::string> DescriptorOf(const UsbDevice& device) {
  const auto line = device.getDescriptor();
  return {line->getVersion(), line->getClasscode(), line->getSubClasscode(), line->getProtocol(),
          line->getConfigs()};
}

std::vector<std::string> ProductOf(const UsbDevice& device) {
  const auto line = device.getProduct();
  return {line->getVendor(), line->getProduct(), line->getRevision()};
}

std::vector<std::string> StringsOf(const UsbDevice& device) {
  const auto lines = device.getDeviceInfo();
  return {lines->getmanufacturer(), lines->getproduct(), lines->getserial()};
}

std::vector<std::string> InterfaceOf(const UsbDevice& device) {
  const auto line = device.getInterface();
  return {line->getDriver(), line->getClass(), line->getSubClass(), line->getInterface(),
          line->getProtocol()};
}

class Capture : public ::testing::TestWithParam<Expectation> {};

INSTANTIATE_TEST_SUITE_P(All, Capture, ::testing::ValuesIn(Expectations()), [](const auto& each) {
  std::string name = each.param.name;
  for (char& c : name) c = c == '-' || c == '.' ? '_' : c;
  return name;
});

TEST_P(Capture, YieldsItsRecordsWithTheHubsMarked) {
  std::string hubs;
  for (const UsbDevice& record : Cut(GetParam().name).records)
    hubs += record.GetDeviceType() == 1 ? 'H' : '-';
  EXPECT_EQ(hubs, GetParam().hubs);
}

TEST_P(Capture, ReportsItsUnmatchedLines) {
  std::map<std::string, int> counts;
  for (const std::string& type : Cut(GetParam().name).unmatched) ++counts[type];
  EXPECT_EQ(counts, GetParam().unmatched);
}

TEST(Captures, AreAllExpectedHere) {
  std::vector<std::string> present;
  for (const std::string& path : usbinfo_test::CapturePaths()) {
    present.push_back(std::filesystem::path(path).stem());
  }
  std::vector<std::string> expected;
  for (const Expectation& expectation : Expectations()) expected.push_back(expectation.name);
  EXPECT_EQ(present, expected);
}

TEST(CaptureOfRk3588, HoldsAModemWithItsFirstInterface) {
  const UsbDevice modem = Cut("debugfs-rk3588-8bus-mtt").records.at(2);
  EXPECT_THAT(TopologyOf(modem), ElementsAre("02 ", "01", "01", "00", "01 ", "  2", "5000 ", " 0"));
  EXPECT_THAT(DescriptorOf(modem), ElementsAre(" 320 ", "00(>ifc ) ", "00 ", "00 ", "  1"));
  EXPECT_THAT(ProductOf(modem), ElementsAre("2c7c", "0801", " 5.04"));
  EXPECT_THAT(StringsOf(modem), ElementsAre("Quectel", "RM520N-GL", "f9b37458"));
  EXPECT_THAT(InterfaceOf(modem), ElementsAre("option", "ff", "ff ", " 0 ", "30 "));
  EXPECT_EQ(modem.getConfiguration()->getPower(), "896");
}

TEST(CaptureOfRk3588, HoldsMultiTtHubsWithTheirFirstSetting) {
  const auto records = Cut("debugfs-rk3588-8bus-mtt").records;
  EXPECT_THAT(InterfaceOf(records.at(4)), ElementsAre("hub", "09", "00 ", " 0 ", "01 "));
  EXPECT_THAT(ProductOf(records.at(4)), ElementsAre("05e3", "0610", "93.91"));
  EXPECT_THAT(StringsOf(records.at(9)), ElementsAre("Not Available", "USB 2.0 Hub [MTT]", "Not Available"));
}

TEST(CaptureOfRk3588, ReportsTheKindsOfHostControllers) {
  std::vector<int> kinds;
  for (const UsbDevice& record : Cut("debugfs-rk3588-8bus-mtt").records) {
    if (record.getTopology()->getLevel() == "00") kinds.push_back(record.getDeviceInfo()->getUsbHost());
  }
  EXPECT_THAT(kinds, ElementsAre(1, 1, 1, 1, 3, 4, 3, 4));
}

TEST(CaptureOfKernel26, MakesAHubOfTheCameraOnTheMultiTtHub) {
  const auto records = Cut("proc-2.6.16-4bus-mtt7").records;
  EXPECT_THAT(TopologyOf(records.at(7)), ElementsAre("01 ", "02", "04", "01", "01 ", "  5", "12  ", " 0"));
  EXPECT_EQ(StringsOf(records.at(7)).at(1), "USB Camera");
  EXPECT_THAT(InterfaceOf(records.at(7)), ElementsAre("(none)", "ff", "00 ", " 0 ", "00 "));
}

TEST(CaptureOfKernel26, KeepsBlanksAndLettersOfTheDisksNumbers) {
  const UsbDevice disk = Cut("proc-2.6.16-4bus-mtt7").records.at(5);
  EXPECT_THAT(StringsOf(disk), ElementsAre("Sunplus Technology Inc.", "USB to Serial-ATA bridge",
                                           "Bdhdzofm B602ACCC_54161828_0_C"));
  EXPECT_THAT(ProductOf(disk), ElementsAre("6017", "2230", "c5.bd"));
  EXPECT_EQ(disk.getTopology()->getSpeed(), "480 ");
}

TEST(CaptureOfKernel26, HoldsTheLastInterfaceBeforeTheFirstEndpoint) {
  const UsbDevice phone = Cut("proc-2.6.16-4bus-mtt7").records.at(8);
  EXPECT_EQ(StringsOf(phone).at(1), "Linksys CIT200");
  EXPECT_THAT(InterfaceOf(phone), ElementsAre("(none)", "01", "02 ", " 1 ", "00 "));
}

TEST(CaptureOfKernel24, PartsDevicesWithoutBlankLines) {
  const auto records = Cut("proc-2.4.0-hub7-latin").records;
  EXPECT_THAT(TopologyOf(records.at(2)), ElementsAre("01 ", "02", "11", "01", "01 ", " 12", "1.5 ", " 0"));
  EXPECT_THAT(StringsOf(records.at(2)),
              ElementsAre("Microsoft", "Microsoft IntelliMouse \xC2\xAE with IntelliEye", "Not Available"));
  EXPECT_THAT(StringsOf(records.at(7)), ElementsAre("Not Available", "Not Available", "Not Available"));
  EXPECT_THAT(InterfaceOf(records.at(3)), ElementsAre("usblp", "07", "01 ", " 0 ", "01 "));
  EXPECT_EQ(records.at(0).getDeviceInfo()->getUsbHost(), 2);
}

TEST(CaptureOfManufacturerKeyword, KeepsTheWholeName) {
  const UsbDevice device = Cut("proc-manufacturer-keyword").records.at(0);
  EXPECT_THAT(StringsOf(device), ElementsAre("Manufacturer_NETGEAR", "NETGEAR WG111v3", "120B5D74A112"));
}

TEST(CaptureOfUsbDevices35, ClosesItsLastRecordWithTheText) {
  const UsbDevice last = Cut("usbdevices-3.5-8bus-mtt7").records.at(16);
  EXPECT_THAT(TopologyOf(last), ElementsAre("08 ", "00", "00", "00", "00 ", "  1", "12  ", " 2"));
  EXPECT_EQ(StringsOf(last).at(2), "0000:00:1d.2");
  EXPECT_THAT(InterfaceOf(last), ElementsAre("hub", "09", "00 ", " 0 ", "00 "));
  EXPECT_EQ(last.getConfiguration()->getPower(), "0");
}

TEST(CaptureOfUsbDevices35, HoldsTheLastInterfaceOfADeviceWithoutEndpointLines) {
  const UsbDevice modem = Cut("usbdevices-3.5-8bus-mtt7").records.at(6);
  EXPECT_THAT(StringsOf(modem),
              ElementsAre("Vodafone (ZTE)", "Vodafone Mobile Broadband K3565-Z", "Not Available"));
  EXPECT_THAT(InterfaceOf(modem), ElementsAre("usb-storage", "08", "06 ", " 5 ", "50 "));
  EXPECT_EQ(ProductOf(modem).at(2), "00.00");
}

TEST(CaptureWithNonAscii, KeepsEveryByte) {
  std::string serial;
  for (int i = 0; i < 19; ++i) serial += "\xC3\xBF";
  EXPECT_THAT(StringsOf(Cut("usbdevices-4.2-nonascii").records.at(1)),
              ElementsAre("HUA\xC3\xBFWEI TECHNOLOGIES", "HUAWEI Mobile", serial));
}

TEST(CaptureOfNestedHubs, HasNoStringsBelowTheRoot) {
  const auto records = Cut("usbdevices-rpi-nested-mtt-nostrings").records;
  EXPECT_EQ(records.at(0).getDeviceInfo()->getUsbHost(), 1);
  EXPECT_EQ(records.at(2).getDeviceInfo()->getUsbHost(), 0);
  EXPECT_THAT(StringsOf(records.at(2)), ElementsAre("Not Available", "Not Available", "Not Available"));
  EXPECT_THAT(ProductOf(records.at(2)), ElementsAre("0424", "2514", "0b.b3"));
  EXPECT_THAT(InterfaceOf(records.at(2)), ElementsAre("hub", "09", "00 ", " 0 ", "02 "));
}

TEST(CaptureOfUnauthorized, HasNoPowerAndALeftOverInterface) {
  const UsbDevice mouse = Cut("usbdevices-unauthorized-stale-if").records.at(0);
  EXPECT_EQ(mouse.getConfiguration()->getPower(), "");
  EXPECT_THAT(InterfaceOf(mouse), ElementsAre("(none)", "09", "00 ", " 0 ", "00 "));
  EXPECT_EQ(mouse.getTopology()->getSpeed(), "1.5  ");
}

TEST(CaptureEditedByHand, KeepsTheBlanksAsTheyStand) {
  const auto records = Cut("debugfs-hand-edited-spacing").records;
  EXPECT_THAT(TopologyOf(records.at(0)), ElementsAre("01 ", "00", "00", "00", "00 ", " 1", "480  ", " 1"));
  EXPECT_THAT(TopologyOf(records.at(1)), ElementsAre("02 ", "00", "00", "00", "00 ", " 1", "10000 ", " 1"));
}

TEST(CaptureOfDeepHubs, OrdersRecordsAsTheListDoes) {
  std::vector<std::string> places;
  for (const UsbDevice& record : Cut("vm-deep-hubs-debugfs").records) {
    const auto line = record.getTopology();
    places.push_back(line->getLevel() + line->getParentDevice() + line->getDeviceBusNumber());
  }
  EXPECT_THAT(places, ElementsAre("0000  1", "0101  2", "0202  4", "0304  6", "0406  7", "0507  8", "0202  5",
                                  "0101  3"));
}

TEST(CaptureOfDesktop, HoldsTheLastAudioInterfaceInBothForms) {
  const UsbDevice fromKernel = Cut("vm-desktop-debugfs").records.at(4);
  EXPECT_THAT(InterfaceOf(fromKernel), ElementsAre("snd-usb-audio", "01", "02 ", " 1 ", "00 "));
  const UsbDevice fromScript = Cut("vm-desktop-usb-devices").records.at(4);
  EXPECT_THAT(InterfaceOf(fromScript), ElementsAre("snd-usb-audio", "01", "02 ", " 1 ", "00 "));
  EXPECT_THAT(TopologyOf(fromScript), ElementsAre("01 ", "01", "05", "03", "01 ", "  3", "12  ", " 0"));
}

}  // namespace
