// What shows that a device list was forged or damaged: a device chooses its strings, and a line end in one
// begins a line that looks like any other.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kernel {

/// Something in a device list that the kernel does not write.
struct ListFinding {
  enum class Code {
    kTwoTopologyLines,
    kTwoDescriptorLines,
    kTwoProductLines,
    /// A "T:", "D:" or "P:" line behind an "S:" line, or another string than a manufacturer, product or
    /// serial number.
    kLineBehindString,
    /// Two "S:" lines of one name.
    kTwoStrings,
    /// Two or more records of one bus and device number.
    kTwoDevices,
  };

  Code code;
  /// The numbers of the lines that contradict each other, from 1.
  std::vector<std::size_t> lines;
  /// The bus and the device number as the record's first "T:" line has them, such as "01" and "9".
  std::string bus;
  std::string number;

  bool operator==(const ListFinding&) const = default;
};

/// In lower case with dashes, such as "two-t-lines".
std::string_view NameOf(ListFinding::Code code);

/// In the order in which their records stand in `text`; those of several records come last. A line of a
/// record counts by its first character, whether or not a colon follows.
std::vector<ListFinding> FindingsIn(std::string_view text);

}  // namespace kernel
