#include "usbfs/DeviceListCutter.h"

#include <algorithm>
#include <utility>

namespace {

/// Collects records line by line.
class RecordBuilder {
 public:
  explicit RecordBuilder(const UnmatchedLineHandler& onUnmatched) : fOnUnmatched(onUnmatched) {}

  void Take(const std::string& type, const std::string& line, bool isLast) {
    Apply(type, line);
    if (fTopologySeen && (type == "E" || type == "\n" || isLast)) Close();
  }

  std::queue<UsbDevice> TakeRecords() { return std::move(fRecords); }

 private:
  void Apply(const std::string& type, const std::string& line) {
    switch (type.empty() ? '\0' : type.front()) {
      case 'T':
        fCurrent.setTopology(line);
        fTopologySeen = true;
        break;
      case 'S':
        fCurrent.setDeviceInfo(line);
        break;
      case 'D':
        fCurrent.setDescriptor(line);
        break;
      case 'P':
        fCurrent.setProduct(line);
        break;
      case 'I':
        fCurrent.setInterface(line);
        if (Interface().getString(line, "cls=", "(") == "09") fCurrent.SetDeviceType(UsbDevice::kHub);
        break;
      case 'C':
        fCurrent.setConfiguration(line);
        break;
      default:
        fOnUnmatched(type);
    }
  }

  void Close() {
    fRecords.push(fCurrent);
    fCurrent = UsbDevice();
    fTopologySeen = false;
  }

  const UnmatchedLineHandler& fOnUnmatched;
  UsbDevice fCurrent;
  bool fTopologySeen = false;
  std::queue<UsbDevice> fRecords;
};

/// The number of the last line: the number of newlines in `text`, except one at its very start.
std::ptrdiff_t LastLineNumber(const std::string& text) {
  if (text.empty()) return 0;
  return std::count(text.begin() + 1, text.end(), '\n');
}

}  // namespace

std::queue<UsbDevice> CutDeviceList(const std::string& text, const UnmatchedLineHandler& onUnmatched) {
  RecordBuilder builder(onUnmatched);
  const std::ptrdiff_t last = LastLineNumber(text);
  std::size_t start = 0;
  for (std::ptrdiff_t number = 0; number <= last; ++number) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    builder.Take(text.substr(start, 1), text.substr(start, end - start), number == last);
    start = end + 1;
  }
  return builder.TakeRecords();
}
