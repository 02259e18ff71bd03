// Reading `nm` and `readelf`; see the header.
#include "tests/module/BinaryTools.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <map>
#include <regex>
#include <sstream>

namespace usbinfo_test {

namespace {

std::uint64_t Hex(const std::string& digits) {
  return std::stoull(digits, nullptr, 16);
}

std::string ShortenStrings(std::string name) {
  const std::string kLong = "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >";
  for (std::size_t at = name.find(kLong); at != std::string::npos; at = name.find(kLong, at)) {
    name.replace(at, kLong.size(), "std::string");
  }
  return name;
}

std::vector<Symbol> Symbols(const std::string& options, const std::string& path) {
  const std::regex entry("([0-9a-f]{16})? *([A-Za-z]) (.*)");
  std::vector<Symbol> symbols;
  for (const std::string& line : LinesOf("nm -C --without-symbol-versions " + options + " '" + path + "'")) {
    std::smatch parts;
    if (!std::regex_match(line, parts, entry)) continue;
    const std::uint64_t address = parts[1].matched ? Hex(parts[1]) : 0;
    symbols.push_back({address, parts[2].str()[0], ShortenStrings(parts[3])});
  }
  EXPECT_FALSE(symbols.empty()) << path;
  return symbols;
}

struct Section {
  std::uint64_t address = 0;
  std::uint64_t size = 0;
};

Section FindSection(const std::string& path, const std::string& name) {
  const std::regex entry(" *\\[ *\\d+\\] (\\S+) +\\S+ +([0-9a-f]+) [0-9a-f]+ ([0-9a-f]+) .*");
  for (const std::string& line : LinesOf("readelf -SW '" + path + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry) && parts[1] == name) return {Hex(parts[2]), Hex(parts[3])};
  }
  ADD_FAILURE() << path << " has no section " << name;
  return {};
}

/// What the loader writes into each place of the section: the place and the address of what it points to.
std::map<std::uint64_t, std::uint64_t> RelocatedPointers(const std::string& path, const Section& section) {
  const std::regex entry("([0-9a-f]{16}) +[0-9a-f]+ R_X86_64_RELATIVE +([0-9a-f]+)");
  std::map<std::uint64_t, std::uint64_t> pointers;
  for (const std::string& line : LinesOf("readelf -rW '" + path + "'")) {
    std::smatch parts;
    if (!std::regex_match(line, parts, entry)) continue;
    const std::uint64_t place = Hex(parts[1]);
    if (place >= section.address && place < section.address + section.size) pointers[place] = Hex(parts[2]);
  }
  return pointers;
}

}  // namespace

std::vector<std::string> LinesOf(const std::string& command) {
  std::string output;
  FILE* const pipe = ::popen(("LC_ALL=C " + command).c_str(), "r");
  if (pipe == nullptr) {
    ADD_FAILURE() << "cannot run " << command;
    return {};
  }
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output.push_back(static_cast<char>(c));
  EXPECT_EQ(::pclose(pipe), 0) << command;
  std::istringstream text(output);
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}

std::vector<Symbol> DynamicSymbols(const std::string& path) {
  return Symbols("-D", path);
}

std::vector<Symbol> AllSymbols(const std::string& path) {
  return Symbols("", path);
}

std::vector<std::string> NeededLibraries(const std::string& path) {
  const std::regex entry(".*\\(NEEDED\\).*\\[(.*)\\]");
  std::vector<std::string> libraries;
  for (const std::string& line : LinesOf("readelf -dW '" + path + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry)) libraries.push_back(parts[1]);
  }
  return libraries;
}

std::vector<std::string> InitializersInOrder(const std::string& path) {
  std::map<std::uint64_t, std::string> names;
  for (const Symbol& symbol : AllSymbols(path)) {
    if (symbol.kind == 't' || symbol.kind == 'T') names[symbol.address] = symbol.name;
  }
  const Section section = FindSection(path, ".init_array");
  std::vector<std::string> initializers;
  for (const auto& [place, function] : RelocatedPointers(path, section)) {
    initializers.push_back(names[function]);
  }
  EXPECT_EQ(initializers.size(), section.size / sizeof(void*)) << "entries that were not understood";
  return initializers;
}

}  // namespace usbinfo_test
