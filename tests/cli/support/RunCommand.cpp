#include "tests/cli/support/RunCommand.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

#include "system/FileDescriptor.h"
#include "tests/support/TemporaryFolder.h"

using sys::FileDescriptor;

namespace usbinfo_test {

namespace {

struct Pipe {
  FileDescriptor reader;
  FileDescriptor writer;
};

Pipe NewPipe() {
  int ends[2];
  EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

/// Holds what the command writes: unlike a pipe, a file never makes it wait for a reader.
FileDescriptor NewMemoryFile() {
  return FileDescriptor(::memfd_create("captured", MFD_CLOEXEC));
}

std::string Content(const FileDescriptor& file) {
  EXPECT_EQ(::lseek(file.Get(), 0, SEEK_SET), 0);
  return sys::ReadAll(file.Get());
}

/// A pipe's reading end with `text` in it. The kernel's buffer holds all of it, so no writer is needed.
FileDescriptor PipeHolding(const std::string& text) {
  constexpr int kMostForAnyUser = 1 << 20;
  Pipe pipe = NewPipe();
  EXPECT_GT(::fcntl(pipe.writer.Get(), F_SETPIPE_SZ, kMostForAnyUser), static_cast<int>(text.size()));
  sys::WriteAll(pipe.writer.Get(), text);
  return std::move(pipe.reader);
}

/// Both sides of a terminal that passes on output unchanged.
struct Terminal {
  FileDescriptor master;
  FileDescriptor slave;
};

Terminal NewTerminal(unsigned short columns) {
  Terminal terminal;
  terminal.master = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
  const char* const name =
      ::unlockpt(terminal.master.Get()) == 0 ? ::ptsname(terminal.master.Get()) : nullptr;
  if (name != nullptr) terminal.slave = FileDescriptor(::open(name, O_RDWR | O_NOCTTY | O_CLOEXEC));
  if (!terminal.slave.IsOpen())
    throw std::runtime_error("no pseudo-terminal to be had: is /dev/pts mounted?");
  termios settings;
  EXPECT_EQ(::tcgetattr(terminal.slave.Get(), &settings), 0);
  ::cfmakeraw(&settings);
  EXPECT_EQ(::tcsetattr(terminal.slave.Get(), TCSANOW, &settings), 0);
  winsize size{};
  size.ws_row = 24;
  size.ws_col = columns;
  EXPECT_EQ(::ioctl(terminal.master.Get(), TIOCSWINSZ, &size), 0);
  return terminal;
}

/// Everything written to the terminal until no process has it open, which reads as an error; `onText` is
/// called with the text so far.
std::string ReadTerminal(const FileDescriptor& master,
                         const std::function<void(const std::string& text)>& onText) {
  std::string text;
  char chunk[4096];
  for (;;) {
    const ssize_t got = ::read(master.Get(), chunk, sizeof chunk);
    if (got <= 0) return text;
    text.append(chunk, static_cast<std::size_t>(got));
    if (onText) onText(text);
  }
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

/// What a started process finds at its three standard descriptors; -1 is closed.
struct StandardFiles {
  int input;
  int output;
  int errors;
};

/// Descriptors in the form of posix_spawn. Signals have their default handling, as in a shell, whatever the
/// test runner ignores.
class SpawnSettings {
 public:
  explicit SpawnSettings(const StandardFiles& files) {
    ::posix_spawn_file_actions_init(&fActions);
    Place(files.input, STDIN_FILENO);
    Place(files.output, STDOUT_FILENO);
    Place(files.errors, STDERR_FILENO);
    sigset_t defaults;
    ::sigemptyset(&defaults);
    ::sigaddset(&defaults, SIGPIPE);
    ::sigaddset(&defaults, SIGXFSZ);
    ::posix_spawnattr_init(&fAttributes);
    ::posix_spawnattr_setsigdefault(&fAttributes, &defaults);
    ::posix_spawnattr_setflags(&fAttributes, POSIX_SPAWN_SETSIGDEF);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;
  ~SpawnSettings() {
    ::posix_spawn_file_actions_destroy(&fActions);
    ::posix_spawnattr_destroy(&fAttributes);
  }

  const posix_spawn_file_actions_t* Actions() const { return &fActions; }
  const posix_spawnattr_t* Attributes() const { return &fAttributes; }

 private:
  void Place(int from, int to) {
    if (from < 0) {
      ::posix_spawn_file_actions_addclose(&fActions, to);
    } else {
      ::posix_spawn_file_actions_adddup2(&fActions, from, to);
    }
  }

  posix_spawn_file_actions_t fActions;
  posix_spawnattr_t fAttributes;
};

pid_t Spawn(std::vector<std::string> words, std::vector<std::string> environment,
            const StandardFiles& files) {
  const SpawnSettings settings(files);
  pid_t pid = -1;
  const int error = ::posix_spawn(&pid, words.front().c_str(), settings.Actions(), settings.Attributes(),
                                  Pointers(words).data(), Pointers(environment).data());
  EXPECT_EQ(error, 0) << words.front();
  return pid;
}

/// The path of a copy of the command and of what it loads, since the build folder may be closed to others.
std::string CommandForAll() {
  static const TemporaryFolder folder;
  const std::string copy = folder.File("usbinfo");
  if (!std::filesystem::exists(copy)) {
    std::filesystem::copy_file(MODULE_PATH, folder.File("usbinfo-plugin.so"));
    std::filesystem::copy_file(COMMAND_PATH, copy);
  }
  return copy;
}

int Wait(pid_t pid) {
  int status = 0;
  while (::waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

Command& Command::Program(const std::string& path) {
  fProgram = path;
  return *this;
}

Command& Command::AsOrdinaryUser() {
  fIsOrdinaryUser = true;
  return *this;
}

Command& Command::Through(std::vector<std::string> runner) {
  fRunner = std::move(runner);
  return *this;
}

Command& Command::Set(const std::string& name, const std::string& value) {
  fEnvironment[name] = value;
  return *this;
}

Command& Command::Input(const std::string& text) {
  fHasInput = true;
  fInput = text;
  return *this;
}

Command& Command::InputFrom(const std::string& path) {
  fInputPath = path;
  return *this;
}

Command& Command::OutputTo(const std::string& path) {
  fTarget = Target::kFile;
  fOutputPath = path;
  return *this;
}

Command& Command::OutputToClosedPipe() {
  fTarget = Target::kClosedPipe;
  return *this;
}

Command& Command::CloseOutput() {
  fTarget = Target::kClosed;
  return *this;
}

Command& Command::CloseErrors() {
  fHasErrors = false;
  return *this;
}

Command& Command::OutputToTerminal(unsigned short columns) {
  fTarget = Target::kTerminal;
  fColumns = columns;
  return *this;
}

Command& Command::ErrorsToTerminal(std::function<void(const std::string& text)> onText) {
  fOnErrors = std::move(onText);
  return *this;
}

std::vector<std::string> Command::Words() const {
  std::vector<std::string> words = fRunner;
  std::string program = fProgram;
  if (fIsOrdinaryUser && ::geteuid() == 0) {
    for (const char* word : {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"}) {
      words.emplace_back(word);
    }
    if (program == COMMAND_PATH) program = CommandForAll();
  }
  words.push_back(program);
  words.insert(words.end(), fArguments.begin(), fArguments.end());
  return words;
}

std::vector<std::string> Command::EnvironmentList() const {
  std::vector<std::string> list;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string variable = *entry;
    if (fEnvironment.count(variable.substr(0, variable.find('='))) == 0) list.push_back(variable);
  }
  for (const auto& [name, value] : fEnvironment) list.push_back(name + "=" + value);
  return list;
}

CommandResult Command::Run() const {
  const FileDescriptor input =
      fHasInput ? PipeHolding(fInput) : FileDescriptor(::open(fInputPath.c_str(), O_RDONLY | O_CLOEXEC));
  const FileDescriptor captured = NewMemoryFile();
  const FileDescriptor capturedErrors = NewMemoryFile();
  const bool hasTerminal = fTarget == Target::kTerminal || fOnErrors;
  Terminal terminal;
  FileDescriptor output;
  if (fTarget == Target::kClosedPipe) output = NewPipe().writer;
  if (fTarget == Target::kFile) output = FileDescriptor(::open(fOutputPath.c_str(), O_WRONLY | O_CLOEXEC));
  if (hasTerminal) terminal = NewTerminal(fColumns);
  StandardFiles files = {input.Get(), output.Get(), fHasErrors ? capturedErrors.Get() : -1};
  if (fTarget == Target::kCapture) files.output = captured.Get();
  if (fTarget == Target::kTerminal) files.output = terminal.slave.Get();
  if (fOnErrors) files.errors = terminal.slave.Get();
  const pid_t pid = Spawn(Words(), EnvironmentList(), files);
  output.Close();
  terminal.slave.Close();
  std::string text;
  if (hasTerminal) text = ReadTerminal(terminal.master, fOnErrors);
  const int status = Wait(pid);
  return {status, fTarget == Target::kTerminal ? text : Content(captured),
          fOnErrors ? text : Content(capturedErrors)};
}

CommandResult RunUsbinfo(std::vector<std::string> arguments) {
  return Command(std::move(arguments)).Run();
}

}  // namespace usbinfo_test
