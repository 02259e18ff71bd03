// -v: what the tree shows below each hub and device, how it prints the stored numbers, and that the lines of
// the tree stay intact.
#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "cli/format/RenderOptions.h"
#include "cli/format/TreeFormat.h"
#include "cli/model/UsbIds.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/RunCommand.h"

using NKESTA20::TCIMValue;
using testing::ElementsAre;
using testing::HasSubstr;

namespace usbinfo_test {
namespace {

class VerboseTreeTest : public CliTest {
 protected:
  std::string Render() const { return cli::RenderTree(Collected(), options); }
  /// The rows below the heading and the titles.
  std::vector<std::string> Rows() const {
    const CharacterSet characters("C.UTF-8");
    const std::vector<std::string> lines = Lines(Render());
    return {lines.begin() + 3, lines.end()};
  }
  void AddDeviceWith(PropertyList properties) {
    properties.emplace_back("Description", TCIMValue("Mouse"));
    CommitEntity("KALDO_USBDevice", "Bus 01  Device   2", std::move(properties));
  }
  static TCIMValue Byte(unsigned char value) { return TCIMValue(value); }
  static TCIMValue Word(unsigned short value) { return TCIMValue(value); }

  cli::RenderOptions options = Verbose();

 private:
  static cli::RenderOptions Verbose() {
    cli::RenderOptions verbose{false};
    verbose.isVerbose = true;
    return verbose;
  }
};

TEST_F(VerboseTreeTest, ShowsStringsVersionAndClassBelowADevice) {
  AddDeviceWith({{"Manufacturer", TCIMValue("Maker")},
                 {"SerialNumber", TCIMValue("S1")},
                 {"USBVersion", Word(110)},
                 {"NumberOfConfigs", Byte(2)},
                 {"ClassCode", Byte('e' - '0')},
                 {"SubclassCode", Byte(0)},
                 {"ProtocolCode", Byte('F' - '0')}});
  EXPECT_THAT(Rows(),
              ElementsAre("Bus 01, device 2 Mouse                              0000:0000",
                          "                 manufacturer Maker",  //
                          "                 serial number S1", "                 USB 1.10, 2 configurations",
                          "                 class e*, subclass 0*, protocol F*"));
}

TEST_F(VerboseTreeTest, LeavesOutStringsThatADeviceHasNot) {
  AddDeviceWith({{"Manufacturer", TCIMValue("Not Available")},
                 {"USBVersion", Word(200)},
                 {"NumberOfConfigs", Byte(1)},
                 {"ClassCode", Byte(9)}});
  EXPECT_THAT(Rows(), ElementsAre("Bus 01, device 2 Mouse                              0000:0000",
                                  "                 USB 2.00, 1 configuration",
                                  "                 class 9*, subclass 0*, protocol 0*"));
}

TEST_F(VerboseTreeTest, SaysSoWhereTheListHasNoNumbers) {
  const unsigned char beyond = 0x100 - '0';
  AddDeviceWith({{"NumberOfConfigs", Byte(beyond)},
                 {"ClassCode", Byte(beyond)},
                 {"SubclassCode", Byte(10)},
                 {"ProtocolCode", Byte('g' - '0')}});
  EXPECT_THAT(Rows(), ElementsAre("Bus 01, device 2 Mouse                           0000:0000",
                                  "                 USB version unknown",
                                  "                 class ?, subclass ?, protocol ?"));
}

TEST_F(VerboseTreeTest, ShowsTheListedNameOfTheDeviceOnASeparateLine) {
  const cli::UsbIds names("0000  Vendor\n");
  options.names = &names;
  AddDeviceWith({{"SerialNumber", TCIMValue("S1")}});
  EXPECT_THAT(Rows(), ElementsAre("Bus 01, device 2 Mouse                                 0000:0000",
                                  "                 serial number S1",  //
                                  "                 known as (Vendor)",
                                  "                 USB version unknown, 0 configurations",
                                  "                 class 0*, subclass 0*, protocol 0*"));
}

TEST_F(VerboseTreeTest, LetsNoStringForgeALine) {
  AddDeviceWith({{"Manufacturer", TCIMValue("M\nserial number forged")},
                 {"SerialNumber", TCIMValue(std::string("a\0b\x1B[2J", 7))}});
  const std::vector<std::string> rows = Rows();
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[1], "                 manufacturer M\\nserial number forged");
  EXPECT_EQ(rows[2], "                 serial number a\\x00b\\x1b[2J");
}

CommandResult RunVerbose(const std::string& list, unsigned short columns, const std::string& locale) {
  Command command({"--devices", "-", "--system-name", "testhost", "-v"});
  command.Input(list).Set("LC_ALL", locale);
  if (columns != 0) command.OutputToTerminal(columns);
  return command.Run();
}

TEST(Verbose, KeepsTheLinesOfTheTreeBesideTheDetails) {
  std::vector<std::string> lines =
      Lines(RunVerbose(ReadFile(CapturePath("vm-desktop-debugfs")), 80, "C").output);
  const std::vector<std::string> expected = {
      "USB       KIND         DEVICE                               ID             SPEED",
      "usb1      controller   xHCI Host Controller                 1d6b:0002 480 Mbit/s",
      "|                      manufacturer Linux 6.1.0-56-amd64 xhci-hcd",
      "|                      serial number 0000:00:01.0",
      "|                      USB 2.00, 1 configuration, revision 6.01",
      "|                      driver hub",
      "|                      device number 1",
      "|-1-1                  free                                           480 Mbit/s",
      "|-1-2                  free                                           480 Mbit/s",
      "|-1-3     hub          QEMU USB Hub, 8 ports                0409:55aa  12 Mbit/s",
      "| |                    manufacturer QEMU",
      "| |                    serial number 314159-0000:00:01.0-3",
      "| |                    USB 1.10, 1 configuration, revision 1.01",
      "| |                    driver hub",
      "| |                    device number 2",
      "| |-1-3.1 keyboard     QEMU USB Keyboard                    0627:0001  12 Mbit/s"};
  ASSERT_GE(lines.size(), expected.size() + 2);
  lines.erase(lines.begin(), lines.begin() + 2);
  lines.resize(expected.size());
  EXPECT_EQ(lines, expected);
}

TEST(Verbose, IsTheSameInItsLongForm) {
  const std::string path = CapturePath("vm-desktop-debugfs");
  EXPECT_EQ(RunUsbinfo({"--devices", path, "--verbose"}).output,
            RunUsbinfo({"--devices", path, "-v"}).output);
}

TEST(Verbose, CutsTheLongestStringsToTheTerminal) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    for (const std::string& name : {std::string(300, 'x'), std::string(300, '\x1B')}) {
      const std::vector<std::string> lines = Lines(RunVerbose(DeviceListWith(name), 80, locale).output);
      for (const std::string& line : lines) EXPECT_LE(DisplayWidth(line), 80) << line;
      ASSERT_GE(lines.size(), 5U);
      EXPECT_THAT(lines[lines.size() - 5], testing::EndsWith(" 0627:0001  12 Mbit/s"));
      EXPECT_THAT(lines[lines.size() - 3], HasSubstr("            serial number "));
    }
  }
}

TEST(Verbose, CutsWideCharactersWhole) {
  std::string wide;
  for (int character = 0; character < 100; ++character) wide += "\xE5\xAD\x97";
  for (const std::string& line : Lines(RunVerbose(DeviceListWith(wide), 80, "C.UTF-8").output)) {
    EXPECT_LE(DisplayWidth(line), 80) << line;
  }
}

}  // namespace
}  // namespace usbinfo_test
