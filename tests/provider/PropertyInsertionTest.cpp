// Insertion into property maps: what carries no value is left out, and the first value of a name stays.
// Each test owns its map; the values behind it are the stand-in host's.
#include <string>

#include "host/PropertyMap.h"
#include "provider/PropertyInsertion.h"
#include "tests/provider/ProviderTest.h"

namespace {

using NKESTA20::PropertyMap;
using NKESTA20::TCIMValue;
using NKESTA20::TQSVException;
using standin::HostOperation;
using standin::HostSeam;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;
using usbinfo_test::IsValue;
using usbinfo_test::OperationsDuring;
using Type = TCIMValue::TCIMType;

class PropertyInsertion : public usbinfo_test::ProviderTest {
 protected:
  /// Makes the host refuse `operation` from now on.
  static void Refuse(HostOperation operation) {
    HostSeam::SetObserver([operation](const standin::HostCall& call) {
      if (call.operation == operation) throw HostFailure();
    });
  }

  PropertyMap map;
};

TEST_F(PropertyInsertion, NullValueLeavesTheMapUnchanged) {
  InsertProperty(&map, "Speed", TCIMValue());
  EXPECT_THAT(map, IsEmpty());
}

TEST_F(PropertyInsertion, NullValueLeavesAnExistingValue) {
  InsertProperty(&map, "Speed", TCIMValue(12UL));
  InsertProperty(&map, "Speed", TCIMValue());
  EXPECT_THAT(map, ElementsAre(Pair("Speed", IsValue(Type::kUint64, "12"))));
}

TEST_F(PropertyInsertion, ValuesOfEveryTypeAreStoredAsTheyAre) {
  InsertProperty(&map, "A", TCIMValue(static_cast<unsigned char>(0)));
  InsertProperty(&map, "B", TCIMValue(static_cast<unsigned short>(0)));
  InsertProperty(&map, "C", TCIMValue(0UL));
  InsertProperty(&map, "D", TCIMValue(""));
  EXPECT_THAT(map,
              ElementsAre(Pair("A", IsValue(Type::kUint8, "0")), Pair("B", IsValue(Type::kUint16, "0")),
                          Pair("C", IsValue(Type::kUint64, "0")), Pair("D", IsValue(Type::kString, ""))));
}

TEST_F(PropertyInsertion, FirstValueOfANameWins) {
  InsertProperty(&map, "Speed", TCIMValue(12UL));
  InsertProperty(&map, "Speed", TCIMValue(480UL));
  EXPECT_THAT(map, ElementsAre(Pair("Speed", IsValue(Type::kUint64, "12"))));
}

TEST_F(PropertyInsertion, NamesAreComparedExactlyAndOrderedByByte) {
  InsertStringProperty(&map, "name", "b");
  InsertStringProperty(&map, "Name", "a");
  InsertStringProperty(&map, "Name ", "c");
  EXPECT_THAT(
      map, ElementsAre(Pair("Name", IsValue(Type::kString, "a")), Pair("Name ", IsValue(Type::kString, "c")),
                       Pair("name", IsValue(Type::kString, "b"))));
}

TEST_F(PropertyInsertion, AHostThatFailsToTestForNullPassesItsFailureOn) {
  const TCIMValue value(12UL);
  Refuse(HostOperation::kIsNull);
  EXPECT_THROW(InsertProperty(&map, "Speed", value), TQSVException);
  EXPECT_THAT(map, IsEmpty());
}

TEST_F(PropertyInsertion, EmptyTextLeavesTheMapUnchangedAndMakesNoValue) {
  EXPECT_THAT(OperationsDuring([this] { InsertStringProperty(&map, "Name", ""); }), IsEmpty());
  EXPECT_THAT(map, IsEmpty());
}

TEST_F(PropertyInsertion, TextBecomesAStringValueByteForByte) {
  const std::string text = std::string("a\0b ", 4) + "\xE9\n";
  InsertStringProperty(&map, "Name", text);
  EXPECT_THAT(map, ElementsAre(Pair("Name", IsValue(Type::kString, text))));
}

TEST_F(PropertyInsertion, ABlankIsATextToo) {
  InsertStringProperty(&map, "Name", " ");
  EXPECT_THAT(map, ElementsAre(Pair("Name", IsValue(Type::kString, " "))));
}

TEST_F(PropertyInsertion, FirstTextOfANameWins) {
  InsertStringProperty(&map, "Name", "first");
  InsertStringProperty(&map, "Name", "second");
  EXPECT_THAT(map, ElementsAre(Pair("Name", IsValue(Type::kString, "first"))));
}

TEST_F(PropertyInsertion, AHostThatCannotMakeAStringPassesItsFailureOn) {
  Refuse(HostOperation::kMakeStringValue);
  EXPECT_THROW(InsertStringProperty(&map, "Name", "text"), TQSVException);
  EXPECT_THAT(map, IsEmpty());
}

TEST_F(PropertyInsertion, StringArraysHaveTheHostsTypeThirteenAndKeepTheirOrder) {
  const TCIMValue array = MakeStringArrayValue({"b", "", "a"});
  EXPECT_EQ(static_cast<int>(standin::TypeOf(array)), 13);
  EXPECT_THAT(standin::StringsOf(array), ElementsAre("b", "", "a"));
}

TEST_F(PropertyInsertion, AnEmptyStringArrayIsNotNull) {
  const TCIMValue array = MakeStringArrayValue({});
  EXPECT_FALSE(array.IsNull());
  EXPECT_THAT(standin::StringsOf(array), IsEmpty());
}

}  // namespace
