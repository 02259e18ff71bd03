// How lines become records: what opens and closes one, which lines it gets, and what makes it a hub.
// The cutter needs no host, so neither do these tests.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/usbfs/CutText.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using usbinfo_test::CutText;
using usbinfo_test::InterfaceLine;
using usbinfo_test::kEndpointLine;
using usbinfo_test::Lines;
using usbinfo_test::TopologyLine;

const char* const kHub = "Cls=09(hub  )";
const char* const kDisk = "Cls=08(stor.)";

std::vector<std::string> DeviceNumbers(const CutText& cut) {
  std::vector<std::string> numbers;
  for (const UsbDevice& record : cut.records) numbers.push_back(record.getTopology()->getDeviceBusNumber());
  return numbers;
}

std::vector<std::string> Products(const CutText& cut) {
  std::vector<std::string> products;
  for (const UsbDevice& record : cut.records) products.push_back(record.getDeviceInfo()->getproduct());
  return products;
}

std::vector<int> Types(const CutText& cut) {
  std::vector<int> types;
  for (const UsbDevice& record : cut.records) types.push_back(record.GetDeviceType());
  return types;
}

/// The type of a device with this one interface line.
int TypeWith(const std::string& interfaceLine) {
  return Types(CutText(Lines({TopologyLine(" 1"), interfaceLine, kEndpointLine}))).at(0);
}

TEST(RecordBuilding, EndpointLinesCloseRecordsAndBlankLinesInBetweenAreReported) {
  const CutText cut(Lines({TopologyLine(" 1"), "D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1",
                           kEndpointLine, "", TopologyLine(" 2"), kEndpointLine}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  1", "  2"));
  EXPECT_EQ(cut.records[0].getDescriptor()->getVersion(), " 200 ");
  EXPECT_EQ(cut.records[1].getDescriptor()->getVersion(), "");
  EXPECT_THAT(cut.unmatched, ElementsAre("E", "\n", "E", ""));
}

TEST(RecordBuilding, WithoutEndpointsABlankLineClosesTheRecord) {
  const CutText cut(Lines({TopologyLine(" 1"), "", TopologyLine(" 2"), "", ""}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  1", "  2"));
}

TEST(RecordBuilding, TheLastLineClosesTheRecordWhateverItsType) {
  for (const std::string last : {"S:  Product=x", "D:", "P:", "I:", "C:", "B:", "x", "E:", ""}) {
    EXPECT_THAT(DeviceNumbers(CutText(TopologyLine(" 1") + "\n" + last)), ElementsAre("  1")) << last;
  }
  EXPECT_THAT(DeviceNumbers(CutText(TopologyLine(" 1"))), ElementsAre("  1"));
}

TEST(RecordBuilding, TheLastLineIsAppliedBeforeTheRecordIsClosed) {
  EXPECT_THAT(Products(CutText(TopologyLine(" 1") + "\nS:  Product=x")), ElementsAre("x"));
  EXPECT_THAT(Types(CutText(TopologyLine(" 1") + "\n" + InterfaceLine(kHub))), ElementsAre(1));
}

TEST(RecordBuilding, WithoutTopologyLinesThereIsNoRecord) {
  const CutText cut(Lines({"S:  Product=x", InterfaceLine(kHub), kEndpointLine, "", "B:", "D:", "P:", "C:"}));
  EXPECT_THAT(cut.records, IsEmpty());
  EXPECT_THAT(cut.unmatched, ElementsAre("E", "\n", "B", ""));
}

TEST(RecordBuilding, LinesBeforeTheFirstTopologyLineCountForItsRecord) {
  const CutText cut(Lines(
      {"S:  Product=early", InterfaceLine(kHub), kEndpointLine, "", TopologyLine(" 1"), kEndpointLine}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  1"));
  EXPECT_THAT(Products(cut), ElementsAre("early"));
  EXPECT_THAT(Types(cut), ElementsAre(1));
}

TEST(RecordBuilding, OtherUnknownLinesDoNotCloseARecord) {
  const CutText cut(Lines({TopologyLine(" 1"), "B:", "x", " ", "e:", "S:  Product=x", kEndpointLine}));
  EXPECT_THAT(Products(cut), ElementsAre("x"));
  EXPECT_THAT(cut.unmatched, ElementsAre("B", "x", " ", "e", "E", ""));
}

TEST(RecordBuilding, LinesAfterTheFirstEndpointCountForTheNextRecord) {
  const CutText cut(Lines({TopologyLine(" 1"), kEndpointLine, "S:  Product=late", "C:  MxPwr=  7mA",
                           InterfaceLine(kDisk), kEndpointLine, "", TopologyLine(" 2"), kEndpointLine}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  1", "  2"));
  EXPECT_THAT(Products(cut), ElementsAre("Not Available", "late"));
  EXPECT_EQ(cut.records[0].getConfiguration()->getPower(), "");
  EXPECT_EQ(cut.records[1].getConfiguration()->getPower(), "  7");
  EXPECT_EQ(cut.records[0].getInterface()->getClass(), "");
  EXPECT_EQ(cut.records[1].getInterface()->getClass(), "08");
}

TEST(RecordBuilding, TheNextDevicesOwnLinesOverwriteWhatWasLeftOver) {
  const CutText cut(Lines({TopologyLine(" 1"), InterfaceLine(kHub), kEndpointLine, "C:  MxPwr=  7mA",
                           InterfaceLine("Cls=ff(vend.)"), kEndpointLine, "", TopologyLine(" 2"),
                           "C:  MxPwr= 98mA", InterfaceLine(kDisk), kEndpointLine}));
  ASSERT_THAT(cut.records, SizeIs(2));
  EXPECT_EQ(cut.records[0].getInterface()->getClass(), "09");
  EXPECT_EQ(cut.records[1].getInterface()->getClass(), "08");
  EXPECT_EQ(cut.records[1].getConfiguration()->getPower(), " 98");
}

TEST(RecordBuilding, OfSeveralInterfacesBeforeTheFirstEndpointTheLastRemains) {
  const CutText cut(Lines({TopologyLine(" 1"), InterfaceLine("Cls=01(audio)"), InterfaceLine(kDisk),
                           kEndpointLine, InterfaceLine("Cls=03(HID  )"), kEndpointLine}));
  ASSERT_THAT(cut.records, SizeIs(1));
  EXPECT_EQ(cut.records[0].getInterface()->getClass(), "08");
}

TEST(RecordBuilding, SecondLinesOfOneTypeReplaceTheFirst) {
  const CutText cut(
      Lines({TopologyLine(" 1"), "D:  #Cfgs=  1", "P:  Rev= 1.00", "C:  MxPwr=  1mA", TopologyLine(" 2"),
             "D:  #Cfgs=  2", "P:  Rev= 2.00", "C:  MxPwr=  2mA", kEndpointLine}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  2"));
  EXPECT_EQ(cut.records[0].getDescriptor()->getConfigs(), "  2");
  EXPECT_EQ(cut.records[0].getProduct()->getRevision(), " 2.00");
  EXPECT_EQ(cut.records[0].getConfiguration()->getPower(), "  2");
}

TEST(RecordBuilding, SeveralStringLinesAccumulate) {
  const CutText cut(Lines({TopologyLine(" 1"), "S:  Manufacturer=Acme", "S:  Product=OHCI hub",
                           "S:  SerialNumber=7", kEndpointLine}));
  EXPECT_THAT(Products(cut), ElementsAre("OHCI hub"));
  const auto strings = cut.records[0].getDeviceInfo();
  EXPECT_EQ(strings->getmanufacturer(), "Acme");
  EXPECT_EQ(strings->getserial(), "7");
  EXPECT_EQ(strings->getUsbHost(), 3);
}

TEST(RecordBuilding, EndpointAndBlankLinesOutsideARecordAppendNothing) {
  const CutText cut(
      Lines({"", kEndpointLine, TopologyLine(" 1"), kEndpointLine, kEndpointLine, "", "", kEndpointLine}));
  EXPECT_THAT(DeviceNumbers(cut), ElementsAre("  1"));
}

TEST(RecordBuilding, RecordsShareNoParsers) {
  const CutText cut(
      Lines({TopologyLine(" 1"), "S:  Product=a", "", TopologyLine(" 2"), "S:  Product=b", ""}));
  EXPECT_THAT(Products(cut), ElementsAre("a", "b"));
}

TEST(RecordBuilding, RecordsComeInTheOrderOfTheText) {
  std::string text;
  std::vector<std::string> expected;
  for (int number = 99; number > 9; --number) {
    text += Lines({TopologyLine(std::to_string(number)), kEndpointLine, ""});
    expected.push_back(" " + std::to_string(number));
  }
  EXPECT_EQ(DeviceNumbers(CutText(text)), expected);
}

TEST(HubMark, NeedsAClassOfExactlyZeroNine) {
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=09(hub  )")), 1);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=09(")), 1);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=9(hub)")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=09 (hub)")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls= 09(hub)")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=009(hub)")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=09")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("Cls=08(stor.)")), 0);
  EXPECT_EQ(TypeWith(InterfaceLine("")), 0);
}

TEST(HubMark, TheKeyIsMatchedInAnyCase) {
  EXPECT_EQ(TypeWith(InterfaceLine("CLS=09(HUB)")), 1);
  EXPECT_EQ(TypeWith(InterfaceLine("cls=09(hub)")), 1);
}

TEST(HubMark, OnlyInterfaceLinesSetIt) {
  const CutText cut(Lines({TopologyLine(" 1") + " Cls=09(hub  )", "D:  Cls=09(hub  )", "P:  Cls=09(hub  )",
                           "S:  Cls=09(hub  )", "C:  Cls=09(hub  )", "x  Cls=09(hub  )", kEndpointLine}));
  EXPECT_THAT(Types(cut), ElementsAre(0));
}

TEST(HubMark, StaysWhenAnotherInterfaceFollows) {
  EXPECT_THAT(Types(CutText(Lines({TopologyLine(" 1"), InterfaceLine(kHub), InterfaceLine(kDisk), ""}))),
              ElementsAre(1));
  EXPECT_THAT(Types(CutText(Lines({TopologyLine(" 1"), InterfaceLine(kDisk), InterfaceLine(kHub), ""}))),
              ElementsAre(1));
}

TEST(HubMark, IsNotCarriedIntoTheNextRecord) {
  EXPECT_THAT(Types(CutText(Lines({TopologyLine(" 1"), InterfaceLine(kHub), kEndpointLine, TopologyLine(" 2"),
                                   InterfaceLine(kDisk), kEndpointLine}))),
              ElementsAre(1, 0));
}

TEST(HubMark, OfASecondSettingGoesToTheNextDevice) {
  const CutText cut(Lines({TopologyLine(" 1"), InterfaceLine(kHub), kEndpointLine, InterfaceLine(kHub),
                           kEndpointLine, "", TopologyLine(" 2"), InterfaceLine(kDisk), kEndpointLine, "",
                           TopologyLine(" 3"), InterfaceLine(kDisk), kEndpointLine}));
  EXPECT_THAT(Types(cut), ElementsAre(1, 1, 0));
  EXPECT_EQ(cut.records[1].getInterface()->getClass(), "08");
}

TEST(HubMark, OfASecondSettingWithoutANextDeviceIsLost) {
  EXPECT_THAT(Types(CutText(Lines({TopologyLine(" 1"), InterfaceLine(kDisk), kEndpointLine,
                                   InterfaceLine(kHub), kEndpointLine}))),
              ElementsAre(0));
}

}  // namespace
