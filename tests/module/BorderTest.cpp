// The module's border compared with its description in border.txt: a change of what the module exports or
// imports has to change that file too. Entries that depend on the compiler are listed here.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <set>

#include "tests/module/BinaryTools.h"

using ::testing::IsEmpty;
using ::testing::SizeIs;

namespace usbinfo_test {
namespace {

using BorderPart = std::vector<std::string>;

/// The description: the lines of each part, which begins with its name in brackets. "#" starts a remark.
std::map<std::string, BorderPart> ReadDescription() {
  std::ifstream file(BORDER_DESCRIPTION);
  EXPECT_TRUE(file.is_open()) << BORDER_DESCRIPTION;
  std::map<std::string, BorderPart> sections;
  std::string name;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[') {
      name = line.substr(1, line.size() - 2);
    } else {
      sections[name].push_back(line);
    }
  }
  return sections;
}

bool IsSanitizerRuntime(const std::string& name) {
  const bool isTheirs = name.rfind("libasan.", 0) == 0 || name.rfind("libubsan.", 0) == 0 ||
                        name.rfind("__asan_", 0) == 0 || name.rfind("__ubsan_", 0) == 0;
  return SANITIZED && isTheirs;
}

bool IsDefined(const Symbol& symbol) {
  return symbol.kind != 'U' && symbol.kind != 'w' && symbol.kind != 'v';
}

bool IsOfTheHost(const Symbol& symbol) {
  return symbol.name.find("NKESTA20::") != std::string::npos;
}

/// The library's name without the version after ".so", which depends on the distribution, as for Boost.
std::string WithoutBoostSeries(const std::string& library) {
  return library.rfind("libboost_", 0) == 0 ? library.substr(0, library.find(".so") + 3) : library;
}

class Border : public ::testing::Test {
 protected:
  /// The description's lines of that part, in any order.
  std::set<std::string> Described(const std::string& section) {
    const BorderPart& lines = description[section];
    EXPECT_THAT(lines, ::testing::Not(IsEmpty())) << section;
    return {lines.begin(), lines.end()};
  }

  std::map<std::string, BorderPart> description = ReadDescription();
};

TEST_F(Border, NeedsTheDescribedLibraries) {
  std::set<std::string> needed;
  for (const std::string& library : NeededLibraries(MODULE_PATH)) {
    if (!IsSanitizerRuntime(library)) needed.insert(WithoutBoostSeries(library));
  }
  EXPECT_EQ(needed, Described("needed libraries"));
}

TEST_F(Border, ShowsTheDescribedSymbols) {
  std::set<std::string> shown;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (IsDefined(symbol)) shown.insert(symbol.name);
  }
  EXPECT_EQ(shown, Described("exported"));
}

TEST_F(Border, AsksTheHostForTheDescribedSymbols) {
  std::set<std::string> asked;
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    if (!IsDefined(symbol) && IsOfTheHost(symbol)) asked.insert(symbol.name);
  }
  EXPECT_EQ(asked, Described("asked of the host"));
}

TEST_F(Border, AllElseThatItAsksForComesWithTheNeededLibraries) {
  std::set<std::string> supplied;
  for (const std::string& file : NeededFiles(MODULE_PATH)) {
    for (const Symbol& symbol : DynamicSymbols(file)) {
      if (IsDefined(symbol)) supplied.insert(symbol.name);
    }
  }
  for (const Symbol& symbol : DynamicSymbols(MODULE_PATH)) {
    const bool isOptional = symbol.kind == 'w' || symbol.kind == 'v';
    if (IsDefined(symbol) || isOptional || IsOfTheHost(symbol) || IsSanitizerRuntime(symbol.name)) continue;
    EXPECT_EQ(supplied.count(symbol.name), 1U) << symbol.name;
  }
}

TEST_F(Border, CreatesThePluginObjectInTheDescribedInitializer) {
  constexpr int kLastOfTheImplementation = 100;
  std::vector<int> priorities;
  for (const int priority : InitializerPriorities(PLUGIN_OBJECT_PATH)) {
    if (priority > kLastOfTheImplementation) priorities.push_back(priority);
  }
  ASSERT_THAT(priorities, SizeIs(1));
  const std::vector<std::string> initializers = InitializersInOrder(MODULE_PATH);
  ASSERT_THAT(initializers, ::testing::Not(IsEmpty()));
  EXPECT_EQ(std::set<std::string>{std::to_string(priorities[0]) + " " + initializers.front()},
            Described("first initializer, with its priority"));
}

/// True when the entry is the one described: "-" stands for anything but a function.
bool IsDescribed(const std::set<std::string>& entry, const std::string& described) {
  const bool isDestructor = described.find('~') != std::string::npos;
  if (entry.empty()) return isDestructor || described == "-";
  return entry.count(described) == 1;
}

class VirtualTables : public Border {
 protected:
  /// Compares the tables of all parts whose names begin so; how many there are.
  int CompareTables(const std::string& path, const std::string& lead) {
    int tables = 0;
    for (const auto& [section, lines] : description) {
      if (section.rfind(lead, 0) != 0) continue;
      ++tables;
      CompareTable(VirtualTable(path, section.substr(lead.size())), lines, section);
    }
    return tables;
  }

 private:
  static void CompareTable(const std::vector<std::set<std::string>>& entries, const BorderPart& lines,
                           const std::string& name) {
    EXPECT_THAT(entries, SizeIs(lines.size())) << name << ": " << ::testing::PrintToString(entries);
    for (std::size_t slot = 0; slot < std::min(entries.size(), lines.size()); ++slot) {
      EXPECT_TRUE(IsDescribed(entries[slot], lines[slot]))
          << name << ", entry " << slot << ": " << ::testing::PrintToString(entries[slot])
          << ", described as " << lines[slot];
    }
  }
};

TEST_F(VirtualTables, OfTheModuleAreAsDescribed) {
  EXPECT_EQ(CompareTables(MODULE_PATH, "virtual table of "), 9);
}

TEST_F(VirtualTables, OfTheHostsInterfacesAreAsDescribed) {
  EXPECT_EQ(CompareTables(STANDIN_PATH, "virtual table in the stand-in of "), 6);
}

}  // namespace
}  // namespace usbinfo_test
