#include "cli/diff/ControllerMatch.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <tuple>

namespace cli {

namespace {

/// Serial number, product, bus; what does not count is empty.
using Key = std::tuple<std::string, std::string, std::uint32_t>;
/// Nothing for a controller that the rule is not about.
using KeyOf = std::function<std::optional<Key>(const ControllerGroup& controller)>;

std::optional<Key> BySerialAndProduct(const ControllerGroup& controller) {
  if (controller.serial.empty()) return std::nullopt;
  return Key(controller.serial, controller.product, 0);
}

std::optional<Key> BySerial(const ControllerGroup& controller) {
  if (controller.serial.empty()) return std::nullopt;
  return Key(controller.serial, "", 0);
}

std::optional<Key> ByBusWithSerial(const ControllerGroup& controller) {
  return controller.serial.empty() ? std::nullopt : std::optional(Key("", "", controller.bus));
}

std::optional<Key> ByBusWithoutSerial(const ControllerGroup& controller) {
  return controller.serial.empty() ? std::optional(Key("", "", controller.bus)) : std::nullopt;
}

class ControllerMatcher {
 public:
  ControllerMatcher(const std::vector<ControllerGroup>& olds, const std::vector<ControllerGroup>& news)
      : fOlds(olds),
        fNews(news),
        fPartners(olds.size(), ComparedInventory::kNone),
        fIsTaken(news.size(), false) {}

  /// Pairs those that are left and have equal keys, in their order.
  void Run(const KeyOf& keyOfOld, const KeyOf& keyOfNew) {
    std::multimap<Key, std::size_t> news;
    for (std::size_t now = 0; now < fNews.size(); ++now) {
      const std::optional<Key> key = fIsTaken[now] ? std::nullopt : keyOfNew(fNews[now]);
      if (key) news.emplace(*key, now);
    }
    for (std::size_t old = 0; old < fOlds.size(); ++old) {
      const std::optional<Key> key =
          fPartners[old] == ComparedInventory::kNone ? keyOfOld(fOlds[old]) : std::nullopt;
      const auto found = key ? news.lower_bound(*key) : news.end();
      if (found == news.end() || found->first != *key) continue;
      fPartners[old] = found->second;
      fIsTaken[found->second] = true;
      news.erase(found);
    }
  }

  std::vector<std::size_t> Take() { return std::move(fPartners); }

 private:
  const std::vector<ControllerGroup>& fOlds;
  const std::vector<ControllerGroup>& fNews;
  std::vector<std::size_t> fPartners;
  std::vector<bool> fIsTaken;
};

}  // namespace

std::vector<std::size_t> MatchControllers(const std::vector<ControllerGroup>& olds,
                                          const std::vector<ControllerGroup>& news) {
  ControllerMatcher matcher(olds, news);
  matcher.Run(BySerialAndProduct, BySerialAndProduct);
  matcher.Run(BySerial, BySerial);
  matcher.Run(ByBusWithoutSerial, ByBusWithoutSerial);
  matcher.Run(ByBusWithSerial, ByBusWithoutSerial);
  matcher.Run(ByBusWithoutSerial, ByBusWithSerial);
  return matcher.Take();
}

}  // namespace cli
