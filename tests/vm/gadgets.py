"""The gadgets that the guest makes: devices whose descriptions QEMU's do not cover.

Each hangs on a dummy controller of its own, in its only port. A gadget is written down as a folder that looks
as it has to look in configfs, and described as the bus that the kernel must find for it.
"""

import pathlib
from dataclasses import dataclass, field

import models
import topology

LANGUAGE = "0x409"


@dataclass(frozen=True)
class Gadget:
    """A gadget's strings and class, and the functions of each of its configurations."""

    strings: dict
    configs: tuple = (("ecm.0",),)
    device_class: tuple = (0, 0, 0)
    ids: tuple = (0x1d6b, 0x0104)
    max_speed: str = ""
    # Of the functions, by path.
    attributes: dict = field(default_factory=dict)


GADGETS = (
    # Composite, with interfaces that belong together.
    Gadget(topology.strings("Makers", "Composite", "C-1"), (("acm.0", "ecm.0", "acm.1"),), (0xef, 2, 1)),
    # Two configurations: the list has both of them, and all but the first interface is behind an endpoint
    # line.
    Gadget(topology.strings("Makers", "Two ways", "C-2"), (("acm.0",), ("ecm.0",)), (2, 0, 0),
           (0x0525, 0xa4aa)),
    Gadget(topology.strings()),
    Gadget(topology.strings("Café Ñandú", "Мышь 鼠标", "№ 7 ü")),
    # Words that the parser looks for, where they are no keys.
    Gadget(topology.strings("Makers", "SerialNumber reader")),
    Gadget(topology.strings("Makers", "Reader of SerialNumber=", "C-6")),
    Gadget(topology.strings("Product Designs", "Lamp", "C-7")),
    Gadget(topology.strings("Product Designs", serial="C-8")),
    Gadget(topology.strings("Makers", "Wiped out", "My Product 1")),
    Gadget(topology.strings("Makers", "The OHCI of all lamps", "Manufacturer 9")),
    # A newline in a string begins a line of its own in the list.
    Gadget(topology.strings("Makers", "Forger\nS:  SerialNumber=forged")),
    # The same for usb-devices alone: its shell takes a backslash and an n for a newline.
    Gadget(topology.strings("Makers", "C:\\new\\nS:  SerialNumber=forged too", "C-11")),
)

# The gadget with the line break that only usb-devices writes.
FORGED_BY_SCRIPT = f"dummy_hcd.{len(GADGETS) - 1}"

# What an administrator has approved.
APPROVED = Gadget(topology.strings("Approved", "Approved Mouse", "AM-1"), ids=(0x046d, 0xc077))

# Devices that forge lines of the list, so that their records look like the approved one's. No string has more than 61
# characters.
_PLACE = "T:Bus=01 Lev=01 Prnt=01 Port=05 Dev#=99 Spd=12 MxCh=0"
_CLASS = "D:  Ver=2.00 Cls=00 Sub=00 Prot=00 #Cfgs=1"
_IDENTIFIERS = "P:  Vendor=046d ProdID=c077 Rev=72.00"
FORGERS = (
    # Strings that replace its own.
    Gadget(topology.strings("Evil", "Stick", "X\nS:  Product=Approved Mouse\nS:  Manufacturer=Approved")),
    # Lines that replace its place, its class and its identifiers.
    Gadget(topology.strings(f"Maker\n{_PLACE}", f"Approved Mouse\n{_CLASS}", f"AM-1\n{_IDENTIFIERS}")),
    # A record of its own.
    Gadget(topology.strings(f"Evil\n\n{_PLACE}", f"Approved Mouse\n{_IDENTIFIERS}", "AM-1\n\nX")),
    # What the plug-in takes for the message of a shell.
    Gadget(topology.strings("Evil", "command-not-found", "X-4")),
    # A name of another field.
    Gadget(topology.strings("Evil Product=Approved Mouse")),
)

# A stick, and the same with a keyboard, whose reports have eight bytes: the boot protocol of HID 1.11.
STICK = Gadget(topology.strings("Makers", "Stick", "ST-1"), (("mass_storage.0",),), ids=(0x0525, 0xa4a5),
               attributes={"mass_storage.0/lun.0/removable": b"1"})
KEYS = bytes.fromhex("05010906a101050719e029e715002501750195088102950175088101950675081500256505071900296581"
                     "00c0")
ROGUE_STICK = Gadget(STICK.strings, (("mass_storage.0", "hid.0"),), ids=STICK.ids,
                     attributes={**STICK.attributes, "hid.0/protocol": b"1", "hid.0/subclass": b"1",
                                 "hid.0/report_length": b"8", "hid.0/report_desc": KEYS})

# The controller of the one with two configurations.
TWO_WAYS = "dummy_hcd.1"

# The same at SuperSpeed, and one that keeps to high speed: settings with isochronous endpoints, and without any.
SUPER_GADGETS = (
    Gadget(topology.strings("Makers", "Super", "C-1"), (("SourceSink.0", "acm.0"), ("acm.1",))),
    Gadget(topology.strings("Makers", "High", "C-2"), (("SourceSink.0", "acm.0"),), max_speed="high-speed"),
)
ALL = (*GADGETS, *SUPER_GADGETS, APPROVED, *FORGERS)
# The controller that these leave free.
FREE_CONTROLLER = f"dummy_hcd.{len(SUPER_GADGETS)}"


def buses(release, plugged=GADGETS):
    """The buses of the dummy controllers, a gadget on each; where there is None, the controller has none."""
    found = []
    for number, gadget in enumerate(plugged):
        bus, = topology.controller_buses(f"dummy_hcd.{number}", models.DUMMY_CONTROLLER, {}, release)
        found.append(bus)
        if gadget:
            codes = models.Codes(" 2.00", *gadget.ids, gadget.device_class, len(gadget.configs))
            bus.devices.append(topology.Device((1,), codes, models.HIGH, gadget.strings))
    return found


def super_buses(release):
    """The buses of the dummy controllers that know SuperSpeed, two each; the last one has no gadget."""
    found = []
    for number, gadget in enumerate((*SUPER_GADGETS, None)):
        controller = topology.controller_buses(f"dummy_hcd.{number}", models.SUPER_DUMMY_CONTROLLER, {}, release)
        found += controller
        if gadget is None:
            break
        speed, version = (models.HIGH, " 2.10") if gadget.max_speed else (models.SUPER, " 3.20")
        codes = models.Codes(version, *gadget.ids, gadget.device_class, len(gadget.configs))
        bus = next(bus for bus in controller if bus.root.speed == speed)
        bus.devices.append(topology.Device((1,), codes, speed, gadget.strings))
    return found


def write_folders(target):
    """Write every gadget down, in a folder named after its number."""
    for number, gadget in enumerate(GADGETS):
        _write_folder(pathlib.Path(target, str(number)), gadget)
    for number, gadget in enumerate(SUPER_GADGETS):
        _write_folder(pathlib.Path(target, f"super-{number}"), gadget)
    _write_folder(pathlib.Path(target, "approved-0"), APPROVED)
    _write_folder(pathlib.Path(target, "stick-0"), STICK)
    _write_folder(pathlib.Path(target, "rogue-0"), ROGUE_STICK)
    for number, gadget in enumerate(FORGERS):
        _write_folder(pathlib.Path(target, f"forger-{number}"), gadget)


def _write_folder(folder, gadget):
    names = ("idVendor", "idProduct", "bDeviceClass", "bDeviceSubClass", "bDeviceProtocol")
    _write(folder, {name: f"{code:#x}" for name, code in zip(names, gadget.ids + gadget.device_class)})
    if gadget.max_speed:
        _write(folder, {"max_speed": gadget.max_speed})
    if gadget.strings:
        _write(folder / "strings" / LANGUAGE, {name.lower(): text for name, text in gadget.strings.items()})
    for number, functions in enumerate(gadget.configs, start=1):
        config = folder / "configs" / f"c.{number}"
        config.mkdir(parents=True)
        for function in functions:
            (folder / "functions" / function).mkdir(parents=True, exist_ok=True)
            (config / function).symlink_to(f"../../functions/{function}")
    for path, value in gadget.attributes.items():
        file = folder / "functions" / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(value)


def _write(folder, files):
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in files.items():
        (folder / name).write_text(text, encoding="utf-8")
