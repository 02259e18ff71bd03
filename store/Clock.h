// The time of day, behind an interface that tests can set.
#pragma once

#include <chrono>

#include "store/TimeText.h"

namespace store {

class Clock {
 public:
  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
  virtual ~Clock() = default;

  virtual Seconds Now() const = 0;
};

class SystemClock : public Clock {
 public:
  Seconds Now() const override {
    using std::chrono::system_clock;
    return std::chrono::duration_cast<std::chrono::seconds>(system_clock::now().time_since_epoch()).count();
  }
};

}  // namespace store
