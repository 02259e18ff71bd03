"""The checks: what is done in the guest, and what must come of it.

A check is reported by its name with the lines that show what differs. All checks run in one boot, one after
the other; each takes the machine as the one before left it.
"""

import sys

import comparison
import device_list
import differing
import expectation
import forgery
import gadgets
import kernel_list
import machine
import policies
import qemu
import states
import topology
import watching
from guest_machine import GuestError
from taken import Taken, nodes

ROOT, USER = "root", "user"
# How many lists are made in one step while devices come and go.
ROUNDS = 50
# How often devices are plugged in while watch follows the machine, and how many events it gets for nothing.
PLUGS, UEVENTS = 50, 1000
UEVENTS_A_ROUND = 100
# How often an inventory is taken until the machine stays the same meanwhile.
MOST_TRIES = 10
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
        """Run a step that has to succeed; return its files."""
        status, files = self._guest.run(step, *arguments)
        if status:
            raise GuestError(f"step {step} ended with {status}: {files['messages'].decode()}")
        return files

    def take(self, name, user, compared, *options):
        """Take the inventory as that user, to be kept under that name, with the device list to compare it with."""
        return Taken(self._guest.run("inventory", name, user, compared, *options)[1])

    def take_with_nodes(self, *arguments):
        """The same with the nodes in /dev by device, once these are the same before and after.

        The kernel looks for the disks of a stick a while after it has found the stick.
        """
        after = self._nodes()
        for _ in range(MOST_TRIES):
            before, taken, after = after, self.take(*arguments), self._nodes()
            if before == after:
                return taken, after
        raise GuestError("the nodes in /dev do not stay the same")

    def _nodes(self):
        return nodes(self._guest.run("nodes")[1]["nodes"].decode())


def run_all(guest, release, report, records):
    """Run every check on the guest; record its states if there is a folder for that."""
    collector = Collector(guest, report)
    found = Checks(collector, report)
    proof = kernel_list.Proof(guest, report, records)
    buses = topology.machine_buses(machine.MACHINE, release)
    collector.settle(buses, "machine")
    before = check_machine(collector, found, proof, buses)

    changed = topology.machine_buses(machine.CHANGED_MACHINE, release)
    change_machine(guest)
    collector.settle(changed, "devices come and go")
    check_changes(report, (before, found.sysfs("devices come and go", changed)), (buses, changed))
    proof.check("devices come and go")

    changed += gadgets.buses(release)
    plug_gadgets(collector, changed)
    check_gadgets(found, proof, changed)
    forgery.Forgery(guest, collector, found, report, proof).check_all(changed, release)
    differing.Differing(guest, collector, report).check_all(changed, release)
    policies.check_all(guest, collector, report, changed, release)
    watching.Watching(guest, collector, report).check_all(changed, release, PLUGS, UEVENTS)
    collector.settle(changed, "after watch")
    states.come_and_go(collector, proof, changed, ROUNDS, "all the time")
    states.check_all(guest, collector, found, proof, release, changed)


def run_script(guest, release, report):
    """Check what comes of the output of usb-devices, and nothing else."""
    collector = Collector(guest, report)
    found = Checks(collector, report)
    buses = topology.machine_buses(machine.MACHINE, release)
    collector.settle(buses, "machine")
    found.script("machine, ordinary user", buses)
    found.script_as_is("machine", buses, ROOT)
    buses += gadgets.buses(release)
    plug_gadgets(collector, buses)
    found.script("gadgets, ordinary user", buses, is_forged=True)


def soak(guest, release, report, rounds):
    """Have devices come and go for that many rounds while lists are made, then with watch; check nothing else."""
    collector = Collector(guest, report)
    proof = kernel_list.Proof(guest, report)
    change_machine(guest)
    buses = topology.machine_buses(machine.CHANGED_MACHINE, release) + gadgets.buses(release)
    collector.prepare("debugfs", "mount")
    plug_gadgets(collector, buses)
    for done in range(0, rounds, ROUNDS):
        states.come_and_go(collector, proof, buses, min(ROUNDS, rounds - done), f"from round {done + 1}")
    watching.Watching(guest, collector, report).check_all(buses, release, rounds, rounds * UEVENTS_A_ROUND)


def plug_gadgets(collector, buses):
    """Plug the gadgets in and wait for them."""
    collector.prepare("gadgets", str(len(gadgets.GADGETS)))
    collector.settle(buses, "gadgets")


def check_machine(collector, found, proof, buses):
    """Check every way to the devices of the machine; return the inventory from sysfs."""
    collector.prepare("debugfs", "mount")
    taken = found.sysfs("machine", buses)
    found.plugin("machine", buses)
    proof.check("machine")
    found.script("machine, ordinary user", buses)
    collector.prepare("debugfs", "umount")
    found.script_as_is("machine, no debugfs", buses, ROOT)
    collector.prepare("usbutils", "away")
    found.sysfs_of_others("machine, no debugfs, no usbutils", taken)
    collector.prepare("usbutils", "back")
    collector.prepare("debugfs", "mount")
    return taken


def check_gadgets(found, proof, buses):
    """Check the ways to the gadgets, one of which usb-devices makes a forgery of."""
    found.sysfs("gadgets", buses)
    found.plugin("gadgets", buses)
    found.script("gadgets, ordinary user", buses, is_forged=True)
    proof.check("gadgets")


class Checks:
    """Takes inventories in the state that the machine is in, and checks them."""

    def __init__(self, collector, report):
        self._collector = collector
        self._report = report

    def sysfs(self, name, buses):
        """As root: everything is shown as it is plugged in, without another program, and nothing is mounted."""
        taken, nodes_of = self._collector.take_with_nodes("sysfs", ROOT, "debugfs")
        described, text = map(device_list.from_sysfs, (device_list.kernel_list(buses), taken.list))
        facts = expectation.facts_of_sysfs(text, described, buses, nodes_of)
        self._report.add(f"{name}: what sysfs gives is what is plugged in",
                         taken.check_outcome() +
                         taken.check_inventory(described, facts, expectation.origin("sysfs")))
        self._report.add(f"{name}: the tree shows every device below its hub",
                         taken.check_tree(buses))
        self._report.add(f"{name}: the log is that of the list made of sysfs",
                         taken.check_log(expectation.log(device_list.read_by_plugin(text))))
        return taken

    def sysfs_of_others(self, name, taken):
        """As an ordinary user, without debugfs and without usbutils: the same inventory as root's."""
        other = self._collector.take("others", USER, "last")
        problems = other.check_outcome() + comparison.differences(_undated(taken), _undated(other))
        problems += comparison.differing_facts(taken.inventory["kernel"], other.inventory.get("kernel"))
        if other.tree != taken.tree:
            problems.append("the trees differ")
        self._report.add(f"{name}: others get what root gets", problems)

    def plugin(self, name, buses):
        """Through the plug-in, as root: everything is shown as it is plugged in, and nothing is mounted."""
        taken = self._collector.take("plugin", ROOT, "debugfs", "--source", "plugin")
        described = device_list.kernel_list(buses)
        self._report.add(f"{name}: what debugfs gives is what is plugged in",
                         taken.check_outcome() +
                         taken.check_inventory(described, expectation.kernel_facts(taken.list, described),
                                               expectation.origin("plugin")))
        self._report.add(f"{name}: the tree of that shows every device below its hub",
                         taken.check_tree(buses, device_list.first_line))
        self._report.add(f"{name}: the log names the list of debugfs",
                         taken.check_log(expectation.log(device_list.read_by_plugin(taken.list))))
        return taken

    def plugin_as_is(self, name):
        """The same as any host has it: with the lines that the plug-in takes for those of the next device."""
        taken = self._collector.take("plugin", ROOT, "debugfs", "--source", "plugin", "--as-is")
        self._report.add(f"{name}: the inventory is what the plug-in makes of the list of debugfs",
                         taken.check_outcome() +
                         taken.check_inventory(taken.list, expectation.kernel_facts(taken.list),
                                               expectation.origin("plugin")))

    def script(self, name, buses, is_forged=False):
        """Without a list to read, mounting usbfs is tried once and fails; the output of usb-devices is repaired."""
        taken = self._collector.take("script", USER, "script", "--source", "plugin")
        text, parents, interfaces = device_list.repaired(taken.list, buses)
        described = device_list.mended_script_list(buses, taken.list)
        repairs = (("parent", parents), ("stale-interface", interfaces))
        findings = device_list.findings(taken.list) if is_forged else ()
        messages = [rf"\b{count}\b.*--as-is" for _, count in repairs if count]
        messages += [rf"\b{item['code']}\b" for item in findings]
        self._report.add(f"{name}: what usb-devices gives, repaired, is what is plugged in",
                         taken.check_outcome(messages) +
                         taken.check_inventory(described, expectation.kernel_facts(text, described),
                                               expectation.origin("plugin", findings, repairs)))
        self._report.add(f"{name}: the tree of that shows every device below its hub",
                         taken.check_tree(buses, device_list.first_echoed_line))
        self._report.add(f"{name}: usbfs cannot be mounted, the log says so, and usb-devices steps in",
                         taken.check_log(expectation.fallback_log(device_list.read_by_plugin(text)), MOUNT_ATTEMPT))

    def script_as_is(self, name, buses, user):
        """The same as any host has it: with the parents that usb-devices prints."""
        taken = self._collector.take("as-is", user, "last", "--source", "plugin", "--as-is")
        self._report.add(f"{name}: the inventory is what usb-devices makes of what is plugged in",
                         taken.check_outcome() +
                         taken.check_inventory(device_list.script_list(buses, taken.list),
                                               expectation.kernel_facts(taken.list), expectation.origin("plugin")))
        self._report.add(f"{name}: the log has the output of usb-devices as it is",
                         taken.check_log(expectation.fallback_log(taken.list), MOUNT_ATTEMPT))


def _undated(taken):
    """The inventory without its time."""
    return {**taken.inventory, "origin": {**taken.inventory.get("origin", {}), "collected": None}}


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
