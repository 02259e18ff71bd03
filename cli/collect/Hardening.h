// What the command may not leave to its caller where it has more rights than the caller.
#pragma once

namespace cli {

/// Whether the kernel gave this process rights that its caller does not have: the program file is
/// set-user-ID, set-group-ID or has capabilities.
bool HasRightsOfItsFile();

/// As root, and with the rights of the program file, sets PATH to the system's own folders, so that the
/// caller cannot choose the commands that are run. To be called before any of them is. Throws
/// std::system_error.
void ProtectSearchPath();

}  // namespace cli
