// A row of a table of strings that a device may send, with what a format has to show of each.
#pragma once

#include <ostream>
#include <string>

namespace usbinfo_test {

struct ShownText {
  const char* name;
  std::string bytes;
  std::string shown;
};

inline std::ostream& operator<<(std::ostream& out, const ShownText& text) {
  return out << text.name;
}

}  // namespace usbinfo_test
