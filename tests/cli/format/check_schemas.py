#!/usr/bin/env python3
"""Hold the published JSON schemas against what usbinfo prints.

Valid must be every expected inventory, and what the built command prints for
every captured list, for parts of one, for an empty one and hostile ones:
inventories, differences, classes.  The schemas must be strict: each of many
small damages to a valid document must be refused, damaged inventories by
``usbinfo diff`` too.  And the schema's properties must be those of ``usbinfo
schema``.

Of the store, all that its subcommands print as JSON must be valid, for a machine
that has each captured list in turn.

Usage:
    check_schemas.py USBINFO                  what usbinfo prints
    check_schemas.py USBINFO USBINFO-STORE    what usbinfo-store prints

Prints a line per failure; exits 1 if there is any.
"""

import copy
import itertools
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import jsonschema

TESTS = pathlib.Path(__file__).resolve().parents[2]
DOCS = TESTS.parent / "docs"
CAPTURES = sorted((TESTS / "data/captures").glob("*.txt"))
EXPECTED = sorted((TESTS / "data/expected").glob("*.json"))
# Two lists between which items are added, removed and changed.
OLD = TESTS / "data/captures/vm-desktop-debugfs.txt"
NEW = TESTS / "data/captures/usbdevices-rpi-nested-mtt-nostrings.txt"
# And one in which items of the first have moved.
MOVED = TESTS / "data/captures/vm-desktop-usb-devices.txt"

# Options that leave items out of an inventory or change them; the last two
# find nothing.
SELECTIONS = (
    ("-d", "0627:"), ("-s", "1:"), ("-s", "1:2", "--mask-serials"),
    ("--class", "KALDO_USBPort"), ("--class", "KALDO_USBConnection"),
    ("--request", "KALDO_USBDevice,KALDO_USBController"),
    ("--request", "KALDO_USBConnection"), ("-d", "ffff:ffff"),
)

HOSTILE = (
    b"\x1b[31mred", b"\x00\x01\x7f", b"\xff\xfe\xc0\x80", b"\xed\xa0\x80",
    b'"}],"KALDO_USBHub":[{"a":"\\', b"\\u0000\\ud800", b"\xe2\x80\xae",
    "\U0001f600\uffff".encode(), b"x" * 5000, b"a\rb\tc",
)

# What may be done to a document without making it invalid: texts may be any
# texts, lists may be empty, some members missing or null on purpose, and most objects
# of an inventory may have more members.
ALLOWED = {
    "usbinfo": (
        r"system: name = '\?'",
        r"classes: \w+ = \[\]",
        r"classes/KALDO_USB(Controller|Hub|Device)/0: without Description",
        r"classes/KALDO_USB(Hub|Device)/0: "
        r"without (HubName|Manufacturer|PortNumber|SerialNumber)",
        r"classes/KALDO_USBPort/0: without Speed",
        r"classes/\w+/0: (Description|DeviceID|HubName|Manufacturer|Name"
        r"|PortNumber|SerialNumber|SystemCreationClassName|SystemName) = '\?'",
        r"classes/KALDO_USBPort/0: StatusDescriptions = \[\]",
        r"classes/KALDO_USBPort/0/StatusDescriptions: 0 = '\?'",
        r"(|system|(origin|kernel)(/\w+)*): extra",
        r": (origin|kernel) = None",
        r"origin: (collected|machine|masked|selection) = None",
        r"origin: (program|machine) = '\?'",
        r"origin: (findings|repairs) = \[\]",
        r"origin/(findings|repairs)/0: (code|device) = '\?'",
        r"origin/findings/0: lines = \[1?\]",
        r"origin/masked: key = (None|'\?')",
        r"origin/selection: (classes|ids|places) = \[\]",
        r"origin/selection/(classes|ids|places): 0 = '\?'",
        r"kernel: (devices|ports) = \[\]",
        r"kernel/devices/0: (name|speed|manufacturer|product|serial|maxPower"
        r"|revision|nodes) = None",
        r"kernel/devices/0: (device|manufacturer|product|serial) = '\?'",
        r"kernel/devices/0: speed = 1\.5",
        r"kernel/devices/0: (kinds|interfaces|nodes) = \[\]",
        r"kernel/devices/0/interfaces/0: driver = (None|'\?')",
        r"kernel/devices/0/interfaces/0: active = True",
        r"kernel/devices/0/nodes: 0 = '\?'",
        r"kernel/ports/0: (name|peer|connect|state) = None",
        r"kernel/ports/0: (port|connect) = '\?'",
    ),
    "usbinfo-classes": (),
    "usbinfo-check": (
        r": policy = '\?'",
        r": inventories = \[\]",
        r"inventories/0: (system|machine) = '\?'",
        r"inventories/0: (source|collected|machine) = None",
        r"inventories/0: suspect = True",
        r"inventories/0: devices = \[\]",
        r"inventories/0/devices/0: (name|product|serial|rule) = None",
        r"inventories/0/devices/0: (device|product|serial) = '\?'",
        r"inventories/0/devices/0: kinds = \[\]",
        r"inventories/0/devices/0/rule: text = '\?'",
    ),
    "usbinfo-diff": (
        r"(old|new): (system|machine) = '\?'",
        r"(old|new): (source|collected|machine) = None",
        r": (added|removed|moved|changed) = \[\]",
        r"(added|removed|moved|changed)/0(/old|/new)?: (place = '\?'|kernel = None)",
        r"\w+/0(/old|/new)?/properties: without (Description|HubName|Manufacturer|PortNumber|SerialNumber|Speed)",
        r"\w+/0(/old|/new)?/properties: (Description|DeviceID|HubName|Manufacturer|Name"
        r"|PortNumber|SerialNumber|SystemCreationClassName|SystemName) = '\?'",
        r"\w+/0(/old|/new)?/properties: StatusDescriptions = \[\]",
        r"\w+/0(/old|/new)?/properties/StatusDescriptions: 0 = '\?'",
        r"\w+/0(/old|/new)?/kernel: (name|speed|manufacturer|product|serial|maxPower"
        r"|revision|nodes|peer|connect|state) = None",
        r"\w+/0(/old|/new)?/kernel: (device|port|manufacturer|product|serial|connect) = '\?'",
        r"\w+/0(/old|/new)?/kernel: speed = 1\.5",
        r"\w+/0(/old|/new)?/kernel: (kinds|interfaces|nodes) = \[\]",
        r"\w+/0(/old|/new)?/kernel/interfaces/0: (driver = (None|'\?')|active = True)",
        r"\w+/0(/old|/new)?/kernel/nodes: 0 = '\?'",
        r"moved/0: (properties = \[\]|certain = True)",
        r"(moved|changed)/0/properties/0: (from|to) = (None|'\?'|\[\]|1\.5)",
        r"(moved|changed)/0/properties/0/(from|to): 0 = '\?'",
    ),
    "usbinfo-lists": (
        r": (hosts|devices) = \[\]",
        r"hosts/0: (?!host)\w+ = None",
        r"hosts/0: (host|mask|machine|lastError) = '\?'",
        r"devices/0: (manufacturer|product|serial|speed|until) = None",
        r"devices/0: (host|place|manufacturer|product|serial) = '\?'",
        r"devices/0: speed = 1\.5",
        r"devices/0: (kinds|drivers) = \[\]",
        r"devices/0/drivers: 0 = '\?'",
        r"(forgotten|renamed)/0: (host|before) = '\?'",
        r"migrated/0: before = None",
    ),
}
ALLOWED["usbinfo-changes"] = (
    r": changes = \[\]",
    r"changes/0: (host = '\?'|remarks = \[\]|difference = None)",
    r"changes/0/remarks: 0 = '\?'",
    *(rf"changes/0/difference/?{pattern}"
      for pattern in ALLOWED["usbinfo-diff"]),
)
ALLOWED["usbinfo-checks"] = (
    r": policy = '\?'",
    r": hosts = \[\]",
    r"hosts/0: host = '\?'",
    r"hosts/0: suspect = True",
    r"hosts/0: refused = \[\]",
    r"hosts/0/refused/0: (name|product|serial|rule) = None",
    r"hosts/0/refused/0: (device|product|serial) = '\?'",
    r"hosts/0/refused/0: kinds = \[\]",
    r"hosts/0/refused/0/rule: text = '\?'",
    r"hosts/1: (host|error) = '\?'",
    r"hosts/1: suspect = True",
)
ALLOWED["usbinfo-watch"] = (
    r": machine = (None|'\?')",
    r": cameAndWent = \[\]",
    r": eventsLost = True",
    r": notAllowed = (None|\[\])",
    r"cameAndWent/0: kinds = \[\]",
    *(rf"difference/?{pattern}" for pattern in ALLOWED["usbinfo-diff"]),
)


class Failures:
    """Counts and prints failures."""

    def __init__(self):
        self.count = 0

    def report(self, what):
        """Report one failure."""
        self.count += 1
        print(what)


class Program:
    """A command, run on files of a folder of its own."""

    def __init__(self, path, folder):
        self.path = path
        self.folder = pathlib.Path(folder)
        self.environment = dict(os.environ)

    def run(self, *arguments):
        """Run it; return the exit status and the output."""
        done = subprocess.run(
            [self.path, *map(str, arguments)], stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
            env=self.environment)
        return done.returncode, done.stdout

    def document(self, *arguments):
        """Run it; return the JSON document it prints, None without one."""
        status, output = self.run(*arguments)
        return json.loads(output) if status in (0, 1) else None

    def file(self, name, content):
        """Write a file; return its path."""
        path = self.folder / name
        path.write_bytes(content)
        return path


class Usbinfo(Program):
    """The command that makes inventories."""

    def inventory(self, devices, *options):
        """Return the inventory of a device list."""
        return self.document("--format", "json", "--devices", devices,
                             *options)

    def difference(self, old, new):
        """Return the difference of two inventories."""
        return self.document("diff", "--allow-suspect", "--format", "json", old, new)

    def report(self, baseline):
        """Return how this machine differs from a baseline, as watch prints it."""
        return self.document("watch", "--allow-suspect", "--format", "jsonl", "--count", "1", "--timeout", "1",
                             "--baseline", baseline)


    def check(self, policy, *inventories):
        """Return the check of inventories against a policy."""
        file = self.file("rules.conf", policy)
        return self.document("check", "--allow-suspect", "--format", "json", file, *inventories)


class Store(Program):
    """The command that keeps inventories, with a store in its folder.

    The programs of ClusterShell are played: a node prints an inventory, another
    one nothing.
    """

    def __init__(self, path, folder, inventory):
        super().__init__(path, folder)
        line = self.file("line", f"good: {json.dumps(inventory)}\n".encode())
        self.play("nodeset", "echo good bad")
        self.play("clush", f"cat {line}")
        self.environment.update(USBINFO_STORE_DB=f"{folder}/store.db",
                                PATH=f"{folder}:{os.environ['PATH']}")

    def play(self, name, command):
        """Put a program in the place of another."""
        self.file(name, f"#!/bin/sh\n{command}\n".encode()).chmod(0o755)

    def load(self, inventory, number, *options):
        """Load an inventory as of a second; return what the command lists."""
        file = self.file("inventory.json", json.dumps(inventory).encode())
        return self.document("load", "--format", "json", "--collected",
                             f"2026-03-15T00:00:{number:02}Z", *options, file)


def schema(name):
    """Return a validator for a published schema, itself checked."""
    document = json.loads((DOCS / f"{name}.schema.json").read_text())
    jsonschema.Draft202012Validator.check_schema(document)
    return jsonschema.Draft202012Validator(document)


def hostile_list(text):
    """Return a list of a root hub and a device with `text` everywhere."""
    return (
        b"T:  Bus=01 Lev=00 Prnt=00 Port=00 Cnt=00 Dev#=  1 Spd=480  MxCh= 1\n"
        b"D:  Ver= 2.00 Cls=09(hub  ) Sub=00 Prot=01 MxPS=64 #Cfgs=  1\n"
        b"P:  Vendor=1d6b ProdID=0002 Rev= 6.01\n"
        b"I:* If#= 0 Alt= 0 #EPs= 1 Cls=09(hub  ) Sub=00 Prot=00 Driver=hub\n"
        b"\n"
        b"T:  Bus=01 Lev=01 Prnt=01 Port=00 Cnt=01 Dev#=  2 Spd=12   MxCh= 0\n"
        b"D:  Ver= 2.00 Cls=00(>ifc ) Sub=00 Prot=00 MxPS= 8 #Cfgs=  1\n"
        b"P:  Vendor=0627 ProdID=0001 Rev= 0.00\n"
        b"S:  Manufacturer=" + text + b"\nS:  Product=" + text
        + b"\nS:  SerialNumber=" + text
        + b"\nI:* If#= 0 Alt= 0 #EPs= 1 Cls=03(HID  ) Sub=01 Prot=01"
        b" Driver=usbhid\n\n")


def require_valid(failures, validator, document, what):
    """Report where a document that must be valid is not."""
    if document is None:
        failures.report(f"{what}: no document")
        return
    for error in validator.iter_errors(document):
        failures.report(f"{what}: {error.json_path}: {error.message}")


def check_valid_documents(failures, usbinfo):
    """Validate all that the command prints."""
    inventory, difference = schema("usbinfo"), schema("usbinfo-diff")
    for path in EXPECTED:
        require_valid(failures, inventory, json.loads(path.read_text()),
                      path.name)
    lists = [usbinfo.file(f"hostile-{number}", hostile_list(text))
             for number, text in enumerate(HOSTILE)]
    empty = usbinfo.file("empty", b"")
    for path in [*CAPTURES, *lists, empty]:
        require_valid(failures, inventory, usbinfo.inventory(path), path.name)
    for options in SELECTIONS:
        require_valid(failures, inventory, usbinfo.inventory(OLD, *options),
                      " ".join(options))
    pairs = [*itertools.product(CAPTURES, CAPTURES),
             *((CAPTURES[0], path) for path in lists), *zip(lists, lists[1:])]
    for old, new in pairs:
        require_valid(failures, difference, usbinfo.difference(old, new),
                      f"{old.name} and {new.name}")
    for path in (OLD, NEW, MOVED):
        require_valid(failures, schema("usbinfo-watch"), usbinfo.report(path), f"watch from {path.name}")
    require_valid(failures, schema("usbinfo-classes"),
                  usbinfo.document("schema", "--format", "json"), "classes")


def check_checks(failures, usbinfo):
    """Validate checks of every list, and hold their schema to be strict."""
    lists = [usbinfo.file(f"hostile-{number}", hostile_list(text))
             for number, text in enumerate(HOSTILE)]
    policy = b"reject with-interface one-of { 08:*:* }\nblock name \"\\xff\"#\xff\nallow 1d6b:*\n"
    for path in [*CAPTURES, *lists]:
        require_valid(failures, schema("usbinfo-check"), usbinfo.check(policy, path), f"check of {path.name}")
    check_strict(failures, usbinfo, "usbinfo-check", usbinfo.check(policy, OLD))


def check_names(failures, usbinfo):
    """Compare the schema's properties with those of the classes."""
    classes = usbinfo.document("schema", "--format", "json")["classes"]
    published = schema("usbinfo").schema
    lists = published["properties"]["classes"]["properties"]
    if list(lists) != list(classes):
        failures.report(f"classes: {list(lists)}, not {list(classes)}")
    for name, entry in lists.items():
        definition = published["$defs"][entry["items"]["$ref"].split("/")[-1]]
        names = list(definition["properties"])
        if names != list(classes[name]["properties"]):
            failures.report(f"{name}: the properties are not those of the class")
        for number in names:
            reference = definition["properties"][number].get("$ref", "")
            kind = classes[name]["properties"][number]["type"]
            is_number = kind.startswith("uint")
            if is_number and reference != f"#/$defs/{kind}":
                failures.report(f"{name}.{number}: is not a {kind} in the schema")


def damages(document, path=()):
    """Yield copies of a document, each damaged in one place, with a name.

    Every member is taken away, renamed and given a value of each other type;
    every object gets one more member; numbers leave their range.
    """
    here = document
    for step in path:
        here = here[step]
    if isinstance(here, dict):
        yield damaged(document, path, lambda it: it.update(extra=1), "extra")
        for name in list(here):
            yield damaged(document, path, lambda it, n=name: it.pop(n),
                          f"without {name}")
            yield from damages(document, (*path, name))
    elif isinstance(here, list):
        for index in range(min(len(here), 1)):
            yield from damages(document, (*path, index))
    for value in (None, True, -1, 1.5, 2 ** 64, "?", [], [1], {}, {"a": 1}):
        if path:
            yield damaged(document, path[:-1],
                          lambda it, v=value: it.__setitem__(path[-1], v),
                          f"{path[-1]} = {value!r}")


def damaged(document, path, change, name):
    """Return a copy with what is at `path` changed, and where that is."""
    copied = copy.deepcopy(document)
    here = copied
    for step in path:
        here = here[step]
    change(here)
    return "/".join(map(str, path)) + ": " + name, copied


def is_allowed(name, what):
    """Return whether a damage leaves a document that is still valid."""
    return any(re.fullmatch(pattern, what) for pattern in ALLOWED[name])


def check_strict(failures, usbinfo, name, document):
    """Damage a document; the schema must refuse it, and so must diff."""
    validator = schema(name)
    require_valid(failures, validator, document, f"the {name} to be damaged")
    for what, broken in damages(document):
        if broken == document:
            continue
        is_valid = validator.is_valid(broken)
        if is_valid != is_allowed(name, what):
            failures.report(f"{name}: {what}: valid is {is_valid}")
        if name == "usbinfo":
            path = usbinfo.file("damaged.json", json.dumps(broken).encode())
            status, _ = usbinfo.run("diff", "--allow-suspect", path, path)
            if (status == 0) != is_valid:
                failures.report(f"{what}: valid is {is_valid}, but diff gives "
                              f"the status {status}")


ORIGIN = {
    "source": "sysfs", "collected": "2026-11-21T12:00:00Z",
    "program": "usbinfo 1.0.0", "machine": "c0ffee",
    "findings": [{"code": "two-t-lines", "lines": [17],
                  "device": "Bus 01  Device   9"}],
    "repairs": [{"code": "parent", "count": 3}],
    "masked": {"key": "36b7d9e49e324323"},
    "selection": {"classes": ["KALDO_USBHub"], "ids": ["1d6b:"],
                  "places": ["1:3"]},
}
KERNEL = {
    "devices": [{
        "device": "Bus 01  Device   4", "name": "1-3.1", "number": 4,
        "speed": 480, "manufacturer": "Acme", "product": "Stick",
        "serial": "S1", "kinds": ["mass storage"],
        "interfaces": [{
            "configuration": 1, "number": 0, "setting": 0, "active": False,
            "class": "08", "subclass": "06", "protocol": "50",
            "driver": "usb-storage"}],
        "maxPower": 500, "revision": "1.00", "nodes": ["/dev/sda"]}],
    "ports": [{"port": "Bus 01  Device   1 Port 02", "name": "1-3",
               "peer": "2-3", "connect": "hotplug", "state": "used"}],
}
VISITOR = {"name": "1-3.1", "number": 4, "id": "0781:5581", "kinds": ["mass storage"]}


def loaded_store(usbinfo, path, folder):
    """Return a store of a machine that had each list, and what loading printed."""
    lists = [OLD, NEW, *CAPTURES, *(usbinfo.file(f"hostile-{number}", hostile_list(text))
                                    for number, text in enumerate(HOSTILE))]
    store = Store(path, folder, usbinfo.inventory(MOVED))
    printed = [store.load(usbinfo.inventory(devices, "--system-name", "machine"), number)
               for number, devices in enumerate(lists)]
    masked = usbinfo.inventory(OLD, "--system-name", "machine", "--mask-serials")
    printed.append(store.load(masked, len(lists)))
    printed.append(store.load(masked, len(lists), "--new-mask"))
    return store, printed


def check_changes(failures, usbinfo, changes):
    """Hold the changes to their schema, and this to be strict."""
    require_valid(failures, schema("usbinfo-changes"), changes, "changes")
    compared = [it["difference"] is not None for it in changes["changes"]]
    if sum(compared) < len(CAPTURES) or compared[-1]:
        failures.report(f"all reports but the masked ones are to be compared: {compared}")
    check_strict(failures, usbinfo, "usbinfo-changes",
                 {**changes, "changes": changes["changes"][:1]})


def check_hosts_checked(failures, usbinfo, store):
    """Hold a check of two hosts, of which one fails, to its schema, and this to be strict."""
    store.load(usbinfo.inventory(OLD, "--system-name", "a"), 0)
    store.load(usbinfo.inventory(OLD, "--system-name", "b", "--mask-serials"), 0)
    policy = usbinfo.file("rules.conf", b'block serial "1"\nreject\n')
    status, output = store.run("check", policy, "--allow-suspect", "--format", "json")
    document = json.loads(output)
    checked, failed = document["hosts"][:2]
    if status != 2 or checked["error"] or not failed["error"]:
        failures.report(f"check of the store: status {status}: {checked}, {failed}")
    document["hosts"] = [{**checked, "refused": checked["refused"][:1]}, failed]
    check_strict(failures, usbinfo, "usbinfo-checks", document)
    for host in ("a", "b"):
        store.run("forget", host)


def check_store(failures, usbinfo, path):
    """Hold all that the store prints to its schemas, and these to be strict."""
    store, printed = loaded_store(usbinfo, path, usbinfo.folder)
    check_hosts_checked(failures, usbinfo, store)
    check_changes(failures, usbinfo, store.document("changes", "--format", "json"))
    validator = schema("usbinfo-lists")
    for document in printed:
        require_valid(failures, validator, document, "load")
    names = {printed[0]["schema"]}
    # The time is that of the first list.
    for words in (("collect", "-w", "all"), ("hosts",), ("find",), ("find", "--at", "2026-03-15"),
                  ("rename", "machine", "another"), ("prune", "--keep", "1s"),
                  ("forget", "another"), ("migrate",)):
        document = store.document(*words, "--format", "json")
        check_strict(failures, usbinfo, "usbinfo-lists", document)
        names.add(document["schema"])
    described = {it["properties"]["schema"]["const"] for it in validator.schema["oneOf"]}
    if names != described:
        failures.report(f"described are {described}, printed {names}")


def small_inventory(usbinfo):
    """Return an inventory with one of each list's elements and all names."""
    document = {**usbinfo.inventory(OLD), "origin": ORIGIN, "kernel": KERNEL}
    for name, instances in document["classes"].items():
        complete = [it for it in instances if name != "KALDO_USBHub"
                    or "HubName" in it]
        document["classes"][name] = complete[:1]
    return document


def check_usbinfo(failures, usbinfo):
    """Hold all that the command prints to its schemas, and these to be strict."""
    check_valid_documents(failures, usbinfo)
    check_checks(failures, usbinfo)
    check_names(failures, usbinfo)
    check_strict(failures, usbinfo, "usbinfo", small_inventory(usbinfo))
    check_strict(failures, usbinfo, "usbinfo-classes",
                 usbinfo.document("schema", "--format", "json"))
    for new in (NEW, MOVED):
        check_strict(failures, usbinfo, "usbinfo-diff",
                     usbinfo.difference(OLD, new))
    check_strict(failures, usbinfo, "usbinfo-watch", {
        **usbinfo.report(OLD), "difference": usbinfo.difference(OLD, NEW), "cameAndWent": [VISITOR],
        "eventsLost": False})


def main(command, store=None):
    """Run the checks of a command; return the exit status."""
    failures = Failures()
    with tempfile.TemporaryDirectory() as folder:
        usbinfo = Usbinfo(command, folder)
        if store:
            check_store(failures, usbinfo, store)
        else:
            check_usbinfo(failures, usbinfo)
    return 1 if failures.count else 0


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
