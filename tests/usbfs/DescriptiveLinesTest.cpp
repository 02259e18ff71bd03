// The "D", "P" and "C" lines: exact values with their blanks, and what a missing field takes along.
// Fields of a line are compared all at once, so that none changes unseen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "usbfs/configuration.h"
#include "usbfs/descriptor.h"
#include "usbfs/product.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// Version, class, subclass, protocol, configurations.
std::vector<std::string> Fields(const descriptor& parser) {
  return {parser.getVersion(), parser.getClasscode(), parser.getSubClasscode(), parser.getProtocol(),
          parser.getConfigs()};
}

/// Vendor, product, revision.
std::vector<std::string> Fields(const product& parser) {
  return {parser.getVendor(), parser.getProduct(), parser.getRevision()};
}

template <typename Parser>
std::vector<std::string> FieldsOf(const std::string& line) {
  Parser parser;
  parser.Initialize(line);
  return Fields(parser);
}

std::string PowerOf(const std::string& line) {
  configuration parser;
  parser.Initialize(line);
  return parser.getPower();
}

TEST(Descriptor, IsEmptyWhenBuilt) {
  EXPECT_THAT(Fields(descriptor()), Each(""));
}

TEST(Descriptor, VersionLosesItsPointAndAllValuesKeepTheirBlanks) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1"),
              ElementsAre(" 200 ", "09(hub  ) ", "00 ", "01 ", "  1"));
}

TEST(Descriptor, EachGetterReadsItsOwnField) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver=11.00 Cls=ef(misc ) Sub=02 Prot=03 MxPS= 9 #Cfgs= 12"),
              ElementsAre("1100 ", "ef(misc ) ", "02 ", "03 ", " 12"));
}

TEST(Descriptor, WithoutThePacketSizeTheProtocolIsEmpty) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 #Cfgs=  1"),
              ElementsAre(" 200 ", "09(hub  ) ", "00 ", "", "  1"));
}

TEST(Descriptor, WithoutAClassTheVersionIsEmptyToo) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Sub=00 Prot=01 MxPS=64 #Cfgs=  1"),
              ElementsAre("", "", "00 ", "01 ", "  1"));
}

TEST(Descriptor, WithoutASubclassTheClassIsEmptyToo) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Cls=09(hub  ) Prot=01 MxPS=64 #Cfgs=  1"),
              ElementsAre(" 200 ", "", "", "01 ", "  1"));
}

TEST(Descriptor, WithoutAProtocolTheSubclassIsEmptyToo) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Cls=09(hub  ) Sub=00 MxPS=64 #Cfgs=  1"),
              ElementsAre(" 200 ", "09(hub  ) ", "", "", "  1"));
}

TEST(Descriptor, WithoutConfigurationsOnlyTheirNumberIsEmpty) {
  EXPECT_THAT(FieldsOf<descriptor>("D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 Cfgs=  1"),
              ElementsAre(" 200 ", "09(hub  ) ", "00 ", "01 ", ""));
}

TEST(Descriptor, VersionMayHoldAnythingBeforeTheClass) {
  EXPECT_EQ(FieldsOf<descriptor>("D:  Ver=-v.2\xC3.x.Cls=")[0], "-v2\xC3x");
}

TEST(Descriptor, VersionEndsAtANulByte) {
  EXPECT_EQ(FieldsOf<descriptor>(std::string("D:  Ver= 2.\0", 12) + "00 Cls=00")[0], " 2");
}

TEST(Descriptor, ASecondLineReplacesEveryField) {
  descriptor parser;
  parser.Initialize("D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1");
  parser.Initialize("D:  #Cfgs=  2");
  EXPECT_THAT(Fields(parser), ElementsAre("", "", "", "", "  2"));
  parser.Initialize("D:");
  EXPECT_THAT(Fields(parser), Each(""));
}

TEST(Product, IsEmptyWhenBuilt) {
  EXPECT_THAT(Fields(product()), Each(""));
}

TEST(Product, IdentifiersEndAtTheirBlankAndTheRevisionKeepsIts) {
  EXPECT_THAT(FieldsOf<product>("P:  Vendor=12ab ProdID=0002 Rev= 2.06"),
              ElementsAre("12ab", "0002", " 2.06"));
}

TEST(Product, ValuesKeepTheirCaseAndBlanks) {
  EXPECT_THAT(FieldsOf<product>("P:  Vendor= 12AB  ProdID= 0F  Rev=c5.BD "),
              ElementsAre(" 12AB ", " 0F ", "c5.BD "));
}

TEST(Product, WithoutAProductTheVendorIsEmptyToo) {
  EXPECT_THAT(FieldsOf<product>("P:  Vendor=12ab Rev= 2.06"), ElementsAre("", "", " 2.06"));
}

TEST(Product, WithoutARevisionTheProductIsEmptyToo) {
  EXPECT_THAT(FieldsOf<product>("P:  Vendor=12ab ProdID=0002"), ElementsAre("12ab", "", ""));
}

TEST(Product, WithoutTheBlanksBetweenThemBothIdentifiersAreEmpty) {
  EXPECT_THAT(FieldsOf<product>("P:  Vendor=12abProdID=0002Rev= 2.06"), ElementsAre("", "", " 2.06"));
}

TEST(Product, ASecondLineReplacesEveryField) {
  product parser;
  parser.Initialize("P:  Vendor=12ab ProdID=0002 Rev= 2.06");
  parser.Initialize("P:  Vendor=1d6b ProdID=");
  EXPECT_THAT(Fields(parser), ElementsAre("1d6b", "", ""));
}

TEST(Configuration, IsEmptyWhenBuilt) {
  EXPECT_EQ(configuration().getPower(), "");
}

TEST(Configuration, PowerIsTheNumberWithoutItsUnit) {
  EXPECT_EQ(PowerOf("C:* #Ifs= 1 Cfg#= 1 Atr=e0 MxPwr=100mA"), "100");
  EXPECT_EQ(PowerOf("C:* #Ifs= 1 Cfg#= 1 Atr=e0 MxPwr=  0mA"), "  0");
  EXPECT_EQ(PowerOf("C:  MxPwr= 98 MA"), " 98 ");
}

TEST(Configuration, WithoutTheUnitPowerIsEmpty) {
  EXPECT_EQ(PowerOf("C:* #Ifs= 1 Cfg#= 1 Atr=e0 MxPwr=100"), "");
  EXPECT_EQ(PowerOf("C:  #Ifs= 0 Cfg#= 0 Atr= MxPwr="), "");
}

TEST(Configuration, WithoutTheKeyPowerIsEmpty) {
  EXPECT_EQ(PowerOf("C:* #Ifs= 1 Cfg#= 1 Atr=e0 100mA"), "");
}

TEST(Configuration, ASecondLineReplacesThePower) {
  configuration parser;
  parser.Initialize("C:* #Ifs= 1 Cfg#= 1 Atr=e0 MxPwr=100mA");
  parser.Initialize("C:  #Ifs= 2 Cfg#= 2 Atr=60 MxPwr=  2mA");
  EXPECT_EQ(parser.getPower(), "  2");
  parser.Initialize("C:");
  EXPECT_EQ(parser.getPower(), "");
}

}  // namespace
