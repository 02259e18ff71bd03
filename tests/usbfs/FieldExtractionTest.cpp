// Cutting a field out of a line: every parser must do it alike, for every value of the list passes here.
// The tests run once per parser, each of which owns the one that it asks.
#include <gtest/gtest.h>

#include <string>

#include "tests/provider/ForeignLocale.h"
#include "usbfs/Interface.h"
#include "usbfs/configuration.h"
#include "usbfs/descriptor.h"
#include "usbfs/deviceInfo.h"
#include "usbfs/product.h"
#include "usbfs/topology.h"

namespace {

using usbinfo_test::ForeignCLocale;
using usbinfo_test::ForeignGlobalLocale;

template <typename Parser>
class FieldExtraction : public ::testing::Test {
 protected:
  std::string Cut(const std::string& line, const std::string& key, const std::string& terminator) {
    return parser.getString(line, key, terminator);
  }

  Parser parser;
};

using Parsers = ::testing::Types<topology, descriptor, product, deviceInfo, configuration, Interface>;

/// Names each run by its line type.
struct LineTypes {
  template <typename Parser>
  static std::string GetName(int index) {
    return std::string(1, "TDPSCI"[index]) + "Line";
  }
};

TYPED_TEST_SUITE(FieldExtraction, Parsers, LineTypes);

TYPED_TEST(FieldExtraction, KeepsTheBlankBeforeATerminatorThatHasNone) {
  EXPECT_EQ(this->Cut("T:  Bus=01 Lev=00 Prnt=00", "bus=", "lev="), "01 ");
}

TYPED_TEST(FieldExtraction, EndsBeforeTheBlankOfATerminatorThatHasOne) {
  EXPECT_EQ(this->Cut("T:  Bus=01 Lev=00 Prnt=00", "lev=", " prnt="), "00");
}

TYPED_TEST(FieldExtraction, KeepsBlanksOnBothSides) {
  EXPECT_EQ(this->Cut("D:  Ver= 2.00 Cls=09(hub  ) Sub=00", "ver=", "cls"), " 2.00 ");
}

TYPED_TEST(FieldExtraction, NewlineAsTerminatorMeansTheEndOfTheLine) {
  EXPECT_EQ(this->Cut("S:  Product=EHCI Host Controller", "product=", "\n"), "EHCI Host Controller");
  EXPECT_EQ(this->Cut("T:  MxCh= 6", "mxch=", "\n"), " 6");
}

TYPED_TEST(FieldExtraction, KeepsBlanksAndCarriageReturnsAtTheEndOfTheLine) {
  EXPECT_EQ(this->Cut("S:  Product= Hub \t\r", "product=", "\n"), " Hub \t\r");
}

TYPED_TEST(FieldExtraction, NewlineWithinTheLineIsPartOfTheValue) {
  EXPECT_EQ(this->Cut("S:  Product=one\ntwo", "product=", "\n"), "one\ntwo");
}

TYPED_TEST(FieldExtraction, MissingKeyGivesTheEmptyTextWhateverTheTerminator) {
  EXPECT_EQ(this->Cut("S:  Product=Hub", "serialnumber=", "\n"), "");
  EXPECT_EQ(this->Cut("S:  Product=Hub", "serialnumber=", "hub"), "");
  EXPECT_EQ(this->Cut("S:  Product Hub", "product=", "\n"), "");
  EXPECT_EQ(this->Cut("", "product=", "\n"), "");
}

TYPED_TEST(FieldExtraction, MissingTerminatorGivesTheEmptyText) {
  EXPECT_EQ(this->Cut("C:  MxPwr=100", "mxpwr=", "ma"), "");
  EXPECT_EQ(this->Cut("T:  Port=00  cnt", "port=", " cnt="), "");
}

TYPED_TEST(FieldExtraction, TerminatorOnlyBeforeTheKeyGivesTheEmptyText) {
  EXPECT_EQ(this->Cut("I:  Prot=00 Sub=01", "sub=", "prot"), "");
}

TYPED_TEST(FieldExtraction, TerminatorBeforeTheKeyIsPassedOver) {
  EXPECT_EQ(this->Cut("Prot=00 Sub=01 Prot=02", "sub=", "prot"), "01 ");
}

TYPED_TEST(FieldExtraction, FirstOccurrenceOfTheKeyWins) {
  EXPECT_EQ(this->Cut("Cls=09(hub) Cls=ff(vend.)", "cls=", "("), "09");
  EXPECT_EQ(this->Cut("Product=a Product=b", "product=", "\n"), "a Product=b");
}

TYPED_TEST(FieldExtraction, FirstOccurrenceOfTheTerminatorWins) {
  EXPECT_EQ(this->Cut("Cls=09(hub(x)", "cls=", "("), "09");
  EXPECT_EQ(this->Cut("MxPwr=100mA max. 2mA", "mxpwr=", "ma"), "100");
}

TYPED_TEST(FieldExtraction, TheTerminatorNeedNotStandNextToTheKey) {
  EXPECT_EQ(this->Cut("Prot=01 x Prot=02 Driver=hub", "prot=", "driver"), "01 x Prot=02 ");
}

TYPED_TEST(FieldExtraction, TerminatorWithinTheKeyGivesTheRestOfTheLine) {
  EXPECT_EQ(this->Cut("Sub=01 Sub=02", "sub=", "s"), "01 Sub=02");
}

TYPED_TEST(FieldExtraction, KeyIsFoundAnywhereInTheLine) {
  EXPECT_EQ(this->Cut("xxxRev= 2.06", "rev=", "\n"), " 2.06");
  EXPECT_EQ(this->Cut("Rev=1", "rev=", "\n"), "1");
}

TYPED_TEST(FieldExtraction, NothingBetweenKeyAndTerminatorIsEmpty) {
  EXPECT_EQ(this->Cut("MxPwr=mA", "mxpwr=", "ma"), "");
  EXPECT_EQ(this->Cut("Product=", "product=", "\n"), "");
}

TYPED_TEST(FieldExtraction, NamesInAnyMixOfCaseAreFound) {
  EXPECT_EQ(this->Cut("P:  Vendor=12ab ProdID=0002 Rev= 2.06", "prodid=", " rev"), "0002");
  EXPECT_EQ(this->Cut("MANUFACTURER=Acme", "manufacturer=", "\n"), "Acme");
  EXPECT_EQ(this->Cut("mXpWr=2MA", "mxpwr=", "ma"), "2");
}

TYPED_TEST(FieldExtraction, ValuesKeepTheirCase) {
  EXPECT_EQ(this->Cut("Vendor=12aB prodid=", "vendor=", " prodid"), "12aB");
}

TYPED_TEST(FieldExtraction, BytesAbove127AndControlCharactersPassUnchanged) {
  const std::string value = "\xC3\x9C\xFF\x80 \x01\x7F\x1B[0m";
  EXPECT_EQ(this->Cut("S:  Product=" + value, "product=", "\n"), value);
  EXPECT_EQ(this->Cut("S:\xFF Vendor=" + value + " ProdID=1", "vendor=", " prodid"), value);
}

TYPED_TEST(FieldExtraction, NulBytesAreOrdinaryCharacters) {
  const std::string value("a\0B", 3);
  const std::string before("S:\0 ", 4);
  EXPECT_EQ(this->Cut(before + "Product=" + value, "product=", "\n"), value);
  EXPECT_EQ(this->Cut(before + "Rev=" + value + " Cls=09", "rev=", " cls"), value);
}

TYPED_TEST(FieldExtraction, VeryLongValuesAreWhole) {
  const std::string value(100000, 'X');
  EXPECT_EQ(this->Cut("Product=" + value, "product=", "\n"), value);
}

TYPED_TEST(FieldExtraction, DoesNotFoldLettersAsAForeignGlobalLocaleDoes) {
  const ForeignGlobalLocale foreign;
  EXPECT_EQ(this->Cut("DRIVER=x", "driver=", "\n"), "x");
  EXPECT_EQ(this->Cut("dr\xDDver=x", "driver=", "\n"), "");
}

TYPED_TEST(FieldExtraction, DoesNotFoldLettersAsAForeignCLocaleDoes) {
  const ForeignCLocale foreign;
  if (!foreign.IsSet()) GTEST_SKIP() << "no Turkish locale on this machine";
  EXPECT_EQ(this->Cut("DRIVER=x", "driver=", "\n"), "x");
  EXPECT_EQ(this->Cut("dr\xDDver=x", "driver=", "\n"), "");
}

TEST(RemoveDecimalPoint, DropsEveryPointAndNothingElse) {
  EXPECT_EQ(descriptor().removeDecimalPoint(" 2.00 "), " 200 ");
  EXPECT_EQ(descriptor().removeDecimalPoint("1.10"), "110");
  EXPECT_EQ(descriptor().removeDecimalPoint(".1..2.3."), "123");
  EXPECT_EQ(descriptor().removeDecimalPoint("2,0\xB7\t"), "2,0\xB7\t");
}

TEST(RemoveDecimalPoint, NothingLeftIsTheEmptyText) {
  EXPECT_EQ(descriptor().removeDecimalPoint(""), "");
  EXPECT_EQ(descriptor().removeDecimalPoint("..."), "");
}

TEST(RemoveDecimalPoint, LongTextsAreWhole) {
  const std::string digits(100000, '7');
  EXPECT_EQ(descriptor().removeDecimalPoint((digits + "." + digits).c_str()), digits + digits);
}

}  // namespace
