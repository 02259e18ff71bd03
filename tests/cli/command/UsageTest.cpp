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

constexpr const char* kWrongIds = "-d: must be [VID]:[PID], hexadecimal numbers of up to four digits";
constexpr const char* kWrongPlace =
    "-s: must be [BUS]:[DEV] or DEV, decimal numbers, or a name such as 1-3.1";
#define USBINFO_TEST_CLASSES " is not one of controller, hub, port, device, portonhub, connection"

struct WrongUse {
  const char* name;
  std::vector<std::string> arguments;
  const char* message;
};

std::ostream& operator<<(std::ostream& out, const WrongUse& use) {
  return out << use.name;
}

const WrongUse kWrongUses[] = {
    {"UnknownOption", {"--bogus"}, "unknown option --bogus"},
    {"UnknownShortOption", {"-x"}, "unknown option -x"},
    {"UnknownSubcommand", {"extra"}, "unexpected argument extra (did you mean --devices extra?)"},
    {"UnknownOptionOfShow", {"show", "--bogus"}, "unknown option --bogus"},
    {"OperandOfShow", {"show", "extra"}, "unexpected argument extra (did you mean --devices extra?)"},
    {"AbbreviatedOption", {"--form=json"}, "unknown option --form (did you mean --format?)"},
    {"SeveralUnknownOptionsInTheirOrder",
     {"--zebra", "--devcies=a", "-x", "--apple"},
     "unknown option --zebra, unknown option --devcies (did you mean --devices?), unknown option -x, "
     "unknown option --apple"},
    {"UnknownOptionWithAValue",
     {"--colour", "never", "--bogus"},
     "unknown option --colour (did you mean --color?), unknown option --bogus"},
    {"MistypedSubcommand", {"shcema"}, "unexpected argument shcema (did you mean schema?)"},
    {"File", {"list.txt"}, "unexpected argument list.txt (did you mean --devices list.txt?)"},
    {"EmptyArgument", {""}, "unexpected argument  (did you mean --devices ?)"},
    {"SwitchWithAValue", {"--mask-serials=no"}, "--mask-serials takes no value"},
    {"EmptyValueAfterAnEqualsSign", {"--output=", "list"}, "--output: must not be empty"},
    {"EmptyValueAfterAnEqualsSignAtTheEnd", {"--output="}, "--output requires a value: FILE"},
    {"NoValueAfterShortOptionsInOneWord", {"-td"}, "-d requires a value: [VID]:[PID]"},
    {"NoDevices", {"--devices"}, "--devices requires a value: FILE"},
    {"NoFormat", {"--format"}, "--format requires a value: FORMAT"},
    {"NoRequest", {"--request"}, "--request requires a value: A,B,..."},
    {"NoSystemName", {"--system-name"}, "--system-name requires a value: NAME"},
    {"NoOutput", {"--output"}, "--output requires a value: FILE"},
    {"NoPlugin", {"--plugin"}, "--plugin requires a value: FILE"},
    {"NoLog", {"--log"}, "--log requires a value: FILE"},
    {"NoLogLevel", {"--log-level"}, "--log-level requires a value: LEVEL"},
    {"NoLogFormat", {"--log-format"}, "--log-format requires a value: FORMAT"},
    {"EmptyDevices", {"--devices", ""}, "--devices: must not be empty"},
    {"EmptySystemName", {"--system-name", ""}, "--system-name: must not be empty"},
    {"EmptyOutput", {"--output", ""}, "--output: must not be empty"},
    {"EmptyPlugin", {"--plugin", ""}, "--plugin: must not be empty"},
    {"EmptyLog", {"--log", ""}, "--log: must not be empty"},
    {"EmptyFormat",
     {"--format", ""},
     "--format: \"\" is not one of tree, table, json, jsonl, csv, cimxml, mof, dot, html, list, usbguard, "
     "prometheus"},
    {"EmptyRequest", {"--request", ""}, "--request: needs class names separated by commas"},
    {"RequestBeginsWithComma", {"--request", ",A"}, "--request: needs class names separated by commas"},
    {"RequestEndsWithComma", {"--request", "A,"}, "--request: needs class names separated by commas"},
    {"RequestWithEmptyName", {"--request", "A,,B"}, "--request: needs class names separated by commas"},
    {"WrongFormat",
     {"--format", "yaml"},
     "--format: \"yaml\" is not one of tree, table, json, jsonl, csv, cimxml, mof, dot, html, list, "
     "usbguard, prometheus"},
    {"FormatInCapitals",
     {"--format", "JSON"},
     "--format: \"JSON\" is not one of tree, table, json, jsonl, csv, cimxml, mof, dot, html, list, "
     "usbguard, prometheus"},
    {"WrongFormatOfShow",
     {"show", "--format", "yaml"},
     "--format: \"yaml\" is not one of tree, table, json, jsonl, csv, cimxml, mof, dot, html, list, "
     "usbguard, prometheus"},
    {"WrongLogLevel",
     {"--log-level", "loud"},
     "--log-level: \"loud\" is not one of error, warning, status, debug, verbose"},
    {"NumberAsLogLevel",
     {"--log-level", "3"},
     "--log-level: \"3\" is not one of error, warning, status, debug, verbose"},
    {"WrongLogFormat", {"--log-format", "xml"}, "--log-format: \"xml\" is not one of text, json"},
    {"TreeAndJson", {"-t", "-j"}, "the formats tree and json contradict each other: ask for one of them"},
    {"JsonAndFormatTree",
     {"-j", "--format", "tree"},
     "the formats tree and json contradict each other: ask for one of them"},
    {"TreeAndTable",
     {"--format", "table", "-t"},
     "the formats table and tree contradict each other: ask for one of them"},
    {"CompactTree", {"--compact"}, "--compact is for JSON: leave it out, or use --format json"},
    {"SerialNumbersOfTheTree",
     {"--with-serials"},
     "--with-serials is for metrics: leave it out, or use --format prometheus"},
    {"MetricsOfAPart",
     {"--format", "prometheus", "-d", "1d6b:"},
     "the format prometheus prints the counts of a whole machine: leave -d 1d6b: out, or use another format"},
    {"FreeAsMetrics",
     {"--free", "--format", "prometheus"},
     "--free is for the formats tree, table, csv, dot, html: leave it out, or use one of them"},
    {"DetailsOfJson", {"-v", "-j"}, "-v is for the tree: leave it out, or use --format tree"},
    {"DetailsOfTheTable",
     {"--verbose", "--format", "table"},
     "-v is for the tree: leave it out, or use --format tree"},
    {"FreeAndOccupied",
     {"--free", "--occupied"},
     "--occupied and --free contradict each other: leave one of them out"},
    {"FreeAsJson",
     {"--free", "--format", "json"},
     "--free is for the formats tree, table, csv, dot, html: leave it out, or use one of them"},
    {"OccupiedAsAList",
     {"--occupied", "--format", "list"},
     "--occupied is for the formats tree, table, csv, dot, html: leave it out, or use one of them"},
    {"PortForAPlace", {"-s", "usb1-port2"}, kWrongPlace},
    {"ColumnsOfTheTree",
     {"--columns", "Name"},
     "--columns is for the table: leave it out, or use --format table"},
    {"ColumnsOfJson",
     {"--columns", "Name", "-j"},
     "--columns is for the table: leave it out, or use --format table"},
    {"UnknownColumn",
     {"--format", "table", "--columns", "Name,Colour"},
     "--columns: \"Colour\" is not one of place, kind, name, vendor, identifier, serial, speed, driver; "
     "properties need --class"},
    {"UnknownProperty",
     {"--columns", "Name,Colour", "--format", "table", "--class", "hub"},
     "--columns: \"Colour\" is not one of Antecedent, ClassCode, CreationClassName, Dependent, Description, "
     "DeviceID, HubDepth, HubName, InterfaceType, Manufacturer, Name, NumberOfConfigs, NumberOfPorts, "
     "PortNumber, ProtocolCode, SerialNumber, Speed, StatusDescriptions, SubclassCode, "
     "SystemCreationClassName, SystemName, USBDeviceID, USBVersion, VendorID"},
    {"NoColumns", {"--columns"}, "--columns requires a value: A,B,..."},
    {"EmptyColumns", {"--columns", ""}, "--columns: needs names of columns separated by commas"},
    {"ColumnsWithEmptyName",
     {"--columns", "Name,,Speed"},
     "--columns: needs names of columns separated by commas"},
    {"WrongColor", {"--color", "green"}, "--color: \"green\" is not one of auto, always, never"},
    {"NoColor", {"--color"}, "--color requires a value: WHEN"},
    {"DevicesTwice", {"--devices", "a", "--devices", "b"}, "--devices may be given only once"},
    {"OutputTwice", {"--output", "a", "--output", "b"}, "--output may be given only once"},
    {"NoIds", {"-d"}, "-d requires a value: [VID]:[PID]"},
    {"EmptyIds", {"-d", ""}, kWrongIds},
    {"IdsWithoutColon", {"-d", "1d6b"}, kWrongIds},
    {"IdsOfColonAlone", {"-d", ":"}, kWrongIds},
    {"LongVendor", {"-d", "01d6b:"}, kWrongIds},
    {"LongProduct", {"-d", "1d6b:00002"}, kWrongIds},
    {"VendorThatIsNoNumber", {"-d", "1d6g:"}, kWrongIds},
    {"VendorOfAPrefixAlone", {"-d", "0x:"}, kWrongIds},
    {"VendorWithSign", {"-d", "-1:"}, kWrongIds},
    {"VendorWithBlank", {"-d", " 1:"}, kWrongIds},
    {"ThreeIds", {"-d", "1:2:3"}, kWrongIds},
    {"PlaceTwice", {"-s", "1", "-s", "2"}, "-s may be given only once"},
    {"NoPlace", {"-s"}, "-s requires a value: [BUS]:[DEV]"},
    {"EmptyPlace", {"-s", ""}, kWrongPlace},
    {"BusThatIsNoNumber", {"-s", "a:"}, kWrongPlace},
    {"DeviceThatIsNoNumber", {"-s", ":a"}, kWrongPlace},
    {"DeviceWithFraction", {"-s", "1.5"}, kWrongPlace},
    {"DeviceWithSign", {"-s", "-1"}, kWrongPlace},
    {"BusWithPlus", {"-s", "+1:"}, kWrongPlace},
    {"DeviceWithBlank", {"-s", "1 "}, kWrongPlace},
    {"DeviceTooBig", {"-s", "4294967296"}, kWrongPlace},
    {"ThreePlaces", {"-s", "1:2:3"}, kWrongPlace},
    {"NoClass", {"--class"}, "--class requires a value: NAME"},
    {"UnknownClass", {"--class", "KALDO_USB"}, "--class: \"KALDO_USB\"" USBINFO_TEST_CLASSES},
    {"ClassOfTwoPrefixes",
     {"--class", "KALDO_USBKALDO_USBHub"},
     "--class: \"KALDO_USBKALDO_USBHub\"" USBINFO_TEST_CLASSES},
    {"EmptyClass", {"--class", ""}, "--class: \"\"" USBINFO_TEST_CLASSES},
    {"UnknownClassAfterAKnownOne",
     {"--class", "KALDO_USBHub", "--class", "x"},
     "--class: \"x\"" USBINFO_TEST_CLASSES},
    {"TwoClassesAfterOneOption",
     {"--class", "KALDO_USBHub", "KALDO_USBPort"},
     "unexpected argument KALDO_USBPort (did you mean --devices KALDO_USBPort?)"},
    {"KeyWithoutMask", {"--mask-key", "key"}, "--mask-key requires --mask-serials"},
    {"NoKey", {"--mask-serials", "--mask-key"}, "--mask-key requires a value: FILE"},
    {"EmptyKeyName", {"--mask-serials", "--mask-key", ""}, "--mask-key: must not be empty"},
    {"ShowTwice", {"show", "show"}, "unexpected argument show (did you mean --devices show?)"},
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
    for (const char* option : {"-h",       "--devices", "--format",     "--request",      "--system-name",
                               "-d ",      "-s ",       "--class",      "--mask-serials", "--mask-key",
                               "--output", "--plugin",  "--log ",       "--log-level",    "--log-format",
                               "tree",     "json",      "jsonl",        "cimxml",         "mof",
                               "dot",      "html",      "table",        "--columns",      "--color",
                               "-t ",      "-j ",       "-v, --verbose"}) {
      EXPECT_THAT(result.output, HasSubstr(option));
    }
    for (const std::string& line : Lines(result.output)) EXPECT_LE(line.size(), 80U) << line;
  }
}

TEST(Usage, PrintsHelpThatNamesTheSubcommandAndTheVersionOption) {
  const CommandResult result = RunUsbinfo({"--help"});
  EXPECT_THAT(result.output, HasSubstr("  show "));
  EXPECT_THAT(result.output, HasSubstr("-V, --version"));
}

TEST(Usage, PrintsTheHelpOfASubcommandBothWays) {
  for (const char* subcommand : {"show", "diff", "check", "schema", "help"}) {
    const CommandResult result = RunUsbinfo({"help", subcommand});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, RunUsbinfo({subcommand, "--help"}).output);
  }
  EXPECT_EQ(RunUsbinfo({"help"}).output, RunUsbinfo({"--help"}).output);
  EXPECT_EQ(RunUsbinfo({"help", "shwo"}).errors,
            "usbinfo: SUBCOMMAND: \"shwo\" is not one of show, diff, watch, check, schema, help; see usbinfo "
            "help --help\n");
}

TEST(Usage, PrintsHelpWhateverElseIsWrong) {
  const std::string help = RunUsbinfo({"--help"}).output;
  EXPECT_EQ(RunUsbinfo({"--bogus", "--help"}).output, help);
  EXPECT_EQ(RunUsbinfo({"--help", "--format", "yaml"}).output, help);
  EXPECT_EQ(RunUsbinfo({"-vh"}).output, help);
  EXPECT_EQ(RunUsbinfo({"-h", "diff"}).output, RunUsbinfo({"diff", "--help"}).output);
}

TEST(Usage, ShortensAMessageOfMegabytesToOneLine) {
  const std::string argument = "--" + std::string(120000, 'x');
  const CommandResult result = RunUsbinfo(std::vector<std::string>(15, argument));
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(Lines(result.errors).size(), 1U);
  EXPECT_LE(result.errors.size(), 2100U);
  EXPECT_THAT(result.errors, testing::StartsWith("usbinfo: unknown option --xxx"));
  EXPECT_THAT(result.errors, testing::EndsWith("xxx; see usbinfo --help\n"));
  EXPECT_THAT(result.errors, HasSubstr("x [...] x"));
}

TEST(Usage, SaysInOneLineThatTheCurrentFolderIsGone) {
  const TemporaryFolder folder;
  const std::string script =
      "/bin/mkdir \"$1\" && cd \"$1\" && /bin/rmdir \"$1\" && exec \"$2\" --devices \"$3\" --plugin x.so";
  const CommandResult result =
      Command({"-c", script, "sh", folder.File("gone"), COMMAND_PATH, CapturePath("vm-desktop-debugfs")})
          .Program("/bin/sh")
          .Run();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.errors,
            "usbinfo: cannot find the plug-in x.so: the current folder: No such file or directory; name an "
            "absolute path with --plugin\n");
}

TEST(Usage, CutsALongMessageBetweenCharacters) {
  for (std::size_t offset = 0; offset < 3; ++offset) {
    std::string argument(offset, 'a');
    for (int count = 0; count < 2000; ++count) argument += "\xE2\x82\xAC";
    EXPECT_THAT(RunUsbinfo({argument}).errors, testing::Not(HasSubstr("\\x"))) << offset;
  }
}

}  // namespace
}  // namespace usbinfo_test
