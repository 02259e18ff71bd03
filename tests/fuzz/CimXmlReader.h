// Reads the CIM-XML export back.
#pragma once

#include <string>

#include "cli/model/Inventory.h"

namespace usbinfo_test {

/// `text` as XML 1.0 can hold it: U+FFFD for broken UTF-8 and for what XML has no character for.
std::string AsXmlHoldsIt(const std::string& text);

/// Throws BrokenInvariant unless `document` is well-formed, valid against the document type, holds nothing
/// that a terminal acts on, and has every instance, key and property of `inventory` in order, with its type
/// and its value as XML can hold it.
void CheckCimXml(const std::string& document, const cli::Inventory& inventory);

}  // namespace usbinfo_test
