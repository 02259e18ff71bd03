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
  /// Neither mend anything nor leave anything out.
  bool isAsIs = false;
  /// What to mask serial numbers with, if they are to be masked.
  std::optional<SerialMask> mask;
};

/// A device list on its way to the plug-in.
struct PreparedList {
  /// The list as it came, with serial numbers masked and mended where that was asked for.
  std::string whole;
  /// What the plug-in reads of it: not the lines that it would take for those of the next device.
  std::string read;
  kernel::ListRepairs repairs;
  /// In the list as it came, which their line numbers count.
  std::vector<kernel::ListFinding> findings;
};

PreparedList PrepareList(const std::string& text, const ListTreatment& treatment);

}  // namespace cli
