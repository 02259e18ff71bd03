#include <gtest/gtest.h>

#include "store/DocumentSplitter.h"

namespace usbinfo_test {

namespace {

using store::Document;
using store::DocumentSplitter;
using Framing = DocumentSplitter::Framing;

constexpr std::size_t kLongest = 20;

std::vector<std::string> Split(Framing framing, const std::string& stream, std::size_t part) {
  std::vector<std::string> documents;
  DocumentSplitter splitter(
      framing,
      [&](const Document& document) {
        documents.push_back(document.isTooLong ? "too long: " + document.text : document.text);
      },
      kLongest);
  for (std::size_t at = 0; at < stream.size(); at += part) splitter.Take(stream.substr(at, part));
  splitter.Finish();
  return documents;
}

}  // namespace

TEST(DocumentSplitter, FindsTheSameDocumentsHoweverTheStreamIsCut) {
  const std::string stream =
      "{\"a\":\"}\\\"\"}\n"
      "\n"
      "  {\"b\":\n  {\"c\":1}\n}\n"
      "{}{}\r\n"
      "ssh: no route\nto host\n"
      "{\"cut\": \"off\n"
      "{\"d\":{}}\n"
      "{\"e\":";
  const std::vector<std::string> expected = {
      "{\"a\":\"}\\\"\"}",        "{\"b\":\n  {\"c\":1}\n}", "{}",         "{}",
      "ssh: no route\nto host\n", "{\"cut\": \"off\n",       "{\"d\":{}}", "{\"e\":"};
  for (std::size_t part = 1; part <= stream.size(); ++part) {
    ASSERT_EQ(Split(Framing::kBraces, stream, part), expected) << part;
  }
}

TEST(DocumentSplitter, GivesEachLineWhereADocumentIsALine) {
  const std::string stream = " {\"a\":\n}\n\n{} x\nrest";
  for (std::size_t part = 1; part <= stream.size(); ++part) {
    ASSERT_EQ(Split(Framing::kLines, stream, part),
              (std::vector<std::string>{"{\"a\":", "}", "", "{} x", "rest"}));
  }
}

TEST(DocumentSplitter, SkipsTheRestOfADocumentThatIsTooLong) {
  const std::string longest = "{\"a\":\"" + std::string(kLongest - 8, 'x') + "\"}";
  ASSERT_EQ(longest.size(), kLongest);
  const std::string longer = "{\"a\":\"" + std::string(kLongest - 7, 'x') + "\"}";
  for (const Framing framing : {Framing::kBraces, Framing::kLines}) {
    EXPECT_EQ(Split(framing, longest + "\n" + longer + "\n{}\n", 7),
              (std::vector<std::string>{longest, "too long: " + longer.substr(0, kLongest), "{}"}));
  }
}

}  // namespace usbinfo_test
