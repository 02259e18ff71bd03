#!/usr/bin/env python3
"""Derive what ``usbinfo`` must print and log for a device list.

This is a second, independent opinion: nothing in here is taken from the
program's output, so a difference between the two always means that one of
them is wrong.  Everything is worked out from the text of the device list,
for a run of

    usbinfo --devices LIST --system-name NAME --format json \\
            --log FILE --log-level verbose --log-format json

Usage:
    derive_expected.py LIST           print the JSON inventory of LIST
    derive_expected.py --log LIST     print the log lines instead
    derive_expected.py --write        renew expected/ from captures/
    derive_expected.py --check        compare expected/ with a new derivation

LIST may be "-" for standard input.
"""

import argparse
import json
import os
import pathlib
import re
import sys

CONTROLLER = "KALDO_USBController"
HUB = "KALDO_USBHub"
PORT = "KALDO_USBPort"
DEVICE = "KALDO_USBDevice"
PORT_ON_HUB = "KALDO_USBPortOnHub"
CONNECTION = "KALDO_USBConnection"
CLASSES = (CONTROLLER, HUB, PORT, DEVICE, PORT_ON_HUB, CONNECTION)

SYSTEM_CLASS = b"KALDO_ComputerSystem"
TEST_SYSTEM = b"testhost"

STATUS, DEBUG, VERBOSE = 2, 3, 4
LINE_TYPES = (b"T", b"S", b"D", b"P", b"I", b"C")
MOST_PORTS = 255

DECIMAL = re.compile(rb"\s*([+-]?)([0-9]*)")
HEXADECIMAL = re.compile(rb"([+-]?)(?:0[xX])?([0-9a-fA-F]*)")

HERE = pathlib.Path(__file__).resolve().parent


# --- numbers and texts ------------------------------------------------------

def number(text, bits, pattern=DECIMAL, base=10):
    """Read an unsigned number as a C++ stream would extract it.

    A minus sign wraps around, a number that does not fit gives the largest
    one, and a text without digits gives 0.
    """
    sign, digits = pattern.match(text).groups()
    digits = digits.lstrip(b"0") or b"0"
    largest = 2 ** bits - 1
    # Twenty digits hold any 64-bit number; Python refuses to read thousands.
    if len(digits) > 20 or int(digits, base) > largest:
        return largest
    value = int(digits, base)
    return -value & largest if sign == b"-" else value


def identifier(text):
    """Read a 16-bit hexadecimal number; a leading blank is not skipped."""
    return number(text, 16, HEXADECIMAL, 16)


def code(text):
    """Return the first visible character minus '0', as eight bits."""
    visible = text.lstrip()[:1] or b"\0"
    return (visible[0] - ord("0")) & 0xFF


def cut(line, key, stop=None):
    """Cut the value between key and stop (or the end) out of a line.

    Letter case does not matter for finding it; nothing is trimmed.
    """
    rest = b"(.*?)" + re.escape(stop) if stop else b"(.*)"
    found = re.search(re.escape(key) + rest, line, re.IGNORECASE | re.DOTALL)
    return found.group(1) if found else b""


def plain(text):
    """Make a printable text of bytes; whatever is not UTF-8 is U+FFFD."""
    return text.decode("utf-8", "replace")


# --- from the text to device records ----------------------------------------

def typed_lines(text):
    """List (type, line) for every line that counts.

    The type is the byte at which the line starts: of a blank line that is
    its newline, of the piece behind the last newline it is nothing.  A
    newline right at the start of the text is missed by the count of lines,
    so one line less is left at the end.
    """
    lines = text.split(b"\n")
    types = [line[:1] or b"\n" for line in lines[:-1]] + [lines[-1][:1]]
    count = text.count(b"\n", 1) + 1
    return list(zip(types, lines))[:count]


def cut_records(lines):
    """Group the lines into the records that they describe.

    A record that has its topology line ends with the first endpoint line,
    with a blank line, or with the text.  Later lines of the same block
    therefore belong to the next device.
    """
    records, begun, start = [], False, 0
    for end, (kind, _) in enumerate(lines, start=1):
        begun = begun or kind == b"T"
        if begun and (kind in (b"E", b"\n") or end == len(lines)):
            records.append(Record(lines[start:end]))
            begun, start = False, end
    return records


class Record:
    """The values of one device, as the bytes that the list holds."""

    def __init__(self, lines):
        latest = dict(lines)
        self._read_topology(latest[b"T"])
        self._read_descriptor(latest.get(b"D", b""))
        self._read_product(latest.get(b"P", b""))
        self._read_strings(line for kind, line in lines if kind == b"S")
        self.is_hub = any(kind == b"I" and cut(line, b"cls=", b"(") == b"09"
                          for kind, line in lines)

    def _read_topology(self, line):
        self.bus = cut(line, b"bus=", b"lev=")
        self.level_text = cut(line, b"lev=", b" prnt=")
        self.level = number(self.level_text, 16)
        self.parent = number(cut(line, b"prnt=", b" port="), 16)
        self.port = cut(line, b"port=", b" cnt=")
        self.device_number = cut(line, b"dev#=", b" spd=")
        self.speed = number(cut(line, b"spd=", b"mxch="), 64)
        self.port_count = number(cut(line, b"mxch="), 16)

    def _read_descriptor(self, line):
        # The version passes through a C string, which ends at a zero byte.
        version = cut(line, b"ver=", b"cls").partition(b"\0")[0]
        self.version = number(version.replace(b".", b""), 16)
        self.class_code = code(cut(line, b"cls=", b"sub"))
        self.subclass = code(cut(line, b"sub=", b"prot"))
        self.protocol = code(cut(line, b"prot=", b"mxps"))
        self.configs = code(cut(line, b"#cfgs="))

    def _read_product(self, line):
        self.vendor_id = identifier(cut(line, b"vendor=", b" prodid"))
        self.product_id = identifier(cut(line, b"prodid=", b" rev"))

    def _read_strings(self, lines):
        """Read the string lines; a word anywhere in a line selects them."""
        self.host_type = 0
        texts = dict.fromkeys((b"Product", b"SerialNumber", b"Manufacturer"),
                              b"Not Available")
        for line in lines:
            for word in texts:
                if word in line:
                    texts[word] = cut(line, word.lower() + b"=")
            if b"Product" in line:
                self.host_type = host_type(line)
        self.product, self.serial, self.manufacturer = texts.values()

    @property
    def identity(self):
        """The text by which ports, hubs and devices name this one."""
        return b"Bus " + self.bus + b" Device " + self.device_number

    @property
    def parent_identity(self):
        """The identity of the hub above, as that hub spells it."""
        return b"Bus " + self.bus + b" Device %3d" % self.parent


def host_type(line):
    """Find the kind of host controller in the product line."""
    for name, kind in ((b"ohci", 3), (b"uhci", 2), (b"ehci", 4)):
        if name in line.lower():
            return kind
    return 1


# --- from records to properties ---------------------------------------------

def keys(class_name, system):
    """Return the properties that every inventory instance has."""
    return {"CreationClassName": class_name.encode(),
            "SystemCreationClassName": SYSTEM_CLASS,
            "SystemName": system}


def controller_properties(record, system):
    """Describe the host controller behind a root hub."""
    return {"Description": record.product,
            "DeviceID": record.identity,
            "InterfaceType": record.host_type,
            **keys(CONTROLLER, system)}


def common_properties(record):
    """Describe what hubs and other devices have in common."""
    found = {"Description": record.product,
             "DeviceID": record.identity,
             "Name": record.identity,
             "USBVersion": record.version,
             "ClassCode": record.class_code,
             "SubclassCode": record.subclass,
             "ProtocolCode": record.protocol,
             "VendorID": record.vendor_id,
             "USBDeviceID": record.product_id,
             "NumberOfConfigs": record.configs}
    if record.manufacturer:
        found["Manufacturer"] = record.manufacturer
    if record.serial:
        found["SerialNumber"] = record.serial
    if record.level:
        above = record.parent_identity
        found["HubName"] = above
        found["PortNumber"] = above + b" Port " + record.port
    return found


def hub_properties(record, system):
    """Describe a hub; only eight bits of its port count are kept."""
    return {**common_properties(record),
            "HubDepth": record.level,
            "NumberOfPorts": record.port_count & 0xFF,
            **keys(HUB, system)}


def device_properties(record, system):
    """Describe any other device; its depth is that of the hub above."""
    speed_class = sum(record.speed > limit for limit in (0, 1, 12, 480))
    return {**common_properties(record),
            "HubDepth": (record.level - 1) & 0xFFFF,
            "Speed": speed_class,
            **keys(DEVICE, system)}


def port_properties(record, index, system):
    """Describe one port of a hub, with nothing plugged in so far."""
    name = record.identity + b" Port %02d" % index
    found = {"HubDepth": record.level,
             "HubName": record.identity,
             "DeviceID": name,
             "Name": name,
             "PortNumber": name,
             "StatusDescriptions": [b"No device connected"],
             **keys(PORT, system)}
    if record.speed:
        found["Speed"] = record.speed * 1000000 & 2 ** 64 - 1
    return found


# --- a whole run -------------------------------------------------------------

class Run:
    """One run of the command: what is committed and what is logged."""

    ENTITIES = {CONTROLLER: "TUsbControllerData", HUB: "TUsbHubData",
                PORT: "TUsbPortData", DEVICE: "TUsbDeviceData"}
    KEY_TRACE = ("TUsbData::GetKeyProperties: Begin",
                 "TUsbData::GetKeyProperties: End")

    def __init__(self, text, system, request):
        self.log = []
        self.instances = {name: {} for name in CLASSES}
        self._text = text
        self._system = system
        self._inventory = None
        self._debug("TUSBInfoCallbacks::Init - Initializing the plugin.")
        for class_name in request:
            self._serve(class_name)
        self._debug("TUSBInfoCallbacks::GetData - Normal exit from plugin.",
                    "TUSBInfoCallbacks::DeInit - De-initializing the plugin.")

    def _write(self, severity, *texts):
        self.log.extend({"severity": severity, "text": text}
                        for text in texts)

    def _debug(self, *texts):
        self._write(DEBUG, *texts)

    def _serve(self, class_name):
        """Answer the request for one class, or pass over an unknown one."""
        self._debug("TUSBInfoCallbacks::GetData - Received request for class "
                    f"{class_name}.")
        if class_name in self.ENTITIES:
            if self._inventory is None:
                self._collect()
            made = self._provide(class_name, self.ENTITIES[class_name],
                                 lambda: self._inventory[class_name])
        elif class_name == PORT_ON_HUB:
            made = self._provide(class_name, "TUsbPortHubAsso",
                                 self._ports_on_hubs)
        elif class_name == CONNECTION:
            made = self._provide(class_name, "TUsbPortDeviceAsso",
                                 self._connections)
        else:
            return
        outcome = ("Data successfully retrieved." if made else
                   "No instances of the requested class were created.")
        self._debug(f"TUSBInfoCallbacks::retrieveDataForClass - {outcome}")

    def _provide(self, class_name, provider, find):
        """Commit what find() delivers; return whether there was any."""
        self._debug(f"Entering {provider}::GetCIMInstances routine")
        found = find()
        for properties in found:
            self._commit(class_name, properties)
        self._debug(f"Exiting {provider}::GetCIMInstances routine")
        return bool(found)

    def _commit(self, class_name, properties):
        """Commit an instance, in the place of one with the same path."""
        self._write(VERBOSE, "TUsb::generateCIMInstance - Generating CIM "
                             f"instance for class {class_name}.")
        self._debug(*(f"Setting property : {name}"
                      for name in sorted(properties)))
        path = object_path(class_name, properties)
        self.instances[class_name][path] = dict(properties)

    # The inventory, built once.

    def _collect(self):
        self._inventory = {name: [] for name in self.ENTITIES}
        records = self._read()
        if records:
            self._debug("TUsbData::PopulateData: Begin")
            for record in records:
                self._classify(record)
            self._debug("TUsbData::PopulateData: End")

    def _read(self):
        """Read the list; an empty one ends the trace early.

        The fallback for an empty list is a command, which answers nothing
        here, and an empty text is never logged.
        """
        self._debug("TUsbData::GetUsbDeviceInfomation: Begin")
        if not self._text:
            self._write(STATUS, "USB device file is empty")
            return []
        lines = typed_lines(self._text)
        self._write(STATUS, *(plain(kind) + " can't match the data"
                              for kind, _ in lines if kind not in LINE_TYPES))
        self._debug("TUsbData::GetUsbDeviceInfomation: End")
        return cut_records(lines)

    def _classify(self, record):
        """File one record as controller, hub with ports, or device."""
        inventory, system = self._inventory, self._system
        if record.is_hub and record.level_text == b"00":
            self._debug("TUsbData::FillControllerProperties: Begin",
                        *self.KEY_TRACE,
                        "TUsbData::FillControllerProperties: End")
            inventory[CONTROLLER].append(
                controller_properties(record, system))

        self._debug("TUsbData::FillDeviceProperties: Begin",
                    "TUsbData::DisplayDeviceDescriptor: Begin",
                    "TUsbData::DisplayDeviceDescriptor: End")
        if record.is_hub:
            ports = range(min(record.port_count, MOST_PORTS))
            self._debug(*self.KEY_TRACE,
                        "TUsbData::FillPortProperties: Begin",
                        f"Total Ports{record.port_count}",
                        *(self.KEY_TRACE * len(ports)),
                        "TUsbData::FillPortProperties: End")
            inventory[HUB].append(hub_properties(record, system))
            inventory[PORT].extend(port_properties(record, index, system)
                                   for index in ports)
        else:
            self._debug("TUsbData::FillDeviceProperties() speed "
                        f"{record.speed}",
                        *self.KEY_TRACE)
            inventory[DEVICE].append(device_properties(record, system))
        self._debug("TUsbData::FillDeviceProperties: End")

    # The associations, which pair what is committed already.

    def _ports_on_hubs(self):
        """Pair every port with the first hub of its name and depth."""
        hubs = {}
        for path, hub in self.instances[HUB].items():
            hubs.setdefault((hub["HubDepth"], hub["Name"]), path)
        pairs = ((hubs.get((port["HubDepth"], port["HubName"])), path)
                 for path, port in self.instances[PORT].items())
        return [{"Antecedent": hub, "Dependent": port}
                for hub, port in pairs if hub is not None]

    def _connections(self):
        """Pair devices, then hubs, with the port that each is plugged into."""
        return self._connected(DEVICE) + self._connected(HUB)

    def _connected(self, class_name):
        self._debug("Begin: TUsbPortDeviceAsso::MakePortAssociation routine")
        ports = {}
        for path, port in self.instances[PORT].items():
            place = port["HubDepth"], port["HubName"], port["PortNumber"]
            ports.setdefault(place, path)
        found = []
        for path, item in self.instances[class_name].items():
            depth = item["HubDepth"]
            if class_name == HUB:
                if depth == 0:
                    continue
                depth -= 1
            if "HubName" not in item:
                self._write(STATUS,
                            "KALDO_USBConnection association encountered an "
                            "error" + "\t" * 6 + "when collecting dependent "
                            "properties. Error Code: "
                            "CIM_ERR_NO_SUCH_PROPERTY")
                continue
            place = depth, item["HubName"], item["PortNumber"]
            if place in ports:
                found.append({"Antecedent": ports[place], "Dependent": path})
                port = self.instances[PORT][ports[place]]
                port["StatusDescriptions"] = [b"Device connected"]
        self._debug("End: TUsbPortDeviceAsso::MakePortAssociation routine")
        return found

    def inventory(self):
        """Return the JSON document of everything committed."""
        return {"schema": "usbinfo.inventory/1",
                "system": {"name": plain(self._system),
                           "creationClassName": plain(SYSTEM_CLASS)},
                "classes": {name: [readable(item) for item in items.values()]
                            for name, items in self.instances.items()}}


def object_path(class_name, properties):
    """Spell the object path of an instance."""
    names = (("Antecedent", "Dependent") if "Antecedent" in properties else
             ("CreationClassName", "DeviceID", "SystemCreationClassName",
              "SystemName"))
    return class_name.encode() + b"." + b",".join(
        name.encode() + b'="' + re.sub(rb'(["\\])', rb"\\\1",
                                       properties[name]) + b'"'
        for name in names)


def readable(properties):
    """Return the properties as JSON values, ascending by name."""
    def value(item):
        if isinstance(item, bytes):
            return plain(item)
        if isinstance(item, list):
            return [value(element) for element in item]
        return item
    return {name: value(properties[name]) for name in sorted(properties)}


# --- the files and the command line ------------------------------------------

def as_json(run):
    """Spell the inventory as the text of a file."""
    return json.dumps(run.inventory(), indent=2) + "\n"


def as_log(run):
    """Spell the log as the text of a file, one object per line."""
    return "".join(json.dumps(line) + "\n" for line in run.log)


def expected_files():
    """Yield (path, text) of every file that belongs into expected/."""
    for capture in sorted((HERE / "captures").glob("*.txt")):
        run = Run(capture.read_bytes(), TEST_SYSTEM, CLASSES)
        base = HERE / "expected" / capture.stem
        yield base.with_name(base.name + ".json"), as_json(run)
        yield base.with_name(base.name + ".log.jsonl"), as_log(run)


def check():
    """Name the files that are wrong, missing or too many; return how many."""
    wanted = dict(expected_files())
    present = set((HERE / "expected").iterdir())
    wrong = [f"{path.name}: missing" for path in wanted.keys() - present]
    wrong += [f"{path.name}: belongs to no capture"
              for path in present - wanted.keys()]
    wrong += [f"{path.name}: differs" for path in wanted.keys() & present
              if path.read_bytes() != wanted[path].encode("ascii")]
    print(*sorted(wrong), f"{len(wanted)} files checked, {len(wrong)} wrong",
          sep="\n")
    return len(wrong)


def write():
    """Renew every expected file."""
    (HERE / "expected").mkdir(exist_ok=True)
    for path, text in expected_files():
        path.write_bytes(text.encode("ascii"))


def main():
    """Do what the command line asks for; return the exit status."""
    parser = argparse.ArgumentParser(
        description="Derive what usbinfo must print and log for a device "
                    "list.")
    what = parser.add_mutually_exclusive_group(required=True)
    what.add_argument("list", nargs="?", metavar="LIST",
                      help="the device list, - for standard input")
    what.add_argument("--write", action="store_true",
                      help="renew the expected files")
    what.add_argument("--check", action="store_true",
                      help="compare the expected files with a new derivation")
    parser.add_argument("--log", action="store_true",
                        help="print the log lines instead of the inventory")
    parser.add_argument("--request", metavar="A,B,...", type=os.fsencode,
                        help="ask for these classes, in this order")
    parser.add_argument("--system-name", metavar="NAME", type=os.fsencode,
                        default=TEST_SYSTEM, help="default: testhost")
    options = parser.parse_args()

    if options.check:
        return 1 if check() else 0
    if options.write:
        write()
        return 0
    if options.list == "-":
        text = sys.stdin.buffer.read()
    else:
        text = pathlib.Path(options.list).read_bytes()
    request = CLASSES
    if options.request is not None:
        request = [plain(name) for name in options.request.split(b",")]
    run = Run(text, options.system_name, request)
    sys.stdout.write(as_log(run) if options.log else as_json(run))
    return 0


if __name__ == "__main__":
    sys.exit(main())
