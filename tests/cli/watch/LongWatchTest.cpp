// A watch that goes on and on, through the real plug-in, takes no more memory and no more descriptors than at
// its beginning.
#include <gmock/gmock.h>
#include <malloc.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "cli/collect/Collection.h"
#include "cli/text/LogWriter.h"
#include "cli/watch/Watcher.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/watch/ScriptedMachine.h"

using std::chrono::milliseconds;

namespace usbinfo_test {
namespace {

struct Usage {
  std::size_t bytes = 0;
  std::ptrdiff_t descriptors = 0;
};

Usage UsageNow() {
  namespace fs = std::filesystem;
  const std::ptrdiff_t descriptors =
      std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
  return {::mallinfo2().uordblks, descriptors};
}

void PlugAndUnplug(ScriptedMachine& machine, int number) {
  const Plugged plugged = {number};
  for (const auto& events : {EventsOfAdding("1-2", plugged), EventsOfRemoving("1-2", plugged)}) {
    for (const cli::UsbEvent& event : events) machine.Send(milliseconds(1000 * number), event);
  }
}

TEST(LongWatch, KeepsItsMemoryAndItsDescriptors) {
  constexpr int kLooks = 400;
  const std::vector<std::string> lists = {ReadFile(CapturePath("vm-desktop-debugfs")),
                                          ReadFile(CapturePath("vm-deep-hubs-debugfs"))};
  ScriptedMachine machine;
  cli::Source source;
  source.devices = "machine";
  source.systemName = "machine";
  source.plugin = MODULE_PATH;
  cli::LogWriter log("", cli::LogSeverity::kError, cli::LogFormat::kText);
  std::vector<Usage> usages;
  std::size_t reports = 0;
  const auto collect = [&] {
    usages.push_back(UsageNow());
    const int look = static_cast<int>(usages.size());
    if (look < kLooks) PlugAndUnplug(machine, look);
    return cli::CollectFrom(lists[usages.size() % lists.size()], source, cli::AllClasses(), log);
  };
  usages.reserve(kLooks + 1);
  cli::Watcher watcher({.events = machine,
                        .clock = machine,
                        .collect = collect,
                        .print =
                            [&](const cli::WatchReport& report) {
                              if (!cli::RenderWatchJson(report).empty()) ++reports;
                            }},
                       {}, collect());
  EXPECT_TRUE(watcher.Follow());
  EXPECT_GE(reports, std::size_t{kLooks} - 1);
  // Every other look finds the same list. An allocation that each look leaves behind would take more.
  constexpr std::size_t kEarly = 200;
  constexpr std::size_t kLate = 398;
  constexpr std::size_t kLessThanAnyAllocation = 16;
  const Usage& early = usages.at(kEarly);
  const Usage& late = usages.at(kLate);
  EXPECT_LT(late.bytes, early.bytes + (kLate - kEarly) * kLessThanAnyAllocation);
  EXPECT_EQ(late.descriptors, early.descriptors);
}

}  // namespace
}  // namespace usbinfo_test
