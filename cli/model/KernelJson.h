// What the kernel knows of devices and ports as a JSON value.
#pragma once

#include "cli/model/KernelFacts.h"

namespace cli {

class JsonNode;
class JsonWriter;

void WriteKernelFacts(JsonWriter& json, const KernelFacts& facts);
void WriteDeviceFacts(JsonWriter& json, const DeviceFacts& device);
void WritePortFacts(JsonWriter& json, const PortFacts& port);
/// One setting of an interface.
void WriteInterfaceFacts(JsonWriter& json, const InterfaceFacts& interface);

/// Members that are not known are skipped. Throws JsonError where one is missing, or has another type, form
/// or range.
KernelFacts ReadKernelFacts(const JsonNode& node);

}  // namespace cli
