// Counts what `new` and `delete` do in the whole process, modules loaded later included, so that a test can
// check that something was freed, find the first block that is allocated, or have an allocation fail. A
// program that links Allocations.cpp gets the counting operators.
#pragma once

#include <cstddef>
#include <functional>

namespace usbinfo_test {

class Allocations {
 public:
  /// The blocks that exist now.
  static std::size_t Live();
  /// The blocks made since the start of the program.
  static std::size_t Made();

  /// From the next block on, First() is that block; null until there is one.
  static void WatchForFirst();
  static void* First();

  /// The next allocation throws std::bad_alloc; the ones after it work again.
  static void FailNext();

  /// While it lives, the allocation of that number, counted from 0 at its start, throws std::bad_alloc, once,
  /// after `onFailure` was called.
  class Failure {
   public:
    Failure(std::size_t number, std::function<void()> onFailure);
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    ~Failure();

   private:
    std::function<void()> fOnFailure;
  };

  /// While it exists, allocations are the test's own: they are not counted for a Failure and do not fail.
  class Pause {
   public:
    Pause();
    Pause(const Pause&) = delete;
    Pause& operator=(const Pause&) = delete;
    ~Pause();
  };
};

}  // namespace usbinfo_test
