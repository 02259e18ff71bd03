// The kernel's names of devices: what they say, how they are ordered, and what is none.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "kernel/DeviceName.h"

namespace {

using kernel::DeviceName;
using kernel::ParseDeviceName;
using ::testing::ElementsAre;

TEST(DeviceName, SaysWhereADeviceIs) {
  const DeviceName device = ParseDeviceName("12-3.10.1").value();
  EXPECT_EQ(device.bus, 12U);
  EXPECT_THAT(device.ports, ElementsAre(3, 10, 1));
  EXPECT_EQ(device.Text(), "12-3.10.1");
  EXPECT_EQ(device.Child(4).Text(), "12-3.10.1.4");
  EXPECT_EQ(device.Interface(1, 2), "12-3.10.1:1.2");
  EXPECT_EQ(device.Port(7), "12-3.10.1-port7");
}

TEST(DeviceName, SaysWhichBusARootHubHas) {
  const DeviceName hub = ParseDeviceName("usb3").value();
  EXPECT_TRUE(hub.IsRootHub());
  EXPECT_EQ(hub.Text(), "usb3");
  EXPECT_EQ(hub.Child(1).Text(), "3-1");
  EXPECT_EQ(hub.Interface(1, 0), "3-0:1.0");
  EXPECT_EQ(hub.Port(2), "usb3-port2");
}

TEST(DeviceName, OrdersAsTheKernelsListDoes) {
  std::set<DeviceName> names;
  for (const char* text : {"10-1", "2-10", "2-2", "2-2.1", "usb10", "usb2"})
    names.insert(*ParseDeviceName(text));
  std::vector<std::string> texts;
  for (const DeviceName& name : names) texts.push_back(name.Text());
  EXPECT_THAT(texts, ElementsAre("usb2", "2-2", "2-2.1", "2-10", "usb10", "10-1"));
}

TEST(DeviceName, IsNoOtherText) {
  for (const char* text : {"",    "usb",  "usbx",  "usb1x", "usb-1", "usb70000",  "1",       "1-",
                           "-1",  "1-0",  "1-256", "1-1.",  "1-.1",  "1-1:1.0",   "1-0:1.0", "a-1",
                           "1-a", "+1-1", "1-+1",  " 1-1",  "1-1 ",  "usb1-port1"}) {
    EXPECT_FALSE(ParseDeviceName(text)) << text;
  }
}

}  // namespace
