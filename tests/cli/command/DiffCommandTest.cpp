// `usbinfo diff` as people run it: both kinds of input, both forms, exit statuses, and a message of one line
// for every failure that says what, where and what to do.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>
#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/InventoryBuilder.h"
#include "tests/cli/support/RunCommand.h"

using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

std::string Capture() {
  return CapturePath("vm-desktop-debugfs");
}

std::string OtherCapture() {
  return CapturePath("vm-desktop-usb-devices");
}

std::string ExpectedPath(const std::string& name) {
  return std::string(TEST_DATA_DIR "/expected/").append(name).append(".json");
}

/// Lists are not repaired: what usb-devices prints wrong makes differences.
CommandResult Diff(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), {"diff", "--as-is"});
  return RunUsbinfo(std::move(arguments));
}

class DiffOfCaptures : public testing::TestWithParam<std::string> {};

TEST_P(DiffOfCaptures, IsEmptyBetweenACaptureAndItself) {
  const std::string list = CapturePath(GetParam());
  const CommandResult result = Diff({list, list});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "");
}

TEST_P(DiffOfCaptures, IsEmptyBetweenAListAndItsInventory) {
  for (const auto& [before, after] : {std::pair(CapturePath(GetParam()), ExpectedPath(GetParam())),
                                      std::pair(ExpectedPath(GetParam()), CapturePath(GetParam()))}) {
    const CommandResult result = Diff({before, after});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
  }
}

TEST_P(DiffOfCaptures, WorksWithEveryOtherCapture) {
  for (const std::string& other : CaptureNames()) {
    const CommandResult text = Diff({ExpectedPath(GetParam()), CapturePath(other)});
    EXPECT_EQ(text.status, text.output.empty() ? 0 : 1);
    EXPECT_EQ(text.errors, "");
    const CommandResult document = Diff({ExpectedPath(GetParam()), CapturePath(other), "--format", "json"});
    EXPECT_EQ(document.status, text.status);
    EXPECT_EQ(json::parse(document.output)["schema"], "usbinfo.diff/2");
  }
}

INSTANTIATE_TEST_SUITE_P(Captures, DiffOfCaptures, testing::ValuesIn(CaptureNames()),
                         [](const auto& row) { return ToTestName(row.param); });

TEST(Diff, ReportsDifferencesWithStatusOne) {
  const CommandResult result = Diff({Capture(), OtherCapture()});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output,
            "\"vm-desktop-debugfs\" (time not known) -> \"vm-desktop-usb-devices\" (time not known)\n"
            "> 1-3.2 -> \"Bus 01  Device   4 Port 01\": mouse 0627:0001 \"QEMU USB Mouse\", "
            "serial \"89126-0000:00:01.0-3.2\"\n"
            "> 1-4 -> \"Bus 01  Device   5 Port 03\": audio 46f4:0002 \"QEMU USB Audio\", "
            "serial \"1-0000:00:01.0-4\"\n"
            "> 2-2 -> \"Bus 02  Device   2 Port 01\": mass storage 46f4:0003 \"USB Attached SCSI HBA\", "
            "serial \"27842-0000:00:01.0-2\"\n"
            "3 moved\n");
}

TEST(Diff, ReadsEitherInventoryFromStandardInput) {
  const std::string document = Expected("vm-desktop-debugfs.json");
  EXPECT_EQ(Command({"diff", "-", Capture()}).Input(document).Run().status, 0);
  EXPECT_EQ(Command({"diff", Capture(), "-"}).Input("\n \t\r\n" + document).Run().status, 0);
  EXPECT_EQ(
      Command({"diff", "-", ExpectedPath("vm-desktop-debugfs")}).Input(ReadFile(Capture())).Run().status, 0);
}

TEST(Diff, PrintsADocumentEvenWhereNothingDiffers) {
  const CommandResult result = Diff({Capture(), Capture(), "--format", "json"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(json::parse(result.output)["changed"], json::array());
}

TEST(Diff, TakesNamesOfSubcommandsForFiles) {
  const CommandResult result = Diff({"show", "schema"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: cannot read show: No such file or directory; "));
}

TEST(Diff, WritesAFileInstead) {
  const TemporaryFolder folder;
  const std::string file = folder.File("diff", "old");
  const CommandResult result = Diff({Capture(), OtherCapture(), "--output", file});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(ReadFile(file), Diff({Capture(), OtherCapture()}).output);
  EXPECT_EQ(Diff({Capture(), Capture(), "--output", file}).status, 0);
  EXPECT_EQ(ReadFile(file), "");
}

TEST(Diff, ColoursAFileOnlyWhereThatIsSaid) {
  const TemporaryFolder folder;
  Diff({Capture(), OtherCapture(), "--output", folder.File("diff"), "--color", "always"});
  EXPECT_THAT(ReadFile(folder.File("diff")), HasSubstr("\n\x1B[36m> 1-3.2"));
}

TEST(Diff, UsesThePluginThatIsNamedForListsAlone) {
  const CommandResult failing = Diff({Capture(), Capture(), "--plugin", "/nonexistent/plugin.so"});
  EXPECT_EQ(failing.status, 2);
  EXPECT_THAT(failing.errors, StartsWith("usbinfo: cannot use the plug-in: /nonexistent/plugin.so: "));
  const std::string saved = ExpectedPath("vm-desktop-debugfs");
  EXPECT_EQ(Diff({Capture(), saved, "--plugin", MODULE_PATH}).status, 0);
}

TEST(Diff, RefusesOptionsOfListsForSavedInventories) {
  const std::string saved = ExpectedPath("vm-desktop-debugfs");
  const std::vector<std::vector<std::string>> cases = {
      {"--as-is"}, {"--plugin", MODULE_PATH}, {"--system-name", "other"}};
  for (const std::vector<std::string>& options : cases) {
    std::vector<std::string> arguments = {"diff", saved, saved};
    arguments.insert(arguments.end(), options.begin(), options.end());
    const CommandResult result = Command(arguments).Run();
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors,
                StartsWith("usbinfo: " + options.front() + " is for device lists, and both files"));
  }
}

/// Inventories of one list that are saved with different options.
class DiffOfSaved : public testing::Test {
 protected:
  std::string Save(const std::string& name, std::vector<std::string> options) {
    options.insert(options.begin(), {"--devices", Capture(), "--format", "json"});
    return fFolder.File(name, RunUsbinfo(options).output);
  }
  std::string SaveMasked(const std::string& name, const std::string& key) {
    const std::string path = fFolder.File("key " + name, key);
    EXPECT_EQ(::chmod(path.c_str(), S_IRUSR | S_IWUSR), 0);
    return Save(name, {"--mask-serials", "--mask-key", path});
  }
  static std::string Refusal(const std::string& before, const std::string& after) {
    const CommandResult result = RunUsbinfo({"diff", before, after});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    const std::string begin = "usbinfo: " + before + " and " + after + " cannot be compared: ";
    EXPECT_THAT(result.errors, StartsWith(begin));
    return result.errors.substr(std::min(begin.size(), result.errors.size()));
  }

  const TemporaryFolder fFolder;
};

TEST_F(DiffOfSaved, RefusesSerialNumbersThatAreMaskedInOtherWays) {
  const std::string open = Save("open", {});
  const std::string one = SaveMasked("one", "a key of at least 16 bytes");
  const std::string two = SaveMasked("two", "another key of 16 bytes");
  const std::string random = Save("random", {"--mask-serials"});
  const std::string otherRandom = Save("other", {"--mask-serials"});
  const std::string keyOfOne = json::parse(ReadFile(one))["origin"]["masked"]["key"];
  const std::string keyOfTwo = json::parse(ReadFile(two))["origin"]["masked"]["key"];
  EXPECT_EQ(Refusal(one, two),
            "the serial numbers are masked with two keys, " + keyOfOne + " and " + keyOfTwo + "\n");
  EXPECT_EQ(Refusal(open, one), "the serial numbers are masked in only one of them\n");
  EXPECT_EQ(Refusal(one, Capture()), "the serial numbers are masked in only one of them\n");
  EXPECT_EQ(Refusal(random, otherRandom),
            "the serial numbers are masked with a random key; mask them with --mask-key FILE\n");
  EXPECT_EQ(RunUsbinfo({"diff", one, SaveMasked("same", "a key of at least 16 bytes")}).status, 0);
}

TEST_F(DiffOfSaved, WarnsOfAnInventoryThatDoesNotSayWhetherItIsMasked) {
  json document = json::parse(ReadFile(Save("new", {})));
  document["schema"] = "usbinfo.inventory/1";
  document.erase("origin");
  document.erase("kernel");
  const std::string old = fFolder.File("old", document.dump());
  for (const auto& [before, after] : {std::pair(old, Capture()), std::pair(Capture(), old)}) {
    const CommandResult result = RunUsbinfo({"diff", before, after});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.errors,
        "usbinfo: " + old + " does not say whether its serial numbers are masked; save it anew to be sure\n");
  }
}

TEST_F(DiffOfSaved, AppliesASelectionToTheOther) {
  const std::string mice = Save("mice", {"-d", "0627:0001"});
  const std::string hubs = Save("hubs", {"--class", "hub"});
  const std::string bus = Save("bus", {"-s", "1:"});
  for (const std::string& part : {mice, hubs, bus}) {
    EXPECT_EQ(RunUsbinfo({"diff", part, Capture()}).status, 0) << part;
    EXPECT_EQ(RunUsbinfo({"diff", Capture(), part}).status, 0) << part;
    EXPECT_EQ(RunUsbinfo({"diff", part, part}).status, 0) << part;
    EXPECT_THAT(RunUsbinfo({"diff", part, CapturePath("usbdevices-4.2-nonascii")}).output, HasSubstr("\n- "));
  }
  EXPECT_EQ(
      Refusal(mice, bus),
      "they were saved with different selections; save both with the same options -d, -s and --class\n");
}

TEST_F(DiffOfSaved, LeavesOutWhatIsToBeIgnored) {
  json document = json::parse(ReadFile(Save("before", {})));
  const std::string before = fFolder.File("before", document.dump());
  for (json& hub : document["classes"]["KALDO_USBHub"]) hub["USBVersion"] = 999;
  const std::string after = fFolder.File("after", document.dump());
  EXPECT_EQ(RunUsbinfo({"diff", before, after}).status, 1);
  EXPECT_EQ(RunUsbinfo({"diff", before, after, "--ignore", "usbversion"}).status, 0);
}

TEST(Diff, HasHelpOfItsOwnWithinEightyColumns) {
  for (const char* option : {"-h", "--help"}) {
    const CommandResult result = Diff({option});
    EXPECT_EQ(result.status, 0);
    for (const char* part : {"usbinfo diff", "OLD", "NEW", "--format FORMAT", "--color WHEN", "--output FILE",
                             "--plugin FILE", "standard input"}) {
      EXPECT_THAT(result.output, HasSubstr(part));
    }
    for (const std::string& line : Lines(result.output)) EXPECT_LE(line.size(), 80U) << line;
  }
}

struct Refused {
  const char* name;
  std::vector<std::string> arguments;
  std::string message;
};

std::ostream& operator<<(std::ostream& out, const Refused& refused) {
  return out << refused.name;
}

const std::string kInput = "; name a file that holds a JSON inventory or a device list";
const std::string kHelp = "; see usbinfo diff --help";

const Refused kRefused[] = {
    {"NoOperand", {"diff"}, "OLD is missing" + kHelp},
    {"SourceOfTwoFiles",
     {"diff", "a", "b", "--source", "sysfs"},
     "--source is for this machine: leave it or NEW out" + kHelp},
    {"MasksOfTwoFiles",
     {"diff", "a", "b", "--mask-serials"},
     "--mask-serials is for this machine: leave it or NEW out" + kHelp},
    {"UnknownProperty",
     {"diff", "a", "b", "--ignore", "DeviceID"},
     "--ignore: \"DeviceID\" is not one of ClassCode, connect, CreationClassName, Description, HubDepth, "
     "interfaces, InterfaceType, kinds, Manufacturer, maxPower, NumberOfConfigs, NumberOfPorts, peer, "
     "ProtocolCode, revision, SerialNumber, speed, StatusDescriptions, SubclassCode, USBDeviceID, "
     "USBVersion, "
     "VendorID" +
         kHelp},
    {"ThreeOperands", {"diff", "a", "b", "c"}, "unexpected argument c" + kHelp},
    {"EmptyOperand", {"diff", "", Capture()}, "OLD: must not be empty" + kHelp},
    {"EmptyOutput", {"diff", "a", "b", "--output", ""}, "--output: must not be empty" + kHelp},
    {"UnknownOption", {"diff", "--bogus", "a", "b"}, "unknown option --bogus" + kHelp},
    {"UnknownFormat",
     {"diff", "a", "b", "--format", "tree"},
     "--format: \"tree\" is not one of text, json" + kHelp},
    {"UnknownColor",
     {"diff", "a", "b", "--color", "red"},
     "--color: \"red\" is not one of auto, always, never" + kHelp},
    {"OptionOfTheInventory",
     {"--devices", "x", "diff", "a", "b"},
     "--devices is not supported by usbinfo diff" + kHelp},
    {"TwiceStandardInput",
     {"diff", "-", "-"},
     "standard input holds one inventory; give a file for OLD or for NEW"},
    {"MissingFile",
     {"diff", "/nonexistent/a", Capture()},
     "cannot read /nonexistent/a: No such file or directory" + kInput},
    {"Folder", {"diff", Capture(), "/"}, "cannot read /: Is a directory" + kInput},
    {"EmptyFile",
     {"diff", "/dev/null", Capture()},
     "/dev/null holds neither a JSON inventory nor a device list; save one with usbinfo --format json"},
    {"NoInventory",
     {"diff", Capture(), SOURCE_DIR "/README.md"},
     SOURCE_DIR
     "/README.md holds neither a JSON inventory nor a device list; save one with usbinfo --format json"},
    {"OtherJson",
     {"diff", Capture(), SOURCE_DIR "/CMakePresets.json"},
     SOURCE_DIR "/CMakePresets.json holds no inventory: /schema: is missing; save it anew with usbinfo "
                "--format json"},
    {"MissingFolderOfOutput",
     {"diff", Capture(), Capture(), "--output", "/nonexistent/a"},
     "cannot write /nonexistent/a: No such file or directory; name a writable file with --output"},
};

class RefusedDiff : public testing::TestWithParam<Refused> {};

TEST_P(RefusedDiff, SaysWhatWhereAndWhatToDoInOneLine) {
  const CommandResult result = RunUsbinfo(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "usbinfo: " + GetParam().message + "\n");
}

INSTANTIATE_TEST_SUITE_P(Refusals, RefusedDiff, testing::ValuesIn(kRefused),
                         [](const auto& row) { return std::string(row.param.name); });

TEST(Diff, RefusesTheTreeThatIsPrintedForPeople) {
  const std::string tree = RunUsbinfo({"--devices", Capture()}).output;
  const CommandResult result = Command({"diff", "-", Capture()}).Input(tree).Run();
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.errors, StartsWith("usbinfo: standard input holds neither a JSON inventory nor "));
}

TEST(Diff, KeepsAForgedMemberNameOnTheLineOfItsMessage) {
  const CommandResult result =
      Command({"diff", "-", Capture()})
          .Input(
              "{\"schema\": \"usbinfo.inventory/1\", \"system\": {\"name\": \"\", \"creationClassName\": "
              "\"KALDO_ComputerSystem\"}, \"classes\": {\"\\n\\u001b[2J\": 1}}")
          .Run();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.errors,
            "usbinfo: standard input holds no inventory: /classes/\\n\\x1b[2J: is not a member of an "
            "inventory; save it "
            "anew with usbinfo --format json\n");
}

TEST(Diff, ReportsAnOutputThatFails) {
  for (const char* format : {"text", "json"}) {
    const std::vector<std::string> arguments = {"diff",         "--as-is",  Capture(),
                                                OtherCapture(), "--format", format};
    EXPECT_EQ(Command(arguments).OutputToClosedPipe().Run().errors, "");
    EXPECT_EQ(Command(arguments).OutputToClosedPipe().Run().status, -SIGPIPE);
    EXPECT_EQ(Command(arguments).CloseOutput().Run().status, 2);
    EXPECT_THAT(Command(arguments).OutputTo("/dev/full").Run().errors,
                StartsWith("usbinfo: cannot write standard output: No space left on device; "));
  }
}

TEST(Diff, ReplacesNeitherOfItsInventories) {
  const TemporaryFolder folder;
  const std::string text = RunUsbinfo({"--devices", Capture(), "--format", "json"}).output;
  const std::string approved = folder.File("approved.json", text);
  const auto errorsOf = [&](const std::string& before, const std::string& after) {
    const CommandResult result = RunUsbinfo({"diff", "--output", approved, before, after});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(ReadFile(approved), text);
    return result.errors;
  };
  const std::string rest = " name one file, " + approved + "; name another one for --output\n";
  EXPECT_EQ(errorsOf(approved, OtherCapture()), "usbinfo: --output and OLD" + rest);
  EXPECT_EQ(errorsOf(OtherCapture(), folder.File(".") + "/approved.json"),
            "usbinfo: --output and NEW" + rest);
}

TEST(Diff, MeansStandardOutputByADash) {
  EXPECT_EQ(RunUsbinfo({"diff", Capture(), OtherCapture(), "--output", "-"}).output,
            RunUsbinfo({"diff", Capture(), OtherCapture()}).output);
}

TEST(Diff, LeavesTheOldFileWhereTheNewOneCannotBeWritten) {
  const TemporaryFolder folder;
  const std::string file = folder.File("diff", "old");
  {
    const FileSizeLimit limit(10);
    EXPECT_EQ(Diff({Capture(), OtherCapture(), "--output", file}).status, 2);
  }
  EXPECT_EQ(ReadFile(file), "old");
  EXPECT_THAT(folder.Names(), testing::ElementsAre("diff"));
}

TEST(Diff, PrintsAsciiOnlyWhereItsLocaleHasNothingElse) {
  // The second byte of this letter alone introduces a command, as ESC and a bracket do.
  const TemporaryFolder folder;
  const std::string list = folder.File("list", DeviceListWith("\xC3\x9B"
                                                              "31mred"));
  for (const char* locale : {"C", "C.UTF-8"}) {
    const CommandResult result =
        Command({"diff", list, "-"}).Input(DeviceListWith("plain")).Set("LC_ALL", locale).Run();
    const bool isAscii = std::string(locale) == "C";
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.output, HasSubstr(isAscii ? "\"\\xc3\\x9b31mred\", serial "
                                                 : "\"\xC3\x9B"
                                                   "31mred\", serial "));
    EXPECT_EQ(isAscii, result.output.find('\xC3') == std::string::npos);
  }
}

TEST(Diff, SendsNothingOfAHostileListToATerminal) {
  const TemporaryFolder folder;
  const std::string hostile = folder.File("hostile/list", HostileDeviceList());
  const std::string harmless = folder.File("harmless/list", HarmlessDeviceList());
  for (const auto& [before, after] : {std::pair(hostile, harmless), std::pair(harmless, hostile)}) {
    const CommandResult result = Diff({before, after});
    EXPECT_EQ(result.status, 1);
    EXPECT_FALSE(ActsOnTerminal(result.output) || HasDirectionMark(result.output));
    const std::vector<std::string> lines = Lines(result.output);
    EXPECT_EQ(lines.front(), "\"list\" (time not known) -> \"list\" (time not known)");
    EXPECT_THAT(lines.back(), testing::MatchesRegex("[0-9]+ added, [0-9]+ removed(, [0-9]+ changed)?"));
    for (std::size_t line = 1; line + 1 < lines.size(); ++line) {
      EXPECT_THAT(lines[line], testing::MatchesRegex("[-+~] 1-[0-9]+: device 0627:0001 \".*|    [A-Z].*"));
    }
  }
}

}  // namespace
}  // namespace usbinfo_test
