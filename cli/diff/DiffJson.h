// The difference of two inventories for programs, schema "usbinfo.diff/2"; docs/usbinfo-diff.schema.json
// describes its form.
#pragma once

#include <array>
#include <string>
#include <utility>

#include "cli/diff/DiffLine.h"

namespace cli {

class JsonWriter;
struct ComparedMachine;
struct DiffEntry;
struct InventoryDifference;

/// One object with all lists, even empty ones, and keys in a fixed order. ASCII only.
std::string RenderDiffJson(const InventoryDifference& difference);

/// The same object as a value in another document.
void WriteDiff(JsonWriter& json, const InventoryDifference& difference);

/// Parts of the document, each on one line without an end: the members "old" and "new", and the elements of
/// the lists.
std::string DiffMachineJson(const ComparedMachine& machine);
std::string DiffItemJson(const DiffEntry& entry);

/// Puts the document together from such parts, on one line without an end.
class DiffJsonParts {
 public:
  DiffJsonParts(std::string before, std::string after)
      : fBefore(std::move(before)), fAfter(std::move(after)) {}

  /// Adds an element to the end of a list.
  void Add(DifferenceKind kind, const std::string& item);
  std::string Document() const;

 private:
  std::string fBefore;
  std::string fAfter;
  /// By kind, the elements with commas between them.
  std::array<std::string, kDifferenceKinds.size()> fLists;
};

}  // namespace cli
