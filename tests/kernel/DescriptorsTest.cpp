// The binary descriptors: cut and damaged everywhere, the kernel's limits, and the corrections that no
// recorded machine shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "kernel/DescriptorParser.h"
#include "tests/kernel/RecordedMachine.h"

namespace {

using kernel::Configuration;
using kernel::Descriptors;
using kernel::Endpoint;
using kernel::Interface;
using kernel::ParseDescriptors;
using kernel::ParsingRules;
using kernel::Speed;
using ::testing::ElementsAre;
using ::testing::SizeIs;
using Data = std::vector<std::uint8_t>;

constexpr std::uint8_t kInterrupt = 3;
constexpr std::uint8_t kIsochronous = 1;
constexpr std::uint8_t kBulk = 2;

Data operator+(Data left, const Data& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

Data DeviceWith(std::uint8_t configurations) {
  return {18, 1, 0x00, 0x02, 0xff, 0, 0, 64, 0x34, 0x12, 0x78, 0x56, 0x23, 0x01, 0, 0, 0, configurations};
}

Data ConfigurationOf(std::uint8_t value, const Data& body, std::uint8_t interfaces = 1) {
  const std::size_t size = body.size() + 9;
  return Data{9,
              2,
              static_cast<std::uint8_t>(size),
              static_cast<std::uint8_t>(size >> 8),
              interfaces,
              value,
              0,
              0x80,
              50} +
         body;
}

Data InterfaceOf(std::uint8_t number, std::uint8_t setting, std::uint8_t endpoints) {
  return {9, 4, number, setting, endpoints, 0xff, 0, 0, 0};
}

Data EndpointOf(std::uint8_t address, std::uint8_t attributes, unsigned size, std::uint8_t interval) {
  return {
      7,       5, address, attributes, static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(size >> 8),
      interval};
}

Configuration Parse(const Data& body, const ParsingRules& rules, std::uint8_t interfaces = 1) {
  return ParseDescriptors(DeviceWith(1) + ConfigurationOf(1, body, interfaces), rules)
      .value()
      .configurations.at(0);
}

Endpoint ParseEndpoint(const Data& endpoint, const ParsingRules& rules) {
  return Parse(InterfaceOf(0, 0, 1) + endpoint, rules).interfaces.at(0).settings.at(0).endpoints.at(0);
}

std::vector<Data> RecordedDescriptors() {
  std::vector<Data> all;
  for (const std::string& machine : usbinfo_test::RecordedMachines()) {
    for (const auto& [path, file] : usbinfo_test::ReadRecord(machine)) {
      if (path.ends_with("/descriptors")) all.emplace_back(file.text.begin(), file.text.end());
    }
  }
  return all;
}

/// Where the last configuration begins; the recorded ones are all as long as they say, but for some last
/// ones.
std::size_t LastConfiguration(const Data& file) {
  std::size_t at = 18;
  for (int left = file[17]; left > 1; --left) at += file[at + 2] + 256U * file[at + 3];
  return at;
}

TEST(Descriptors, CutAnywhereAreWholeUpToTheCutOrNothing) {
  for (const Data& file : RecordedDescriptors()) {
    const Descriptors whole = ParseDescriptors(file, {Speed::kHigh, 0}).value();
    const std::size_t last = LastConfiguration(file);
    for (std::size_t size = 0; size <= file.size(); ++size) {
      // A copy of that size, so that a read beyond it is found.
      const Data cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
      const auto found = ParseDescriptors(cut, {Speed::kHigh, 0});
      ASSERT_EQ(found.has_value(), size >= last + 9) << size;
      if (!found) continue;
      EXPECT_EQ(found->device, whole.device);
      ASSERT_EQ(found->configurations.size(), whole.configurations.size());
      for (std::size_t index = 0; index + 1 < found->configurations.size(); ++index) {
        ASSERT_EQ(found->configurations[index], whole.configurations[index]);
      }
    }
  }
}

TEST(Descriptors, WithAnyByteDamagedHaveNoMoreConfigurationsThanTheySay) {
  constexpr std::array<std::uint8_t, 6> kValues = {0, 1, 2, 4, 5, 255};
  for (const Data& file : RecordedDescriptors()) {
    for (std::size_t at = 0; at < file.size(); ++at) {
      for (const std::uint8_t value : kValues) {
        Data damaged = file;
        damaged[at] = value;
        const auto found = ParseDescriptors(damaged, {Speed::kSuper, 0});
        EXPECT_TRUE(!found || found->configurations.size() == damaged[17]);
      }
    }
  }
}

TEST(Descriptors, OfADamagedConfigurationBeforeOthersEndWhereTheKernelCutThem) {
  // It says that it has more bytes than the kernel has kept.
  const Data body = InterfaceOf(0, 0, 1) + EndpointOf(0x81, kBulk, 512, 0);
  Data cut = ConfigurationOf(1, body + Data(9));
  cut.resize(cut.size() - 9);
  const auto found = ParseDescriptors(DeviceWith(2) + cut + ConfigurationOf(2, body), {Speed::kHigh, 0});
  ASSERT_TRUE(found);
  ASSERT_THAT(found->configurations, SizeIs(2));
  EXPECT_EQ(found->configurations[0].interfaces, found->configurations[1].interfaces);
  EXPECT_EQ(found->configurations[1].value, 2);
}

TEST(Descriptors, OfAConfigurationWithinAConfigurationAreSkipped) {
  const Data within = ConfigurationOf(7, {}) + InterfaceOf(1, 0, 0);
  const Data first = ConfigurationOf(1, InterfaceOf(0, 0, 0) + within);
  const auto found = ParseDescriptors(DeviceWith(2) + first + ConfigurationOf(2, {}), {Speed::kHigh, 0});
  ASSERT_TRUE(found);
  EXPECT_EQ(found->configurations.at(0).value, 1);
  EXPECT_THAT(found->configurations.at(0).interfaces, SizeIs(2));
  EXPECT_EQ(found->configurations.at(1).value, 2);
}

TEST(Descriptors, HaveThePowerInTheUnitOfTheSpeed) {
  EXPECT_EQ(Parse({}, {Speed::kHigh, 0}).maxPower, 100);
  EXPECT_EQ(Parse({}, {Speed::kSuper, 0}).maxPower, 400);
  EXPECT_EQ(Parse({}, {Speed::kSuperPlus, 0}).maxPower, 400);
}

TEST(Descriptors, BeyondTheKernelsLimitsAreLeftOut) {
  Data body;
  for (std::uint8_t number = 0; number < 40; ++number) body = body + InterfaceOf(number, 0, 0);
  for (std::uint8_t setting = 1; setting < 200; ++setting) body = body + InterfaceOf(7, setting, 0);
  body = body + InterfaceOf(3, 1, 40);
  for (std::uint8_t number = 1; number < 16; ++number) {
    body = body + EndpointOf(number, kBulk, 64, 0) + EndpointOf(number | 0x80, kBulk, 64, 0);
  }
  body = body + EndpointOf(0x01, kBulk, 64, 0);
  const Configuration found = Parse(body, {Speed::kFull, 0});
  ASSERT_THAT(found.interfaces, SizeIs(32));
  EXPECT_THAT(found.interfaces[7].settings, SizeIs(128));
  EXPECT_THAT(found.interfaces[3].settings.at(1).endpoints, SizeIs(30));
}

TEST(Descriptors, BeyondTheDeclaredInterfacesAreLeftOutWhereTheKernelSaysSo) {
  const Data body = InterfaceOf(0, 0, 0) + InterfaceOf(1, 0, 0);
  EXPECT_THAT(Parse(body, {Speed::kHigh, 0}).interfaces, SizeIs(2));
  EXPECT_THAT(Parse(body, {Speed::kHigh, kernel::kQuirkHonorInterfaceCount}).interfaces, SizeIs(1));
}

TEST(Endpoints, OfLowSpeedHaveNoBulkTransfers) {
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x81, kBulk, 64, 0), {Speed::kLow, 0}),
            (Endpoint{0x81, kInterrupt, 8, 1000}));
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x81, kInterrupt, 9, 0), {Speed::kLow, 0}),
            (Endpoint{0x81, kInterrupt, 8, 10000}));
}

TEST(Endpoints, OfSuperSpeedHaveTheirOwnLimits) {
  const ParsingRules rules{Speed::kSuper, 0};
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x81, kInterrupt, 2000, 8), rules),
            (Endpoint{0x81, kInterrupt, 1024, 16000}));
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x81, kInterrupt, 64, 32), rules),
            (Endpoint{0x81, kInterrupt, 64, 32000}));
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x01, kIsochronous, 1024, 0), rules),
            (Endpoint{0x01, kIsochronous, 1024, 1000}));
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x01, kBulk, 1024, 5), rules), (Endpoint{0x01, kBulk, 1024, 0}));
  EXPECT_EQ(ParseEndpoint(EndpointOf(0x01, 0, 1024, 5), rules), (Endpoint{0x01, 0, 512, 0}));
}

TEST(Endpoints, HaveIntervalsInTheUnitThatTheKernelKnowsThemToHave) {
  const auto interval = [](std::uint8_t value, std::uint32_t quirks) {
    return ParseEndpoint(EndpointOf(0x81, kInterrupt, 8, value), {Speed::kHigh, quirks}).interval;
  };
  EXPECT_EQ(interval(10, 0), 64000U);
  EXPECT_EQ(interval(10, kernel::kQuirkIntervalInFrames), 8000U);
  EXPECT_EQ(interval(10, kernel::kQuirkIntervalInMicroframes), 1000U);
  EXPECT_EQ(interval(0, kernel::kQuirkIntervalInMicroframes), 125U);
}

}  // namespace
