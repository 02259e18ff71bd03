#!/usr/bin/env python3
"""Write the JSON schemas of this folder from the tables of the command.

What a schema says of classes, properties and kinds of devices comes from the
command's own tables; the rest of each schema stands here.

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
# What it compares of the kernel's facts.
COMPARED_FACTS = ("kinds", "interfaces", "speed", "maxPower", "revision", "connect", "peer")


def an_object(properties, **more):
    """An object with exactly these members."""
    return {**more, "type": "object", "additionalProperties": False, "required": list(properties),
            "properties": properties}


def an_open_object(properties, **more):
    """An object that has these members and may have others."""
    schema = an_object(properties, **more)
    del schema["additionalProperties"]
    return schema


def or_null(schema):
    """The same value or null."""
    return {**schema, "type": [schema["type"], "null"]}


def a_list(items, **more):
    return {**more, "type": "array", "items": items}


def ref(name):
    return {"$ref": f"#/$defs/{name}"}


def described(text, schema):
    return {"description": text, **schema}


def a_document(name, title, properties, definitions, version=1, make=an_object):
    return {"$schema": "https://json-schema.org/draft/2020-12/schema", "$id": f"urn:usbinfo:{name}:{version}",
            "title": title, **make({"schema": {"const": f"usbinfo.{name}/{version}"}, **properties}),
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


TEXT = {"type": "string"}
TEXTS = a_list(TEXT)
TIME = {"type": "string", "pattern": "^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z$"}
SPEED = {"anyOf": [{"const": 1.5}, {"type": ["integer", "null"], "minimum": 1, "maximum": 1000000}]}


def origin():
    finding = an_open_object({
        "code": described("What is wrong, such as two-t-lines", TEXT),
        "lines": a_list(ref("uint64"), description="Numbers of lines of the list, from 1"),
        "device": described("The DeviceID of the device", TEXT),
    }, description="Something in the device list that the kernel does not write, so that a device may have forged it")
    repair = an_open_object({
        "code": described("What was repaired, such as parent", TEXT),
        "count": described("The number of records", ref("uint64")),
    }, description="Something false in the device list that was repaired")
    masked = an_open_object({"key": described("The fingerprint of the key; null for a random key", or_null(TEXT))},
                            description="Serial numbers are masked; null where they are not")
    selection = an_open_object({"classes": TEXTS, "ids": TEXTS, "places": TEXTS},
                               description="The options that left items out; null where all are there")
    return an_open_object({
        "source": described("What the plug-in read: a list made from sysfs, what it acquired itself, or a file",
                            {"enum": ["sysfs", "plugin", "list"]}),
        "collected": described("In UTC; null for a list from a file", or_null(TIME)),
        "program": described("Name and version", TEXT),
        "machine": described("A hash of the machine's id that nothing else uses; null where it is not known",
                             or_null(TEXT)),
        "findings": a_list(finding),
        "repairs": a_list(repair),
        "masked": or_null(masked),
        "selection": or_null(selection),
    }, description="Where the inventory comes from; null where that is not known")


def interface():
    code = {"type": "string", "pattern": "^[0-9a-f]{2}$"}
    return an_open_object({
        "configuration": ref("uint8"), "number": ref("uint8"), "setting": ref("uint8"),
        "active": described("Whether its configuration and the setting are in use", {"type": "boolean"}),
        "class": code, "subclass": code, "protocol": code,
        "driver": described("Null where none is bound", or_null(TEXT)),
    }, description="An alternate setting of an interface")


def kernel_name():
    bus, port = "(0|[1-9][0-9]{0,4})", "[1-9][0-9]{0,2}"
    return {"type": "string", "pattern": f"^(usb{bus}|{bus}-{port}(\\.{port})*)$"}


def kernel_device():
    revision = {"type": "string", "pattern": "^[0-9a-f]{1,2}\\.[0-9a-f]{2}$"}
    return an_open_object({
        "device": described("The DeviceID of its instance", TEXT),
        "name": or_null(described("The kernel's name, such as usb1 or 1-3.1", kernel_name())),
        "number": described("The device number on its bus", ref("uint16")),
        "speed": described("In Mbit/s, 1.5 for low speed", SPEED),
        "manufacturer": or_null(TEXT), "product": or_null(TEXT), "serial": or_null(TEXT),
        "kinds": a_list(ref("kind"), description="What the class codes of its interfaces say"),
        "interfaces": a_list(ref("interface"), description="Every setting of every configuration"),
        "maxPower": {"description": "Of the active configuration, in mA", "type": ["integer", "null"],
                     "minimum": 0, "maximum": NUMBERS["uint16"]},
        "revision": or_null(described("Its own version", revision)),
        "nodes": or_null(a_list(TEXT, description="Paths in /dev: its own, then those of its interfaces")),
    }, description="A device, hub or root hub; what is not known is null")


def kernel_port():
    name = or_null(kernel_name())
    return an_open_object({
        "port": described("The DeviceID of its instance", TEXT),
        "name": described("The kernel's name of what is or would be plugged in, such as 1-3", name),
        "peer": described("The same name of the port that shares its socket", name),
        "connect": described("The kernel's word, such as hotplug, hardwired or not used", or_null(TEXT)),
        "state": {"enum": ["used", "free", None]},
    }, description="A port of a hub; what is not known is null")


def values_of_properties():
    text = {"description": 'As the device sends it; "Not Available" when it sends none', "type": "string"}
    return {**{name: {"type": "integer", "minimum": 0, "maximum": largest} for name, largest in NUMBERS.items()},
            "deviceString": text}


def facts_of(tables):
    return {"kind": {"enum": tables["kinds"]}, "interface": interface(), "kernelDevice": kernel_device(),
            "kernelPort": kernel_port()}


def inventory(tables):
    table = tables["classes"]
    classes = an_object({name: a_list(ref(CLASSES[name][0])) for name in table},
                        description="Instances in the order of the device list")
    system = an_open_object({"name": TEXT, "creationClassName": {"const": "KALDO_ComputerSystem"}})
    kernel = an_open_object({"devices": a_list(ref("kernelDevice")), "ports": a_list(ref("kernelPort"))},
                            description="What the kernel knows besides the properties of the classes; "
                                        "null where it was not asked")
    instances = {CLASSES[name][0]: instance_of(table, name) for name in table}
    return a_document("inventory", "USB inventory, as usbinfo --format json prints it",
                      {"system": system, "origin": or_null(origin()), "classes": classes,
                       "kernel": or_null(kernel)},
                      {**values_of_properties(), **instances, **facts_of(tables)}, version=2, make=an_open_object)


def closed(schema):
    """The same schema, in which objects have no other members than those that it names."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    parts = {name: closed(part) for name, part in schema.items()}
    return {**parts, "additionalProperties": False} if "required" in schema else parts


def placed_item(table, class_name):
    properties = table[class_name]["properties"]
    is_port = class_name == "KALDO_USBPort"
    has_facts = is_port or "VendorID" in properties
    facts = {"anyOf": [ref("kernelPort" if is_port else "kernelDevice"), {"type": "null"}]}
    return an_object({
        "class": {"const": class_name},
        "path": described("Its object path", {"type": "string", "pattern": f"^{class_name}\\."}),
        "place": described("As the text for people shows it", {"type": "string", "minLength": 1}),
        "properties": ref(CLASSES[class_name][0]),
        "kernel": described("What the kernel knows of it", facts if has_facts else {"type": "null"}),
    })


def difference(tables):
    table = tables["classes"]
    compared = {name for entity in entities(table) for name in table[entity]["properties"]} - set(COMPARED_ELSEWHERE)

    def change(text, fewest, **more):
        properties = a_list(ref("property"), minItems=fewest,
                            description="Those of the class, ascending by name, then what the kernel knows")
        return an_object({**more, "old": ref("item"), "new": ref("item"), "properties": properties}, description=text)

    certain = described("Whether the serial number says that it is the same, not only that it is the only item of "
                        "its model", {"type": "boolean"})
    values = [{"type": ["string", "null"]}, {"type": "integer", "minimum": 0, "maximum": 2**64 - 1}, {"const": 1.5},
              a_list(TEXT), a_list(ref("interface"))]
    definitions = {
        "item": {"description": "A controller, hub, port or device",
                 "oneOf": [placed_item(table, name) for name in entities(table)]},
        "moved": change("The same item at two places, with what else changed about it", 0, certain=certain),
        "changed": change("The same item, with at least one property that differs", 1),
        "property": an_object({"name": {"enum": sorted(compared) + list(COMPARED_FACTS)}, "from": ref("value"),
                               "to": ref("value")}),
        "value": {"description": "Null where the item lacks the property", "anyOf": values},
        **{CLASSES[name][0]: instance_of(table, name) for name in entities(table)},
        **values_of_properties(), **closed(facts_of(tables)),
    }
    source = origin()["properties"]
    machine = an_object({"system": TEXT, "source": {"enum": [*source["source"]["enum"], None]},
                         "collected": source["collected"], "machine": source["machine"]})
    lists = {"added": "item", "removed": "item", "moved": "moved", "changed": "changed"}
    return a_document("diff", "Difference of two USB inventories, as usbinfo diff --format json prints it",
                      {"old": machine, "new": machine,
                       **{name: a_list(ref(entry)) for name, entry in lists.items()}}, definitions, version=2)


def difference_within(tables):
    """The definitions for a document that holds a difference: those of the difference, and itself."""
    diff = difference(tables)
    document = {name: diff[name] for name in ("type", "additionalProperties", "required", "properties")}
    return {"difference": {"description": diff["title"], **document}, **diff["$defs"]}


def changes(tables):
    comparison = an_object({
        "host": TEXT,
        "previous": described("When the earlier report was collected, in UTC", TIME),
        "collected": described("When the later report was collected, in UTC", TIME),
        "remarks": described("What is to be known of the comparison, such as why there is none", TEXTS),
        "difference": described("Null where the reports were not compared",
                                {"anyOf": [ref("difference"), {"type": "null"}]}),
    }, description="Two reports in a row of a host that differ")
    return a_document("changes", "Changes between reports, as usbinfo-store changes --format json prints them",
                      {"changes": a_list(ref("comparison"))},
                      {"comparison": comparison, **difference_within(tables)})


def vendor_and_product():
    return described("Vendor and product", {"type": "string", "pattern": "^[0-9a-f]{4}:[0-9a-f]{4}$"})


def watch(tables):
    visitor = an_object({
        "name": described("The kernel's name of its place, such as 1-3.1", kernel_name()),
        "number": described("The device number on its bus; 0 where it is not known", ref("uint16")),
        "id": vendor_and_product(),
        "kinds": a_list(ref("kind"), description="What the class codes of its interfaces say"),
    }, description="A device that was plugged in and unplugged again before anything else could be read of it")
    refused = checked_device(
        described("Null where a rule needs what is not known of the device", {"enum": ["block", "reject", None]}),
        reason=described("What decided, or what is not known", {"type": "string", "minLength": 1}))
    return a_document("watch", "What changed on a machine, a line as usbinfo watch --format jsonl prints it", {
        "time": described("When the machine was looked at, in UTC", TIME),
        "machine": described("A hash of the machine's id that nothing else uses; null where it is not known",
                             or_null(TEXT)),
        "sequence": described("From 1 in each run", {"type": "integer", "minimum": 1, "maximum": NUMBERS["uint64"]}),
        "difference": described("From the look before", ref("difference")),
        "cameAndWent": a_list(visitor),
        "eventsLost": described("Whether events were lost, so that more devices may have come and gone",
                                {"type": "boolean"}),
        "notAllowed": described("Devices that the policy does not allow, and that were not there, or allowed, at the "
                                "look before; null where there is no policy", or_null(a_list(refused))),
    }, difference_within(tables))


def columns_of_devices():
    return {
        "host": TEXT,
        "place": described("The kernel's name, or the DeviceID where that is not known", TEXT),
        "kinds": a_list(ref("kind")),
        "manufacturer": or_null(TEXT), "product": or_null(TEXT),
        "id": vendor_and_product(),
        "serial": or_null(TEXT),
        "speed": described("In Mbit/s, 1.5 for low speed", SPEED),
        "drivers": TEXTS,
        "since": described("When the first report that has it was collected", TIME),
        "until": described("When the first report that lacks it was collected; null where the last one has it",
                           or_null(TIME)),
    }


def columns_of_hosts():
    def count(text):
        return or_null(described(text, {"type": "integer", "minimum": 0, "maximum": NUMBERS["uint64"]}))

    return {
        "host": described("Its name, or that of a node that never gave a report, of which all else is null", TEXT),
        "lastReport": described("When it was collected", or_null(TIME)),
        "reports": count("The number of reports"),
        **{name: count("The number in the last report") for name in ("controllers", "hubs", "ports", "devices")},
        "late": count("The number of reports that came after a later one"),
        "suspect": count("The number of findings in the last report"),
        "mask": described("The fingerprint of the key that serial numbers are masked with, or none", or_null(TEXT)),
        "machine": described("The hash of the machine's id", or_null(TEXT)),
        "lastLoaded": described("When a report was loaded last", or_null(TIME)),
        "lastError": described("Why a report was refused or could not be collected since then", or_null(TEXT)),
    }


def lists(tables):
    def counts(*names):
        return {name: ref("uint64") for name in names}

    def a_printed_list(name, columns, **length):
        return an_object({"schema": {"const": f"usbinfo.{name}/1"}, name: a_list(an_object(columns), **length)})

    one = {"minItems": 1, "maxItems": 1}
    number_of_schema = {"type": "integer", "minimum": 1, "maximum": NUMBERS["uint16"]}
    return {"$schema": "https://json-schema.org/draft/2020-12/schema", "$id": "urn:usbinfo:lists:1",
            "title": "The lists that the subcommands of usbinfo-store print with --format json",
            "oneOf": [
                a_printed_list("hosts", columns_of_hosts()),
                a_printed_list("devices", columns_of_devices()),
                a_printed_list("loaded", counts("changed", "unchanged", "known", "late", "refused"), **one),
                a_printed_list("collected", counts("changed", "unchanged", "known", "late", "failed"), **one),
                a_printed_list("forgotten", {"host": TEXT, **counts("reports")}, **one),
                a_printed_list("renamed", {"host": TEXT, "before": TEXT}, **one),
                a_printed_list("pruned", counts("reports", "items", "late", "refused"), **one),
                a_printed_list("migrated", {"version": number_of_schema, "before": or_null(number_of_schema)}, **one),
            ],
            "$defs": {"kind": {"enum": tables["kinds"]}, "uint64": values_of_properties()["uint64"]}}


def checked_device(decision, **more):
    rule = an_object({"line": described("The number of its line, from 1", ref("uint64")),
                      "text": described("The line", {"type": "string", "minLength": 1})})
    return an_object({
        "device": described("The DeviceID of its instance", TEXT),
        "name": or_null(described("The kernel's name, such as usb1 or 1-3.1", kernel_name())),
        "id": vendor_and_product(),
        "product": or_null(TEXT), "serial": or_null(TEXT),
        "kinds": a_list(ref("kind"), description="What the class codes of its interfaces say"),
        "decision": decision,
        "rule": described("The one that decided; null where none matches", or_null(rule)),
        **more,
    })


def policy_checked():
    return {"policy": described("The file of the policy", TEXT),
            "default": described("For devices that no rule matches", {"enum": ["allow", "block"]})}


def check(tables):
    device = {"description": "A hub or device, allowed or not",
              **checked_device({"enum": ["allow", "block", "reject"]})}
    source = origin()["properties"]
    inventory_checked = an_object({
        "system": TEXT, "source": {"enum": [*source["source"]["enum"], None]}, "collected": source["collected"],
        "machine": source["machine"],
        "suspect": described("Whether a device may have forged lines of its list", {"type": "boolean"}),
        "refused": described("The number of devices that are not allowed", ref("uint64")),
        "devices": a_list(ref("device"), description="By place"),
    })
    return a_document("check", "Check of USB inventories against a policy, as usbinfo check --format json prints it",
                      {**policy_checked(), "inventories": a_list(ref("inventory"))},
                      {"inventory": inventory_checked, "device": device, "kind": {"enum": tables["kinds"]},
                       "uint64": values_of_properties()["uint64"]})


def checks(tables):
    def host(text, **more):
        return an_object({
            "host": TEXT, "collected": described("The time of its report", TIME),
            "suspect": described("Whether a device may have forged lines of its list", {"type": "boolean"}),
            **more}, description=text)

    checked = host("A host that was checked", error={"type": "null"}, devices=ref("uint64"),
                   refused=a_list(ref("device"), description="What is not allowed, by place"))
    failed = host("A host that could not be checked", error=described("Why", {"type": "string", "minLength": 1}),
                  devices={"type": "null"}, refused=a_list(False, maxItems=0))
    return a_document("checks", "Check of all hosts against a policy, as usbinfo-store check --format json prints it",
                      {**policy_checked(), "hosts": a_list({"oneOf": [checked, failed]}, description="By name")},
                      {"device": checked_device({"enum": ["block", "reject"]}), "kind": {"enum": tables["kinds"]},
                       "uint64": values_of_properties()["uint64"]})


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
    tables = json.loads(printed)
    table = tables["classes"]
    status = 0
    for name, schema in (("usbinfo", inventory(tables)), ("usbinfo-diff", difference(tables)),
                         ("usbinfo-check", check(tables)), ("usbinfo-checks", checks(tables)),
                         ("usbinfo-classes", classes_document(table)), ("usbinfo-changes", changes(tables)),
                         ("usbinfo-lists", lists(tables)), ("usbinfo-watch", watch(tables))):
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
