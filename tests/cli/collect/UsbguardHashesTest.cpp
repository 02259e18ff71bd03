// The hashes of devices against those that USBGuard itself made of the same machine.
#include <gmock/gmock.h>

#include <map>
#include <string>
#include <utility>

#include "cli/collect/UsbguardHashes.h"
#include "cli/policy/PolicyParser.h"
#include "kernel/SysfsReader.h"
#include "tests/cli/support/CliTest.h"
#include "tests/kernel/RecordedMachine.h"

namespace usbinfo_test {
namespace {

/// The hash of a device and that of what it is plugged into.
using Hashes = std::pair<std::string, std::string>;
using HashesByName = std::map<std::string, Hashes>;

constexpr const char* kKnownMachine = "machine";

HashesByName HashesOf(const SysfsRecord& record) {
  const UnpackedSysfs sysfs(record);
  const kernel::Topology topology =
      kernel::ReadSysfs(sysfs.Root(), {.nodes = false, .ports = false, .descriptors = true});
  cli::KernelFacts facts;
  for (const kernel::Device& device : topology.devices) facts.devices.emplace_back().name = device.name;
  HashesByName hashes;
  for (const cli::DeviceFacts& device : cli::WithHashes(std::move(facts), topology).devices) {
    hashes[device.name.value()] = {device.hash.value_or("unknown"), device.parentHash.value_or("unknown")};
  }
  return hashes;
}

std::string TextOf(const cli::PolicyRule& rule, cli::PolicyAttribute attribute) {
  for (const cli::PolicyTest& test : rule.tests) {
    if (test.attribute == attribute) return test.patterns.at(0).text;
  }
  throw std::out_of_range(rule.text);
}

std::string& FileOf(SysfsRecord& record, const std::string& end) {
  for (auto& [path, file] : record) {
    if (path.ends_with(end)) return file.text;
  }
  throw std::out_of_range(end);
}

TEST(UsbguardHashes, AreThoseOfUsbguard) {
  HashesByName expected;
  const std::string rules = ReadFile(TEST_DATA_DIR "/sysfs/machine.rules");
  for (const cli::PolicyRule& rule : cli::ParsePolicy(rules, "machine.rules").rules) {
    expected[TextOf(rule, cli::PolicyAttribute::kViaPort)] = {
        TextOf(rule, cli::PolicyAttribute::kHash), TextOf(rule, cli::PolicyAttribute::kParentHash)};
  }
  EXPECT_EQ(expected.size(), 26U);
  EXPECT_EQ(HashesOf(ReadRecord(kKnownMachine)), expected);
}

TEST(UsbguardHashes, DependOnEachDescriptorAndStringAndReachWhatIsPluggedIn) {
  const HashesByName before = HashesOf(ReadRecord(kKnownMachine));
  for (const auto& [file, change] : std::map<std::string, void (*)(std::string&)>{
           {"1-2/descriptors", [](std::string& text) { text.back() = 'x'; }},
           {"1-2/product", [](std::string& text) { text.insert(0, "x"); }},
           {"1-2/serial", [](std::string& text) { text.insert(0, "x"); }}}) {
    SysfsRecord record = ReadRecord(kKnownMachine);
    change(FileOf(record, file));
    const HashesByName after = HashesOf(record);
    EXPECT_NE(after.at("1-2").first, before.at("1-2").first) << file;
    EXPECT_EQ(after.at("1-2").second, before.at("1-2").second) << file;
    EXPECT_EQ(after.at("1-2.1").first, before.at("1-2.1").first) << file;
    EXPECT_EQ(after.at("1-2.1").second, after.at("1-2").first) << file;
  }
}

TEST(UsbguardHashes, DependNeitherOnTheVersionOfTheKernelNorOnTheEndOfALine) {
  SysfsRecord record = ReadRecord(kKnownMachine);
  const HashesByName before = HashesOf(record);
  FileOf(record, "usb1/descriptors").replace(12, 2, "\x12\x06");
  FileOf(record, "1-11/product").append("\t\r\n");
  EXPECT_EQ(HashesOf(record), before);
}

TEST(UsbguardHashes, AreMadeOfDescriptorsThatEndBeforeTheRevision) {
  kernel::Topology topology;
  kernel::Device& rootHub = topology.devices.emplace_back();
  rootHub.name = "usb1";
  rootHub.descriptor.vendor = 0x1d6b;
  rootHub.descriptor.product = 2;
  cli::KernelFacts facts;
  facts.devices.emplace_back();
  for (const std::size_t size : {0U, 11U, 13U}) {
    rootHub.rawDescriptors = std::string(size, 'x');
    EXPECT_EQ(cli::WithHashes(facts, topology).devices[0].hash.value().size(), 44U) << size;
  }
}

TEST(UsbguardHashes, AreNotKnownOfWhatARootHubIsPluggedIntoWithoutALinkToIt) {
  kernel::Topology topology;
  topology.devices.emplace_back().name = "usb1";
  cli::KernelFacts facts;
  facts.devices.emplace_back();
  EXPECT_EQ(cli::WithHashes(std::move(facts), topology).devices[0].parentHash, std::nullopt);
}

}  // namespace
}  // namespace usbinfo_test
