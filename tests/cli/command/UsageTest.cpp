// What the command takes and what it refuses: each wrong use is one line on standard error and exit status 2,
// and nothing is printed.
#include <gmock/gmock.h>

#include <ostream>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using testing::HasSubstr;

namespace usbinfo_test {
namespace {

constexpr const char* kWrongIds = "-d: must be VID:[PID], hexadecimal numbers of up to four digits";
constexpr const char* kWrongPlace = "-s: must be [BUS]:[DEV] or DEV, decimal numbers";
#define USBINFO_TEST_CLASSES                                                            \
  "{KALDO_USBController,KALDO_USBHub,KALDO_USBPort,KALDO_USBDevice,KALDO_USBPortOnHub," \
  "KALDO_USBConnection}"

struct WrongUse {
  const char* name;
  std::vector<std::string> arguments;
  const char* message;
};

std::ostream& operator<<(std::ostream& out, const WrongUse& use) {
  return out << use.name;
}

const WrongUse kWrongUses[] = {
    {"UnknownOption", {"--bogus"}, "The following argument was not expected: --bogus"},
    {"UnknownShortOption", {"-x"}, "The following argument was not expected: -x"},
    {"UnknownSubcommand", {"extra"}, "The following argument was not expected: extra"},
    {"UnknownOptionOfShow", {"show", "--bogus"}, "The following argument was not expected: --bogus"},
    {"OperandOfShow", {"show", "extra"}, "The following argument was not expected: extra"},
    {"AbbreviatedOption", {"--form=json"}, "The following argument was not expected: --form=json"},
    {"NoDevices", {"--devices"}, "--devices: 1 required FILE missing"},
    {"NoFormat", {"--format"}, "--format: 1 required FORMAT missing"},
    {"NoRequest", {"--request"}, "--request: 1 required A,B,... missing"},
    {"NoSystemName", {"--system-name"}, "--system-name: 1 required NAME missing"},
    {"NoOutput", {"--output"}, "--output: 1 required FILE missing"},
    {"NoPlugin", {"--plugin"}, "--plugin: 1 required FILE missing"},
    {"NoLog", {"--log"}, "--log: 1 required FILE missing"},
    {"NoLogLevel", {"--log-level"}, "--log-level: 1 required LEVEL missing"},
    {"NoLogFormat", {"--log-format"}, "--log-format: 1 required FORMAT missing"},
    {"EmptyDevices", {"--devices", ""}, "--devices: must not be empty"},
    {"EmptySystemName", {"--system-name", ""}, "--system-name: must not be empty"},
    {"EmptyOutput", {"--output", ""}, "--output: must not be empty"},
    {"EmptyPlugin", {"--plugin", ""}, "--plugin: must not be empty"},
    {"EmptyLog", {"--log", ""}, "--log: must not be empty"},
    {"EmptyFormat", {"--format", ""}, "--format:  not in {tree,table,json,jsonl,cimxml,mof,dot,html}"},
    {"EmptyRequest", {"--request", ""}, "--request: needs class names separated by commas"},
    {"RequestBeginsWithComma", {"--request", ",A"}, "--request: needs class names separated by commas"},
    {"RequestEndsWithComma", {"--request", "A,"}, "--request: needs class names separated by commas"},
    {"RequestWithEmptyName", {"--request", "A,,B"}, "--request: needs class names separated by commas"},
    {"WrongFormat",
     {"--format", "yaml"},
     "--format: yaml not in {tree,table,json,jsonl,cimxml,mof,dot,html}"},
    {"FormatInCapitals",
     {"--format", "JSON"},
     "--format: JSON not in {tree,table,json,jsonl,cimxml,mof,dot,html}"},
    {"WrongFormatOfShow",
     {"show", "--format", "yaml"},
     "--format: yaml not in {tree,table,json,jsonl,cimxml,mof,dot,html}"},
    {"WrongLogLevel",
     {"--log-level", "loud"},
     "--log-level: loud not in {error,warning,status,debug,verbose}"},
    {"NumberAsLogLevel", {"--log-level", "3"}, "--log-level: 3 not in {error,warning,status,debug,verbose}"},
    {"WrongLogFormat", {"--log-format", "xml"}, "--log-format: xml not in {text,json}"},
    {"TreeAndJson", {"-t", "-j"}, "the formats tree and json contradict each other: ask for one of them"},
    {"JsonAndFormatTree",
     {"-j", "--format", "tree"},
     "the formats tree and json contradict each other: ask for one of them"},
    {"TreeAndTable",
     {"--format", "table", "-t"},
     "the formats table and tree contradict each other: ask for one of them"},
    {"DetailsOfJson", {"-v", "-j"}, "-v is for the tree: leave it out, or use --format tree"},
    {"DetailsOfTheTable",
     {"--verbose", "--format", "table"},
     "-v is for the tree: leave it out, or use --format tree"},
    {"ColumnsOfTheTree",
     {"--columns", "Name"},
     "--columns is for the table: leave it out, or use --format table"},
    {"ColumnsOfJson",
     {"--columns", "Name", "-j"},
     "--columns is for the table: leave it out, or use --format table"},
    {"UnknownColumn",
     {"--format", "table", "--columns", "Name,Colour"},
     "--columns: Colour not in "
     "{Antecedent,ClassCode,CreationClassName,Dependent,Description,DeviceID,HubDepth,HubName,InterfaceType,"
     "Manufacturer,Name,NumberOfConfigs,NumberOfPorts,PortNumber,ProtocolCode,SerialNumber,Speed,"
     "StatusDescriptions,SubclassCode,SystemCreationClassName,SystemName,USBDeviceID,USBVersion,VendorID}"},
    {"NoColumns", {"--columns"}, "--columns: 1 required A,B,... missing"},
    {"EmptyColumns", {"--columns", ""}, "--columns: needs property names separated by commas"},
    {"ColumnsWithEmptyName",
     {"--columns", "Name,,Speed"},
     "--columns: needs property names separated by commas"},
    {"WrongColor", {"--color", "green"}, "--color: green not in {auto,always,never}"},
    {"NoColor", {"--color"}, "--color: 1 required WHEN missing"},
    {"DevicesTwice", {"--devices", "a", "--devices", "b"}, "--devices: At Most 1 required but received 2"},
    {"OutputTwice", {"--output", "a", "--output", "b"}, "--output: At Most 1 required but received 2"},
    {"IdsTwice", {"-d", "1:", "-d", "2:"}, "-d: At Most 1 required but received 2"},
    {"NoIds", {"-d"}, "-d: 1 required VID:[PID] missing"},
    {"EmptyIds", {"-d", ""}, kWrongIds},
    {"IdsWithoutColon", {"-d", "1d6b"}, kWrongIds},
    {"IdsWithoutVendor", {"-d", ":0002"}, kWrongIds},
    {"IdsOfColonAlone", {"-d", ":"}, kWrongIds},
    {"LongVendor", {"-d", "01d6b:"}, kWrongIds},
    {"LongProduct", {"-d", "1d6b:00002"}, kWrongIds},
    {"VendorThatIsNoNumber", {"-d", "1d6g:"}, kWrongIds},
    {"VendorOfAPrefixAlone", {"-d", "0x:"}, kWrongIds},
    {"VendorWithSign", {"-d", "-1:"}, kWrongIds},
    {"VendorWithBlank", {"-d", " 1:"}, kWrongIds},
    {"ThreeIds", {"-d", "1:2:3"}, kWrongIds},
    {"PlaceTwice", {"-s", "1", "-s", "2"}, "-s: At Most 1 required but received 2"},
    {"NoPlace", {"-s"}, "-s: 1 required [BUS]:[DEV] missing"},
    {"EmptyPlace", {"-s", ""}, kWrongPlace},
    {"BusThatIsNoNumber", {"-s", "a:"}, kWrongPlace},
    {"DeviceThatIsNoNumber", {"-s", ":a"}, kWrongPlace},
    {"DeviceWithFraction", {"-s", "1.5"}, kWrongPlace},
    {"DeviceWithSign", {"-s", "-1"}, kWrongPlace},
    {"BusWithPlus", {"-s", "+1:"}, kWrongPlace},
    {"DeviceWithBlank", {"-s", "1 "}, kWrongPlace},
    {"DeviceTooBig", {"-s", "4294967296"}, kWrongPlace},
    {"ThreePlaces", {"-s", "1:2:3"}, kWrongPlace},
    {"NoClass", {"--class"}, "--class: 1 required NAME missing"},
    {"UnknownClass", {"--class", "KALDO_USB"}, "--class: KALDO_USB not in " USBINFO_TEST_CLASSES},
    {"ClassInSmallLetters",
     {"--class", "kaldo_usbhub"},
     "--class: kaldo_usbhub not in " USBINFO_TEST_CLASSES},
    {"EmptyClass", {"--class", ""}, "--class:  not in " USBINFO_TEST_CLASSES},
    {"UnknownClassBehindAKnownOne",
     {"--class", "KALDO_USBHub", "--class", "x"},
     "--class: x not in " USBINFO_TEST_CLASSES},
    {"TwoClassesBehindOneOption",
     {"--class", "KALDO_USBHub", "KALDO_USBPort"},
     "The following argument was not expected: KALDO_USBPort"},
    {"KeyWithoutMask", {"--mask-key", "key"}, "--mask-key requires --mask-serials"},
    {"NoKey", {"--mask-serials", "--mask-key"}, "--mask-key: 1 required FILE missing"},
    {"EmptyKeyName", {"--mask-serials", "--mask-key", ""}, "--mask-key: must not be empty"},
    {"ShowTwice", {"show", "show"}, "The following argument was not expected: show"},
};

class UsageTest : public testing::TestWithParam<WrongUse> {};

TEST_P(UsageTest, IsRefusedInOneLine) {
  const CommandResult result = RunUsbinfo(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, std::string("usbinfo: ") + GetParam().message + "; see usbinfo --help\n");
}

INSTANTIATE_TEST_SUITE_P(WrongUses, UsageTest, testing::ValuesIn(kWrongUses),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Usage, RefusesAWrongOptionBeforeItTouchesAFile) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  EXPECT_EQ(RunUsbinfo({"--output", path, "--log", folder.File("log"), "--bogus"}).status, 2);
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), testing::ElementsAre("out"));
}

TEST(Usage, HasShortFormsOfFormats) {
  const std::vector<std::string> list = {"--devices", CapturePath("vm-desktop-debugfs")};
  const auto run = [&list](std::vector<std::string> options) {
    options.insert(options.begin(), list.begin(), list.end());
    return RunUsbinfo(options).output;
  };
  EXPECT_EQ(run({"-t"}), run({"--format", "tree"}));
  EXPECT_EQ(run({"-j"}), run({"--format", "json"}));
  EXPECT_EQ(run({"show", "-j", "--format", "json", "-j"}), run({"--format", "json"}));
}

TEST(Usage, PrintsTheVersion) {
  for (const char* option : {"-V", "--version"}) {
    const CommandResult result = RunUsbinfo({option});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "usbinfo " USBINFO_VERSION "\n");
    EXPECT_EQ(result.errors, "");
  }
}

TEST(Usage, PrintsHelpThatNamesEveryOptionWithinEightyColumns) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"-h"}, {"--help"}, {"show", "-h"}, {"show", "--help"}}) {
    const CommandResult result = RunUsbinfo(arguments);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    for (const char* option : {"-h",       "--devices", "--format",    "--request",      "--system-name",
                               "-d ",      "-s ",       "--class",     "--mask-serials", "--mask-key",
                               "--output", "--plugin",  "--log ",      "--log-level",    "--log-format",
                               "tree",     "json",      "jsonl",       "cimxml",         "mof",
                               "dot",      "html",      "table",       "--columns",      "--color",
                               "-t ",      "-j ",       "-v,--verbose"}) {
      EXPECT_THAT(result.output, HasSubstr(option));
    }
    for (const std::string& line : Lines(result.output)) EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST(Usage, PrintsHelpThatNamesTheSubcommandAndTheVersionOption) {
  const CommandResult result = RunUsbinfo({"--help"});
  EXPECT_THAT(result.output, HasSubstr("  show "));
  EXPECT_THAT(result.output, HasSubstr("-V,--version"));
}

}  // namespace
}  // namespace usbinfo_test
