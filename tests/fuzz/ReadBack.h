// Every output format rendered and read back: what a program, or a person at a terminal, makes of the text
// must be the inventory. A format in the command's list that has no reader here breaks the check.
#pragma once

#include <string>
#include <vector>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// How one format is read back.
struct FormatReader {
  std::string format;
  /// The character sets to render it under.
  std::vector<const char*> locales;
  /// Throws BrokenInvariant where `document` is not what the format must make of `inventory`.
  void (*check)(const std::string& document, const cli::Inventory& inventory);
};

/// The reader of the format of that name; throws BrokenInvariant when there is none.
const FormatReader& FindFormatReader(const std::string& format);

/// What the format of that name takes: the plug-in's result, with what the kernel's reader knows if it needs
/// that.
cli::Inventory InputOf(const std::string& format, const cli::Inventory& result);

/// Renders the plug-in's result in every format of the command and reads it back. What the command does not
/// print, an empty inventory for people and a policy for devices of which the kernel knows nothing, is left
/// out.
void CheckEveryFormat(const cli::Inventory& result);

/// Throws BrokenInvariant where a format for people shows something of `inventory` that a terminal acts on,
/// that is not seen or that turns the reading direction.
void CheckHarmless(const cli::Inventory& inventory);

}  // namespace usbinfo_test
