// The events since the last look at the machine: when it is time for the next one, and which devices came and
// went without being seen.
#pragma once

#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "cli/watch/Clock.h"
#include "cli/watch/UsbEvent.h"
#include "kernel/Device.h"
#include "kernel/DeviceName.h"

namespace cli {

class Inventory;

class EventBatch {
 public:
  /// A batch that does not settle is looked at when this many settling times have passed since it began.
  static constexpr int kMostSettlingTimes = 10;

  void Take(const UsbEvent& event, Clock::Point now);
  /// Events were lost.
  void TakeLoss(Clock::Point now);

  bool HasLosses() const { return fHasLosses; }
  /// When to look; nothing where nothing has come.
  std::optional<Clock::Point> LookAt(Clock::Point::duration settle) const;

  /// The devices that came and are in neither inventory, by name and number: what their events say of them.
  /// They have gone, even where the event that says so is still to come.
  std::vector<kernel::Device> CameAndWent(const Inventory& before, const Inventory& after) const;

 private:
  /// A device that came. The number differs from that of the next one at the same place.
  using Stay = std::pair<kernel::DeviceName, unsigned>;

  void Note(Clock::Point now);
  void TakeDevice(const UsbEvent& event, const kernel::DeviceName& name);
  void TakeInterface(const UsbEvent& event, const kernel::DeviceName& device);

  std::optional<Clock::Point> fFirst;
  Clock::Point fLast;
  bool fHasLosses = false;
  std::map<Stay, kernel::Device> fVisitors;
  /// The number of the device that was last there.
  std::map<kernel::DeviceName, unsigned> fNumbers;
};

}  // namespace cli
