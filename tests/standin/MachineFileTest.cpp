// The machine's files: whether they are there and what they hold, kernel files and pipes included, with the
// status that says why one cannot be read.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>

#include "standin/Machine.h"
#include "system/FileDescriptor.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/system/Processes.h"

namespace {

using standin::Machine;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using usbinfo_test::ExitOfUnprivileged;
using usbinfo_test::kStillPrivileged;
using usbinfo_test::StatusOf;

class MachineFileTest : public usbinfo_test::ProcessTest {
 protected:
  std::string StatusOfCapture(const std::string& path) {
    return StatusOf([&] { machine.CaptureFile(path); });
  }

  Machine machine;
  usbinfo_test::TemporaryFolder directory;
};

TEST_F(MachineFileTest, SeesFilesAndDirectories) {
  EXPECT_TRUE(machine.FileExists(directory.File("file", "")));
  EXPECT_TRUE(machine.FileExists(directory.Path()));
  EXPECT_TRUE(machine.FileExists("/proc/self/status"));
}

TEST_F(MachineFileTest, MissesWhatIsNotThere) {
  const std::string file = directory.File("file", "");
  EXPECT_FALSE(machine.FileExists(""));
  EXPECT_FALSE(machine.FileExists(directory.File("missing")));
  EXPECT_FALSE(machine.FileExists(file + "/below"));
  std::filesystem::create_symlink(directory.File("missing"), directory.File("dangling"));
  EXPECT_FALSE(machine.FileExists(directory.File("dangling")));
}

TEST_F(MachineFileTest, DoesNotSeeIntoAForbiddenDirectory) {
  std::filesystem::create_directory(directory.File("closed"));
  const std::string file = directory.File("closed/file", "text");
  EXPECT_TRUE(machine.FileExists(file));
  std::filesystem::permissions(directory.File("closed"), std::filesystem::perms::none);
  const int exitCode = ExitOfUnprivileged([&] {
    if (machine.FileExists(file)) return 1;
    return StatusOfCapture(file) == "CIM_ERR_ACCESS_DENIED" ? 0 : 2;
  });
  std::filesystem::permissions(directory.File("closed"), std::filesystem::perms::owner_all);
  if (exitCode == kStillPrivileged) GTEST_SKIP() << "cannot become an unprivileged user";
  EXPECT_EQ(exitCode, 0);
}

TEST_F(MachineFileTest, SeesAFileThatItMayNotRead) {
  const std::string file = directory.File("file", "text");
  std::filesystem::permissions(file, std::filesystem::perms::none);
  const int exitCode = ExitOfUnprivileged([&] {
    if (!machine.FileExists(file)) return 1;
    return StatusOfCapture(file) == "CIM_ERR_ACCESS_DENIED" ? 0 : 2;
  });
  if (exitCode == kStillPrivileged) GTEST_SKIP() << "cannot become an unprivileged user";
  EXPECT_EQ(exitCode, 0);
}

TEST_F(MachineFileTest, CapturesEveryByte) {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes += static_cast<char>(byte);
  EXPECT_EQ(machine.CaptureFile(directory.File("bytes", bytes)), bytes);
  EXPECT_EQ(machine.CaptureFile(directory.File("empty", "")), "");
}

TEST_F(MachineFileTest, CapturesLargeFilesWhole) {
  std::string text;
  while (text.size() < 5000000) text += "line " + std::to_string(text.size()) + "\n";
  EXPECT_EQ(machine.CaptureFile(directory.File("large", text)), text);
}

TEST_F(MachineFileTest, CapturesKernelFilesThatSayTheyAreEmpty) {
  EXPECT_EQ(machine.CaptureFile("/proc/filesystems"), usbinfo_test::ReadFile("/proc/filesystems"));
  const std::string status = machine.CaptureFile("/proc/self/status");
  EXPECT_THAT(status, StartsWith("Name:\t"));
  EXPECT_THAT(status, HasSubstr("\nPid:\t" + std::to_string(::getpid()) + "\n"));
}

TEST_F(MachineFileTest, CapturesAKernelFileThatComesInPieces) {
  const std::string maps = machine.CaptureFile("/proc/self/maps");
  EXPECT_GT(maps.size(), static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)));
  EXPECT_THAT(maps, HasSubstr("[stack]\n"));
  EXPECT_EQ(maps.back(), '\n');
}

TEST_F(MachineFileTest, CapturesAPipeToItsEnd) {
  const std::string fifo = directory.File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR), 0);
  std::string expected;
  for (int piece = 0; piece < 500; ++piece) expected += std::to_string(piece);
  std::thread writer([&fifo] {
    const sys::FileDescriptor input(::open(fifo.c_str(), O_WRONLY | O_CLOEXEC));
    for (int piece = 0; piece < 500; ++piece) sys::WriteAll(input.Get(), std::to_string(piece));
  });
  EXPECT_EQ(machine.CaptureFile(fifo), expected);
  writer.join();
}

TEST_F(MachineFileTest, SaysThatAFileIsMissing) {
  const std::string file = directory.File("file", "text");
  EXPECT_EQ(StatusOfCapture(directory.File("missing")), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(StatusOfCapture(file + "/below"), "CIM_ERR_NOT_FOUND");
  EXPECT_EQ(StatusOfCapture(""), "CIM_ERR_NOT_FOUND");
}

TEST_F(MachineFileTest, FailsToCaptureAFileWithoutAnEnd) {
  EXPECT_EQ(StatusOfCapture("/dev/zero"), "CIM_ERR_FAILED");
}

TEST_F(MachineFileTest, FailsToCaptureADirectory) {
  EXPECT_EQ(StatusOfCapture(directory.Path()), "CIM_ERR_FAILED");
}

}  // namespace
