// What an inventory says of where it comes from.
#pragma once

#include <string>

#include "cli/collect/ListPreparation.h"
#include "cli/model/Origin.h"

namespace cli {

/// The origin of what was made from `list` after that treatment. `source` is "sysfs", "plugin"
/// or "list"; the first two note this machine and the time, too.
Origin NoteOrigin(const std::string& source, const PreparedList& list, const ListTreatment& treatment);

/// One warning on standard error for each kind of repair, with the number of records.
void WarnOfRepairs(const kernel::ListRepairs& repairs);

}  // namespace cli
