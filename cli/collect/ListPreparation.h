// What is done to the text of a device list before the plug-in reads it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/collect/SerialMask.h"
#include "kernel/ListFindings.h"
#include "kernel/ListRepairs.h"

namespace cli {

struct ListTreatment {
  /// Neither repair anything nor leave anything out.
  bool isAsIs = false;
  /// What to mask serial numbers with, if they are to be masked.
  std::optional<SerialMask> mask;
};

/// A device list on its way to the plug-in.
struct PreparedList {
  /// The list as it came, with serial numbers masked and parents repaired where that was asked for.
  std::string whole;
  /// The same without the interfaces of a device that has no configuration.
  std::string repaired;
  /// What the plug-in reads of that: not the lines that it would take for those of the next device.
  std::string read;
  kernel::ListRepairs repairs;
  /// In the list as it came, which their line numbers count.
  std::vector<kernel::ListFinding> findings;
};

PreparedList PrepareList(const std::string& text, const ListTreatment& treatment);

}  // namespace cli
