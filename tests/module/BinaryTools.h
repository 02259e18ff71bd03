// What the binary tools report about a module file: its symbols, its libraries and its initializers.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace usbinfo_test {

/// The lines that a command writes; fails the test when the command does.
std::vector<std::string> LinesOf(const std::string& command);

/// One symbol: where, of which kind (the letter that `nm` gives it) and its name as it is written in C++, the
/// library's names for strings and for the host's property map shortened to those of the source.
struct Symbol {
  std::uint64_t address;
  char kind;
  std::string name;
};

/// The symbols that the module exports or imports at run time.
std::vector<Symbol> DynamicSymbols(const std::string& path);
/// All symbols, the local ones included.
std::vector<Symbol> AllSymbols(const std::string& path);

/// The libraries that the module names as needed.
std::vector<std::string> NeededLibraries(const std::string& path);

/// The libraries among them as files that the loader would take.
std::vector<std::string> NeededFiles(const std::string& path);

/// The entries of a class's virtual table after the type's own two, in order, those of further bases after
/// them: for each the names of the function there. Several, where the compiler has found functions to be the
/// same; none, where it has left the entry of a class without objects empty.
std::vector<std::set<std::string>> VirtualTable(const std::string& path, const std::string& className);

/// The priorities of the initializers in an object file that ask for one.
std::vector<int> InitializerPriorities(const std::string& objectPath);

/// The names of the functions that run when the module is loaded, in the order in which they run; not the
/// one that the sanitizers put there.
std::vector<std::string> InitializersInOrder(const std::string& path);

}  // namespace usbinfo_test
