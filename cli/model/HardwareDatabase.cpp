#include "cli/model/HardwareDatabase.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <utility>

// The types of libudev's interface, which its programs only have pointers to.
struct udev;
struct udev_hwdb;
struct udev_list_entry;

namespace cli {

/// The functions of libudev's stable interface (soname 1) that are called, and what they work on.
class HardwareDatabase::Library {
 public:
  explicit Library(const char* file) : fHandle(::dlopen(file, RTLD_LAZY | RTLD_LOCAL)) {
    if (fHandle == nullptr) return;
    const auto open = Function<udev_hwdb*(udev*)>("udev_hwdb_new");
    fClose = Function<udev_hwdb*(udev_hwdb*)>("udev_hwdb_unref");
    fEntries =
        Function<udev_list_entry*(udev_hwdb*, const char*, unsigned)>("udev_hwdb_get_properties_list_entry");
    fFind = Function<udev_list_entry*(udev_list_entry*, const char*)>("udev_list_entry_get_by_name");
    fValue = Function<const char*(udev_list_entry*)>("udev_list_entry_get_value");
    const bool isWhole =
        open != nullptr && fClose != nullptr && fEntries != nullptr && fFind != nullptr && fValue != nullptr;
    if (isWhole) fDatabase = open(nullptr);
  }
  Library(const Library&) = delete;
  Library& operator=(const Library&) = delete;
  ~Library() {
    if (fDatabase != nullptr) fClose(fDatabase);
    if (fHandle != nullptr) ::dlclose(fHandle);
  }

  bool IsOpen() const { return fDatabase != nullptr; }

  /// A property of the device with that modalias; empty where it has none.
  std::string Property(const std::string& modalias, const char* name) const {
    udev_list_entry* const found = fFind(fEntries(fDatabase, modalias.c_str(), 0), name);
    const char* const value = found == nullptr ? nullptr : fValue(found);
    return value == nullptr ? std::string() : value;
  }

 private:
  template <typename Signature>
  Signature* Function(const char* name) const {
    return reinterpret_cast<Signature*>(::dlsym(fHandle, name));
  }

  void* fHandle;
  udev_hwdb* fDatabase = nullptr;
  udev_hwdb* (*fClose)(udev_hwdb*) = nullptr;
  udev_list_entry* (*fEntries)(udev_hwdb*, const char*, unsigned) = nullptr;
  udev_list_entry* (*fFind)(udev_list_entry*, const char*) = nullptr;
  const char* (*fValue)(udev_list_entry*) = nullptr;
};

HardwareDatabase::HardwareDatabase(std::unique_ptr<Library> library) : fLibrary(std::move(library)) {}

HardwareDatabase::~HardwareDatabase() = default;

std::shared_ptr<const HardwareDatabase> HardwareDatabase::Open(const char* library) {
  auto opened = std::make_unique<Library>(library);
  if (!opened->IsOpen()) return nullptr;
  return std::shared_ptr<const HardwareDatabase>(new HardwareDatabase(std::move(opened)));
}

std::string HardwareDatabase::Vendor(std::uint16_t vendor) const {
  return fLibrary->Property(fmt::format("usb:v{:04X}*", vendor), "ID_VENDOR_FROM_DATABASE");
}

std::string HardwareDatabase::Product(std::uint16_t vendor, std::uint16_t product) const {
  return fLibrary->Property(fmt::format("usb:v{:04X}p{:04X}*", vendor, product), "ID_MODEL_FROM_DATABASE");
}

}  // namespace cli
