// Visibility of the host's types. The plug-in is compiled with hidden visibility; what it shares with the
// host carries default visibility, so that exceptions and dynamic casts work across the module's border.
#pragma once

#define USBINFO_HOST_API __attribute__((visibility("default")))
