// The decoder, against another one on every sequence of up to three bytes and many of four.
#include <gmock/gmock.h>

#include <initializer_list>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "cli/text/Utf8.h"
#include "tests/cli/support/HostileDevices.h"

namespace usbinfo_test {
namespace {

/// What nlohmann's serializer makes of `text`, which needs no escape, when it is to replace what is not
/// UTF-8.
std::string ReplacedBySerializer(const std::string& text) {
  using nlohmann::json;
  const std::string quoted = json(text).dump(-1, ' ', false, json::error_handler_t::replace);
  return quoted.substr(1, quoted.size() - 2);
}

/// Compares many short texts as one, each followed by a letter that ends what it leaves open.
class Comparison {
 public:
  Comparison() = default;
  Comparison(const Comparison&) = delete;
  Comparison& operator=(const Comparison&) = delete;
  ~Comparison() { Compare(); }

  void Add(std::initializer_list<unsigned int> bytes) {
    constexpr std::size_t kSize = 1 << 16;
    for (const unsigned int byte : bytes) fTexts += static_cast<char>(byte);
    fTexts += 'z';
    if (fTexts.size() >= kSize) Compare();
  }

 private:
  void Compare() {
    const bool isEqual = AsUtf8(fTexts) == ReplacedBySerializer(fTexts);
    EXPECT_TRUE(isEqual) << testing::PrintToString(fTexts);
    fTexts.clear();
  }

  std::string fTexts;
};

// 0x7F stands for all of ASCII: it ends whatever came before it and begins nothing.
constexpr unsigned int kFirst = 0x7F;
constexpr unsigned int kEnd = 0x100;

TEST(FirstCharacter, FindsWhatTheJsonSerializerFindsForEverySequenceOfUpToThreeBytes) {
  Comparison comparison;
  for (unsigned int first = kFirst; first < kEnd; ++first) {
    comparison.Add({first});
    for (unsigned int second = kFirst; second < kEnd; ++second) {
      comparison.Add({first, second});
      for (unsigned int third = kFirst; third < kEnd; ++third) comparison.Add({first, second, third});
    }
  }
}

TEST(FirstCharacter, FindsWhatTheJsonSerializerFindsForSequencesOfFourBytes) {
  constexpr int kSequences = 200000;
  std::mt19937 random(1);
  const auto oneOf = [&random](unsigned int first, unsigned int end) {
    return first + static_cast<unsigned int>(random()) % (end - first);
  };
  Comparison comparison;
  for (int count = 0; count < kSequences; ++count) {
    // From around the leads of four bytes and around the continuations, so that many are valid.
    comparison.Add({oneOf(0xEE, 0xF7), oneOf(kFirst, 0xC2), oneOf(kFirst, 0xC2), oneOf(kFirst, 0xC2)});
  }
}

TEST(FirstCharacter, GivesTheCodeOfEveryCharacter) {
  EXPECT_EQ(cli::FirstCharacter("a\xC3\xA9").code, U'a');
  EXPECT_EQ(cli::FirstCharacter("\xC2\x80").code, 0x80U);
  EXPECT_EQ(cli::FirstCharacter("\xDF\xBF").code, 0x7FFU);
  EXPECT_EQ(cli::FirstCharacter("\xE0\xA0\x80").code, 0x800U);
  EXPECT_EQ(cli::FirstCharacter("\xE2\x82\xACz").code, 0x20ACU);
  EXPECT_EQ(cli::FirstCharacter("\xEF\xBF\xBF").code, 0xFFFFU);
  EXPECT_EQ(cli::FirstCharacter("\xF0\x90\x80\x80").code, 0x10000U);
  EXPECT_EQ(cli::FirstCharacter("\xF4\x8F\xBF\xBF").code, 0x10FFFFU);
}

TEST(FirstCharacter, TakesTheLongestBeginningOfACharacterThatBreaksOff) {
  for (const char* text : {"\xF0", "\xF0\x9F", "\xF0\x9F\x98", "\xE2\x82", "\xC3", "\xFF", "\x80"}) {
    const std::string followed = std::string(text) + "z";
    const cli::Character character = cli::FirstCharacter(followed);
    EXPECT_EQ(character.bytes, text);
    EXPECT_EQ(character.code, 0xFFFDU);
    EXPECT_FALSE(character.isValid);
  }
}

TEST(AppendUtf16Escape, WritesAPairOfSurrogatesBeyondTheFirstPlane) {
  std::string text = "a";
  for (const char32_t code : {0x7FU, 0xFFFFU, 0x10000U, 0xE0001U, 0x10FFFFU}) {
    cli::AppendUtf16Escape("\\x", code, text);
  }
  EXPECT_EQ(text, "a\\x007f\\xffff\\xd800\\xdc00\\xdb40\\xdc01\\xdbff\\xdfff");
}

}  // namespace
}  // namespace usbinfo_test
