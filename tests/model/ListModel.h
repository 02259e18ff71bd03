// A second reading of a device list, by the same rules and by other means than the plug-in's: the text is
// split into groups of lines first, then each group is asked for its last line of a kind. Every field is a
// view into the text, so whatever equals it is a piece of the text too.
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

/// One device of the list, its fields as texts.
struct ListRecord {
  std::array<std::string_view, kFieldCount> fields;
  std::string_view product = "Not Available";
  std::string_view serial = "Not Available";
  std::string_view manufacturer = "Not Available";
  /// The kind of host controller, as deviceInfo::getUsbHost gives it.
  int usbHost = 0;
  bool isHub = false;

  /// The version as the descriptor gives it: what stands before a zero byte, without points.
  std::string Version() const;
};

class ListModel {
 public:
  /// `text` must outlive the model.
  explicit ListModel(std::string_view text);

  const std::vector<ListRecord>& Records() const { return fRecords; }
  /// The types of the lines that no parser takes, in order.
  const std::vector<std::string>& Unmatched() const { return fUnmatched; }

 private:
  struct Line {
    std::string type;
    std::string_view text;
  };

  static std::vector<Line> Split(std::string_view text);
  static ListRecord Read(const Line* first, const Line* after);
  static void ReadStrings(std::string_view line, ListRecord& record);

  std::vector<ListRecord> fRecords;
  std::vector<std::string> fUnmatched;
};

}  // namespace usbinfo_test
