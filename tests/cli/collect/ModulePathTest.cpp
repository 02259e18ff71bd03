// Where the command looks for the plug-in when none is named: beside itself, then where an installation puts
// it.
#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;

/// A copy of the command in a `bin` of its own, as an installation has it.
class ModulePathTest : public testing::Test {
 protected:
  ModulePathTest() {
    fs::create_directory(Folder());
    fs::copy_file(COMMAND_PATH, Folder() / "usbinfo");
  }

  fs::path Folder() const { return fFolder.Path() / "bin"; }
  fs::path Installed() const { return (Folder() / USBINFO_MODULE_DIR).lexically_normal(); }

  CommandResult RunCopy(const std::string& name = "bin/usbinfo") const {
    return Command({"--devices", CapturePath("vm-desktop-debugfs"), "--system-name", "testhost", "--format",
                    "json"})
        .Program(fFolder.File(name))
        .Set("LD_LIBRARY_PATH", fs::path(STANDIN_PATH).parent_path())
        .Run();
  }

  TemporaryFolder fFolder;
};

TEST_F(ModulePathTest, FindsTheModuleBesideTheCommand) {
  fs::copy_file(MODULE_PATH, Folder() / "usbinfo-plugin.so");
  const CommandResult result = RunCopy();
  EXPECT_EQ(result.output, Expected("vm-desktop-debugfs.json"));
  EXPECT_EQ(result.errors, "");
}

TEST_F(ModulePathTest, FindsTheModuleOfAnInstallation) {
  fs::create_directories(Installed());
  fs::copy_file(MODULE_PATH, Installed() / "usbinfo-plugin.so");
  const CommandResult result = RunCopy();
  EXPECT_EQ(result.output, Expected("vm-desktop-debugfs.json"));
  EXPECT_EQ(result.errors, "");
}

TEST_F(ModulePathTest, TakesTheModuleBesideTheCommandWhereAnInstallationHasOneToo) {
  fs::copy_file(MODULE_PATH, Folder() / "usbinfo-plugin.so");
  fs::create_directories(Installed());
  fs::copy_file(STANDIN_PATH, Installed() / "usbinfo-plugin.so");
  const CommandResult result = RunCopy();
  EXPECT_EQ(result.output, Expected("vm-desktop-debugfs.json"));
  EXPECT_EQ(result.errors, "");
}

TEST_F(ModulePathTest, FindsTheModuleForACommandCalledThroughALink) {
  fs::copy_file(MODULE_PATH, Folder() / "usbinfo-plugin.so");
  fs::create_symlink(Folder() / "usbinfo", fFolder.Path() / "link");
  EXPECT_EQ(RunCopy("link").output, Expected("vm-desktop-debugfs.json"));
}

TEST_F(ModulePathTest, SaysWhereItLookedAndWhatToDo) {
  const CommandResult result = RunCopy();
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "usbinfo: no plug-in: usbinfo-plugin.so is neither in " + Folder().string() +
                               " nor in " + Installed().string() + "; name it with --plugin FILE\n");
}

TEST(PluginOption, TakesAPathRelativeToTheCurrentFolder) {
  const fs::path before = fs::current_path();
  fs::current_path(fs::path(MODULE_PATH).parent_path());
  const CommandResult result =
      RunUsbinfo({"--devices", CapturePath("vm-desktop-debugfs"), "--system-name", "testhost", "--format",
                  "json", "--plugin", fs::path(MODULE_PATH).filename()});
  fs::current_path(before);
  EXPECT_EQ(result.output, Expected("vm-desktop-debugfs.json"));
  EXPECT_EQ(result.errors, "");
}

}  // namespace
}  // namespace usbinfo_test
