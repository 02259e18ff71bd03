// Property maps and instances as plain data that tests compare and print: each value by its exact type and
// content, so that a map matches only when it holds the same names, types and values and nothing else.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "host/PropertyMap.h"
#include "standin/Instance.h"
#include "standin/ValueView.h"

namespace usbinfo_test {

using ValueType = NKESTA20::TCIMValue::TCIMType;

/// A value: its type, and its text or, of an array, the elements' texts.
struct Typed {
  ValueType::ECIMType type;
  std::vector<std::string> content;

  bool operator==(const Typed& other) const { return type == other.type && content == other.content; }
};

inline std::ostream& operator<<(std::ostream& out, const Typed& value) {
  return out << "type " << value.type << " " << ::testing::PrintToString(value.content);
}

using Properties = std::map<std::string, Typed>;

inline Typed Uint8(unsigned int number) {
  return {ValueType::kUint8, {std::to_string(number)}};
}

inline Typed Uint16(unsigned int number) {
  return {ValueType::kUint16, {std::to_string(number)}};
}

inline Typed Uint64(unsigned long number) {
  return {ValueType::kUint64, {std::to_string(number)}};
}

inline Typed Text(const std::string& text) {
  return {ValueType::kString, {text}};
}

inline Typed Texts(const std::vector<std::string>& texts) {
  return {ValueType::kStringArray, texts};
}

/// A reference to the object of that path.
inline Typed Reference(const std::string& path) {
  return {ValueType::kReference, {path}};
}

inline Typed Describe(const NKESTA20::TCIMValue& value) {
  const ValueType::ECIMType type = standin::TypeOf(value);
  if (type == ValueType::kStringArray) return {type, standin::StringsOf(value)};
  return {type, {standin::TextOf(value)}};
}

inline Properties Describe(const NKESTA20::PropertyMap& map) {
  Properties properties;
  for (const auto& [name, value] : map) properties.emplace(name, Describe(value));
  return properties;
}

inline Properties Describe(const standin::Instance& instance) {
  Properties properties;
  for (const auto& [name, value] : instance.Properties()) properties.emplace(name, Describe(value));
  return properties;
}

inline std::vector<Properties> DescribeAll(const std::vector<NKESTA20::PropertyMap>& maps) {
  std::vector<Properties> all;
  all.reserve(maps.size());
  for (const NKESTA20::PropertyMap& map : maps) all.push_back(Describe(map));
  return all;
}

/// The texts of property `name`, one per map; "(absent)" where a map lacks it.
inline std::vector<std::string> TextsOf(const std::vector<NKESTA20::PropertyMap>& maps,
                                        const std::string& name) {
  std::vector<std::string> texts;
  texts.reserve(maps.size());
  for (const NKESTA20::PropertyMap& map : maps) {
    const auto found = map.find(name);
    texts.push_back(found == map.end() ? "(absent)" : standin::TextOf(found->second));
  }
  return texts;
}

}  // namespace usbinfo_test
