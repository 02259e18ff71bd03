#include "tests/cli/watch/Replay.h"

#include <gtest/gtest.h>

#include <set>

#include "kernel/DeviceName.h"

using nlohmann::json;

namespace usbinfo_test {

namespace {

bool IsHubOrDevice(const json& item) {
  return item["class"] == "KALDO_USBHub" || item["class"] == "KALDO_USBDevice";
}

std::string Summary(const std::string& className, const json& properties) {
  return className + " " + properties["VendorID"].dump() + ":" + properties["USBDeviceID"].dump() + " " +
         properties["Description"].dump() + " " + properties["SerialNumber"].dump();
}

std::string SummaryOf(const json& item) {
  return Summary(item["class"], item["properties"]);
}

/// Where the difference puts what was at each place; empty for what it removes.
struct Fates {
  std::map<std::string, std::string> places;
  DevicesByPlace summaries;
};

Fates FatesIn(const json& difference, const DevicesByPlace& before) {
  Fates fates;
  const auto take = [&](const json& item, const std::string& place) {
    EXPECT_EQ(before.count(item["place"]), 1U) << item;
    EXPECT_EQ(before.at(item["place"]), SummaryOf(item));
    EXPECT_TRUE(fates.places.emplace(item["place"], place).second) << item;
  };
  for (const json& item : difference["removed"]) {
    if (IsHubOrDevice(item)) take(item, "");
  }
  for (const char* list : {"moved", "changed"}) {
    for (const json& change : difference[list]) {
      if (!IsHubOrDevice(change["old"])) continue;
      take(change["old"], change["new"]["place"]);
      fates.summaries[change["old"]["place"]] = SummaryOf(change["new"]);
    }
  }
  return fates;
}

void Put(const std::string& place, const std::string& summary, DevicesByPlace& devices) {
  EXPECT_TRUE(devices.emplace(place, summary).second) << place << " is taken by " << devices[place];
}

}  // namespace

DevicesByPlace DevicesOf(const json& inventory) {
  std::map<std::string, std::string> names;
  for (const json& facts : inventory["kernel"]["devices"]) names[facts["device"]] = facts["name"];
  DevicesByPlace devices;
  for (const char* className : {"KALDO_USBHub", "KALDO_USBDevice"}) {
    for (const json& properties : inventory["classes"][className]) {
      Put(names.at(properties["DeviceID"]), Summary(className, properties), devices);
    }
  }
  return devices;
}

DevicesByPlace Apply(const json& difference, const DevicesByPlace& before) {
  const Fates fates = FatesIn(difference, before);
  std::set<kernel::DeviceName> inOrder;
  for (const auto& [place, summary] : before) inOrder.insert(kernel::ParseDeviceName(place).value());
  std::map<kernel::DeviceName, kernel::DeviceName> moved;
  DevicesByPlace after;
  for (const kernel::DeviceName& old : inOrder) {
    const auto fate = fates.places.find(old.Text());
    if (fate != fates.places.end() && fate->second.empty()) continue;
    kernel::DeviceName now = old;
    if (fate != fates.places.end()) {
      now = kernel::ParseDeviceName(fate->second).value();
    } else if (!old.IsRootHub()) {
      kernel::DeviceName hub = old;
      hub.ports.pop_back();
      EXPECT_EQ(moved.count(hub), 1U) << old.Text() << " is left over on a hub that was removed";
      now = moved[hub].Child(old.ports.back());
    }
    moved[old] = now;
    const auto changed = fates.summaries.find(old.Text());
    Put(now.Text(), changed == fates.summaries.end() ? before.at(old.Text()) : changed->second, after);
  }
  for (const json& item : difference["added"]) {
    if (IsHubOrDevice(item)) Put(item["place"], SummaryOf(item), after);
  }
  return after;
}

}  // namespace usbinfo_test
