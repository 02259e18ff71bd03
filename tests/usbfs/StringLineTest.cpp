// The "S" lines: which words in a line set which string, and the kind of host controller behind a product.
// Several lines fill one object, which the fixture owns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/provider/ForeignLocale.h"
#include "usbfs/deviceInfo.h"

namespace {

using ::testing::ElementsAre;

const char* const kNoText = "Not Available";

/// Manufacturer, product, serial number.
std::vector<std::string> Strings(const deviceInfo& parser) {
  return {parser.getmanufacturer(), parser.getproduct(), parser.getserial()};
}

unsigned short HostOf(const std::string& line) {
  deviceInfo parser;
  parser.setUsbHost(line);
  return parser.getUsbHost();
}

class StringLine : public ::testing::Test {
 protected:
  deviceInfo parser;
};

TEST_F(StringLine, NoLineLeavesEveryStringNotAvailableAndNoHostType) {
  EXPECT_THAT(Strings(parser), ElementsAre(kNoText, kNoText, kNoText));
  EXPECT_EQ(parser.getUsbHost(), 0);
}

TEST_F(StringLine, ThreeLinesFillOneObject) {
  parser.Initialize("S:  Manufacturer=Linux 3.5.0 ehci_hcd");
  EXPECT_THAT(Strings(parser), ElementsAre("Linux 3.5.0 ehci_hcd", kNoText, kNoText));
  EXPECT_EQ(parser.getUsbHost(), 0);
  parser.Initialize("S:  Product=EHCI Host Controller");
  EXPECT_THAT(Strings(parser), ElementsAre("Linux 3.5.0 ehci_hcd", "EHCI Host Controller", kNoText));
  parser.Initialize("S:  SerialNumber=0000:00:1a.7");
  EXPECT_THAT(Strings(parser), ElementsAre("Linux 3.5.0 ehci_hcd", "EHCI Host Controller", "0000:00:1a.7"));
  EXPECT_EQ(parser.getUsbHost(), 4);
}

TEST_F(StringLine, OneLineMayFillAllThree) {
  parser.Initialize("S:  Manufacturer=a SerialNumber=b Product=c");
  EXPECT_THAT(Strings(parser), ElementsAre("a SerialNumber=b Product=c", "c", "b Product=c"));
}

TEST_F(StringLine, ALaterLineReplacesItsOwnFieldOnly) {
  parser.Initialize("S:  Product=UHCI");
  parser.Initialize("S:  SerialNumber=1");
  parser.Initialize("S:  Product=Mouse");
  EXPECT_THAT(Strings(parser), ElementsAre(kNoText, "Mouse", "1"));
  EXPECT_EQ(parser.getUsbHost(), 1);
  parser.Initialize("S:  SerialNumber=");
  EXPECT_THAT(Strings(parser), ElementsAre(kNoText, "Mouse", ""));
}

TEST_F(StringLine, TheWordsAreMatchedWithTheirCapitals) {
  parser.Initialize("S:  product=a");
  parser.Initialize("S:  PRODUCT=a");
  parser.Initialize("S:  Serialnumber=a");
  parser.Initialize("S:  serialNumber=a");
  parser.Initialize("S:  manufacturer=a");
  parser.Initialize("S:  something else");
  EXPECT_THAT(Strings(parser), ElementsAre(kNoText, kNoText, kNoText));
  EXPECT_EQ(parser.getUsbHost(), 0);
}

TEST_F(StringLine, AWordWithoutItsKeySetsTheEmptyText) {
  parser.Initialize("S:  Product");
  parser.Initialize("S:  SerialNumber :1");
  parser.Initialize("S:  Manufacturer ");
  EXPECT_THAT(Strings(parser), ElementsAre("", "", ""));
  EXPECT_EQ(parser.getUsbHost(), 1);
}

TEST_F(StringLine, AManufacturerThatNamesProductsClearsTheProduct) {
  parser.Initialize("S:  Product=EHCI Host Controller");
  parser.Initialize("S:  Manufacturer=Acme Products, maker of OHCI");
  EXPECT_THAT(Strings(parser), ElementsAre("Acme Products, maker of OHCI", "", kNoText));
  EXPECT_EQ(parser.getUsbHost(), 3);
}

TEST_F(StringLine, AProductThatNamesTheOtherWordsClearsThoseStrings) {
  parser.Initialize("S:  Manufacturer=Acme");
  parser.Initialize("S:  SerialNumber=1");
  parser.Initialize("S:  Product=Manufacturer and SerialNumber reader");
  EXPECT_THAT(Strings(parser), ElementsAre("", "Manufacturer and SerialNumber reader", ""));
}

TEST_F(StringLine, AWordOfTheRightCaseTakesTheValueOfAKeyInAnyCase) {
  parser.Initialize("S:  PRODUCT=a Product");
  EXPECT_EQ(parser.getproduct(), "a Product");
}

TEST_F(StringLine, ValuesKeepEveryByte) {
  const std::string name = std::string(" \xC3\xBF\0\x07", 5) + "\xE9 \r";
  parser.Initialize("S:  Manufacturer=" + name);
  parser.Initialize("S:  Product=" + name);
  parser.Initialize("S:  SerialNumber=" + name);
  EXPECT_THAT(Strings(parser), ElementsAre(name, name, name));
}

TEST(HostType, FollowsTheDriverNamedInTheLineInAnyCase) {
  EXPECT_EQ(HostOf("S:  Product=UHCI Host Controller"), 2);
  EXPECT_EQ(HostOf("S:  Product=OHCI Host Controller"), 3);
  EXPECT_EQ(HostOf("S:  Product=EHCI Host Controller"), 4);
  EXPECT_EQ(HostOf("uHcI-alt"), 2);
  EXPECT_EQ(HostOf("xxohcixx"), 3);
}

TEST(HostType, NoneOfTheThreeNamesIsOne) {
  EXPECT_EQ(HostOf("S:  Product=xHCI Host Controller"), 1);
  EXPECT_EQ(HostOf("S:  Product=HCI o hci"), 1);
  EXPECT_EQ(HostOf(""), 1);
}

TEST(HostType, OhciComesBeforeUhciBeforeEhci) {
  EXPECT_EQ(HostOf("ehci uhci ohci"), 3);
  EXPECT_EQ(HostOf("uhci ohci"), 3);
  EXPECT_EQ(HostOf("ehci ohci"), 3);
  EXPECT_EQ(HostOf("ehci uhci"), 2);
  EXPECT_EQ(HostOf("uhci ehci"), 2);
}

TEST(HostType, SettingItAloneLeavesTheStrings) {
  deviceInfo parser;
  parser.setUsbHost("S:  Product=EHCI SerialNumber=1 Manufacturer=2");
  EXPECT_THAT(Strings(parser), ElementsAre(kNoText, kNoText, kNoText));
}

TEST(HostType, IsFoundUnderForeignLocales) {
  const usbinfo_test::ForeignGlobalLocale foreign;
  const usbinfo_test::ForeignCLocale foreignC;
  EXPECT_EQ(HostOf("S:  Product=UHCI Host Controller"), 2);
  EXPECT_EQ(HostOf("S:  Product=uhc\xDD"), 1);
}

}  // namespace
