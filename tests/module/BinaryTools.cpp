#include "tests/module/BinaryTools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <regex>
#include <sstream>

namespace usbinfo_test {

namespace {

std::uint64_t Hex(const std::string& digits) {
  return std::stoull(digits, nullptr, 16);
}

void ReplaceAll(std::string& text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size())) {
    text.replace(at, what.size(), with);
  }
}

std::string WithShortTypes(std::string name) {
  ReplaceAll(name, "std::__cxx11::basic_string<char, std::char_traits<char>, std::allocator<char> >",
             "std::string");
  ReplaceAll(name,
             "std::map<std::string, NKESTA20::TCIMValue, std::less<std::string >, "
             "std::allocator<std::pair<std::string const, NKESTA20::TCIMValue> > >",
             "NKESTA20::PropertyMap");
  return name;
}

std::vector<Symbol> Symbols(const std::string& options, const std::string& path) {
  const std::regex entry("([0-9a-f]{16})? *([A-Za-z]) (.*)");
  std::vector<Symbol> symbols;
  for (const std::string& line : LinesOf("nm -C --without-symbol-versions " + options + " '" + path + "'")) {
    std::smatch parts;
    if (!std::regex_match(line, parts, entry)) continue;
    const std::uint64_t address = parts[1].matched ? Hex(parts[1]) : 0;
    symbols.push_back({address, parts[2].str()[0], WithShortTypes(parts[3])});
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

/// What the loader writes into each place of the section: the place and the name or, in hexadecimal digits,
/// the address of what it points to.
std::map<std::uint64_t, std::string> RelocatedPointers(const std::string& path, const Section& section) {
  const std::regex entry(
      "([0-9a-f]{16}) +[0-9a-f]+ R_(?:X86_64_(?:RELATIVE|64)|AARCH64_(?:RELATIVE|ABS64)) +"
      "(?:[0-9a-f]{16} )?([^ @]+)(?:@.*| \\+ 0)?");
  std::map<std::uint64_t, std::string> pointers;
  for (const std::string& line : LinesOf("readelf -rW '" + path + "'")) {
    std::smatch parts;
    if (!std::regex_match(line, parts, entry)) continue;
    const std::uint64_t place = Hex(parts[1]);
    if (place >= section.address && place < section.address + section.size) pointers[place] = parts[2];
  }
  return pointers;
}

Section FindVirtualTable(const std::string& path, const std::string& className) {
  const std::regex entry("([0-9a-f]{16}) ([0-9a-f]{16}) [A-Za-z] vtable for (.*)");
  for (const std::string& line : LinesOf("nm -C -S '" + path + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry) && parts[3] == className) return {Hex(parts[1]), Hex(parts[2])};
  }
  ADD_FAILURE() << path << " has no virtual table of " << className;
  return {};
}

/// The names that each address has; a name in its raw form stands for itself.
std::map<std::string, std::set<std::string>> NamesByPointer(const std::string& path) {
  std::map<std::string, std::set<std::string>> names;
  const std::vector<std::string> raw = LinesOf("nm --without-symbol-versions '" + path + "'");
  const std::vector<std::string> readable = LinesOf("nm -C --without-symbol-versions '" + path + "'");
  EXPECT_EQ(raw.size(), readable.size()) << path;
  constexpr std::size_t kNameAt = 19;  // after the address, the kind and two blanks
  for (std::size_t line = 0; line < raw.size(); ++line) {
    const std::string name = WithShortTypes(readable[line].substr(kNameAt));
    names[raw[line].substr(kNameAt)].insert(name);
    const std::string address = raw[line].substr(0, raw[line].find(' '));
    if (!address.empty()) names[address.substr(address.find_first_not_of('0'))].insert(name);
  }
  return names;
}

/// The loader of this very program, and so the one for the module.
std::string Loader() {
  const std::regex entry(" *\\[Requesting program interpreter: (.*)\\]");
  const std::string program = std::filesystem::read_symlink("/proc/self/exe");
  for (const std::string& line : LinesOf("readelf -lW '" + program + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry)) return parts[1];
  }
  ADD_FAILURE() << program << " has no loader";
  return {};
}

/// The sanitizers register the module's globals first.
bool IsSanitizers(const std::string& initializer) {
  return SANITIZED && initializer.rfind("_sub_I_00099", 0) == 0;
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

std::vector<std::string> NeededFiles(const std::string& path) {
  const std::regex entry("\\s*(?:\\S+ => )?(/\\S+) \\(0x[0-9a-f]+\\)");
  std::vector<std::string> files;
  for (const std::string& line : LinesOf(Loader() + " --list '" + path + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry)) files.push_back(parts[1]);
  }
  return files;
}

std::vector<std::set<std::string>> VirtualTable(const std::string& path, const std::string& className) {
  const Section table = FindVirtualTable(path, className);
  const auto pointers = RelocatedPointers(path, table);
  auto names = NamesByPointer(path);
  std::vector<std::set<std::string>> entries;
  constexpr std::uint64_t kTypesOwn = 2 * sizeof(void*);
  for (std::uint64_t place = table.address + kTypesOwn; place < table.address + table.size;
       place += sizeof(void*)) {
    const auto pointer = pointers.find(place);
    entries.push_back(pointer == pointers.end() ? std::set<std::string>() : names[pointer->second]);
  }
  return entries;
}

std::vector<int> InitializerPriorities(const std::string& objectPath) {
  const std::regex entry(".* \\.init_array\\.(\\d+) .*");
  std::vector<int> priorities;
  for (const std::string& line : LinesOf("readelf -SW '" + objectPath + "'")) {
    std::smatch parts;
    if (std::regex_match(line, parts, entry)) priorities.push_back(std::stoi(parts[1]));
  }
  return priorities;
}

std::vector<std::string> InitializersInOrder(const std::string& path) {
  std::map<std::uint64_t, std::string> names;
  for (const Symbol& symbol : AllSymbols(path)) {
    if (symbol.kind == 't' || symbol.kind == 'T') names[symbol.address] = symbol.name;
  }
  const Section section = FindSection(path, ".init_array");
  std::vector<std::string> initializers;
  for (const auto& [place, function] : RelocatedPointers(path, section)) {
    initializers.push_back(names[Hex(function)]);
  }
  EXPECT_EQ(initializers.size(), section.size / sizeof(void*)) << "entries that were not understood";
  initializers.erase(std::remove_if(initializers.begin(), initializers.end(), IsSanitizers),
                     initializers.end());
  return initializers;
}

}  // namespace usbinfo_test
