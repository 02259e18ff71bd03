// Ten thousand lives of the module in one process: loaded, driven, unloaded, in turn undisturbed and with
// each kind of exception thrown into it. What the process holds afterwards is what it held after the first
// few.
#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/faults/PluginRun.h"
#include "tests/plugin/DeviceLists.h"
#include "tests/support/AllClasses.h"
#include "tests/support/Allocations.h"

namespace usbinfo_test {
namespace {

/// The sanitizers keep freed memory back and take ten times as long; what they look for shows in few cycles.
constexpr int kCycles = SANITIZED ? 200 : 10000;

struct Holdings {
  std::size_t blocks;
  std::ptrdiff_t descriptors;
  std::ptrdiff_t mappings;

  bool operator==(const Holdings& other) const {
    return blocks == other.blocks && descriptors == other.descriptors && mappings == other.mappings;
  }
};

std::ostream& operator<<(std::ostream& out, const Holdings& holdings) {
  return out << holdings.blocks << " blocks, " << holdings.descriptors << " descriptors, "
             << holdings.mappings << " mappings";
}

std::ptrdiff_t CountDescriptors() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return std::distance(begin(descriptors), end(descriptors));
}

/// The heap's and the stack's own mappings may grow and shrink; counted are those of files.
std::ptrdiff_t CountFileMappings() {
  std::ifstream maps("/proc/self/maps");
  std::ptrdiff_t count = 0;
  for (std::string line; std::getline(maps, line);) count += line.find(" /") != std::string::npos ? 1 : 0;
  return count;
}

Holdings CurrentHoldings() {
  return {Allocations::Live(), CountDescriptors(), CountFileMappings()};
}

/// The bytes that malloc has given out, those that do not come from `new` included.
std::size_t HeapBytes() {
  return ::mallinfo2().uordblks;
}

/// The process's resident memory, in bytes.
std::size_t ResidentBytes() {
  std::ifstream statm("/proc/self/statm");
  std::size_t total = 0;
  std::size_t resident = 0;
  statm >> total >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/// One life; every fourth is undisturbed, the others meet an exception in a call that moves with the number.
void Live(int number) {
  static const Scenario kScenario{"mouse", kRootHubWithMouse, ListPlace::kProcFile, kAllClasses};
  constexpr int kKinds = 3;
  constexpr std::size_t kCalls = 200;
  std::optional<Fault> fault;
  if (number % (kKinds + 1) != 0) {
    fault = Fault{static_cast<std::size_t>(number) % kCalls, static_cast<FaultKind>(number % kKinds)};
  }
  const Outcome outcome = RunPlugin(kScenario, fault);
  EXPECT_TRUE(fault || outcome.instances.size() == kAllClasses.size()) << number;
}

TEST(Lifecycle, TenThousandLivesLeaveTheProcessAsItWas) {
  constexpr int kSettling = 400;
  for (int number = 0; number < kSettling; ++number) Live(number);
  const Holdings before = CurrentHoldings();
  const std::size_t heap = HeapBytes();
  const std::size_t resident = ResidentBytes();
  for (int number = 0; number < kCycles; ++number) Live(number);
  EXPECT_EQ(CurrentHoldings(), before);
  if (SANITIZED) return;  // their allocator keeps freed memory and reports none
  // The heap rounds sizes in ways that depend on its past; a leak of one byte a life would show.
  EXPECT_LT(HeapBytes(), heap + kCycles);
  constexpr std::size_t kTolerance = std::size_t{1} << 20U;
  EXPECT_LT(ResidentBytes(), resident + kTolerance);
}

}  // namespace
}  // namespace usbinfo_test
