// The machine's commands: what of their output comes back, what they find when they start, and the time
// limit.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "standin/Machine.h"
#include "system/FileDescriptor.h"
#include "tests/standin/StandinTest.h"
#include "tests/system/Processes.h"

namespace {

using standin::Machine;
using usbinfo_test::ExitOfChild;
using usbinfo_test::StatusOf;

constexpr int kAmple = 30;

class MachineProcessTest : public usbinfo_test::ProcessTest {
 protected:
  std::string Run(const std::string& command) { return machine.SpawnProcess(command, kAmple); }

  Machine machine;
};

TEST_F(MachineProcessTest, ReturnsStandardOutputOnly) {
  EXPECT_EQ(Run("echo one; echo two >&2; echo three"), "one\nthree\n");
}

TEST_F(MachineProcessTest, ReturnsEveryByte) {
  EXPECT_EQ(Run(R"(printf 'a\000b\377\n\n')"), std::string("a\0b\377\n\n", 6));
}

TEST_F(MachineProcessTest, ReturnsMegabytesWhole) {
  EXPECT_EQ(Run("head -c 5000000 /dev/zero | tr '\\0' x; echo end"), std::string(5000000, 'x') + "end\n");
}

TEST_F(MachineProcessTest, RunsShellCommandLines) {
  EXPECT_EQ(Run("a='x y'; for b in 1 2; do echo \"$a $b\"; done | tail -n 1"), "x y 2\n");
  EXPECT_EQ(Run(""), "");
}

TEST_F(MachineProcessTest, DoesNotLookAtTheExitStatus) {
  EXPECT_EQ(Run("echo before; exit 3"), "before\n");
  EXPECT_EQ(Run("echo before; kill -9 $$"), "before\n");
}

TEST_F(MachineProcessTest, ReturnsNothingForAMissingCommand) {
  EXPECT_EQ(Run("no-such-command-anywhere"), "");
  EXPECT_EQ(Run("/no/such/command"), "");
}

TEST_F(MachineProcessTest, GivesTheCommandNothingToReadAndDropsItsErrors) {
  EXPECT_EQ(Run("wc -c"), "0\n");
  EXPECT_EQ(Run("readlink /proc/self/fd/0; readlink /proc/self/fd/2"), "/dev/null\n/dev/null\n");
}

TEST_F(MachineProcessTest, KeepsItsOwnInputToItself) {
  const int exitCode = ExitOfChild([this] {
    const sys::FileDescriptor input = sys::OpenFile("/proc/filesystems", O_RDONLY);
    ::dup2(input.Get(), STDIN_FILENO);
    return Run("cat; echo end") == "end\n" ? 0 : 1;
  });
  EXPECT_EQ(exitCode, 0);
}

TEST_F(MachineProcessTest, GivesTheCommandAGroupOfItsOwn) {
  const std::string text = Run("echo $$; cut -d ' ' -f 5 /proc/self/stat");
  const std::string pid = text.substr(0, text.find('\n') + 1);
  EXPECT_EQ(text, pid + pid);
}

TEST_F(MachineProcessTest, GivesTheCommandFreshSignals) {
  const int exitCode = ExitOfChild([this] {
    for (const int signal : {SIGPIPE, SIGXFSZ}) ::signal(signal, SIG_IGN);
    sigset_t blocked;
    sigfillset(&blocked);
    ::sigprocmask(SIG_BLOCK, &blocked, nullptr);
    if (Run("grep ^SigBlk /proc/self/status") != "SigBlk:\t0000000000000000\n") return 1;
    constexpr int kHexadecimal = 16;
    const std::string text = Run("grep ^SigIgn /proc/self/status | cut -f 2");
    const auto ignored = std::stoull(text, nullptr, kHexadecimal);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
      if (((ignored >> (signal - 1)) & 1U) != 0) return 2;
    }
    return 0;
  });
  EXPECT_EQ(exitCode, 0);
}

TEST_F(MachineProcessTest, WorksWhereStandardStreamsAreClosed) {
  for (unsigned int closed = 1; closed < 8; ++closed) {
    const int exitCode = ExitOfChild([this, closed] {
      for (int fd = 0; fd < 3; ++fd) {
        if (((closed >> fd) & 1U) != 0) ::close(fd);
      }
      return Run("cat; echo out; echo err >&2") == "out\n" ? 0 : 1;
    });
    EXPECT_EQ(exitCode, 0) << "closed: " << closed;
  }
}

TEST_F(MachineProcessTest, FailsWhenTheTimeIsUp) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  EXPECT_EQ(StatusOf([this] { machine.SpawnProcess("echo half; sleep 60", 1); }), "CIM_ERR_FAILED");
  EXPECT_GE(Clock::now() - start, std::chrono::seconds(1));
}

TEST_F(MachineProcessTest, FailsAtOnceWhenThereIsNoTime) {
  EXPECT_EQ(StatusOf([this] { machine.SpawnProcess("sleep 60", 0); }), "CIM_ERR_FAILED");
}

TEST_F(MachineProcessTest, FailsWhenTheCommandCannotBeStarted) {
  EXPECT_EQ(StatusOf([this] { Run(std::string(4000000, 'x')); }), "CIM_ERR_FAILED");
}

TEST_F(MachineProcessTest, RunsOneCommandAfterAnother) {
  for (int round = 0; round < 50; ++round) {
    EXPECT_EQ(Run("echo " + std::to_string(round)), std::to_string(round) + "\n");
  }
}

}  // namespace
