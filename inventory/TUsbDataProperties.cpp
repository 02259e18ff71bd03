// Makes the property maps that the inventory holds for controllers, hubs, ports and devices from the records
// of the device list. The associations compare the names as texts, so names are built in one place and never
// trimmed.
#include <algorithm>
#include <cstdio>

#include "host/TCIMSchemaHelper.h"
#include "host/TQSVException.h"
#include "inventory/TUsbData.h"
#include "plugin/Vocabulary.h"
#include "provider/PropertyInsertion.h"
#include "provider/ValueConversion.h"

using NKESTA20::ICIMNamespace;
using NKESTA20::PropertyMap;
using NKESTA20::TCIMSchemaHelper;
using NKESTA20::TCIMValue;
using NKESTA20::TQSVException;

namespace {

/// The identifier of the controller, hub or device with this number on this bus; both texts unchanged.
std::string DeviceIdentifier(const std::string& bus, const std::string& deviceNumber) {
  return "Bus " + dataToString<std::string>(bus) + " Device " + dataToString<std::string>(deviceNumber);
}

std::string OwnIdentifier(const topology& place) {
  return DeviceIdentifier(place.getBus(), place.getDeviceBusNumber());
}

/// The identifier of the hub that `place` is plugged into, with the parent's number padded as its own line
/// pads it.
std::string ParentIdentifier(const topology& place) {
  constexpr std::size_t kDeviceNumberWidth = 3;
  std::string number =
      dataToString<unsigned short>(stringToDataType<unsigned short>(place.getParentDevice()));
  number.insert(0, kDeviceNumberWidth - std::min(kDeviceNumberWidth, number.length()), ' ');
  return DeviceIdentifier(place.getBus(), number);
}

std::string PortIdentifier(const std::string& hubIdentifier, unsigned int index) {
  char suffix[sizeof " Port 4294967295"];
  static_cast<void>(std::snprintf(suffix, sizeof suffix, " Port %02u", index));
  return hubIdentifier + suffix;
}

/// Inserts `text` unless it is empty, as the host's values render it.
void InsertText(PropertyMap& properties, const std::string& name, const std::string& text) {
  InsertStringProperty(&properties, name, std::string(TCIMValue(text)));
}

/// The digit that `text` begins with, as a number: the first character, whatever it is, minus '0'.
TCIMValue SingleDigit(const std::string& text) {
  return TCIMValue(static_cast<unsigned char>(stringToDataType<unsigned char>(text) - '0'));
}

/// A key's value: never null, whatever the host makes of an empty text.
TCIMValue KeyText(const std::string& text) {
  return text.empty() ? TCIMValue("") : TCIMValue(text);
}

/// The speed class of a device, from its speed in Mbit/s.
unsigned char SpeedClass(unsigned long megabits) {
  enum : unsigned char { kUnknown = 0, kLow = 1, kFull = 2, kHigh = 3, kSuper = 4 };
  constexpr unsigned long kLowMegabits = 1;
  constexpr unsigned long kFullMegabits = 12;
  constexpr unsigned long kHighMegabits = 480;
  if (megabits == 0) return kUnknown;
  if (megabits <= kLowMegabits) return kLow;
  if (megabits <= kFullMegabits) return kFull;
  return megabits <= kHighMegabits ? kHigh : kSuper;
}

}  // namespace

void TUsbData::FillControllerProperties(UsbDevice rootHub) {
  WriteDebug("TUsbData::FillControllerProperties: Begin");
  InsertProperty(&fProperties, kDescription, TCIMValue(rootHub.getDeviceInfo()->getproduct()));
  InsertProperty(&fProperties, kDeviceID, TCIMValue(OwnIdentifier(*rootHub.getTopology())));
  InsertProperty(&fProperties, kInterfaceType, TCIMValue(rootHub.getDeviceInfo()->getUsbHost()));
  GetControllerKeyProperties();
  fUsbControllerData.push_back(fProperties);
  fProperties.clear();
  WriteDebug("TUsbData::FillControllerProperties: End");
}

void TUsbData::FillPortProperties(UsbDevice hub) {
  // A hub has at most 255 ports; a damaged list that claims more gets no further ones.
  constexpr unsigned short kMaxPorts = 255;
  WriteDebug("TUsbData::FillPortProperties: Begin");
  const auto count = stringToDataType<unsigned short>(hub.getTopology()->getConnections());
  WriteDebug("Total Ports" + dataToString<unsigned short>(count));
  for (unsigned int index = 0; index < std::min(count, kMaxPorts); ++index) {
    FillPort(*hub.getTopology(), index);
  }
  WriteDebug("TUsbData::FillPortProperties: End");
}

void TUsbData::FillPort(const topology& hub, unsigned int index) {
  constexpr unsigned long kBitsPerMegabit = 1000000;
  InsertProperty(&fPortProperties, kHubDepth, TCIMValue(stringToDataType<unsigned short>(hub.getLevel())));
  const std::string hubIdentifier = OwnIdentifier(hub);
  InsertProperty(&fPortProperties, kHubName, TCIMValue(hubIdentifier));
  const std::string portIdentifier = PortIdentifier(hubIdentifier, index);
  InsertText(fPortProperties, kDeviceID, portIdentifier);
  InsertText(fPortProperties, kName, portIdentifier);
  InsertText(fPortProperties, kPortNumber, portIdentifier);
  const auto speed = stringToDataType<unsigned long>(hub.getSpeed());
  if (speed != 0) InsertProperty(&fPortProperties, kSpeed, TCIMValue(speed * kBitsPerMegabit));
  InsertProperty(&fPortProperties, kStatusDescriptions, GetStrCimValue({kNoDeviceConnected}));
  GetPortKeyProperties();
  fUsbPortData.push_back(fPortProperties);
  fPortProperties.clear();
}

void TUsbData::FillDeviceProperties(UsbDevice device) {
  WriteDebug("TUsbData::FillDeviceProperties: Begin");
  PropertyMap properties;
  const topology& place = *device.getTopology();
  InsertProperty(&properties, kDescription, TCIMValue(device.getDeviceInfo()->getproduct()));
  const auto level = stringToDataType<unsigned short>(place.getLevel());
  InsertText(properties, kDeviceID, OwnIdentifier(place));
  InsertText(properties, kName, OwnIdentifier(place));
  if (level != 0) {
    const std::string parent = ParentIdentifier(place);
    InsertProperty(&properties, kHubName, TCIMValue(parent));
    InsertText(properties, kPortNumber, parent + " Port " + dataToString<std::string>(place.getPort()));
  }
  DisplayDeviceDescriptor(device, properties);
  if (device.GetDeviceType() == UsbDevice::kHub) {
    FillHub(device, level, properties);
  } else {
    FillDevice(device, level, properties);
  }
  properties.clear();
  WriteDebug("TUsbData::FillDeviceProperties: End");
}

void TUsbData::FillHub(const UsbDevice& hub, unsigned short level, PropertyMap& properties) {
  InsertProperty(&properties, kHubDepth, TCIMValue(level));
  const auto ports = stringToDataType<unsigned short>(hub.getTopology()->getConnections());
  InsertProperty(&properties, kNumberOfPorts, TCIMValue(static_cast<unsigned char>(ports)));
  GetHubKeyProperties(properties);
  fUsbHubData.push_back(properties);
  FillPortProperties(hub);
}

void TUsbData::FillDevice(const UsbDevice& device, unsigned short level, PropertyMap& properties) {
  const auto speed = stringToDataType<unsigned long>(device.getTopology()->getSpeed());
  WriteDebug("TUsbData::FillDeviceProperties() speed " + dataToString<unsigned long>(speed));
  InsertProperty(&properties, kSpeed, TCIMValue(SpeedClass(speed)));
  // The depth of the hub that it is plugged into, which is also that of the hub's ports; wraps at level 0.
  InsertProperty(&properties, kHubDepth, TCIMValue(static_cast<unsigned short>(level - 1)));
  GetDeviceKeyProperties(properties);
  fUsbDeviceData.push_back(properties);
}

void TUsbData::DisplayDeviceDescriptor(UsbDevice device, PropertyMap& properties) {
  WriteDebug("TUsbData::DisplayDeviceDescriptor: Begin");
  const descriptor& codes = *device.getDescriptor();
  const product& identity = *device.getProduct();
  const deviceInfo& strings = *device.getDeviceInfo();
  InsertProperty(&properties, kUSBVersion, TCIMValue(stringToDataType<unsigned short>(codes.getVersion())));
  InsertProperty(&properties, kClassCode, SingleDigit(codes.getClasscode()));
  InsertProperty(&properties, kSubclassCode, SingleDigit(codes.getSubClasscode()));
  InsertProperty(&properties, kProtocolCode, SingleDigit(codes.getProtocol()));
  InsertProperty(&properties, kVendorID,
                 TCIMValue(ExtractDecimalDataToHex<unsigned short>(identity.getVendor())));
  InsertProperty(&properties, kUSBDeviceID,
                 TCIMValue(ExtractDecimalDataToHex<unsigned short>(identity.getProduct())));
  InsertText(properties, kManufacturer, strings.getmanufacturer());
  InsertText(properties, kDescription, strings.getproduct());
  InsertText(properties, kSerialNumber, strings.getserial());
  InsertProperty(&properties, kNumberOfConfigs, SingleDigit(codes.getConfigs()));
  WriteDebug("TUsbData::DisplayDeviceDescriptor: End");
}

TCIMValue TUsbData::GetStrCimValue(std::vector<std::string> texts) {
  return MakeStringArrayValue(texts);
}

void TUsbData::GetKeyProperties(PropertyMap& properties) {
  WriteDebug("TUsbData::GetKeyProperties: Begin");
  try {
    const boost::shared_ptr<ICIMNamespace> ns = GetCIMClass()->GetNamespace(PropertyMap());
    InsertProperty(&properties, kSystemCreationClassName,
                   KeyText(TCIMSchemaHelper::GetSystemCreationClassName(ns)));
    InsertProperty(&properties, kSystemName, KeyText(TCIMSchemaHelper::GetSystemName(ns)));
  } catch (TQSVException&) {
    InsertProperty(&properties, kSystemCreationClassName, TCIMValue(""));
    InsertProperty(&properties, kSystemName, TCIMValue(""));
  }
  WriteDebug("TUsbData::GetKeyProperties: End");
}

void TUsbData::GetControllerKeyProperties() {
  GetKeyProperties(fProperties);
  InsertProperty(&fProperties, kCreationClassName, TCIMValue(kClassUsbController));
}

void TUsbData::GetHubKeyProperties(PropertyMap& properties) {
  GetKeyProperties(properties);
  InsertProperty(&properties, kCreationClassName, TCIMValue(kClassUsbHub));
}

void TUsbData::GetPortKeyProperties() {
  GetKeyProperties(fPortProperties);
  InsertProperty(&fPortProperties, kCreationClassName, TCIMValue(kClassUsbPort));
}

void TUsbData::GetDeviceKeyProperties(PropertyMap& properties) {
  GetKeyProperties(properties);
  InsertProperty(&properties, kCreationClassName, TCIMValue(kClassUsbDevice));
}
