// The tree for people, compared with trees drawn by hand: from captured lists, in UTF-8 and in ASCII, and
// from small inventories that show one rule each.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/TreeFormat.h"
#include "tests/cli/support/CliTest.h"

using NKESTA20::TCIMValue;

namespace usbinfo_test {
namespace {

constexpr const char* kFreePort = "No device connected";
constexpr const char* kInUse = "Device connected";

class TreeFormatTest : public CliTest {
 protected:
  std::string Render(const char* locale) const {
    const CharacterSet characters(locale);
    return cli::RenderTree(Collected(), {false});
  }
  /// The rows below the two lines of heading and the line of titles, with ASCII lines.
  std::string Rows() const {
    std::string rows;
    const std::vector<std::string> lines = Lines(Render("C"));
    for (std::size_t line = 3; line < lines.size(); ++line) rows += lines[line] + "\n";
    return rows;
  }
};

/// An ASCII tree with the lines that a UTF-8 terminal gets.
std::string WithUtf8Lines(std::string tree) {
  const std::pair<const char*, const char*> pairs[] = {{"|-", "├─"}, {"`-", "└─"}, {"| ", "│ "}};
  for (const auto& [from, to] : pairs) {
    for (std::size_t at = 0; (at = tree.find(from, at)) != std::string::npos;) tree.replace(at, 2, to);
  }
  return tree;
}

/// Hubs of one port each, every one on the port of the one before.
std::string ChainOfHubs(int length) {
  std::string list;
  for (int level = 0; level < length; ++level) {
    list += fmt::format(
        "T:  Bus=01 Lev={:02} Prnt={:02} Port=00 Cnt=01 Dev#={:3} Spd=480  MxCh= 1\n"
        "S:  Product=Link\n"
        "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n\n",
        level, level, level + 1);
  }
  return list;
}

constexpr const char* kDesktopTree = R"(testhost: 4 controllers, 5 hubs, 26 ports (19 free), 6 devices

USB           DEVICE                ID             SPEED
Bus 01        xHCI Host Controller
`-Root hub    6 ports               1d6b:0002 480 Mbit/s
  |-Port 00   free                            480 Mbit/s
  |-Port 01   free                            480 Mbit/s
  |-Port 02   QEMU USB Hub, 8 ports 0409:55aa  12 Mbit/s
  | |-Port 00 QEMU USB Keyboard     0627:0001  12 Mbit/s
  | |-Port 01 QEMU USB Mouse        0627:0001  12 Mbit/s
  | |-Port 02 free                             12 Mbit/s
  | |-Port 03 free                             12 Mbit/s
  | |-Port 04 free                             12 Mbit/s
  | |-Port 05 free                             12 Mbit/s
  | |-Port 06 free                             12 Mbit/s
  | `-Port 07 free                             12 Mbit/s
  |-Port 03   QEMU USB Audio        46f4:0002  12 Mbit/s
  |-Port 04   free                            480 Mbit/s
  `-Port 05   free                            480 Mbit/s
Bus 02        xHCI Host Controller
`-Root hub    4 ports               1d6b:0003   5 Gbit/s
  |-Port 00   QEMU USB HARDDRIVE    46f4:0001  5+ Gbit/s
  |-Port 01   USB Attached SCSI HBA 46f4:0003  5+ Gbit/s
  |-Port 02   free                              5 Gbit/s
  `-Port 03   free                              5 Gbit/s
Bus 03        EHCI Host Controller
`-Root hub    6 ports               1d6b:0002 480 Mbit/s
  |-Port 00   free                            480 Mbit/s
  |-Port 01   free                            480 Mbit/s
  |-Port 02   free                            480 Mbit/s
  |-Port 03   free                            480 Mbit/s
  |-Port 04   free                            480 Mbit/s
  `-Port 05   free                            480 Mbit/s
Bus 04        UHCI Host Controller
`-Root hub    2 ports               1d6b:0001  12 Mbit/s
  |-Port 00   Wacom PenPartner      056a:0000  12 Mbit/s
  `-Port 01   free                             12 Mbit/s
)";

// The script that wrote this list names wrong parents for three devices, so these stand below, unlinked.
constexpr const char* kScriptTree = R"(testhost: 4 controllers, 5 hubs, 26 ports (22 free), 6 devices

USB              DEVICE                ID             SPEED
Bus 01           xHCI Host Controller
`-Root hub       6 ports               1d6b:0002 480 Mbit/s
  |-Port 00      free                            480 Mbit/s
  |-Port 01      free                            480 Mbit/s
  |-Port 02      QEMU USB Hub, 8 ports 0409:55aa  12 Mbit/s
  | |-Port 00    QEMU USB Keyboard     0627:0001  12 Mbit/s
  | |-Port 01    free                             12 Mbit/s
  | |-Port 02    free                             12 Mbit/s
  | |-Port 03    free                             12 Mbit/s
  | |-Port 04    free                             12 Mbit/s
  | |-Port 05    free                             12 Mbit/s
  | |-Port 06    free                             12 Mbit/s
  | `-Port 07    free                             12 Mbit/s
  |-Port 03      free                            480 Mbit/s
  |-Port 04      free                            480 Mbit/s
  `-Port 05      free                            480 Mbit/s
Bus 02           xHCI Host Controller
`-Root hub       4 ports               1d6b:0003   5 Gbit/s
  |-Port 00      QEMU USB HARDDRIVE    46f4:0001  5+ Gbit/s
  |-Port 01      free                              5 Gbit/s
  |-Port 02      free                              5 Gbit/s
  `-Port 03      free                              5 Gbit/s
Bus 03           EHCI Host Controller
`-Root hub       6 ports               1d6b:0002 480 Mbit/s
  |-Port 00      free                            480 Mbit/s
  |-Port 01      free                            480 Mbit/s
  |-Port 02      free                            480 Mbit/s
  |-Port 03      free                            480 Mbit/s
  |-Port 04      free                            480 Mbit/s
  `-Port 05      free                            480 Mbit/s
Bus 04           UHCI Host Controller
`-Root hub       2 ports               1d6b:0001  12 Mbit/s
  |-Port 00      Wacom PenPartner      056a:0000  12 Mbit/s
  `-Port 01      free                             12 Mbit/s
Bus 01, device 5 QEMU USB Mouse        0627:0001  12 Mbit/s
Bus 01, device 3 QEMU USB Audio        46f4:0002  12 Mbit/s
Bus 02, device 3 USB Attached SCSI HBA 46f4:0003  5+ Gbit/s
)";

constexpr const char* kLoneDeviceTree = R"(testhost: 0 controllers, 0 hubs, 0 ports (0 free), 1 device

USB              DEVICE          ID             SPEED
Bus 01, device 4 NETGEAR WG111v3 0846:4260  12 Mbit/s
)";

TEST_F(TreeFormatTest, DrawsADesktopMachine) {
  Collect(ReadFile(CapturePath("vm-desktop-debugfs")));
  EXPECT_EQ(Render("C"), kDesktopTree);
  EXPECT_EQ(Render("C.UTF-8"), WithUtf8Lines(kDesktopTree));
}

TEST_F(TreeFormatTest, DrawsDevicesWithoutTheirPortBelowTheControllers) {
  Collect(ReadFile(CapturePath("vm-desktop-usb-devices")));
  EXPECT_EQ(Render("C"), kScriptTree);
  EXPECT_EQ(Render("C.UTF-8"), WithUtf8Lines(kScriptTree));
}

TEST_F(TreeFormatTest, DrawsADeviceWithoutItsHub) {
  Collect(ReadFile(CapturePath("proc-manufacturer-keyword")));
  EXPECT_EQ(Render("C"), kLoneDeviceTree);
  EXPECT_EQ(Render("C.UTF-8"), kLoneDeviceTree);
}

TEST_F(TreeFormatTest, CutsNothingOffInAFileThatADeviceCanSay) {
  AddDevice("Bus 01  Device   2", std::string(256, 'x'), 3);
  EXPECT_EQ(Rows(), "Bus 01, device 2 " + std::string(256, 'x') + " 0000:0000 480 Mbit/s\n");
}

TEST_F(TreeFormatTest, SaysOfADeviceWithoutNameThatItHasNone) {
  AddDevice("Bus 01  Device   2", "Not Available", 3);
  AddDevice("Bus 01  Device   3", "", 3);
  EXPECT_EQ(Rows(),
            "Bus 01, device 2 (no name) 0000:0000 480 Mbit/s\n"
            "Bus 01, device 3 (no name) 0000:0000 480 Mbit/s\n");
}

TEST_F(TreeFormatTest, NamesTheSpeedClassOfADevice) {
  for (unsigned char speedClass = 0; speedClass <= 4; ++speedClass) {
    AddDevice("Bus 01  Device   " + std::to_string(speedClass), "d", speedClass);
  }
  EXPECT_EQ(Rows(),
            "Bus 01, device 0 d      0000:0000\n"
            "Bus 01, device 1 d      0000:0000 1.5 Mbit/s\n"
            "Bus 01, device 2 d      0000:0000  12 Mbit/s\n"
            "Bus 01, device 3 d      0000:0000 480 Mbit/s\n"
            "Bus 01, device 4 d      0000:0000  5+ Gbit/s\n");
}

TEST_F(TreeFormatTest, ShowsTheSpeedOfAPortInWholeUnits) {
  AddPort("Bus 01  Device   1 Port 00", 1000000, kFreePort);
  AddPort("Bus 01  Device   1 Port 01", 2500000000, kFreePort);
  AddPort("Bus 01  Device   1 Port 02", 20000000000, kFreePort);
  EXPECT_EQ(Rows(),
            "Bus 01, hub 1, port 00 free         1 Mbit/s\n"
            "Bus 01, hub 1, port 01 free      2500 Mbit/s\n"
            "Bus 01, hub 1, port 02 free        20 Gbit/s\n");
}

TEST_F(TreeFormatTest, TakesTheBusFromBeforeTheFirstDevice) {
  AddController("Bus 01 Device 7  Device   1", "c");
  AddDevice("Bus 02 Device 7  Device   2", "d", 3);
  EXPECT_EQ(Rows(),
            "Bus 01           c\n"
            "Bus 02, device 2 d      0000:0000 480 Mbit/s\n");
}

TEST_F(TreeFormatTest, PrintsVendorAndProductAsTheUsualToolsDo) {
  CommitEntity("KALDO_USBDevice", "Bus 01  Device   2",
               {{"Description", TCIMValue("a device")},
                {"VendorID", TCIMValue(static_cast<unsigned short>(0x00AB))},
                {"USBDeviceID", TCIMValue(static_cast<unsigned short>(0xFFFF))}});
  EXPECT_EQ(Rows(), "Bus 01, device 2 a device 00ab:ffff\n");
}

TEST_F(TreeFormatTest, ShowsAPortThatTwoDevicesClaimWithBothBelow) {
  Path port = AddPort("Bus 01  Device   1 Port 00", 5000000000, kInUse);
  Path one = AddDevice("Bus 01  Device   2", "one", 2);
  Path two = AddDevice("Bus 01  Device   3", "two", 2);
  Associate("KALDO_USBConnection", port, one);
  Associate("KALDO_USBConnection", port, two);
  const std::vector<std::string> lines = Lines(Rows());
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_NE(lines[0].find(" in use "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find(" 5 Gbit/s"), std::string::npos) << lines[0];
  EXPECT_EQ(lines[1].rfind("|-Device 2 ", 0), 0U) << lines[1];
  EXPECT_EQ(lines[2].rfind("`-Device 3 ", 0), 0U) << lines[2];
}

TEST_F(TreeFormatTest, NamesTheHubOnAPortWhoseOwnHubIsNotShown) {
  Path port = AddPort("Bus 01  Device   1 Port 02", 480000000, kInUse);
  Path hub = AddHub("Bus 01  Device   2", "Desk hub", 4);
  Associate("KALDO_USBConnection", port, hub);
  EXPECT_NE(Rows().find(" Desk hub, 4 ports "), std::string::npos) << Rows();
}

TEST_F(TreeFormatTest, PlacesAPortWithoutItsHubByTheHubsNumber) {
  AddPort("Bus 01  Device   2 Port 07", 480000000, kFreePort);
  EXPECT_EQ(Rows(), "Bus 01, hub 2, port 07 free      480 Mbit/s\n");
}

TEST_F(TreeFormatTest, ShowsEveryHubOfAChainThatNoRealMachineHas) {
  constexpr int kLength = 200;
  Collect(ChainOfHubs(kLength));
  // The controller, its root hub, and a row per port, in which the next hub stands.
  const std::vector<std::string> lines = Lines(Rows());
  ASSERT_EQ(lines.size(), 2U + kLength);
  for (std::size_t line = 2; line + 1 < lines.size(); ++line) {
    EXPECT_NE(lines[line].find("Link, 1 port"), std::string::npos) << lines[line];
  }
  EXPECT_NE(lines.back().find(" free "), std::string::npos) << lines.back();
}

TEST_F(TreeFormatTest, CountsWhatThereIsAndThePortsThatAreFree) {
  AddController("Bus 01  Device   1", "c");
  AddHub("Bus 01  Device   1", "h", 1);
  AddPort("Bus 01  Device   1 Port 00", 12000000, kFreePort);
  AddDevice("Bus 01  Device   2", "d", 1);
  EXPECT_EQ(Lines(Render("C")).front(), "testhost: 1 controller, 1 hub, 1 port (1 free), 1 device");
  AddPort("Bus 01  Device   1 Port 01", 12000000, kInUse);
  EXPECT_EQ(Lines(Render("C")).front(), "testhost: 1 controller, 1 hub, 2 ports (1 free), 1 device");
}

TEST_F(TreeFormatTest, AlignsColumnsAfterNamesOfOtherScripts) {
  AddDevice("Bus 01  Device   2", "caf\xC3\xA9", 2);
  AddDevice("Bus 01  Device   3", "kaffee", 2);
  const std::vector<std::string> lines = Lines(Render("C.UTF-8"));
  EXPECT_EQ(lines.at(3), "Bus 01, device 2 caf\xC3\xA9   0000:0000  12 Mbit/s");
  EXPECT_EQ(lines.at(4), "Bus 01, device 3 kaffee 0000:0000  12 Mbit/s");
}

TEST_F(TreeFormatTest, SpellsCharactersThatTheLocaleLacks) {
  AddDevice("Bus 01  Device   2", "caf\xC3\xA9", 2);
  EXPECT_EQ(Rows(), "Bus 01, device 2 caf\\xc3\\xa9 0000:0000  12 Mbit/s\n");
}

TEST_F(TreeFormatTest, EscapesTheSystemNameInTheHeading) {
  AddController("Bus 01  Device   1", "c");
  host.SetSystemName("a\nb\x1B[2J");
  EXPECT_EQ(Lines(Render("C")).front(), "a\\nb\\x1b[2J: 1 controller, 0 hubs, 0 ports (0 free), 0 devices");
}

}  // namespace
}  // namespace usbinfo_test
