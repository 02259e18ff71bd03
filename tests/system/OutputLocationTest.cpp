// Where an output path leads, and that no other user can redirect it in a world-writable folder.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "system/FileDescriptor.h"
#include "system/OutputLocation.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;
using sys::OutputLocation;

constexpr uid_t kRoot = 0;
constexpr uid_t kNobody = 65534;
constexpr uid_t kOther = 1001;

/// Gives this process the rights of `user` until the object is destroyed.
class EffectiveUser {
 public:
  explicit EffectiveUser(uid_t user) : fBefore(::geteuid()) { EXPECT_EQ(::seteuid(user), 0); }
  EffectiveUser(const EffectiveUser&) = delete;
  EffectiveUser& operator=(const EffectiveUser&) = delete;
  ~EffectiveUser() { EXPECT_EQ(::seteuid(fBefore), 0); }

 private:
  uid_t fBefore;
};

/// Why the path is refused; empty when it is not.
std::string ReasonToRefuse(const std::string& path) {
  try {
    const OutputLocation location(path);
    return "";
  } catch (const sys::UntrustedPath& error) {
    return error.what();
  }
}

int ErrorOfLocating(const std::string& path) {
  try {
    const OutputLocation location(path);
    return 0;
  } catch (const std::system_error& error) {
    return error.code().value();
  }
}

/// Something that another user can create in a folder, and the output path that leads to it.
struct Trap {
  const char* kind;
  std::function<void(const std::string& path, const std::string& elsewhere)> set;
  const char* rest;
};

const std::vector<Trap>& Traps() {
  static const std::vector<Trap> traps = {
      {"symbolic link",
       [](const auto& path, const auto& elsewhere) { fs::create_symlink(elsewhere + "/file", path); }, ""},
      {"symbolic link", [](const auto& path, const auto& elsewhere) { fs::create_symlink(elsewhere, path); },
       "/new"},
      {"FIFO", [](const auto& path, const auto&) { ::mkfifo(path.c_str(), 0666); }, ""},
      {"file", [](const auto& path, const auto&) { sys::OpenFile(path, O_WRONLY | O_CREAT); }, ""},
  };
  return traps;
}

/// A folder of `mode` and `owner` that holds a trap of another owner; the result for `user`.
std::string ReasonToRefuse(const Trap& trap, mode_t mode, uid_t owner, uid_t trapOwner, uid_t user) {
  const TemporaryFolder folder;
  const std::string shared = folder.File("shared");
  const std::string elsewhere = folder.File("elsewhere");
  fs::create_directory(shared);
  fs::create_directory(elsewhere);
  trap.set(shared + "/trap", elsewhere);
  EXPECT_EQ(::lchown((shared + "/trap").c_str(), trapOwner, trapOwner), 0);
  EXPECT_EQ(::chown(shared.c_str(), owner, owner), 0);
  EXPECT_EQ(::chmod(shared.c_str(), mode), 0);
  const EffectiveUser rights(user);
  return ReasonToRefuse(shared + "/trap" + trap.rest);
}

TEST(OutputLocation, RefusesInAStickyFolderForEveryoneWhatIsNeitherOursNorItsOwners) {
  if (::geteuid() != kRoot) GTEST_SKIP() << "only root can give files to other users";
  for (const Trap& trap : Traps()) {
    for (const mode_t mode : {01777U, 01733U, 0777U, 01775U, 0755U}) {
      for (const uid_t owner : {kRoot, kNobody}) {
        for (const uid_t trapOwner : {kRoot, kNobody, kOther}) {
          for (const uid_t user : {kRoot, kNobody}) {
            const bool isForEveryone = (mode & 01002U) == 01002U;
            const bool isRefused = isForEveryone && trapOwner != user && trapOwner != owner;
            EXPECT_EQ(ReasonToRefuse(trap, mode, owner, trapOwner, user),
                      isRefused
                          ? std::string("the ") + trap.kind +
                                " \"trap\" belongs to another user and is in a folder where everyone may "
                                "create files"
                          : "")
                << trap.kind << trap.rest << " of " << trapOwner << " for " << user << " in " << std::oct
                << mode << std::dec << " of " << owner;
          }
        }
      }
    }
  }
}

TEST(OutputLocation, GivesFolderNameAndWhatIsThere) {
  const TemporaryFolder folder;
  const std::string path = folder.File("file", "1234");
  const OutputLocation old(path);
  EXPECT_EQ(old.Name(), "file");
  ASSERT_TRUE(old.Existing());
  EXPECT_EQ(old.Existing()->st_size, 4);
  EXPECT_TRUE(old.IsReplaceable());
  struct stat parent {};
  struct stat found {};
  ASSERT_EQ(::stat(folder.Path().c_str(), &parent), 0);
  ASSERT_EQ(::fstat(old.Folder(), &found), 0);
  EXPECT_EQ(found.st_ino, parent.st_ino);
  const OutputLocation fresh(folder.File("new"));
  EXPECT_EQ(fresh.Name(), "new");
  EXPECT_FALSE(fresh.Existing());
  EXPECT_TRUE(fresh.IsReplaceable());
}

TEST(OutputLocation, FollowsRelativeLinksFromTheirOwnFolder) {
  const TemporaryFolder folder;
  folder.File("one/two/file", "text");
  fs::create_symlink("one/./two", folder.File("first"));
  fs::create_symlink("../one/../first//file", folder.File("one/second"));
  EXPECT_TRUE(
      OutputLocation(folder.File("one/second")).IsSameAs(OutputLocation(folder.File("one/two/file"))));
}

TEST(OutputLocation, IsTheSameOnlyForTheSameNameInTheSameFolder) {
  const TemporaryFolder folder;
  fs::create_directory(folder.File("sub"));
  fs::create_symlink("sub/new", folder.File("link"));
  const OutputLocation location(folder.File("sub/new"));
  EXPECT_TRUE(location.IsSameAs(OutputLocation(folder.File("link"))));
  EXPECT_TRUE(location.IsSameAs(OutputLocation(folder.File("sub/../sub//new"))));
  EXPECT_FALSE(location.IsSameAs(OutputLocation(folder.File("sub/other"))));
  EXPECT_FALSE(location.IsSameAs(OutputLocation(folder.File("new"))));
}

TEST(OutputLocation, FailsAsOpeningWould) {
  const TemporaryFolder folder;
  folder.File("file", "text");
  fs::create_symlink("loop", folder.File("loop"));
  EXPECT_EQ(ErrorOfLocating(""), ENOENT);
  EXPECT_EQ(ErrorOfLocating("/"), EISDIR);
  EXPECT_EQ(ErrorOfLocating(folder.Path()), EISDIR);
  EXPECT_EQ(ErrorOfLocating(folder.File("")), EISDIR);
  EXPECT_EQ(ErrorOfLocating(folder.File("..")), EISDIR);
  EXPECT_EQ(ErrorOfLocating(folder.File("file/")), ENOTDIR);
  EXPECT_EQ(ErrorOfLocating(folder.File("file/new")), ENOTDIR);
  EXPECT_EQ(ErrorOfLocating(folder.File("missing/new")), ENOENT);
  EXPECT_EQ(ErrorOfLocating(folder.File("missing/")), ENOENT);
  EXPECT_EQ(ErrorOfLocating(folder.File("loop")), ELOOP);
  EXPECT_EQ(ErrorOfLocating(folder.File(std::string(256, 'n'))), ENAMETOOLONG);
}

TEST(OutputLocation, ReplacesWhatIsReachedThroughTheRootOfProc) {
  const TemporaryFolder folder;
  folder.File("file", "text");
  const OutputLocation location("/proc/self/root" + folder.File("file"));
  EXPECT_TRUE(location.IsReplaceable());
  EXPECT_TRUE(location.IsSameAs(OutputLocation(folder.File("file"))));
}

TEST(OutputLocation, TakesTheDescriptorsOfThisProcessAloneForOpenAlready) {
  const TemporaryFolder folder;
  const sys::FileDescriptor file(::open(folder.File("file", "text").c_str(), O_WRONLY | O_CLOEXEC));
  const std::string rest = "/fd/" + std::to_string(file.Get());
  for (const std::string& path :
       {"/proc/self" + rest, "/proc/" + std::to_string(::getpid()) + rest, "/dev" + rest}) {
    EXPECT_FALSE(OutputLocation(path).IsReplaceable()) << path;
  }
  const pid_t other = StartChild([] { return ::pause(); });
  const std::string refusal = " of /proc leads to something other than an open file of this process";
  EXPECT_EQ(ReasonToRefuse("/proc/" + std::to_string(other) + rest),
            "the link \"" + std::to_string(file.Get()) + "\"" + refusal);
  EXPECT_EQ(ReasonToRefuse("/proc/self/exe"), "the link \"exe\"" + refusal);
  ::kill(other, SIGKILL);
  EXPECT_EQ(EndOfChild(other), -SIGKILL);
}

TEST(OutputLocation, CreatesANewFileOnlyWhereNothingIs) {
  const TemporaryFolder folder;
  const OutputLocation location(folder.File("new"));
  fs::create_symlink("elsewhere", folder.File("new"));
  EXPECT_THROW(location.Create(), std::system_error);
  EXPECT_FALSE(fs::exists(folder.File("elsewhere")));
}

TEST(OutputLocation, OpensNoLinkThatTookThePlaceOfAFile) {
  const TemporaryFolder folder;
  const OutputLocation location(folder.File("file", "text"));
  fs::rename(folder.File("file"), folder.File("victim"));
  fs::create_symlink("victim", folder.File("file"));
  EXPECT_THROW(location.Create(), std::system_error);
  EXPECT_EQ(fs::file_size(folder.File("victim")), 4U);
}

}  // namespace
}  // namespace usbinfo_test
