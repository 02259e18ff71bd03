#include "cli/watch/UsbEvent.h"

#include <array>
#include <charconv>
#include <limits>

#include "kernel/Number.h"

namespace cli {

namespace {

using Three = std::array<std::uint16_t, 3>;

/// Numbers with slashes between them; nothing for any other text.
std::optional<Three> ParseThree(std::string_view text, int base) {
  Three numbers{};
  const char* at = text.data();
  const char* const end = at + text.size();
  for (std::size_t index = 0; index < numbers.size(); ++index) {
    const auto [stop, error] = std::from_chars(at, end, numbers[index], base);
    if (error != std::errc()) return std::nullopt;
    const bool isLast = index + 1 == numbers.size();
    if (isLast ? stop != end : stop == end || *stop != '/') return std::nullopt;
    at = stop + (isLast ? 0 : 1);
  }
  return numbers;
}

std::optional<kernel::ClassCodes> ParseCodes(std::string_view text) {
  constexpr int kDecimal = 10;
  const std::optional<Three> numbers = ParseThree(text, kDecimal);
  if (!numbers) return std::nullopt;
  for (const std::uint16_t number : *numbers) {
    if (number > std::numeric_limits<std::uint8_t>::max()) return std::nullopt;
  }
  return kernel::ClassCodes{static_cast<std::uint8_t>((*numbers)[0]),
                            static_cast<std::uint8_t>((*numbers)[1]),
                            static_cast<std::uint8_t>((*numbers)[2])};
}

UsbEvent::Action ActionOf(std::string_view action) {
  if (action == "add") return UsbEvent::Action::kAdd;
  return action == "remove" ? UsbEvent::Action::kRemove : UsbEvent::Action::kOther;
}

}  // namespace

UsbEvent ReadUsbEvent(std::string_view action, std::string_view name,
                      const std::function<std::string(const char* property)>& property) {
  constexpr int kHexadecimal = 16;
  UsbEvent event;
  event.action = ActionOf(action);
  event.name = name;
  if (name.find(':') != std::string_view::npos) {
    event.codes = ParseCodes(property("INTERFACE"));
    return event;
  }
  event.number =
      kernel::ParseNumber(property("DEVNUM"), std::numeric_limits<std::uint16_t>::max()).value_or(0);
  event.codes = ParseCodes(property("TYPE"));
  if (const std::optional<Three> ids = ParseThree(property("PRODUCT"), kHexadecimal)) {
    event.vendor = (*ids)[0];
    event.product = (*ids)[1];
  }
  return event;
}

}  // namespace cli
