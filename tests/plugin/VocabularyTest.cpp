// The vocabulary: the host's schema decides these texts, so they are held here letter for letter and in
// order, both as the constants that the code sees and as the header defines them from top to bottom.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <string>
#include <vector>

#include "plugin/Vocabulary.h"
#include "tests/plugin/VocabularyCopy.h"
#include "tests/support/HostTest.h"

namespace usbinfo_test {
namespace {

/// What the schema demands.
const std::vector<std::string> kTexts = {"plugin",
                                         "cmpi",
                                         "nspID",
                                         "No device connected",
                                         "Device connected",
                                         "/proc/bus/usb/devices",
                                         "Device is started",
                                         "Device is not started",
                                         "KALDO_USBController",
                                         "KALDO_USBPort",
                                         "KALDO_USBHub",
                                         "KALDO_USBDevice",
                                         "KALDO_USBPortOnHub",
                                         "KALDO_USBConnection",
                                         "KALDO_USBControllerHasHub",
                                         "Could not allocate memory.",
                                         "PCI\\",
                                         "ohci",
                                         "uhci",
                                         "ehci",
                                         "Name",
                                         "Description",
                                         "DeviceID",
                                         "OperationalStatus",
                                         "StatusDescriptions",
                                         "CreationClassName",
                                         "SystemCreationClassName",
                                         "SystemName",
                                         "USBVersion",
                                         "HostControllerNumber",
                                         "NumberOfPorts",
                                         "HubName",
                                         "HubDepth",
                                         "PortNumber",
                                         "Speed",
                                         "PortSpeed",
                                         "CurrentConfigValue",
                                         "ClassCode",
                                         "SubclassCode",
                                         "ProtocolCode",
                                         "VendorID",
                                         "USBDeviceID",
                                         "Manufacturer",
                                         "SerialNumber",
                                         "NumberOfConfigs",
                                         "InterfaceType",
                                         "Antecedent",
                                         "Dependent"};

/// The constants as the code sees them, in the same order.
const std::vector<std::string> kConstants = {kReservedPlugin,
                                             kReservedCmpi,
                                             kReservedNspId,
                                             kNoDeviceConnected,
                                             kDeviceConnected,
                                             kUsbDeviceFile,
                                             kDeviceStarted,
                                             kDeviceNotStarted,
                                             kClassUsbController,
                                             kClassUsbPort,
                                             kClassUsbHub,
                                             kClassUsbDevice,
                                             kClassUsbPortOnHub,
                                             kClassUsbConnection,
                                             kClassUsbControllerHasHub,
                                             kOutOfMemory,
                                             kPciPrefix,
                                             kOhci,
                                             kUhci,
                                             kEhci,
                                             kName,
                                             kDescription,
                                             kDeviceID,
                                             kOperationalStatus,
                                             kStatusDescriptions,
                                             kCreationClassName,
                                             kSystemCreationClassName,
                                             kSystemName,
                                             kUSBVersion,
                                             kHostControllerNumber,
                                             kNumberOfPorts,
                                             kHubName,
                                             kHubDepth,
                                             kPortNumber,
                                             kSpeed,
                                             kPortSpeed,
                                             kCurrentConfigValue,
                                             kClassCode,
                                             kSubclassCode,
                                             kProtocolCode,
                                             kVendorID,
                                             kUSBDeviceID,
                                             kManufacturer,
                                             kSerialNumber,
                                             kNumberOfConfigs,
                                             kInterfaceType,
                                             kAntecedent,
                                             kDependent};

/// The header's definitions, comments taken off.
std::string HeaderWithoutComments() {
  return std::regex_replace(ReadFile(SOURCE_DIR "/plugin/Vocabulary.h"), std::regex("//[^\n]*"), "");
}

/// The literals of the header's definitions from top to bottom, backslashes resolved.
std::vector<std::string> TextsInTheHeader() {
  const std::string header = HeaderWithoutComments();
  const std::regex definition(R"(\n\s*const\s+std::string\s+k\w+\s*=\s*"((?:[^"\\]|\\.)*)\"\s*;)");
  std::vector<std::string> texts;
  for (std::sregex_iterator found(header.begin(), header.end(), definition), end; found != end; ++found) {
    texts.push_back(std::regex_replace((*found)[1].str(), std::regex(R"(\\(.))"), "$1"));
  }
  return texts;
}

TEST(Vocabulary, HasFortyEightTexts) {
  EXPECT_EQ(kTexts.size(), 48U);
  EXPECT_EQ(TextsInTheHeader().size(), 48U);
}

TEST(Vocabulary, IsDefinedInTheSchemasOrder) {
  EXPECT_EQ(TextsInTheHeader(), kTexts);
}

TEST(Vocabulary, HeaderDefinesNothingElse) {
  const std::string header = HeaderWithoutComments();
  EXPECT_EQ(std::count(header.begin(), header.end(), ';'), 48);
  EXPECT_EQ(std::count(header.begin(), header.end(), '#'), 2) << "#pragma once and one include";
}

TEST(Vocabulary, ConstantsHoldTheSchemasTexts) {
  EXPECT_EQ(kConstants, kTexts);
}

TEST(Vocabulary, BusPrefixEndsInOneBackslash) {
  EXPECT_THAT(kPciPrefix, ::testing::ElementsAre('P', 'C', 'I', '\x5c'));
}

TEST(Vocabulary, EverySourceFileHoldsItsOwnEqualCopies) {
  EXPECT_EQ(NameInAnotherFile(), kName);
  EXPECT_NE(&NameInAnotherFile(), &kName);
  EXPECT_EQ(ClassUsbPortInAnotherFile(), kClassUsbPort);
  EXPECT_NE(&ClassUsbPortInAnotherFile(), &kClassUsbPort);
}

}  // namespace
}  // namespace usbinfo_test
