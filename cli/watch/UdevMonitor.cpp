#include "cli/watch/UdevMonitor.h"

#include <fmt/format.h>
#include <libudev.h>
#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <limits>
#include <string>
#include <system_error>
#include <utility>

#include "cli/text/UserError.h"

namespace cli {

namespace {

struct ReleaseDevice {
  void operator()(udev_device* device) const { ::udev_device_unref(device); }
};
using Device = std::unique_ptr<udev_device, ReleaseDevice>;

[[noreturn]] void Fail(int error) {
  throw UserError(fmt::format("cannot get the kernel's events of USB devices: {}; is netlink forbidden here?",
                              std::generic_category().message(error)));
}

void Check(int result) {
  if (result < 0) Fail(-result);
}

std::string TextOf(const char* text) {
  return text == nullptr ? std::string() : text;
}

UsbEvent EventOf(udev_device* device) {
  return ReadUsbEvent(
      TextOf(::udev_device_get_action(device)), TextOf(::udev_device_get_sysname(device)),
      [device](const char* property) { return TextOf(::udev_device_get_property_value(device, property)); });
}

/// For poll(2): rounded up, so that it does not return just before the deadline.
int MillisecondsUntil(Clock::Point deadline) {
  using std::chrono::milliseconds;
  const auto left = std::chrono::ceil<milliseconds>(deadline - std::chrono::steady_clock::now());
  return static_cast<int>(std::clamp<milliseconds::rep>(left.count(), 0, std::numeric_limits<int>::max()));
}

bool HasPassed(const std::optional<Clock::Point>& deadline) {
  return deadline && std::chrono::steady_clock::now() >= *deadline;
}

}  // namespace

void UdevMonitor::Release::operator()(udev* context) const {
  ::udev_unref(context);
}

void UdevMonitor::Release::operator()(udev_monitor* monitor) const {
  ::udev_monitor_unref(monitor);
}

UdevMonitor::UdevMonitor(int stop) : fStop(stop), fContext(::udev_new()) {
  if (fContext == nullptr) Fail(errno);
  fMonitor.reset(::udev_monitor_new_from_netlink(fContext.get(), "kernel"));
  if (fMonitor == nullptr) Fail(errno);
  Check(::udev_monitor_filter_add_match_subsystem_devtype(fMonitor.get(), "usb", nullptr));
  // Only root may have as much as this; for others the system's default stays.
  constexpr int kBufferBytes = 16 << 20;
  static_cast<void>(::udev_monitor_set_receive_buffer_size(fMonitor.get(), kBufferBytes));
  Check(::udev_monitor_enable_receiving(fMonitor.get()));
}

Waking UdevMonitor::Wait(std::optional<Clock::Point> deadline) {
  do {
    constexpr int kWithoutEnd = -1;
    std::array<pollfd, 2> watched = {
        {{fStop, POLLIN, 0}, {::udev_monitor_get_fd(fMonitor.get()), POLLIN, 0}}};
    const int wait = deadline ? MillisecondsUntil(*deadline) : kWithoutEnd;
    const int ready = ::poll(watched.data(), watched.size(), wait);
    if (ready < 0 && errno != EINTR) Fail(errno);
    if (ready <= 0) continue;
    if (watched[0].revents != 0) return {Waking::Cause::kStop};
    if (std::optional<Waking> waking = Receive()) return std::move(*waking);
  } while (!HasPassed(deadline));
  return {Waking::Cause::kDeadline};
}

std::optional<Waking> UdevMonitor::Receive() {
  errno = 0;
  const Device device(::udev_monitor_receive_device(fMonitor.get()));
  if (device != nullptr) return Waking{Waking::Cause::kEvent, EventOf(device.get())};
  switch (errno) {
    case EAGAIN:
    case EINTR:
      return std::nullopt;
    case ENOBUFS:
    // A message that libudev does not understand may have been about a USB device.
    case EINVAL:
    case EBADMSG:
      return Waking{Waking::Cause::kLoss};
    default:
      Fail(errno);
  }
}

}  // namespace cli
