// Cuts the text of a device list into device records. It owns no state between texts and needs no host, so
// that it can be driven alone; acquisition hands it the text, the inventory takes the records.
#pragma once

#include <functional>
#include <queue>
#include <string>

#include "usbfs/UsbDevice.h"

/// Called with the type of each line that no parser takes: its first character, "\n" for a blank line, empty
/// for the piece behind a final newline.
using UnmatchedLineHandler = std::function<void(const std::string& type)>;

/// The records of `text` in the order in which they stand in it. A record is closed by its first endpoint
/// line, a blank line or the last line; the lines behind that first endpoint line count for the next record.
/// A newline at the very start is not counted, so the last piece of such a text is left out.
std::queue<UsbDevice> CutDeviceList(const std::string& text, const UnmatchedLineHandler& onUnmatched);
