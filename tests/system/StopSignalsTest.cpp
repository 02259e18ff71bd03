// Signals that a program waits for instead of being ended by them.
#include <gmock/gmock.h>
#include <poll.h>

#include <csignal>

#include "system/StopSignals.h"
#include "tests/support/ForkedChild.h"

namespace usbinfo_test {
namespace {

bool HasCome(const sys::StopSignals& signals) {
  pollfd watched = {signals.Get(), POLLIN, 0};
  return ::poll(&watched, 1, 0) == 1;
}

class StopSignalsTest : public testing::TestWithParam<int> {};

TEST_P(StopSignalsTest, CanBeWaitedForAndStay) {
  const pid_t child = StartChild([] {
    const sys::StopSignals signals;
    if (HasCome(signals)) return 1;
    static_cast<void>(::raise(GetParam()));
    return HasCome(signals) && HasCome(signals) ? 0 : 2;
  });
  EXPECT_EQ(EndOfChild(child), 0);
}

TEST_P(StopSignalsTest, EndTheProcessAgainAfterwardsButNotForThoseThatCame) {
  const pid_t child = StartChild([] {
    {
      const sys::StopSignals signals;
      static_cast<void>(::raise(GetParam()));
    }
    static_cast<void>(::raise(GetParam() == SIGINT ? SIGTERM : SIGINT));
    return 1;
  });
  EXPECT_EQ(EndOfChild(child), GetParam() == SIGINT ? -SIGTERM : -SIGINT);
}

TEST_P(StopSignalsTest, EndTheProcessTheSecondTime) {
  const pid_t child = StartChild([] {
    const sys::StopSignals signals;
    static_cast<void>(::raise(GetParam()));
    if (!HasCome(signals)) return 1;
    static_cast<void>(::raise(GetParam()));
    return 2;
  });
  EXPECT_EQ(EndOfChild(child), -GetParam());
}

TEST_P(StopSignalsTest, AreLeftAloneWhereTheProcessIgnoresThem) {
  const pid_t child = StartChild([] {
    std::signal(GetParam(), SIG_IGN);
    const sys::StopSignals signals;
    static_cast<void>(::raise(GetParam()));
    return HasCome(signals) ? 1 : 0;
  });
  EXPECT_EQ(EndOfChild(child), 0);
}

INSTANTIATE_TEST_SUITE_P(Signals, StopSignalsTest, testing::Values(SIGINT, SIGTERM),
                         [](const auto& row) { return "Signal" + std::to_string(row.param); });

}  // namespace
}  // namespace usbinfo_test
