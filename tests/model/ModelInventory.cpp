#include "tests/model/ModelInventory.h"

using standin::HostOperation;

namespace usbinfo_test {

void ModelInventory::InsertText(Properties& properties, const std::string& name, const std::string& text) {
  fHost.Insert(properties, name, fHost.MakeText(text));
}

void ModelInventory::InsertNumber(Properties& properties, const std::string& name, unsigned long number) {
  fHost.Insert(properties, name, fHost.MakeNumber(number));
}

void ModelInventory::File(const std::string& className, const Properties& properties) {
  fHost.OwnStep();
  fEntries[className].push_back(properties);
}

void ModelInventory::Collect(const std::string& className) {
  if (fIsTried) return;
  fIsTried = true;
  fCollector = className;
  if (AcquireList() && !fList.records.empty()) Populate();
}

std::string ModelInventory::ReadFiles() {
  std::string text;
  try {
    if (fHost.FileExists(kProcDeviceFile)) return fHost.CaptureFile(kProcDeviceFile);
    if (fHost.FileExists(kDebugfsDeviceFile)) return fHost.CaptureFile(kDebugfsDeviceFile);
    fHost.RunSystemCommand(kMountCommand);
    if (fHost.FileExists(kProcDeviceFile)) {
      text = fHost.CaptureFile(kProcDeviceFile);
      fHost.RunSystemCommand(kUnmountCommand);
    } else {
      fHost.Log(kStatus, "Could not open usb device file ");
    }
  } catch (ModelHostError&) {
    fHost.Log(kStatus, "Could not read usb device file ");
  }
  return text;
}

bool ModelInventory::RunListCommand() {
  const std::string output = fHost.SpawnListCommand();
  if (!output.empty()) Debug(output);
  if (!output.empty() && output.find("command-not-found") == std::string::npos) return true;
  fHost.Log(kStatus, "USB device file is empty");
  return false;
}

bool ModelInventory::AcquireList() {
  Debug("TUsbData::GetUsbDeviceInfomation: Begin");
  if (ReadFiles().empty() && !RunListCommand()) return false;
  for (const std::string& type : fList.unmatchedTypes) fHost.Log(kStatus, type + " can't match the data");
  Debug("TUsbData::GetUsbDeviceInfomation: End");
  return true;
}

void ModelInventory::Populate() {
  Debug("TUsbData::PopulateData: Begin");
  for (const RecordValues& record : fList.records) {
    if (record.isHub && record.isRoot) FillController(record);
    FillDevice(record);
  }
  Debug("TUsbData::PopulateData: End");
}

void ModelInventory::FillController(const RecordValues& record) {
  Debug("TUsbData::FillControllerProperties: Begin");
  Properties controller;
  InsertText(controller, "Description", record.product);
  InsertText(controller, "DeviceID", record.identifier);
  InsertNumber(controller, "InterfaceType", record.hostKind);
  AddKeys("KALDO_USBController", controller);
  File("KALDO_USBController", controller);
  Debug("TUsbData::FillControllerProperties: End");
}

void ModelInventory::FillPorts(const RecordValues& hub) {
  Debug("TUsbData::FillPortProperties: Begin");
  Debug("Total Ports" + std::to_string(hub.ports));
  for (unsigned int index = 0; index < hub.PortsMade(); ++index) FillPort(hub, index);
  Debug("TUsbData::FillPortProperties: End");
}

void ModelInventory::FillPort(const RecordValues& hub, unsigned int index) {
  Properties port;
  InsertNumber(port, "HubDepth", hub.level);
  InsertText(port, "HubName", hub.identifier);
  const std::string digits = (index < 10 ? "0" : "") + std::to_string(index);
  const std::string identifier = hub.identifier + " Port " + digits;
  for (const char* name : {"DeviceID", "Name", "PortNumber"}) {
    fHost.InsertByWayOfText(port, name, identifier);
  }
  if (hub.megabits != 0) InsertNumber(port, "Speed", hub.megabits * 1000000);
  fHost.Insert(port, "StatusDescriptions", fHost.MakeTextArray("No device connected"));
  AddKeys("KALDO_USBPort", port);
  File("KALDO_USBPort", port);
}

void ModelInventory::FillDevice(const RecordValues& record) {
  Debug("TUsbData::FillDeviceProperties: Begin");
  Properties properties;
  InsertText(properties, "Description", record.product);
  Identify(record, properties);
  Describe(record, properties);
  if (record.isHub) {
    FinishHub(record, properties);
  } else {
    FinishDevice(record, properties);
  }
  Debug("TUsbData::FillDeviceProperties: End");
}

void ModelInventory::Identify(const RecordValues& record, Properties& properties) {
  fHost.InsertByWayOfText(properties, "DeviceID", record.identifier);
  fHost.InsertByWayOfText(properties, "Name", record.identifier);
  if (record.level == 0) return;
  InsertText(properties, "HubName", record.parent);
  fHost.InsertByWayOfText(properties, "PortNumber", record.port);
}

void ModelInventory::Describe(const RecordValues& record, Properties& properties) {
  Debug("TUsbData::DisplayDeviceDescriptor: Begin");
  InsertNumber(properties, "USBVersion", record.version);
  InsertNumber(properties, "ClassCode", record.classCode);
  InsertNumber(properties, "SubclassCode", record.subclassCode);
  InsertNumber(properties, "ProtocolCode", record.protocolCode);
  InsertNumber(properties, "VendorID", record.vendor);
  InsertNumber(properties, "USBDeviceID", record.productNumber);
  fHost.InsertByWayOfText(properties, "Manufacturer", record.manufacturer);
  fHost.InsertByWayOfText(properties, "Description", record.product);
  fHost.InsertByWayOfText(properties, "SerialNumber", record.serial);
  InsertNumber(properties, "NumberOfConfigs", record.configurations);
  Debug("TUsbData::DisplayDeviceDescriptor: End");
}

void ModelInventory::FinishHub(const RecordValues& record, Properties& properties) {
  InsertNumber(properties, "HubDepth", record.level);
  InsertNumber(properties, "NumberOfPorts", record.ports % 256U);
  AddKeys("KALDO_USBHub", properties);
  File("KALDO_USBHub", properties);
  FillPorts(record);
}

void ModelInventory::FinishDevice(const RecordValues& record, Properties& properties) {
  const unsigned long speed = record.megabits;
  Debug("TUsbData::FillDeviceProperties() speed " + std::to_string(speed));
  const int speedClass = speed == 0 ? 0 : speed == 1 ? 1 : speed <= 12 ? 2 : speed <= 480 ? 3 : 4;
  InsertNumber(properties, "Speed", static_cast<unsigned long>(speedClass));
  InsertNumber(properties, "HubDepth", (record.level + 65535UL) % 65536);
  AddKeys("KALDO_USBDevice", properties);
  File("KALDO_USBDevice", properties);
}

void ModelInventory::AddKeys(const std::string& entryClass, Properties& properties) {
  Debug("TUsbData::GetKeyProperties: Begin");
  try {
    fHost.Call(HostOperation::kGetClassNamespace, fCollector);
    fHost.Call(HostOperation::kGetSystemCreationClassName);
    InsertText(properties, "SystemCreationClassName", "KALDO_ComputerSystem");
    fHost.Call(HostOperation::kGetSystemName);
    InsertText(properties, "SystemName", "testhost");
  } catch (ModelHostError&) {
    InsertText(properties, "SystemCreationClassName", "");
    InsertText(properties, "SystemName", "");
  }
  Debug("TUsbData::GetKeyProperties: End");
  InsertText(properties, "CreationClassName", entryClass);
}

}  // namespace usbinfo_test
