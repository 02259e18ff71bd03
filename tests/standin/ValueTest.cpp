// The host's value type: what each constructor makes, the renderings as text and number, and copies that
// share without ever seeing each other's changes.
#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <string>
#include <variant>
#include <vector>

#include "host/TCIMReference.h"
#include "host/TCIMValue.h"
#include "standin/ValueView.h"
#include "tests/standin/StandinTest.h"
#include "tests/support/HostTest.h"

namespace {

using NKESTA20::TCIMReference;
using NKESTA20::TCIMValue;
using standin::NumberOf;
using standin::ReferenceOf;
using standin::StringOf;
using standin::StringsOf;
using standin::TextOf;
using standin::TypeOf;
using ::testing::ElementsAre;
using usbinfo_test::MakeArray;
using usbinfo_test::StatusOf;

using Type = TCIMValue::TCIMType;

class ValueTest : public usbinfo_test::HostTest {};

constexpr unsigned char kUint8Max = std::numeric_limits<unsigned char>::max();
constexpr unsigned short kUint16Max = std::numeric_limits<unsigned short>::max();
constexpr unsigned long kUint64Max = std::numeric_limits<std::uint64_t>::max();

TCIMReference SomePath() {
  return standin::MakePath("KALDO_USBHub", {{"DeviceID", TCIMValue("x")}});
}

/// The status thrown when `value` is converted to a number.
std::string StatusOfNumber(const TCIMValue& value) {
  return StatusOf([&value] { static_cast<void>(static_cast<unsigned short>(value)); });
}

TEST_F(ValueTest, IsNullByDefaultAndNotOtherwise) {
  EXPECT_TRUE(TCIMValue().IsNull());
  EXPECT_EQ(TypeOf(TCIMValue()), Type::kNull);
  EXPECT_FALSE(TCIMValue("").IsNull());
  EXPECT_FALSE(TCIMValue(static_cast<unsigned char>(0)).IsNull());
  EXPECT_FALSE(MakeArray({}).IsNull());
  TCIMReference empty;
  EXPECT_FALSE(TCIMValue(empty).IsNull());
}

TEST_F(ValueTest, TakesItsTypeFromTheConstructor) {
  TCIMReference path = SomePath();
  EXPECT_EQ(TypeOf(TCIMValue(kUint8Max)), Type::kUint8);
  EXPECT_EQ(TypeOf(TCIMValue(kUint16Max)), Type::kUint16);
  EXPECT_EQ(TypeOf(TCIMValue(kUint64Max)), Type::kUint64);
  EXPECT_EQ(TypeOf(TCIMValue("text")), Type::kString);
  EXPECT_EQ(TypeOf(TCIMValue(std::string("text"))), Type::kString);
  EXPECT_EQ(TypeOf(TCIMValue(path)), Type::kReference);
  EXPECT_EQ(TypeOf(MakeArray({"a"})), Type::kStringArray);
}

TEST_F(ValueTest, NumbersTheStringArrayTypeThirteen) {
  EXPECT_EQ(static_cast<int>(Type::kStringArray), 13);
  EXPECT_EQ(Type(static_cast<Type::ECIMType>(13)).GetCode(), Type::kStringArray);
  EXPECT_EQ(Type(Type::kUint64).GetCode(), Type::kUint64);
}

TEST_F(ValueTest, KeepsItsContentToTheLastBit) {
  const std::string bytes("a\0b\xFF\n", 5);
  EXPECT_EQ(StringOf(TCIMValue(bytes)), bytes);
  EXPECT_EQ(NumberOf(TCIMValue(kUint8Max)), 255U);
  EXPECT_EQ(NumberOf(TCIMValue(kUint16Max)), 65535U);
  EXPECT_EQ(NumberOf(TCIMValue(kUint64Max)), 18446744073709551615U);
  EXPECT_THAT(StringsOf(MakeArray({"b", "", "a"})), ElementsAre("b", "", "a"));
}

TEST_F(ValueTest, TakesANullTextForTheEmptyOne) {
  const char* const nothing = nullptr;
  EXPECT_EQ(StringOf(TCIMValue(nothing)), "");
}

TEST_F(ValueTest, CanOnlyBeReadAsWhatItIs) {
  EXPECT_THROW(NumberOf(TCIMValue("1")), std::bad_variant_access);
  EXPECT_THROW(StringOf(TCIMValue(kUint8Max)), std::bad_variant_access);
  EXPECT_THROW(StringsOf(TCIMValue("a")), std::bad_variant_access);
  EXPECT_THROW(ReferenceOf(TCIMValue("a")), std::bad_variant_access);
  EXPECT_THROW(StringOf(TCIMValue()), std::bad_variant_access);
}

TEST_F(ValueTest, RendersAsText) {
  TCIMReference path = SomePath();
  EXPECT_EQ(static_cast<std::string>(TCIMValue()), "");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(" a\t\"b\\ ")), " a\t\"b\\ ");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(static_cast<unsigned char>(0))), "0");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(kUint8Max)), "255");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(kUint16Max)), "65535");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(kUint64Max)), "18446744073709551615");
  EXPECT_EQ(static_cast<std::string>(TCIMValue(path)), R"(KALDO_USBHub.DeviceID="x")");
}

TEST_F(ValueTest, RendersArraysWithASeparatorBetweenAllElements) {
  EXPECT_EQ(TextOf(MakeArray({})), "{}");
  EXPECT_EQ(TextOf(MakeArray({"Device connected"})), "{Device connected}");
  EXPECT_EQ(TextOf(MakeArray({"a", "b"})), "{a, b}");
  EXPECT_EQ(TextOf(MakeArray({"a", "", "c"})), "{a, , c}");
}

TEST_F(ValueTest, RendersAnEmptyFirstElementToo) {
  EXPECT_EQ(TextOf(MakeArray({"", "b"})), "{, b}");
  EXPECT_EQ(TextOf(MakeArray({"", ""})), "{, }");
}

TEST_F(ValueTest, ConvertsNumbersUpToSixteenBits) {
  EXPECT_EQ(static_cast<unsigned short>(TCIMValue(kUint8Max)), 255);
  EXPECT_EQ(static_cast<unsigned short>(TCIMValue(static_cast<unsigned short>(0))), 0);
  EXPECT_EQ(static_cast<unsigned short>(TCIMValue(kUint16Max)), 65535);
  EXPECT_EQ(static_cast<unsigned short>(TCIMValue(65535UL)), 65535);
}

TEST_F(ValueTest, RefusesToConvertWhatIsNoSuchNumber) {
  TCIMReference path = SomePath();
  EXPECT_EQ(StatusOfNumber(TCIMValue(65536UL)), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOfNumber(TCIMValue(kUint64Max)), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOfNumber(TCIMValue()), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOfNumber(TCIMValue("1")), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOfNumber(TCIMValue(path)), "CIM_ERR_TYPE_MISMATCH");
  EXPECT_EQ(StatusOfNumber(MakeArray({"1"})), "CIM_ERR_TYPE_MISMATCH");
}

TEST_F(ValueTest, RefusesAnArrayOfAnotherCount) {
  const std::vector<TCIMValue> elements = {TCIMValue("a"), TCIMValue("b")};
  for (const unsigned int count : {0U, 1U, 3U}) {
    EXPECT_EQ(StatusOf([&] { TCIMValue(Type::kStringArray, count, elements); }), "CIM_ERR_INVALID_PARAMETER")
        << count;
  }
}

TEST_F(ValueTest, RefusesAnArrayWithAnElementThatIsNoString) {
  TCIMReference path = SomePath();
  for (const TCIMValue& other : {TCIMValue(), TCIMValue(kUint8Max), TCIMValue(path), MakeArray({"a"})}) {
    const std::vector<TCIMValue> elements = {TCIMValue("a"), other};
    EXPECT_EQ(StatusOf([&] { TCIMValue(Type::kStringArray, 2, elements); }), "CIM_ERR_TYPE_MISMATCH");
  }
}

TEST_F(ValueTest, RefusesAnArrayOfATypeThatIsNone) {
  const std::vector<TCIMValue> elements = {TCIMValue("a")};
  for (const auto code :
       {Type::kNull, Type::kUint8, Type::kUint16, Type::kUint64, Type::kString, Type::kReference}) {
    EXPECT_EQ(StatusOf([&] { TCIMValue(code, 1, elements); }), "CIM_ERR_TYPE_MISMATCH") << code;
  }
}

TEST_F(ValueTest, CopiesAreEqualAndApart) {
  TCIMValue first("first");
  TCIMValue copy(first);
  first = TCIMValue(kUint8Max);
  EXPECT_EQ(TextOf(copy), "first");
  EXPECT_EQ(TextOf(first), "255");
  copy = first;
  first = TCIMValue();
  EXPECT_EQ(NumberOf(copy), 255U);
  EXPECT_TRUE(first.IsNull());
}

TEST_F(ValueTest, OutlivesWhatItWasMadeAndCopiedFrom) {
  TCIMValue survivor;
  {
    TCIMReference path = SomePath();
    const std::vector<TCIMValue> originals = {TCIMValue(path)};
    survivor = originals.front();
  }
  EXPECT_EQ(TextOf(survivor), R"(KALDO_USBHub.DeviceID="x")");
}

TEST_F(ValueTest, SurvivesAssignmentToItself) {
  TCIMValue value("itself");
  const TCIMValue& alias = value;
  value = alias;
  EXPECT_EQ(StringOf(value), "itself");
  TCIMReference path = SomePath();
  const TCIMReference& pathAlias = path;
  path = pathAlias;
  EXPECT_EQ(TextOf(path), R"(KALDO_USBHub.DeviceID="x")");
}

}  // namespace
