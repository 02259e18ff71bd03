// The JSON writer, against nlohmann's serializer on random documents and on the strings that devices may
// send.
#include <gmock/gmock.h>

#include <cstdint>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include "cli/text/JsonWriter.h"
#include "tests/cli/support/HostileDevices.h"

using cli::JsonWriter;
using nlohmann::ordered_json;

namespace usbinfo_test {
namespace {

void Write(JsonWriter& writer, const ordered_json& value) {
  if (value.is_object()) {
    writer.BeginObject();
    for (const auto& [name, member] : value.items()) {
      writer.Key(name);
      Write(writer, member);
    }
    writer.EndObject();
  } else if (value.is_array()) {
    writer.BeginArray();
    for (const ordered_json& element : value) Write(writer, element);
    writer.EndArray();
  } else if (value.is_string()) {
    writer.String(value.get_ref<const std::string&>());
  } else if (value.is_boolean()) {
    writer.Bool(value.get<bool>());
  } else if (value.is_number()) {
    writer.Number(value.get<std::uint64_t>());
  } else {
    writer.Null();
  }
}

std::string Written(JsonWriter::Layout layout, const ordered_json& value) {
  JsonWriter writer(layout);
  Write(writer, value);
  return writer.Take();
}

void ExpectWrittenLikeTheSerializer(const ordered_json& value) {
  const auto replace = ordered_json::error_handler_t::replace;
  EXPECT_EQ(Written(JsonWriter::Layout::kIndented, value), value.dump(2, ' ', true, replace));
  EXPECT_EQ(Written(JsonWriter::Layout::kOneLine, value), value.dump(-1, ' ', true, replace));
}

class RandomDocument {
 public:
  explicit RandomDocument(unsigned int seed) : fRandom(seed) {}

  ordered_json Value(int depth) {
    constexpr unsigned int kScalars = 4;
    switch (fRandom() % (depth == 0 ? kScalars : kScalars + 2)) {
      case 0:
        return nullptr;
      case 1:
        return fRandom() % 2 == 0;
      case 2:
        return (std::uint64_t{fRandom()} << 32U | fRandom()) >> fRandom() % 64;
      case 3:
        return Text();
      case 4:
        return Array(depth - 1);
      default:
        return Object(depth - 1);
    }
  }

 private:
  ordered_json Array(int depth) {
    ordered_json array = ordered_json::array();
    for (auto left = fRandom() % 5; left > 0; --left) array.push_back(Value(depth));
    return array;
  }

  ordered_json Object(int depth) {
    ordered_json object = ordered_json::object();
    for (auto left = fRandom() % 5; left > 0; --left) object[Text()] = Value(depth);
    return object;
  }

  /// Bytes, brackets and what needs an escape among them.
  std::string Text() {
    static const std::string kBytes(
        "{}[]:,\"\\/ \b\f\n\r\t\0\x1F\x7F\x80\xBF\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\xFF", 30);
    std::string text;
    for (auto left = fRandom() % 12; left > 0; --left) text += kBytes[fRandom() % kBytes.size()];
    return text;
  }

  std::mt19937 fRandom;
};

TEST(JsonWriter, WritesAnyDocumentLikeTheSerializer) {
  constexpr unsigned int kDocuments = 2000;
  constexpr int kDepth = 5;
  for (unsigned int seed = 0; seed < kDocuments; ++seed) {
    ExpectWrittenLikeTheSerializer(RandomDocument(seed).Value(kDepth));
    if (HasFailure()) FAIL() << "seed " << seed;
  }
}

TEST(JsonWriter, WritesEveryHostileStringLikeTheSerializer) {
  for (const HostileString& hostile : HostileStrings()) {
    ExpectWrittenLikeTheSerializer({{hostile.bytes, hostile.bytes}});
  }
}

TEST(JsonWriter, WritesEveryByteAndThoseAroundTheFirstPlanesEndLikeTheSerializer) {
  for (int byte = 0; byte < 256; ++byte)
    ExpectWrittenLikeTheSerializer(std::string(1, static_cast<char>(byte)));
  for (const char* text : {"\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF0\x9F\x98\x80", "\xF4\x8F\xBF\xBF"}) {
    ExpectWrittenLikeTheSerializer(text);
  }
}

TEST(JsonWriter, WritesTheLargestNumber) {
  EXPECT_EQ(Written(JsonWriter::Layout::kOneLine, UINT64_MAX), "18446744073709551615");
}

TEST(JsonWriter, WritesAWholeDecimalWithoutAFraction) {
  JsonWriter writer(JsonWriter::Layout::kOneLine);
  writer.BeginArray();
  for (const double number : {1.5, 480.0, 1000000.0}) writer.Decimal(number);
  writer.EndArray();
  EXPECT_EQ(writer.Take(), "[1.5,480,1000000]");
}

TEST(JsonWriter, IsReadyForAnotherDocumentOnceOneIsTaken) {
  JsonWriter writer(JsonWriter::Layout::kOneLine);
  for (int line = 0; line < 2; ++line) {
    writer.BeginObject();
    writer.Key("a");
    writer.BeginArray();
    writer.EndArray();
    writer.EndObject();
    EXPECT_EQ(writer.Take(), R"({"a":[]})");
  }
}

TEST(JsonWriter, TakesNoMemoryForTheDepthOfADocument) {
  constexpr std::size_t kDepth = 1000000;
  JsonWriter writer(JsonWriter::Layout::kOneLine);
  for (std::size_t depth = 0; depth < kDepth; ++depth) writer.BeginArray();
  for (std::size_t depth = 0; depth < kDepth; ++depth) writer.EndArray();
  EXPECT_EQ(writer.Take(), std::string(kDepth, '[') + std::string(kDepth, ']'));
}

}  // namespace
}  // namespace usbinfo_test
