// The notice while a command of the machine takes long. No test waits for a period of time: commands wait for
// the notice, and the notice for commands.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <future>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "cli/collect/WaitingNotice.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using namespace std::string_literals;
using cli::WaitingNotice;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

constexpr std::chrono::milliseconds kAtOnce(0);
constexpr std::chrono::hours kNever(1);
constexpr const char* kNotice = "usbinfo: waiting for usb-devices, for 300 seconds at most ...\n";

std::size_t ThreadCount() {
  namespace fs = std::filesystem;
  const fs::directory_iterator tasks("/proc/self/task");
  return static_cast<std::size_t>(std::distance(fs::begin(tasks), fs::end(tasks)));
}

/// How many threads there are once the ended ones are gone: /proc lists a thread for a moment after it was
/// joined.
std::size_t ThreadCountAfterJoining(std::size_t expected) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (ThreadCount() > expected && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
  return ThreadCount();
}

/// A machine whose commands the test defines, with a notice that the test records.
class WaitingNoticeTest : public testing::Test {
 protected:
  WaitingNotice NoticeAfter(std::chrono::milliseconds patience) {
    auto fake = std::make_unique<FakeOperatingSystem>(&fCalls);
    fake->outputs["usb-devices"] = "the list";
    fake->files["file"] = "text";
    fake->onCall = [this](const std::string& call) { fOnCall(call); };
    return WaitingNotice(std::move(fake), patience, [this](const std::string& line) {
      fNotices.push_back(line);
      fIsNotified.set_value();
    });
  }
  void OnCall(std::function<void(const std::string&)> action) { fOnCall = std::move(action); }
  void AwaitNotice() { fIsNotified.get_future().wait(); }
  const std::vector<std::string>& Notices() const { return fNotices; }
  const std::vector<std::string>& Calls() const { return fCalls; }

 private:
  std::vector<std::string> fCalls;
  std::vector<std::string> fNotices;
  std::promise<void> fIsNotified;
  std::function<void(const std::string&)> fOnCall = [](const std::string&) {};
};

TEST_F(WaitingNoticeTest, IsPrintedWhileTheCommandRunsAndItsOutputIsKept) {
  WaitingNotice system = NoticeAfter(kAtOnce);
  OnCall([this](const std::string&) { AwaitNotice(); });
  EXPECT_EQ(system.SpawnProcess("usb-devices", 300), "the list");
  EXPECT_THAT(Notices(), ElementsAre(kNotice));
  EXPECT_THAT(Calls(), ElementsAre("spawn usb-devices 300"));
}

TEST_F(WaitingNoticeTest, IsPrintedOnceForAllCommands) {
  WaitingNotice system = NoticeAfter(kAtOnce);
  OnCall([this](const std::string&) { AwaitNotice(); });
  system.SpawnProcess("usb-devices", 300);
  OnCall([](const std::string&) { EXPECT_EQ(ThreadCountAfterJoining(1), 1U); });
  EXPECT_EQ(system.SpawnProcess("usb-devices", 300), "the list");
  EXPECT_EQ(Notices().size(), 1U);
}

TEST_F(WaitingNoticeTest, IsNotPrintedForACommandThatEndsInTime) {
  WaitingNotice system = NoticeAfter(kNever);
  EXPECT_EQ(system.SpawnProcess("usb-devices", 300), "the list");
  EXPECT_THAT(Notices(), IsEmpty());
}

TEST_F(WaitingNoticeTest, LeavesNoThreadBehind) {
  const std::size_t before = ThreadCount();
  WaitingNotice never = NoticeAfter(kNever);
  OnCall([before](const std::string&) { EXPECT_EQ(ThreadCount(), before + 1); });
  never.SpawnProcess("usb-devices", 300);
  EXPECT_EQ(ThreadCountAfterJoining(before), before);
}

TEST_F(WaitingNoticeTest, PassesAnExceptionThroughAndLeavesNoThreadBehind) {
  const std::size_t before = ThreadCount();
  for (const std::chrono::milliseconds patience : {std::chrono::milliseconds(kNever), kAtOnce}) {
    WaitingNotice system = NoticeAfter(patience);
    OnCall([](const std::string&) { throw std::runtime_error("no luck"); });
    EXPECT_THROW(system.SpawnProcess("usb-devices", 300), std::runtime_error);
    EXPECT_EQ(ThreadCountAfterJoining(before), before);
  }
}

TEST_F(WaitingNoticeTest, DropsWhatItsOwnWritingThrows) {
  std::promise<void> tried;
  std::vector<std::string> calls;
  auto fake = std::make_unique<FakeOperatingSystem>(&calls);
  fake->outputs["usb-devices"] = "the list";
  fake->onCall = [&tried](const std::string&) { tried.get_future().wait(); };
  WaitingNotice system(std::move(fake), kAtOnce, [&tried](const std::string&) {
    tried.set_value();
    throw std::runtime_error("no terminal");
  });
  EXPECT_EQ(system.SpawnProcess("usb-devices", 300), "the list");
}

TEST_F(WaitingNoticeTest, NamesTheCommandOnOneLine) {
  WaitingNotice system = NoticeAfter(kAtOnce);
  OnCall([this](const std::string&) { AwaitNotice(); });
  system.SpawnProcess("a\n\x1B[2J", 5);
  EXPECT_THAT(Notices(), ElementsAre("usbinfo: waiting for a\\n\\x1b[2J, for 5 seconds at most ...\n"));
}

TEST_F(WaitingNoticeTest, IsNotForFiles) {
  WaitingNotice system = NoticeAfter(kAtOnce);
  OnCall([](const std::string&) { EXPECT_EQ(ThreadCount(), 1U); });
  EXPECT_TRUE(system.FileExists("file"));
  EXPECT_EQ(system.CaptureFile("file"), "text");
  EXPECT_THAT(Notices(), IsEmpty());
}

/// The whole command on a machine whose only list is printed by a usb-devices script of the test.
class WaitingCommandTest : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* const list : {"/proc/bus/usb/devices", "/sys/kernel/debug/usb/devices"}) {
      if (::access(list, F_OK) == 0) GTEST_SKIP() << "this machine has " << list;
    }
  }

  /// Makes a usb-devices script that records how many threads its caller has, runs `wait`, and prints a list.
  Command WithListCommand(const std::string& wait) {
    fFolder.Script("usb-devices",
                   "caller=$PPID\n"
                   "while read -r pid name state caller_of rest < /proc/$caller/stat && [ \"$name\" != "
                   "'(usbinfo)' ]; do caller=$caller_of; done\n"
                   "set -- /proc/$caller/task/*\n"
                   "echo $# > '" +
                       fFolder.File("threads") + "'\n" + wait + "\n/bin/cat '" +
                       CapturePath("vm-desktop-usb-devices") + "'");
    fFolder.ShareWithAll();
    return Command({"--source", "plugin", "--as-is", "--system-name", "testhost"})
        .AsOrdinaryUser()
        .Set("PATH", fFolder.Path());
  }
  std::string Threads() const { return ReadFile(fFolder.File("threads")); }
  const TemporaryFolder& Folder() const { return fFolder; }

 private:
  TemporaryFolder fFolder;
};

TEST_F(WaitingCommandTest, SaysOnATerminalWhatItWaitsFor) {
  const std::string go = Folder().File("go");
  ASSERT_EQ(::mkfifo(go.c_str(), 0600), 0);
  std::filesystem::permissions(go, std::filesystem::perms::others_read, std::filesystem::perm_options::add);
  bool isReleased = false;
  const CommandResult result = WithListCommand("read -r word < '" + go + "'")
                                   .ErrorsToTerminal([&](const std::string& text) {
                                     if (isReleased || text.find('\n') == std::string::npos) return;
                                     isReleased = true;
                                     sys::WriteAll(sys::OpenFile(go, O_WRONLY).Get(), "go\n");
                                   })
                                   .Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, kNotice);
  EXPECT_EQ(result.output, RunUsbinfo({"--devices", CapturePath("vm-desktop-usb-devices"), "--as-is",
                                       "--system-name", "testhost"})
                               .output);
  EXPECT_EQ(Threads(), "2\n");
}

TEST_F(WaitingCommandTest, StartsNoTimerWhereStandardErrorIsNotATerminal) {
  const CommandResult result = WithListCommand("").Run();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(Threads(), "1\n");
}

TEST_F(WaitingCommandTest, MasksWhatTheListCommandPrintsAsAGivenList) {
  const std::string key = Folder().File("key", "a key of the tests");
  const auto run = [&](std::vector<std::string> arguments) {
    for (const std::string& option : {"--system-name"s, "testhost"s, "--mask-serials"s, "--mask-key"s, key}) {
      arguments.push_back(option);
    }
    return Command(arguments).AsOrdinaryUser().Set("PATH", Folder().Path()).Run().output;
  };
  WithListCommand("");
  EXPECT_EQ(run({"--source", "plugin", "--format", "list"}),
            run({"--format", "list", "--devices", CapturePath("vm-desktop-usb-devices")}));
}

}  // namespace
}  // namespace usbinfo_test
