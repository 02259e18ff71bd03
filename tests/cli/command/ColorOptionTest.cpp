// --color: which outputs are coloured, what the colours mean, and that no device can send colours.
#include <gmock/gmock.h>

#include <regex>
#include <string>
#include <vector>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/HostileDevices.h"
#include "tests/cli/support/RunCommand.h"

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

Command Desktop(std::vector<std::string> options) {
  const std::vector<std::string> common = {"--devices", CapturePath("vm-desktop-debugfs"), "--system-name",
                                           "testhost"};
  options.insert(options.begin(), common.begin(), common.end());
  Command command(std::move(options));
  command.Set("TERM", "xterm");
  return command;
}

Command DesktopOnTerminal(std::vector<std::string> options = {}) {
  Command command = Desktop(std::move(options));
  command.OutputToTerminal(80);
  return command;
}

bool IsColored(const std::string& text) {
  return text.find('\x1B') != std::string::npos;
}

std::string WithoutColors(const std::string& text) {
  return std::regex_replace(text, std::regex("\x1B\\[(0|1|2|36)m"), "");
}

TEST(ColorOption, IsLeftToTheTerminal) {
  EXPECT_TRUE(IsColored(DesktopOnTerminal().Run().output));
  EXPECT_TRUE(IsColored(DesktopOnTerminal({"--color", "auto"}).Run().output));
  EXPECT_FALSE(IsColored(Desktop({}).Run().output));
  EXPECT_FALSE(IsColored(Desktop({"--color", "auto"}).Run().output));
}

TEST(ColorOption, IsOffOnATerminalThatHasNone) {
  EXPECT_FALSE(IsColored(DesktopOnTerminal().Set("TERM", "dumb").Run().output));
  EXPECT_FALSE(IsColored(DesktopOnTerminal().Set("TERM", "").Run().output));
}

TEST(ColorOption, HonoursNoColorWhereItHoldsSomething) {
  EXPECT_FALSE(IsColored(DesktopOnTerminal().Set("NO_COLOR", "1").Run().output));
  EXPECT_FALSE(IsColored(DesktopOnTerminal().Set("NO_COLOR", "0").Run().output));
  EXPECT_TRUE(IsColored(DesktopOnTerminal().Set("NO_COLOR", "").Run().output));
}

TEST(ColorOption, NeverColoursNothing) {
  EXPECT_FALSE(IsColored(DesktopOnTerminal({"--color", "never"}).Run().output));
}

TEST(ColorOption, AlwaysColoursWhateverTheEnvironmentSays) {
  EXPECT_TRUE(
      IsColored(Desktop({"--color", "always"}).Set("NO_COLOR", "1").Set("TERM", "dumb").Run().output));
}

TEST(ColorOption, ColoursAFileOnlyAlways) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out");
  EXPECT_EQ(DesktopOnTerminal({"--output", path}).Run().status, 0);
  EXPECT_FALSE(IsColored(ReadFile(path)));
  EXPECT_EQ(DesktopOnTerminal({"--output", path, "--color", "always"}).Run().status, 0);
  EXPECT_TRUE(IsColored(ReadFile(path)));
}

TEST(ColorOption, ColoursNoExport) {
  for (const char* format : {"json", "jsonl", "cimxml", "mof", "dot", "html"}) {
    EXPECT_FALSE(IsColored(DesktopOnTerminal({"--color", "always", "--format", format}).Run().output))
        << format;
  }
}

TEST(ColorOption, AddsNothingButColours) {
  const std::vector<std::vector<std::string>> forms = {{}, {"-v"}, {"--format", "table"}};
  for (const std::vector<std::string>& form : forms) {
    std::vector<std::string> always = form;
    always.insert(always.end(), {"--color", "always"});
    EXPECT_EQ(WithoutColors(Desktop(always).Run().output), Desktop(form).Run().output);
    EXPECT_EQ(WithoutColors(DesktopOnTerminal(always).Run().output),
              DesktopOnTerminal(form).Set("TERM", "dumb").Run().output);
  }
}

TEST(ColorOption, ColoursControllersHubsAndFreePortsDifferently) {
  const std::vector<std::string> lines = Lines(Desktop({"--color", "always"}).Run().output);
  EXPECT_THAT(lines.at(3), StartsWith("\x1B[1musb1 "));
  EXPECT_EQ(lines.at(4),
            "├─1-1                           \x1B[2mfree                 \x1B[0m           \x1B[2m480 "
            "Mbit/s\x1B[0m");
  EXPECT_EQ(lines.at(6),
            "├─1-3              \x1B[36mhub         \x1B[0m \x1B[36mQEMU USB Hub, 8 ports\x1B[0m "
            "\x1B[36m0409:55aa\x1B[0m \x1B[36m 12 Mbit/s\x1B[0m");
  EXPECT_EQ(lines.at(7), "│ ├─1-3.1          keyboard     QEMU USB Keyboard     0627:0001  12 Mbit/s");
}

TEST(ColorOption, ColoursHeadingsAndFreePortsOfTheTableDifferently) {
  const std::string text =
      Desktop({"--format", "table", "--class", "controller", "--class", "port", "--color", "always"})
          .Run()
          .output;
  EXPECT_THAT(text, StartsWith("\x1B[1mKALDO_USBController: 4 instances\x1B[0m\nBUS CONTROLLER\n01  xHCI"));
  EXPECT_THAT(text, HasSubstr("\x1B[2mfree\x1B[0m\n"));
  EXPECT_THAT(text, HasSubstr("480 Mbit/s in use\n"));
}

TEST(ColorOption, EndsEveryColourOnItsLine) {
  for (const char* option : {"--format=tree", "--format=table", "-v"}) {
    for (const std::string& line : Lines(Desktop({option, "--color", "always"}).Run().output)) {
      const std::size_t last = line.rfind('\x1B');
      EXPECT_TRUE(last == std::string::npos || line.substr(last, 4) == "\x1B[0m") << line;
      EXPECT_THAT(WithoutColors(line), Not(testing::EndsWith(" ")));
    }
  }
}

TEST(ColorOption, LetsNoDeviceSendColours) {
  for (const char* locale : {"C", "C.UTF-8"}) {
    for (const char* option : {"--format=tree", "--format=table", "-v"}) {
      const std::string text = Command({"--devices", "-", "--color", "always", option})
                                   .Input(HostileDeviceList())
                                   .Set("LC_ALL", locale)
                                   .Run()
                                   .output;
      // A table of devices alone has no colours.
      EXPECT_EQ(IsColored(text), std::string(option) != "--format=table") << option;
      EXPECT_FALSE(IsColored(WithoutColors(text))) << option;
      EXPECT_THAT(text, Not(HasSubstr("\x1B[31m"))) << option;
    }
  }
}

}  // namespace
}  // namespace usbinfo_test
