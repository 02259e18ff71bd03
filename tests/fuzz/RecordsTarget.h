// The first target: any text, cut into records.
#pragma once

#include <string>

namespace usbinfo_test {

/// Throws BrokenInvariant unless the records of `text` and its unmatched lines are what the second reading
/// makes of it, each record has parsers of its own, and its copies share them.
void CheckRecords(const std::string& text);

}  // namespace usbinfo_test
