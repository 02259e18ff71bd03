// Files that are written completely or not at all: their state before, during and after, and what is left
// after a failure.
#include <fcntl.h>
#include <fmt/format.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include "cli/text/Output.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/SystemCalls.h"

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

constexpr uid_t kOtherUser = 1001;

std::string ErrorOfWriting(const std::string& path, const std::string& text = "new") {
  return UserErrorOf([&] { WriteFile(path, text); });
}

/// A folder for a test that only root can make, where everyone may create files.
class SharedFolder {
 public:
  SharedFolder() : fPath(fFolder.File("shared")) {
    fs::create_directory(fPath);
    EXPECT_EQ(::chmod(fPath.c_str(), 01777), 0);
  }
  /// Gives the file `name` to another user.
  std::string Give(const std::string& name) const {
    EXPECT_EQ(::lchown(File(name).c_str(), kOtherUser, kOtherUser), 0);
    return File(name);
  }
  std::string File(const std::string& name) const { return fPath + "/" + name; }
  const TemporaryFolder& Around() const { return fFolder; }

 private:
  TemporaryFolder fFolder;
  std::string fPath;
};

bool IsRoot() {
  return ::geteuid() == 0;
}

/// The calls that make a new file from an old one of another user, in order.
const std::vector<std::string> kCalls = {"openat", "write", "fchown", "fchmod", "fsync", "renameat"};

/// Each call that WriteFile makes over an old file of `owner` at `path`; `onCall` may fail it.
void WriteOver(const std::string& path, uid_t owner, const SystemCallHook::OnCall& onCall) {
  ASSERT_EQ(::chown(path.c_str(), owner, owner), 0);
  const SystemCallHook hook(onCall);
  WriteFile(path, "new");
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
  for (const mode_t mode : {0600U, 0444U, 0755U, 0666U, 0000U}) {
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    WriteFile(path, "new");
    EXPECT_EQ(ModeOf(path), mode);
  }
}

TEST(WriteFile, KeepsNeitherSetUserNorSetGroupNorSticky) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  ASSERT_EQ(::chmod(path.c_str(), 07751), 0);
  WriteFile(path, "new");
  EXPECT_EQ(ModeOf(path), 0751U);
}

TEST(WriteFile, ShowsTheNewContentToItsOwnerAloneUntilItIsWhole) {
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0644), 0);
  std::vector<std::string> seen;
  {
    const SystemCallHook hook([&](const SystemCall& call) {
      for (const std::string& name : folder.Names()) {
        if (name != "out") seen.push_back(call.name + " " + fmt::format("{:o}", ModeOf(folder.File(name))));
      }
      return 0;
    });
    WriteFile(path, "new");
  }
  EXPECT_THAT(seen, ElementsAre("write 600", "fchmod 600", "fsync 644", "renameat 644"));
}

TEST(WriteFile, LeavesAFileOfAnotherUserToItsOwnerWhereRootReplacesIt) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  WriteOver(path, kOtherUser, [](const SystemCall&) { return 0; });
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kOtherUser);
  EXPECT_EQ(status.st_gid, kOtherUser);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
  EXPECT_EQ(ReadFile(path), "new");
}

TEST(WriteFile, LeavesTheOldFileWhereRootCannotKeepItsOwner) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  const TemporaryFolder folder;
  const std::string path = folder.File("out", "old");
  EXPECT_EQ(
      UserErrorOf([&] {
        WriteOver(path, kOtherUser, [](const SystemCall& call) { return call.name == "fchown" ? EPERM : 0; });
      }),
      "cannot write " + path +
          ": cannot keep the owner of the old file: Operation not permitted; name a new file with --output");
  EXPECT_EQ(ReadFile(path), "old");
  EXPECT_THAT(folder.Names(), ElementsAre("out"));
}

TEST(WriteFile, GivesTheRightsOfAGroupToNoOtherGroup) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  const TemporaryFolder folder;
  fs::permissions(folder.Path(), fs::perms::all);
  const std::string path = folder.File("out", "old");
  ASSERT_EQ(::chown(path.c_str(), kOtherUser, kOtherUser), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0664), 0);
  {
    const NoPrivileges none;
    WriteFile(path, "new");
  }
  EXPECT_EQ(ModeOf(path), 0604U);
  EXPECT_EQ(ReadFile(path), "new");
}

TEST(WriteFile, LeavesTheOldFileAndNothingElseWhicheverCallFails) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  for (const std::string& failing : kCalls) {
    const TemporaryFolder folder;
    const std::string path = folder.File("out", "old");
    std::vector<std::string> calls;
    const std::string error = UserErrorOf([&] {
      WriteOver(path, kOtherUser, [&](const SystemCall& call) {
        calls.push_back(call.name);
        return call.name == failing ? EIO : 0;
      });
    });
    EXPECT_THAT(error,
                testing::MatchesRegex("cannot write .*: Input/output error; name a .* file with --output"))
        << failing;
    EXPECT_EQ(calls,
              std::vector<std::string>(kCalls.begin(), std::find(kCalls.begin(), kCalls.end(), failing) + 1));
    EXPECT_EQ(ReadFile(path), "old") << failing;
    EXPECT_THAT(folder.Names(), ElementsAre("out")) << failing;
  }
}

TEST(WriteFile, LeavesTheOldFileAndNothingElseWheneverASignalEndsIt) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  for (const std::string& interrupted : kCalls) {
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
      const TemporaryFolder folder;
      const std::string path = folder.File("out", "old");
      const pid_t child = StartChild([&] {
        WriteOver(path, kOtherUser,
                  [&](const SystemCall& call) { return call.name == interrupted ? ::raise(signal) : 0; });
        return 0;
      });
      EXPECT_EQ(EndOfChild(child), -signal) << interrupted;
      EXPECT_EQ(ReadFile(path), "old") << interrupted;
      EXPECT_THAT(folder.Names(), ElementsAre("out")) << interrupted;
    }
  }
}

TEST(WriteFile, LetsNobodyRedirectItInAFolderForEveryone) {
  if (!IsRoot()) GTEST_SKIP() << "only root can give files to other users";
  const SharedFolder shared;
  const std::string victim = shared.Around().File("victim", "old");
  const std::string refusal =
      " belongs to another user and is in a folder where everyone may create files; name a file in a folder "
      "of your "
      "own with --output";
  fs::create_symlink(victim, shared.File("link"));
  EXPECT_EQ(ErrorOfWriting(shared.Give("link")),
            "cannot write " + shared.File("link") + ": the symbolic link \"link\"" + refusal);
  ASSERT_EQ(::mkfifo(shared.File("fifo").c_str(), 0666), 0);
  EXPECT_EQ(ErrorOfWriting(shared.Give("fifo")),
            "cannot write " + shared.File("fifo") + ": the FIFO \"fifo\"" + refusal);
  fs::create_symlink("/proc/self/root" + victim, shared.File("proc"));
  EXPECT_EQ(ErrorOfWriting(shared.Give("proc")),
            "cannot write " + shared.File("proc") + ": the symbolic link \"proc\"" + refusal);
  EXPECT_EQ(ReadFile(victim), "old");
}

TEST(WriteFile, ReplacesInAFolderForEveryoneWhatIsOurs) {
  const SharedFolder shared;
  const std::string target = shared.Around().File("target", "old");
  fs::create_symlink(target, shared.File("link"));
  WriteFile(shared.File("link"), "new");
  EXPECT_EQ(ReadFile(target), "new");
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

TEST(WriteFile, WritesWhereTheDescriptorThatIsOpenStands) {
  const TemporaryFolder folder;
  const sys::FileDescriptor log = sys::OpenFile(folder.File("log"), O_WRONLY | O_CREAT);
  sys::WriteAll(log.Get(), "first\n");
  WriteFile("/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(log.Get()), "second\n");
  sys::WriteAll(log.Get(), "third\n");
  EXPECT_EQ(ReadFile(folder.File("log")), "first\nsecond\nthird\n");
  EXPECT_THAT(folder.Names(), ElementsAre("log"));
}

TEST(WriteFile, ReplacesAFileThatALinkReachesThroughProc) {
  const TemporaryFolder folder;
  const std::string target = folder.File("target", "old");
  fs::create_symlink("/proc/self/root" + target, folder.File("link"));
  WriteFile(folder.File("link"), "new");
  EXPECT_EQ(ReadFile(target), "new");
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

// Without privileges, so that a fault cannot replace the machine's own device.
TEST(WriteFile, WritesToADeviceWithoutReplacingIt) {
  const NoPrivileges none;
  EXPECT_EQ(ErrorOfWriting("/dev/null"), "");
  EXPECT_THAT(ErrorOfWriting("/dev/full"), StartsWith("cannot write /dev/full: No space left on device"));
  EXPECT_TRUE(fs::is_character_file("/dev/null"));
  EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST(WriteFile, SaysThatNobodyReadsANamedPipeAnyMore) {
  const TemporaryFolder folder;
  const std::string path = folder.File("pipe");
  ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
  FileDescriptor reader(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  const SystemCallHook hook([&](const SystemCall&) {
    reader.Close();
    return 0;
  });
  const auto before = std::signal(SIGPIPE, SIG_IGN);
  EXPECT_THROW(WriteFile(path, "text"), cli::ClosedPipe);
  std::signal(SIGPIPE, before);
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

TEST(RequireDistinctFiles, FindsAFileUnderAnyOtherName) {
  const TemporaryFolder folder;
  const std::string path = folder.File("file", "text");
  fs::create_directory(folder.File("sub"));
  fs::create_hard_link(path, folder.File("sub/hard"));
  fs::create_symlink("../file", folder.File("sub/soft"));
  fs::create_symlink("missing", folder.File("dangling"));
  const auto errorOf = [&](const std::string& written, const std::string& other) {
    return UserErrorOf([&] { cli::RequireDistinctFiles({"--output", written}, {{"--devices", other}}); });
  };
  for (const std::string other : {"file", "sub/../file", "sub//hard", "sub/soft"}) {
    EXPECT_EQ(errorOf(path, folder.File(other)),
              "--output and --devices name one file, " + path + "; name another one for --output");
  }
  EXPECT_NE(errorOf(folder.File("dangling"), folder.File("sub/../missing")), "");
  // In a folder that is still to be made.
  EXPECT_NE(errorOf(folder.File("new/file"), folder.File("new/file")), "");
  EXPECT_EQ(errorOf(path, folder.File("missing")), "");
  EXPECT_EQ(errorOf(folder.File("new"), path), "");
  EXPECT_EQ(errorOf("-", path), "");
  EXPECT_EQ(errorOf("", ""), "");
  EXPECT_EQ(errorOf("/dev/null", "/dev/null"), "");
}

}  // namespace
}  // namespace usbinfo_test
