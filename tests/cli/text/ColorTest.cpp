// When a text is coloured: what the option says, else what the terminal and the environment say.
#include <gmock/gmock.h>

#include <string>

#include "cli/text/Color.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::Color;
using cli::UsesColor;

namespace usbinfo_test {
namespace {

constexpr const char* kEscape = "\x1B[";

TEST(Color, IsUsedAlwaysOrNeverWhereThatIsSaid) {
  for (const bool isStandardOutput : {true, false}) {
    EXPECT_TRUE(UsesColor(Color::kAlways, isStandardOutput));
    EXPECT_FALSE(UsesColor(Color::kNever, isStandardOutput));
  }
}

TEST(Color, IsNotUsedInAFileUnlessThatIsSaid) {
  EXPECT_FALSE(UsesColor(Color::kAuto, false));
}

/// Whether a difference is coloured on a terminal.
bool IsColored(std::vector<std::string> options, const std::string& terminal, const char* noColor = nullptr) {
  const std::vector<std::string> command = {"diff", "--as-is", CapturePath("vm-desktop-debugfs"),
                                            CapturePath("vm-desktop-usb-devices")};
  options.insert(options.begin(), command.begin(), command.end());
  Command run(std::move(options));
  run.OutputToTerminal(80).Set("TERM", terminal).Set("NO_COLOR", noColor == nullptr ? "" : noColor);
  const CommandResult result = run.Run();
  EXPECT_EQ(result.status, 1);
  return result.output.find(kEscape) != std::string::npos;
}

TEST(Color, IsUsedOnATerminal) {
  EXPECT_TRUE(IsColored({}, "xterm"));
  EXPECT_TRUE(IsColored({"--color", "auto"}, "xterm"));
}

TEST(Color, IsNotUsedOnATerminalThatHasNone) {
  EXPECT_FALSE(IsColored({}, "dumb"));
  EXPECT_FALSE(IsColored({}, ""));
}

TEST(Color, IsNotUsedWhereTheEnvironmentForbidsIt) {
  EXPECT_FALSE(IsColored({}, "xterm", "1"));
  EXPECT_TRUE(IsColored({"--color", "always"}, "xterm", "1"));
}

TEST(Color, IsNotUsedWhereTheOptionForbidsIt) {
  EXPECT_FALSE(IsColored({"--color", "never"}, "xterm"));
}

}  // namespace
}  // namespace usbinfo_test
