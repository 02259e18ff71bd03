// The real source of events on this machine, as an ordinary user: when waiting ends without any event.
#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>

#include "cli/watch/UdevMonitor.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"

using cli::UdevMonitor;
using cli::Waking;
using std::chrono::steady_clock;

namespace usbinfo_test {
namespace {

class UdevMonitorTest : public testing::Test {
 protected:
  UdevMonitorTest() {
    int ends[2] = {-1, -1};
    EXPECT_EQ(::pipe(ends), 0);
    fReader = sys::FileDescriptor(ends[0]);
    fWriter = sys::FileDescriptor(ends[1]);
  }

  NoPrivileges fUser;
  sys::FileDescriptor fReader;
  sys::FileDescriptor fWriter;
};

TEST_F(UdevMonitorTest, WaitsUntilTheDeadlineAndNotBefore) {
  UdevMonitor monitor(fReader.Get());
  const auto deadline = steady_clock::now() + std::chrono::milliseconds(2);
  EXPECT_EQ(monitor.Wait(deadline).cause, Waking::Cause::kDeadline);
  EXPECT_GE(steady_clock::now(), deadline);
  EXPECT_EQ(monitor.Wait(deadline).cause, Waking::Cause::kDeadline);
}

TEST_F(UdevMonitorTest, SaysStopAsLongAsTheDescriptorCanBeRead) {
  UdevMonitor monitor(fReader.Get());
  sys::WriteAll(fWriter.Get(), "x");
  EXPECT_EQ(monitor.Wait(std::nullopt).cause, Waking::Cause::kStop);
  EXPECT_EQ(monitor.Wait(steady_clock::now()).cause, Waking::Cause::kStop);
}

}  // namespace
}  // namespace usbinfo_test
