// Random reports of a machine.
#pragma once

#include <cstddef>
#include <random>
#include <string>

#include "tests/store/support/StoreTest.h"

namespace usbinfo_test {

/// Changes documents as machines, programs and hostile devices do; seeded.
class Mutation {
 public:
  explicit Mutation(unsigned seed) : fRandom(seed) {}

  std::size_t Below(std::size_t end) {
    return std::uniform_int_distribution<std::size_t>(0, end - 1)(fRandom);
  }

  void Apply(Json& document) {
    switch (Below(8)) {
      case 0:
        return RemoveItem(Items(document));
      case 1:
        return RepeatItem(Items(document));
      case 2:
        return SwapItems(Items(document));
      case 3:
        return RenameItem(Items(document));
      case 4:
        document["origin"]["program"] = "usbinfo 1.0." + std::to_string(Below(3));
        return;
      case 5:
        document["kernel"] = nullptr;
        return;
      case 6:
        document = Desktop(kNow);
        return;
      default:
        // What the machine reports most often: the same as before.
        return;
    }
  }

 private:
  Json& Items(Json& document) {
    const bool isKernel = !document["kernel"].is_null() && Below(3) == 0;
    Json& lists = isKernel ? document["kernel"] : document["classes"];
    auto list = lists.begin();
    std::advance(list, static_cast<std::ptrdiff_t>(Below(lists.size())));
    return *list;
  }

  void RemoveItem(Json& items) {
    if (!items.empty()) items.erase(Below(items.size()));
  }

  void RepeatItem(Json& items) {
    if (!items.empty()) items.push_back(Json(items[Below(items.size())]));
  }

  void SwapItems(Json& items) {
    if (!items.empty()) std::swap(items[Below(items.size())], items[Below(items.size())]);
  }

  void RenameItem(Json& items) {
    if (items.empty()) return;
    Json& item = items[Below(items.size())];
    for (const char* const name : {"Description", "SerialNumber", "product", "serial"}) {
      if (item.contains(name)) item[name] = "name \u00fc \\ \" " + std::to_string(Below(1000));
    }
  }

  std::mt19937 fRandom;
};

}  // namespace usbinfo_test
