#include "cli/model/KernelJson.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>

#include "cli/model/JsonNode.h"
#include "cli/model/JsonValues.h"
#include "cli/model/Kinds.h"
#include "cli/model/Speed.h"
#include "cli/text/JsonWriter.h"
#include "kernel/DeviceName.h"

namespace cli {

namespace {

constexpr const char* kUsed = "used";
constexpr const char* kFree = "free";
constexpr const char* kLacksConfigurations = "lacksConfigurations";
constexpr const char* kHexadecimalDigits = "0123456789abcdef";

std::string Hexadecimal(std::uint8_t code) {
  return fmt::format("{:02x}", code);
}

std::uint8_t ReadByte(const JsonNode& node) {
  return static_cast<std::uint8_t>(node.Number(std::numeric_limits<std::uint8_t>::max()));
}

std::uint64_t ReadSmallNumber(const JsonNode& node) {
  return node.Number(std::numeric_limits<std::uint16_t>::max());
}

bool IsHexadecimal(std::string_view text) {
  return text.find_first_not_of(kHexadecimalDigits) == std::string_view::npos;
}

std::uint8_t ReadCode(const JsonNode& node) {
  constexpr int kBase = 16;
  const std::string text = node.Text();
  if (text.size() != 2 || !IsHexadecimal(text)) node.Refuse("must be two hexadecimal digits in lower case");
  std::uint8_t code = 0;
  std::from_chars(text.data(), text.data() + text.size(), code, kBase);
  return code;
}

/// "1.00": one or two digits, two digits.
std::string ReadRevision(const JsonNode& node) {
  std::string text = node.Text();
  const std::string_view view = text;
  const std::size_t point = view.find('.');
  const bool isRevision = (point == 1 || point == 2) && view.size() == point + 3 &&
                          IsHexadecimal(view.substr(0, point)) && IsHexadecimal(view.substr(point + 1));
  if (!isRevision) node.Refuse(R"(must be a version such as "1.10")");
  return text;
}

std::string ReadName(const JsonNode& node) {
  std::string text = node.Text();
  const std::optional<kernel::DeviceName> name = kernel::ParseDeviceName(text);
  if (!name || name->Text() != text) node.Refuse(R"(must be a name such as "usb1" or "1-3.1")");
  return text;
}

double ReadSpeed(const JsonNode& node) {
  const double speed = node.Decimal();
  if (!IsRate(speed)) node.Refuse(fmt::format("must be 1.5 or a whole number from 1 to {}", kFastestRate));
  return speed;
}

std::string ReadKind(const JsonNode& node) {
  return node.OneOf(AllKinds());
}

bool ReadIsUsed(const JsonNode& node) {
  return node.OneOf({kUsed, kFree}) == kUsed;
}

InterfaceFacts ReadInterface(const JsonNode& node) {
  return {.configuration = ReadByte(node.Member("configuration")),
          .number = ReadByte(node.Member("number")),
          .setting = ReadByte(node.Member("setting")),
          .isActive = node.Member("active").Bool(),
          .classCode = ReadCode(node.Member("class")),
          .subclass = ReadCode(node.Member("subclass")),
          .protocol = ReadCode(node.Member("protocol")),
          .driver = node.Member("driver").OptionalText()};
}

DeviceFacts ReadDevice(const JsonNode& node) {
  return {.device = node.Member("device").Text(),
          .name = node.Member("name").Optional(ReadName),
          .number = ReadSmallNumber(node.Member("number")),
          .speed = node.Member("speed").Optional(ReadSpeed),
          .manufacturer = node.Member("manufacturer").OptionalText(),
          .product = node.Member("product").OptionalText(),
          .serial = node.Member("serial").OptionalText(),
          .kinds = node.Member("kinds").Each(ReadKind),
          .interfaces = node.Member("interfaces").Each(ReadInterface),
          .maxPower = node.Member("maxPower").Optional(ReadSmallNumber),
          .revision = node.Member("revision").Optional(ReadRevision),
          .nodes = node.Member("nodes").Optional(&JsonNode::Texts),
          .lacksConfigurations =
              node.HasMember(kLacksConfigurations) && node.Member(kLacksConfigurations).Bool()};
}

PortFacts ReadPort(const JsonNode& node) {
  return {.port = node.Member("port").Text(),
          .name = node.Member("name").Optional(ReadName),
          .peer = node.Member("peer").Optional(ReadName),
          .connect = node.Member("connect").OptionalText(),
          .isUsed = node.Member("state").Optional(ReadIsUsed)};
}

}  // namespace

void WriteInterfaceFacts(JsonWriter& json, const InterfaceFacts& interface) {
  json.BeginObject();
  WriteMember(json, "configuration", interface.configuration);
  WriteMember(json, "number", interface.number);
  WriteMember(json, "setting", interface.setting);
  json.Key("active");
  json.Bool(interface.isActive);
  WriteMember(json, "class", Hexadecimal(interface.classCode));
  WriteMember(json, "subclass", Hexadecimal(interface.subclass));
  WriteMember(json, "protocol", Hexadecimal(interface.protocol));
  WriteMember(json, "driver", interface.driver);
  json.EndObject();
}

void WriteDeviceFacts(JsonWriter& json, const DeviceFacts& device) {
  json.BeginObject();
  WriteMember(json, "device", device.device);
  WriteMember(json, "name", device.name);
  WriteMember(json, "number", device.number);
  WriteOptional(json, "speed", device.speed, [&](double speed) { json.Decimal(speed); });
  WriteMember(json, "manufacturer", device.manufacturer);
  WriteMember(json, "product", device.product);
  WriteMember(json, "serial", device.serial);
  WriteMember(json, "kinds", device.kinds);
  WriteList(json, "interfaces", device.interfaces,
            [&](const InterfaceFacts& interface) { WriteInterfaceFacts(json, interface); });
  WriteOptional(json, "maxPower", device.maxPower, [&](std::uint64_t power) { json.Number(power); });
  WriteMember(json, "revision", device.revision);
  WriteOptional(json, "nodes", device.nodes,
                [&](const std::vector<std::string>& nodes) { WriteTexts(json, nodes); });
  if (device.lacksConfigurations) {
    json.Key(kLacksConfigurations);
    json.Bool(true);
  }
  json.EndObject();
}

void WritePortFacts(JsonWriter& json, const PortFacts& port) {
  json.BeginObject();
  WriteMember(json, "port", port.port);
  WriteMember(json, "name", port.name);
  WriteMember(json, "peer", port.peer);
  WriteMember(json, "connect", port.connect);
  WriteOptional(json, "state", port.isUsed, [&](bool isUsed) { json.String(isUsed ? kUsed : kFree); });
  json.EndObject();
}

void WriteKernelFacts(JsonWriter& json, const KernelFacts& facts) {
  json.BeginObject();
  WriteList(json, "devices", facts.devices,
            [&](const DeviceFacts& device) { WriteDeviceFacts(json, device); });
  WriteList(json, "ports", facts.ports, [&](const PortFacts& port) { WritePortFacts(json, port); });
  json.EndObject();
}

KernelFacts ReadKernelFacts(const JsonNode& node) {
  return {.devices = node.Member("devices").Each(ReadDevice), .ports = node.Member("ports").Each(ReadPort)};
}

}  // namespace cli
