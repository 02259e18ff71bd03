// The names that the plug-in shares with the host's CIM schema, its fixed texts and the device list's path.
// Internal linkage: every source file holds its own copies, built at load after the plug-in object and
// destroyed in reverse. Their order and the constants that no operation reads are part of the vocabulary,
// too.
#pragma once

#include <string>

// Words and keys of the schema.
const std::string kReservedPlugin = "plugin";  // reserved word; not read
const std::string kReservedCmpi = "cmpi";      // reserved word; not read
const std::string kReservedNspId = "nspID";    // reserved key; not read

// Fixed texts and paths.
const std::string kNoDeviceConnected = "No device connected";   // status text of a port without a device
const std::string kDeviceConnected = "Device connected";        // status text of a port with a device
const std::string kUsbDeviceFile = "/proc/bus/usb/devices";     // path of the kernel's device list
const std::string kDeviceStarted = "Device is started";         // status text; not read
const std::string kDeviceNotStarted = "Device is not started";  // status text; not read

// CIM classes.
const std::string kClassUsbController = "KALDO_USBController";
const std::string kClassUsbPort = "KALDO_USBPort";
const std::string kClassUsbHub = "KALDO_USBHub";
const std::string kClassUsbDevice = "KALDO_USBDevice";
const std::string kClassUsbPortOnHub = "KALDO_USBPortOnHub";    // association: hub to port
const std::string kClassUsbConnection = "KALDO_USBConnection";  // association: port to what is plugged in
const std::string kClassUsbControllerHasHub = "KALDO_USBControllerHasHub";  // association; not served

// Reserved texts.
const std::string kOutOfMemory = "Could not allocate memory.";  // error text; not read
const std::string kPciPrefix = "PCI\\";                         // bus identifier prefix; not read
const std::string kOhci = "ohci";                               // host-controller driver tag; not read
const std::string kUhci = "uhci";                               // host-controller driver tag; not read
const std::string kEhci = "ehci";                               // host-controller driver tag; not read

// CIM properties.
const std::string kName = "Name";
const std::string kDescription = "Description";
const std::string kDeviceID = "DeviceID";                                // key
const std::string kOperationalStatus = "OperationalStatus";              // not read
const std::string kStatusDescriptions = "StatusDescriptions";            // array of strings
const std::string kCreationClassName = "CreationClassName";              // key
const std::string kSystemCreationClassName = "SystemCreationClassName";  // key
const std::string kSystemName = "SystemName";                            // key
const std::string kUSBVersion = "USBVersion";
const std::string kHostControllerNumber = "HostControllerNumber";  // not read
const std::string kNumberOfPorts = "NumberOfPorts";
const std::string kHubName = "HubName";
const std::string kHubDepth = "HubDepth";
const std::string kPortNumber = "PortNumber";
const std::string kSpeed = "Speed";
const std::string kPortSpeed = "PortSpeed";                    // not read
const std::string kCurrentConfigValue = "CurrentConfigValue";  // not read
const std::string kClassCode = "ClassCode";
const std::string kSubclassCode = "SubclassCode";
const std::string kProtocolCode = "ProtocolCode";
const std::string kVendorID = "VendorID";
const std::string kUSBDeviceID = "USBDeviceID";
const std::string kManufacturer = "Manufacturer";
const std::string kSerialNumber = "SerialNumber";
const std::string kNumberOfConfigs = "NumberOfConfigs";
const std::string kInterfaceType = "InterfaceType";
const std::string kAntecedent = "Antecedent";  // association reference
const std::string kDependent = "Dependent";    // association reference
