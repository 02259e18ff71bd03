#include "kernel/DeviceReader.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "kernel/DescriptorParser.h"
#include "kernel/Number.h"

namespace kernel {
namespace {

constexpr unsigned kMostDevices = 255;
constexpr unsigned kMostByte = 255;
/// The kernel's limit: the device descriptor and one configuration of the greatest size.
constexpr std::size_t kMostDescriptors = 18 + 65535;

struct SpeedName {
  // No pointer, which would have to be adjusted at each start of the program.
  char text[8];
  Speed speed;
  double megabitsPerSecond;
};

constexpr std::array kSpeeds = {
    SpeedName{"1.5", Speed::kLow, 1.5},           SpeedName{"12", Speed::kFull, 12},
    SpeedName{"480", Speed::kHigh, 480},          SpeedName{"5000", Speed::kSuper, 5000},
    SpeedName{"10000", Speed::kSuperPlus, 10000}, SpeedName{"20000", Speed::kSuperPlus, 20000},
    SpeedName{"unknown", Speed::kUnknown, 0},
};

const SpeedName& ReadSpeed(const SysfsFolder& folder) {
  const std::string text = folder.ReadLine("speed");
  const auto* const found = std::find_if(kSpeeds.begin(), kSpeeds.end(),
                                         [&](const SpeedName& speed) { return text == speed.text; });
  if (found == kSpeeds.end()) throw SysfsError("speed", "no speed that is known");
  return *found;
}

/// The value of the active configuration; nothing where none is.
std::optional<unsigned> ReadActiveValue(const SysfsFolder& folder) {
  return folder.ReadNumberIfAny("bConfigurationValue", kMostByte);
}

/// Zero where the kernel has no such file.
std::uint32_t ReadQuirks(const SysfsFolder& folder) {
  constexpr std::string_view kPrefix = "0x";
  constexpr int kBase = 16;
  const std::string text = folder.ReadIfThere("quirks").value_or("0x0");
  std::string_view digits = WithoutLineBreak(text);
  std::uint32_t quirks = 0;
  if (digits.starts_with(kPrefix)) digits.remove_prefix(kPrefix.size());
  const char* const end = digits.data() + digits.size();
  const auto [stop, error] = std::from_chars(digits.data(), end, quirks, kBase);
  if (error != std::errc() || stop != end) throw SysfsError("quirks", "no hexadecimal number");
  return quirks;
}

std::optional<std::string> ReadString(const SysfsFolder& folder, const std::string& file) {
  const auto text = folder.ReadIfThere(file);
  if (!text) return std::nullopt;
  if (!text->ends_with('\n')) throw SysfsError(file, "no line");
  return std::string(WithoutLineBreak(*text));
}

Descriptors ReadDescriptors(const SysfsFolder& folder, Speed speed) {
  const std::string file = ReadRawDescriptors(folder);
  const Bytes bytes(reinterpret_cast<const std::uint8_t*>(file.data()), file.size());
  auto descriptors = ParseDescriptors(bytes, {speed, ReadQuirks(folder)});
  if (!descriptors) throw SysfsError("descriptors", "a descriptor is missing or damaged");
  return *std::move(descriptors);
}

void ActivateInterface(Interface& interface, const SysfsFolder& folder, const std::string& name) {
  if (!folder.Has(name)) throw SysfsError(name, "no such interface");
  interface.driver = folder.LinkName(name + "/driver");
  std::size_t active = 0;
  if (interface.settings.size() > 1) {
    const unsigned number = folder.ReadNumber(name + "/bAlternateSetting", kMostByte);
    while (active < interface.settings.size() && interface.settings[active].number != number) ++active;
    if (active == interface.settings.size()) throw SysfsError(name, "no such setting");
  }
  interface.settings[active].isActive = true;
}

void Activate(Device& device, unsigned value, const SysfsFolder& folder, const DeviceName& name) {
  auto& all = device.configurations;
  const auto active = std::find_if(all.begin(), all.end(), [&](const Configuration& configuration) {
    return configuration.value == value;
  });
  if (active == all.end()) throw SysfsError("bConfigurationValue", "no such configuration");
  active->isActive = true;
  for (Interface& interface : active->interfaces) {
    ActivateInterface(interface, folder, name.Interface(value, interface.number));
  }
}

}  // namespace

Device ReadDevice(const SysfsFolder& folder, const DeviceName& name) {
  Device device;
  device.name = name.Text();
  device.bus = name.bus;
  device.number = folder.ReadNumber("devnum", kMostDevices);
  device.level = static_cast<unsigned>(name.ports.size());
  device.port = name.IsRootHub() ? 0 : name.ports.back();
  const auto active = ReadActiveValue(folder);
  const SpeedName& speed = ReadSpeed(folder);
  device.speed = speed.speed;
  device.megabitsPerSecond = speed.megabitsPerSecond;
  device.portCount = folder.ReadNumber("maxchild", kMostPorts);
  device.isAuthorized = folder.ReadNumber("authorized", 1) != 0;
  device.manufacturer = ReadString(folder, "manufacturer");
  device.product = ReadString(folder, "product");
  device.serial = ReadString(folder, "serial");

  Descriptors descriptors = ReadDescriptors(folder, device.speed);
  device.descriptor = descriptors.device;
  device.configurations = std::move(descriptors.configurations);
  if (active) Activate(device, *active, folder, name);
  return device;
}

std::string ReadRawDescriptors(const SysfsFolder& folder) {
  return folder.ReadBytes("descriptors", kMostDescriptors);
}

void CheckUnchanged(const SysfsFolder& folder, const DeviceName& name, const Device& device) {
  const Configuration* const active = device.ActiveConfiguration();
  const std::optional<unsigned> value = ReadActiveValue(folder);
  const bool isSame = active == nullptr ? !value : value && *value == active->value;
  if (!isSame) throw SysfsError("bConfigurationValue", "changed");
  // A device that comes is configured before it gets its link to its port; one that goes loses both, the link
  // last.
  if (!value && !name.IsRootHub() && !folder.Has("port")) throw SysfsError("port", "no such link");
  // Of all its files this is among the first to go.
  if (folder.ReadNumber("devnum", kMostDevices) != device.number) throw SysfsError("devnum", "changed");
}

}  // namespace kernel
