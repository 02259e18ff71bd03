// Every text of a document is data, whatever it holds.
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

}  // namespace

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

FOR_BOTH_DATABASES(HostileTextTest);

}  // namespace usbinfo_test
