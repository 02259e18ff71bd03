// The MOF document: declarations, the form of every kind of value, and that no text leaves its quotes.
#include <gmock/gmock.h>

#include <limits>
#include <string>

#include "cli/format/MofFormat.h"
#include "cli/format/RenderOptions.h"
#include "tests/cli/support/CliTest.h"

using cli::Inventory;
using NKESTA20::TCIMValue;
using ::testing::HasSubstr;
using ::testing::StartsWith;

namespace usbinfo_test {
namespace {

class MofFormatTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderMof(Collected(), {}); }
  /// What follows the declarations.
  std::string Instances() const { return Render().substr(cli::RenderMofSchema().size()); }
};

TEST_F(MofFormatTest, PrintsTheDeclarationsForAnEmptyInventory) {
  EXPECT_EQ(Render(), cli::RenderMofSchema());
}

TEST_F(MofFormatTest, DeclaresQualifiersThenTheKeysThatAllEntitiesShare) {
  EXPECT_THAT(
      Render(),
      StartsWith(
          "Qualifier Abstract : boolean = false, Scope(class, association, indication), Flavor(Restricted);\n"
          "Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride);\n"
          "Qualifier Key : boolean = false, Scope(property, reference), Flavor(DisableOverride);\n"
          "\n"
          "[Abstract]\n"
          "class KALDO_USBElement {\n"
          "  [Key] string CreationClassName;\n"
          "  [Key] string DeviceID;\n"
          "  [Key] string SystemCreationClassName;\n"
          "  [Key] string SystemName;\n"
          "};\n"
          "\n"
          "class KALDO_USBController : KALDO_USBElement {\n"
          "  string Description;\n"
          "  uint16 InterfaceType;\n"
          "};\n"));
}

TEST_F(MofFormatTest, DeclaresTypesArraysAndReferences) {
  EXPECT_THAT(Render(), HasSubstr("class KALDO_USBPort : KALDO_USBElement {\n"
                                  "  uint16 HubDepth;\n"
                                  "  string HubName;\n"
                                  "  string Name;\n"
                                  "  string PortNumber;\n"
                                  "  uint64 Speed;\n"
                                  "  string StatusDescriptions[];\n"
                                  "};\n"));
  EXPECT_THAT(Render(), HasSubstr("[Association]\n"
                                  "class KALDO_USBPortOnHub {\n"
                                  "  [Key] KALDO_USBHub REF Antecedent;\n"
                                  "  [Key] KALDO_USBPort REF Dependent;\n"
                                  "};\n"
                                  "\n"
                                  "[Association]\n"
                                  "class KALDO_USBConnection {\n"
                                  "  [Key] KALDO_USBPort REF Antecedent;\n"
                                  "  [Key] KALDO_USBElement REF Dependent;\n"
                                  "};\n"));
}

TEST_F(MofFormatTest, PrintsPropertiesByNameWithTheirTypes) {
  AddPort("a Port 00", std::numeric_limits<unsigned long>::max(), "No device connected");
  EXPECT_EQ(Instances(), R"(
instance of KALDO_USBPort {
  CreationClassName = "KALDO_USBPort";
  DeviceID = "a Port 00";
  Speed = 18446744073709551615;
  StatusDescriptions = {"No device connected"};
  SystemCreationClassName = "KALDO_ComputerSystem";
  SystemName = "testhost";
};
)");
}

TEST_F(MofFormatTest, PrintsReferencesAsQuotedPathsWithTheNamespace) {
  Path port = AddPort("p\"1", 1, "x");
  Path device = AddDevice("d\\1", "", 1);
  Associate("KALDO_USBConnection", port, device);
  EXPECT_THAT(Instances(),
              HasSubstr(R"(
instance of KALDO_USBConnection {
  Antecedent = "/root/cimv2:KALDO_USBPort.CreationClassName=\"KALDO_USBPort\",DeviceID=\"p\\\"1\",)"
                        R"(SystemCreationClassName=\"KALDO_ComputerSystem\",SystemName=\"testhost\"";
  Dependent = "/root/cimv2:KALDO_USBDevice.CreationClassName=\"KALDO_USBDevice\",DeviceID=\"d\\\\1\",)"
                        R"(SystemCreationClassName=\"KALDO_ComputerSystem\",SystemName=\"testhost\"";
};
)"));
}

TEST_F(MofFormatTest, EscapesWhatWouldLeaveAStringOrReachATerminal) {
  AddDevice("device", "\";\n};\tq\\\x01\x1B\x7F\xC2\x9B\xE2\x80\xAE\xF3\xA0\x81\x81\xC3\xA9\xFF", 1);
  EXPECT_THAT(
      Instances(),
      HasSubstr("  Description = \"\\\";\\n};\\tq\\\\\\x0001\\x001b\\x007f\\x009b\\x202e\\xdb40\\xdc41"
                "\xC3\xA9\xEF\xBF\xBD\";\n"));
}

TEST_F(MofFormatTest, LeavesOutWhatAnInstanceLacks) {
  CommitEntity("KALDO_USBDevice", "bare");
  EXPECT_EQ(Lines(Instances()).size(), 7U);
  EXPECT_THAT(Instances(), ::testing::Not(HasSubstr("NULL")));
}

}  // namespace
}  // namespace usbinfo_test
