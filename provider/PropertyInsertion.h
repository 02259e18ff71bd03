// Insertion into property maps: only non-empty values are stored, and the first value of a name stays. The
// inventory relies on both.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "host/TCIMValue.h"

/// Inserts `value` under `name` unless it is null or the name is taken.
template <typename Map>
void InsertProperty(Map* map, std::string name, NKESTA20::TCIMValue value) {
  if (value.IsNull()) return;
  map->insert(std::make_pair(name, value));
}

/// Inserts `text` as a string value under `name` unless it is empty or the name is taken.
template <typename Map>
void InsertStringProperty(Map* map, std::string name, std::string text) {
  if (text.empty()) return;
  map->insert(std::make_pair(name, NKESTA20::TCIMValue(text)));
}

/// An array-of-strings value holding `texts` in order.
inline NKESTA20::TCIMValue MakeStringArrayValue(const std::vector<std::string>& texts) {
  using NKESTA20::TCIMValue;
  constexpr int kArrayOfStrings = 13;
  std::vector<TCIMValue> elements;
  elements.reserve(texts.size());
  for (const std::string& text : texts) elements.emplace_back(text);
  return TCIMValue(TCIMValue::TCIMType(static_cast<TCIMValue::TCIMType::ECIMType>(kArrayOfStrings)),
                   static_cast<unsigned int>(elements.size()), elements);
}
