// The file that new content is written to: its mode, its name, and when it is removed.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <system_error>

#include "system/FileDescriptor.h"
#include "system/TemporaryFile.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

namespace usbinfo_test {
namespace {

namespace fs = std::filesystem;
using sys::TemporaryFile;
using testing::ElementsAre;
using testing::IsEmpty;

class TemporaryFileTest : public testing::Test {
 protected:
  int Folder() const { return fOpenFolder.Get(); }

  TemporaryFolder folder;

 private:
  sys::FileDescriptor fOpenFolder{::open(folder.Path().c_str(), O_PATH | O_CLOEXEC)};
};

TEST_F(TemporaryFileTest, IsForItsOwnerAloneWhateverTheMask) {
  const mode_t before = ::umask(0);
  const TemporaryFile file(Folder());
  ::umask(before);
  struct stat status {};
  ASSERT_EQ(::fstat(file.Get(), &status), 0);
  EXPECT_EQ(status.st_mode, S_IFREG | 0600U);
}

TEST_F(TemporaryFileTest, HasANewRandomNameEachTime) {
  std::vector<std::string> names;
  for (int run = 0; run < 2; ++run) {
    const TemporaryFile file(Folder());
    names.push_back(folder.Names().at(0));
    EXPECT_THAT(names.back(), testing::MatchesRegex("\\.usbinfo-[a-z2-7]{12}\\.new"));
  }
  EXPECT_NE(names[0], names[1]);
}

TEST_F(TemporaryFileTest, GoesWithTheObjectUnlessItIsRenamed) {
  { const TemporaryFile file(Folder()); }
  EXPECT_THAT(folder.Names(), IsEmpty());
  {
    TemporaryFile file(Folder());
    file.Rename("kept");
  }
  EXPECT_THAT(folder.Names(), ElementsAre("kept"));
}

TEST_F(TemporaryFileTest, TakesAnotherNameWhereOneIsTaken) {
  const std::string victim = folder.File("victim", "old");
  std::string planted;
  const SystemCallHook hook([&](const SystemCall& call) {
    if (call.name != "openat" || !planted.empty()) return 0;
    planted = call.file;
    fs::create_symlink("victim", folder.File(planted));
    return 0;
  });
  TemporaryFile file(Folder());
  sys::WriteAll(file.Get(), "new");
  file.Rename("out");
  EXPECT_THAT(folder.Names(), ElementsAre(planted, "out", "victim"));
  EXPECT_EQ(fs::file_size(victim), 3U);
  EXPECT_TRUE(fs::is_symlink(folder.File(planted)));
}

TEST_F(TemporaryFileTest, GivesUpWhereEveryNameIsTaken) {
  const SystemCallHook hook([](const SystemCall& call) { return call.name == "openat" ? EEXIST : 0; });
  try {
    const TemporaryFile file(Folder());
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), EEXIST);
  }
}

}  // namespace
}  // namespace usbinfo_test
