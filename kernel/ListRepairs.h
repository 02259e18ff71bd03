// Repairs what is known to be false in device lists, line by line; every other line stays byte for byte.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kernel {

/// How many records had to be repaired.
struct ListRepairs {
  /// The parent that was printed is no record one level up on the same bus, as in what usb-devices prints.
  std::size_t parents = 0;
  /// Interfaces were printed behind a configuration that has none, as for a device that was unauthorised in
  /// use.
  std::size_t staleInterfaces = 0;

  bool operator==(const ListRepairs&) const = default;
};

/// `text` with each such parent replaced by the last record before it one level up on the same bus, where
/// there is one. Adds to `repairs`.
std::string RepairParents(std::string_view text, ListRepairs& repairs);

/// `text` without such interfaces. Adds to `repairs`.
std::string WithoutStaleInterfaces(std::string_view text, ListRepairs& repairs);

/// `text` without the lines behind the first "E:" line of each record. Where a record ends at that line, as
/// it does for the plug-in, the others would count for the next one.
std::string WithoutLinesBehindEndpoints(std::string_view text);

}  // namespace kernel
