"""What diff reports between a saved inventory and the machine as it is now.

The saved one is made to come from a machine with another kernel. Buses get other numbers, a keyboard moves, and a
stick becomes a stick with a keyboard. The last change is also seen by watch, by check with a policy from before, and
in the metrics.
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
    """The checks of diff, and of what else sees a change; the machine ends as it was, but for the numbers of buses."""

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
        move = [f'> {before} -> {after}: keyboard 0627:0001 "QEMU USB Keyboard", serial "KBD-MOVES"', "1 moved"]
        self._report.add("another kernel, other buses and a keyboard that moved: diff reports the keyboard alone",
                         self._problems("diff_now", "1", _without_machines, move))
        self._guest.monitor("device_del", id=MOVED.name)

    def _check_stick(self, others, release):
        """Every way to see the change, while watch follows the machine."""
        for prefix, gadget in STICKS:
            self._collector.prepare("swap_gadgets", "1", "1", prefix)
            buses = others + gadgets.buses(release, (gadget, *gadgets.GADGETS[1:]))
            self._collector.settle(buses, "a stick" if gadget is gadgets.STICK else "a stick with a keyboard")
            if gadget is gadgets.STICK:
                self._collector.prepare("save", release)
                self._collector.prepare("watch", "--color", "never", "--settle", "60s")
        name = _name_of(buses, gadget.strings["SerialNumber"])
        stick = f'{name}: keyboard, mass storage 0525:a4a5 "Stick", serial "ST-1"'
        change = ["~ " + stick, "    kinds: mass storage -> keyboard, mass storage",
                  '    interface 1.1: none -> 03/01/01, driver "usbhid"', "1 changed"]
        refused = [f"{stick}: blocked, no rule matches",
                   f"1 of {sum(len(bus.devices) for bus in buses)} devices not allowed"]
        keyboards = sum(plug.model == "usb-kbd" for plug in machine.CHANGED_MACHINE.plugs) + 1
        labels = f'place="{name}",vid="0525",pid="a4a5",kind="keyboard, mass storage",vendor="Makers",product="Stick"'
        metrics = [f'usbinfo_devices{{kind="keyboard"}} {keyboards}', f"usbinfo_device_info{{{labels}}} 1"]
        # Each way ends with a status, and prints these lines among those that belong to the change.
        ways = (("diff_now", "1", _without_machines, change),
                ("check_now", "1", list, refused),
                ("metrics_now", "0", _without_time, metrics),
                ("end_watch", "0", _without_machines, change))
        self._report.add("a stick that gains a keyboard: diff, check, the metrics and watch show it",
                         [problem for way in ways for problem in self._problems(*way)])

    def _plug(self, plug):
        self._guest.monitor("device_add", **qemu.plug_properties(plug))

    def _problems(self, step, status, lines_of, expected):
        """What is wrong with what a step prints, and with its end."""
        files = self._collector.prepare(step)
        found, messages = (files[file].decode().strip() for file in ("status", "messages"))
        lines = files["output"].decode().splitlines()
        problems = [] if (found, messages) == (status, "") else [f"{step}: exit status {found}, {messages}"]
        return problems + ([] if lines_of(lines) == expected else [f"{step} prints", *lines])


def _without_machines(lines):
    """Without the first line, which has the machines and the times."""
    return lines[1:]


def _without_time(lines):
    """Without the metric of the time at which the devices were read."""
    return [line for line in lines if not line.startswith("usbinfo_collected_timestamp_seconds ")]


def _name_of(buses, serial):
    return next(bus.sysfs_name(device) for bus in buses for device in bus.devices
                if device.strings.get("SerialNumber") == serial)
