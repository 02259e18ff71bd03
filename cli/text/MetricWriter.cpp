#include "cli/text/MetricWriter.h"

#include <fmt/format.h>

#include <iterator>
#include <utility>

#include "cli/text/Text.h"
#include "cli/text/Utf8.h"

namespace cli {

namespace {

/// `value` as it stands between quotes.
std::string EscapedForLabel(std::string_view value) {
  std::string escaped;
  for (const char c : value) {
    if (c == '\n') {
      escaped += "\\n";
      continue;
    }
    if (c == '\\' || c == '"') escaped += '\\';
    escaped += c;
  }
  return escaped;
}

std::size_t LengthOfCharacters(std::string_view text, std::size_t count) {
  std::size_t length = 0;
  for (; count > 0 && length < text.size(); --count) {
    length += FirstCharacter(text.substr(length)).bytes.size();
  }
  return length;
}

}  // namespace

void MetricWriter::BeginGauge(std::string_view name, std::string_view help) {
  fName = name;
  fmt::format_to(std::back_inserter(fText), "# HELP {0} {1}\n# TYPE {0} gauge\n", name, help);
}

void MetricWriter::Sample(const std::vector<MetricLabel>& labels, std::int64_t value) {
  fText += fName;
  char separator = '{';
  for (const MetricLabel& label : labels) {
    fText += std::exchange(separator, ',');
    fText.append(label.name).append("=\"").append(EscapedForLabel(label.value)).append("\"");
  }
  fmt::format_to(std::back_inserter(fText), "{} {}\n", labels.empty() ? "" : "}", value);
}

std::string MetricWriter::Take() {
  return std::exchange(fText, std::string());
}

std::string LabelTextOf(std::string_view text) {
  const std::size_t length = LengthOfCharacters(text, kMostInLabel);
  return EscapeForDocument(text.substr(0, length)) + (length < text.size() ? "..." : "");
}

}  // namespace cli
