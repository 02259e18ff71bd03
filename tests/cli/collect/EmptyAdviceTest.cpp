// The message when this machine has nothing to show: for every combination of facts, the reason and what to
// do.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>
#include <string>

#include "cli/collect/EmptyAdvice.h"
#include "tests/cli/support/CliTest.h"

using cli::AdviseOnEmptyMachine;
using cli::MachineFacts;
using List = cli::MachineFacts::DebugfsList;

namespace usbinfo_test {
namespace {

struct AdviceRow {
  const char* name;
  MachineFacts facts;
  const char* advice;
};

std::ostream& operator<<(std::ostream& out, const AdviceRow& row) {
  return out << row.name;
}

constexpr const char* kNoUsb =
    "no USB device found: this machine has no USB (/sys/bus/usb is missing); show a saved list with "
    "--devices FILE";
constexpr const char* kEmptyList =
    "no USB device found: /sys/kernel/debug/usb/devices names none; is a host controller's driver loaded?";
constexpr const char* kSilentCommand =
    "no USB device found: usb-devices prints none; is a host controller's driver loaded?";
constexpr const char* kNoPermission =
    "no USB device found: no permission to read /sys/kernel/debug/usb/devices, and usb-devices is not "
    "installed; "
    "run as root, or install the package usbutils";
constexpr const char* kNothingThere =
    "no USB device found: /sys/kernel/debug/usb/devices is missing, and usb-devices is not installed; mount "
    "debugfs with \"mount -t debugfs none /sys/kernel/debug\", or install the package usbutils";

const AdviceRow kRows[] = {
    {"NoUsbAtAll", {false, List::kMissing, false}, kNoUsb},
    {"NoUsbButTheCommand", {false, List::kMissing, true}, kNoUsb},
    {"NoUsbAndNoPermission", {false, List::kForbidden, false}, kNoUsb},
    {"NoUsbNoPermissionButTheCommand", {false, List::kForbidden, true}, kNoUsb},
    {"NoUsbButAList", {false, List::kReadable, false}, kNoUsb},
    {"NoUsbButAListAndTheCommand", {false, List::kReadable, true}, kNoUsb},
    {"NoDevices",
     {true, List::kForbidden, false, true},
     "no USB device found: /sys/bus/usb/devices has none; is a host controller's driver loaded?"},
    {"EmptyList", {true, List::kReadable, false}, kEmptyList},
    {"EmptyListAndTheCommand", {true, List::kReadable, true}, kEmptyList},
    {"SilentCommandWithoutPermission", {true, List::kForbidden, true}, kSilentCommand},
    {"SilentCommandWithoutList", {true, List::kMissing, true}, kSilentCommand},
    {"NoPermissionAndNoCommand", {true, List::kForbidden, false}, kNoPermission},
    {"NoListAndNoCommand", {true, List::kMissing, false}, kNothingThere},
};

class EmptyAdviceTest : public testing::TestWithParam<AdviceRow> {};

TEST_P(EmptyAdviceTest, SaysWhyAndWhatToDo) {
  EXPECT_EQ(AdviseOnEmptyMachine(GetParam().facts), GetParam().advice);
}

INSTANTIATE_TEST_SUITE_P(Machines, EmptyAdviceTest, testing::ValuesIn(kRows),
                         [](const auto& row) { return std::string(row.param.name); });

/// The search path, restored by the destructor.
class SearchPath {
 public:
  explicit SearchPath(const char* value) : fBefore(std::getenv("PATH")) { Set(value); }
  SearchPath(const SearchPath&) = delete;
  SearchPath& operator=(const SearchPath&) = delete;
  ~SearchPath() { Set(fBefore.c_str()); }

 private:
  static void Set(const char* value) { EXPECT_EQ(::setenv("PATH", value, 1), 0); }

  std::string fBefore;
};

TEST(MachineFacts, FindTheCommandInAnyFolderOfTheSearchPath) {
  const TemporaryFolder empty;
  const TemporaryFolder full;
  full.Script("usb-devices", "exit 0");
  const SearchPath path((empty.Path().string() + ":" + full.Path().string()).c_str());
  EXPECT_TRUE(MachineFacts::OfThisMachine().hasListCommand);
}

TEST(MachineFacts, MissTheCommandThatNoFolderHolds) {
  const TemporaryFolder folder;
  folder.Script("usb-devices-not", "exit 0");
  const SearchPath path(folder.Path().c_str());
  EXPECT_FALSE(MachineFacts::OfThisMachine().hasListCommand);
}

TEST(MachineFacts, PassOverAFileThatCannotBeRun) {
  const TemporaryFolder folder;
  folder.File("usb-devices", "text");
  const SearchPath path(folder.Path().c_str());
  EXPECT_FALSE(MachineFacts::OfThisMachine().hasListCommand);
}

TEST(MachineFacts, PassOverAFolderOfTheCommandsName) {
  const TemporaryFolder folder;
  std::filesystem::create_directory(folder.File("usb-devices"));
  const SearchPath path(folder.Path().c_str());
  EXPECT_FALSE(MachineFacts::OfThisMachine().hasListCommand);
}

TEST(MachineFacts, TakeAnEmptyFolderOfTheSearchPathForTheCurrentOne) {
  const TemporaryFolder folder;
  folder.Script("usb-devices", "exit 0");
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.Path());
  for (const char* value : {"", ":/nowhere", "/nowhere:", "/nowhere::/nowhere"}) {
    const SearchPath path(value);
    EXPECT_TRUE(MachineFacts::OfThisMachine().hasListCommand) << value;
  }
  std::filesystem::current_path(before);
}

TEST(MachineFacts, ShowWhetherTheKernelHasUsb) {
  EXPECT_EQ(MachineFacts::OfThisMachine().hasUsb, std::filesystem::exists("/sys/bus/usb"));
}

}  // namespace
}  // namespace usbinfo_test
