// The name of the system that a device list describes. The list does not hold it, so it is derived from the
// list's path.
#pragma once

#include <optional>
#include <string>

namespace cli {

/// The name of the system whose list is at `path`, "-" being standard input. Empty, for this machine, when
/// that is one of the kernel's own two files; else the file's name without ".txt", ".list" or ".log". Nothing
/// for a path that is not a file's name: standard input, devices and descriptors of other processes.
std::optional<std::string> SystemNameOfList(const std::string& path);

}  // namespace cli
