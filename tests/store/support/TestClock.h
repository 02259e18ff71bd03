// A clock that stands still until the test sets it.
#pragma once

#include "store/Clock.h"

namespace usbinfo_test {

class TestClock : public store::Clock {
 public:
  explicit TestClock(store::Seconds now) : fNow(now) {}

  store::Seconds Now() const override { return fNow; }
  void Set(store::Seconds now) { fNow = now; }

 private:
  store::Seconds fNow;
};

}  // namespace usbinfo_test
