// The "I" line: exact values with their blanks, and what a missing field takes along.
// Fields are compared all at once, so that none changes unseen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "usbfs/Interface.h"

namespace {

using ::testing::Each;
using ::testing::ElementsAre;

/// Driver, class, subclass, number, protocol.
std::vector<std::string> Fields(const Interface& parser) {
  return {parser.getDriver(), parser.getClass(), parser.getSubClass(), parser.getInterface(),
          parser.getProtocol()};
}

std::vector<std::string> FieldsOf(const std::string& line) {
  Interface parser;
  parser.Initialize(line);
  return Fields(parser);
}

TEST(InterfaceLine, IsEmptyWhenBuilt) {
  EXPECT_THAT(Fields(Interface()), Each(""));
}

TEST(InterfaceLine, ClassLosesItsNameAndTheOthersKeepTheirBlanks) {
  EXPECT_THAT(FieldsOf("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub"),
              ElementsAre("hub", "09", "00 ", " 0 ", "00 "));
}

TEST(InterfaceLine, EachGetterReadsItsOwnField) {
  EXPECT_THAT(FieldsOf("I:  If#=12 Alt= 3 #EPs= 4 Cls=08(stor.) Sub=06 Prot=50 Driver=usb-storage"),
              ElementsAre("usb-storage", "08", "06 ", "12 ", "50 "));
}

TEST(InterfaceLine, AnUnboundInterfacesDriverKeepsItsParentheses) {
  EXPECT_THAT(FieldsOf("I:  If#= 0 Alt= 0 #EPs= 1 Cls=ff(vend.) Sub=00 Prot=00 Driver=(none)"),
              ElementsAre("(none)", "ff", "00 ", " 0 ", "00 "));
}

TEST(InterfaceLine, WithoutAParenthesisTheClassIsEmpty) {
  EXPECT_THAT(FieldsOf("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09 Sub=00 Prot=00 Driver=hub"),
              ElementsAre("hub", "", "00 ", " 0 ", "00 "));
}

TEST(InterfaceLine, TheClassReachesToTheFirstParenthesisAfterIt) {
  EXPECT_EQ(FieldsOf("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09 Sub=00 Prot=00 Driver=(none)")[1],
            "09 Sub=00 Prot=00 Driver=");
}

TEST(InterfaceLine, WithoutADriverTheProtocolIsEmptyToo) {
  EXPECT_THAT(FieldsOf("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00"),
              ElementsAre("", "09", "00 ", " 0 ", ""));
}

TEST(InterfaceLine, WithoutAnAlternateSettingTheNumberIsEmpty) {
  EXPECT_THAT(FieldsOf("I:* If#= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub"),
              ElementsAre("hub", "09", "00 ", "", "00 "));
}

TEST(InterfaceLine, WithoutAProtocolTheSubclassIsEmptyToo) {
  EXPECT_THAT(FieldsOf("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Driver=hub"),
              ElementsAre("hub", "09", "", " 0 ", ""));
}

TEST(InterfaceLine, ASecondLineReplacesEveryField) {
  Interface parser;
  parser.Initialize("I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub");
  parser.Initialize("I:  If#= 1 Alt= 0");
  EXPECT_THAT(Fields(parser), ElementsAre("", "", "", " 1 ", ""));
  parser.Initialize("");
  EXPECT_THAT(Fields(parser), Each(""));
}

}  // namespace
