#include "cli/diff/Comparability.h"

#include <fmt/format.h>

#include <algorithm>
#include <vector>

namespace cli {

namespace {

std::optional<Masking> MaskingOf(const Inventory& inventory) {
  return inventory.GetOrigin() ? inventory.GetOrigin()->masked : std::nullopt;
}

/// The order of the values has no meaning.
std::optional<SelectedBy> SelectedByOf(const Inventory& inventory) {
  if (!inventory.GetOrigin() || !inventory.GetOrigin()->selection) return std::nullopt;
  SelectedBy selected = *inventory.GetOrigin()->selection;
  for (std::vector<std::string>* const values : {&selected.classes, &selected.ids, &selected.places}) {
    std::sort(values->begin(), values->end());
  }
  return selected;
}

bool HasRandomKey(const Masking& masking) {
  return !masking.key;
}

/// Whether both were saved by one run of the command, which has one random key.
bool IsSameRun(const Origin& before, const Origin& after) {
  return before.collected && before == after;
}

}  // namespace

std::optional<std::string> DifferenceOfMasks(const Inventory& before, const Inventory& after) {
  if (IsMaskingUnknown(before, after)) return std::nullopt;
  const std::optional<Masking> old = MaskingOf(before);
  const std::optional<Masking> now = MaskingOf(after);
  if (!old && !now) return std::nullopt;
  if (!old || !now) return "the serial numbers are masked in only one of them";
  if (IsSameRun(*before.GetOrigin(), *after.GetOrigin())) return std::nullopt;
  if (HasRandomKey(*old) || HasRandomKey(*now)) {
    return "the serial numbers are masked with a random key; mask them with --mask-key FILE";
  }
  if (old->key == now->key) return std::nullopt;
  return fmt::format("the serial numbers are masked with two keys, {} and {}", *old->key, *now->key);
}

bool IsMaskingUnknown(const Inventory& before, const Inventory& after) {
  return !before.GetOrigin() || !after.GetOrigin();
}

SelectionToApply CompareSelections(const Inventory& before, const Inventory& after) {
  const std::optional<SelectedBy> old = SelectedByOf(before);
  const std::optional<SelectedBy> now = SelectedByOf(after);
  if (old == now) return SelectionToApply::kNone;
  if (old && now) return SelectionToApply::kImpossible;
  if (!SelectionOf(old ? before : after)) return SelectionToApply::kImpossible;
  return old ? SelectionToApply::kToNew : SelectionToApply::kToOld;
}

std::optional<Selection> SelectionOf(const Inventory& inventory) {
  const SelectedBy selected = SelectedByOf(inventory).value_or(SelectedBy());
  Selection selection;
  for (const std::string& text : selected.ids) {
    const std::optional<VendorProduct> id = ParseVendorProduct(text);
    if (!id) return std::nullopt;
    selection.ids.push_back(*id);
  }
  for (const std::string& name : selected.classes) {
    const schema::ClassSchema* const found = schema::FindClass(name);
    if (found == nullptr) return std::nullopt;
    selection.classes.push_back(found->id);
  }
  if (selected.places.size() > 1) return std::nullopt;
  if (selected.places.empty()) return selection;
  selection.place = ParseBusDevice(selected.places.front());
  if (!selection.place) selection.name = ParseKernelName(selected.places.front());
  return selection.place || selection.name ? std::optional(selection) : std::nullopt;
}

}  // namespace cli
