"""The checks: what is done in the guest, and what must come of it.

A check is reported by its name with the lines that show what differs. All checks run in one boot, one after
the other; each takes the machine as the one before left it.
"""

import json
import sys

import comparison
import device_list
import expectation
import gadgets
import kernel_list
import machine
import qemu
import states
import topology
from guest_machine import GuestError

ROOT, USER = "root", "user"
DEBUGFS, SCRIPT = "debugfs", "script"
MOUNT_ATTEMPT = "mount -t usbfs usbfs /proc/bus/usb\n"


class Report:
    """Prints the outcome of every check as it comes in, and keeps whether any failed."""

    MOST_LINES = 25

    def __init__(self):
        self.failed = False

    def add(self, name, problems):
        """Take in a check; without problems it has passed."""
        self.failed = self.failed or bool(problems)
        print(f"{'FAIL' if problems else 'ok  '}  {name}")
        for line in problems[:self.MOST_LINES]:
            print(f"        {line}")
        if len(problems) > self.MOST_LINES:
            print(f"        and {len(problems) - self.MOST_LINES} more")
        sys.stdout.flush()


class Collector:
    """Brings the guest's machine into a state, and takes inventories in it."""

    def __init__(self, guest, report):
        self._guest = guest
        self._report = report

    def settle(self, buses, name):
        """Wait until the devices are there that must be, and fill in the numbers that they got."""
        status, files = self._guest.run("wait_for_roots", str(len(buses)))
        problems = [f"{len(buses)} root hubs expected, there are {files['seen'].decode()}"] if status else []
        topology.number_buses(buses, self._facts())
        names = sorted(bus.sysfs_name(device) for bus in buses for device in bus.devices)
        problems += self._wait_for(names)
        topology.number_devices(buses, self._facts())
        self._report.add(f"{name}: the kernel finds all that is plugged in, and where", problems)

    def _wait_for(self, names):
        status, files = self._guest.run("wait_for", *names)
        if status == 0:
            return []
        wanted, seen = set(names), set(files["seen"].decode().split())
        return [f"in sysfs, missing: {' '.join(sorted(wanted - seen)) or 'none'}; "
                f"not expected: {' '.join(sorted(seen - wanted)) or 'none'}; the others may not be ready"]

    def _facts(self):
        _, files = self._guest.run("facts")
        return [line.split(" ", 2) for line in files["devices"].decode().splitlines()]

    def prepare(self, step, *arguments):
        """Run a step that has to succeed."""
        status, files = self._guest.run(step, *arguments)
        if status:
            raise GuestError(f"step {step} ended with {status}: {files['messages'].decode()}")

    def take(self, user, source):
        """Take the inventory as that user, who must come to read the list of that source."""
        return Taken(self._guest.run("inventory", user, source)[1])


class Taken:
    """What a run of the command left, and the device list as it was at that time."""

    def __init__(self, files):
        self.status = files["status"].decode().strip()
        self.messages = files["messages"].decode()
        self.inventory = _parsed(files.get("inventory.json", b"")) or {"classes": {}}
        self.log = [_parsed(line) for line in files.get("log.jsonl", b"").splitlines()]
        self.mounts = files.get("mounts", b"").decode()
        self.list = files["list"]

    def check_inventory(self, device_list):
        """The problems with the outcome, where this list is the truth."""
        if self.status != "0" or self.messages:
            return [f"exit status {self.status}, messages: {self.messages}"]
        return comparison.differences(expectation.inventory(device_list), self.inventory)

    def check_log(self, expected, mounts):
        """The problems with the log and with the calls of mount and umount."""
        problems = [] if self.mounts == mounts else [f"mounts are {self.mounts!r}, expected {mounts!r}"]
        for number, (line, wanted) in enumerate(zip(self.log, expected), start=1):
            if line != wanted:
                return problems + [f"line {number} of the log is {line}, expected {wanted}"]
        if len(self.log) != len(expected):
            problems.append(f"the log has {len(self.log)} lines, expected {len(expected)}")
        return problems


def _parsed(text):
    """The JSON value, or nothing where the text is none."""
    try:
        return json.loads(text)
    except ValueError:
        return None


def run_all(guest, release, report, records):
    """Run every check on the guest, and record its states if there is a folder for that."""
    collector = Collector(guest, report)
    proof = kernel_list.Proof(guest, report, records)
    buses = topology.machine_buses(machine.MACHINE, release)
    collector.settle(buses, "machine")

    collector.prepare("debugfs", "mount")
    before = collector.take(ROOT, DEBUGFS)
    check_debugfs(report, "debugfs, root", before, buses)
    proof.check("machine")
    check_fallback(report, "debugfs, ordinary user", collector.take(USER, SCRIPT), buses)
    collector.prepare("debugfs", "umount")
    check_fallback(report, "no debugfs, root", collector.take(ROOT, SCRIPT), buses)
    collector.prepare("debugfs", "mount")

    changed = topology.machine_buses(machine.CHANGED_MACHINE, release)
    change_machine(guest)
    collector.settle(changed, "devices come and go")
    after = collector.take(ROOT, DEBUGFS)
    check_debugfs(report, "devices come and go", after, changed)
    check_changes(report, (before, after), (buses, changed))
    proof.check("devices come and go")

    changed += gadgets.buses(release)
    collector.prepare("gadgets", str(len(gadgets.GADGETS)))
    collector.settle(changed, "gadgets")
    check_debugfs(report, "gadgets", collector.take(ROOT, DEBUGFS), changed)
    check_fallback(report, "gadgets, ordinary user", collector.take(USER, SCRIPT), changed)
    proof.check("gadgets")
    states.check_all(guest, collector, proof, release, changed)


def check_debugfs(report, name, taken, buses):
    """With the list of debugfs, everything is shown as it is plugged in, and nothing is mounted."""
    report.add(f"{name}: the inventory is what is plugged in",
               taken.check_inventory(device_list.kernel_list(buses)))
    report.add(f"{name}: the log names the list of debugfs",
               taken.check_log(expectation.log(taken.list), ""))


def check_fallback(report, name, taken, buses):
    """Without a list to read, mounting usbfs is tried once and fails; the list comes from usb-devices."""
    report.add(f"{name}: the inventory is what usb-devices makes of what is plugged in",
               taken.check_inventory(device_list.script_list(buses)))
    report.add(f"{name}: usbfs cannot be mounted, the log says so, and usb-devices steps in",
               taken.check_log(expectation.fallback_log(taken.list), MOUNT_ATTEMPT))


def change_machine(guest):
    """Pull the devices out that go, and put those in that come."""
    for plug in machine.REMOVED:
        guest.monitor("device_del", id=plug.name)
    for plug in machine.ADDED:
        guest.monitor("device_add", **qemu.plug_properties(plug))


def check_changes(report, taken, buses):
    """The inventories differ in the devices that went and came, and in their ports, in nothing else."""
    expected = expectation.changes(*buses)
    found = comparison.changes(*(item.inventory for item in taken))
    problems = []
    for kind, wanted in expected.items():
        problems += [f"{kind}, but should not be: {comparison.called(item)}"
                     for item in sorted(found[kind] - wanted)]
        problems += [f"should be {kind}, but is not: {comparison.called(item)}"
                     for item in sorted(wanted - found[kind])]
    report.add("devices come and go: the inventories before and after differ in just that", problems)
