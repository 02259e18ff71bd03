"""What watch reports while devices come and go, as an ordinary user and without udevd.

Its lines, replayed over the inventory from before, must give the inventory in the end.
"""

import json
import random

import gadgets
import machine
import qemu
import replay
import topology

# What is plugged in and pulled out besides gadgets: what hangs on a hub, and a keyboard that moves.
HUB = ("0000:00:03.0", (2, 3))
KEYBOARDS = tuple(machine.Plug("usb-kbd", "xhci", port, serial="KBD-MOVES") for port in ("4", "6"))
# In milliseconds: around the settling time, and around the time that a device takes to come.
SETTLE = 100
PAUSES = (0, 50, 100, 300)
ACTIONS_A_STEP = 20
UEVENTS_A_STEP = 5000
# The socket of an ordinary user holds a few hundred events.
FLOOD = 2000
# By so much the memory may differ, in KiB.
MEMORY = 256


class Watching:
    """The checks of watch; the machine ends as it was."""

    def __init__(self, guest, collector, report):
        self._guest = guest
        self._collector = collector
        self._report = report
        self._script = None

    def check_all(self, buses, release, plugs, uevents):
        """Check so many plugs and events; `buses` are those of the changed machine and of the gadgets."""
        self._script = Script(self._guest, self._collector, _hub_name(buses), plugs)
        self._check_lines(release, plugs, uevents)
        self._check_end(release)

    def _check_lines(self, release, plugs, uevents):
        self._collector.prepare("watch", "--format", "jsonl", "--settle", f"{SETTLE}ms")
        self._script.run()
        self._settle(release, "plugged and unplugged")
        self._check_use(uevents)
        place = self._flood(release)
        reports, problems = self._end()
        if len(reports) < plugs // 10:
            problems.append(f"there are only {len(reports)} lines")
        self._report.add(f"{plugs} plugs and unplugs: watch's lines, replayed, give the inventory", problems)
        problems = [] if any(_is_loss(report, place) for report in reports) else ["no line reports that"]
        self._report.add(f"a flood of events: watch reports that some were lost, and the change at {place}", problems)

    def _check_use(self, uevents):
        """The first events are there for what is allocated once."""
        self._send(uevents // 10)
        before = self._use()
        self._send(uevents)
        after = self._use()
        is_flat = abs(after[0] - before[0]) <= MEMORY and after[1] == before[1]
        self._report.add(f"{uevents} events: watch has {after[0]} KiB of memory and {after[1]} descriptors, as before",
                         [] if is_flat else [f"before, {before[0]} KiB and {before[1]} descriptors"])

    def _send(self, uevents):
        for done in range(0, uevents, UEVENTS_A_STEP):
            self._collector.prepare("uevents", str(min(UEVENTS_A_STEP, uevents - done)))

    def _use(self):
        """The watch's memory and descriptors, when it has nothing to do."""
        return tuple(map(int, self._collector.prepare("watch_use")["use"].split()))

    def _flood(self, release):
        """Have a gadget come or go while the watch cannot take events; return its place."""
        self._collector.prepare("signal_watch", "STOP")
        self._send(FLOOD)
        self._script.toggle(0)
        buses = self._settle(release, "a gadget after a flood")
        self._collector.prepare("signal_watch", "CONT")
        self._use()
        return _place(buses, 0)

    def _check_end(self, release):
        """A device that comes and goes, and one that goes, before things have settled."""
        self._script.restore(0)
        self._settle(release, "without the first gadget")
        self._collector.prepare("watch", "--format", "jsonl", "--settle", "60s")
        for changed in ((0,), (0, 1)):
            self._script.toggle(*changed)
            buses = self._settle(release, "before watch is ended")
        reports, problems = self._end()
        found = [([item["place"] for item in report["difference"]["removed"]],
                  [(item["name"], item["id"]) for item in report["cameAndWent"]]) for report in reports]
        expected = [([_place(buses, 1)], [(_place(buses, 0), "1d6b:0104")])]
        if found != expected:
            problems.append(f"removed, and come and gone: {found}, expected {expected}")
        self._report.add("SIGTERM before things have settled: watch's last line has all that has happened", problems)
        self._script.restore()
        self._settle(release, "all is back")

    def _settle(self, release, name):
        changed = machine.CHANGED_MACHINE.changed((), self._script.keyboard)
        buses = topology.machine_buses(changed, release) + gadgets.buses(release, self._script.plugged)
        self._collector.settle(buses, f"watch, {name}")
        return buses

    def _end(self):
        """The reports, and what is wrong with them."""
        files = self._collector.prepare("end_watch")
        status, messages, output = (files[name].decode() for name in ("status", "messages", "output"))
        problems = [] if (status, messages) == ("0\n", "") else [f"exit status {status.strip()}, {messages}"]
        reports = replay.reports_of(output, problems)
        try:
            found = replay.devices_of(json.loads(files["before"]))
            for report in reports:
                found = replay.applied(report["difference"], found)
            problems += replay.differences(replay.devices_of(json.loads(files["after"])), found)
        except replay.Misfit as error:
            problems.append(f"line {report['sequence']}: {error}")
        return reports, problems + replay.reported_twice(reports)


class Script:
    """Plugs devices in and pulls them out, at random, but in the same way each time."""

    def __init__(self, guest, collector, hub, plugs):
        self._guest = guest
        self._collector = collector
        self._hub = hub
        self._plugs = plugs
        self._random = random.Random(plugs)
        self._has_hub = True
        # What is in now.
        self.plugged = list(gadgets.GADGETS)
        self.keyboard = ()

    def run(self):
        """Go on until so many devices have been plugged in; the hub's are there in the end."""
        done = 0
        while done < self._plugs:
            actions = []
            for _ in range(ACTIONS_A_STEP):
                done += self._change(actions)
                actions.append(str(self._random.choice(PAUSES)))
            done += self._move_keyboard()
            self._collector.prepare("plug_and_unplug", *actions)
        if not self._has_hub:
            self._collector.prepare("plug_and_unplug", self._toggle_hub())

    def toggle(self, *numbers):
        """Plug these gadgets in, or pull them out."""
        self._collector.prepare("plug_and_unplug", *map(self._toggle, numbers))

    def restore(self, *without):
        """Plug all gadgets in that were there in the beginning, without those of these numbers, and nothing else."""
        self.toggle(*(number for number, gadget in enumerate(self.plugged) if (gadget is None) != (number in without)))
        for plug in self.keyboard:
            self._guest.monitor("device_del", id=plug.name)
        self.keyboard = ()

    def _change(self, actions):
        """Add an action; give how many devices it plugs in."""
        number = self._random.randrange(len(gadgets.GADGETS) + 1)
        if number == len(gadgets.GADGETS):
            actions.append(self._toggle_hub())
            return int(self._has_hub)
        actions.append(self._toggle(number))
        return int(self.plugged[number] is not None)

    def _toggle(self, number):
        self.plugged[number] = None if self.plugged[number] else gadgets.GADGETS[number]
        return f"gadget:{number}"

    def _toggle_hub(self):
        self._has_hub = not self._has_hub
        return f"hub:{self._hub}"

    def _move_keyboard(self):
        new = self._random.choice([plug for plug in KEYBOARDS if plug not in self.keyboard])
        for plug in self.keyboard:
            self._guest.monitor("device_del", id=plug.name)
        self._guest.monitor("device_add", **qemu.plug_properties(new))
        self.keyboard = (new,)
        return 1


def _hub_name(buses):
    controller, ports = HUB
    bus = next(bus for bus in buses if (bus.controller, bus.index) == (controller, 0))
    return bus.sysfs_name(next(device for device in bus.devices if device.ports == ports))


def _place(buses, gadget):
    bus = next(bus for bus in buses if bus.controller == f"dummy_hcd.{gadget}")
    return f"{bus.number}-1"


def _is_loss(report, place):
    changed = report["difference"]["added"] + report["difference"]["removed"]
    return report["eventsLost"] and place in [item["place"] for item in changed]
