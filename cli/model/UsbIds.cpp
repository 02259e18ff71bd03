#include "cli/model/UsbIds.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <system_error>

#include "cli/model/HardwareDatabase.h"
#include "cli/text/UserError.h"
#include "system/FileDescriptor.h"

namespace cli {

namespace {

constexpr const char* kPlaces[] = {"/usr/share/misc/usb.ids", "/var/lib/usbutils/usb.ids",
                                   "/usr/share/hwdata/usb.ids"};

/// Many times the size that the list has reached in twenty years.
constexpr off_t kLargestList = 64 << 20;

struct NumberAndName {
  std::uint16_t number;
  std::string_view name;
};

constexpr std::size_t kDigits = 4;

/// The four digits that a line begins with; nothing when it begins with anything else.
std::optional<std::uint16_t> NumberOf(std::string_view line) {
  constexpr int kBase = 16;
  std::uint16_t number = 0;
  const char* const end = line.data() + std::min(kDigits, line.size());
  const auto [stop, error] = std::from_chars(line.data(), end, number, kBase);
  if (error != std::errc() || stop != line.data() + kDigits) return std::nullopt;
  return number;
}

/// Four digits, blanks and a name; nothing when `line` is anything else.
std::optional<NumberAndName> Parse(std::string_view line) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::optional<std::uint16_t> number = NumberOf(line);
  if (!number) return std::nullopt;
  const std::string_view rest = line.substr(kDigits);
  const std::size_t first = rest.find_first_not_of(kBlanks);
  if (first == 0 || first == std::string_view::npos) return std::nullopt;
  return NumberAndName{*number, rest.substr(first, rest.find_last_not_of(kBlanks) - first + 1)};
}

/// Takes the first line off `text`, without its line break.
std::string_view TakeLine(std::string_view& text) {
  const std::string_view line = text.substr(0, text.find('\n'));
  text.remove_prefix(std::min(line.size() + 1, text.size()));
  return line;
}

/// Any other line ends a vendor's products: it is another vendor's, or begins another part of the list.
bool StandsBelowVendor(std::string_view line) {
  return line.empty() || line.front() == '#' || line.front() == '\t';
}

/// Takes a list piece by piece, and keeps the lines of some vendors: of thousands, a machine has devices of a
/// few.
class VendorFilter {
 public:
  explicit VendorFilter(const std::set<std::uint16_t>& vendors) : fVendors(vendors) {}

  void Take(std::string_view lines) {
    while (!lines.empty()) {
      const std::string_view line = TakeLine(lines);
      if (!StandsBelowVendor(line)) fKeeps = IsOfWantedVendor(line);
      if (fKeeps) fKept.append(line).append(1, '\n');
    }
  }
  std::string Kept() { return std::move(fKept); }

 private:
  bool IsOfWantedVendor(std::string_view line) const {
    const std::optional<std::uint16_t> number = NumberOf(line);
    return number && fVendors.count(*number) != 0;
  }

  const std::set<std::uint16_t>& fVendors;
  bool fKeeps = false;
  std::string fKept;
};

std::size_t ReadSome(int fd, char* buffer, std::size_t size) {
  ssize_t got = 0;
  do {
    got = ::read(fd, buffer, size);
  } while (got < 0 && errno == EINTR);
  if (got < 0) sys::ThrowSystemError(errno);
  return static_cast<std::size_t>(got);
}

/// Passes the text on in whole lines, so that it is never in memory as a whole.
void ReadLines(int fd, VendorFilter& filter) {
  constexpr std::size_t kChunk = 32768;
  std::string buffer(kChunk, '\0');
  std::size_t filled = 0;
  while (const std::size_t got = ReadSome(fd, buffer.data() + filled, buffer.size() - filled)) {
    filled += got;
    const std::string_view text(buffer.data(), filled);
    const std::size_t whole = text.rfind('\n') + 1;
    filter.Take(text.substr(0, whole));
    filled -= whole;
    std::copy_n(buffer.data() + whole, filled, buffer.data());
    if (filled == buffer.size()) buffer.resize(2 * filled);
  }
  filter.Take(std::string_view(buffer.data(), filled));
}

std::string ReadList(const std::string& path, const std::set<std::uint16_t>& vendors) {
  // Opening a pipe without a writer would wait.
  const sys::FileDescriptor file = sys::OpenFile(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) sys::ThrowSystemError(errno);
  if (S_ISDIR(status.st_mode)) sys::ThrowSystemError(EISDIR);
  if (!S_ISREG(status.st_mode)) sys::ThrowSystemError(EINVAL);
  if (status.st_size > kLargestList) sys::ThrowSystemError(EFBIG);
  VendorFilter filter(vendors);
  ReadLines(file.Get(), filter);
  return filter.Kept();
}

UsbIds ReadNamedFile(const std::string& path, const std::set<std::uint16_t>& vendors) {
  try {
    return UsbIds(ReadList(path, vendors));
  } catch (const std::system_error& error) {
    throw UserError(
        fmt::format("cannot read {}: {}; USBINFO_IDS names a list of vendors and products such as "
                    "usb.ids, or is empty for no names",
                    path, error.code().message()));
  }
}

/// The name of a product among the lines below its vendor's; empty where there is none.
std::string_view ProductIn(std::string_view lines, std::uint16_t number) {
  while (!lines.empty()) {
    const std::string_view line = TakeLine(lines);
    if (!StandsBelowVendor(line)) break;
    if (line.empty() || line.front() == '#') continue;
    const auto product = Parse(line.substr(1));
    if (product && product->number == number) return product->name;
  }
  return {};
}

}  // namespace

UsbIds::UsbIds(std::string list) : fList(std::make_shared<const std::string>(std::move(list))) {
  std::string_view rest = *fList;
  while (!rest.empty()) {
    const std::string_view line = TakeLine(rest);
    if (StandsBelowVendor(line)) continue;
    const auto vendor = Parse(line);
    if (vendor) fVendors.push_back({vendor->number, vendor->name, rest});
  }
  const auto isBefore = [](const VendorLine& left, const VendorLine& right) {
    return left.number < right.number;
  };
  if (!std::is_sorted(fVendors.begin(), fVendors.end(), isBefore)) {
    std::stable_sort(fVendors.begin(), fVendors.end(), isBefore);
  }
}

std::optional<UsbIds> UsbIds::OfThisMachine(const std::set<std::uint16_t>& vendors) {
  if (const char* const file = std::getenv("USBINFO_IDS")) {
    return *file == '\0' ? std::nullopt : std::optional<UsbIds>(ReadNamedFile(file, vendors));
  }
  for (const char* place : kPlaces) {
    try {
      return UsbIds(ReadList(place, vendors));
    } catch (const std::system_error&) {
      // Names are optional: on failure the next list is tried.
      continue;
    }
  }
  auto database = HardwareDatabase::Open();
  if (database == nullptr) return std::nullopt;
  return UsbIds(std::move(database));
}

std::string UsbIds::Vendor(std::uint16_t vendor) const {
  if (fDatabase != nullptr) return fDatabase->Vendor(vendor);
  const auto found = FirstFrom(vendor);
  return found != fVendors.end() && found->number == vendor ? std::string(found->name) : std::string();
}

std::string UsbIds::Product(std::uint16_t vendor, std::uint16_t product) const {
  if (fDatabase != nullptr) return fDatabase->Product(vendor, product);
  for (auto next = FirstFrom(vendor); next != fVendors.end() && next->number == vendor; ++next) {
    const std::string_view name = ProductIn(next->rest, product);
    if (!name.empty()) return std::string(name);
  }
  return {};
}

UsbIds::VendorLines::const_iterator UsbIds::FirstFrom(std::uint16_t number) const {
  return std::lower_bound(
      fVendors.begin(), fVendors.end(), number,
      [](const VendorLine& vendor, std::uint16_t wanted) { return vendor.number < wanted; });
}

}  // namespace cli
