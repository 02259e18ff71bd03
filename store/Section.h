// The parts of a report, in the order in which a document has them. The numbers stand in the store.
#pragma once

#include <array>

#include "schema/ClassSchema.h"

namespace store {

enum class Section : std::uint8_t {
  kController,
  kHub,
  kPort,
  kDevice,
  kPortOnHub,
  kConnection,
  /// What the kernel knows of devices and ports.
  kDeviceFacts,
  kPortFacts,
};

inline constexpr std::array<Section, 6> kClassSections = {Section::kController, Section::kHub,
                                                          Section::kPort,       Section::kDevice,
                                                          Section::kPortOnHub,  Section::kConnection};

/// `section` must be one of kClassSections.
inline schema::ClassId ClassOf(Section section) {
  using schema::ClassId;
  constexpr std::array<ClassId, 6> kClasses = {ClassId::kController, ClassId::kHub,
                                               ClassId::kPort,       ClassId::kDevice,
                                               ClassId::kPortOnHub,  ClassId::kConnection};
  return kClasses[static_cast<std::size_t>(section)];
}

}  // namespace store
