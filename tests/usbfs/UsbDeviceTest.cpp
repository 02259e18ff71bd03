// The device record: each line goes to its own parser, and copies share all of them but not the device type.
// The parsers live exactly as long as the last copy.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <boost/weak_ptr.hpp>
#include <string>
#include <vector>

#include "usbfs/UsbDevice.h"

namespace {

using ::testing::ElementsAre;

const char* const kNone = "Not Available";

/// One field of each parser.
std::vector<std::string> Fields(const UsbDevice& device) {
  return {device.getTopology()->getConnections(), device.getDescriptor()->getConfigs(),
          device.getInterface()->getDriver(),     device.getDeviceInfo()->getproduct(),
          device.getProduct()->getRevision(),     device.getConfiguration()->getPower()};
}

/// A line that every parser finds a field in.
const char* const kLine = "MxPwr=1mA MxCh=2 #Cfgs=3 Driver=4 Product=5 Rev=6";

TEST(UsbDeviceRecord, IsAnOrdinaryDeviceWithEmptyFieldsWhenBuilt) {
  const UsbDevice device;
  EXPECT_EQ(device.GetDeviceType(), 0);
  const auto line = device.getTopology();
  EXPECT_EQ(line->getBus() + line->getLevel() + line->getParentDevice() + line->getPort(), "");
  EXPECT_EQ(line->getDeviceLevelNum() + line->getDeviceBusNumber() + line->getSpeed(), "");
  EXPECT_EQ(device.getDeviceInfo()->getmanufacturer(), kNone);
  EXPECT_EQ(device.getDeviceInfo()->getserial(), kNone);
  EXPECT_THAT(Fields(device), ElementsAre("", "", "", kNone, "", ""));
}

TEST(UsbDeviceRecord, EachSetterReachesItsOwnParserOnly) {
  UsbDevice device;
  device.setTopology(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("2 #Cfgs=3 Driver=4 Product=5 Rev=6", "", "", kNone, "", ""));
  device.setTopology("");
  device.setDescriptor(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("", "3 Driver=4 Product=5 Rev=6", "", kNone, "", ""));
  device.setDescriptor("");
  device.setInterface(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("", "", "4 Product=5 Rev=6", kNone, "", ""));
  device.setInterface("");
  device.setProduct(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("", "", "", kNone, "6", ""));
  device.setProduct("");
  device.setConfiguration(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("", "", "", kNone, "", "1"));
  device.setConfiguration("");
  device.setDeviceInfo(kLine);
  EXPECT_THAT(Fields(device), ElementsAre("", "", "", "5 Rev=6", "", ""));
}

TEST(UsbDeviceRecord, LinesAppliedToACopyShowInTheOriginal) {
  const UsbDevice original;
  UsbDevice copy = original;
  copy.setTopology("MxCh=2");
  copy.setDescriptor("#Cfgs=3");
  copy.setInterface("Driver=4");
  copy.setDeviceInfo("Product=5");
  copy.setProduct("Rev=6");
  copy.setConfiguration("MxPwr=1mA");
  EXPECT_THAT(Fields(original), ElementsAre("2", "3", "4", "5", "6", "1"));
}

TEST(UsbDeviceRecord, LinesAppliedToTheOriginalShowInCopies) {
  UsbDevice original;
  const UsbDevice copy = original;
  UsbDevice assigned;
  assigned = copy;
  original.setInterface("Driver=hub");
  EXPECT_EQ(copy.getInterface()->getDriver(), "hub");
  EXPECT_EQ(assigned.getInterface()->getDriver(), "hub");
}

TEST(UsbDeviceRecord, CopiesHandOutTheSameParsers) {
  const UsbDevice original;
  const UsbDevice copy = original;
  EXPECT_EQ(copy.getTopology(), original.getTopology());
  EXPECT_EQ(copy.getDescriptor(), original.getDescriptor());
  EXPECT_EQ(copy.getInterface(), original.getInterface());
  EXPECT_EQ(copy.getDeviceInfo(), original.getDeviceInfo());
  EXPECT_EQ(copy.getProduct(), original.getProduct());
  EXPECT_EQ(copy.getConfiguration(), original.getConfiguration());
}

TEST(UsbDeviceRecord, TheDeviceTypeIsEachCopysOwn) {
  UsbDevice original;
  original.SetDeviceType(1);
  UsbDevice copy = original;
  EXPECT_EQ(copy.GetDeviceType(), 1);
  copy.SetDeviceType(0);
  EXPECT_EQ(original.GetDeviceType(), 1);
  EXPECT_EQ(copy.GetDeviceType(), 0);
}

TEST(UsbDeviceRecord, RecordsBuiltApartShareNothing) {
  UsbDevice one;
  const UsbDevice other;
  one.setTopology("MxCh=2");
  one.setDeviceInfo("Product=5");
  EXPECT_THAT(Fields(other), ElementsAre("", "", "", kNone, "", ""));
}

TEST(UsbDeviceRecord, ParsersOutliveAllCopiesButTheLast) {
  UsbDevice last;
  {
    UsbDevice original;
    original.setTopology("MxCh=2");
    last = original;
  }
  EXPECT_EQ(last.getTopology()->getConnections(), "2");
}

TEST(UsbDeviceRecord, ParsersGoWithTheLastCopy) {
  boost::weak_ptr<topology> watched;
  {
    const UsbDevice original;
    const UsbDevice copy = original;
    watched = copy.getTopology();
    EXPECT_FALSE(watched.expired());
  }
  EXPECT_TRUE(watched.expired());
}

TEST(UsbDeviceRecord, OfTwoInterfaceLinesOnlyTheSecondRemains) {
  UsbDevice device;
  device.setInterface("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=01 Prot=02 Driver=hub");
  device.setInterface("I:  If#= 1 Alt= 0 #EPs= 1 Cls=08(stor.)");
  const auto line = device.getInterface();
  EXPECT_EQ(line->getInterface(), " 1 ");
  EXPECT_EQ(line->getClass(), "08");
  EXPECT_EQ(line->getSubClass() + line->getProtocol() + line->getDriver(), "");
}

TEST(UsbDeviceRecord, AHubsInterfaceLineDoesNotSetTheTypeByItself) {
  UsbDevice device;
  device.setInterface("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=01 Prot=02 Driver=hub");
  EXPECT_EQ(device.GetDeviceType(), 0);
}

}  // namespace
