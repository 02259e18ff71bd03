// The values of records; see the header.
#include "tests/faults/ModelRecord.h"

#include <cstdio>

#include "provider/ValueConversion.h"
#include "usbfs/DeviceListCutter.h"

namespace usbinfo_test {

namespace {

unsigned char DigitOf(const std::string& text) {
  return static_cast<unsigned char>(stringToDataType<unsigned char>(text) - 48);
}

void SetPlace(ModelRecord& record, const topology& place) {
  record.isRoot = place.getLevel() == "00";
  record.level = stringToDataType<unsigned short>(place.getLevel());
  record.identifier = "Bus " + place.getBus() + " Device " + place.getDeviceBusNumber();
  char number[8];
  static_cast<void>(std::snprintf(number, sizeof number, "%3hu",
                                  stringToDataType<unsigned short>(place.getParentDevice())));
  record.parent = "Bus " + place.getBus() + " Device " + number;
  record.port = record.parent + " Port " + place.getPort();
  record.ports = stringToDataType<unsigned short>(place.getConnections());
  record.megabits = stringToDataType<unsigned long>(place.getSpeed());
}

void SetDescription(ModelRecord& record, const UsbDevice& device) {
  const deviceInfo& strings = *device.getDeviceInfo();
  record.product = strings.getproduct();
  record.manufacturer = strings.getmanufacturer();
  record.serial = strings.getserial();
  record.hostKind = strings.getUsbHost();
  const descriptor& codes = *device.getDescriptor();
  record.version = stringToDataType<unsigned short>(codes.getVersion());
  record.classCode = DigitOf(codes.getClasscode());
  record.subclassCode = DigitOf(codes.getSubClasscode());
  record.protocolCode = DigitOf(codes.getProtocol());
  record.configurations = DigitOf(codes.getConfigs());
  record.vendor = ExtractDecimalDataToHex<unsigned short>(device.getProduct()->getVendor());
  record.productNumber = ExtractDecimalDataToHex<unsigned short>(device.getProduct()->getProduct());
}

}  // namespace

ModelList ReadModelList(const std::string& text) {
  ModelList list;
  if (text.empty()) return list;
  auto devices =
      CutDeviceList(text, [&list](const std::string& type) { list.unmatchedTypes.push_back(type); });
  for (; !devices.empty(); devices.pop()) {
    ModelRecord record{};
    record.isHub = devices.front().GetDeviceType() == 1;
    SetPlace(record, *devices.front().getTopology());
    SetDescription(record, devices.front());
    list.records.push_back(record);
  }
  return list;
}

}  // namespace usbinfo_test
