// `usbinfo schema`: the definitions of the classes that an inventory is made of. Reads only the schema; no
// plug-in is loaded.
#pragma once

#include <string>

#include "cli/command/SchemaOptions.h"

namespace cli {

/// Prints the definitions; gives the exit status. Throws UserError when they cannot be written.
int RunSchema(const SchemaOptions& options);

/// The classes as JSON, their properties ascending by name: `{"schema": "usbinfo.classes/1", "namespace":
/// NAME, "classes": {CLASS: {"kind": "entity" or "association", "properties": {NAME: {"type": TYPE,
/// "isArray": BOOL, "isKey": BOOL}}}}}`; a reference also has its "class".
std::string RenderJsonSchema();

/// The tables that the schemas of the JSON documents are generated from: the "classes" as above, and for each
/// property whether an instance may lack it, "isOptional"; and the "kinds" of devices, in their order.
std::string RenderClassTable();

}  // namespace cli
