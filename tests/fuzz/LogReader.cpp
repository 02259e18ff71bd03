#include "tests/fuzz/LogReader.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/text/LogWriter.h"
#include "system/FileDescriptor.h"
#include "tests/fuzz/BrokenInvariant.h"
#include "tests/fuzz/Utf8.h"

namespace usbinfo_test {

namespace {

/// The log's lines as the writer writes them, by way of a file that is on no disk.
std::vector<std::string> Written(const DistinctLines& log, cli::LogFormat format) {
  static const int file = ::memfd_create("log", MFD_CLOEXEC);
  Require(file >= 0, "a file in memory");
  // The writer goes on where a file that is open already stands.
  Require(::ftruncate(file, 0) == 0 && ::lseek(file, 0, SEEK_SET) == 0, "the file is emptied");
  cli::LogWriter writer("/proc/self/fd/" + std::to_string(file), cli::LogSeverity::kVerbose, format);
  for (const LogLine& line : log) {
    writer.Write(static_cast<cli::LogSeverity>(line.severity), line.text);
  }
  writer.Finish();
  Require(::lseek(file, 0, SEEK_SET) == 0, "the log is read from its beginning");
  const std::string whole = sys::ReadAll(file);
  Require(whole.empty() || whole.back() == '\n', "the log ends with a newline");
  std::vector<std::string> lines;
  std::istringstream stream(whole);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  RequireCount(lines.size(), log.size(), "lines of the log");
  return lines;
}

/// What a line of the text log was before its control characters were spelled.
std::string Unspelled(const std::string& spelled) {
  std::string text;
  for (std::size_t at = 0; at < spelled.size(); ++at) {
    if (spelled[at] != '\\') {
      text += spelled[at];
      continue;
    }
    const char kind = spelled.at(++at);
    if (kind == 'x') {
      text += static_cast<char>(std::stoi(spelled.substr(at + 1, 2), nullptr, 16));
      at += 2;
    } else {
      Require(kind == 'n' || kind == '\\', "a backslash of the text log is spelled");
      text += kind == 'n' ? '\n' : '\\';
    }
  }
  return text;
}

void CheckTextLog(const DistinctLines& log) {
  static const std::vector<std::string> kNames = {"error", "warning", "status", "debug", "verbose"};
  auto line = log.begin();
  for (const std::string& written : Written(log, cli::LogFormat::kText)) {
    RequireFitForTerminal(written, true);
    RequireEqual(Unspelled(written), kNames.at(static_cast<std::size_t>(line->severity)) + ": " + line->text,
                 "a line of the text log");
    ++line;
  }
}

void CheckJsonLog(const DistinctLines& log) {
  auto line = log.begin();
  for (const std::string& written : Written(log, cli::LogFormat::kJson)) {
    const bool isPlain =
        std::all_of(written.begin(), written.end(), [](char c) { return c >= ' ' && c < '\x7F'; });
    Require(isPlain, "the JSON log is ASCII without control characters");
    const auto parsed = nlohmann::json::parse(written);
    RequireCount(parsed.size(), 2, "members of a line of the JSON log");
    Require(parsed.at("severity") == line->severity, "the severity in the JSON log");
    RequireEqual(parsed.at("text"), ReplaceBrokenUtf8(line->text), "a line of the JSON log");
    ++line;
  }
}

}  // namespace

void CheckLog(const DistinctLines& log) {
  CheckTextLog(log);
  CheckJsonLog(log);
}

}  // namespace usbinfo_test
