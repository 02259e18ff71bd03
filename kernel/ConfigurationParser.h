// Reads the descriptors of one configuration as the kernel does: lenient with what a device gets wrong.
#pragma once

#include "kernel/Device.h"
#include "kernel/EndpointParser.h"

namespace kernel {

inline constexpr std::size_t kConfigurationDescriptorSize = 9;
inline constexpr std::uint8_t kConfigurationDescriptor = 2;

/// The length of the descriptor that `bytes` begin with; 0 where they are too few for it, or it is below 2.
std::size_t DescriptorLength(Bytes bytes);

/// Whether `bytes` begin with a whole configuration descriptor.
bool IsConfiguration(Bytes bytes);

/// The configuration that `bytes`, for which IsConfiguration is true, describe up to their end or to the
/// first descriptor whose length is impossible. No part of it is active.
Configuration ParseConfiguration(Bytes bytes, const ParsingRules& rules);

}  // namespace kernel
