// Conversions between text and numbers: their bases and edges decide every property value.
#include <gtest/gtest.h>

#include "provider/ValueConversion.h"

namespace {

TEST(StringToUnsignedShort, SkipsLeadingBlanksAndStopsAtTheFirstNonDigit) {
  EXPECT_EQ(stringToDataType<unsigned short>("  42"), 42);
}

}  // namespace
