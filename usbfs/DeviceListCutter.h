// Cuts the text of a device list into device records. It keeps no state between texts and needs no host, so
// it can be used alone; acquisition provides the text, the inventory takes the records.
#pragma once

#include <functional>
#include <queue>
#include <string>

#include "usbfs/UsbDevice.h"

/// Called with the type of each line that no parser takes: its first character, "\n" for a blank line, empty
/// for the piece after a final newline.
using UnmatchedLineHandler = std::function<void(const std::string& type)>;

/// The records of `text` in the order in which they stand in it. A record is closed by its first endpoint
/// line, a blank line or the last line; the lines after that first endpoint line belong to the next record. A
/// newline at the very start is not counted, so the last piece of such a text is left out.
std::queue<UsbDevice> CutDeviceList(const std::string& text, const UnmatchedLineHandler& onUnmatched);
