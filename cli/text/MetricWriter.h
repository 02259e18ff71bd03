// Writes metrics in the text format that Prometheus reads, version 0.0.4: lines in UTF-8, each metric with
// its help and its type before its samples.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

struct MetricLabel {
  std::string_view name;
  /// UTF-8.
  std::string value;
};

class MetricWriter {
 public:
  /// Begins a metric whose value goes up and down; `name` and `help` are fixed texts without backslashes.
  void BeginGauge(std::string_view name, std::string_view help);
  /// A sample of that metric. The caller keeps its labels different from those of the other samples.
  void Sample(const std::vector<MetricLabel>& labels, std::int64_t value);

  /// The text so far. The writer is ready for another one.
  std::string Take();

 private:
  std::string_view fName;
  std::string fText;
};

/// The most characters of a text that stand in a label. A string of a USB device has at most 126.
inline constexpr std::size_t kMostInLabel = 128;

/// The value of a label that shows `text`, in which any bytes may stand: as EscapeForDocument makes it, and
/// "..." after the first kMostInLabel characters where there are more.
std::string LabelTextOf(std::string_view text);

}  // namespace cli
