// Conversions between text and numbers: their bases and edges decide every property value. The results are
// those of the standard library's formatted extraction in the classic locale, whatever the host has set.
#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <new>
#include <sstream>
#include <string>

#include "provider/ValueConversion.h"
#include "tests/provider/ForeignLocale.h"
#include "tests/support/Allocations.h"

namespace {

using usbinfo_test::Allocations;
using usbinfo_test::ForeignCLocale;
using usbinfo_test::ForeignGlobalLocale;

constexpr unsigned short kLargestShort = 65535;
constexpr unsigned long kLargestLong = std::numeric_limits<unsigned long>::max();

/// A text with a NUL byte between its two parts.
std::string WithNul(const std::string& before, const std::string& after) {
  return before + std::string(1, '\0') + after;
}

unsigned short ToShort(const std::string& text) {
  return stringToDataType<unsigned short>(text);
}

unsigned long ToLong(const std::string& text) {
  return stringToDataType<unsigned long>(text);
}

unsigned char ToChar(const std::string& text) {
  return stringToDataType<unsigned char>(text);
}

unsigned short FromHex(const std::string& text) {
  return ExtractDecimalDataToHex<unsigned short>(text);
}

TEST(StringToUnsignedShort, EmptyTextIsZero) {
  EXPECT_EQ(ToShort(""), 0);
}

TEST(StringToUnsignedShort, SkipsLeadingBlanksOfEveryKind) {
  EXPECT_EQ(ToShort("  42"), 42);
  EXPECT_EQ(ToShort(" \t\n\v\f\r42"), 42);
}

TEST(StringToUnsignedShort, TextThatBeginsWithSomethingElseIsZero) {
  EXPECT_EQ(ToShort("x1"), 0);
  EXPECT_EQ(ToShort(".5"), 0);
  EXPECT_EQ(ToShort("(none)"), 0);
  EXPECT_EQ(ToShort("   "), 0);
}

TEST(StringToUnsignedShort, StopsAtTheFirstNonDigit) {
  EXPECT_EQ(ToShort("12 Mbit"), 12);
  EXPECT_EQ(ToShort("480.0"), 480);
  EXPECT_EQ(ToShort("7mA"), 7);
  EXPECT_EQ(ToShort("1 2"), 1);
}

TEST(StringToUnsignedShort, IsDecimalWhateverThePrefix) {
  EXPECT_EQ(ToShort("010"), 10);
  EXPECT_EQ(ToShort("0x10"), 0);
  EXPECT_EQ(ToShort("1f"), 1);
}

TEST(StringToUnsignedShort, OutOfRangeGivesTheLargestValue) {
  EXPECT_EQ(ToShort("65535"), kLargestShort);
  EXPECT_EQ(ToShort("65536"), kLargestShort);
  EXPECT_EQ(ToShort(std::string(400, '9')), kLargestShort);
}

TEST(StringToUnsignedShort, LeadingZerosDoNotCountAgainstTheRange) {
  EXPECT_EQ(ToShort(std::string(400, '0') + "7"), 7);
}

TEST(StringToUnsignedShort, SignsAreTakenAsFormattedExtractionTakesThem) {
  EXPECT_EQ(ToShort("+42"), 42);
  EXPECT_EQ(ToShort("-1"), kLargestShort);
  EXPECT_EQ(ToShort("-65535"), 1);
  EXPECT_EQ(ToShort("-"), 0);
  EXPECT_EQ(ToShort("+ 5"), 0);
}

TEST(StringToUnsignedShort, BytesThatAreNeitherBlankNorDigitEndOrPreventTheNumber) {
  EXPECT_EQ(ToShort("7\xFF"), 7);
  EXPECT_EQ(ToShort("\xA0"
                    "7"),
            0);
  EXPECT_EQ(ToShort("\x01"
                    "7"),
            0);
  EXPECT_EQ(ToShort(WithNul("", "7")), 0);
  EXPECT_EQ(ToShort(WithNul("4", "2")), 4);
}

TEST(StringToUnsignedLong, EmptyTextIsZero) {
  EXPECT_EQ(ToLong(""), 0U);
}

TEST(StringToUnsignedLong, ReadsTheLeadingDigitsAfterBlanks) {
  EXPECT_EQ(ToLong("480  "), 480U);
  EXPECT_EQ(ToLong("\t10000 "), 10000U);
  EXPECT_EQ(ToLong("1.5 "), 1U);
  EXPECT_EQ(ToLong("480.0"), 480U);
  EXPECT_EQ(ToLong("12 M"), 12U);
}

TEST(StringToUnsignedLong, TextWithoutANumberIsZero) {
  EXPECT_EQ(ToLong("fast"), 0U);
  EXPECT_EQ(ToLong(" "), 0U);
  EXPECT_EQ(ToLong(WithNul("", "1")), 0U);
}

TEST(StringToUnsignedLong, HoldsSixtyFourBitsAndNoMore) {
  EXPECT_EQ(ToLong("65536"), 65536U);
  EXPECT_EQ(ToLong("18446744073709551615"), kLargestLong);
  EXPECT_EQ(ToLong("18446744073709551616"), kLargestLong);
  EXPECT_EQ(ToLong(std::string(400, '9')), kLargestLong);
  EXPECT_EQ(ToLong("-1"), kLargestLong);
}

TEST(StringToUnsignedChar, EmptyTextIsZero) {
  EXPECT_EQ(ToChar(""), 0);
}

TEST(StringToUnsignedChar, IsTheCharacterAndNotTheDigit) {
  EXPECT_EQ(ToChar("5"), 53);
  EXPECT_EQ(ToChar("7"), 55);
  EXPECT_EQ(ToChar("ab"), 97);
  EXPECT_EQ(ToChar("09(hub  ) "), 48);
  EXPECT_EQ(ToChar("-1"), 45);
}

TEST(StringToUnsignedChar, IsTheFirstCharacterThatIsNotBlank) {
  EXPECT_EQ(ToChar("  9"), 57);
  EXPECT_EQ(ToChar(" \t\n\v\f\rz"), 122);
  EXPECT_EQ(ToChar(" \t\n"), 0);
}

TEST(StringToUnsignedChar, TakesAnyByte) {
  EXPECT_EQ(ToChar("\xC3\xA9"), 195);
  EXPECT_EQ(ToChar("\xFF"), 255);
  EXPECT_EQ(ToChar("\x01"), 1);
  EXPECT_EQ(ToChar(WithNul(" ", "5")), 0);
}

TEST(HexToUnsignedShort, EmptyTextIsZero) {
  EXPECT_EQ(FromHex(""), 0);
}

TEST(HexToUnsignedShort, ReadsHexadecimalDigitsOfBothCases) {
  EXPECT_EQ(FromHex("0409"), 1033);
  EXPECT_EQ(FromHex("12ab"), 4779);
  EXPECT_EQ(FromHex("A0"), 160);
  EXPECT_EQ(FromHex("fFfF"), kLargestShort);
}

TEST(HexToUnsignedShort, DoesNotSkipLeadingBlanks) {
  EXPECT_EQ(FromHex(" 0409"), 0);
  EXPECT_EQ(FromHex("\t1"), 0);
  EXPECT_EQ(FromHex("\n1"), 0);
}

TEST(HexToUnsignedShort, StopsAtTheFirstOtherCharacter) {
  EXPECT_EQ(FromHex("12 34"), 0x12);
  EXPECT_EQ(FromHex("1g"), 1);
  EXPECT_EQ(FromHex("g1"), 0);
  EXPECT_EQ(FromHex("12\xC3"), 0x12);
  EXPECT_EQ(FromHex(WithNul("12", "ab")), 0x12);
  EXPECT_EQ(FromHex(WithNul("", "12")), 0);
}

TEST(HexToUnsignedShort, TakesAPrefixAsFormattedExtractionDoes) {
  EXPECT_EQ(FromHex("0x1f"), 31);
  EXPECT_EQ(FromHex("0X1F"), 31);
  EXPECT_EQ(FromHex("x1f"), 0);
}

TEST(HexToUnsignedShort, OutOfRangeGivesTheLargestValue) {
  EXPECT_EQ(FromHex("10000"), kLargestShort);
  EXPECT_EQ(FromHex(std::string(400, 'f')), kLargestShort);
  EXPECT_EQ(FromHex("00000000ff"), 255);
}

TEST(HexToUnsignedShort, SignsAreTakenAsFormattedExtractionTakesThem) {
  EXPECT_EQ(FromHex("+1f"), 31);
  EXPECT_EQ(FromHex("-1"), kLargestShort);
}

TEST(StringToString, KeepsEveryByte) {
  const std::string text = WithNul("  a.b\t", "\xC3\xA9\n ");
  EXPECT_EQ(dataToString<std::string>(text), text);
  EXPECT_EQ(dataToString<std::string>(""), "");
}

TEST(UnsignedShortToString, IsPlainDecimal) {
  EXPECT_EQ(dataToString<unsigned short>(0), "0");
  EXPECT_EQ(dataToString<unsigned short>(7), "7");
  EXPECT_EQ(dataToString<unsigned short>(1234), "1234");
  EXPECT_EQ(dataToString<unsigned short>(65535), "65535");
}

TEST(CharacterPointerToString, NullIsTheEmptyText) {
  EXPECT_EQ(dataToString<const char*>(nullptr), "");
  EXPECT_EQ(dataToString<char*>(nullptr), "");
}

TEST(CharacterPointerToString, EndsAtTheTerminatingZero) {
  char text[] = " a\xE9 b\0cd";
  EXPECT_EQ(dataToString<const char*>(text), " a\xE9 b");
  EXPECT_EQ(dataToString<char*>(text), " a\xE9 b");
  EXPECT_EQ(dataToString<const char*>(""), "");
}

TEST(ForeignGlobalLocale, ChangesWhatAnOrdinaryStreamDoes) {
  const ForeignGlobalLocale foreign;
  std::ostringstream out;
  out << 65535;
  EXPECT_EQ(out.str(), "65,535");
  int number = 0;
  std::istringstream("_1,234") >> number;
  EXPECT_EQ(number, 1234);
}

TEST(ConversionUnderAForeignGlobalLocale, WritesNumbersWithoutGroups) {
  const ForeignGlobalLocale foreign;
  EXPECT_EQ(dataToString<unsigned short>(65535), "65535");
}

TEST(ConversionUnderAForeignGlobalLocale, EndsNumbersAtAGroupSeparator) {
  const ForeignGlobalLocale foreign;
  EXPECT_EQ(ToShort("1,234"), 1);
  EXPECT_EQ(ToLong("1,234"), 1U);
  EXPECT_EQ(FromHex("1,234"), 1);
}

TEST(ConversionUnderAForeignGlobalLocale, KeepsItsIdeaOfBlanks) {
  const ForeignGlobalLocale foreign;
  EXPECT_EQ(ToShort(" 42"), 42);
  EXPECT_EQ(ToShort("_42"), 0);
  EXPECT_EQ(ToLong(" 42"), 42U);
  EXPECT_EQ(ToLong("_42"), 0U);
  EXPECT_EQ(ToChar(" 5"), '5');
  EXPECT_EQ(ToChar("_5"), '_');
}

TEST(ConversionUnderAForeignCLocale, GivesTheSameResults) {
  const ForeignCLocale foreign;
  if (!foreign.IsSet()) GTEST_SKIP() << "no Turkish locale on this machine";
  EXPECT_EQ(dataToString<unsigned short>(65535), "65535");
  EXPECT_EQ(ToShort("1.234"), 1);
  EXPECT_EQ(ToLong(" 1.234"), 1U);
  EXPECT_EQ(FromHex("12AB"), 4779);
  EXPECT_EQ(ToChar(" \xDD"), 0xDD);
}

/// Has each allocation of `convert` fail once; how many there are. Fails the test when the failure does not
/// come out.
template <typename Convert>
int AllocationsThatAreHeardOf(Convert convert) {
  for (int number = 0;; ++number) {
    bool isTried = false;
    bool isHeard = false;
    try {
      const Allocations::Failure failure(static_cast<std::size_t>(number), [&isTried] { isTried = true; });
      static_cast<void>(convert());
    } catch (const std::bad_alloc&) {
      isHeard = true;
    }
    EXPECT_EQ(isHeard, isTried) << "allocation " << number;
    if (!isTried) return number;
  }
}

TEST(ConversionWithoutMemory, NeverPassesAPieceForTheWhole) {
  const std::string digits = "1" + std::string(100, '0') + " and text behind";
  EXPECT_GE(AllocationsThatAreHeardOf([&] { return dataToString<std::string>(digits); }), 2);
  EXPECT_GE(AllocationsThatAreHeardOf([&] { return dataToString<const char*>(digits.c_str()); }), 2);
  EXPECT_GE(AllocationsThatAreHeardOf([&] { return stringToDataType<unsigned short>(digits); }), 2);
  EXPECT_GE(AllocationsThatAreHeardOf([&] { return stringToDataType<unsigned char>(digits); }), 2);
  EXPECT_GE(AllocationsThatAreHeardOf([&] { return ExtractDecimalDataToHex<unsigned short>(digits); }), 2);
}

}  // namespace
