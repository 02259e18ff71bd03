#include "kernel/DeviceListReader.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>
#include <map>
#include <set>
#include <utility>

#include "kernel/DeviceName.h"
#include "kernel/ListRecords.h"

namespace kernel {

namespace {

constexpr int kHexadecimal = 16;

/// The number that `digits` begin with; 0 where there is none, or one that is too large for the type.
template <typename Number>
Number LeadingNumber(std::string_view digits, int base) {
  Number number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
  return number;
}

/// Of the field behind `key`; decimal unless it begins with "0x".
template <typename Number>
Number NumberIn(std::string_view line, std::string_view key) {
  constexpr int kDecimal = 10;
  const std::string_view field = FieldOf(line, key);
  if (field.substr(0, 2) == "0x") return LeadingNumber<Number>(field.substr(2), kHexadecimal);
  return LeadingNumber<Number>(field, kDecimal);
}

template <typename Number>
Number HexadecimalIn(std::string_view line, std::string_view key) {
  return LeadingNumber<Number>(FieldOf(line, key), kHexadecimal);
}

/// A binary-coded decimal that is printed with a point, such as "2.10".
std::uint16_t VersionIn(std::string_view line, std::string_view key) {
  constexpr unsigned kBitsOfByte = 8;
  const std::string_view field = FieldOf(line, key);
  const std::size_t point = field.find('.');
  if (point == std::string_view::npos) return 0;
  const auto whole = LeadingNumber<std::uint8_t>(field.substr(0, point), kHexadecimal);
  const auto fraction = LeadingNumber<std::uint8_t>(field.substr(point + 1), kHexadecimal);
  return static_cast<std::uint16_t>((whole << kBitsOfByte) | fraction);
}

ClassCodes ClassCodesIn(std::string_view line) {
  return {HexadecimalIn<std::uint8_t>(line, "Cls="), HexadecimalIn<std::uint8_t>(line, "Sub="),
          HexadecimalIn<std::uint8_t>(line, "Prot=")};
}

bool HasStar(std::string_view line) {
  return line.substr(2, 1) == "*";
}

double RateIn(std::string_view line) {
  const std::string_view field = FieldOf(line, "Spd=");
  double rate = 0;
  std::from_chars(field.data(), field.data() + field.size(), rate);
  return rate;
}

Speed SpeedOf(double megabitsPerSecond) {
  constexpr std::pair<double, Speed> kSpeeds[] = {{1.5, Speed::kLow},         {12, Speed::kFull},
                                                  {480, Speed::kHigh},        {5000, Speed::kSuper},
                                                  {10000, Speed::kSuperPlus}, {20000, Speed::kSuperPlus}};
  const auto* const found = std::find_if(std::begin(kSpeeds), std::end(kSpeeds),
                                         [=](const auto& each) { return each.first == megabitsPerSecond; });
  return found == std::end(kSpeeds) ? Speed::kUnknown : found->second;
}

/// In microseconds; "255ms" and "125us" are both printed.
std::uint32_t IntervalIn(std::string_view line) {
  constexpr std::uint32_t kMicroseconds = 1000;
  const auto number = NumberIn<std::uint32_t>(line, "Ivl=");
  const std::string_view field = FieldOf(line, "Ivl=");
  const bool isInMilliseconds = field.size() > 1 && field[field.size() - 2] == 'm';
  return isInMilliseconds && number < UINT32_MAX / kMicroseconds ? number * kMicroseconds : number;
}

/// The rest of `line` behind `key`; empty when `key` is missing.
std::string_view RestBehind(std::string_view line, std::string_view key) {
  const std::size_t at = line.find(key);
  return at == std::string_view::npos ? std::string_view() : line.substr(at + key.size());
}

/// What a list marks by a star where it is active. usb-devices prints what is active only, and early kernels
/// mark configurations but not settings.
struct Stars {
  bool marksConfigurations = false;
  bool marksSettings = false;
};

/// Fills one device from the lines of its record.
class RecordReader {
 public:
  explicit RecordReader(const Stars& stars) : fStars(stars) {}

  Device Read(const ListRecord& record) {
    for (const ListLine& line : record.lines) ReadLine(line);
    return std::move(fDevice);
  }

 private:
  void ReadLine(const ListLine& line) {
    switch (line.Type()) {
      case 'T':
        return ReadTopology(line.text);
      case 'D':
        return ReadDescriptor(line.text);
      case 'P':
        return ReadProduct(line.text);
      case 'S':
        return ReadString(line.text);
      case 'C':
        return ReadConfiguration(line.text);
      case 'A':
        return ReadAssociation(line.text);
      case 'I':
        return ReadInterface(line.text);
      case 'E':
        return ReadEndpoint(line.text);
      default:
        return;
    }
  }

  /// The first one counts, since a string may forge others.
  void ReadTopology(std::string_view line) {
    if (std::exchange(fHasTopology, true)) return;
    fDevice.bus = NumberIn<std::uint8_t>(line, "Bus=");
    fDevice.level = NumberIn<std::uint8_t>(line, "Lev=");
    fDevice.number = NumberIn<std::uint8_t>(line, "Dev#=");
    fDevice.portCount = NumberIn<std::uint8_t>(line, "MxCh=");
    fDevice.megabitsPerSecond = RateIn(line);
    fDevice.speed = SpeedOf(fDevice.megabitsPerSecond);
    if (fDevice.level == 0) return;
    fDevice.parentNumber = NumberIn<std::uint8_t>(line, "Prnt=");
    fDevice.port = NumberIn<std::uint8_t>(line, "Port=") + 1U;
    fDevice.count = NumberIn<std::uint8_t>(line, "Cnt=");
  }

  void ReadDescriptor(std::string_view line) {
    if (std::exchange(fHasDescriptor, true)) return;
    fDevice.descriptor.version = VersionIn(line, "Ver=");
    fDevice.descriptor.codes = ClassCodesIn(line);
    fDevice.descriptor.maxPacketSize = NumberIn<std::uint8_t>(line, "MxPS=");
    fDevice.descriptor.configurationCount = NumberIn<std::uint8_t>(line, "#Cfgs=");
  }

  void ReadProduct(std::string_view line) {
    if (std::exchange(fHasProduct, true)) return;
    fDevice.descriptor.vendor = HexadecimalIn<std::uint16_t>(line, "Vendor=");
    fDevice.descriptor.product = HexadecimalIn<std::uint16_t>(line, "ProdID=");
    fDevice.descriptor.revision = VersionIn(line, "Rev=");
  }

  void ReadString(std::string_view line) {
    const std::pair<std::string_view, std::optional<std::string>*> strings[] = {
        {"Manufacturer=", &fDevice.manufacturer},
        {"Product=", &fDevice.product},
        {"SerialNumber=", &fDevice.serial}};
    for (const auto& [key, value] : strings) {
      if (FieldOf(line, "S:").substr(0, key.size()) == key && !*value) *value = RestBehind(line, key);
    }
  }

  void ReadConfiguration(std::string_view line) {
    const auto value = NumberIn<std::uint8_t>(line, "Cfg#=");
    fEndpoints = nullptr;
    fDevice.configurations.push_back({.value = value,
                                      .attributes = HexadecimalIn<std::uint8_t>(line, "Atr="),
                                      .maxPower = NumberIn<std::uint16_t>(line, "MxPwr="),
                                      .isActive = fStars.marksConfigurations ? HasStar(line) : value != 0,
                                      .associations = {},
                                      .interfaces = {}});
  }

  void ReadAssociation(std::string_view line) {
    if (fDevice.configurations.empty()) return;
    fDevice.configurations.back().associations.push_back({NumberIn<std::uint8_t>(line, "FirstIf#="),
                                                          NumberIn<std::uint8_t>(line, "IfCount="),
                                                          ClassCodesIn(line)});
  }

  void ReadInterface(std::string_view line) {
    if (fDevice.configurations.empty()) return;
    Interface& interface = InterfaceOf(NumberIn<std::uint8_t>(line, "If#="));
    const std::string_view driver = RestBehind(line, "Driver=");
    if (driver != "(none)") interface.driver = driver;
    // The first setting is active unless the device was told otherwise.
    const bool isFirst = interface.settings.empty() && fDevice.configurations.back().isActive;
    const bool isActive = fStars.marksSettings ? HasStar(line) : isFirst;
    interface.settings.push_back({.number = NumberIn<std::uint8_t>(line, "Alt="),
                                  .isActive = isActive,
                                  .codes = ClassCodesIn(line),
                                  .endpoints = {}});
    fEndpoints = &interface.settings.back().endpoints;
  }

  void ReadEndpoint(std::string_view line) {
    if (fEndpoints == nullptr) return;
    fEndpoints->push_back({.address = HexadecimalIn<std::uint8_t>(line, "Ad="),
                           .attributes = HexadecimalIn<std::uint8_t>(line, "Atr="),
                           .maxPacketSize = NumberIn<std::uint16_t>(line, "MxPS="),
                           .interval = IntervalIn(line)});
  }

  /// The interface of that number in the current configuration, which the lines of all its settings share.
  Interface& InterfaceOf(std::uint8_t number) {
    std::vector<Interface>& interfaces = fDevice.configurations.back().interfaces;
    const auto found = std::find_if(interfaces.begin(), interfaces.end(),
                                    [=](const Interface& each) { return each.number == number; });
    if (found != interfaces.end()) return *found;
    interfaces.push_back({.number = number, .driver = {}, .settings = {}});
    return interfaces.back();
  }

  Stars fStars;
  bool fHasTopology = false;
  bool fHasDescriptor = false;
  bool fHasProduct = false;
  /// Those of the last "I:" line; null before the first one of a configuration.
  std::vector<Endpoint>* fEndpoints = nullptr;
  Device fDevice;
};

/// Finds out where devices are from the chains of their parents.
class Names {
 public:
  explicit Names(const std::vector<Device>& devices) {
    for (const Device& device : devices) fByNumber.try_emplace({device.bus, device.number}, &device);
  }

  /// Nothing where the chain does not lead to a root hub.
  std::optional<DeviceName> NameOf(const Device& device) const {
    std::vector<unsigned> ports;
    const Device* at = &device;
    while (at->level != 0) {
      ports.push_back(at->port);
      const auto parent = fByNumber.find({at->bus, at->parentNumber});
      if (parent == fByNumber.end() || parent->second->level + 1 != at->level) return std::nullopt;
      at = parent->second;
    }
    std::reverse(ports.begin(), ports.end());
    return DeviceName{at->bus, std::move(ports)};
  }

 private:
  std::map<std::pair<unsigned, unsigned>, const Device*> fByNumber;
};

void AddPorts(const Device& hub, const DeviceName& name, const std::set<std::string_view>& plugged,
              std::vector<Port>& ports) {
  for (unsigned number = 1; number <= hub.portCount; ++number) {
    const std::string child = name.Child(number).Text();
    Port port = {.name = name.Port(number),
                 .hub = hub.name,
                 .number = number,
                 .connectType = {},
                 .peer = {},
                 .device = {}};
    if (plugged.count(child) != 0) port.device = child;
    ports.push_back(std::move(port));
  }
}

void AddNamesAndPorts(Topology& topology) {
  const Names names(topology.devices);
  std::vector<std::optional<DeviceName>> found;
  for (const Device& device : topology.devices) found.push_back(names.NameOf(device));
  std::set<std::string_view> plugged;
  for (std::size_t index = 0; index < found.size(); ++index) {
    if (found[index]) plugged.insert(topology.devices[index].name = found[index]->Text());
  }
  for (std::size_t index = 0; index < found.size(); ++index) {
    if (found[index]) AddPorts(topology.devices[index], *found[index], plugged, topology.ports);
  }
}

Stars StarsIn(const std::vector<ListRecord>& records) {
  Stars stars;
  for (const ListRecord& record : records) {
    for (const ListLine& line : record.lines) {
      if (line.Type() == 'C' && HasStar(line.text)) stars.marksConfigurations = true;
      if (line.Type() == 'I' && HasStar(line.text)) stars.marksSettings = true;
    }
  }
  return stars;
}

}  // namespace

Topology ReadDeviceList(std::string_view text) {
  const std::vector<ListRecord> records = RecordsOf(text);
  const Stars stars = StarsIn(records);
  Topology topology;
  for (const ListRecord& record : records) topology.devices.push_back(RecordReader(stars).Read(record));
  AddNamesAndPorts(topology);
  return topology;
}

}  // namespace kernel
