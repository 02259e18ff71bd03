// What the targets throw when something that must always hold does not. The fuzzer ends with its message, a
// test fails with it.
#pragma once

#include <stdexcept>
#include <string>

namespace usbinfo_test {

class BrokenInvariant : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// Throws a BrokenInvariant saying `what` unless `holds`.
inline void Require(bool holds, const char* what) {
  if (!holds) throw BrokenInvariant(what);
}

/// The same for two texts that must be equal; the message holds both.
inline void RequireEqual(const std::string& found, const std::string& expected, const char* what) {
  if (found == expected) return;
  throw BrokenInvariant(std::string(what) + ": found \"" + found + "\", expected \"" + expected + "\"");
}

/// The same for two counts.
inline void RequireCount(std::size_t found, std::size_t expected, const char* what) {
  RequireEqual(std::to_string(found), std::to_string(expected), what);
}

}  // namespace usbinfo_test
