// Where the core logger's lines go: to standard error or a file, from a severity on, as text or JSON Lines.
// The command owns it for the length of a run.
#pragma once

#include <string>
#include <vector>

#include "system/FileDescriptor.h"

namespace cli {

/// The severity of a line; the numbers are those of the host's logger.
enum class LogSeverity { kError = 0, kWarning = 1, kStatus = 2, kDebug = 3, kVerbose = 4 };

/// The severities by name, each at its number.
const std::vector<std::string>& SeverityNames();

enum class LogFormat { kText, kJson };

class LogWriter {
 public:
  /// Writes lines of `level` and of graver severities to the file at `path`, which is created or emptied
  /// unless it is open already; to standard error when `path` is empty. Throws UserError when the file cannot
  /// be written, or when another user may have put it or a link to it there.
  LogWriter(const std::string& path, LogSeverity level, LogFormat format);
  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;
  /// Writes the buffered lines, so that the log of a failed run is complete.
  ~LogWriter() { Flush(); }

  /// Never throws for a failed write: Finish reports it.
  void Write(LogSeverity severity, const std::string& text);
  /// Writes the buffered lines; throws UserError if any line of a file was lost.
  void Finish();

 private:
  void Flush() noexcept;

  std::string fPath;
  LogSeverity fLevel;
  LogFormat fFormat;
  sys::FileDescriptor fFile;
  std::string fHeldBack;
  int fError = 0;
};

}  // namespace cli
