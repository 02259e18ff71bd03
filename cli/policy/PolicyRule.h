// A policy: rules that say which USB devices are allowed. The language is that of USBGuard, as
// usbguard-rules.conf(5) describes it.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

enum class PolicyTarget { kAllow, kBlock, kReject };

/// "allow", "block" or "reject".
std::string_view NameOf(PolicyTarget target);

/// What rules compare of a device. Each has a set of values, in most cases of one value.
enum class PolicyAttribute {
  kId,
  kHash,
  kParentHash,
  kName,
  kSerial,
  kViaPort,
  kWithInterface,
  kWithConnectType
};

inline constexpr std::size_t kPolicyAttributeCount = 8;

/// The word of the language, such as "with-interface".
std::string_view NameOf(PolicyAttribute attribute);

/// One of the values that a rule gives for an attribute.
struct PolicyPattern {
  /// Ids and interfaces are in lower case. Of one with wildcards, this is what stands before the first.
  std::string text;
  /// Values that begin with the text are covered, and not the text alone.
  bool isPrefix = false;

  bool Covers(std::string_view value) const;

  bool operator==(const PolicyPattern&) const = default;
};

enum class SetOperator {
  /// Each pattern covers a value of the device.
  kAllOf,
  /// A pattern covers a value.
  kOneOf,
  /// No pattern covers a value.
  kNoneOf,
  /// There are as many patterns as values, and each covers another one.
  kEquals,
  /// The same in the same order.
  kEqualsOrdered,
  /// Each value is covered by a pattern.
  kMatchAll
};

/// What a rule demands of an attribute.
struct PolicyTest {
  PolicyAttribute attribute = PolicyAttribute::kId;
  SetOperator setOperator = SetOperator::kEquals;
  std::vector<PolicyPattern> patterns;

  bool Matches(const std::vector<std::string>& values) const;

  bool operator==(const PolicyTest&) const = default;
};

struct PolicyRule {
  PolicyTarget target = PolicyTarget::kBlock;
  /// All must match; a rule without any is about every device.
  std::vector<PolicyTest> tests;
  /// False where a condition says that the rule never applies.
  bool isInForce = true;
  /// The number of its line, from 1.
  std::size_t line = 0;
  /// The line.
  std::string text;
};

struct Policy {
  /// What messages call it: the path of its file.
  std::string name;
  std::vector<PolicyRule> rules;
  /// For devices that no rule matches.
  PolicyTarget defaultTarget = PolicyTarget::kBlock;

  /// Whether a rule has a hash.
  bool UsesHashes() const;
};

}  // namespace cli
