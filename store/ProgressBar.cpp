#include "store/ProgressBar.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>

#include "system/FileDescriptor.h"

namespace store {

namespace {

constexpr std::chrono::milliseconds kPause{100};
constexpr const char* kClearLine = "\r\x1b[K";

std::size_t TerminalColumns() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

/// "40 s", "12 min", "3 h".
std::string Duration(double seconds) {
  constexpr double kMinute = 60;
  constexpr double kHour = 3600;
  if (seconds < 2 * kMinute) return fmt::format("{:.0f} s", seconds);
  return seconds < 2 * kHour ? fmt::format("{:.0f} min", seconds / kMinute)
                             : fmt::format("{:.0f} h", seconds / kHour);
}

}  // namespace

std::string ProgressLine(std::size_t total, std::size_t done, std::size_t failed, double seconds,
                         std::size_t columns) {
  constexpr std::size_t kBar = 20;
  const std::size_t ended = done + failed;
  const std::size_t filled = total == 0 ? kBar : std::min(ended, total) * kBar / total;
  std::string line = fmt::format("[{}{}] {} of {} done, {} failed", std::string(filled, '#'),
                                 std::string(kBar - filled, ' '), done, total, failed);
  const double rate = seconds > 0 ? static_cast<double>(ended) / seconds : 0;
  if (rate > 0) {
    line += fmt::format(", {:.1f}/s, {} left", rate,
                        Duration(static_cast<double>(total - std::min(ended, total)) / rate));
  }
  return line.substr(0, columns - 1);
}

ProgressBar::ProgressBar(std::size_t total) : fTotal(total), fIsOnTerminal(::isatty(STDERR_FILENO) == 1) {}

ProgressBar::~ProgressBar() {
  if (fIsOnTerminal) sys::TryWriteAll(STDERR_FILENO, kClearLine);
}

void ProgressBar::Show(std::size_t done, std::size_t failed) {
  const Clock::time_point now = Clock::now();
  if (!fIsOnTerminal || now < fNext) return;
  fNext = now + kPause;
  const double seconds = std::chrono::duration<double>(now - fBegin).count();
  sys::TryWriteAll(STDERR_FILENO,
                   kClearLine + ProgressLine(fTotal, done, failed, seconds, TerminalColumns()));
}

}  // namespace store
