#include "cli/policy/PolicyRule.h"

#include <algorithm>
#include <tuple>

namespace cli {

namespace {

constexpr std::array<std::string_view, 3> kTargetNames = {"allow", "block", "reject"};

constexpr std::array<std::string_view, kPolicyAttributeCount> kAttributeNames = {
    "id", "hash", "parent-hash", "name", "serial", "via-port", "with-interface", "with-connect-type"};

using Patterns = std::vector<PolicyPattern>;
using Values = std::vector<std::string>;

bool CoversAny(const PolicyPattern& pattern, const Values& values) {
  return std::any_of(values.begin(), values.end(),
                     [&](const std::string& value) { return pattern.Covers(value); });
}

bool IsCovered(const std::string& value, const Patterns& patterns) {
  return std::any_of(patterns.begin(), patterns.end(),
                     [&](const PolicyPattern& pattern) { return pattern.Covers(value); });
}

/// Exact ones first, then longer prefixes before shorter ones.
bool IsNarrower(const PolicyPattern& left, const PolicyPattern& right) {
  return std::make_tuple(left.isPrefix, right.text.size()) <
         std::make_tuple(right.isPrefix, left.text.size());
}

/// Whether each pattern covers a value of its own. The narrowest ones choose first: whatever one of them
/// takes is as good for every wider one that covers it.
bool CoverOneEach(Patterns patterns, Values values) {
  if (patterns.size() != values.size()) return false;
  std::sort(patterns.begin(), patterns.end(), IsNarrower);
  return std::all_of(patterns.begin(), patterns.end(), [&values](const PolicyPattern& pattern) {
    const auto found = std::find_if(values.begin(), values.end(),
                                    [&](const std::string& value) { return pattern.Covers(value); });
    if (found == values.end()) return false;
    values.erase(found);
    return true;
  });
}

bool CoverInOrder(const Patterns& patterns, const Values& values) {
  return std::equal(
      patterns.begin(), patterns.end(), values.begin(), values.end(),
      [](const PolicyPattern& pattern, const std::string& value) { return pattern.Covers(value); });
}

}  // namespace

std::string_view NameOf(PolicyTarget target) {
  return kTargetNames[static_cast<std::size_t>(target)];
}

std::string_view NameOf(PolicyAttribute attribute) {
  return kAttributeNames[static_cast<std::size_t>(attribute)];
}

bool PolicyPattern::Covers(std::string_view value) const {
  return isPrefix ? value.substr(0, text.size()) == text : value == text;
}

bool Policy::UsesHashes() const {
  const auto isHash = [](const PolicyTest& test) {
    return test.attribute == PolicyAttribute::kHash || test.attribute == PolicyAttribute::kParentHash;
  };
  return std::any_of(rules.begin(), rules.end(), [&](const PolicyRule& rule) {
    return std::any_of(rule.tests.begin(), rule.tests.end(), isHash);
  });
}

bool PolicyTest::Matches(const std::vector<std::string>& values) const {
  const auto coversAny = [&values](const PolicyPattern& pattern) { return CoversAny(pattern, values); };
  switch (setOperator) {
    case SetOperator::kAllOf:
      return std::all_of(patterns.begin(), patterns.end(), coversAny);
    case SetOperator::kOneOf:
      return std::any_of(patterns.begin(), patterns.end(), coversAny);
    case SetOperator::kNoneOf:
      return std::none_of(patterns.begin(), patterns.end(), coversAny);
    case SetOperator::kEquals:
      return CoverOneEach(patterns, values);
    case SetOperator::kEqualsOrdered:
      return CoverInOrder(patterns, values);
    case SetOperator::kMatchAll:
      return std::all_of(values.begin(), values.end(),
                         [this](const std::string& value) { return IsCovered(value, patterns); });
  }
  return false;
}

}  // namespace cli
