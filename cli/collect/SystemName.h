// Which system a device list is of. The list does not say; where it comes from does.
#pragma once

#include <optional>
#include <string>

namespace cli {

/// The name of the system whose list is at `path`, "-" being standard input: empty, for this machine, where
/// that is one of the kernel's own two files; else the file's name without ".txt", ".list" or ".log". Nothing
/// for what has no name of its own: standard input, devices and what other processes have open.
std::optional<std::string> SystemNameOfList(const std::string& path);

}  // namespace cli
