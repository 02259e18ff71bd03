#include "cli/text/LogWriter.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdint>
#include <cstring>
#include <system_error>

#include "cli/text/JsonWriter.h"
#include "cli/text/Text.h"
#include "cli/text/UserError.h"
#include "system/OutputLocation.h"

namespace cli {

namespace {

std::string FormatText(LogSeverity severity, const std::string& text) {
  return fmt::format("{}: {}\n", SeverityNames().at(static_cast<std::size_t>(severity)),
                     EscapeForTerminal(text));
}

std::string FormatJson(LogSeverity severity, const std::string& text) {
  JsonWriter line(JsonWriter::Layout::kOneLine);
  line.BeginObject();
  line.Key("severity");
  line.Number(static_cast<std::uint64_t>(severity));
  line.Key("text");
  line.String(text);
  line.EndObject();
  return line.Take() + "\n";
}

UserError LogError(const std::string& path, const std::string& reason) {
  return UserError(fmt::format("cannot write the log {}: {}; name a writable file with --log", path, reason));
}

}  // namespace

const std::vector<std::string>& SeverityNames() {
  static const std::vector<std::string> names = {"error", "warning", "status", "debug", "verbose"};
  return names;
}

LogWriter::LogWriter(const std::string& path, LogSeverity level, LogFormat format)
    : fPath(path), fLevel(level), fFormat(format) {
  if (path.empty()) return;
  try {
    fFile = sys::OutputLocation(path).Create();
  } catch (const sys::UntrustedPath& error) {
    throw LogError(path, error.what());
  } catch (const std::system_error& error) {
    throw LogError(path, error.code().message());
  }
}

void LogWriter::Write(LogSeverity severity, const std::string& text) {
  constexpr std::size_t kHeldBackAtMost = 65536;
  if (severity > fLevel) return;
  fHeldBack += fFormat == LogFormat::kText ? FormatText(severity, text) : FormatJson(severity, text);
  // On a terminal, lines are shown at once.
  if (!fFile.IsOpen() || fHeldBack.size() > kHeldBackAtMost) Flush();
}

void LogWriter::Flush() noexcept {
  const int error = sys::TryWriteAll(fFile.IsOpen() ? fFile.Get() : STDERR_FILENO, fHeldBack);
  if (fError == 0) fError = error;
  fHeldBack.clear();
}

void LogWriter::Finish() {
  Flush();
  if (fError == 0 || !fFile.IsOpen()) return;
  throw LogError(fPath, std::strerror(fError));
}

}  // namespace cli
