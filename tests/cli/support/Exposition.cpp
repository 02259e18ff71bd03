#include "tests/cli/support/Exposition.h"

#include <stdexcept>
#include <string_view>

namespace usbinfo_test {

namespace {

void MustBe(bool holds, const std::string& what) {
  if (!holds) throw std::invalid_argument(what);
}

/// Takes a text apart from its beginning.
class ExpositionScanner {
 public:
  explicit ExpositionScanner(std::string_view text) : fText(text) {}

  bool IsAtEnd() const { return fText.empty(); }
  bool Takes(std::string_view token) {
    if (fText.substr(0, token.size()) != token) return false;
    fText.remove_prefix(token.size());
    return true;
  }
  void Expect(std::string_view token) { MustBe(Takes(token), std::string("not found: ").append(token)); }

  std::string Name() { return Advance(fText.find_first_not_of("abcdefghijklmnopqrstuvwxyz_"), "a name"); }
  std::string Number() { return Advance(fText.find_first_not_of("0123456789-"), "a number"); }
  std::string RestOfLine() {
    std::string rest = Advance(fText.find('\n'), "a text");
    Expect("\n");
    return rest;
  }

  /// The value of a label, between quotes.
  std::string Quoted() {
    Expect("\"");
    std::string value;
    while (!Takes("\"")) {
      const std::string c = Advance(1, "a value");
      MustBe(c != "\n", "a value on one line");
      value += c == "\\" ? Escaped() : c;
    }
    return value;
  }

 private:
  std::string Advance(std::size_t length, const char* what) {
    MustBe(length != 0 && length != std::string_view::npos && length <= fText.size(), what);
    std::string piece(fText.substr(0, length));
    fText.remove_prefix(length);
    return piece;
  }

  std::string Escaped() {
    if (Takes("n")) return "\n";
    const std::string c = Advance(1, "an escaped character");
    MustBe(c == "\\" || c == "\"", "an escape that there is");
    return c;
  }

  std::string_view fText;
};

MetricLabels ReadLabels(ExpositionScanner& scanner) {
  MetricLabels labels;
  if (!scanner.Takes("{")) return labels;
  do {
    const std::string name = scanner.Name();
    scanner.Expect("=");
    MustBe(labels.emplace(name, scanner.Quoted()).second, "a label once");
  } while (scanner.Takes(","));
  scanner.Expect("}");
  return labels;
}

void ReadSample(ExpositionScanner& scanner, const std::string& name, MetricSamples& samples) {
  scanner.Expect(name);
  MetricLabels labels = ReadLabels(scanner);
  scanner.Expect(" ");
  std::string value = scanner.Number();
  scanner.Expect("\n");
  MustBe(samples.emplace(std::move(labels), std::move(value)).second, "a series once");
}

}  // namespace

Exposition ReadExposition(const std::string& text) {
  Exposition metrics;
  ExpositionScanner scanner(text);
  std::string name;
  while (!scanner.IsAtEnd()) {
    if (!scanner.Takes("# HELP ")) {
      ReadSample(scanner, name, metrics.at(name));
      continue;
    }
    name = scanner.Name();
    scanner.Expect(" ");
    scanner.RestOfLine();
    scanner.Expect("# TYPE " + name + " gauge\n");
    MustBe(metrics.emplace(name, MetricSamples()).second, "a metric once");
  }
  return metrics;
}

std::string ValueOf(const Exposition& metrics, const std::string& name, const MetricLabels& labels) {
  return metrics.at(name).at(labels);
}

}  // namespace usbinfo_test
