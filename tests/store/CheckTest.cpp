// The check of a whole store against a policy: the same as `usbinfo check` of each machine's last report,
// whatever else the store holds; hosts that cannot be checked; one inventory in memory at a time.
#include <gmock/gmock.h>

#include <algorithm>

#include "cli/policy/PolicyParser.h"
#include "store/HostChecks.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/store/support/StoreTest.h"
#include "tests/store/support/WatchedDatabase.h"

using ::testing::HasSubstr;

namespace usbinfo_test {

namespace {

constexpr const char* kNoPen = "block id 056a:*\nallow\n";
constexpr const char* kPenRefused =
    R"(: 4-1: mouse 056a:0000 "Wacom PenPartner", serial "PEN-1": blocked by standard input:1: block id 056a:*)"
    "\n";

Json OfHost(Json document, const std::string& host) {
  return Json::parse([&] {
    std::string text = document.dump();
    for (std::size_t at = 0; (at = text.find("vm-desktop", at)) != std::string::npos; at += host.size()) {
      text.replace(at, std::string("vm-desktop").size(), host);
    }
    return text;
  }());
}

/// Without the pen, which is the last device.
Json WithoutPen(Json document) {
  for (Json& fact : document["kernel"]["devices"]) {
    if (fact["name"] == "4-1") fact["product"] = "Gone";
  }
  for (Json& device : document["classes"]["KALDO_USBDevice"]) {
    if (device["VendorID"] == 0x056a) device["VendorID"] = 0x1234;
  }
  return document;
}

Json Suspect(Json document) {
  document["origin"]["findings"] = {
      {{"code", "two-t-lines"}, {"lines", {17}}, {"device", "Bus 01  Device   9"}}};
  return document;
}

Json WithMaskedSerials(Json document) {
  document["origin"]["masked"] = {{"key", nullptr}};
  return document;
}

}  // namespace

class StoreCheckTest : public StoreTest {
 protected:
  CommandResult Check(const std::string& policy, std::vector<std::string> arguments = {}) const {
    arguments.insert(arguments.begin(), {"check", "-"});
    return Command(std::move(arguments)).Set("USBINFO_STORE_DB", Name()).Input(policy).Run();
  }
};

TEST_P(StoreCheckTest, ListsWhatIsNotAllowedOnEachHost) {
  Load(OfHost(Desktop(kNow), "b"));
  Load(OfHost(WithoutPen(Desktop(kNow)), "a"));
  Load(OfHost(Desktop(kNow), "c"));
  const CommandResult result = Check(kNoPen);
  EXPECT_EQ(result.output, std::string("b") + kPenRefused + "c" + kPenRefused +
                               "2 of 33 devices not allowed, on 2 of 3 hosts\n");
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.status, 1);
}

TEST_P(StoreCheckTest, PrintsNothingWhereAllIsAllowed) {
  Load(Desktop(kNow));
  const CommandResult result = Check("block id 1234:*", {"--default", "allow"});
  EXPECT_EQ(result.output + result.errors, "");
  EXPECT_EQ(result.status, 0);
}

TEST_P(StoreCheckTest, ChecksTheReportOfTheTimeThatIsNamed) {
  Load(WithoutPen(Desktop(kNow - 2 * kDay)));
  Load(Desktop(kNow - kDay));
  Load(OfHost(Desktop(kNow), "later"));
  EXPECT_EQ(Check(kNoPen, {"--at", "2026-11-20T12:00"}).status, 0);
  EXPECT_EQ(Check(kNoPen, {"--at", "2026-11-21T12:00"}).output,
            std::string("vm-desktop") + kPenRefused + "1 of 11 devices not allowed, on 1 of 1 host\n");
  const CommandResult before = Check(kNoPen, {"--at", "2026-01-01"});
  EXPECT_EQ(before.status, 2);
  EXPECT_EQ(before.errors,
            "usbinfo-store: no host had a report by then; leave --at out to check the last ones\n");
}

TEST_P(StoreCheckTest, ChecksTheOthersWhereOneHostCannotBeChecked) {
  Load(OfHost(Desktop(kNow), "a"));
  Load(OfHost(Suspect(Desktop(kNow)), "b"));
  Load(OfHost(WithMaskedSerials(Desktop(kNow)), "c"));
  const std::string policy = "block serial \"PEN-1\"\nallow\n";
  const CommandResult result = Check(policy);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.errors, "usbinfo-store: 2 of 3 hosts could not be checked; the output says why\n");
  EXPECT_THAT(
      result.output,
      ::testing::MatchesRegex(
          "a: 4-1: mouse 056a:0000 .*: blocked by standard input:1: block serial \"PEN-1\"\n"
          "b: not checked: the kernel does not write line 17 .*; to check anyway, use --allow-suspect\n"
          "c: not checked: standard input:1: the rule needs serial of .*, which is not known: .*\n"
          "1 of 11 devices not allowed, on 1 of 1 host; 2 hosts not checked\n"));

  const Json document = Json::parse(Check(policy, {"--allow-suspect", "--format", "json"}).output);
  ASSERT_EQ(document["hosts"].size(), 3U);
  EXPECT_EQ(document["hosts"][1]["suspect"], true);
  EXPECT_EQ(document["hosts"][1]["deviceCount"], 11);
  EXPECT_EQ(document["hosts"][1]["notAllowedCount"], 1);
  EXPECT_EQ(document["hosts"][1]["notAllowed"][0]["serial"], "PEN-1");
  EXPECT_EQ(document["hosts"][1]["collected"], "2026-11-22T00:00:00Z");
  EXPECT_THAT(document["hosts"][2]["error"].get<std::string>(), HasSubstr("the serial numbers are masked"));
  EXPECT_EQ(document["hosts"][2]["deviceCount"], nullptr);
}

TEST_P(StoreCheckTest, RefusesAStoreWithoutReportsAndAWrongPolicy) {
  const CommandResult empty = Check("allow");
  EXPECT_EQ(empty.status, 2);
  EXPECT_EQ(empty.errors,
            "usbinfo-store: the store has no report; usbinfo-store load takes inventories into it\n");
  Load(Desktop(kNow));
  const CommandResult wrong = Check("allow\npermit\n");
  EXPECT_EQ(wrong.status, 2);
  EXPECT_EQ(wrong.errors,
            "usbinfo-store: standard input:2:1: expected allow, block or reject at the start of the line\n");
}

TEST_P(StoreCheckTest, PutsNoTextOfADeviceAtTheBeginningOfALine) {
  Json document = Desktop(kNow);
  for (Json& fact : document["kernel"]["devices"]) fact["product"] = "x\nvm: not checked: \x1b[2J";
  Load(document);
  const CommandResult result = Check("block");
  EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 12);
  EXPECT_THAT(result.output, HasSubstr(R"("x\nvm: not checked: \x1b[2J")"));
}

TEST_P(StoreCheckTest, HoldsOneInventoryAtATime) {
  for (const char* const host : {"a", "b", "c"}) Load(OfHost(Desktop(kNow), host));

  /// Notes what has been checked when the store is asked for the next report.
  class Log : public store::HostChecks {
   public:
    void Add(const store::HostCheck& check) override { fHosts.push_back(check.host); }
    std::string Take(const store::HostTotals& /*totals*/) override { return {}; }
    std::vector<std::string> fHosts;
  };
  Log log;
  std::vector<std::size_t> checkedBefore;
  WatchedDatabase* watched = nullptr;
  WatchedDatabase database(Db(), [&](std::size_t number, WatchedDatabase::Moment moment) {
    if (moment != WatchedDatabase::Moment::kBefore) return;
    if (watched->Statements()[number - 1].find("FROM item") != std::string::npos) {
      checkedBefore.push_back(log.fHosts.size());
    }
  });
  watched = &database;
  const cli::Policy policy = cli::ParsePolicy("allow", "rules.conf");
  EXPECT_EQ(store::CheckHosts(database, {.policy = policy}, log).devices, 33U);
  EXPECT_EQ(checkedBefore, (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_EQ(log.fHosts, (std::vector<std::string>{"a", "b", "c"}));
}

FOR_BOTH_DATABASES(StoreCheckTest);

}  // namespace usbinfo_test
