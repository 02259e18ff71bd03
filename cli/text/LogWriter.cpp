// The core logger's lines; see the header.
#include "cli/text/LogWriter.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <system_error>

#include "cli/text/JsonWriter.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"

using NKESTA20::ILogger;

namespace cli {

namespace {

std::string FormatText(ILogger::EQSVLogSeverity severity, const std::string& text) {
  return fmt::format("{}: {}\n", SeverityNames().at(severity), EscapeForTerminal(text));
}

std::string FormatJson(ILogger::EQSVLogSeverity severity, const std::string& text) {
  JsonWriter line(JsonWriter::Layout::kOneLine);
  line.BeginObject();
  line.Key("severity");
  line.Number(static_cast<std::uint64_t>(severity));
  line.Key("text");
  line.String(text);
  line.EndObject();
  return line.Take() + "\n";
}

std::string Complaint(const std::string& path, int error) {
  return fmt::format("cannot write the log {}: {}; name a writable file with --log", path,
                     std::strerror(error));
}

}  // namespace

const std::vector<std::string>& SeverityNames() {
  static const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  return names;
}

LogWriter::LogWriter(const std::string& path, ILogger::EQSVLogSeverity level, LogFormat format)
    : fPath(path), fLevel(level), fFormat(format) {
  if (path.empty()) return;
  try {
    fFile = sys::OpenFile(path, O_WRONLY | O_CREAT | O_TRUNC);
  } catch (const std::system_error& error) {
    throw UserError(Complaint(path, error.code().value()));
  }
}

void LogWriter::Write(ILogger::EQSVLogSeverity severity, const std::string& text) {
  constexpr std::size_t kHeldBackAtMost = 65536;
  if (severity > fLevel) return;
  fHeldBack += fFormat == LogFormat::kText ? FormatText(severity, text) : FormatJson(severity, text);
  // On a terminal a line is wanted when it happens.
  if (!fFile.IsOpen() || fHeldBack.size() > kHeldBackAtMost) Flush();
}

void LogWriter::Flush() noexcept {
  try {
    sys::WriteAll(fFile.IsOpen() ? fFile.Get() : STDERR_FILENO, fHeldBack);
  } catch (const std::system_error& error) {
    if (fError == 0) fError = error.code().value();
  }
  fHeldBack.clear();
}

void LogWriter::Finish() {
  Flush();
  if (fError == 0 || !fFile.IsOpen()) return;
  throw UserError(Complaint(fPath, fError));
}

}  // namespace cli
