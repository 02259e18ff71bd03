// What the command calls of libudev, over a database of a few names. An entry is a null-terminated list of
// pairs.
#include <cstring>
#include <string>

struct udev;
struct udev_hwdb {};

struct udev_list_entry {
  const char* name;
  const char* value;
};

namespace {

udev_hwdb theDatabase;

// As the real one, it gives the vendor's name for each of its products.
udev_list_entry theVendor[] = {{"ID_VENDOR_FROM_DATABASE", "Makers"}, {nullptr, nullptr}};
udev_list_entry theProduct[] = {
    {"ID_VENDOR_FROM_DATABASE", "Makers"}, {"ID_MODEL_FROM_DATABASE", "Thing"}, {nullptr, nullptr}};

}  // namespace

extern "C" {

udev_hwdb* udev_hwdb_new(udev*) {
  return &theDatabase;
}

udev_hwdb* udev_hwdb_unref(udev_hwdb*) {
  return nullptr;
}

udev_list_entry* udev_hwdb_get_properties_list_entry(udev_hwdb*, const char* modalias, unsigned) {
  const std::string wanted = modalias;
  if (wanted == "usb:v0ABCp00EF*") return theProduct;
  return wanted.rfind("usb:v0ABC", 0) == 0 ? theVendor : nullptr;
}

udev_list_entry* udev_list_entry_get_by_name(udev_list_entry* entry, const char* name) {
  for (; entry != nullptr && entry->name != nullptr; ++entry) {
    if (std::strcmp(entry->name, name) == 0) return entry;
  }
  return nullptr;
}

const char* udev_list_entry_get_value(udev_list_entry* entry) {
  return entry->value;
}
}
