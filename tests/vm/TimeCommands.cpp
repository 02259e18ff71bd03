// Measures how long commands take, for scripts/bench: time-commands < COMMANDS
//
// Reads a command a line, its words separated by blanks. Runs one after the other, throws away what they
// print, and prints for each a line with the microseconds from its start to its end and its exit status, 127
// where it cannot be started.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kNotStarted = 127;

std::vector<std::string> WordsOf(const std::string& line) {
  std::istringstream words(line);
  std::vector<std::string> all;
  for (std::string word; words >> word;) all.push_back(word);
  return all;
}

/// Neither input nor output.
class NoStreams {
 public:
  NoStreams() {
    ::posix_spawn_file_actions_init(&fActions);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
      ::posix_spawn_file_actions_addopen(&fActions, stream, "/dev/null", O_RDWR, 0);
    }
  }
  NoStreams(const NoStreams&) = delete;
  NoStreams& operator=(const NoStreams&) = delete;
  ~NoStreams() { ::posix_spawn_file_actions_destroy(&fActions); }

  const posix_spawn_file_actions_t* Actions() const { return &fActions; }

 private:
  posix_spawn_file_actions_t fActions{};
};

int Run(std::vector<std::string> words) {
  static const NoStreams streams;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  pid_t pid = -1;
  int status = 0;
  if (::posix_spawnp(&pid, arguments[0], streams.Actions(), nullptr, arguments.data(), environ) != 0 ||
      ::waitpid(pid, &status, 0) != pid || !WIFEXITED(status)) {
    return kNotStarted;
  }
  return WEXITSTATUS(status);
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    const std::vector<std::string> words = WordsOf(line);
    const Clock::time_point began = Clock::now();
    const int status = words.empty() ? kNotStarted : Run(words);
    const auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - began);
    std::cout << took.count() << ' ' << status << '\n';
  }
}
