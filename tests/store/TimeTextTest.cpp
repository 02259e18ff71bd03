#include <gtest/gtest.h>

#include "cli/option/UsageError.h"
#include "store/NumberRanges.h"
#include "store/TimeText.h"

namespace usbinfo_test {

TEST(TimeText, GivesEachTimeOneTextAndTakesNoOther) {
  for (const char* const text :
       {"0000-01-01T00:00:00Z", "1970-01-01T00:00:00Z", "2024-02-29T23:59:59Z", "9999-12-31T23:59:59Z"}) {
    ASSERT_TRUE(store::ParseTime(text)) << text;
    EXPECT_EQ(store::FormatTime(*store::ParseTime(text)), text);
  }
  EXPECT_EQ(store::ParseTime("2026-11-22T00:00:00Z"), 1795305600);
  for (const char* const text :
       {"", "2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-01-01T24:00:00Z", "2026-01-01T00:00:60Z",
        "2026-01-01 00:00:00Z", "2026-01-01T00:00:00", "+026-01-01T00:00:00Z"}) {
    EXPECT_FALSE(store::ParseTime(text)) << text;
  }
}

TEST(TimeText, TakesTimesAndDurationsAsPeopleTypeThem) {
  constexpr store::Seconds kToday = 1795305600;
  for (const char* const text : {"2026-11-21", "2026-11-21Z", "2026-11-21T00:00", "2026-11-21 00:00:00Z",
                                 "1d", "24h", "1440m", "86400s"}) {
    EXPECT_EQ(store::Moment::Parse(text).At(kToday), kToday - 86400) << text;
  }
  EXPECT_EQ(store::ParseDuration("2w"), 14 * 86400);
  EXPECT_EQ(store::ParseDuration("365000d"), 365000LL * 86400);
  for (const char* const text : {"", "d", "-1d", "1", "1.5d", "1y", "2026-11", "2026-02-30", "9999999999d",
                                 "365001d", "99999999w", "now"}) {
    EXPECT_THROW(store::Moment::Parse(text), cli::UsageError) << text;
    EXPECT_THROW(store::ParseDuration(text), cli::UsageError) << text;
  }
}

TEST(NumberRanges, ReadsBackWhatItWrites) {
  EXPECT_EQ(store::FormatRanges({1, 2, 3, 7, 5, 6, 6, 7}), "1-3,7,5-6,6-7");
  for (const std::vector<std::int64_t>& numbers :
       std::vector<std::vector<std::int64_t>>{{}, {4}, {1, 2, 3, 7, 5, 6, 6, 7}, {3, 2, 1}, {1, 1}}) {
    EXPECT_EQ(store::ParseRanges(store::FormatRanges(numbers)), numbers);
  }
  for (const char* const text : {"x", "0", "3-1", "1-", "-1", "1--2", "1-99999999999"}) {
    EXPECT_EQ(store::ParseRanges(text), std::nullopt) << text;
  }
}

}  // namespace usbinfo_test
