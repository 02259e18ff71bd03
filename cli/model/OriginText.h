// Where an inventory comes from and what was done to it, as text for people.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Origin.h"

namespace cli {

/// What the devices were read from: "sysfs", "the device list that the plug-in found" or "a device list".
std::string SourceOf(const Origin& origin);
/// "2026-11-21 12:00:00 UTC"; "not known" for an inventory that does not say.
std::string TimeOf(const Origin& origin);
/// "as the devices send them", "masked with the key 36b7d9e49e324323" or "masked with a random key".
std::string MaskingOf(const Origin& origin);

/// The options that made the selection, "-d 1d6b:" and so on; none where nothing was left out by its values.
std::vector<std::string> OptionsOf(const SelectedBy& selection);

/// "lines 17, 19 of the device list, of "Bus 01  Device   9" (two-t-lines)".
std::string Describe(const Finding& finding);
/// "the kernel does not write lines 17, 19 of the device list, ...; a device may have forged this".
std::string DescribeForgery(const Finding& finding);
/// "wrong parents of 3 devices".
std::string Describe(const Repair& repair);

}  // namespace cli
