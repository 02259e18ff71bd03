// The symbols that the stand-in's library exports, compared with standin_exports.txt: adding or removing one
// has to change that file too.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

#include "tests/module/BinaryTools.h"

namespace usbinfo_test {
namespace {

TEST(StandinBorder, ShowsTheDescribedSymbols) {
  std::ifstream file(STANDIN_EXPORTS);
  ASSERT_TRUE(file.is_open()) << STANDIN_EXPORTS;
  std::set<std::string> described;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') described.insert(line);
  }
  std::set<std::string> shown;
  for (const Symbol& symbol : DynamicSymbols(STANDIN_PATH)) {
    if (symbol.kind != 'U' && symbol.kind != 'w' && symbol.kind != 'v') shown.insert(symbol.name);
  }
  EXPECT_EQ(shown, described);
}

}  // namespace
}  // namespace usbinfo_test
