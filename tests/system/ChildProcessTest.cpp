// A shell command with its output captured: the limits on time and size, and that no process of its group is
// left however it ends.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "standin/Machine.h"
#include "system/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/system/Processes.h"

namespace {

using std::chrono::milliseconds;
using sys::ChildProcess;
using usbinfo_test::Ends;
using usbinfo_test::ErrorOf;

constexpr std::size_t kEnough = 1000000;
constexpr milliseconds kAmple(30000);
constexpr milliseconds kShort(50);

class ChildProcessTest : public usbinfo_test::ProcessTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(::mkfifo(fifo.c_str(), S_IRUSR | S_IWUSR), 0);
    ProcessTest::SetUp();
  }

  static int ErrorOfCollect(const std::string& command, milliseconds limit, std::size_t maxBytes) {
    return ErrorOf([&] { ChildProcess(command).Collect(limit, maxBytes); });
  }

  /// The process id that a command writes to `fifo`; waits for it.
  pid_t ReadPid() { return std::stoi(standin::Machine().CaptureFile(fifo)); }

  usbinfo_test::TemporaryFolder directory;
  const std::string fifo = directory.File("fifo");
};

TEST_F(ChildProcessTest, CollectsWhatTheCommandWrites) {
  EXPECT_EQ(ChildProcess("echo one; echo two").Collect(kAmple, kEnough), "one\ntwo\n");
}

TEST_F(ChildProcessTest, WaitsForACommandThatHasClosedItsOutput) {
  const std::string trace = directory.File("trace");
  EXPECT_EQ(ChildProcess("exec >&-; cat /proc/filesystems > " + trace).Collect(kAmple, kEnough), "");
  EXPECT_EQ(standin::Machine().CaptureFile(trace), standin::Machine().CaptureFile("/proc/filesystems"));
}

TEST_F(ChildProcessTest, FollowsBothStreamsOfAProgramToItsEnd) {
  std::string output;
  std::string errors;
  ChildProcess program({"sh", "-c", "echo \"$1\"; echo two >&2; exit 3", "sh", "one; $HOME"});
  const int status = program.Follow([&](ChildProcess::Stream stream, std::string_view part) {
    (stream == ChildProcess::Stream::kOutput ? output : errors) += part;
  });
  EXPECT_EQ(status, 3);
  EXPECT_EQ(output, "one; $HOME\n");
  EXPECT_EQ(errors, "two\n");
}

TEST_F(ChildProcessTest, ReportsTheSignalThatEndedAProgram) {
  EXPECT_EQ(ChildProcess({"sh", "-c", "kill -9 $$"}).Follow([](auto, auto) {}), 128 + SIGKILL);
}

TEST_F(ChildProcessTest, RefusesAProgramThatIsNotInstalled) {
  try {
    ChildProcess program(std::vector<std::string>{"no-such-program"});
    FAIL() << "it has started";
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().value(), ENOENT);
  }
}

TEST_F(ChildProcessTest, TakesAsManyBytesAsItMayAndNoMore) {
  EXPECT_EQ(ChildProcess("printf 12345").Collect(kAmple, 5), "12345");
  EXPECT_EQ(ErrorOfCollect("printf 12345", kAmple, 4), EFBIG);
}

TEST_F(ChildProcessTest, EndsACommandThatNeverStopsWriting) {
  EXPECT_EQ(ErrorOfCollect("yes", kAmple, kEnough), EFBIG);
}

TEST_F(ChildProcessTest, EndsACommandThatIsTooSlow) {
  EXPECT_EQ(ErrorOfCollect("sleep 60", kShort, kEnough), ETIMEDOUT);
  EXPECT_EQ(ErrorOfCollect("sleep 60", milliseconds(0), kEnough), ETIMEDOUT);
}

TEST_F(ChildProcessTest, EndsACommandThatWritesALittleForever) {
  EXPECT_EQ(ErrorOfCollect("while :; do echo x; sleep 0.01; done", kShort, kEnough), ETIMEDOUT);
}

TEST_F(ChildProcessTest, EndsACommandThatRunsOnWithItsOutputClosed) {
  EXPECT_EQ(ErrorOfCollect("exec >&-; sleep 60", kShort, kEnough), ETIMEDOUT);
}

TEST_F(ChildProcessTest, EndsACommandThatIgnoresRequestsToEnd) {
  pid_t command = -1;
  {
    ChildProcess child("trap '' TERM INT HUP; echo $$ > " + fifo + "; exec sleep 60");
    command = ReadPid();
    EXPECT_EQ(ErrorOf([&] { child.Collect(kShort, kEnough); }), ETIMEDOUT);
  }
  EXPECT_TRUE(Ends(command));
}

TEST_F(ChildProcessTest, EndsTheWholeGroupAtTheLimit) {
  pid_t background = -1;
  {
    ChildProcess child("sleep 60 & echo $! > " + fifo + "; wait");
    background = ReadPid();
    EXPECT_EQ(ErrorOf([&] { child.Collect(kShort, kEnough); }), ETIMEDOUT);
  }
  EXPECT_TRUE(Ends(background));
}

TEST_F(ChildProcessTest, EndsABackgroundProcessThatOutlivesItsShellAndHoldsThePipe) {
  pid_t background = -1;
  {
    ChildProcess child("sleep 60 & echo $! > " + fifo);
    background = ReadPid();
    EXPECT_EQ(ErrorOf([&] { child.Collect(kShort, kEnough); }), ETIMEDOUT);
  }
  EXPECT_TRUE(Ends(background));
}

TEST_F(ChildProcessTest, EndsABackgroundProcessThatHasLetGoOfThePipe) {
  const std::string pid = ChildProcess("sleep 60 > /dev/null & echo $!").Collect(kAmple, kEnough);
  EXPECT_TRUE(Ends(std::stoi(pid)));
}

TEST_F(ChildProcessTest, EndsTheCommandWhenNobodyCollects) {
  pid_t command = -1;
  {
    const ChildProcess child("echo $$ > " + fifo + "; exec sleep 60");
    command = ReadPid();
  }
  EXPECT_TRUE(Ends(command));
}

TEST_F(ChildProcessTest, GoesOnAfterSignals) {
  const usbinfo_test::Interruptions signals(nullptr);
  EXPECT_EQ(ChildProcess("sleep 0.05; echo done").Collect(kAmple, kEnough), "done\n");
}

TEST_F(ChildProcessTest, SaysThatACommandCannotBeStarted) {
  const std::string tooLong(4000000, 'x');
  EXPECT_EQ(ErrorOf([&] { const ChildProcess child(tooLong); }), E2BIG);
}

}  // namespace
