// What surrounds every command: the settings of the process, and how errors end it.
#pragma once

#include <functional>
#include <string_view>

namespace cli {

/// Prepares the process and calls `run`, which gives the exit status. An exception becomes a message of
/// `program` on one line of standard error, and the status kFailure; a closed pipe ends the process as
/// SIGPIPE does.
int RunProgram(std::string_view program, const std::function<int()>& run);

}  // namespace cli
