// The values of options that are numbers and times.
#include <gmock/gmock.h>

#include <chrono>
#include <cstdint>
#include <optional>

#include "cli/option/Values.h"
#include "tests/cli/support/CliTest.h"

using namespace std::chrono_literals;

namespace usbinfo_test {
namespace {

constexpr std::chrono::hours kLongest{24 * 366};

TEST(Duration, IsAWholeNumberWithAUnitOrOfSeconds) {
  EXPECT_EQ(cli::ParseDuration("500ms", kLongest), 500ms);
  EXPECT_EQ(cli::ParseDuration("2s", kLongest), 2s);
  EXPECT_EQ(cli::ParseDuration("90", kLongest), 90s);
  EXPECT_EQ(cli::ParseDuration("0", kLongest), 0s);
  EXPECT_EQ(cli::ParseDuration("5m", kLongest), 5min);
  EXPECT_EQ(cli::ParseDuration("3h", kLongest), 3h);
  EXPECT_EQ(cli::ParseDuration("366d", kLongest), kLongest);
}

TEST(Duration, IsRefusedInAnyOtherFormAndBeyondTheLongest) {
  for (const char* text :
       {"", "s", "-1s", "+1s", "1.5s", "1 s", "1S", "1w", "1ms ", "0x1s", "1000000000ms"}) {
    EXPECT_EQ(UserErrorOf([&] { cli::ParseDuration(text, kLongest); }),
              "must be a whole number with ms, s, m, h or d after it, such as 500ms; without a unit, seconds")
        << text;
  }
  EXPECT_EQ(UserErrorOf([] { cli::ParseDuration("60001ms", 60s); }), "must be 60 seconds at most");
  EXPECT_EQ(UserErrorOf([] { cli::ParseDuration("999999999d", kLongest); }),
            "must be 31622400 seconds at most");
}

TEST(Count, IsAWholeNumberFromOneOn) {
  std::optional<std::uint64_t> count;
  cli::StoreCount(count)("1");
  EXPECT_EQ(count, 1U);
  cli::StoreCount(count)("999999999");
  EXPECT_EQ(count, 999999999U);
  for (const char* text : {"", "0", "-1", "1.0", "1s", "1000000000"}) {
    EXPECT_EQ(UserErrorOf([&] { cli::StoreCount(count)(text); }),
              "must be a whole number from 1 on, of up to 9 digits")
        << text;
  }
}

}  // namespace
}  // namespace usbinfo_test
