#include "cli/collect/UsbguardHashes.h"

#include <fmt/format.h>
#include <sodium.h>

#include <array>
#include <map>
#include <string>
#include <utility>

#include "kernel/DeviceName.h"

namespace cli {

namespace {

std::string HashOf(const std::string& bytes) {
  constexpr int kVariant = sodium_base64_VARIANT_ORIGINAL;
  std::array<unsigned char, crypto_hash_sha256_BYTES> hash{};
  ::crypto_hash_sha256(hash.data(), reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  std::array<char, sodium_base64_ENCODED_LEN(crypto_hash_sha256_BYTES, kVariant)> text{};
  return ::sodium_bin2base64(text.data(), text.size(), hash.data(), hash.size(), kVariant);
}

/// Without the line breaks and tabs at its end, as USBGuard reads the files of sysfs.
std::string Trimmed(std::string text) {
  text.erase(text.find_last_not_of("\t\r\n") + 1);
  return text;
}

/// Whatever has one of these numbers counts as a root hub.
bool IsLinuxRootHub(const kernel::DeviceDescriptor& descriptor) {
  constexpr unsigned kLinuxFoundation = 0x1d6b;
  constexpr unsigned kLastRootHub = 3;
  return descriptor.vendor == kLinuxFoundation && descriptor.product >= 1 &&
         descriptor.product <= kLastRootHub;
}

std::string HashOf(const kernel::Device& device) {
  constexpr std::size_t kRevision = 12;
  std::string descriptors = device.rawDescriptors;
  if (IsLinuxRootHub(device.descriptor)) descriptors.replace(kRevision, 2, 2, '\0');
  return HashOf(fmt::format("{}{:04x}{:04x}{}", Trimmed(device.product.value_or("")),
                            device.descriptor.vendor, device.descriptor.product,
                            Trimmed(device.serial.value_or(""))) +
                descriptors);
}

/// Nothing where it is not known.
std::optional<std::string> ParentHashOf(const kernel::Device& device,
                                        const std::map<kernel::DeviceName, std::string>& hashes) {
  std::optional<kernel::DeviceName> parent = kernel::ParseDeviceName(device.name);
  if (!parent) return std::nullopt;
  if (parent->IsRootHub()) {
    return device.controller.empty() ? std::nullopt : std::optional(HashOf(device.controller));
  }
  parent->ports.pop_back();
  const auto found = hashes.find(*parent);
  return found == hashes.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

KernelFacts WithHashes(KernelFacts facts, const kernel::Topology& topology) {
  std::map<kernel::DeviceName, std::string> hashes;
  for (std::size_t index = 0; index < topology.devices.size(); ++index) {
    const kernel::Device& device = topology.devices[index];
    const std::string hash = HashOf(device);
    // A hub comes before what is plugged into it.
    facts.devices[index].parentHash = ParentHashOf(device, hashes);
    facts.devices[index].hash = hash;
    if (const auto name = kernel::ParseDeviceName(device.name)) hashes.emplace(*name, hash);
  }
  return facts;
}

}  // namespace cli
