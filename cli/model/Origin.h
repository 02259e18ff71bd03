// Where an inventory comes from and what was done to it, as a saved inventory says it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace cli {

/// Something in the device list that the kernel does not write, so that a device may have forged it.
struct Finding {
  /// Such as "two-t-lines"; see kernel::ListFinding.
  std::string code;
  /// Numbers of lines in the list, from 1; none where the finding is not about lines.
  std::vector<std::uint64_t> lines;
  /// The DeviceID of the device.
  std::string device;

  bool operator==(const Finding&) const = default;
};

/// Something false in the device list that was repaired.
struct Repair {
  /// "parent" or "stale-interface".
  std::string code;
  /// The number of records.
  std::uint64_t count = 0;

  bool operator==(const Repair&) const = default;
};

/// Serial numbers are masked.
struct Masking {
  /// The fingerprint of the key; nothing for a random key, whose masks compare with no others.
  std::optional<std::string> key;

  bool operator==(const Masking&) const = default;
};

/// What a selection was made by, as its options take it.
struct SelectedBy {
  std::vector<std::string> classes;
  std::vector<std::string> ids;
  std::vector<std::string> places;

  bool operator==(const SelectedBy&) const = default;
};

struct Origin {
  /// "sysfs", "plugin" or "list".
  std::string source;
  /// In UTC, such as "2026-11-21T12:00:00Z"; nothing for a list from a file, so that it gives the same bytes
  /// again.
  std::optional<std::string> collected;
  /// Name and version of the program, such as "usbinfo 1.0.0".
  std::string program;
  /// A hash of the machine's id that is used for nothing else; nothing where it is not known.
  std::optional<std::string> machine;
  std::vector<Finding> findings;
  std::vector<Repair> repairs;
  std::optional<Masking> masked;
  std::optional<SelectedBy> selection;

  bool operator==(const Origin&) const = default;
};

}  // namespace cli
