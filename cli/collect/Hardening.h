// Protects the process from a caller with fewer rights, and its memory from other processes.
#pragma once

namespace cli {

/// Whether the kernel gave this process rights that its caller does not have: the program file is
/// set-user-ID, set-group-ID or has capabilities.
bool HasRightsOfItsFile();

/// As root, and with the rights of the program file, sets PATH to the system's own folders, so that the
/// caller cannot choose the commands that are run. To be called before any command is run. Throws
/// std::system_error.
void ProtectSearchPath();

/// Has the kernel write no core file of this process, and closes the process to the debuggers of other
/// processes, for as long as it lives. Throws std::system_error.
void ForbidCoreDumps();

}  // namespace cli
