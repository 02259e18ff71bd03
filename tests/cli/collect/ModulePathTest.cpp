// Where the command looks for the plug-in when none is named: in its own folder, then where an installation
// puts it.
#include <gmock/gmock.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "cli/collect/ModulePath.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;

/// A copy of the command in a folder `bin`, as in an installation.
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
  fs::copy_file(FAKE_UDEV, Installed() / "usbinfo-plugin.so");
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

TEST(FindPluginModule, LooksNowhereWithoutTheLinkToTheProgram) {
  // Beside the current folder's copy it would find one.
  const TemporaryFolder folder;
  fs::copy_file(MODULE_PATH, folder.Path() / "usbinfo-plugin.so");
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  EXPECT_EQ(UserErrorOf([&] { cli::FindPluginModule(folder.File("missing")); }),
            "cannot find the plug-in: " + folder.File("missing") +
                ": No such file or directory; mount /proc, or name the module with --plugin FILE");
  fs::create_symlink("usbinfo", folder.Path() / "relative");
  EXPECT_EQ(UserErrorOf([&] { cli::FindPluginModule(folder.File("relative")); }),
            "cannot find the plug-in: " + folder.File("relative") +
                ": no absolute path; mount /proc, or name the module with --plugin FILE");
  fs::current_path(before);
}

TEST(SetuidProgram, RefusesAModuleAndASearchPathOfItsCaller) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can make a set-user-ID program that gives rights";
  const TemporaryFolder folder;
  const std::string probe = folder.File("probe");
  fs::copy_file(SETUID_PROBE, probe);
  fs::permissions(probe, fs::perms::set_uid | fs::perms{0755});
  const CommandResult result =
      Command({"/tmp/given.so"}).Program(probe).AsOrdinaryUser().Set("PATH", folder.Path()).Run();
  if (result.status == 1) GTEST_SKIP() << "set-user-ID files give no rights here";
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(
      result.output,
      "PATH=/usr/sbin:/usr/bin:/sbin:/bin\n"
      "--plugin is refused to a program with set-user-ID, set-group-ID or capabilities; leave it out\n");
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
