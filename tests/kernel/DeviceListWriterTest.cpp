// What the kernel's list cannot show of the recorded machines: strings of all kinds, and speeds that they
// lack.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "kernel/DeviceListWriter.h"

namespace {

using kernel::Device;
using kernel::Topology;
using ::testing::HasSubstr;

std::string ListOf(const Device& device) {
  Topology topology;
  topology.devices.push_back(device);
  return kernel::WriteDeviceList(topology);
}

std::string Utf8(unsigned code) {
  std::string text;
  if (code < 0x80) return {static_cast<char>(code)};
  if (code < 0x800) {
    text += static_cast<char>(0xc0 | code >> 6);
  } else {
    text += static_cast<char>(0xe0 | code >> 12);
    text += static_cast<char>(0x80 | (code >> 6 & 0x3f));
  }
  return text += static_cast<char>(0x80 | (code & 0x3f));
}

/// The characters that end a line, or are controls, in some program or terminal.
bool IsForbidden(unsigned code) {
  return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

TEST(DeviceListWriter, ReplacesControlsAndLineBreaksInStringsAndNothingElse) {
  for (unsigned code = 0; code < 0x10000; ++code) {
    Device device;
    device.product = "a" + Utf8(code) + "T:  b";
    const std::string shown = IsForbidden(code) ? "\xef\xbf\xbd" : Utf8(code);
    ASSERT_THAT(ListOf(device), HasSubstr("\nS:  Product=a" + shown + "T:  b\n")) << code;
  }
}

TEST(DeviceListWriter, KeepsBytesThatAreNoUtf8) {
  Device device;
  device.serial = "\xff\xc2\xe2\x80";
  EXPECT_THAT(ListOf(device), HasSubstr("\nS:  SerialNumber=\xff\xc2\xe2\x80\n"));
}

TEST(DeviceListWriter, KeepsAnEmptyStringApartFromNone) {
  Device device;
  device.manufacturer = "";
  const std::string list = ListOf(device);
  EXPECT_THAT(list, HasSubstr("\nS:  Manufacturer=\n"));
  EXPECT_THAT(list, ::testing::Not(HasSubstr("Product=")));
}

TEST(DeviceListWriter, PrintsTheSpeedsThatTheKernelKnows) {
  const auto speed = [](kernel::Speed value) {
    Device device;
    device.speed = value;
    return ListOf(device).substr(std::string("\nT:  Bus=00 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  0 ").size(),
                                 9);
  };
  EXPECT_EQ(speed(kernel::Speed::kLow), "Spd=1.5  ");
  EXPECT_EQ(speed(kernel::Speed::kSuperPlus), "Spd=10000");
  EXPECT_EQ(speed(kernel::Speed::kUnknown), "Spd=??   ");
}

TEST(DeviceListWriter, PrintsNothingForNoDevices) {
  EXPECT_EQ(kernel::WriteDeviceList({}), "");
}

}  // namespace
