// What the module's file must not contain, apart from the description of its border, and the integer that it
// exports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/module/BinaryTools.h"

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

namespace usbinfo_test {
namespace {

TEST(BinaryBorder, LooksForLibrariesNowhereElse) {
  for (const std::string& line : LinesOf("readelf -dW '" MODULE_PATH "'")) {
    EXPECT_THAT(line, Not(HasSubstr("PATH)"))) << "a search path of its own";
  }
}

TEST(BinaryBorder, NeverNamesTheStandIn) {
  for (const Symbol& symbol : AllSymbols(MODULE_PATH)) {
    EXPECT_THAT(symbol.name, Not(HasSubstr("standin::")));
  }
}

TEST(BinaryBorder, ShowsTheIntegerAsThirtyTwoZeroBits) {
  std::vector<char> kinds;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (symbol.name == "NKESTA20::gStarted") kinds.push_back(symbol.kind);
  }
  EXPECT_THAT(kinds, ElementsAre('B')) << "in the section that starts as zeros";
  std::vector<std::string> entries;
  for (const std::string& line : LinesOf("readelf --dyn-syms -W '" MODULE_PATH "'")) {
    if (line.find(" _ZN8NKESTA208gStartedE") != std::string::npos) entries.push_back(line);
  }
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_THAT(entries[0], ::testing::ContainsRegex(" 4 OBJECT  *GLOBAL  *DEFAULT "));
}

TEST(BinaryBorder, HasNoUniqueSymbolThatWouldKeepItLoaded) {
  std::vector<std::string> unique;
  for (const Symbol& symbol : AllSymbols(MODULE_PATH)) {
    if (symbol.kind == 'u') unique.push_back(symbol.name);
  }
  EXPECT_THAT(unique, IsEmpty());
}

}  // namespace
}  // namespace usbinfo_test
