// The origin of an inventory as a JSON value.
#pragma once

#include "cli/model/Origin.h"

namespace cli {

class JsonNode;
class JsonWriter;

void WriteOrigin(JsonWriter& json, const Origin& origin);

/// Members that are not known are skipped. Throws JsonError where one is missing, or has another type or
/// range.
Origin ReadOrigin(const JsonNode& node);

}  // namespace cli
