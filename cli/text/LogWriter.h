// Where the core logger's lines go: to standard error or a file, from a severity on, as text or JSON Lines.
// The command owns it for the length of a run.
#pragma once

#include <string>
#include <vector>

#include "host/ILogger.h"
#include "system/FileDescriptor.h"

namespace cli {

/// The host's severities by name, each at its number.
const std::vector<std::string>& SeverityNames();

enum class LogFormat { kText, kJson };

class LogWriter {
 public:
  /// Writes lines of `level` and of graver severities to the file at `path`, which is made anew; to standard
  /// error when `path` is empty. Throws UserError when the file cannot be written.
  LogWriter(const std::string& path, NKESTA20::ILogger::EQSVLogSeverity level, LogFormat format);
  LogWriter(const LogWriter&) = delete;
  LogWriter& operator=(const LogWriter&) = delete;
  /// Writes what is still held back, so that the log of a run that fails is whole.
  ~LogWriter() { Flush(); }

  /// Never throws for a failed write: Finish tells.
  void Write(NKESTA20::ILogger::EQSVLogSeverity severity, const std::string& text);
  /// Writes what is still held back; throws UserError if any line of a file was lost.
  void Finish();

 private:
  void Flush() noexcept;

  std::string fPath;
  NKESTA20::ILogger::EQSVLogSeverity fLevel;
  LogFormat fFormat;
  sys::FileDescriptor fFile;
  std::string fHeldBack;
  int fError = 0;
};

}  // namespace cli
