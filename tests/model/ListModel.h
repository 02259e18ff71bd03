// A second reading of a device list, by the rules and by other means than the plug-in's: the text is parted
// into groups of lines first, then each group is asked for its last line of a kind. Every value is a view
// into the text, so whatever equals it is a piece of the text too.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace usbinfo_test {

enum Field : std::size_t {
  kBus,
  kLevel,
  kParent,
  kPort,
  kCount,
  kNumber,
  kSpeed,
  kMaxChildren,
  kVersion,
  kClass,
  kSubClass,
  kProtocol,
  kConfigs,
  kVendor,
  kProductId,
  kRevision,
  kPower,
  kDriver,
  kInterfaceClass,
  kInterfaceSubClass,
  kInterfaceNumber,
  kInterfaceProtocol,
  kFieldCount
};

/// One device of the list.
struct ModelRecord {
  std::array<std::string_view, kFieldCount> fields;
  std::string_view product = "Not Available";
  std::string_view serial = "Not Available";
  std::string_view manufacturer = "Not Available";
  /// As deviceInfo::getUsbHost tells it.
  int usbHost = 0;
  bool isHub = false;

  /// The version as the descriptor tells it: what stands ahead of a zero byte, without points.
  std::string Version() const;
};

class ListModel {
 public:
  /// `text` must outlive the model.
  explicit ListModel(std::string_view text);

  const std::vector<ModelRecord>& Records() const { return fRecords; }
  /// The types of the lines that no parser takes, in order.
  const std::vector<std::string>& Unmatched() const { return fUnmatched; }

 private:
  struct Line {
    std::string type;
    std::string_view text;
  };

  static std::vector<Line> Split(std::string_view text);
  static ModelRecord Read(const Line* first, const Line* behind);
  static void ReadStrings(std::string_view line, ModelRecord& record);

  std::vector<ModelRecord> fRecords;
  std::vector<std::string> fUnmatched;
};

}  // namespace usbinfo_test
