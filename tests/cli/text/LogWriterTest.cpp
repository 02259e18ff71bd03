// The log's lines: which severities pass, how they are written, and that a file holds every line or an error
// is reported.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "cli/text/LogWriter.h"
#include "system/FileDescriptor.h"
#include "tests/cli/support/CliTest.h"
#include "tests/support/Allocations.h"

using cli::LogFormat;
using cli::LogSeverity;
using cli::LogWriter;
using testing::ElementsAre;
using namespace std::string_literals;

namespace usbinfo_test {
namespace {

LogSeverity Severity(int number) {
  return static_cast<LogSeverity>(number);
}

/// What a log of `level` holds after one line of every severity.
std::vector<std::string> LinesFromLevel(int level) {
  const TemporaryFolder folder;
  LogWriter log(folder.File("log"), Severity(level), LogFormat::kText);
  for (int severity = 0; severity <= 4; ++severity) log.Write(Severity(severity), std::to_string(severity));
  log.Finish();
  return Lines(ReadFile(folder.File("log")));
}

/// The line of a log in `format` for `text` at severity 2.
std::string LineOf(LogFormat format, const std::string& text) {
  const TemporaryFolder folder;
  LogWriter log(folder.File("log"), Severity(4), format);
  log.Write(Severity(2), text);
  log.Finish();
  return ReadFile(folder.File("log"));
}

TEST(LogWriter, WritesTheLevelAndGraverSeverities) {
  EXPECT_THAT(LinesFromLevel(0), ElementsAre("error: 0"));
  EXPECT_THAT(LinesFromLevel(1), ElementsAre("error: 0", "warning: 1"));
  EXPECT_THAT(LinesFromLevel(2), ElementsAre("error: 0", "warning: 1", "status: 2"));
  EXPECT_THAT(LinesFromLevel(3), ElementsAre("error: 0", "warning: 1", "status: 2", "debug: 3"));
  EXPECT_THAT(LinesFromLevel(4),
              ElementsAre("error: 0", "warning: 1", "status: 2", "debug: 3", "verbose: 4"));
}

TEST(LogWriter, KeepsATextOnOneLineAndItsTabs) {
  EXPECT_EQ(LineOf(LogFormat::kText, "a\nerror: b\t\x1B[0m\\"), "status: a\\nerror: b\t\\x1b[0m\\\\\n");
}

TEST(LogWriter, WritesOneJsonObjectPerLineWithTheSeverityFirst) {
  EXPECT_EQ(LineOf(LogFormat::kJson, "plain \"text\"\t"),
            "{\"severity\":2,\"text\":\"plain \\\"text\\\"\\t\"}\n");
}

TEST(LogWriter, WritesJsonInAsciiWhateverTheText) {
  const std::string line = LineOf(LogFormat::kJson, "\xC3\xA9\xFF\n\0\x7F\x1B"s);
  EXPECT_EQ(Lines(line).size(), 1U);
  for (const char byte : line.substr(0, line.size() - 1)) {
    EXPECT_TRUE(byte >= 0x20 && byte <= 0x7F) << line;
  }
  EXPECT_EQ(nlohmann::json::parse(line)["text"], "\xC3\xA9\xEF\xBF\xBD\n\0\x7F\x1B"s);
}

TEST(LogWriter, MakesTheFileAnew) {
  const TemporaryFolder folder;
  const std::string path = folder.File("log", "a log of an earlier run\n");
  LogWriter log(path, Severity(4), LogFormat::kText);
  log.Write(Severity(0), "new");
  log.Finish();
  EXPECT_EQ(ReadFile(path), "error: new\n");
}

TEST(LogWriter, LeavesAnEmptyFileWhenThereIsNothingToLog) {
  const TemporaryFolder folder;
  LogWriter log(folder.File("log"), Severity(1), LogFormat::kText);
  log.Finish();
  EXPECT_EQ(ReadFile(folder.File("log")), "");
}

TEST(LogWriter, KeepsTheOrderOfMoreLinesThanItHoldsBack) {
  const TemporaryFolder folder;
  LogWriter log(folder.File("log"), Severity(4), LogFormat::kText);
  constexpr int kLines = 20000;
  for (int line = 0; line < kLines; ++line) log.Write(Severity(4), std::to_string(line));
  log.Finish();
  const std::vector<std::string> lines = Lines(ReadFile(folder.File("log")));
  ASSERT_EQ(lines.size(), static_cast<std::size_t>(kLines));
  for (int line = 0; line < kLines; ++line) {
    ASSERT_EQ(lines[static_cast<std::size_t>(line)], "verbose: " + std::to_string(line));
  }
}

TEST(LogWriter, RefusesAFileThatCannotBeOpened) {
  const TemporaryFolder folder;
  const std::string path = folder.File("missing/log");
  EXPECT_THAT(UserErrorOf([&path] { const LogWriter log(path, Severity(4), LogFormat::kText); }),
              testing::StartsWith("cannot write the log " + path + ": No such file or directory"));
}

TEST(LogWriter, LetsNobodyRedirectItInAFolderForEveryone) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can give files to other users";
  constexpr uid_t kOtherUser = 1001;
  const TemporaryFolder folder;
  const std::string victim = folder.File("victim", "old");
  folder.File("shared/log", "old");
  ASSERT_EQ(::chmod(folder.File("shared").c_str(), 01777), 0);
  ASSERT_EQ(::symlink("../victim", folder.File("shared/link").c_str()), 0);
  for (const std::string name : {"link", "log"}) {
    const std::string path = folder.File("shared/" + name);
    ASSERT_EQ(::lchown(path.c_str(), kOtherUser, kOtherUser), 0);
    EXPECT_EQ(
        UserErrorOf([&path] { const LogWriter log(path, Severity(4), LogFormat::kText); }),
        "cannot write the log " + path + ": the " + (name == "link" ? "symbolic link" : "file") + " \"" +
            name +
            "\" belongs to another user and is in a folder where everyone may create files; name a writable "
            "file with --log");
    EXPECT_EQ(ReadFile(path), "old");
  }
}

TEST(LogWriter, AddsToAFileThatIsOpenAlready) {
  const TemporaryFolder folder;
  const sys::FileDescriptor file = sys::OpenFile(folder.File("log"), O_WRONLY | O_CREAT);
  sys::WriteAll(file.Get(), "first\n");
  LogWriter log("/proc/self/fd/" + std::to_string(file.Get()), Severity(4), LogFormat::kText);
  log.Write(Severity(0), "second");
  log.Finish();
  EXPECT_EQ(ReadFile(folder.File("log")), "first\nerror: second\n");
}

TEST(LogWriter, NeedsNoMemoryToLoseALineQuietly) {
  std::optional<LogWriter> log(std::in_place, "/dev/full", Severity(4), LogFormat::kText);
  log->Write(Severity(0), "lost");
  const Allocations::Failure outOfMemory(0, [] {});
  log.reset();
}

TEST(LogWriter, ReportsLostLinesAtTheEndOnly) {
  const TemporaryFolder folder;
  const std::string path = folder.File("log");
  const FileSizeLimit limit(1000);
  LogWriter log(path, Severity(4), LogFormat::kText);
  EXPECT_NO_THROW(log.Write(Severity(0), std::string(70000, 'x')));
  EXPECT_NO_THROW(log.Write(Severity(0), "short"));
  EXPECT_THAT(UserErrorOf([&log] { log.Finish(); }),
              testing::StartsWith("cannot write the log " + path + ": File too large; "));
}

/// Redirects standard error to the file at `path` until the object is destroyed.
class StandardErrorTo {
 public:
  explicit StandardErrorTo(const std::string& path) : fBefore(::dup(STDERR_FILENO)) {
    const sys::FileDescriptor file = sys::OpenFile(path, O_WRONLY | O_CREAT);
    ::dup2(file.Get(), STDERR_FILENO);
  }
  StandardErrorTo(const StandardErrorTo&) = delete;
  StandardErrorTo& operator=(const StandardErrorTo&) = delete;
  ~StandardErrorTo() { ::dup2(fBefore.Get(), STDERR_FILENO); }

 private:
  sys::FileDescriptor fBefore;
};

TEST(LogWriter, WritesALineToStandardErrorAtOnce) {
  const TemporaryFolder folder;
  const StandardErrorTo file(folder.File("errors"));
  LogWriter log("", Severity(4), LogFormat::kText);
  log.Write(Severity(0), "first");
  EXPECT_EQ(ReadFile(folder.File("errors")), "error: first\n");
}

TEST(LogWriter, ReportsNoLinesThatStandardErrorLost) {
  const StandardErrorTo full("/dev/full");
  LogWriter log("", Severity(4), LogFormat::kText);
  log.Write(Severity(0), "lost");
  EXPECT_EQ(UserErrorOf([&log] { log.Finish(); }), "");
}

TEST(LogWriter, IsContentWithALogThatWasWritten) {
  const TemporaryFolder folder;
  LogWriter log(folder.File("log"), Severity(4), LogFormat::kText);
  log.Write(Severity(0), "text");
  EXPECT_EQ(UserErrorOf([&log] { log.Finish(); }), "");
}

}  // namespace
}  // namespace usbinfo_test
