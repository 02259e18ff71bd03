#include "cli/collect/WaitingNotice.h"

#include <fmt/format.h>

#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "cli/text/Text.h"

namespace cli {

namespace {

/// Runs an action on a separate thread after a time, unless the object is destroyed before. The destructor
/// waits for an action that has begun.
class Timer {
 public:
  Timer(std::chrono::milliseconds time, std::function<void()> action) {
    try {
      fThread = std::thread([this, time, action = std::move(action)] { Count(time, action); });
    } catch (const std::system_error&) {
      // Without a thread there is no action; that is not worth an error.
    }
  }
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer() {
    {
      const std::lock_guard<std::mutex> lock(fMutex);
      fIsOver = true;
    }
    fOver.notify_one();
    if (fThread.joinable()) fThread.join();
  }

 private:
  void Count(std::chrono::milliseconds time, const std::function<void()>& action) noexcept {
    try {
      std::unique_lock<std::mutex> lock(fMutex);
      const bool isOver = fOver.wait_for(lock, time, [this] { return fIsOver; });
      lock.unlock();
      if (!isOver) action();
    } catch (...) {
      // There is nobody to report it to.
    }
  }

  std::mutex fMutex;
  std::condition_variable fOver;
  bool fIsOver = false;
  std::thread fThread;
};

}  // namespace

WaitingNotice::WaitingNotice(std::unique_ptr<standin::OperatingSystem> next,
                             std::chrono::milliseconds patience, Notify notify)
    : ForwardingSystem(std::move(next)), fPatience(patience), fNotify(std::move(notify)) {}

std::string WaitingNotice::SpawnProcess(const std::string& command, int seconds) {
  if (fIsNotified) return ForwardingSystem::SpawnProcess(command, seconds);
  const std::string line = fmt::format("usbinfo: waiting for {}, for {} seconds at most ...\n",
                                       EscapeForTerminal(command), seconds);
  const Timer timer(fPatience, [this, line] {
    fIsNotified = true;
    fNotify(line);
  });
  return ForwardingSystem::SpawnProcess(command, seconds);
}

}  // namespace cli
