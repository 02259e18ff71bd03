// How far a long command is, on one line of a terminal's standard error; nothing where there is no terminal.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace store {

/// The line for a terminal that is `columns` wide: "[####    ] 12 of 50 done, 3 failed, 4.0/s, 9 s left".
std::string ProgressLine(std::size_t total, std::size_t done, std::size_t failed, double seconds,
                         std::size_t columns);

class ProgressBar {
 public:
  explicit ProgressBar(std::size_t total);
  ProgressBar(const ProgressBar&) = delete;
  ProgressBar& operator=(const ProgressBar&) = delete;
  /// Clears the line.
  ~ProgressBar();

  /// Shows it, at most ten times a second.
  void Show(std::size_t done, std::size_t failed);

 private:
  using Clock = std::chrono::steady_clock;

  std::size_t fTotal;
  bool fIsOnTerminal;
  Clock::time_point fBegin = Clock::now();
  Clock::time_point fNext = fBegin;
};

}  // namespace store
