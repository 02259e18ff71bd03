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
        self._request = request
        self.instances = {name: {} for name in CLASSES}
        self._text = text
        self._system = system
        self._inventory = None
        self._debug("TUSBInfoCallbacks::Init - Initializing the plugin.")
        for class_name in request:
            self._serve(class_name)
        self._debug("TUSBInfoCallbacks::GetData - Normal exit from plugin.",
                    "TUSBInfoCallbacks::DeInit - De-initializing the plugin.")

    def _selection(self):
        """Say what was asked for, where that leaves out more than associations."""
        if all(name in self._request for name in self.ENTITIES):
            return None
        return {"classes": list(self._request), "ids": [], "places": []}

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
        """Return the JSON document of everything committed.

        It also says where the list is from and what it holds besides.
        """
        return {"schema": "usbinfo.inventory/2",
                "system": {"name": plain(self._system),
                           "creationClassName": plain(SYSTEM_CLASS)},
                "origin": {**ORIGIN, "selection": self._selection()},
                "classes": {name: [readable(item) for item in items.values()]
                            for name, items in self.instances.items()},
                "kernel": kernel_facts(self._text, self._identifiers())}

    def _identifiers(self):
        """Map (bus, device number) to the DeviceID of that hub or device."""
        found = {}
        for class_name in (HUB, DEVICE):
            for item in self.instances[class_name].values():
                name = plain(item["DeviceID"])
                numbers = re.fullmatch(r"Bus +(\d+) +Device +(\d+)", name)
                if numbers:
                    place = tuple(map(int, numbers.groups()))
                    found.setdefault(place, name)
        return found


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


# --- what the list holds besides ----------------------------------------------

ORIGIN = {"source": "list", "collected": None, "program": "usbinfo 1.0.0",
          "machine": None, "findings": [], "repairs": [], "masked": None,
          "selection": None}

KINDS = ("hub", "keyboard", "mouse", "input", "mass storage", "audio",
         "video", "printer", "scanner/camera", "network", "serial", "modem",
         "smart card", "wireless", "bluetooth", "vendor-specific", "other")

# Kinds by the hexadecimal codes of class, subclass and protocol.
CODES = (
    ("(01|1003)", "audio"), ("(0e|10|ef05)", "video"),
    ("0202(00|ff)", "serial"), ("02(0[1-589]|0a)", "modem"),
    ("(02(0[67]|0[cde])|e00103|ef04)", "network"),
    ("03..01", "keyboard"), ("03..02", "mouse"), ("0[35]", "input"),
    ("06", "scanner/camera"), ("07", "printer"), ("08", "mass storage"),
    ("09", "hub"), ("0b", "smart card"), ("e001(01|04)", "bluetooth"),
    ("(e0|ef0202|fe02)", "wireless"), ("ff", "vendor-specific"),
    ("", "other"))


def blocks(text):
    """List the records of a text, each a list of its lines."""
    found = []
    for block in re.split(r"\n\s*\n", text.strip("\n")):
        lines = block.split("\n")
        while lines and not lines[0].startswith("T:"):
            del lines[0]
        if lines:
            found.append(lines)
    if len(found) != 1:
        return found
    # Without blank lines a record begins behind the last one's interfaces.
    parted = re.sub(r"\n(?=T:)", "\n\n", "\n".join(found[0]))
    joined = re.sub(r"(?m)^(?![CIE]:)(.*)\n\n(?=T:)", r"\1\n", parted)
    return [block.split("\n") for block in joined.split("\n\n")]


def field(line, key, base=10):
    """Read the number behind a key of a line."""
    found = re.search(re.escape(key) + r"\s*([0-9a-f]+)", line)
    return int(found[1], base) if found else 0


def kind_of(codes):
    """Return the kind that six hexadecimal digits stand for."""
    return next(kind for pattern, kind in CODES if re.match(pattern, codes))


class Facts:
    """What the lines of one record say."""

    def __init__(self, lines, marked):
        self._marked = marked
        first = {}
        for line in lines:
            first.setdefault(line[:2], line)
        self._descriptor = first.get("D:", "")
        self._product = first.get("P:", "")
        self._strings = [line for line in lines if line.startswith("S:")]
        self._read_place(first["T:"])
        self._read_interfaces(lines)
        self.name = None

    def _read_place(self, line):
        self.bus = field(line, "Bus=")
        self.level = field(line, "Lev=")
        self.parent = field(line, "Prnt=")
        self.port = field(line, "Port=") + 1
        self.number = field(line, "Dev#=")
        self.ports = field(line, "MxCh=")
        self.speed = float(re.search(r"Spd=\s*([0-9.]+)", line)[1])

    def _read_interfaces(self, lines):
        """Keep (configuration, is it active, its power, interface lines)."""
        self.configurations = []
        for line in lines:
            if line.startswith("C:"):
                value = field(line, "Cfg#=")
                is_active = line[2] == "*" if "C" in self._marked else value > 0
                self.configurations.append(
                    (value, is_active, field(line, "MxPwr="), []))
            elif line.startswith("I:") and self.configurations:
                self.configurations[-1][3].append(line)

    def _string(self, name):
        for line in self._strings:
            key, _, value = line[2:].lstrip().partition("=")
            if key == name:
                return value
        return None

    def interfaces(self):
        """List every setting, those of one interface together."""
        return [self._setting(value, is_active, line, lines)
                for value, is_active, _, lines in self.configurations
                for line in sorted(lines, key=lambda it, of=lines: [
                    field(other, "If#=") for other in of].index(
                        field(it, "If#=")))]

    def _setting(self, configuration, is_active, line, lines):
        number = field(line, "If#=")
        siblings = [it for it in lines if field(it, "If#=") == number]
        is_set = line[2] == "*" if "I" in self._marked else line is siblings[0]
        driver = line.partition("Driver=")[2]
        return {"configuration": configuration, "number": number,
                "setting": field(line, "Alt="),
                "active": is_active and is_set,
                **dict(zip(("class", "subclass", "protocol"), codes_in(line))),
                "driver": None if driver in ("", "(none)") else driver}

    def kinds(self):
        """List the kinds of the interfaces, or of the device itself."""
        settings = self.interfaces()
        is_configured = any(active for _, active, _, _ in self.configurations)
        codes = ["".join((it["class"], it["subclass"], it["protocol"]))
                 for it in settings if it["active"] or not is_configured]
        kinds = {kind_of(code) for code in codes if code[:2] != "0a"}
        whole = "".join(codes_in(self._descriptor))
        if whole[:2] == "09" or (not kinds and whole[:2] != "00"
                                 and whole != "ef0201"):
            kinds.add(kind_of(whole))
        if settings and not kinds:
            kinds = {"other"}
        return sorted(kinds, key=KINDS.index)

    def _power(self):
        powers = [power for _, is_active, power, _ in self.configurations
                  if is_active]
        return powers[0] if powers else None

    def _revision(self):
        """Return the revision; early root hubs have nothing but zeros."""
        if not re.search(r"(Vendor|ProdID|Rev)=\s*[0.]*[1-9a-f]",
                         self._product):
            return None
        found = re.search(r"Rev=\s*([0-9a-f]+)\.([0-9a-f]+)", self._product)
        if not found:
            return None
        return f"{int(found[1], 16):x}.{int(found[2], 16):02x}"

    def _lacks_configurations(self):
        """Say whether the device has more than there are lines for."""
        return len(self.configurations) < field(self._descriptor, "#Cfgs=")

    def device(self, identifier):
        """Return all that is known of the device."""
        lacking = {"lacksConfigurations": True}
        return {"device": identifier, "name": self.name,
                "number": self.number,
                "speed": int(self.speed) if self.speed % 1 == 0 else self.speed,
                "manufacturer": self._string("Manufacturer"),
                "product": self._string("Product"),
                "serial": self._string("SerialNumber"),
                "kinds": self.kinds(), "interfaces": self.interfaces(),
                "maxPower": self._power(), "revision": self._revision(),
                "nodes": None,
                **(lacking if self._lacks_configurations() else {})}


def codes_in(line):
    """Return class, subclass and protocol as the line spells them."""
    found = [re.search(key + r"=\s*([0-9a-f]{2})", line)
             for key in ("Cls", "Sub", "Prot")]
    return [code[1] if code else "00" for code in found]


def name_records(records):
    """Give each record the kernel's name, from the root hubs downwards."""
    for level in range(8):
        for record in (it for it in records if it.level == level):
            above = next((it for it in records
                          if (it.bus, it.number) == (record.bus, record.parent)
                          and it.level == level - 1 and it.name), None)
            if level == 0:
                record.name = f"usb{record.bus}"
            elif above:
                record.name = behind(above.name, record.port)


def behind(hub, port):
    """Name what is plugged into a port of a hub of that name."""
    if hub.startswith("usb"):
        return f"{hub[3:]}-{port}"
    return f"{hub}.{port}"


def kernel_facts(text, identifiers):
    """Return what a list says of devices and ports besides properties."""
    listed = blocks(plain(text))
    marked = {line[0] for lines in listed for line in lines
              if re.match(r"[CI]:\*", line)}
    records = [Facts(lines, marked) for lines in listed]
    name_records(records)
    used = {record.name for record in records}
    devices, ports = [], []
    for record in records:
        place = record.bus, record.number
        identifier = identifiers.get(place, "Bus %02d  Device %3d" % place)
        devices.append(record.device(identifier))
        # A device without a place may be in any port of its bus.
        is_sure = all(it.name for it in records if it.bus == record.bus)
        for port in range(record.ports if record.name else 0):
            name = behind(record.name, port + 1)
            free = "free" if is_sure else None
            ports.append({"port": f"{identifier} Port {port:02}",
                          "name": name, "peer": None, "connect": None,
                          "state": "used" if name in used else free})
    return {"devices": devices, "ports": ports}


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
