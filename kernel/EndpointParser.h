// Reads an endpoint descriptor, and corrects what cannot be, by the kernel's rules.
#pragma once

#include <cstdint>
#include <span>

#include "kernel/Device.h"

namespace kernel {

using Bytes = std::span<const std::uint8_t>;

/// How a device is to be read: its speed, and what the kernel knows of its faults.
struct ParsingRules {
  Speed speed = Speed::kUnknown;
  /// The bits of the device's file "quirks" in sysfs.
  std::uint32_t quirks = 0;
};

/// Interfaces beyond the number that the configuration declares are none.
inline constexpr std::uint32_t kQuirkHonorInterfaceCount = 1U << 5;
/// Intervals of interrupt endpoints at high speed are in microframes.
inline constexpr std::uint32_t kQuirkIntervalInMicroframes = 1U << 7;
/// Intervals of interrupt endpoints at high speed are in frames.
inline constexpr std::uint32_t kQuirkIntervalInFrames = 1U << 11;

inline constexpr std::size_t kEndpointDescriptorSize = 7;

/// The endpoint that a descriptor of at least kEndpointDescriptorSize bytes describes.
Endpoint ParseEndpoint(Bytes descriptor, const ParsingRules& rules);

enum class TransferType { kControl, kIsochronous, kBulk, kInterrupt };

inline TransferType TransferTypeOf(std::uint8_t attributes) {
  return static_cast<TransferType>(attributes & 3);
}

}  // namespace kernel
