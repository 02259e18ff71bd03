// JSON that is refused, and the place of the error in each message.
#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/model/StrictJson.h"
#include "tests/support/Allocations.h"

using cli::ParseStrictJson;

namespace usbinfo_test {
namespace {

std::string ErrorOf(const std::string& text) {
  try {
    ParseStrictJson(text);
  } catch (const cli::JsonError& error) {
    return error.what();
  }
  return std::string();
}

TEST(StrictJson, GivesTheDocument) {
  const nlohmann::json document =
      *ParseStrictJson(" {\"a\": [1, {\"b\": null}, \"\\u0000\"], \"c\": -1.5}\n");
  EXPECT_EQ(document["a"][1]["b"], nullptr);
  EXPECT_EQ(document["a"][2], std::string(1, '\0'));
  EXPECT_EQ(document["c"], -1.5);
}

/// The blocks that are allocated between the failure of the allocation of that number and the end of the
/// parsing; 0 when the parsing takes fewer allocations.
std::size_t MadeAfterFailure(const std::string& text, std::size_t number, bool& isFailed) {
  std::size_t madeAtFailure = 0;
  isFailed = false;
  try {
    const Allocations::Failure failure(number, [&] {
      isFailed = true;
      madeAtFailure = Allocations::Made();
    });
    ParseStrictJson(text);
  } catch (const std::bad_alloc&) {
    return Allocations::Made() - madeAtFailure;
  }
  return 0;
}

TEST(StrictJson, IsDeletedWithoutMemory) {
  const std::string text = R"({"a": [[1, [{"b": ["c", [2]]}]], {"d": {"e": []}}], "f": {"g": [[[]], 3]}})";
  cli::JsonDocument document = ParseStrictJson(text);
  const std::size_t made = Allocations::Made();
  document.reset();
  EXPECT_EQ(Allocations::Made(), made);
  bool isFailed = true;
  std::size_t number = 0;
  for (; isFailed; ++number) {
    EXPECT_EQ(MadeAfterFailure(text, number, isFailed), 0U) << "allocation " << number;
  }
  EXPECT_GT(number, 30U);
}

TEST(StrictJson, ReportsTheLineAndColumnOfWhatIsNotJson) {
  EXPECT_EQ(ErrorOf("x"), "line 1, column 1: not valid JSON");
  EXPECT_EQ(ErrorOf("{\"a\": 1,\n \"b\": x}"), "line 2, column 7: not valid JSON");
  EXPECT_EQ(ErrorOf("{\n\n  \"a\": \"\xFF\"}"), "line 3, column 9: not valid JSON");
  EXPECT_EQ(ErrorOf("{} {}"), "line 1, column 4: not valid JSON");
}

TEST(StrictJson, ReportsADocumentThatWasCutOff) {
  EXPECT_EQ(ErrorOf(""), "line 1, column 1: the document ends too early");
  EXPECT_EQ(ErrorOf("{\"a\": [1,\n"), "line 2, column 1: the document ends too early");
  EXPECT_EQ(ErrorOf("{\"a\": \"b"), "line 1, column 9: the document ends too early");
}

TEST(StrictJson, RefusesAMemberThatStandsThereTwice) {
  EXPECT_EQ(ErrorOf("{\"a\": [{}, {\"b\": 1, \"c\": {\"b\": 1}, \"b\": 1}]}"), "/a/1/b: occurs twice");
  EXPECT_EQ(ErrorOf("{\"a\": {\"b\": 1}, \"b\": [{\"a\": 1}, {\"a\": 1}]}"), "");
}

TEST(StrictJson, SpellsPointersAsTheirDefinitionSays) {
  EXPECT_EQ(ErrorOf("{\"~/\": {\"\": 1, \"\": 1}}"), "/~0~1/: occurs twice");
}

TEST(StrictJson, ReportsTheWholeNameThatAZeroByteStandsIn) {
  EXPECT_EQ(ErrorOf("{\"a\\u0000b\": {\"c\": 1, \"c\": 1}}"),
            "/a\xEF\xBF\xBD"
            "b/c: occurs twice");
}

TEST(StrictJson, RefusesNumbersBeyondAllRanges) {
  EXPECT_EQ(ErrorOf("{\"a\": 1e999}"), "/a: no number is that big");
  EXPECT_EQ(ErrorOf("{\"a\": [0, [1], -1e999]}"), "/a/2: no number is that big");
  EXPECT_EQ(ErrorOf("[-1e999]"), "/0: no number is that big");
}

TEST(StrictJson, RefusesToFollowADocumentEverDeeper) {
  const std::string deep = "{\"a\":" + std::string(14, '[');
  EXPECT_EQ(ErrorOf(deep + "[" + std::string(15, ']') + "}"), "");
  EXPECT_EQ(ErrorOf(deep + "[["), "/a/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: nested more than 16 deep");
  EXPECT_EQ(ErrorOf(std::string(1000000, '[')), "/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0/0: nested more than 16 deep");
}

}  // namespace
}  // namespace usbinfo_test
