#include "tests/model/RecordValues.h"

#include <limits>
#include <string_view>

namespace usbinfo_test {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";

std::string_view WithoutLeadingBlanks(std::string_view text) {
  return text.substr(std::min(text.find_first_not_of(kBlanks), text.size()));
}

/// The value of a hexadecimal digit; 16 for everything else.
unsigned int DigitOf(char c) {
  const auto at =
      std::string_view("0123456789abcdef").find(static_cast<char>(c >= 'A' && c <= 'F' ? c - 'A' + 'a' : c));
  return at == std::string_view::npos ? 16 : static_cast<unsigned int>(at);
}

/// A number as formatted extraction reads it: a sign, digits; the type's highest when it does not fit, and
/// counted down from there when it is negative.
template <typename Number>
Number ReadDigits(std::string_view text, unsigned int base) {
  constexpr unsigned long kMax = std::numeric_limits<Number>::max();
  const bool isNegative = !text.empty() && text[0] == '-';
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
  if (base == 16 && text.size() > 1 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X'))
    text.remove_prefix(2);
  unsigned long number = 0;
  for (const char c : text) {
    const unsigned int digit = DigitOf(c);
    if (digit >= base) break;
    if (number > (kMax - digit) / base) return static_cast<Number>(kMax);
    number = number * base + digit;
  }
  return static_cast<Number>(isNegative ? 0 - number : number);
}

/// Leading blanks do not count.
template <typename Number>
Number ReadDecimal(std::string_view text) {
  return ReadDigits<Number>(WithoutLeadingBlanks(text), 10);
}

/// A leading blank ends the number.
unsigned short ReadHexadecimal(std::string_view text) {
  return ReadDigits<unsigned short>(text, 16);
}

/// The first character but for blanks, counted from "0"; as if it was a zero byte when there is none.
unsigned char ReadDigit(std::string_view text) {
  text = WithoutLeadingBlanks(text);
  return static_cast<unsigned char>((text.empty() ? '\0' : text[0]) - '0');
}

std::string Identifier(std::string_view bus, const std::string& number) {
  return "Bus " + std::string(bus) + " Device " + number;
}

/// A device number as in its own line, three characters wide.
std::string AlignedRight(const std::string& number) {
  constexpr std::size_t kWidth = 3;
  return std::string(kWidth - std::min(kWidth, number.size()), ' ') + number;
}

void SetPlace(RecordValues& values, const ListRecord& record) {
  const auto& fields = record.fields;
  values.isRoot = fields[kLevel] == "00";
  values.level = ReadDecimal<unsigned short>(fields[kLevel]);
  values.identifier = Identifier(fields[kBus], std::string(fields[kNumber]));
  const auto parent = ReadDecimal<unsigned short>(fields[kParent]);
  values.parent = Identifier(fields[kBus], AlignedRight(std::to_string(parent)));
  values.port = values.parent + " Port " + std::string(fields[kPort]);
  values.ports = ReadDecimal<unsigned short>(fields[kMaxChildren]);
  values.megabits = ReadDecimal<unsigned long>(fields[kSpeed]);
}

void SetDescription(RecordValues& values, const ListRecord& record) {
  const auto& fields = record.fields;
  values.product = record.product;
  values.manufacturer = record.manufacturer;
  values.serial = record.serial;
  values.hostKind = static_cast<unsigned short>(record.usbHost);
  values.version = ReadDecimal<unsigned short>(record.Version());
  values.classCode = ReadDigit(fields[kClass]);
  values.subclassCode = ReadDigit(fields[kSubClass]);
  values.protocolCode = ReadDigit(fields[kProtocol]);
  values.configurations = ReadDigit(fields[kConfigs]);
  values.vendor = ReadHexadecimal(fields[kVendor]);
  values.productNumber = ReadHexadecimal(fields[kProductId]);
}

}  // namespace

ListValues ReadListValues(const std::string& text) {
  ListValues list;
  if (text.empty()) return list;
  const ListModel model(text);
  list.unmatchedTypes = model.Unmatched();
  for (const ListRecord& record : model.Records()) {
    RecordValues values{};
    values.isHub = record.isHub;
    SetPlace(values, record);
    SetDescription(values, record);
    list.records.push_back(values);
  }
  return list;
}

}  // namespace usbinfo_test
