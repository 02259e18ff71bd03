// What a hub or device reports about itself, as text for people.
#pragma once

#include <cstdint>
#include <string>

#include "cli/model/Item.h"
#include "cli/model/KernelFacts.h"

namespace cli {

class UsbIds;

/// The string that a device sent for the property; empty where it sent none.
std::string SentString(const Item& item, PropertyId property);
/// The same of a value.
std::string SentString(const std::string& text);

/// What the device itself sends, which `facts`, null where nothing is known, has from the kernel. The
/// plug-in's strings count only where the kernel's are not known, because a device can write a string that
/// the plug-in takes for another one.
std::string ProductOf(const Item& item, const DeviceFacts* facts);
std::string ManufacturerOf(const Item& item, const DeviceFacts* facts);
std::string SerialOf(const Item& item, const DeviceFacts* facts);

/// The product string; "(no name)" where the device sent none.
std::string NameOf(const Item& item);

/// "1d6b:0002", the numbers of vendor and product; empty for controllers and ports.
std::string FormatId(const Item& item);

/// "1.10" for 110; "version unknown" for 0.
std::string FormatVersion(std::uint64_t version);

/// A code of two hexadecimal digits; the property holds the first one minus the character '0': "0*"; "?" when
/// it is not a digit.
std::string FormatCode(std::uint64_t code);

/// Whether a number that the list gives as one digit, such as the number of configurations, is known. A
/// missing one is stored as a number that is not a digit.
bool IsDigit(std::uint64_t number);

/// "1 port", "2 ports".
std::string Count(std::uint64_t number, const std::string& noun);

/// The names that the list of vendors and products has for a hub or device: "product (vendor)", or the one of
/// them that is listed. It does not come from the device. Empty without `names`.
std::string KnownAs(const Item& item, const UsbIds* names);

}  // namespace cli
