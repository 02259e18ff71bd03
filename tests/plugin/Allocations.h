// Counts what `new` and `delete` do in the whole process, modules loaded later included, so that a test can
// tell that something was freed, see the first block that somebody allocates, or have an allocation fail. A
// program that links Allocations.cpp gets the counting operators.
#pragma once

#include <cstddef>

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
};

}  // namespace usbinfo_test
