#include "cli/model/UsbIds.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <system_error>

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

/// Four digits, blanks and a name; nothing when `line` is anything else.
std::optional<NumberAndName> Parse(std::string_view line) {
  constexpr std::size_t kDigits = 4;
  constexpr int kBase = 16;
  constexpr std::string_view kBlanks = " \t\r";
  NumberAndName parsed{};
  const char* const end = line.data() + std::min(kDigits, line.size());
  const auto [stop, error] = std::from_chars(line.data(), end, parsed.number, kBase);
  if (error != std::errc() || stop != line.data() + kDigits) return std::nullopt;
  const std::string_view rest = line.substr(kDigits);
  const std::size_t first = rest.find_first_not_of(kBlanks);
  if (first == 0 || first == std::string_view::npos) return std::nullopt;
  parsed.name = rest.substr(first, rest.find_last_not_of(kBlanks) - first + 1);
  return parsed;
}

std::string ReadList(const std::string& path) {
  // Opening a pipe without a writer would wait.
  const sys::FileDescriptor file = sys::OpenFile(path, O_RDONLY | O_NONBLOCK);
  struct stat status {};
  if (::fstat(file.Get(), &status) != 0) sys::ThrowSystemError(errno);
  if (S_ISDIR(status.st_mode)) sys::ThrowSystemError(EISDIR);
  if (!S_ISREG(status.st_mode)) sys::ThrowSystemError(EINVAL);
  if (status.st_size > kLargestList) sys::ThrowSystemError(EFBIG);
  return sys::ReadAll(file.Get());
}

UsbIds ReadNamedFile(const std::string& path) {
  try {
    return UsbIds(ReadList(path));
  } catch (const std::system_error& error) {
    throw UserError(
        fmt::format("cannot read {}: {}; USBINFO_IDS names a list of vendors and products such as "
                    "usb.ids, or is empty for no names",
                    path, error.code().message()));
  }
}

std::uint32_t Joined(std::uint32_t vendor, std::uint16_t product) {
  constexpr unsigned int kBits = 16;
  return (vendor << kBits) | product;
}

}  // namespace

UsbIds::UsbIds(std::string list) : fList(std::make_shared<const std::string>(std::move(list))) {
  std::string_view rest = *fList;
  // Any other line begins another part of the list, whose lines are not products.
  bool isBelowVendor = false;
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '\t') {
      const auto product = isBelowVendor ? Parse(line.substr(1)) : std::nullopt;
      if (product) fProducts.push_back({Joined(fVendors.back().number, product->number), product->name});
      continue;
    }
    const auto vendor = Parse(line);
    isBelowVendor = vendor.has_value();
    if (vendor) fVendors.push_back({vendor->number, vendor->name});
  }
  Sort(fVendors);
  Sort(fProducts);
}

std::optional<UsbIds> UsbIds::OfThisMachine() {
  if (const char* const file = std::getenv("USBINFO_IDS")) {
    return *file == '\0' ? std::nullopt : std::optional<UsbIds>(ReadNamedFile(file));
  }
  for (const char* place : kPlaces) {
    try {
      return UsbIds(ReadList(place));
    } catch (const std::system_error&) {
      // Names are optional: on failure the next list is tried.
      continue;
    }
  }
  return std::nullopt;
}

std::string UsbIds::Vendor(std::uint16_t vendor) const {
  return Find(fVendors, vendor);
}

std::string UsbIds::Product(std::uint16_t vendor, std::uint16_t product) const {
  return Find(fProducts, Joined(vendor, product));
}

void UsbIds::Sort(Entries& entries) {
  const auto isBefore = [](const Entry& left, const Entry& right) { return left.number < right.number; };
  if (std::is_sorted(entries.begin(), entries.end(), isBefore)) return;
  std::stable_sort(entries.begin(), entries.end(), isBefore);
}

std::string UsbIds::Find(const Entries& entries, std::uint32_t number) {
  const auto found =
      std::lower_bound(entries.begin(), entries.end(), number,
                       [](const Entry& entry, std::uint32_t wanted) { return entry.number < wanted; });
  return found != entries.end() && found->number == number ? std::string(found->name) : std::string();
}

}  // namespace cli
