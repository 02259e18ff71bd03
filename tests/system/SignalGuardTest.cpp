// A signal that ends the process leaves no temporary file and no command, and the parent sees the signal.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <string>
#include <thread>

#include "system/ChildProcess.h"
#include "system/FileDescriptor.h"
#include "system/SignalGuard.h"
#include "system/TemporaryFile.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/system/Processes.h"

namespace usbinfo_test {
namespace {

using sys::ChildProcess;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::chrono::seconds kAmple(60);
constexpr std::size_t kEnough = 1000;

class Pipe {
 public:
  Pipe() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    fReader = sys::FileDescriptor(ends[0]);
    fWriter = sys::FileDescriptor(ends[1]);
  }
  void Send(int number) const {
    EXPECT_EQ(::write(fWriter.Get(), &number, sizeof number), ssize_t{sizeof number});
  }
  int Receive() const {
    int number = -1;
    EXPECT_EQ(::read(fReader.Get(), &number, sizeof number), ssize_t{sizeof number});
    return number;
  }

 private:
  sys::FileDescriptor fReader;
  sys::FileDescriptor fWriter;
};

class SignalGuardTest : public ProcessTest, public testing::WithParamInterface<int> {};

TEST_P(SignalGuardTest, RemovesTheTemporaryFile) {
  const TemporaryFolder folder;
  const pid_t child = StartChild([&] {
    const sys::FileDescriptor parent(::open(folder.Path().c_str(), O_PATH | O_CLOEXEC));
    const sys::TemporaryFile file(parent.Get());
    return ::raise(GetParam());
  });
  EXPECT_EQ(EndOfChild(child), -GetParam());
  EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_P(SignalGuardTest, KillsTheCommandAndAllThatItStarted) {
  const TemporaryFolder folder;
  const std::string fifo = folder.File("fifo");
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  const pid_t child = StartChild([&] {
    ChildProcess("sleep 60 & echo $$ $! > " + fifo + "; wait").Collect(kAmple, kEnough);
    return 0;
  });
  pid_t shell = -1;
  pid_t background = -1;
  std::istringstream(sys::ReadAll(sys::OpenFile(fifo, O_RDONLY).Get())) >> shell >> background;
  ::kill(child, GetParam());
  EXPECT_EQ(EndOfChild(child), -GetParam());
  EXPECT_TRUE(Ends(shell));
  EXPECT_TRUE(Ends(background));
}

TEST_P(SignalGuardTest, KillsACommandThatHasJustStarted) {
  const Pipe pipe;
  const pid_t child = StartChild([&] {
    const SystemCallHook hook([&](const SystemCall& call) {
      if (call.name == "posix_spawnp") {
        pipe.Send(call.process);
        ::raise(GetParam());
      }
      return 0;
    });
    const ChildProcess command("exec sleep 60");
    return 0;
  });
  EXPECT_EQ(EndOfChild(child), -GetParam());
  EXPECT_TRUE(Ends(pipe.Receive()));
}

/// Unblocks a signal that its creator blocks, and sends it to itself.
void TakeSignal(int signal) {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, signal);
  ::pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
  ::raise(signal);
}

TEST_P(SignalGuardTest, WaitsOnAnotherThreadForTheStartOfACommand) {
  const Pipe pipe;
  const Pipe waiting;
  const pid_t child = StartChild([&] {
    const SystemCallHook hook([&](const SystemCall& call) {
      if (call.name == "posix_spawnp") {
        pipe.Send(call.process);
        std::thread(TakeSignal, GetParam()).detach();
        waiting.Receive();
      }
      if (call.name == "nanosleep") waiting.Send(0);
      return 0;
    });
    ChildProcess("exec sleep 60").Collect(kAmple, kEnough);
    return 0;
  });
  EXPECT_EQ(EndOfChild(child), -GetParam());
  EXPECT_TRUE(Ends(pipe.Receive()));
}

TEST_P(SignalGuardTest, LeavesASignalAloneThatIsIgnored) {
  const TemporaryFolder folder;
  const pid_t child = StartChild([&] {
    std::signal(GetParam(), SIG_IGN);
    const sys::FileDescriptor parent(::open(folder.Path().c_str(), O_PATH | O_CLOEXEC));
    const sys::TemporaryFile file(parent.Get());
    ::raise(GetParam());
    return folder.Names().size() == 1 ? 0 : 1;
  });
  EXPECT_EQ(EndOfChild(child), 0);
}

TEST_P(SignalGuardTest, LeavesNoHandlerBehind) {
  { const sys::EndingSignals signals; }
  struct sigaction action {};
  ASSERT_EQ(::sigaction(GetParam(), nullptr, &action), 0);
  EXPECT_EQ(action.sa_handler, SIG_DFL);
}

INSTANTIATE_TEST_SUITE_P(Signals, SignalGuardTest, testing::Values(SIGHUP, SIGINT, SIGQUIT, SIGTERM),
                         [](const auto& row) { return std::string("Signal") + std::to_string(row.param); });

TEST(EndBySignal, EndsTheProcessByASignalThatIsIgnoredAndBlocked) {
  const pid_t child = StartChild([] {
    sigset_t all;
    sigfillset(&all);
    ::sigprocmask(SIG_BLOCK, &all, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    sys::EndBySignal(SIGPIPE);
    return 0;
  });
  EXPECT_EQ(EndOfChild(child), -SIGPIPE);
}

}  // namespace
}  // namespace usbinfo_test
