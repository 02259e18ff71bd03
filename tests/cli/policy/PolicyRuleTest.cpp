// Which sets of values the tests of a rule match, and which rule decides about a device.
#include <gmock/gmock.h>

#include <algorithm>
#include <string>
#include <vector>

#include "cli/policy/PolicyMatcher.h"
#include "cli/policy/PolicyParser.h"
#include "tests/cli/support/CliTest.h"

using cli::PolicyPattern;
using cli::PolicyTarget;
using cli::PolicyTest;
using cli::SetOperator;

namespace usbinfo_test {
namespace {

using Values = std::vector<std::string>;

bool Matches(const std::string& interfaces, const Values& values) {
  const cli::Policy policy = cli::ParsePolicy("allow with-interface " + interfaces, "policy");
  return policy.rules.at(0).tests.at(0).Matches(values);
}

const Values kDiskInterfaces = {"08:06:50", "08:06:62"};
const Values kComposite = {"03:01:01", "08:06:50"};

TEST(SetOperators, AllOfNeedsAValueForEachPattern) {
  EXPECT_TRUE(Matches("all-of { 08:*:* 03:01:* }", kComposite));
  EXPECT_TRUE(Matches("all-of { 08:*:* }", kComposite));
  EXPECT_FALSE(Matches("all-of { 08:*:* 03:*:* }", kDiskInterfaces));
  EXPECT_FALSE(Matches("all-of { 08:*:* }", {}));
}

TEST(SetOperators, OneOfNeedsAValueForAnyPattern) {
  EXPECT_TRUE(Matches("one-of { 09:*:* 03:01:* }", kComposite));
  EXPECT_FALSE(Matches("one-of { 09:*:* 03:*:* }", kDiskInterfaces));
  EXPECT_FALSE(Matches("one-of { 08:*:* }", {}));
}

TEST(SetOperators, NoneOfAllowsNoValueForAnyPattern) {
  EXPECT_TRUE(Matches("none-of { 09:*:* 03:*:* }", kDiskInterfaces));
  EXPECT_FALSE(Matches("none-of { 09:*:* 03:01:01 }", kComposite));
  EXPECT_TRUE(Matches("none-of { 08:*:* }", {}));
}

TEST(SetOperators, MatchAllNeedsAPatternForEachValue) {
  EXPECT_TRUE(Matches("match-all { 08:*:* 03:*:* e0:*:* }", kComposite));
  EXPECT_TRUE(Matches("match-all { 08:*:* }", kDiskInterfaces));
  EXPECT_FALSE(Matches("match-all { 08:*:* }", kComposite));
  EXPECT_TRUE(Matches("match-all { 08:*:* }", {}));
}

TEST(SetOperators, EqualsNeedsAsManyPatternsAsValues) {
  EXPECT_TRUE(Matches("08:*:*", {"08:06:50"}));
  EXPECT_FALSE(Matches("08:*:*", kDiskInterfaces));
  EXPECT_TRUE(Matches("{ 08:*:* 08:*:* }", kDiskInterfaces));
  EXPECT_TRUE(Matches("equals { 08:06:* 03:01:01 }", kComposite));
  EXPECT_FALSE(Matches("equals { 08:06:50 08:06:50 }", kDiskInterfaces));
}

TEST(SetOperators, EqualsOrderedNeedsTheSameOrderToo) {
  EXPECT_TRUE(Matches("equals-ordered { 03:*:* 08:06:50 }", kComposite));
  EXPECT_FALSE(Matches("equals-ordered { 08:06:50 03:*:* }", kComposite));
  EXPECT_FALSE(Matches("equals-ordered { 03:*:* }", kComposite));
}

/// All sequences of up to `most` of `elements`.
template <typename Element>
std::vector<std::vector<Element>> Sequences(const std::vector<Element>& elements, std::size_t most) {
  std::vector<std::vector<Element>> all = {{}};
  for (std::size_t begin = 0; most > 0; --most) {
    const std::size_t end = all.size();
    for (; begin < end; ++begin) {
      for (const Element& element : elements) {
        std::vector<Element> longer = all[begin];
        longer.push_back(element);
        all.push_back(std::move(longer));
      }
    }
  }
  return all;
}

TEST(SetOperators, EqualsIsEqualsOrderedInAnyOrder) {
  const auto patterns = Sequences<PolicyPattern>(
      {{"08:06:50", false}, {"08:06:62", false}, {"08:06:", true}, {"08:", true}, {"", true}}, 3);
  const auto sets = Sequences<std::string>({"08:06:50", "08:06:62", "03:01:01"}, 3);
  for (const std::vector<PolicyPattern>& pattern : patterns) {
    for (const Values& values : sets) {
      PolicyTest ordered{.attribute = {}, .setOperator = SetOperator::kEqualsOrdered, .patterns = pattern};
      Values order = values;
      std::sort(order.begin(), order.end());
      bool isExpected = false;
      do {
        isExpected = isExpected || ordered.Matches(order);
      } while (std::next_permutation(order.begin(), order.end()));
      const PolicyTest equals{.attribute = {}, .setOperator = SetOperator::kEquals, .patterns = pattern};
      ASSERT_EQ(equals.Matches(values), isExpected) << testing::PrintToString(values);
    }
  }
}

/// A device of which all but the hashes is known.
cli::PolicyDevice KnownStick(const cli::Item& item) {
  cli::PolicyDevice device;
  device.item = &item;
  const auto set = [&](cli::PolicyAttribute attribute, const Values& values) {
    device.attributes[static_cast<std::size_t>(attribute)] = values;
  };
  set(cli::PolicyAttribute::kId, {"1234:abcd"});
  set(cli::PolicyAttribute::kName, {"Stick"});
  set(cli::PolicyAttribute::kSerial, {""});
  set(cli::PolicyAttribute::kViaPort, {"1-2"});
  set(cli::PolicyAttribute::kWithInterface, {"08:06:50"});
  set(cli::PolicyAttribute::kWithConnectType, {"hotplug"});
  return device;
}

class Decision : public testing::Test {
 protected:
  cli::PolicyDecision Of(const std::string& text) {
    policy = cli::ParsePolicy(text, "rules.conf");
    return Decide(policy, device);
  }

  cli::Policy policy;
  cli::Item item{cli::ClassId::kDevice};
  cli::PolicyDevice device = KnownStick(item);
};

TEST_F(Decision, IsThatOfTheFirstRuleThatMatches) {
  const cli::PolicyDecision decision =
      Of("block 1234:0000\nreject with-interface 08:*:* name \"Stick\"\nallow 1234:ABCD");
  EXPECT_EQ(decision.target, PolicyTarget::kReject);
  ASSERT_NE(decision.rule, nullptr);
  EXPECT_EQ(decision.rule->line, 2U);
}

TEST_F(Decision, NeedsAllTestsOfARule) {
  for (const std::string attribute : {"id 1234:*", "name \"Stick\"", "serial \"\"", "via-port \"1-2\"",
                                      "with-interface 08:06:50", "with-connect-type \"hotplug\""}) {
    EXPECT_EQ(Of("allow " + attribute).target, PolicyTarget::kAllow) << attribute;
    const std::string name = attribute.substr(0, attribute.find(' '));
    const std::string other = name == "id"               ? "id 1235:*"
                              : name == "with-interface" ? "with-interface 08:06:62"
                                                         : name + " \"stick\"";
    EXPECT_EQ(Of("allow " + other).rule, nullptr) << other;
  }
}

TEST_F(Decision, SkipsRulesThatAreOutOfForce) {
  EXPECT_EQ(Of("reject if false\nallow").target, PolicyTarget::kAllow);
}

TEST_F(Decision, IsTheDefaultWhereNoRuleMatches) {
  EXPECT_EQ(Of("allow 1234:0000").target, PolicyTarget::kBlock);
  policy.defaultTarget = PolicyTarget::kAllow;
  EXPECT_EQ(Decide(policy, device).target, PolicyTarget::kAllow);
  EXPECT_EQ(Decide(policy, device).rule, nullptr);
}

TEST_F(Decision, FailsWhereItDependsOnWhatIsNotKnown) {
  device.attributes.fill(std::nullopt);
  for (const std::string attribute :
       {"hash", "parent-hash", "name", "serial", "via-port", "with-connect-type"}) {
    EXPECT_THAT(
        UserErrorOf([&] { Of("block if false\nallow " + attribute + " \"x\""); }),
        testing::StartsWith("rules.conf:2: the rule needs " + attribute + " of \"\", which is not known: "));
  }
}

TEST_F(Decision, NeedsNothingMoreWhereAnotherAttributeDiffers) {
  EXPECT_EQ(Of("block hash \"x\" id 1234:0000\nallow").target, PolicyTarget::kAllow);
}

}  // namespace
}  // namespace usbinfo_test
