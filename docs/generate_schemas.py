#!/usr/bin/env python3
"""Write the JSON schemas of this folder from the table of classes.

What a schema says of classes and properties comes from the command's own
table; the rest of each schema stands here.

Usage:
    generate_schemas.py USBINFO           write the files
    generate_schemas.py --check USBINFO   exit with 1 if a file is out of date
"""

import json
import pathlib
import subprocess
import sys

FOLDER = pathlib.Path(__file__).resolve().parent

NUMBERS = {"uint8": 2**8 - 1, "uint16": 2**16 - 1, "uint64": 2**64 - 1}

# What the schema of inventories calls the classes, and says of them.
CLASSES = {
    "KALDO_USBController": ("controller", "A host controller; its root hub has the same DeviceID"),
    "KALDO_USBHub": ("hub", "A hub; a root hub lacks HubName and PortNumber"),
    "KALDO_USBPort": ("port", "A port of a hub"),
    "KALDO_USBDevice": ("device", "A device that is not a hub"),
    "KALDO_USBPortOnHub": ("portOnHub", "A port belongs to a hub"),
    "KALDO_USBConnection": ("connection", "A hub or device is plugged into a port"),
}

# What it says of a property, by class and name or by name alone.
DESCRIPTIONS = {
    "USBVersion": "200 for USB 2.0",
    ("KALDO_USBPort", "Speed"): "In bit/s; missing when it is not known",
    ("KALDO_USBDevice", "Speed"): "A class of speeds: 0 unknown, 1 low, 2 full, 3 high, 4 super",
    ("KALDO_USBPortOnHub", "Antecedent"): "Object path of the hub",
    ("KALDO_USBPortOnHub", "Dependent"): "Object path of the port",
    ("KALDO_USBConnection", "Antecedent"): "Object path of the port",
    ("KALDO_USBConnection", "Dependent"): "Object path of the hub or device",
}

# The strings that a device sends.
SENT = ("Description", "Manufacturer", "SerialNumber")

# What "usbinfo diff" reports otherwise than as a changed property.
COMPARED_ELSEWHERE = ("DeviceID", "Name", "HubName", "PortNumber", "SystemName", "SystemCreationClassName",
                      "CreationClassName")


def an_object(properties, **more):
    """An object with exactly these members."""
    return {**more, "type": "object", "additionalProperties": False, "required": list(properties),
            "properties": properties}


def a_list(items, **more):
    return {**more, "type": "array", "items": items}


def ref(name):
    return {"$ref": f"#/$defs/{name}"}


def described(text, schema):
    return {"description": text, **schema}


def a_document(name, title, properties, definitions):
    return {"$schema": "https://json-schema.org/draft/2020-12/schema", "$id": f"urn:usbinfo:{name}:1",
            "title": title, **an_object({"schema": {"const": f"usbinfo.{name}/1"}, **properties}),
            "$defs": definitions}


def entities(table):
    return [name for name, entry in table.items() if entry["kind"] == "entity"]


def value_of(table, class_name, name, entry):
    """The value of a property in an inventory."""
    if name == "CreationClassName":
        return {"const": class_name}
    if entry["type"] == "reference":
        leads_to = [entry["class"]] if entry["class"] in table else entities(table)
        names = leads_to[0] if len(leads_to) == 1 else \
            "KALDO_USB(" + "|".join(target.removeprefix("KALDO_USB") for target in leads_to) + ")"
        return {"type": "string", "pattern": f"^{names}\\."}
    if entry["type"] in NUMBERS:
        return ref(entry["type"])
    if entry["isArray"]:
        return a_list({"type": "string"})
    if name in SENT and class_name != "KALDO_USBPort":
        return ref("deviceString")
    return {"type": "string"}


def instance_of(table, class_name):
    properties = {}
    for name, entry in table[class_name]["properties"].items():
        value = value_of(table, class_name, name, entry)
        text = DESCRIPTIONS.get((class_name, name), DESCRIPTIONS.get(name))
        properties[name] = described(text, value) if text else value
    schema = an_object(properties, description=CLASSES[class_name][1])
    schema["required"] = [name for name, entry in table[class_name]["properties"].items()
                          if not entry["isOptional"]]
    return schema


def inventory(table):
    numbers = {name: {"type": "integer", "minimum": 0, "maximum": largest} for name, largest in NUMBERS.items()}
    text = {"description": 'As the device sends it; "Not Available" when it sends none', "type": "string"}
    classes = an_object({name: a_list(ref(CLASSES[name][0])) for name in table},
                        description="Instances in the order of the device list")
    system = an_object({"name": {"type": "string"}, "creationClassName": {"const": "KALDO_ComputerSystem"}})
    instances = {CLASSES[name][0]: instance_of(table, name) for name in table}
    return a_document("inventory", "USB inventory, as usbinfo --format json prints it",
                      {"system": system, "classes": classes},
                      {**numbers, "deviceString": text, **instances})


def placed_item(table):
    items = entities(table)
    plugged_in = [name for name in items if "VendorID" in table[name]["properties"]]
    hubs = [name for name in items if "NumberOfPorts" in table[name]["properties"]]

    def where(classes, then):
        return {"if": {"properties": {"class": {"enum": classes}}}, "then": {"properties": then}}

    def others(classes):
        return [name for name in items if name not in classes]

    text = {"type": ["string", "null"], "minLength": 1}
    item = an_object({
        "class": {"enum": items},
        "id": {"description": "Vendor and product number in hexadecimal; null for a controller or port",
               "type": ["string", "null"], "pattern": "^[0-9a-f]{4}:[0-9a-f]{4}$"},
        "name": described("The product string; null when there is none", text),
        "serial": described("Null when there is none", text),
        "place": ref("place"),
        "deviceId": {"description": "The DeviceID of the instance, which holds the kernel's number of that day",
                     "type": "string"},
        "ports": {"description": "Of a hub, how many ports it has in the inventory, which came or went with it; "
                                 "null for the rest",
                  "type": ["integer", "null"], "minimum": 0, "maximum": 2**32 - 1},
    }, description="A controller, hub, port or device")
    item["allOf"] = [
        where(others(plugged_in), {"id": {"type": "null"}, "serial": {"type": "null"}}),
        where(plugged_in, {"id": {"type": "string"}}),
        where(hubs, {"ports": {"type": "integer"}}),
        where(others(hubs), {"ports": {"type": "null"}}),
    ]
    return item


def place():
    number = {"minimum": 0, "maximum": 999999999}
    schema = an_object({
        "text": {"description": "As the text for people shows it", "type": "string", "minLength": 1},
        "bus": {"description": "Null for what no controller of a known bus leads to",
                "type": ["integer", "null"], **number},
        "identifier": {"description": "Where the place begins instead of at a bus; null where there is one",
                       "type": ["string", "null"]},
        "ports": {"description": "Port numbers from there on down, counted from 0", "type": "array",
                  "maxItems": 32, "items": {"type": "integer", **number}},
    }, description="Where an item is plugged in")
    schema["oneOf"] = [{"properties": {"bus": {"type": bus}, "identifier": {"type": identifier}}}
                       for bus, identifier in (("integer", "null"), ("null", "string"))]
    return schema


def difference(table):
    compared = sorted({name for entity in entities(table) for name in table[entity]["properties"]}
                      - set(COMPARED_ELSEWHERE))

    def change(text, fewest):
        properties = a_list(ref("property"), description="Ascending by name", minItems=fewest)
        return an_object({"old": ref("item"), "new": ref("item"), "properties": properties}, description=text)

    definitions = {
        "item": placed_item(table),
        "place": place(),
        "moved": change("The same item at two places, with what else changed about it", 0),
        "changed": change("The same item, with at least one property that differs", 1),
        "property": an_object({"name": {"enum": compared}, "from": ref("value"), "to": ref("value")}),
        "value": {"description": "Null where the item lacks the property",
                  "type": ["string", "integer", "array", "null"], "minimum": 0, "maximum": 2**64 - 1,
                  "items": {"type": "string"}},
    }
    system = an_object({"system": {"type": "string"}})
    lists = {"added": "item", "removed": "item", "moved": "moved", "changed": "changed"}
    return a_document("diff", "Difference of two USB inventories, as usbinfo diff --format json prints it",
                      {"old": system, "new": system,
                       **{name: a_list(ref(entry)) for name, entry in lists.items()}}, definitions)


def classes_document(table):
    def definition(entry):
        return {name: entry[name] for name in ("type", "isArray", "isKey", "class") if name in entry}

    def class_schema(entry):
        properties = {name: {"const": definition(of)} for name, of in entry["properties"].items()}
        return an_object({"kind": {"const": entry["kind"]},
                          "properties": an_object(properties, description="Ascending by name")})

    return a_document("classes", "Classes of a USB inventory, as usbinfo schema --format json prints them",
                      {"namespace": {"const": "root/cimv2"},
                       "classes": an_object({name: class_schema(entry) for name, entry in table.items()})}, {})


def main(arguments):
    is_check = arguments[:1] == ["--check"]
    command = arguments[is_check]
    printed = subprocess.run([command, "--generate", "classes"], check=True, capture_output=True).stdout
    table = json.loads(printed)
    status = 0
    for name, schema in (("usbinfo", inventory(table)), ("usbinfo-diff", difference(table)),
                         ("usbinfo-classes", classes_document(table))):
        path = FOLDER / f"{name}.schema.json"
        text = json.dumps(schema, indent=2) + "\n"
        if not is_check:
            path.write_text(text)
        elif path.read_text() != text:
            print(f"{path} is out of date; write it anew with docs/generate_schemas.py", file=sys.stderr)
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
