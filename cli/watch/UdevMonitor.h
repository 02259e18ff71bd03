// The events of USB devices as the kernel sends them, through libudev. The kernel's own messages need neither
// udevd nor root.
#pragma once

#include <memory>
#include <optional>

#include "cli/watch/UeventSource.h"

struct udev;
struct udev_monitor;

namespace cli {

class UdevMonitor : public UeventSource {
 public:
  /// Events count from now on. The watch is to end as soon as the descriptor `stop` can be read. Throws
  /// UserError.
  explicit UdevMonitor(int stop);

  Waking Wait(std::optional<Clock::Point> deadline) override;
  std::optional<Waking> Receive() override;

 private:
  struct Release {
    void operator()(udev* context) const;
    void operator()(udev_monitor* monitor) const;
  };

  int fStop;
  std::unique_ptr<udev, Release> fContext;
  std::unique_ptr<udev_monitor, Release> fMonitor;
};

}  // namespace cli
