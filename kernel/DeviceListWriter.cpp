#include "kernel/DeviceListWriter.h"

#include <array>
#include <charconv>

#include "kernel/ClassName.h"
#include "kernel/EndpointParser.h"

namespace kernel {
namespace {

std::string Number(unsigned number, int base, std::size_t width, char fill) {
  std::array<char, 16> digits;
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
  const auto length = static_cast<std::size_t>(end - digits.data());
  return std::string(length < width ? width - length : 0, fill) + std::string(digits.data(), length);
}

std::string Decimal(unsigned number, std::size_t width) {
  return Number(number, 10, width, ' ');
}

std::string TwoDigits(unsigned number) {
  return Number(number, 10, 2, '0');
}

std::string Hex(unsigned number, std::size_t width = 2) {
  return Number(number, 16, width, '0');
}

std::string Padded(std::string_view text, std::size_t width) {
  std::string padded(text);
  if (padded.size() < width) padded.resize(width, ' ');
  return padded;
}

/// " 2.10" for 0x0210.
std::string Release(std::uint16_t release) {
  return Number(release >> 8, 16, 2, ' ') + "." + Hex(release & 0xff);
}

std::string Codes(const ClassCodes& codes) {
  return " Cls=" + Hex(codes.classCode) + "(" + Padded(ClassName(codes.classCode), 5) +
         ") Sub=" + Hex(codes.subclass) + " Prot=" + Hex(codes.protocol);
}

char Mark(bool isActive) {
  return isActive ? '*' : ' ';
}

const char* SpeedText(Speed speed) {
  switch (speed) {
    case Speed::kLow:
      return "1.5";
    case Speed::kFull:
      return "12";
    case Speed::kHigh:
      return "480";
    case Speed::kSuper:
      return "5000";
    case Speed::kSuperPlus:
      return "10000";
    default:
      return "??";
  }
}

/// How many bytes at `at` are a character that no line of the list may have; 0 where there is none.
std::size_t ForbiddenLength(std::string_view text, std::size_t at) {
  const std::string_view rest = text.substr(at);
  const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(rest[index]); };
  if (byte(0) < 0x20 || byte(0) == 0x7f) return 1;
  // U+0080 to U+009F, and the separators of lines and of paragraphs, U+2028 and U+2029.
  if (rest.size() >= 2 && byte(0) == 0xc2 && byte(1) >= 0x80 && byte(1) < 0xa0) return 2;
  if (rest.starts_with("\xe2\x80\xa8") || rest.starts_with("\xe2\x80\xa9")) return 3;
  return 0;
}

std::string OneLine(std::string_view text) {
  constexpr std::string_view kReplacement = "\xef\xbf\xbd";
  std::string line;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = ForbiddenLength(text, at);
    if (length == 0) {
      line += text[at++];
    } else {
      line += kReplacement;
      at += length;
    }
  }
  return line;
}

void WriteString(std::string& list, const char* name, const std::optional<std::string>& text) {
  if (text) list += std::string("S:  ") + name + "=" + OneLine(*text) + "\n";
}

void WriteDevice(std::string& list, const Device& device) {
  const unsigned connector = device.port == 0 ? 0 : device.port - 1;
  list += "\nT:  Bus=" + TwoDigits(device.bus) + " Lev=" + TwoDigits(device.level) +
          " Prnt=" + TwoDigits(device.parentNumber) + " Port=" + TwoDigits(connector) +
          " Cnt=" + TwoDigits(device.count) + " Dev#=" + Decimal(device.number, 3) +
          " Spd=" + Padded(SpeedText(device.speed), 4) + " MxCh=" + Decimal(device.portCount, 2) + "\n";

  const DeviceDescriptor& descriptor = device.descriptor;
  list += "D:  Ver=" + Release(descriptor.version) + Codes(descriptor.codes) +
          " MxPS=" + Decimal(descriptor.maxPacketSize, 2) +
          " #Cfgs=" + Decimal(descriptor.configurationCount, 3) + "\n";
  list += "P:  Vendor=" + Hex(descriptor.vendor, 4) + " ProdID=" + Hex(descriptor.product, 4) +
          " Rev=" + Release(descriptor.revision) + "\n";
  WriteString(list, "Manufacturer", device.manufacturer);
  WriteString(list, "Product", device.product);
  WriteString(list, "SerialNumber", device.serial);
}

void WriteEndpoint(std::string& list, const Endpoint& endpoint) {
  constexpr char kTypes[][5] = {"Ctrl", "Isoc", "Bulk", "Int."};
  constexpr std::uint8_t kIn = 0x80;
  constexpr std::uint32_t kMillisecond = 1000;
  const TransferType type = TransferTypeOf(endpoint.attributes);
  char direction = (endpoint.address & kIn) != 0 ? 'I' : 'O';
  if (type == TransferType::kControl) direction = 'B';
  const bool isWhole = endpoint.interval % kMillisecond == 0;
  list += "E:  Ad=" + Hex(endpoint.address) + "(" + direction + ") Atr=" + Hex(endpoint.attributes) + "(" +
          kTypes[static_cast<std::size_t>(type)] + ") MxPS=" + Decimal(endpoint.maxPacketSize, 4) +
          " Ivl=" + std::to_string(isWhole ? endpoint.interval / kMillisecond : endpoint.interval) +
          (isWhole ? "ms\n" : "us\n");
}

void WriteInterface(std::string& list, const Interface& interface, bool isConfigured) {
  std::string driver;
  if (isConfigured) driver = interface.driver.empty() ? "(none)" : interface.driver;
  for (const AlternateSetting& setting : interface.settings) {
    list += std::string("I:") + Mark(setting.isActive) + " If#=" + Decimal(interface.number, 2) +
            " Alt=" + Decimal(setting.number, 2) +
            " #EPs=" + Decimal(static_cast<unsigned>(setting.endpoints.size()), 2) + Codes(setting.codes) +
            " Driver=" + driver + "\n";
    for (const Endpoint& endpoint : setting.endpoints) WriteEndpoint(list, endpoint);
  }
}

void WriteConfiguration(std::string& list, const Configuration& configuration) {
  list += std::string("C:") + Mark(configuration.isActive) +
          " #Ifs=" + Decimal(static_cast<unsigned>(configuration.interfaces.size()), 2) +
          " Cfg#=" + Decimal(configuration.value, 2) + " Atr=" + Hex(configuration.attributes) +
          " MxPwr=" + Decimal(configuration.maxPower, 3) + "mA\n";
  for (const InterfaceAssociation& association : configuration.associations) {
    list += "A:  FirstIf#=" + Decimal(association.firstInterface, 2) +
            " IfCount=" + Decimal(association.interfaceCount, 2) + Codes(association.codes) + "\n";
  }
  for (const Interface& interface : configuration.interfaces) {
    WriteInterface(list, interface, configuration.isActive);
  }
}

}  // namespace

std::string WriteDeviceList(const Topology& topology) {
  std::string list;
  for (const Device& device : topology.devices) {
    WriteDevice(list, device);
    for (const Configuration& configuration : device.configurations) WriteConfiguration(list, configuration);
  }
  return list;
}

}  // namespace kernel
