#include "tests/fuzz/RecordsTarget.h"

#include <set>
#include <vector>

#include "tests/fuzz/BrokenInvariant.h"
#include "tests/model/ListModel.h"
#include "usbfs/DeviceListCutter.h"

namespace usbinfo_test {

namespace {

std::array<std::string, kFieldCount> FieldsOf(const UsbDevice& device) {
  const topology& place = *device.getTopology();
  const descriptor& codes = *device.getDescriptor();
  const product& identity = *device.getProduct();
  const Interface& interface = *device.getInterface();
  std::array<std::string, kFieldCount> fields = {
      place.getBus(),
      place.getLevel(),
      place.getParentDevice(),
      place.getPort(),
      place.getDeviceLevelNum(),
      place.getDeviceBusNumber(),
      place.getSpeed(),
      place.getConnections(),
      codes.getVersion(),
      codes.getClasscode(),
      codes.getSubClasscode(),
      codes.getProtocol(),
      codes.getConfigs(),
      identity.getVendor(),
      identity.getProduct(),
      identity.getRevision(),
      std::string(),
      interface.getDriver(),
      interface.getClass(),
      interface.getSubClass(),
      interface.getInterface(),
      interface.getProtocol(),
  };
  fields[kPower] = device.getConfiguration()->getPower();
  return fields;
}

void CheckRecord(const UsbDevice& device, const ListRecord& expected) {
  const auto fields = FieldsOf(device);
  for (std::size_t field = 0; field < kFieldCount; ++field) {
    if (field == kVersion) continue;
    RequireEqual(fields[field], std::string(expected.fields[field]), "a field of a record");
  }
  RequireEqual(fields[kVersion], expected.Version(), "the version of a record");
  const deviceInfo& strings = *device.getDeviceInfo();
  RequireEqual(strings.getproduct(), std::string(expected.product), "a product string");
  RequireEqual(strings.getserial(), std::string(expected.serial), "a serial number");
  RequireEqual(strings.getmanufacturer(), std::string(expected.manufacturer), "a manufacturer");
  Require(strings.getUsbHost() == expected.usbHost, "the kind of host controller");
  Require((device.GetDeviceType() == UsbDevice::kHub) == expected.isHub, "the type of a record");
}

std::vector<const void*> ParsersOf(const UsbDevice& device) {
  return {device.getTopology().get(),   device.getDescriptor().get(), device.getInterface().get(),
          device.getDeviceInfo().get(), device.getProduct().get(),    device.getConfiguration().get()};
}

/// Each record owns its six parsers, and a line applied through a copy is seen through the record.
void CheckSharing(const std::vector<UsbDevice>& records) {
  std::set<const void*> parsers;
  for (const UsbDevice& record : records) {
    const auto own = ParsersOf(record);
    parsers.insert(own.begin(), own.end());
    UsbDevice copy = record;
    Require(ParsersOf(copy) == own, "a copy shares its record's parsers");
  }
  RequireCount(parsers.size(), records.size() * 6, "parsers of all records");
  if (records.empty()) return;
  UsbDevice copy = records.back();
  copy.setProduct("P:  Vendor=seen ProdID=through Rev=both");
  RequireEqual(records.back().getProduct()->getVendor(), "seen", "a line applied through a copy");
}

}  // namespace

void CheckRecords(const std::string& text) {
  const ListModel expected(text);
  std::vector<std::string> unmatched;
  auto queue = CutDeviceList(text, [&unmatched](const std::string& type) { unmatched.push_back(type); });
  Require(unmatched == expected.Unmatched(), "the unmatched lines, in order");
  RequireCount(queue.size(), expected.Records().size(), "records");
  std::vector<UsbDevice> records;
  for (; !queue.empty(); queue.pop()) records.push_back(queue.front());
  for (std::size_t index = 0; index < records.size(); ++index) {
    CheckRecord(records[index], expected.Records()[index]);
  }
  CheckSharing(records);
}

}  // namespace usbinfo_test
