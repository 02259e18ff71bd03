// The tree on a terminal: it fits eighty columns, gives up names first on a narrower one, and keeps ports,
// ids and serial numbers whole for longest.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/RunCommand.h"

namespace usbinfo_test {
namespace {

std::string OnTerminal(const std::string& list, unsigned short columns, const std::string& locale,
                       const std::vector<std::string>& options = {}) {
  std::vector<std::string> arguments = {"--devices", "-", "--system-name", "testhost"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return Command(arguments).Input(list).Set("LC_ALL", locale).OutputToTerminal(columns).Run().output;
}

constexpr const char* kNarrowTree = R"(USB                DEVICE                ID
usb1               xHCI Host Controller  1d6b:0002
|-1-1              free
|-1-2              free
|-1-3              QEMU USB Hub, 8 ports 0409:55aa
| |-1-3.1          QEMU USB Keyboard     0627:0001
| |-1-3.2          QEMU USB Mouse        0627:0001
| `-1-3.3 to 1-3.8 free
|-1-4              QEMU USB Audio        46f4:0002
|-1-5              free
`-1-6              free
usb2               xHCI Host Controller  1d6b:0003
|-2-1              QEMU USB HARDDRIVE    46f4:0001
|-2-2              USB Attached SCSI HBA 46f4:0003
|-2-3              free
`-2-4              free
usb3               EHCI Host Controller  1d6b:0002
`-3-1 to 3-6       free
usb4               UHCI Host Controller  1d6b:0001
|-4-1              Wacom PenPartner      056a:0000
`-4-2              free
)";

const std::vector<std::vector<std::string>> kForms = {
    {},
    {"-v"},
    {"--format", "table"},
    {"--format", "table", "--class", "device", "--columns", "Description,SerialNumber,DeviceID"}};

TEST(Terminal, OfEightyColumnsHoldsEveryCapture) {
  for (const std::string& path : CapturePaths()) {
    for (const char* locale : {"C", "C.UTF-8"}) {
      for (const std::vector<std::string>& form : kForms) {
        for (const std::string& line : Lines(OnTerminal(ReadFile(path), 80, locale, form))) {
          EXPECT_LE(DisplayWidth(line), 80) << path << "\n" << line;
        }
      }
    }
  }
}

TEST(Terminal, OfEightyColumnsHoldsTablesOfHostileStrings) {
  for (const std::vector<std::string>& form : kForms) {
    for (const std::string& line : Lines(OnTerminal(HostileDeviceList(), 80, "C.UTF-8", form))) {
      EXPECT_LE(DisplayWidth(line), 80) << line;
    }
  }
}

TEST(Terminal, GetsAsciiOnlyWhereItsLocaleHasNothingElse) {
  for (const std::vector<std::string>& form : kForms) {
    for (const std::string& list : {HostileDeviceList(), ReadFile(CapturePath("usbdevices-4.2-nonascii"))}) {
      const std::string text = OnTerminal(list, 80, "C", form);
      EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return (c & 0x80) == 0; }));
      EXPECT_NE(text, "");
    }
  }
}

TEST(Terminal, GetsTheNameOfTheSystemInAsciiWhereItsLocaleHasNothingElse) {
  const std::vector<std::string> arguments = {"--devices", CapturePath("vm-desktop-debugfs"), "--system-name",
                                              "caf\xC3\xA9"};
  EXPECT_THAT(Command(arguments).Set("LC_ALL", "C").Run().output, testing::StartsWith("caf\\xc3\\xa9: "));
  EXPECT_THAT(Command(arguments).Set("LC_ALL", "C.UTF-8").Run().output, testing::StartsWith("caf\xC3\xA9: "));
}

TEST(Terminal, OfEightyColumnsShowsTheWholeDesktopMachine) {
  const std::string name = "vm-desktop-debugfs";
  EXPECT_EQ(
      OnTerminal(ReadFile(CapturePath(name)), 80, "C"),
      Command({"--devices", CapturePath(name), "--system-name", "testhost"}).Set("LC_ALL", "C").Run().output);
}

TEST(Terminal, GetsTheLinesThatItsLocaleHas) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  EXPECT_EQ(Lines(OnTerminal(list, 80, "C")).at(4),
            "|-1-1                           free                            480 Mbit/s");
  EXPECT_EQ(Lines(OnTerminal(list, 80, "C.UTF-8")).at(4),
            "├─1-1                           free                            480 Mbit/s");
}

TEST(Terminal, OfFiftyColumnsLeavesKindsAndSpeedsOut) {
  const std::string text = OnTerminal(ReadFile(CapturePath("vm-desktop-debugfs")), 50, "C");
  const std::size_t heading = text.find("\n\n");
  ASSERT_NE(heading, std::string::npos);
  EXPECT_EQ(text.substr(heading + 2), kNarrowTree);
}

TEST(Terminal, ShowsIdAndSpeedWhateverTheLengthOfAName) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    for (const std::string& name : {std::string(300, 'x'), std::string(300, '\x1B')}) {
      const std::vector<std::string> lines = Lines(OnTerminal(DeviceListWith(name), 80, locale));
      EXPECT_THAT(lines.back(), testing::EndsWith(" 0627:0001  12 Mbit/s"));
      EXPECT_LE(DisplayWidth(lines.back()), 80);
    }
  }
}

TEST(Terminal, GetsNoEscapeSequences) {
  for (const auto columns : std::vector<unsigned short>{20, 80, 300}) {
    for (const std::vector<std::string>& form : kForms) {
      const std::string text = OnTerminal(HostileDeviceList(), columns, "C.UTF-8", form);
      EXPECT_EQ(text.find('\x1B'), std::string::npos) << columns;
      EXPECT_NE(text, "");
    }
  }
}

TEST(Terminal, IsAsWideAsTheEnvironmentSaysWhereThatIsANumber) {
  const std::string path = CapturePath("vm-desktop-debugfs");
  const auto tree = [&path](const std::string& columns) {
    return Command({"--devices", path}).Set("COLUMNS", columns).OutputToTerminal(60).Run().output;
  };
  const auto treeOfWidth = [&path](unsigned short columns) {
    return Command({"--devices", path}).OutputToTerminal(columns).Run().output;
  };
  EXPECT_NE(treeOfWidth(50), treeOfWidth(60));
  EXPECT_EQ(tree("50"), treeOfWidth(50));
  for (const char* bad : {"", "0", "-50", "+50", " 50", "50x", "0x50", "99999999999999999999"}) {
    EXPECT_EQ(tree(bad), treeOfWidth(60)) << bad;
  }
}

TEST(Terminal, AloneTakesItsWidthFromTheEnvironment) {
  const std::string path = CapturePath("vm-desktop-debugfs");
  EXPECT_EQ(Command({"--devices", path}).Set("COLUMNS", "20").Run().output,
            RunUsbinfo({"--devices", path}).output);
}

/// A heading is one line on any terminal.
bool IsHeading(const std::string& line) {
  return line.rfind("testhost: ", 0) == 0 || line.rfind("KALDO_", 0) == 0;
}

TEST(Terminal, OfAnyWidthHoldsEveryRow) {
  for (const std::string& list : {HostileDeviceList(), ReadFile(CapturePath("vm-desktop-debugfs"))}) {
    for (unsigned short columns = 20; columns <= 120; columns += 10) {
      for (const std::vector<std::string>& form : kForms) {
        for (const std::string& line : Lines(OnTerminal(list, columns, "C.UTF-8", form))) {
          EXPECT_TRUE(IsHeading(line) || DisplayWidth(line) <= columns) << line;
        }
      }
    }
  }
}

TEST(Terminal, KeepsSerialNumbersAndIdsWholeAtTheCostOfNames) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  for (unsigned short columns = 41; columns <= 80; columns += 3) {
    const std::string table = OnTerminal(list, columns, "C", {"--format", "table"});
    for (const char* text : {" 0627:0001 ", " 68284-0000:00:01.0-3.1", " 89126-0000:00:01.0-3.2"}) {
      EXPECT_THAT(table, testing::HasSubstr(text)) << columns;
    }
  }
}

TEST(Terminal, GivesUpNamesFirstThenSpeedsThenKindsThenDevices) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  const auto titles = [&list](unsigned short columns) {
    return Lines(Command({"--devices", "-"})
                     .Input(list)
                     .Set("USBINFO_IDS", TEST_DATA_DIR "/names.ids")
                     .OutputToTerminal(columns)
                     .Run()
                     .output)
        .at(2);
  };
  EXPECT_EQ(titles(82), "USB                KIND         DEVICE       ID             SPEED KNOWN AS");
  EXPECT_EQ(titles(81), "USB                KIND         DEVICE                ID             SPEED");
  EXPECT_EQ(titles(64), "USB                KIND         DEVICE                ID");
  EXPECT_EQ(titles(53), "USB                DEVICE                ID");
  EXPECT_EQ(titles(40), "USB                ID");
  EXPECT_EQ(titles(27), "USB");
}

TEST(Terminal, MayBeOfUnknownWidth) {
  const std::string list = ReadFile(CapturePath("vm-desktop-debugfs"));
  EXPECT_EQ(OnTerminal(list, 0, "C"), OnTerminal(list, 80, "C"));
}

}  // namespace
}  // namespace usbinfo_test
