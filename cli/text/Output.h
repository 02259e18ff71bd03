// Output of the data, complete or not at all.
#pragma once

#include <exception>
#include <string>
#include <vector>

namespace cli {

/// The reader of the output has closed its pipe. After cleaning up, the process ends by SIGPIPE, with nothing
/// on standard error.
class ClosedPipe : public std::exception {
 public:
  const char* what() const noexcept override { return "the output's pipe is closed"; }
};

/// A file that the command line names; the path is empty when it does not.
struct NamedFile {
  /// The option or operand that names it: "--log".
  const char* option;
  /// "-" is standard input.
  std::string path;
};

/// Throws UserError when `written` is a file that one of `others` names as well, by any spelling or link,
/// since one would overwrite the other. Devices, terminals and pipes may be shared.
void RequireDistinctFiles(const NamedFile& written, const std::vector<NamedFile>& others);

/// Whether `path`, as --output has it, means standard output: empty or "-".
bool IsStandardOutput(const std::string& path);

/// Writes `text` to standard output. Throws UserError when it cannot be written, ClosedPipe when nobody reads
/// it.
void WriteStandardOutput(const std::string& text);

/// Makes `text` the content of the file at `path`, by way of a temporary file beside it, so that the old
/// content stays until the new one is complete. The new file has the old one's rights and, as far as the user
/// may give them, its owner and group. Anything but a regular file (a device, a pipe), and anything open
/// already (/dev/stdout), is written to directly. Throws UserError, and leaves nothing behind, when the file
/// cannot be written or when another user may have redirected the path; ClosedPipe as WriteStandardOutput
/// does.
void WriteFile(const std::string& path, const std::string& text);

/// Writes to the file at `path`, or to standard output as IsStandardOutput says.
void WriteOutput(const std::string& path, const std::string& text);

}  // namespace cli
