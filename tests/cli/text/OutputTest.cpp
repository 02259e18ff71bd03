// Files that are written whole or not at all: what is there before, during and after, and what is left behind
// when it goes wrong.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "cli/text/Output.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"

using cli::WriteFile;
using sys::FileDescriptor;
using testing::ElementsAre;
using testing::StartsWith;

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;

mode_t ModeOf(const std::string& path) {
  struct stat status {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0);
  return status.st_mode & 07777;
}

std::string ErrorOfWriting(const std::string& path, const std::string& text = "new") {
  return UserErrorOf([&] { WriteFile(path, text); });
}

/// What this process calls the file that it writes before it takes its place.
std::string OwnName(int number) {
  return ".usbinfo-" + std::to_string(::getpid()) + "-" + std::to_string(number) + ".new";
}

TEST(WriteFile, MakesANewFileThatOthersMayReadAsTheUserAllows) {
  const TemporaryFolder folder;
  const mode_t before = ::umask(0027);
  WriteFile(folder.File("out"), "text\n");
  ::umask(before);
  EXPECT_EQ(ReadFile(folder.File("out")), "text\n");
  EXPECT_EQ(ModeOf(folder.File("out")), 0640U);
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(WriteFile, WritesEveryByteOfALongTextWithZeroBytes) {
  const TemporaryFolder folder;
  std::string text(3000000, 'x');
  text[1000] = '\0';
  WriteFile(folder.File("out"), text);
  EXPECT_TRUE(ReadFile(folder.File("out")) == text);
}

TEST(WriteFile, ReplacesALongerFile) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old and long");
  WriteFile(path, "new");
  EXPECT_EQ(ReadFile(path), "new");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(WriteFile, LeavesTheOldTextToThoseWhoAreReadingIt) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  const FileDescriptor reader(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  WriteFile(path, "new");
  EXPECT_EQ(sys::ReadAll(reader.Get()), "old");
}

TEST(WriteFile, KeepsTheModeOfTheFileThatItReplaces) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  for (const mode_t mode : {0600U, 0444U, 0755U, 0666U, 02640U}) {
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    WriteFile(path, "new");
    EXPECT_EQ(ModeOf(path), mode);
  }
}

TEST(WriteFile, FollowsLinksToTheFileThatTheyMean) {
  const TemporaryFolder folder;
  const TemporaryFolder elsewhere;
  const std::string target = elsewhere.File("target", "old");
  fs::create_symlink(target, folder.File("second"));
  fs::create_symlink("second", folder.File("first"));
  WriteFile(folder.File("first"), "new");
  EXPECT_EQ(ReadFile(target), "new");
  EXPECT_EQ(fs::read_symlink(folder.File("first")), "second");
  EXPECT_EQ(fs::read_symlink(folder.File("second")), target);
  EXPECT_THAT(folder.Names(), ElementsAre("first", "second"));
  EXPECT_THAT(elsewhere.Names(), ElementsAre("target"));
}

TEST(WriteFile, MakesTheFileThatALinkMeans) {
  const TemporaryFolder folder;
  const TemporaryFolder elsewhere;
  fs::create_symlink(elsewhere.File("target"), folder.File("link"));
  WriteFile(folder.File("link"), "new");
  EXPECT_EQ(ReadFile(elsewhere.File("target")), "new");
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  EXPECT_THAT(elsewhere.Names(), ElementsAre("target"));
}

TEST(WriteFile, LeavesALinkToItselfAlone) {
  const TemporaryFolder folder;
  fs::create_symlink("link", folder.File("link"));
  EXPECT_EQ(ErrorOfWriting(folder.File("link")),
            "cannot write " + folder.File("link") +
                ": Too many levels of symbolic links; name a writable file with --output");
  EXPECT_TRUE(fs::is_symlink(folder.File("link")));
  EXPECT_THAT(folder.Names(), ElementsAre("link"));
}

TEST(WriteFile, AppendsToWhatIsOpenAlready) {
  const TemporaryFolder folder;
  const sys::FileDescriptor log(
      ::open(folder.File("log", "first\n").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  WriteFile("/proc/self/fd/" + std::to_string(log.Get()), "second\n");
  EXPECT_EQ(ReadFile(folder.File("log")), "first\nsecond\n");
  EXPECT_THAT(folder.Names(), ElementsAre("log"));
}

TEST(WriteFile, AppendsToWhatAnotherProcessCallsOpen) {
  const TemporaryFolder folder;
  const sys::FileDescriptor log(
      ::open(folder.File("log", "first\n").c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  WriteFile("/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(log.Get()), "second\n");
  EXPECT_EQ(ReadFile(folder.File("log")), "first\nsecond\n");
  EXPECT_THAT(folder.Names(), ElementsAre("log"));
}

TEST(WriteFile, WritesIntoNoFileThatIsThereInPlaceOfItsOwn) {
  const TemporaryFolder folder;
  const std::string victim = folder.File("victim", "old");
  fs::create_symlink("victim", folder.File(OwnName(0)));
  WriteFile(folder.File("out"), "new");
  EXPECT_EQ(ReadFile(victim), "old");
  EXPECT_EQ(ReadFile(folder.File("out")), "new");
  EXPECT_THAT(folder.Names(), ElementsAre(OwnName(0), "out", "victim"));
}

TEST(WriteFile, FailsWhereFilesInPlaceOfItsOwnFillTheFolder) {
  const TemporaryFolder folder;
  for (int number = 0; number <= 100; ++number) folder.File(OwnName(number), "left");
  EXPECT_EQ(ErrorOfWriting(folder.File("out")),
            "cannot write " + folder.File("out") + ": File exists; name a writable file with --output");
  EXPECT_EQ(folder.Names().size(), 101U);
  EXPECT_EQ(ReadFile(folder.File(OwnName(100))), "left");
}

TEST(WriteFile, MakesAFileOfTheLongestName) {
  const TemporaryFolder folder;
  const std::string name(255, 'n');
  WriteFile(folder.File(name), "text");
  EXPECT_EQ(ReadFile(folder.File(name)), "text");
  EXPECT_THAT(folder.Names(), ElementsAre(name));
}

TEST(WriteFile, FindsAFileNamedWithoutItsFolder) {
  const TemporaryFolder folder;
  const fs::path before = fs::current_path();
  fs::current_path(folder.Path());
  WriteFile("out", "text");
  fs::current_path(before);
  EXPECT_EQ(ReadFile(folder.File("out")), "text");
}

TEST(WriteFile, LeavesTheOldFileAndNothingElseWhenTheDiskIsFull) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  std::string error;
  {
    const FileSizeLimit limit(1000);
    error = ErrorOfWriting(path, std::string(5000, 'x'));
  }
  EXPECT_THAT(error, StartsWith("cannot write " + path + ": File too large"));
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(WriteFile, LeavesNothingOfANewFileThatCannotBeFinished) {
  const TemporaryFolder folder;
  {
    const FileSizeLimit limit(1000);
    EXPECT_NE(ErrorOfWriting(folder.File("out"), std::string(5000, 'x')), "");
  }
  EXPECT_THAT(folder.Names(), ElementsAre());
}

TEST(WriteFile, RefusesAFolderThatMayNotBeChanged) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  fs::permissions(folder.Path(), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                     fs::perms::others_exec);
  std::string errorForOld;
  std::string errorForNew;
  {
    const NoPrivileges none;
    errorForOld = ErrorOfWriting(path);
    errorForNew = ErrorOfWriting(folder.File("new"));
  }
  fs::permissions(folder.Path(), fs::perms::owner_all);
  EXPECT_THAT(errorForOld, StartsWith("cannot write " + path + ": Permission denied"));
  EXPECT_THAT(errorForNew, StartsWith("cannot write " + folder.File("new") + ": Permission denied"));
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(WriteFile, RefusesAMissingFolder) {
  const TemporaryFolder folder;
  const std::string path = folder.File("missing/out");
  EXPECT_THAT(ErrorOfWriting(path), StartsWith("cannot write " + path + ": No such file or directory"));
  EXPECT_THAT(folder.Names(), ElementsAre());
}

TEST(WriteFile, RefusesAFolderAsTheFile) {
  const TemporaryFolder folder;
  const std::string path = folder.Path();
  EXPECT_THAT(ErrorOfWriting(path), StartsWith("cannot write " + path + ": Is a directory"));
  EXPECT_THAT(folder.Names(), ElementsAre());
  EXPECT_TRUE(fs::is_directory(path));
}

// Without privileges, so that no fault in what is tested can take the place of the machine's own device.
TEST(WriteFile, WritesToADeviceWithoutReplacingIt) {
  const NoPrivileges none;
  EXPECT_EQ(ErrorOfWriting("/dev/null"), "");
  EXPECT_THAT(ErrorOfWriting("/dev/full"), StartsWith("cannot write /dev/full: No space left on device"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(WriteFile, WritesIntoANamedPipe) {
  const TemporaryFolder folder;
  const std::string path = folder.File("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  const FileDescriptor reader(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  WriteFile(path, "text");
  EXPECT_EQ(sys::ReadAll(reader.Get()), "text");
  EXPECT_TRUE(fs::is_fifo(path));
}

}  // namespace
}  // namespace usbinfo_test
