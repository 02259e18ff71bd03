// The data of the host's opaque value types: immutable, with a use count, and shared by copies, so that
// passing a value on costs a pointer. Only the stand-in uses it.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/TCIMReference.h"
#include "host/TCIMValue.h"

namespace standin {

/// Counts the handles on one piece of data.
struct SharedData {
  mutable std::atomic<unsigned int> uses{1};
};

/// A value that is not null.
struct ValueData : SharedData {
  using Type = NKESTA20::TCIMValue::TCIMType::ECIMType;
  using Content = std::variant<std::uint64_t, std::string, NKESTA20::TCIMReference, std::vector<std::string>>;

  ValueData(Type valueType, Content valueContent) : type(valueType), content(std::move(valueContent)) {}

  Type type;
  Content content;
};

/// An object path: keys ascending by name, and the text made from them once.
struct ReferenceData : SharedData {
  using Key = std::pair<std::string, NKESTA20::TCIMValue>;

  std::string className;
  std::vector<Key> keys;
  std::string text;
};

}  // namespace standin

namespace NKESTA20 {

/// The stand-in's access to the data of the opaque types; null for a null value or an empty path.
class HostData {
 public:
  static const standin::ValueData* Of(const TCIMValue& value) {
    return static_cast<const standin::ValueData*>(value.fData);
  }
  static const standin::ReferenceData* Of(const TCIMReference& path) {
    return static_cast<const standin::ReferenceData*>(path.fData);
  }
  /// A path over `data`, whose one use it takes over.
  static TCIMReference MakeReference(const standin::ReferenceData* data) {
    TCIMReference path;
    path.fData = data;
    return path;
  }
};

}  // namespace NKESTA20

namespace standin {

/// Adds a handle on `data`, which may be null.
template <typename Data>
const Data* Share(const Data* data) {
  if (data != nullptr) data->uses.fetch_add(1, std::memory_order_relaxed);
  return data;
}

/// Gives a handle on `data` back; the last one frees it.
template <typename Data>
void Release(const Data* data) {
  if (data != nullptr && data->uses.fetch_sub(1, std::memory_order_acq_rel) == 1) delete data;
}

}  // namespace standin
