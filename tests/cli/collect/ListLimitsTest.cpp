// The quick look at a list: its figures for ordinary and for odd texts, and the exact limits.
#include <gmock/gmock.h>

#include <string>

#include "cli/collect/Collection.h"
#include "cli/collect/ListLimits.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::CheckListLimits;
using cli::ListSize;
using testing::HasSubstr;

namespace usbinfo_test {
namespace {

std::string Record(const std::string& bus, const std::string& level, const std::string& ports) {
  return "T:  Bus=" + bus + " Lev=" + level + " Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=480  MxCh=" + ports +
         "\n\n";
}

const std::string kHubLine = "I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n";

std::string Times(int count, const std::string& text) {
  std::string all;
  for (int number = 0; number < count; ++number) all += text;
  return all;
}

TEST(ListSizeTest, CountsNoLessThanComesOut) {
  for (const std::string& name : CaptureNames()) {
    const ListSize size = ListSize::Of(ReadFile(CapturePath(name)));
    const std::string expected = Expected(name + ".json");
    const auto count = [&expected](const std::string& className) {
      std::size_t found = 0;
      const std::string line = "\"CreationClassName\": \"" + className + "\"";
      for (std::size_t at = 0; (at = expected.find(line, at)) != std::string::npos; ++at) ++found;
      return found;
    };
    EXPECT_GE(size.ports, count("KALDO_USBPort")) << name;
    EXPECT_GE(size.hubs, count("KALDO_USBHub")) << name;
    EXPECT_GE(size.dependents + count("KALDO_USBController"),
              count("KALDO_USBHub") + count("KALDO_USBDevice"))
        << name;
  }
}

TEST(ListSizeTest, CountsPortsAsThePluginDoes) {
  const auto ports = [](const std::string& text) { return ListSize::Of(Record("01", "00", text)).ports; };
  EXPECT_EQ(ports(" 4"), 4U);
  EXPECT_EQ(ports("255"), 255U);
  EXPECT_EQ(ports("256"), 255U);
  EXPECT_EQ(ports("-1"), 255U);
  EXPECT_EQ(ports("+7x"), 7U);
  EXPECT_EQ(ports("99999999999999999999"), 255U);
  EXPECT_EQ(ports("x"), 0U);
  EXPECT_EQ(ListSize::Of("T").ports, 0U);
  EXPECT_EQ(ListSize::Of(" T: MxCh=4").ports, 0U);
  EXPECT_EQ(ListSize::Of("Tmxch=4\nTMXCH=5").ports, 9U);
}

TEST(ListSizeTest, CountsWhatHangsOnAPort) {
  EXPECT_EQ(
      ListSize::Of(Record("01", "00", "0") + Record("01", "01", "0") + Record("01", "17", "0")).dependents,
      2U);
}

TEST(ListSizeTest, CountsTheEscapesOfIdentifiers) {
  const auto bytes = [](const std::string& bus) {
    return ListSize::Of(Record(bus, "00", "3")).identifierBytes;
  };
  // Bus, its blank and the number in the hub itself and its three ports, six times each.
  EXPECT_EQ(bytes("0123"), 6U * 4 * (4 + 1 + 3 + 20));
  EXPECT_EQ(bytes("01\"\\"), bytes("0123") + 6 * 4 * 2 * 3);
}

TEST(ListLimits, AreThoseOfThirtyTwoFullBuses) {
  // 256 hubs of 255 ports and 1 of 256 less: 65,280 times 257 is 16,776,960, and one port more is too much.
  const std::string hubs = Times(256, Record("01", "01", "255")) + Record("01", "01", "0");
  EXPECT_NO_THROW(CheckListLimits(hubs, "the list"));
  EXPECT_EQ(UserErrorOf([&] { CheckListLimits(hubs + Record("01", "00", "1"), "the list"); }),
            "the list is too large: 65281 ports times 257 hubs and devices are 16777217 comparisons, and the "
            "limit is "
            "16777216; if you have the time and the memory, use --no-limits");
  // Hubs at level 0 are not plugged into a port, but their ports are compared with them.
  EXPECT_NE(
      UserErrorOf([] { CheckListLimits(Times(257, Record("01", "00", "255") + kHubLine), "the list"); }), "");
}

TEST(ListLimits, HoldForTheNumberOfRecords) {
  const std::string records = Times(65536, "T:\n");
  EXPECT_NO_THROW(CheckListLimits(records, "the list"));
  EXPECT_EQ(UserErrorOf([&] { CheckListLimits(records + "T:", "the list"); }),
            "the list is too large: it has 65537 records (T: lines), and the limit is 65536; if you have the "
            "time and the memory, use --no-limits");
}

TEST(ListLimits, HoldForTheLengthOfIdentifiers) {
  EXPECT_NO_THROW(CheckListLimits(Record(std::string(170000, 'b'), "00", "255"), "the list"));
  EXPECT_EQ(UserErrorOf([] { CheckListLimits(Record(std::string(180000, 'b'), "00", "255"), "the list"); }),
            "the list is too large: its identifiers take 263 MiB in the inventory, and the limit is 256; if "
            "you have the "
            "memory, use --no-limits");
}

class LimitedListTest : public CliTest {};

TEST_F(LimitedListTest, IsTakenWhereTheUserMeansIt) {
  // Few ports, but many identifiers of a length: quick to make.
  const std::string list = Record(std::string(200000, 'b'), "00", "255");
  cli::LogWriter silent("", cli::LogSeverity::kError, cli::LogFormat::kText);
  cli::Source source;
  source.devices = "list";
  source.plugin = MODULE_PATH;
  EXPECT_THAT(UserErrorOf([&] { cli::CollectFrom(list, source, cli::AllClasses(), silent); }),
              HasSubstr("list is too large: "));
  source.noLimits = true;
  EXPECT_FALSE(cli::CollectFrom(list, source, cli::AllClasses(), silent).IsEmpty());
}

TEST(BoundedInput, EndsAtOnceForADeviceThatNeverDoes) {
  const std::string expected = "usbinfo: cannot read /dev/zero: it has more than 64 MiB; ";
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--devices", "/dev/zero"}, {"diff", "/dev/zero", "/dev/null"}}) {
    const CommandResult result = RunUsbinfo(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, testing::StartsWith(expected));
    EXPECT_EQ(Lines(result.errors).size(), 1U) << result.errors;
  }
  EXPECT_THAT(Command({"--devices", "-"}).InputFrom("/dev/zero").Run().errors,
              testing::StartsWith("usbinfo: cannot read standard input: it has more than 64 MiB; "));
}

}  // namespace
}  // namespace usbinfo_test
