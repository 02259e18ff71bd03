// What surrounds every command: the settings of the process, and how errors end it.
#pragma once

#include <functional>
#include <string>

namespace cli {

/// What a message says of the exception that is being handled.
std::string DescribeException();

/// Prepares the process, whose messages are those of `program`, and calls `run`, which gives the exit status.
/// An exception becomes a message on one line of standard error, and the status kFailure; a closed pipe ends
/// the process as SIGPIPE does.
int RunProgram(const std::string& program, const std::function<int()>& run);

}  // namespace cli
