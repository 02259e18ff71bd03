// The time as the watch sees it, so that tests need not wait.
#pragma once

#include <chrono>
#include <ctime>

namespace cli {

class Clock {
 public:
  using Point = std::chrono::steady_clock::time_point;

  virtual ~Clock() = default;
  virtual Point Now() const = 0;
  /// In seconds since 1970.
  virtual std::time_t Time() const = 0;
};

/// That of this machine.
class SystemClock : public Clock {
 public:
  Point Now() const override { return std::chrono::steady_clock::now(); }
  std::time_t Time() const override { return std::time(nullptr); }
};

}  // namespace cli
