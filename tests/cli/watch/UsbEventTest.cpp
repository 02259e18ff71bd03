// What is read of the kernel's messages, whole and damaged.
#include <gmock/gmock.h>

#include <map>
#include <string>

#include "cli/watch/UsbEvent.h"

using cli::UsbEvent;

namespace usbinfo_test {
namespace {

UsbEvent Read(const std::string& action, const std::string& name,
              const std::map<std::string, std::string>& properties) {
  return cli::ReadUsbEvent(action, name, [&](const char* property) {
    const auto found = properties.find(property);
    return found == properties.end() ? std::string() : found->second;
  });
}

TEST(UsbEvent, OfADeviceHasItsNumberItsIdAndItsClass) {
  const UsbEvent event =
      Read("add", "1-3.1", {{"DEVNUM", "012"}, {"PRODUCT", "46d/c52b/1201"}, {"TYPE", "239/2/1"}});
  EXPECT_EQ(event.action, UsbEvent::Action::kAdd);
  EXPECT_EQ(event.name, "1-3.1");
  EXPECT_EQ(event.number, 12U);
  EXPECT_EQ(event.vendor, 0x046d);
  EXPECT_EQ(event.product, 0xc52b);
  EXPECT_EQ(event.codes, (kernel::ClassCodes{239, 2, 1}));
}

TEST(UsbEvent, OfAnInterfaceHasItsClassAlone) {
  const UsbEvent event =
      Read("remove", "1-3:1.0", {{"PRODUCT", "46d/c52b/1201"}, {"TYPE", "0/0/0"}, {"INTERFACE", "8/6/80"}});
  EXPECT_EQ(event.action, UsbEvent::Action::kRemove);
  EXPECT_EQ(event.number, 0U);
  EXPECT_EQ(event.vendor, 0);
  EXPECT_EQ(event.codes, (kernel::ClassCodes{8, 6, 80}));
}

TEST(UsbEvent, OfAnotherActionIsNeitherOfBoth) {
  for (const char* action : {"bind", "unbind", "change", ""}) {
    EXPECT_EQ(Read(action, "1-3", {}).action, UsbEvent::Action::kOther) << action;
  }
}

TEST(UsbEvent, LeavesOutWhatIsNoNumber) {
  for (const char* text :
       {"", "/", "1", "1/2", "1/2/", "1/2/3/4", "1/2/3 ", "x/2/3", "-1/2/3", "1//3", "10000/2/3"}) {
    const UsbEvent event = Read("add", "1-3", {{"DEVNUM", text}, {"PRODUCT", text}, {"TYPE", text}});
    EXPECT_EQ(event.vendor, 0) << text;
    EXPECT_EQ(event.product, 0) << text;
    EXPECT_EQ(event.codes, std::nullopt) << text;
    EXPECT_EQ(event.number, std::string(text) == "1" ? 1U : 0U) << text;
  }
  EXPECT_EQ(Read("add", "1-3", {{"TYPE", "256/0/0"}}).codes, std::nullopt);
  EXPECT_EQ(Read("add", "1-3", {{"DEVNUM", "65536"}}).number, 0U);
}

}  // namespace
}  // namespace usbinfo_test
