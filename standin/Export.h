// What libusbinfo-standin.so shows to the programs that link it; everything without this mark is hidden.
#pragma once

#define USBINFO_STANDIN_EXPORT __attribute__((visibility("default")))
/// For what only the stand-in calls of a class that is shown.
#define USBINFO_STANDIN_LOCAL __attribute__((visibility("hidden")))
