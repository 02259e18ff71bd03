#include "store/LoadCommand.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include "cli/option/UsageError.h"
#include "cli/option/Values.h"
#include "cli/text/ExitStatus.h"
#include "cli/text/Output.h"
#include "cli/text/UserError.h"
#include "store/DatabaseLocation.h"
#include "store/DocumentSplitter.h"
#include "store/Loader.h"
#include "store/Message.h"
#include "store/OpenStore.h"
#include "system/FileDescriptor.h"

namespace store {

namespace {

using Framing = DocumentSplitter::Framing;

std::string NameOf(const std::string& path) {
  return path == "-" ? "standard input" : path;
}

/// Opens the file at `path`; standard input is not closed with it.
sys::FileDescriptor Open(const std::string& path) {
  try {
    return path == "-" ? sys::FileDescriptor(::dup(STDIN_FILENO)) : sys::OpenFile(path, O_RDONLY);
  } catch (const std::system_error& error) {
    throw cli::UserError(fmt::format("cannot read {}: {}; check the name", path, error.code().message()));
  }
}

/// Calls `take` with the parts of the file's content.
template <typename Take>
void ReadParts(const std::string& path, Take take) {
  constexpr std::size_t kPart = std::size_t{64} << 10;
  const sys::FileDescriptor file = Open(path);
  std::array<char, kPart> part{};
  while (true) {
    const ssize_t got = ::read(file.Get(), part.data(), part.size());
    if (got == 0) return;
    if (got > 0) {
      take(std::string_view(part.data(), static_cast<std::size_t>(got)));
    } else if (errno != EINTR) {
      throw cli::UserError(fmt::format("cannot read {}: {}; what came before is loaded", NameOf(path),
                                       std::generic_category().message(errno)));
    }
  }
}

LoadSettings SettingsOf(const LoadOptions& options, const Clock& clock) {
  LoadSettings settings{.collected = {}, .permissions = options.permissions};
  if (options.collected) settings.collected = options.collected->At(clock.Now());
  return settings;
}

void ReportRefusal(const std::string& source, const std::string& reason) {
  const bool namesSource = reason.compare(0, source.size(), source) == 0;
  PrintMessage("refused: " + (namesSource ? reason : fmt::format("{}: {}", source, reason)));
}

/// Loads the documents of one file, and reports those that are refused.
class FileLoader {
 public:
  FileLoader(Loader& loader, Database& database, std::string name)
      : fLoader(loader), fDatabase(database), fName(std::move(name)) {}

  void Load(const Document& document) {
    ++fNumber;
    // Most files have one.
    const std::string source = fNumber == 1 ? fName : fmt::format("{}, document {}", fName, fNumber);
    const auto refusal = fLoader.Load(fDatabase, document, source);
    if (refusal) ReportRefusal(source, *refusal);
  }

 private:
  Loader& fLoader;
  Database& fDatabase;
  std::string fName;
  std::size_t fNumber = 0;
};

void LoadFile(Loader& loader, Database& database, const std::string& path) {
  FileLoader file(loader, database, NameOf(path));
  DocumentSplitter splitter(Framing::kBraces, [&](const Document& document) { file.Load(document); });
  ReadParts(path, [&](std::string_view part) { splitter.Take(part); });
  splitter.Finish();
}

int LoadFiles(const LoadOptions& options, Session& session, Loader& loader) {
  const std::vector<std::string> standardInput = {"-"};
  for (const std::string& path : options.files.empty() ? standardInput : options.files) {
    LoadFile(loader, session.Get(), path);
  }
  const LoadCounts& counts = loader.Counts();
  PrintCounts("loaded",
              {{"changed", counts.changed},
               {"unchanged", counts.unchanged},
               {"known", counts.known},
               {"late", counts.late},
               {"refused", counts.refused}},
              options.list);
  if (counts.Total() == 0) PrintMessage("there was no document; usbinfo --format json makes one");
  return counts.Total() == 0 || counts.refused > 0 ? cli::kRefused : cli::kPrinted;
}

/// Anything but "OK" has the line sent again. A database may repeat a whole statement in its message, and
/// omprog does not take long answers: 1,000 bytes work, 5,000 do not.
void Answer(const std::string& answer) {
  constexpr std::size_t kLongestAnswer = 500;
  std::string line = answer.substr(0, kLongestAnswer);
  std::replace(line.begin(), line.end(), '\n', ' ');
  cli::WriteStandardOutput(line + "\n");
}

void LoadAndAnswer(Session& session, Loader& loader, const Document& document) {
  try {
    const auto refusal =
        document.text.empty() ? std::nullopt : loader.Load(session.Get(), document, "standard input");
    if (refusal) ReportRefusal("standard input", *refusal);
    Answer("OK");
  } catch (const cli::UserError& error) {
    session.Close();
    PrintMessage(error.what());
    Answer(error.what());
  }
}

/// A last line that is not complete was cut off, and is sent again.
int LoadConfirming(Session& session, Loader& loader) {
  session.Get();
  Answer("OK");
  DocumentSplitter splitter(Framing::kLines,
                            [&](const Document& document) { LoadAndAnswer(session, loader, document); });
  ReadParts("-", [&](std::string_view part) { splitter.Take(part); });
  return loader.Counts().refused > 0 ? cli::kRefused : cli::kPrinted;
}

}  // namespace

std::vector<cli::Operand> LoadOperands(LoadOptions& options) {
  return {{.name = "FILE",
           .help = "JSON inventories, one a file or one a line; - is standard input, the default",
           .isOptional = true,
           .isRepeatable = true,
           .store = [&options](const std::string& file) { options.files.push_back(file); }}};
}

std::vector<cli::Option> LoadOptionTable(LoadOptions& options) {
  return WithListOptions(
      {DatabaseOption(options.database),
       {.names = {"--collected"},
        .value = "TIME",
        .help = "When inventories were collected that do not say it",
        .manual = R"(When inventories were collected that do not say it, such as those of device lists, in the
forms that
.Fl -at
takes.)",
        .store = StoreParsed(options.collected, Moment::Parse)},
       {.names = {"--new-mask"},
        .help = "Accept serial numbers that are masked with another key than before",
        .manual =
            R"(Accept inventories whose serial numbers are masked with another key than those that the store
has of the same host, or no longer.
Without this option they are refused, since all devices would seem to be others.)",
        .store = cli::StoreTrue(options.permissions.newMask)},
       {.names = {"--new-machine"},
        .help = "Accept another machine with the name of a host",
        .manual =
            R"(Accept inventories of a machine that has the name of a host in the store, and another machine id:
it was replaced, or its system installed anew.
Without this option they are refused.)",
        .store = cli::StoreTrue(options.permissions.newMachine)},
       {.names = {"--confirm"},
        .help = "Answer each line of standard input on standard output",
        .manual =
            R"(Read one inventory a line from standard input, and answer each with a line on standard output:
.Li OK
when it is stored or recorded as refused, and what went wrong when the database failed and the line is to be sent
again.
A first
.Li OK
says that the store is open.
This is what
.Li confirmMessages
of rsyslog's omprog expects.)",
        .store = cli::StoreTrue(options.confirms)}},
      options.list);
}

void CheckLoad(const LoadOptions& options) {
  if (options.confirms && !options.files.empty()) {
    throw cli::UsageError("--confirm reads standard input: leave the files out");
  }
}

int RunLoad(const LoadOptions& options, const Clock& clock) {
  std::vector<cli::NamedFile> inputs;
  for (const std::string& file : options.files) inputs.push_back({"FILE", file});
  cli::RequireDistinctFiles({"--output", options.list.output}, inputs);
  Session session(FindDatabase(options.database, options.list.output));
  Loader loader(clock, SettingsOf(options, clock));
  return options.confirms ? LoadConfirming(session, loader) : LoadFiles(options, session, loader);
}

}  // namespace store
