// Measures how long after a device is plugged in two programs that follow the machine report it, for
// scripts/bench: time-plugs ROUNDS GADGET CONTROLLER MONITOR WATCH
//
// GADGET is the folder of a gadget in configfs that is pulled out, CONTROLLER the one to plug it into. The
// last two are commands: of udevadm monitor, which prints a line for each event, and of the watch, which
// prints one when things have settled. Prints for each round a line with the microseconds from the plug to
// the monitor's first line with " add ", to its last line, and to the watch's line.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>

#include "system/FileDescriptor.h"

namespace {

using Clock = std::chrono::steady_clock;

/// A command that runs until it finds nobody reading what it prints.
class Follower {
 public:
  explicit Follower(const std::string& command) : fOutput(::popen(("exec " + command).c_str(), "r")) {
    if (fOutput == nullptr) throw std::runtime_error("cannot be started: " + command);
  }

  int Get() const { return ::fileno(fOutput); }

  /// What can be read now.
  std::string Read() const {
    std::array<char, 65536> part{};
    const ssize_t count = ::read(Get(), part.data(), part.size());
    if (count <= 0) throw std::runtime_error("a command has ended");
    return std::string(part.data(), static_cast<std::size_t>(count));
  }

 private:
  std::FILE* fOutput;
};

class Bench {
 public:
  Bench(const std::string& gadget, std::string controller, const std::string& monitor,
        const std::string& watch)
      : fFile(gadget + "/UDC"), fController(std::move(controller)), fMonitor(monitor), fWatch(watch) {
    AwaitQuiet(kStart);
  }

  void Run() {
    const Clock::time_point began = Clock::now();
    Write(fController);
    AwaitReports();
    for (const Clock::time_point time : {fFirst, fLast, fReported}) {
      std::cout << std::chrono::duration_cast<std::chrono::microseconds>(time - began).count() << ' ';
    }
    std::cout << '\n';
    AwaitQuiet(kPause);
    Write("\n");
    AwaitQuiet(kPause);
  }

 private:
  /// In milliseconds: until the programs follow the machine, and until they have reported everything.
  static constexpr int kStart = 4000;
  static constexpr int kPause = 1000;

  void Write(const std::string& text) const { sys::WriteAll(sys::OpenFile(fFile, O_WRONLY).Get(), text); }

  void AwaitReports() {
    fFirst = fLast = fReported = Clock::time_point();
    while (fReported == Clock::time_point()) {
      if (!TakeNext(kStart)) throw std::runtime_error("nothing is reported");
    }
  }

  void AwaitQuiet(int milliseconds) {
    while (TakeNext(milliseconds)) continue;
  }

  /// False where nothing comes for so long.
  bool TakeNext(int milliseconds) {
    std::array<pollfd, 2> watched = {{{fMonitor.Get(), POLLIN, 0}, {fWatch.Get(), POLLIN, 0}}};
    if (::poll(watched.data(), watched.size(), milliseconds) <= 0) return false;
    const Clock::time_point now = Clock::now();
    if (watched[0].revents != 0) {
      const bool hasCome = fMonitor.Read().find(" add ") != std::string::npos;
      fLast = now;
      if (hasCome && fFirst == Clock::time_point()) fFirst = now;
    }
    if (watched[1].revents != 0 && !fWatch.Read().empty()) fReported = now;
    return true;
  }

  std::string fFile;
  std::string fController;
  Follower fMonitor;
  Follower fWatch;
  Clock::time_point fFirst;
  Clock::time_point fLast;
  Clock::time_point fReported;
};

}  // namespace

int main(int argc, char* argv[]) {
  constexpr int kArguments = 6;
  if (argc != kArguments) return 2;
  try {
    Bench bench(argv[2], argv[3], argv[4], argv[5]);
    for (int round = std::stoi(argv[1]); round > 0; --round) bench.Run();
  } catch (const std::exception& error) {
    std::cerr << "time-plugs: " << error.what() << '\n';
    return 1;
  }
}
