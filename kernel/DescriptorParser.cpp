#include "kernel/DescriptorParser.h"

#include <algorithm>

namespace kernel {
namespace {

constexpr std::size_t kDeviceDescriptorSize = 18;
constexpr std::uint8_t kDeviceDescriptor = 1;

std::uint16_t Word(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

DeviceDescriptor ParseDevice(Bytes bytes) {
  DeviceDescriptor device;
  device.version = Word(bytes, 2);
  device.codes = {bytes[4], bytes[5], bytes[6]};
  device.maxPacketSize = bytes[7];
  device.vendor = Word(bytes, 8);
  device.product = Word(bytes, 10);
  device.revision = Word(bytes, 12);
  device.configurationCount = bytes[17];
  return device;
}

/// Where the next configuration begins, or the end of `bytes`.
std::size_t NextConfiguration(Bytes bytes) {
  std::size_t at = bytes[0];
  while (DescriptorLength(bytes.subspan(at)) != 0) {
    if (IsConfiguration(bytes.subspan(at))) return at;
    at += bytes[at];
  }
  return bytes.size();
}

/// How many of the bytes belong to the configuration that they begin with. The kernel keeps a damaged one
/// only up to the damage, without correcting the total length in its descriptor.
std::size_t ConfigurationSize(Bytes bytes, bool isLast) {
  const std::size_t total = std::max<std::size_t>(Word(bytes, 2), bytes[0]);
  if (isLast) return std::min(total, bytes.size());
  if (total < bytes.size() && IsConfiguration(bytes.subspan(total))) return total;
  return NextConfiguration(bytes);
}

}  // namespace

std::optional<Descriptors> ParseDescriptors(Bytes file, const ParsingRules& rules) {
  if (DescriptorLength(file) < kDeviceDescriptorSize || file[1] != kDeviceDescriptor) return std::nullopt;
  Descriptors descriptors{ParseDevice(file), {}};
  Bytes rest = file.subspan(kDeviceDescriptorSize);
  for (unsigned left = descriptors.device.configurationCount; left > 0; --left) {
    if (!IsConfiguration(rest)) return std::nullopt;
    const std::size_t size = ConfigurationSize(rest, left == 1);
    descriptors.configurations.push_back(ParseConfiguration(rest.first(size), rules));
    rest = rest.subspan(size);
  }
  return descriptors;
}

}  // namespace kernel
