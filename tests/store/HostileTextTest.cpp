// Every text of a document is data, whatever it holds.
#include <gmock/gmock.h>

#include <limits>
#include <optional>
#include <set>

#include "cli/text/UserError.h"
#include "store/HostName.h"
#include "store/HostUpkeep.h"
#include "store/NodeTable.h"
#include "tests/cli/support/RunCommand.h"
#include "tests/store/support/Diffs.h"
#include "tests/store/support/StoreTest.h"

namespace usbinfo_test {

namespace {

using HostileTextTest = StoreTest;

const std::vector<std::string>& Attacks() {
  static const std::vector<std::string> attacks = {
      "'; DROP TABLE item; --",
      "\"); DELETE FROM host; /*",
      "' OR '1'='1",
      "$1 ? :p1 %s ${x} \\'; COMMIT; --",
      "100% _ ! \\ `",
      std::string("a zero \0 byte", 13),
      "\xF0\x9F\x98\x80 \xE2\x80\xAE reversed",
      std::string(5000, 'x'),
  };
  return attacks;
}

/// Puts `text` into every string that may be any.
void Attack(Json& value, const std::string& text) {
  static const std::vector<std::string> fields = {"Description", "Manufacturer", "SerialNumber", "Name",
                                                  "HubName",     "manufacturer", "product",      "serial",
                                                  "driver",      "connect"};
  if (value.is_array()) {
    for (Json& element : value) Attack(element, text);
  } else if (value.is_object()) {
    for (auto& [name, member] : value.items()) {
      const bool isOpen = std::find(fields.begin(), fields.end(), name) != fields.end();
      if (isOpen && member.is_string()) {
        member = text;
      } else if (name == "nodes" || name == "StatusDescriptions") {
        member = Json::array({text});
      } else {
        Attack(member, text);
      }
    }
  }
}

/// The places of a document that hold a text, each with "*" for the numbers of elements, so that the members
/// of a list count once.
void CollectPlaces(const Json& value, const std::string& place, std::set<std::string>& places) {
  if (value.is_array()) {
    for (const Json& element : value) CollectPlaces(element, place + "/*", places);
  } else if (value.is_object()) {
    for (const auto& [name, member] : value.items()) CollectPlaces(member, place + "/" + name, places);
  } else if (!value.is_boolean()) {
    places.insert(place);
  }
}

/// Puts `next` into all values at such a place.
void Replace(Json& value, const std::string& place, const Json& next) {
  if (place.empty()) {
    value = next;
    return;
  }
  const std::size_t end = std::min(place.find('/', 1), place.size());
  const std::string name = place.substr(1, end - 1);
  for (auto member = value.begin(); member != value.end(); ++member) {
    if (value.is_array() || member.key() == name) Replace(*member, place.substr(end), next);
  }
}

/// Leaves out the elements that have no place which those before them have not.
void Condense(Json& list) {
  std::set<std::string> places;
  Json kept = Json::array();
  for (const Json& element : list) {
    const std::size_t before = places.size();
    CollectPlaces(element, "", places);
    if (places.size() > before) kept.push_back(element);
  }
  list = kept;
}

/// A short document that has everything that documents have.
Json Talkative(store::Seconds collected) {
  Json document = Desktop(collected);
  for (const char* const lists : {"classes", "kernel"}) {
    for (auto& [name, list] : document[lists].items()) Condense(list);
  }
  document["origin"]["machine"] = "a machine";
  document["origin"]["masked"] = {{"key", "0123"}};
  document["origin"]["findings"] = {{{"code", "two-t-lines"}, {"lines", {1}}, {"device", "a device"}}};
  return document;
}

/// As usbinfo prints it; nothing for what is no inventory.
std::optional<std::string> PrintedIfReadable(const Json& document) {
  try {
    return Printed(document);
  } catch (const cli::UserError&) {
    return std::nullopt;
  }
}

}  // namespace

TEST_P(HostileTextTest, AnyValueThatADocumentCanHaveAnywhereIsRefusedOrShownByteForByte) {
  std::set<std::string> places;
  CollectPlaces(Talkative(kNow), "", places);
  const std::string text =
      std::string("'; DROP TABLE item; -- \"$1 ?:p1 \\ %_! \xF0\x9F\x98\x80 \0 \n", 42) + "end";
  std::vector<Json> values = {text, std::numeric_limits<std::uint64_t>::max()};
  // What means nothing to a database is tried on one.
  if (GetParam() == store::Dialect::kSqlite) values.insert(values.end(), {"", nullptr});
  const store::LoadSettings anyMachine{.collected = {}, .permissions = {.newMask = true, .newMachine = true}};
  store::Seconds time = kNow - kDay;
  int taken = 0;
  for (const std::string& place : places) {
    for (const Json& value : values) {
      SCOPED_TRACE(place + " is " + value.dump());
      Json document = Talkative(++time);
      Replace(document, place, value);
      const std::optional<std::string> printed = PrintedIfReadable(document);
      if (!printed) continue;
      const std::string refusal = RefusalOf(document.dump(), anyMachine);
      if (!refusal.empty()) continue;
      ++taken;
      ASSERT_EQ(Shown(document["system"]["name"], time), printed);
    }
  }
  EXPECT_GT(places.size(), 60u);
  EXPECT_GT(taken, 40);
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report"), taken);
}

TEST_P(HostileTextTest, AttacksInEveryTextAreStoredAndFoundAsTheyAre) {
  store::Seconds time = kNow - kDay;
  std::vector<std::string> documents;
  for (const std::string& attack : Attacks()) {
    SCOPED_TRACE(attack.substr(0, 40));
    Json document = Desktop(++time);
    Attack(document, attack);
    document["origin"]["program"] = attack;
    document["origin"]["findings"] = {{{"code", attack}, {"lines", {1}}, {"device", attack}}};
    EXPECT_EQ(Load(document), store::Outcome::kChanged);
    EXPECT_EQ(Shown("vm-desktop", time), Printed(document));
    documents.push_back(document.dump());
    EXPECT_EQ(Count("SELECT COUNT(*) FROM item WHERE until IS NULL AND section IN (1, 3) AND serial IS NULL"),
              0);
  }
  EXPECT_EQ(Count("SELECT COUNT(*) FROM report"), static_cast<std::int64_t>(Attacks().size()));
  // The findings of these reports make them suspect, which the text says, too.
  EXPECT_EQ(StoredDiffs(Db(), "vm-desktop").documents, DiffsOf(documents).documents);
}

TEST_P(HostileTextTest, AttacksInNamesOfHostsAndMachinesAndInGarbageAreData) {
  for (const std::string& attack : Attacks()) {
    SCOPED_TRACE(attack.substr(0, 40));
    Json document = Desktop(kNow);
    document["system"]["name"] = attack;
    document["origin"]["machine"] = attack;
    document["origin"]["masked"] = {{"key", attack}};
    const bool isName = attack.size() < 100 && attack.find('\0') == std::string::npos;
    EXPECT_EQ(RefusalOf(document.dump()).empty(), isName);
    if (isName) {
      EXPECT_EQ(Shown(attack, kNow), Printed(document));
    }
    EXPECT_NE(RefusalOf(attack), "");
  }
  EXPECT_EQ(Count("SELECT COUNT(*) FROM host"), 6);
}

TEST_P(HostileTextTest, AttacksInNamesOfNodesAndNewNamesOfHostsAreData) {
  Load(Desktop(kNow));
  std::string name = "vm-desktop";
  for (const std::string& attack : Attacks()) {
    SCOPED_TRACE(attack.substr(0, 40));
    store::RecordFailure(Db(), attack, attack, kNow);
    store::RecordNode(Db(), attack, name, kNow);
    if (!store::IsHostName(attack)) continue;
    EXPECT_TRUE(store::Rename(Db(), name, attack));
    EXPECT_EQ(Shown(name, kNow), "");
    EXPECT_EQ(Shown(attack, kNow), Printed(Desktop(kNow)));
    name = attack;
  }
  EXPECT_EQ(Count("SELECT COUNT(*) FROM node WHERE reason IS NULL"),
            static_cast<std::int64_t>(Attacks().size()));
  EXPECT_EQ(Count("SELECT COUNT(*) FROM host"), 1);
}

TEST_P(HostileTextTest, WhatIsLookedForIsTakenLiterally) {
  const std::vector<std::string> texts = {"100% _!",     "100x ab!",       "back\\slash",
                                          "' OR '1'='1", "\xC3\x9C MLAUT", "$1 ?:p1"};
  Json document = Desktop(kNow);
  Json& devices = document["classes"]["KALDO_USBDevice"];
  ASSERT_EQ(devices.size(), texts.size());
  for (std::size_t index = 0; index < texts.size(); ++index) {
    devices[index]["Description"] = texts[index];
    devices[index]["SerialNumber"] = texts[index];
  }
  document["kernel"] = nullptr;
  Load(document);
  const auto run = [&](std::vector<std::string> arguments) {
    return Command(std::move(arguments)).Set("USBINFO_STORE_DB", Name()).Run();
  };
  const auto serials = [&](const char* option, const std::string& text) {
    std::string found;
    const Json list = Json::parse(run({"find", option, text, "--format", "json"}).output);
    for (const Json& device : list["devices"]) found += device["serial"].get<std::string>() + "|";
    return found;
  };
  for (const std::string& text : texts) {
    EXPECT_EQ(serials("--serial", text), text + "|");
    EXPECT_EQ(serials("--name", text), text + "|");
  }
  EXPECT_EQ(serials("--name", "% _"), "100% _!|");
  EXPECT_EQ(serials("--name", "_"), "100% _!|");
  EXPECT_EQ(serials("--name", "\\"), "back\\slash|");
  EXPECT_EQ(serials("--name", "k\\S"), "back\\slash|");
  EXPECT_EQ(serials("--name", "'1'='"), "' OR '1'='1|");
  EXPECT_EQ(serials("--serial", "%"), "");
  // Not UTF-8, and longer than any name.
  EXPECT_EQ(serials("--name", "\xFF"), "");
  EXPECT_EQ(serials("--serial", "\xFF"), "");
  EXPECT_EQ(serials("--name", std::string(70000, '%')), "");
  EXPECT_EQ(run({"find", "--kind", "' OR '1'='1"}).status, 2);
  for (const std::string& host : {std::string("' OR '1'='1"), std::string("%"), std::string("vm-deskto_")}) {
    EXPECT_EQ(run({"changes", "--host", host}).status, 1);
    EXPECT_EQ(run({"show", host}).status, 1);
    EXPECT_EQ(run({"forget", host}).status, 1);
    EXPECT_EQ(run({"rename", host, "new"}).status, 1);
  }
  for (const std::string& none :
       {std::string("\xFF"), std::string(254, 'x'), std::string("a\nb"), std::string()}) {
    for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
             {"changes", "--host", none}, {"show", none}, {"forget", none}, {"rename", "vm-desktop", none}}) {
      const CommandResult result = run(command);
      EXPECT_EQ(result.status, 2);
      EXPECT_THAT(result.errors,
                  ::testing::HasSubstr(": is no name of a host; see usbinfo-store " + command[0]));
    }
  }
  EXPECT_EQ(Shown("vm-desktop", kNow), Printed(document));
}

FOR_BOTH_DATABASES(HostileTextTest);

}  // namespace usbinfo_test
