#include "cli/policy/PolicyParser.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <tao/pegtl.hpp>
#include <utility>

#include "cli/text/Text.h"
#include "cli/text/UserError.h"

namespace cli {

namespace {

namespace pegtl = tao::pegtl;

// The grammar of a line without its end.
namespace grammar {

using Blanks = pegtl::star<pegtl::blank>;
using Colon = pegtl::one<':'>;
using Wildcard = pegtl::one<'*'>;
using Byte = pegtl::rep<2, pegtl::xdigit>;
using Number = pegtl::rep<4, pegtl::xdigit>;

// Unlike pegtl::must, this finds the error where `Expected` would begin.
template <typename Expected>
using Must = pegtl::sor<Expected, pegtl::raise<Expected>>;

struct Gap : pegtl::plus<pegtl::blank> {};
struct Comment : pegtl::seq<Blanks, pegtl::one<'#'>, pegtl::star<pegtl::any>> {};

struct DeviceId : pegtl::sor<pegtl::seq<Wildcard, Colon, Wildcard>,
                             pegtl::seq<Number, Colon, pegtl::sor<Wildcard, Number>>> {};
struct InterfaceType : pegtl::seq<Byte, Colon,
                                  pegtl::sor<pegtl::seq<Wildcard, Colon, Wildcard>,
                                             pegtl::seq<Byte, Colon, pegtl::sor<Wildcard, Byte>>>> {};

struct Escape : pegtl::sor<pegtl::one<'"', '\\'>, pegtl::seq<pegtl::one<'x'>, Byte>> {};
struct TextContent
    : pegtl::star<
          pegtl::sor<pegtl::seq<pegtl::one<'\\'>, Must<Escape>>, pegtl::not_one<'"', '\\', '\r', '\n'>>> {};
struct TextEnd : pegtl::one<'"'> {};
struct Text : pegtl::seq<pegtl::one<'"'>, TextContent, Must<TextEnd>> {};

struct Negation : pegtl::one<'!'> {};
struct ConditionName : pegtl::plus<pegtl::sor<pegtl::alpha, pegtl::one<'-'>>> {};
struct ArgumentText : pegtl::plus<pegtl::not_one<')'>> {};
struct ArgumentEnd : pegtl::one<')'> {};
struct Argument : pegtl::seq<pegtl::one<'('>, Must<ArgumentText>, Must<ArgumentEnd>> {};
struct Condition : pegtl::seq<pegtl::opt<Negation>, ConditionName, pegtl::opt<Argument>> {};

// A longer word comes before its beginning.
struct Operator : pegtl::sor<TAO_PEGTL_STRING("all-of"), TAO_PEGTL_STRING("one-of"),
                             TAO_PEGTL_STRING("none-of"), TAO_PEGTL_STRING("equals-ordered"),
                             TAO_PEGTL_STRING("equals"), TAO_PEGTL_STRING("match-all")> {};
struct SetEnd : pegtl::one<'}'> {};
template <typename Value>
struct Set : pegtl::seq<pegtl::one<'{'>, Blanks, Must<Value>, pegtl::star<Gap, Value>, Blanks, Must<SetEnd>> {
};
template <typename Value>
struct Values : pegtl::sor<pegtl::seq<Operator, Must<Gap>, Must<Set<Value>>>, Set<Value>, Must<Value>> {};

struct IdName : TAO_PEGTL_STRING("id") {};
struct InterfaceName : TAO_PEGTL_STRING("with-interface") {};
struct TextName : pegtl::sor<TAO_PEGTL_STRING("hash"), TAO_PEGTL_STRING("parent-hash"),
                             TAO_PEGTL_STRING("name"), TAO_PEGTL_STRING("serial"),
                             TAO_PEGTL_STRING("via-port"), TAO_PEGTL_STRING("with-connect-type")> {};
struct ConditionWord : TAO_PEGTL_STRING("if") {};
template <typename Name, typename Value>
struct Named : pegtl::seq<Name, Must<Gap>, Values<Value>> {};
// It has no effect.
struct Label : pegtl::disable<Named<TAO_PEGTL_STRING("label"), Text>> {};
struct Attribute : pegtl::sor<Named<IdName, DeviceId>, Named<InterfaceName, InterfaceType>,
                              Named<TextName, Text>, Named<ConditionWord, Condition>, Label> {};

// No name of an attribute begins so.
struct BareIdBegin : pegtl::at<pegtl::sor<pegtl::xdigit, Wildcard>> {};
struct BareId : pegtl::seq<BareIdBegin, Must<DeviceId>> {};

struct Target : pegtl::sor<TAO_PEGTL_STRING("allow"), TAO_PEGTL_STRING("block"), TAO_PEGTL_STRING("reject")> {
};
struct End : pegtl::sor<pegtl::eof, Comment> {};
struct Rule : pegtl::seq<Must<Target>, pegtl::opt<Gap, BareId>,
                         pegtl::star<Gap, pegtl::not_at<pegtl::one<'#'>>, Must<Attribute>>, Must<End>> {};
struct Line : pegtl::sor<Comment, Rule> {};

}  // namespace grammar

template <typename Rule>
constexpr const char* kMessage = nullptr;
template <>
constexpr const char* kMessage<grammar::Target> = "expected allow, block or reject at the start of the line";
template <>
constexpr const char* kMessage<grammar::Gap> = "expected a blank";
template <>
constexpr const char* kMessage<grammar::Attribute> =
    "expected id, hash, parent-hash, name, serial, via-port, with-interface, with-connect-type, label or if";
template <>
constexpr const char* kMessage<grammar::End> = "expected a blank or the end of the line";
template <>
constexpr const char* kMessage<grammar::DeviceId> = "expected an id such as 1d6b:0002, 1d6b:* or *:*";
template <>
constexpr const char* kMessage<grammar::InterfaceType> =
    "expected an interface such as 03:01:02, 03:01:* or 03:*:*";
template <>
constexpr const char* kMessage<grammar::Text> = "expected a text in double quotes";
template <>
constexpr const char* kMessage<grammar::TextEnd> = "expected the double quote that ends the text";
template <>
constexpr const char* kMessage<grammar::Escape> =
    R"(expected a double quote, a backslash or x and two hexadecimal digits after the backslash)";
template <>
constexpr const char* kMessage<grammar::Condition> = "expected a condition";
template <>
constexpr const char* kMessage<grammar::ArgumentText> = "expected the condition's argument";
template <>
constexpr const char* kMessage<grammar::ArgumentEnd> = "expected ) after the condition's argument";
template <>
constexpr const char* kMessage<grammar::SetEnd> = "expected a blank and another value, or }";
template <typename Value>
constexpr const char* kMessage<grammar::Set<Value>> = "expected { after the operator";

struct Errors {
  template <typename Rule>
  static constexpr const char* message = kMessage<Rule>;
  /// Only Must raises errors.
  template <typename Rule>
  static constexpr bool raise_on_failure = false;
};

template <typename Rule>
using Control = pegtl::must_if<Errors>::control<Rule>;

SetOperator OperatorOf(std::string_view word) {
  if (word == "all-of") return SetOperator::kAllOf;
  if (word == "one-of") return SetOperator::kOneOf;
  if (word == "none-of") return SetOperator::kNoneOf;
  if (word == "equals-ordered") return SetOperator::kEqualsOrdered;
  return word == "match-all" ? SetOperator::kMatchAll : SetOperator::kEquals;
}

PolicyTarget TargetOf(std::string_view word) {
  if (word == NameOf(PolicyTarget::kAllow)) return PolicyTarget::kAllow;
  return word == NameOf(PolicyTarget::kReject) ? PolicyTarget::kReject : PolicyTarget::kBlock;
}

PolicyAttribute AttributeOf(std::string_view word) {
  std::size_t index = 0;
  while (NameOf(static_cast<PolicyAttribute>(index)) != word) ++index;
  return static_cast<PolicyAttribute>(index);
}

PolicyPattern NumbersOf(std::string_view text) {
  const std::size_t wildcard = text.find('*');
  return {.text = ToLower(text.substr(0, wildcard)), .isPrefix = wildcard != std::string_view::npos};
}

std::string Unescaped(std::string_view content) {
  constexpr int kBase = 16;
  std::string text;
  for (std::size_t index = 0; index < content.size(); ++index) {
    const bool isEscaped = content[index] == '\\';
    if (isEscaped) ++index;
    if (!isEscaped || content[index] != 'x') {
      text += content[index];
      continue;
    }
    const std::string_view digits = content.substr(index + 1, 2);
    unsigned char byte = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), byte, kBase);
    text += static_cast<char>(byte);
    index += digits.size();
  }
  return text;
}

/// The parts of a rule, in the order in which the grammar finds them.
class RuleBuilder {
 public:
  void SetTarget(PolicyTarget target) { fRule.target = target; }

  /// Gives false where the rule has the attribute already.
  bool Begin(PolicyAttribute attribute) {
    const auto isSame = [attribute](const PolicyTest& test) { return test.attribute == attribute; };
    if (std::any_of(fRule.tests.begin(), fRule.tests.end(), isSame)) return false;
    fRule.tests.push_back({.attribute = attribute, .setOperator = SetOperator::kEquals, .patterns = {}});
    fOperator = &fRule.tests.back().setOperator;
    return true;
  }
  /// Gives false where the rule has conditions already.
  bool BeginConditions() {
    fOperator = &fConditionOperator;
    return fConditions.empty();
  }
  void SetOperatorOfValues(SetOperator setOperator) { *fOperator = setOperator; }
  void Add(PolicyPattern pattern) { fRule.tests.back().patterns.push_back(std::move(pattern)); }
  void NegateNext() { fIsNegated = true; }
  void AddCondition(bool isTrue) { fConditions.push_back(isTrue != std::exchange(fIsNegated, false)); }

  PolicyRule Take(std::size_t line, std::string_view text) {
    fRule.isInForce = AreConditionsMet();
    fRule.line = line;
    fRule.text = text;
    return std::move(fRule);
  }

 private:
  bool AreConditionsMet() const {
    const auto isTrue = [](bool condition) { return condition; };
    if (fConditionOperator == SetOperator::kOneOf) {
      return std::any_of(fConditions.begin(), fConditions.end(), isTrue);
    }
    if (fConditionOperator == SetOperator::kNoneOf) {
      return std::none_of(fConditions.begin(), fConditions.end(), isTrue);
    }
    return std::all_of(fConditions.begin(), fConditions.end(), isTrue);
  }

  PolicyRule fRule;
  std::vector<bool> fConditions;
  SetOperator fConditionOperator = SetOperator::kEquals;
  bool fIsNegated = false;
  /// That of the attribute or of the conditions that are being read.
  SetOperator* fOperator = nullptr;
};

template <typename Rule>
struct Action : pegtl::nothing<Rule> {};

template <>
struct Action<grammar::Target> {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    rule.SetTarget(TargetOf(in.string_view()));
  }
};

struct BeginAttribute {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    if (rule.Begin(AttributeOf(in.string_view()))) return;
    throw pegtl::parse_error(fmt::format("the rule has {} already", in.string_view()), in);
  }
};

template <>
struct Action<grammar::IdName> : BeginAttribute {};
template <>
struct Action<grammar::InterfaceName> : BeginAttribute {};
template <>
struct Action<grammar::TextName> : BeginAttribute {};

template <>
struct Action<grammar::BareIdBegin> {
  static void apply0(RuleBuilder& rule) { rule.Begin(PolicyAttribute::kId); }
};

template <>
struct Action<grammar::Operator> {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    rule.SetOperatorOfValues(OperatorOf(in.string_view()));
  }
};

struct AddNumbers {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    rule.Add(NumbersOf(in.string_view()));
  }
};

template <>
struct Action<grammar::DeviceId> : AddNumbers {};
template <>
struct Action<grammar::InterfaceType> : AddNumbers {};

template <>
struct Action<grammar::TextContent> {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    rule.Add({.text = Unescaped(in.string_view()), .isPrefix = false});
  }
};

template <>
struct Action<grammar::ConditionWord> {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    if (!rule.BeginConditions()) throw pegtl::parse_error("the rule has conditions already", in);
  }
};

template <>
struct Action<grammar::Negation> {
  static void apply0(RuleBuilder& rule) { rule.NegateNext(); }
};

template <>
struct Action<grammar::ConditionName> {
  template <typename Input>
  static void apply(const Input& in, RuleBuilder& rule) {
    constexpr std::array<std::string_view, 5> kNotOfDevices = {"localtime", "allowed-matches", "rule-applied",
                                                               "rule-evaluated", "random"};
    const std::string_view name = in.string_view();
    if (std::find(kNotOfDevices.begin(), kNotOfDevices.end(), name) != kNotOfDevices.end()) {
      throw pegtl::parse_error(
          fmt::format("the condition {} depends on more than the device, so it cannot be checked; leave the "
                      "condition or the rule out",
                      name),
          in);
    }
    if (name != "true" && name != "false") throw pegtl::parse_error("there is no such condition", in);
    rule.AddCondition(name == "true");
  }
};

/// What is wrong at the column where the parser stopped, whose own words are `message`. What some editors
/// write unasked cannot be seen in the line, so it is named.
std::string DescribeMistake(std::string_view line, std::size_t column, std::string_view message) {
  if (line.ends_with('\r') && column == line.size()) {
    return "the line ends in a carriage return; save the file with the line ends of Unix";
  }
  if (line.starts_with("\xEF\xBB\xBF")) {
    return "the line begins with a byte order mark; save the file as UTF-8 without one";
  }
  return std::string(message);
}

/// Nothing for a comment.
std::optional<PolicyRule> ParseLine(std::string_view line, std::size_t number, const std::string& name) {
  pegtl::memory_input input(line.data(), line.size(), name);
  RuleBuilder rule;
  try {
    pegtl::parse<grammar::Line, Action, Control>(input, rule);
  } catch (const pegtl::parse_error& error) {
    const std::size_t column = error.positions().front().column;
    throw UserError(
        fmt::format("{}:{}:{}: {}", name, number, column, DescribeMistake(line, column, error.message())));
  }
  const std::size_t first = line.find_first_not_of(" \t");
  if (line[first] == '#') return std::nullopt;
  return rule.Take(number, line);
}

}  // namespace

Policy ParsePolicy(std::string_view text, const std::string& name) {
  Policy policy{.name = name, .rules = {}, .defaultTarget = PolicyTarget::kBlock};
  for (std::size_t number = 1; !text.empty(); ++number) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty()) continue;
    if (std::optional<PolicyRule> rule = ParseLine(line, number, name)) policy.rules.push_back(*rule);
  }
  return policy;
}

}  // namespace cli
