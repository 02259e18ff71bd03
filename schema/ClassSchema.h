// The classes that the stand-in knows: one table of names, types and keys, held against everything that is
// created, set and committed, and read by those who export.
#pragma once

#include <string>
#include <vector>

#include "host/TCIMValue.h"

namespace schema {

/// What all entity classes are kinds of, and where their keys come from. A class of this system's own, so
/// that no repository's standard classes are declared anew when the definitions are compiled into it.
inline constexpr const char* kEntityBaseClass = "KALDO_USBElement";

struct PropertySchema {
  std::string name;
  NKESTA20::TCIMValue::TCIMType::ECIMType type;
  bool isKey = false;
  /// Of a reference: the class that it leads to, kEntityBaseClass where that may be several.
  std::string referenceClass = {};
};

struct ClassSchema {
  enum class Kind { kEntity, kAssociation };

  std::string name;
  Kind kind;
  /// Ascending by name.
  std::vector<PropertySchema> properties;

  /// The property of that name; null when the class lacks it.
  const PropertySchema* FindProperty(const std::string& propertyName) const;
};

/// The six classes in the order in which a host asks for them: an association after what it links.
const std::vector<ClassSchema>& ServedClasses();

/// The class of that name, compared exactly; null when there is none.
const ClassSchema* FindClass(const std::string& className);

}  // namespace schema
