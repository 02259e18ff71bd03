// Signals that end the real command while it waits for its input, and that its parent sees them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <string>
#include <vector>

#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/support/ForkedChild.h"

namespace usbinfo_test {
namespace {

/// A named pipe. Opening either end waits for the other one.
class Fifo {
 public:
  Fifo() { EXPECT_EQ(::mkfifo(fPath.c_str(), 0600), 0); }
  const std::string& Path() const { return fPath; }
  sys::FileDescriptor OpenWriter() const { return sys::OpenFile(fPath, O_WRONLY); }
  sys::FileDescriptor OpenReader() const { return sys::OpenFile(fPath, O_RDONLY); }

 private:
  TemporaryFolder fFolder;
  std::string fPath = fFolder.File("fifo");
};

/// Starts the command with its standard input from a FIFO and `interrupt` handling SIGINT.
pid_t Start(std::vector<std::string> arguments, const std::string& input = "/dev/null",
            void (*interrupt)(int) = SIG_DFL) {
  return StartChild([&] {
    std::signal(SIGINT, interrupt);
    ::dup2(sys::OpenFile(input, O_RDONLY).Get(), STDIN_FILENO);
    std::vector<char*> words;
    arguments.insert(arguments.begin(), COMMAND_PATH);
    for (std::string& argument : arguments) words.push_back(argument.data());
    words.push_back(nullptr);
    ::execv(COMMAND_PATH, words.data());
    return 1;
  });
}

class SignalsTest : public testing::TestWithParam<int> {};

TEST_P(SignalsTest, EndTheReadingOfAFifo) {
  const Fifo fifo;
  const pid_t command = Start({"--devices", fifo.Path()});
  const sys::FileDescriptor writer = fifo.OpenWriter();
  ::kill(command, GetParam());
  EXPECT_EQ(EndOfChild(command), -GetParam());
}

TEST_P(SignalsTest, EndTheReadingOfStandardInput) {
  const Fifo fifo;
  const pid_t command = Start({"--devices", "-"}, fifo.Path());
  const sys::FileDescriptor writer = fifo.OpenWriter();
  ::kill(command, GetParam());
  EXPECT_EQ(EndOfChild(command), -GetParam());
}

TEST_P(SignalsTest, EndTheOpeningOfAFifo) {
  const Fifo devices;
  const Fifo log;
  const pid_t command = Start({"--devices", devices.Path(), "--log", log.Path()});
  const sys::FileDescriptor reader = log.OpenReader();
  ::kill(command, GetParam());
  EXPECT_EQ(EndOfChild(command), -GetParam());
}

INSTANTIATE_TEST_SUITE_P(Signals, SignalsTest, testing::Values(SIGHUP, SIGINT, SIGTERM),
                         [](const auto& row) { return "Signal" + std::to_string(row.param); });

TEST(IgnoredSignal, DoesNotStopTheCommand) {
  const Fifo fifo;
  const TemporaryFolder folder;
  const pid_t command =
      Start({"--devices", fifo.Path(), "--output", folder.File("out")}, "/dev/null", SIG_IGN);
  {
    const sys::FileDescriptor writer = fifo.OpenWriter();
    ::kill(command, SIGINT);
    sys::WriteAll(writer.Get(), ReadFile(CapturePath("vm-desktop-debugfs")));
  }
  EXPECT_EQ(EndOfChild(command), 0);
  EXPECT_THAT(ReadFile(folder.File("out")), testing::HasSubstr("usb1 "));
}

}  // namespace
}  // namespace usbinfo_test
