// What a machine can do to the one who asks for its device list: files that vanish, cannot be read or come in
// pieces, commands that are missing, fail, say nothing, never end or never stop. The real services run here,
// with the fixed paths led into a test's own folder; the whole module runs above them.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include "standin/Machine.h"
#include "standin/PluginModule.h"
#include "tests/model/Scenario.h"
#include "tests/plugin/DeviceLists.h"
#include "tests/plugin/RequestLog.h"
#include "tests/support/HostTest.h"
#include "tests/support/RecordedSystem.h"
#include "tests/support/TemporaryFolder.h"

using ::testing::ElementsAre;

namespace usbinfo_test {
namespace {

/// The real machine, whose device files and list command are those of a folder.
class LedMachine : public standin::Machine {
 public:
  explicit LedMachine(const TemporaryFolder& folder) : fFolder(folder) {}

  bool FileExists(const std::string& path) override {
    const bool isThere = Machine::FileExists(Led(path));
    if (isThere && afterTest) afterTest(Led(path));
    return isThere;
  }
  std::string CaptureFile(const std::string& path) override { return Machine::CaptureFile(Led(path)); }
  std::string SpawnProcess(const std::string& command, int) override {
    constexpr int kSeconds = 1;
    return Machine::SpawnProcess("PATH=" + fFolder.Path().string() + "; " + command, kSeconds);
  }

  /// Called when a file was found, before it is read.
  std::function<void(const std::string& file)> afterTest;

 private:
  std::string Led(const std::string& path) const { return fFolder.Path().string() + path; }

  const TemporaryFolder& fFolder;
};

class MachineFault : public HostTest {
 protected:
  MachineFault() {
    auto owned = std::make_unique<LedMachine>(folder);
    ledMachine = owned.get();
    host.SetOperatingSystem(std::move(owned));
    SetSystemHook(nullptr);  // mounting fails
    SetListCommand("exit 0");
    std::filesystem::create_directories(folder.Path() / "proc/bus/usb");
    std::filesystem::create_directories(folder.Path() / "sys/kernel/debug/usb");
  }

  void SetListCommand(const std::string& body) { folder.Script(kListCommand, "PATH=/usr/bin:/bin\n" + body); }
  std::string ListFile() const { return folder.File("proc/bus/usb/devices"); }
  void GiveList(const std::string& text) { std::ofstream(ListFile()) << text; }

  /// Runs the module over all classes; its lines of status and above but for those about lines of the list.
  std::vector<LogLine> Run() {
    standin::PluginModule module(MODULE_PATH);
    module.Collect(kAllClasses);
    std::vector<LogLine> lines;
    for (const LogLine& line : log) {
      const bool isUnmatched = line.text.find("can't match the data") != std::string::npos;
      if (line.severity <= kStatus && !isUnmatched) lines.push_back(line);
    }
    return lines;
  }

  std::size_t Count(const std::string& className) {
    return host.Cimv2()->ClassForRequest(className)->Instances().size();
  }
  /// How many classes ended with an instance.
  std::ptrdiff_t ClassesRetrieved() const { return std::count(log.begin(), log.end(), kRetrieved); }

  TemporaryFolder folder;
  LedMachine* ledMachine;
};

const LogLine kCouldNotRead{kStatus, "Could not read usb device file "};
const LogLine kCouldNotOpen{kStatus, "Could not open usb device file "};
const LogLine kIsEmpty{kStatus, "USB device file is empty"};

TEST_F(MachineFault, AFileThatVanishesBeforeItIsReadIsMadeUpForByTheCommand) {
  GiveList(kTwoRootHubs);
  folder.File("list", kRootHubWithMouse);
  SetListCommand("cat '" + folder.File("list") + "'");
  ledMachine->afterTest = [](const std::string& file) { std::filesystem::remove(file); };
  EXPECT_THAT(Run(), ElementsAre(kCouldNotRead));
  EXPECT_EQ(Count("KALDO_USBDevice"), 1U);
  EXPECT_EQ(ClassesRetrieved(), 6);
}

TEST_F(MachineFault, AnUnreadableFileIsMadeUpForByTheCommand) {
  // Reading a process's memory from its start fails for everybody, root included.
  std::filesystem::create_symlink("/proc/self/mem", ListFile());
  folder.File("list", kRootHubWithMouse);
  SetListCommand("cat '" + folder.File("list") + "'");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotRead));
  EXPECT_EQ(ClassesRetrieved(), 6);
}

TEST_F(MachineFault, ADirectoryInThePlaceOfTheFileIsMadeUpForByTheCommand) {
  std::filesystem::create_directory(ListFile());
  folder.File("list", kRootHubWithMouse);
  SetListCommand("cat '" + folder.File("list") + "'");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotRead));
  EXPECT_EQ(ClassesRetrieved(), 6);
}

TEST_F(MachineFault, AListThatComesByteByByteIsReadWhole) {
  ASSERT_EQ(::mkfifo(ListFile().c_str(), S_IRUSR | S_IWUSR), 0);
  std::thread writer([this] {
    std::ofstream pipe(ListFile());
    for (const char c : kRootHubWithMouse) pipe << c << std::flush;
  });
  EXPECT_THAT(Run(), ElementsAre());
  writer.join();
  EXPECT_EQ(ClassesRetrieved(), 6);
}

TEST_F(MachineFault, AMissingCommandMeansNoDevices) {
  std::filesystem::remove(folder.File(kListCommand));
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen, kIsEmpty));
  EXPECT_EQ(ClassesRetrieved(), 0);
}

TEST_F(MachineFault, AFailingCommandIsTakenByWhatItPrinted) {
  folder.File("list", kRootHubWithMouse);
  SetListCommand("cat '" + folder.File("list") + "'; exit 3");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen));
  EXPECT_EQ(ClassesRetrieved(), 6);
}

TEST_F(MachineFault, ASilentCommandMeansNoDevices) {
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen, kIsEmpty));
  EXPECT_EQ(ClassesRetrieved(), 0);
}

TEST_F(MachineFault, ACommandThatTheShellOnlyKnowsAboutMeansNoDevices) {
  SetListCommand("echo '/usr/lib/command-not-found: usb-devices'");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen, kIsEmpty));
  EXPECT_EQ(ClassesRetrieved(), 0);
}

TEST_F(MachineFault, AnEndlessCommandIsEndedAndCostsOneClassItsRequest) {
  SetListCommand("exec sleep 600");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen, kUnknownException));
  EXPECT_EQ(std::count(log.begin(), log.end(), kNoInstances), 6);
}

TEST_F(MachineFault, ACommandThatNeverStopsWritingIsEndedAndCostsOneClassItsRequest) {
  SetListCommand("exec yes 'T:  Bus=01 Lev=00'");
  EXPECT_THAT(Run(), ElementsAre(kCouldNotOpen, kUnknownException));
  EXPECT_EQ(std::count(log.begin(), log.end(), kNoInstances), 6);
}

}  // namespace
}  // namespace usbinfo_test
