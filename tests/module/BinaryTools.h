// What the binary tools tell about a module file: its symbols, what it needs and what runs first when it is
// loaded.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace usbinfo_test {

/// The lines that a command writes; fails the test when the command does.
std::vector<std::string> LinesOf(const std::string& command);

/// One symbol: where, of which kind (the letter that `nm` gives it) and its name as it is written in C++, the
/// library's own names for strings shortened to std::string.
struct Symbol {
  std::uint64_t address;
  char kind;
  std::string name;
};

/// The symbols that the module shows or wants at run time.
std::vector<Symbol> DynamicSymbols(const std::string& path);
/// All symbols, the local ones included.
std::vector<Symbol> AllSymbols(const std::string& path);

/// The libraries that the module names as needed.
std::vector<std::string> NeededLibraries(const std::string& path);

/// The names of the functions that run when the module is loaded, in the order in which they run.
std::vector<std::string> InitializersInOrder(const std::string& path);

}  // namespace usbinfo_test
