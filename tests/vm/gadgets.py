"""The gadgets that the guest makes: devices whose descriptions QEMU's do not cover.

Each hangs on a dummy controller of its own, in its only port. A gadget is written down as a folder that looks
as it has to look in configfs, and described as the bus that the kernel must find for it.
"""

import pathlib
from dataclasses import dataclass

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

# The controller of the one with two configurations.
TWO_WAYS = "dummy_hcd.1"

# The same at SuperSpeed, and one that keeps to high speed: settings with isochronous endpoints, and without any.
SUPER_GADGETS = (
    Gadget(topology.strings("Makers", "Super", "C-1"), (("SourceSink.0", "acm.0"), ("acm.1",))),
    Gadget(topology.strings("Makers", "High", "C-2"), (("SourceSink.0", "acm.0"),), max_speed="high-speed"),
)
# The controller that these leave free.
FREE_CONTROLLER = f"dummy_hcd.{len(SUPER_GADGETS)}"


def buses(release):
    """The buses of the dummy controllers, a gadget on each."""
    found = []
    for number, gadget in enumerate(GADGETS):
        bus, = topology.controller_buses(f"dummy_hcd.{number}", models.DUMMY_CONTROLLER, {}, release)
        codes = models.Codes(" 2.00", *gadget.ids, gadget.device_class, len(gadget.configs))
        bus.devices.append(topology.Device((1,), codes, models.HIGH, gadget.strings))
        found.append(bus)
    return found


def super_buses(release):
    """The buses of the dummy controllers that know SuperSpeed, two each; the last one has no gadget."""
    found = []
    for number, gadget in enumerate((*SUPER_GADGETS, None)):
        controller = topology.controller_buses(f"dummy_hcd.{number}", models.SUPER_DUMMY_CONTROLLER, {}, release)
        found += controller
        if gadget is None:
            break
        codes = models.Codes(" 3.20", *gadget.ids, gadget.device_class, len(gadget.configs))
        speed = models.HIGH if gadget.max_speed else models.SUPER
        bus = next(bus for bus in controller if bus.root.speed == speed)
        bus.devices.append(topology.Device((1,), codes, speed, gadget.strings))
    return found


def write_folders(target):
    """Write every gadget down, in a folder named after its number."""
    for number, gadget in enumerate(GADGETS):
        _write_folder(pathlib.Path(target, str(number)), gadget)
    for number, gadget in enumerate(SUPER_GADGETS):
        _write_folder(pathlib.Path(target, f"super-{number}"), gadget)


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


def _write(folder, files):
    folder.mkdir(parents=True, exist_ok=True)
    for name, text in files.items():
        (folder / name).write_text(text, encoding="utf-8")
