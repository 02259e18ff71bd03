// Where the watch gets events of USB devices from.
#pragma once

#include <optional>

#include "cli/watch/Clock.h"
#include "cli/watch/UsbEvent.h"

namespace cli {

/// What ended the waiting.
struct Waking {
  enum class Cause {
    kEvent,
    /// Events came that the kernel could not keep.
    kLoss,
    kDeadline,
    /// The watch is to end.
    kStop
  };

  Cause cause;
  /// With kEvent.
  UsbEvent event = {};
};

class UeventSource {
 public:
  virtual ~UeventSource() = default;
  /// Waits until something comes, at most until `deadline`. Events come in the order in which they happened.
  /// Throws UserError when there can be no more events.
  virtual Waking Wait(std::optional<Clock::Point> deadline) = 0;
  /// The next event or loss that is already there. Nothing where there is none. Throws UserError, too.
  virtual std::optional<Waking> Receive() = 0;
};

}  // namespace cli
