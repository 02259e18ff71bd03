// Where the data go: whole or not at all.
#pragma once

#include <string>
#include <vector>

namespace cli {

/// A file as the command line names it; empty when it does not.
struct NamedFile {
  /// What names it: "--log".
  const char* option;
  /// "-" is standard input.
  std::string path;
};

/// Throws UserError when `written` is a file that one of `others` names as well: either would be lost.
/// Devices, terminals and pipes take both.
void KeepApart(const NamedFile& written, const std::vector<NamedFile>& others);

/// Writes `text` to standard output; throws UserError when it cannot be written.
void WriteStandardOutput(const std::string& text);

/// Makes `text` the content of the file at `path`, by way of a file beside it, so that the old content stays
/// until the new one is complete. What is no regular file (a device, a pipe), or is open already
/// (/dev/stdout), is written to directly. Throws UserError, and leaves nothing behind, when it cannot be
/// written.
void WriteFile(const std::string& path, const std::string& text);

/// To the file at `path`, or to standard output when `path` is empty.
void WriteOutput(const std::string& path, const std::string& text);

}  // namespace cli
