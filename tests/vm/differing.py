"""What diff reports between a saved inventory and the machine as it is now.

The saved one is made to come from a machine with another kernel. Buses get other numbers, a keyboard moves, and a
stick becomes a stick with a keyboard.
"""

import gadgets
import machine
import qemu
import topology

KEYBOARD, MOVED = (machine.Plug("usb-kbd", "xhci", port, serial="KBD-MOVES") for port in ("4", "6"))
# Controllers that swap the numbers of their buses, with their drivers.
SWAPPED = (("0000:00:05.0", "ehci-pci"), ("0000:00:07.0", "ohci-pci"))
STICKS = (("stick-", gadgets.STICK), ("rogue-", gadgets.ROGUE_STICK))


class Differing:
    """The checks of diff; the machine ends as it was, but for the numbers of buses."""

    def __init__(self, guest, collector, report):
        self._guest = guest
        self._collector = collector
        self._report = report

    def check_all(self, buses, release):
        """Check both changes; `buses` are those of the changed machine and of the gadgets."""
        others = [bus for bus in buses if bus.controller.startswith("dummy_hcd")]
        self._check_keyboard(others, release)
        self._check_stick(topology.machine_buses(machine.CHANGED_MACHINE, release), release)
        self._collector.prepare("swap_gadgets", "1", "1")
        self._collector.settle(buses, "gadgets are back")

    def _check_keyboard(self, others, release):
        def settle(plug, name):
            buses = topology.machine_buses(machine.CHANGED_MACHINE.changed((), (plug,)), release) + others
            self._collector.settle(buses, name)
            return _name_of(buses, "KBD-MOVES")

        self._plug(KEYBOARD)
        before = settle(KEYBOARD, "a keyboard")
        self._collector.prepare("save", release)
        self._guest.monitor("device_del", id=KEYBOARD.name)
        self._collector.prepare("rebind", *(word for controller in SWAPPED for word in controller))
        self._plug(MOVED)
        after = settle(MOVED, "a keyboard in another port, buses with other numbers")
        self._check("another kernel, other buses and a keyboard that moved: diff reports the keyboard alone",
                    [f'> {before} -> {after}: keyboard 0627:0001 "QEMU USB Keyboard", serial "KBD-MOVES"', "1 moved"])
        self._guest.monitor("device_del", id=MOVED.name)

    def _check_stick(self, others, release):
        for prefix, gadget in STICKS:
            self._collector.prepare("swap_gadgets", "1", "1", prefix)
            buses = others + gadgets.buses(release, (gadget, *gadgets.GADGETS[1:]))
            self._collector.settle(buses, "a stick" if gadget is gadgets.STICK else "a stick with a keyboard")
            if gadget is gadgets.STICK:
                self._collector.prepare("save", release)
        name = _name_of(buses, gadget.strings["SerialNumber"])
        self._check("a stick that gains a keyboard: diff reports it",
                    [f'~ {name}: keyboard, mass storage 0525:a4a5 "Stick", serial "ST-1"',
                     "    kinds: mass storage -> keyboard, mass storage",
                     '    interface 1.1: none -> 03/01/01, driver "usbhid"', "1 changed"])

    def _plug(self, plug):
        self._guest.monitor("device_add", **qemu.plug_properties(plug))

    def _check(self, name, expected):
        """The machines and the times are in the first line."""
        _, files = self._guest.run("diff_now")
        status, messages = (files[file].decode().strip() for file in ("status", "messages"))
        lines = files["output"].decode().splitlines()
        problems = [] if (status, messages) == ("1", "") else [f"exit status {status}, {messages}"]
        if lines[1:] != expected:
            problems += ["diff prints", *lines]
        self._report.add(name, problems)


def _name_of(buses, serial):
    return next(bus.sysfs_name(device) for bus in buses for device in bus.devices
                if device.strings.get("SerialNumber") == serial)
