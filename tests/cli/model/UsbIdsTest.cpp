// The names of vendors and products: what is read from a list and what is ignored, which file the command
// reads, and that names are shown beside a device's own strings and in no export.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <string>
#include <vector>

#include "cli/model/UsbIds.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::UsbIds;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

namespace usbinfo_test {
namespace {

const std::string kNames = TEST_DATA_DIR "/names.ids";

TEST(UsbIds, FindsVendorsAndTheirProducts) {
  const UsbIds names("0001  One\n\t0001  First\n\t00ff  Last\nabCD  Other\n\t0001  Item\n");
  EXPECT_EQ(names.Vendor(0x0001), "One");
  EXPECT_EQ(names.Product(0x0001, 0x0001), "First");
  EXPECT_EQ(names.Product(0x0001, 0x00FF), "Last");
  EXPECT_EQ(names.Vendor(0xABCD), "Other");
  EXPECT_EQ(names.Product(0xABCD, 0x0001), "Item");
}

TEST(UsbIds, HasNoNameForWhatIsNotListed) {
  const UsbIds names("0001  One\n\t0001  First\n0003  Three\n");
  EXPECT_EQ(names.Vendor(0x0002), "");
  EXPECT_EQ(names.Vendor(0xFFFF), "");
  EXPECT_EQ(names.Product(0x0001, 0x0002), "");
  EXPECT_EQ(names.Product(0x0003, 0x0001), "");
  EXPECT_EQ(UsbIds("").Vendor(0), "");
}

TEST(UsbIds, PassesOverCommentsInterfacesAndOtherParts) {
  const UsbIds names(
      "# 0009  Comment\n\n0001  One\n#\t0009  Comment\n\t0001  First\n\t\t0002  Interface\n"
      "C 03  Class\n\t0003  Subclass\n\t\t0004  Protocol\nAT 0100  Terminal\nHUT 01  Page\n\t000  Usage\n"
      "0005  Five\n\t0001  Fifth\n");
  EXPECT_EQ(names.Vendor(0x0009), "");
  EXPECT_EQ(names.Product(0x0001, 0x0001), "First");
  for (const std::uint16_t product : std::vector<std::uint16_t>{0x0002, 0x0003, 0x0004, 0x0009}) {
    EXPECT_EQ(names.Product(0x0001, product), "") << product;
  }
  EXPECT_EQ(names.Product(0x0005, 0x0001), "Fifth");
}

TEST(UsbIds, PassesOverBrokenLines) {
  const UsbIds names(
      "\t0001  Nobody's\n12  Short\n\t0001  Nobody's\n00001  Long\n0x12  Hex\n+001  Sign\n0002\n0003 "
      "\t\n0004Tight\n"
      "\t0001  Nobody's\n0001  One\n\t00g1  Wrong\n\t1\n\t\n\t0002\n\t0003  Good");
  for (std::uint32_t number = 0; number <= 0xFFFF; ++number) {
    const auto id = static_cast<std::uint16_t>(number);
    EXPECT_EQ(names.Vendor(id), id == 0x0001 ? "One" : "") << id;
    EXPECT_EQ(names.Product(0x0001, id), id == 0x0003 ? "Good" : "") << id;
    EXPECT_EQ(names.Product(0x0012, id) + names.Product(0x0002, id) + names.Product(0x0004, id), "") << id;
  }
}

TEST(UsbIds, TakesTheFirstOfSeveralNamesAndAnyOrder) {
  const UsbIds names("0009  Nine\n\t0002  B\n\t0001  A\n0001  One\n0009  Again\n\t0001  C\n\t0003  D\n");
  EXPECT_EQ(names.Vendor(0x0009), "Nine");
  EXPECT_EQ(names.Vendor(0x0001), "One");
  EXPECT_EQ(names.Product(0x0009, 0x0001), "A");
  EXPECT_EQ(names.Product(0x0009, 0x0002), "B");
  EXPECT_EQ(names.Product(0x0009, 0x0003), "D");
}

TEST(UsbIds, GivesBytesAsTheyStandWithoutBlanksAround) {
  const UsbIds names(std::string("0001  \xE9\x1B[2J\0z \t\r\n", 17) + "0002\tT\xC3\xA4st  er\r\n");
  EXPECT_EQ(names.Vendor(0x0001), std::string("\xE9\x1B[2J\0z", 7));
  EXPECT_EQ(names.Vendor(0x0002), "T\xC3\xA4st  er");
}

TEST(UsbIds, KeepsItsNamesWhenItIsCopiedAndMoved) {
  UsbIds first("0001  One\n");
  const UsbIds copy = first;
  const UsbIds moved = std::move(first);
  EXPECT_EQ(copy.Vendor(0x0001), "One");
  EXPECT_EQ(moved.Vendor(0x0001), "One");
}

Command DesktopWithNames(const std::string& path, std::vector<std::string> options) {
  const std::vector<std::string> common = {"--devices", CapturePath("vm-desktop-debugfs"), "--system-name",
                                           "testhost"};
  options.insert(options.begin(), common.begin(), common.end());
  Command command(std::move(options));
  command.Set("USBINFO_IDS", path);
  return command;
}

CommandResult RunWithNames(const std::string& path, std::vector<std::string> options) {
  return DesktopWithNames(path, std::move(options)).Run();
}

TEST(Names, StandBesideTheDevicesOwnInTheTree) {
  const std::vector<std::string> lines = Lines(RunWithNames(kNames, {}).output);
  ASSERT_GE(lines.size(), 15U);
  EXPECT_EQ(lines[2], "USB                KIND         DEVICE                ID             SPEED KNOWN AS");
  EXPECT_EQ(lines[3],
            "usb1               controller   xHCI Host Controller  1d6b:0002 480 Mbit/s 2.0 Hub (Root Hubs & "
            "Sons)");
  EXPECT_EQ(lines[4], "├─1-1                           free                            480 Mbit/s");
  EXPECT_EQ(lines[6], "├─1-3              hub          QEMU USB Hub, 8 ports 0409:55aa  12 Mbit/s");
  EXPECT_EQ(lines[7],
            "│ ├─1-3.1          keyboard     QEMU USB Keyboard     0627:0001  12 Mbit/s Pointing Device "
            "(Emulated Inputs Ltd)");
  EXPECT_EQ(lines[10],
            "├─1-4              audio        QEMU USB Audio        46f4:0002  12 Mbit/s (Emulated Storage)");
}

TEST(Names, LeaveTheRestOfTheTreeAsItIs) {
  const std::vector<std::string> with = Lines(RunWithNames(kNames, {}).output);
  const std::vector<std::string> without = Lines(RunWithNames("", {}).output);
  ASSERT_EQ(with.size(), without.size());
  for (std::size_t line = 0; line < with.size(); ++line) {
    EXPECT_EQ(with[line].substr(0, without[line].size()), without[line]);
  }
}

TEST(Names, AreInNoExportForPrograms) {
  for (const char* format : {"json", "jsonl", "csv", "cimxml", "mof", "dot"}) {
    const std::string text = RunWithNames(kNames, {"--format", format}).output;
    EXPECT_EQ(text, RunWithNames("", {"--format", format}).output) << format;
    // Not even a missing file is reported.
    EXPECT_EQ(text, RunWithNames("/nonexistent", {"--format", format}).output) << format;
  }
}

TEST(Names, PushNoColumnOutOfATerminal) {
  const TemporaryFolder folder;
  const std::string path =
      folder.File("ids", "0627  " + std::string(400, 'v') + "\n\t0001  " + std::string(400, 'p') + "\n");
  const std::string text = DesktopWithNames(path, {}).OutputToTerminal(100).Run().output;
  const std::string row = Lines(text).at(7);
  EXPECT_THAT(row, HasSubstr("QEMU USB Keyboard"));
  EXPECT_THAT(row, HasSubstr(" 0627:0001  12 Mbit/s ppppp"));
}

TEST(Names, GiveWayOnATerminalThatIsTooNarrowForThem) {
  for (const char* format : {"tree", "table"}) {
    EXPECT_EQ(DesktopWithNames(kNames, {"--format", format}).OutputToTerminal(60).Run().output,
              DesktopWithNames("", {"--format", format}).OutputToTerminal(60).Run().output);
    EXPECT_THAT(DesktopWithNames(kNames, {"--format", format}).OutputToTerminal(160).Run().output,
                HasSubstr("KNOWN AS"));
  }
}

TEST(Names, AreSpelledLikeADevicesStrings) {
  const TemporaryFolder folder;
  const std::string path = folder.File("ids", "0627  caf\xE9\x1B[31m\n\t0001  \xE2\x80\xAEp\x9B\x07\n");
  for (const char* option : {"--format=tree", "--format=table", "-v"}) {
    const CommandResult result = RunWithNames(path, {option});
    EXPECT_THAT(result.output, HasSubstr("\\xe2\\x80\\xaep\\x9b\\x07 (caf\\xe9\\x1b[31m)")) << option;
    EXPECT_EQ(result.output.find('\x1B'), std::string::npos) << option;
  }
}

TEST(Names, OfAFileThatCannotBeReadEndTheCommand) {
  const TemporaryFolder folder;
  const std::string pipe = folder.File("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::pair<std::string, std::string> files[] = {{folder.File("missing"), "No such file or directory"},
                                                       {folder.Path(), "Is a directory"},
                                                       {pipe, "Invalid argument"}};
  for (const auto& [path, reason] : files) {
    const CommandResult result = RunWithNames(path, {});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "usbinfo: cannot read " + path + ": " + reason +
                                 "; USBINFO_IDS names a list of vendors and products such as usb.ids, or is "
                                 "empty for no names\n");
  }
}

TEST(Names, OfALongListAreFoundWhereverTheyStand) {
  const TemporaryFolder folder;
  const std::string names = "0627  Vendor\n\t0001  Product\n";
  // Lines of many lengths before them, so that pieces of the list end anywhere in the names; and one long
  // line.
  for (const std::size_t length : {32767U, 32768U, 32770U, 32775U, 32782U, 32785U, 32797U, 32798U, 200000U}) {
    const std::string path = folder.File("ids", "#" + std::string(length - 32, 'x') + "\n" + names);
    EXPECT_THAT(RunWithNames(path, {}).output, HasSubstr(" Product (Vendor)")) << length;
  }
}

TEST(Names, OfAFileBeyondAnyListAreNotRead) {
  const TemporaryFolder folder;
  const std::string path = folder.File("ids", "");
  ASSERT_EQ(::truncate(path.c_str(), (64 << 20) + 1), 0);
  EXPECT_THAT(RunWithNames(path, {}).errors, HasSubstr(": File too large; "));
}

TEST(Names, OfAFileThatIsNoListAreNone) {
  const std::vector<std::string> lines = Lines(RunWithNames(CapturePath("vm-desktop-debugfs"), {}).output);
  EXPECT_THAT(lines.at(2), EndsWith(" SPEED KNOWN AS"));
  EXPECT_THAT(lines.at(8), EndsWith(" 0627:0001  12 Mbit/s"));
}

TEST(Names, AreNotReadWhereThereIsNothingToName) {
  const CommandResult result = Command({"--devices", "-"}).Set("USBINFO_IDS", "/nonexistent/ids").Run();
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, Not(HasSubstr("/nonexistent/ids")));
}

}  // namespace
}  // namespace usbinfo_test
