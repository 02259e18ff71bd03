// What the parser of policies makes of rules, which texts it accepts, and where it finds the errors of the
// others. Where USBGuard's own parser is installed, it is asked about the same texts.
#include <gmock/gmock.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "cli/policy/PolicyParser.h"
#include "tests/cli/support/CliTest.h"
#include "tests/cli/support/RunCommand.h"

using cli::ParsePolicy;
using cli::PolicyAttribute;
using cli::PolicyRule;
using cli::PolicyTarget;
using cli::PolicyTest;
using cli::SetOperator;
using testing::ElementsAre;
using testing::IsEmpty;

namespace usbinfo_test {
namespace {

/// The rules of a text that must be a policy.
std::vector<PolicyRule> Rules(const std::string& text) {
  return ParsePolicy(text, "rules.conf").rules;
}

std::vector<PolicyTest> Tests(const std::string& rule) {
  return Rules(rule).at(0).tests;
}

TEST(PolicyParser, ReadsTargetsWithTheNumberAndTextOfEachLine) {
  const std::vector<PolicyRule> rules = Rules("# all\n\nallow\nblock # x\n  # y\nreject");
  ASSERT_EQ(rules.size(), 3U);
  EXPECT_EQ(rules[0].target, PolicyTarget::kAllow);
  EXPECT_EQ(rules[0].line, 3U);
  EXPECT_EQ(rules[0].text, "allow");
  EXPECT_EQ(rules[1].target, PolicyTarget::kBlock);
  EXPECT_EQ(rules[1].line, 4U);
  EXPECT_EQ(rules[1].text, "block # x");
  EXPECT_EQ(rules[2].target, PolicyTarget::kReject);
  EXPECT_EQ(rules[2].line, 6U);
  EXPECT_THAT(rules[2].tests, IsEmpty());
}

TEST(PolicyParser, ReadsAnEmptyPolicy) {
  EXPECT_THAT(Rules(""), IsEmpty());
  EXPECT_THAT(Rules("\n\n#"), IsEmpty());
}

TEST(PolicyParser, ReadsEveryAttribute) {
  EXPECT_THAT(
      Tests("allow 1D6B:0002 hash \"h\" parent-hash \"p\" name \"n\" serial \"s\" via-port \"1-2\" "
            "with-interface 0E:01:00 with-connect-type \"hotplug\" label \"l\""),
      ElementsAre(PolicyTest{PolicyAttribute::kId, SetOperator::kEquals, {{"1d6b:0002", false}}},
                  PolicyTest{PolicyAttribute::kHash, SetOperator::kEquals, {{"h", false}}},
                  PolicyTest{PolicyAttribute::kParentHash, SetOperator::kEquals, {{"p", false}}},
                  PolicyTest{PolicyAttribute::kName, SetOperator::kEquals, {{"n", false}}},
                  PolicyTest{PolicyAttribute::kSerial, SetOperator::kEquals, {{"s", false}}},
                  PolicyTest{PolicyAttribute::kViaPort, SetOperator::kEquals, {{"1-2", false}}},
                  PolicyTest{PolicyAttribute::kWithInterface, SetOperator::kEquals, {{"0e:01:00", false}}},
                  PolicyTest{PolicyAttribute::kWithConnectType, SetOperator::kEquals, {{"hotplug", false}}}));
}

TEST(PolicyParser, ReadsTheIdWithAndWithoutItsName) {
  EXPECT_EQ(Tests("allow id 1d6b:0002"), Tests("allow 1d6b:0002"));
}

TEST(PolicyParser, CutsPatternsAtTheirFirstWildcard) {
  const std::vector<PolicyTest> tests = Tests("allow id { *:* 1d6b:* } with-interface { 03:*:* 08:06:* }");
  EXPECT_THAT(tests[0].patterns,
              ElementsAre(cli::PolicyPattern{"", true}, cli::PolicyPattern{"1d6b:", true}));
  EXPECT_THAT(tests[1].patterns,
              ElementsAre(cli::PolicyPattern{"03:", true}, cli::PolicyPattern{"08:06:", true}));
}

TEST(PolicyParser, ReadsEveryOperator) {
  const auto operatorOf = [](const std::string& word) {
    return Tests("allow name " + word + "{ \"a\" }").at(0).setOperator;
  };
  EXPECT_EQ(operatorOf(""), SetOperator::kEquals);
  EXPECT_EQ(operatorOf("all-of "), SetOperator::kAllOf);
  EXPECT_EQ(operatorOf("one-of "), SetOperator::kOneOf);
  EXPECT_EQ(operatorOf("none-of "), SetOperator::kNoneOf);
  EXPECT_EQ(operatorOf("equals "), SetOperator::kEquals);
  EXPECT_EQ(operatorOf("equals-ordered "), SetOperator::kEqualsOrdered);
  EXPECT_EQ(operatorOf("match-all "), SetOperator::kMatchAll);
}

TEST(PolicyParser, KeepsTheOperatorOfEachAttribute) {
  const std::vector<PolicyTest> tests =
      Tests("allow name one-of { \"a\" } serial \"b\" if none-of { false }");
  EXPECT_EQ(tests[0].setOperator, SetOperator::kOneOf);
  EXPECT_EQ(tests[1].setOperator, SetOperator::kEquals);
}

TEST(PolicyParser, TakesWildcardsInTextsForThemselves) {
  EXPECT_THAT(Tests("allow name \"1d6b:*\"")[0].patterns, ElementsAre(cli::PolicyPattern{"1d6b:*", false}));
}

TEST(PolicyParser, UnescapesTexts) {
  EXPECT_EQ(Tests(R"(allow name "a\"b\\c\x41\xfF\x00d#\\x41")")[0].patterns[0].text,
            std::string("a\"b\\cA\xFF\0d#\\x41", 14));
}

TEST(PolicyParser, FindsRulesOutOfForceByTheirConditions) {
  const auto isInForce = [](const std::string& conditions) {
    return Rules("allow if " + conditions).at(0).isInForce;
  };
  EXPECT_TRUE(isInForce("true"));
  EXPECT_FALSE(isInForce("!true"));
  EXPECT_FALSE(isInForce("false"));
  EXPECT_TRUE(isInForce("!false"));
  EXPECT_FALSE(isInForce("{ true false }"));
  EXPECT_TRUE(isInForce("{ true !false }"));
  EXPECT_TRUE(isInForce("one-of { false true }"));
  EXPECT_FALSE(isInForce("one-of { false !true }"));
  EXPECT_TRUE(isInForce("none-of { false false }"));
  EXPECT_FALSE(isInForce("none-of { false true }"));
  EXPECT_TRUE(Rules("allow").at(0).isInForce);
}

TEST(PolicyParser, RefusesConditionsOnMoreThanTheDevice) {
  for (const std::string condition : {"localtime(08:00-17:00)", "allowed-matches(id 1d6b:*)", "rule-applied",
                                      "rule-evaluated(10)", "random(0.5)"}) {
    const std::string name = condition.substr(0, condition.find('('));
    for (const std::string& rule : {"allow if " + condition, "allow if { true !" + condition + " }"}) {
      EXPECT_EQ(UserErrorOf([&] { Rules("block\n" + rule); }),
                "rules.conf:2:" + std::to_string(rule.find(condition) + 1) + ": the condition " + name +
                    " depends on more than the device, so it cannot be checked; leave the condition or the "
                    "rule out");
    }
  }
}

/// Lines of policies.
const std::vector<std::string>& AcceptedTexts() {
  static const std::vector<std::string> texts = {
      "allow",
      "block",
      "reject",
      "allow *:*",
      "allow id *:*",
      "allow 1234:*",
      "allow 1D6b:00AB",
      "allow id { 1d6b:0002 1d6b:0003 }",
      "allow id one-of {1d6b:0002 1d6b:0003}",
      "allow id {  1d6b:0002\t}",
      "allow id none-of { *:* 1d6b:* 1d6b:0002 }",
      "allow name \"\"",
      "allow name {\"\"}",
      "allow name { \"a\"  \"b\"}",
      "allow\tname\t\"a\"",
      "allow  name   \"a\"",
      "allow name \"a\tb\"",
      "allow name \"\xC3\xA4\xFF\x01\x7F\"",
      "allow name \"a\\x41\\\"\\\\\"",
      "allow name \"#x\"",
      "allow name \"a\"#c",
      "allow name \"a\" # c",
      "allow # c",
      "allow# c",
      "allow\t#",
      "# c",
      " \t# c",
      "allow 1d6b:0002# x",
      "allow with-interface 08:*:*",
      "allow with-interface 08:06:*",
      "allow with-interface { 0E:06:50 03:*:* }",
      "allow with-connect-type \"nonsense\"",
      "allow via-port \"nonsense\"",
      "allow hash \"jEP/6WzviqdJ5VSeTUY8PatCNBKeaREvo2OqdplND/o=\" parent-hash one-of { \"a\" \"b\" }",
      "allow label \"a\"",
      "allow label one-of { \"a\" \"b\" }",
      "allow label \"a\" label \"b\"",
      "allow serial one-of { \"a\" \"a\" }",
      "allow if true",
      "allow if !true name \"a\"",
      "allow if {true !true}",
      "allow if match-all { true }",
      "allow if true#x",
      "allow if true(a b)",
      "allow if true( )",
      "allow via-port { \"1-2\" \"1-3\" } with-interface equals-ordered { 03:01:01 03:00:00 } serial none-of "
      "{ "
      "\"\" } name match-all { \"x\" }",
  };
  return texts;
}

struct RefusedText {
  std::string text;
  /// Of what is wrong, from 1.
  int column;
  std::string message;
};

constexpr const char* kNoTarget = "expected allow, block or reject at the start of the line";
constexpr const char* kNoBlank = "expected a blank";
constexpr const char* kNoAttribute =
    "expected id, hash, parent-hash, name, serial, via-port, with-interface, with-connect-type, label or if";
constexpr const char* kNoEnd = "expected a blank or the end of the line";
constexpr const char* kCarriageReturn =
    "the line ends in a carriage return; save the file with the line ends of Unix";
constexpr const char* kNoId = "expected an id such as 1d6b:0002, 1d6b:* or *:*";
constexpr const char* kNoInterface = "expected an interface such as 03:01:02, 03:01:* or 03:*:*";
constexpr const char* kNoText = "expected a text in double quotes";
constexpr const char* kNoTextEnd = "expected the double quote that ends the text";
constexpr const char* kNoEscape =
    "expected a double quote, a backslash or x and two hexadecimal digits after the backslash";
constexpr const char* kNoSet = "expected { after the operator";
constexpr const char* kNoSetEnd = "expected a blank and another value, or }";
constexpr const char* kNoCondition = "expected a condition";
constexpr const char* kUnknownCondition = "there is no such condition";

const std::vector<RefusedText>& RefusedTexts() {
  static const std::vector<RefusedText> texts = {
      {" ", 1, kNoTarget},
      {" allow", 1, kNoTarget},
      {"ALLOW", 1, kNoTarget},
      {"name \"a\"", 1, kNoTarget},
      {"1d6b:0002", 1, kNoTarget},
      {"allow ", 7, kNoAttribute},
      {"allow name \"a\" ", 16, kNoAttribute},
      {"allow\r", 6, kCarriageReturn},
      {"\r", 1, kCarriageReturn},
      {"allow 1d6b:*\r", 13, kCarriageReturn},
      {"allow id\r", 9, kCarriageReturn},
      {"allow it\r", 7, kNoAttribute},
      {"\xEF\xBB\xBF"
       "allow",
       1, "the line begins with a byte order mark; save the file as UTF-8 without one"},
      {"allow1d6b:0002", 6, kNoEnd},
      {"allowid 1d6b:0002", 6, kNoEnd},
      {"allow,", 6, kNoEnd},
      {"allow\vname \"a\"", 6, kNoEnd},
      {"allow allow", 7, kNoId},
      {"allow unknown \"a\"", 7, kNoAttribute},
      {"allow Name \"a\"", 7, kNoAttribute},
      {"allow { 1d6b:0002 }", 7, kNoAttribute},
      {"allow id", 9, kNoBlank},
      {"allow id1d6b:0002", 9, kNoBlank},
      {"allow id \"1d6b:0002\"", 10, kNoId},
      {"allow id *", 10, kNoId},
      {"allow 1d6:0002", 7, kNoId},
      {"allow *:1234", 7, kNoId},
      {"allow id 1d6b:00021", 19, kNoEnd},
      {"allow id 1d6b:**", 16, kNoEnd},
      {"allow id 1d6b:0002,", 19, kNoEnd},
      {"allow 1d6b:0002name \"a\"", 16, kNoEnd},
      {"allow id { 1d6b:0002 }name \"a\"", 23, kNoEnd},
      {"allow serial \"a\" 1d6b:0002", 18, kNoAttribute},
      {"allow id {}", 11, kNoId},
      {"allow id one-of { }", 19, kNoId},
      {"allow id one-of{1d6b:0002}", 16, kNoBlank},
      {"allow id one-of 1d6b:0002", 17, kNoSet},
      {"allow id some-of { 1d6b:0002 }", 10, kNoId},
      {"allow id{1d6b:0002}", 9, kNoBlank},
      {"allow id { 1d6b:0002,1d6b:0003 }", 21, kNoSetEnd},
      {"allow id { 1d6b:0002", 21, kNoSetEnd},
      {"allow 1d6b:0002 id 1d6b:0003", 17, "the rule has id already"},
      {"allow name \"a\" name \"a\"", 16, "the rule has name already"},
      {"allow with-interface *:*:*", 22, kNoInterface},
      {"allow with-interface 08:*:50", 22, kNoInterface},
      {"allow with-interface 8:6:50", 22, kNoInterface},
      {"allow with-interface 08:*", 22, kNoInterface},
      {"allow with-interface \"08:06:50\"", 22, kNoInterface},
      {"allow with-interface 08:06:*5", 29, kNoEnd},
      {"allow name a", 12, kNoText},
      {"allow name 'a'", 12, kNoText},
      {"allow name\"a\"", 11, kNoBlank},
      {"allow name \"a", 14, kNoTextEnd},
      {"allow name \"a\rb\"", 14, kNoTextEnd},
      {"allow name \"a\"serial \"b\"", 15, kNoEnd},
      {"allow name {\"a\"\"b\"}", 16, kNoSetEnd},
      {"allow name \"a\\nb\"", 15, kNoEscape},
      {"allow name \"a\\x4\"", 15, kNoEscape},
      {"allow name \"a\\101\"", 15, kNoEscape},
      {"allow if", 9, kNoBlank},
      {"allow if{true}", 9, kNoBlank},
      {"allow if { }", 12, kNoCondition},
      {"allow if ! true", 10, kNoCondition},
      {"allow if nonsense", 10, kUnknownCondition},
      {"allow if TRUE", 10, kUnknownCondition},
      {"allow if true()", 15, "expected the condition's argument"},
      {"allow if true(1", 16, "expected ) after the condition's argument"},
      {"allow if true (1)", 15, kNoAttribute},
      {"allow if true if false", 15, "the rule has conditions already"},
      {"allow if !{ true }", 10, kNoCondition},
  };
  return texts;
}

TEST(PolicyParser, AcceptsWhatIsOfTheLanguage) {
  for (const std::string& text : AcceptedTexts()) {
    EXPECT_EQ(UserErrorOf([&] { Rules(text); }), "") << text;
  }
}

TEST(PolicyParser, SaysWhereAndWhatIsNotOfTheLanguage) {
  for (const RefusedText& refused : RefusedTexts()) {
    EXPECT_EQ(UserErrorOf([&] { Rules("allow\n" + refused.text + "\nbogus"); }),
              "rules.conf:2:" + std::to_string(refused.column) + ": " + refused.message)
        << refused.text;
  }
}

/// USBGuard's program that parses rules.
class PeerParser {
 public:
  PeerParser() {
    const std::filesystem::path unpacked = SOURCE_DIR "/build/usbguard/usr";
    if (!std::filesystem::exists(unpacked)) return;
    fPath = unpacked / "bin/usbguard-rule-parser";
    for (const auto& folder : std::filesystem::directory_iterator(unpacked / "lib")) {
      if (std::filesystem::exists(folder.path() / "libusbguard.so.1")) fLibraries = folder.path();
    }
  }

  bool IsThere() const { return ::access(fPath.c_str(), X_OK) == 0; }

  bool Accepts(const std::string& text) const {
    const std::string file = fFolder.File("rules.conf", text + "\n");
    return Command({"-f", file}).Program(fPath).Set("LD_LIBRARY_PATH", fLibraries).Run().status == 0;
  }

 private:
  TemporaryFolder fFolder;
  std::string fPath = "/usr/bin/usbguard-rule-parser";
  std::string fLibraries = "/usr/lib";
};

/// Random texts, of the language or close to it.
class RandomRules {
 public:
  explicit RandomRules(unsigned seed) : fRandom(seed) {}

  std::string Next() {
    std::string text;
    for (const char part : OneOf(kForms)) text += Part(part);
    for (std::size_t changes = Below(4) / 2; changes != 0; --changes) Change(text);
    return text;
  }

 private:
  using Words = std::vector<std::string>;

  std::size_t Below(std::size_t end) { return fRandom() % end; }
  std::string OneOf(const Words& words) { return words[Below(words.size())]; }

  /// What stands for a letter of a form.
  std::string Part(char part) {
    switch (part) {
      case 'T':
        return OneOf({"allow", "block", "reject"});
      case 'A':
        fAttribute = OneOf({"id", "with-interface", "name", "serial", "hash", "parent-hash", "via-port",
                            "with-connect-type", "label"});
        return fAttribute;
      case 'O':
        return OneOf({"all-of", "one-of", "none-of", "equals", "equals-ordered", "match-all"});
      case 'V':
        return Value();
      case 'C':
        return OneOf({"true", "false", "!true", "true(1)"});
      default:
        return {part};
    }
  }

  std::string Value() {
    const bool isOfAny = Below(8) == 0;
    if (isOfAny || fAttribute == "id") return OneOf({"1d6b:0002", "1d6b:*", "*:*", "ABCD:00ff"});
    if (fAttribute == "with-interface") return OneOf({"03:01:02", "03:01:*", "08:*:*", "FF:ff:*"});
    return OneOf({"\"a\"", "\"\"", "\"a\\x41\"", "\"b c#\"", "\"\\\"\""});
  }

  void Change(std::string& text) {
    const std::size_t at = Below(text.size());
    const std::string piece =
        OneOf({" ", "\t", "{", "}", "\"",   "#",    ":",    "*",      "!",  "\\",    "a",      "0",
               "",  "",   "(", ")", "\x01", "\xff", " if ", "one-of", "id", "\"x\"", "08:*:50"});
    text.replace(at, Below(2), piece);
    if (text.empty()) text = piece;
  }

  const Words kForms = {
      "T A V", "T A O { V V }",      "T A { V }",          "T A V A V", "T A O {V}", "T if C", "T A V #",
      "T",     "T if O { C C } A V", "T A O { V\tV } A V", "# c",       "T V"};

  std::mt19937 fRandom;
  std::string fAttribute = "id";
};

TEST(PolicyParser, AcceptsTheSameTextsAsUsbguard) {
  const PeerParser peer;
  if (!peer.IsThere()) GTEST_SKIP() << "run tests/fetch_usbguard first";
  for (const std::string& text : AcceptedTexts()) EXPECT_TRUE(peer.Accepts(text)) << text;
  for (const RefusedText& refused : RefusedTexts()) EXPECT_FALSE(peer.Accepts(refused.text)) << refused.text;
}

TEST(PolicyParser, AcceptsTheSameRandomTextsAsUsbguard) {
  constexpr unsigned kSeed = 20261122;
  constexpr int kTexts = 500;
  const PeerParser peer;
  if (!peer.IsThere()) GTEST_SKIP() << "run tests/fetch_usbguard first";
  RandomRules texts(kSeed);
  int accepted = 0;
  for (int count = 0; count < kTexts; ++count) {
    const std::string text = texts.Next();
    const bool isAccepted = UserErrorOf([&] { Rules(text); }).empty();
    EXPECT_EQ(isAccepted, peer.Accepts(text)) << text;
    if (isAccepted) ++accepted;
  }
  // Neither answer is the rare one.
  EXPECT_GT(accepted, kTexts / 4);
  EXPECT_LT(accepted, kTexts * 3 / 4);
}

}  // namespace
}  // namespace usbinfo_test
