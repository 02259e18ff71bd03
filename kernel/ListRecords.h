// A device list cut into the records of its devices, line by line. It keeps views of the text, which must
// outlive it.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace kernel {

/// A line of a device list, without its line end.
struct ListLine {
  std::string_view text;
  /// From 1.
  std::size_t number = 0;

  /// The letter before the colon that the line begins with; 0 for any other line.
  char Type() const;
  /// The first character, by which some readers of lists go whatever follows it; 0 for an empty line.
  char Letter() const { return text.empty() ? '\0' : text.front(); }
  bool IsBlank() const;
};

/// The lines of one device, from its "T:" line up to the next blank line or record.
struct ListRecord {
  std::vector<ListLine> lines;
};

/// The lines of `text`; the end of its last line does not begin another one.
std::vector<ListLine> LinesOf(std::string_view text);

/// The records of `text`. A blank line ends a record, and the next "T:" line begins one. Where no blank line
/// stands between records, as in the lists of Linux 2.4, a "T:" line behind an "E:", "I:" or "C:" line begins
/// one.
std::vector<ListRecord> RecordsOf(std::string_view text);

/// The text after `key`, such as "Bus=", up to the next blank, without the blanks before it; empty when `key`
/// is missing. The case of `key` does not matter.
std::string_view FieldOf(std::string_view line, std::string_view key);

}  // namespace kernel
