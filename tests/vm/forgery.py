"""Devices that forge lines of the device list, in the place of one that an administrator has approved.

What is made of sysfs shows them as what they are. The kernel's own list has the forged lines, and the command says so.
"""

import re

import device_list
import expectation
import gadgets

COUNT = len(gadgets.FORGERS)
NAME = gadgets.APPROVED.strings["Product"]
VIEWS = ("tree", "table", "csv", "dot", "html")
ROOT = "root"

# The approved device's identifiers as a field, or its name as all of a field.
APPROVED = re.compile(r'\b{:04x}:{:04x}\b|(?<!=){}(?=["< ]|$)'.format(*gadgets.APPROVED.ids, NAME))

# What is found in the kernel's list: by forger, the last two of which nothing shows.
FINDINGS = ("two-strings", "two-strings",
            "two-t-lines", "two-d-lines", "two-p-lines", "line-behind-string",
            "line-behind-string")


class Forgery:
    """The checks of devices that forge."""

    def __init__(self, guest, collector, found, report, proof):
        self._guest = guest
        self._collector = collector
        self._found = found
        self._report = report
        self._proof = proof

    def check_all(self, buses, release):
        """Plug in the approved device alone, then the forgers, and in the end what has been there before."""
        others = [bus for bus in buses if not bus.controller.startswith("dummy_hcd")]
        rest = gadgets.GADGETS[COUNT:]
        approved = (gadgets.APPROVED, *[None] * (COUNT - 1))
        forged = others + gadgets.buses(release, (*gadgets.FORGERS, *rest))
        self._plug("approved", "approved-", 1, others + gadgets.buses(release, (*approved, *rest)))
        self._collector.take("approved", ROOT, "debugfs")
        self._plug("forgers", "forger-", COUNT, forged)
        self._found.sysfs("forgers", forged)
        self._proof.check("forgers")
        self._check_views()
        self._check_diff()
        self._check_plugin()
        self._check_script(forged)
        self._plug("forgers are gone", "", COUNT, buses)

    def _plug(self, name, prefix, count, buses):
        """Pull the first gadgets out, plug so many others in, and wait for what is on the buses then."""
        self._collector.prepare("swap_gadgets", str(COUNT), str(count), prefix)
        self._collector.settle(buses, name)

    def _check_views(self):
        _, files = self._guest.run("views", "sysfs", *VIEWS)
        problems = [line for view in VIEWS for line in _problems_of(view, files[view].decode().splitlines())]
        self._report.add("forgers: every format for people shows what they are", problems)

    def _check_diff(self):
        status, output, _ = self._diff("approved", "sysfs")
        removed = [line for line in output if line.startswith("-")]
        added = [line for line in output if line.startswith("+")]
        problems = [] if status == "1" else [f"exit status {status}"]
        if len(removed) != 1 or NAME not in removed[0]:
            problems += ["this is not the approved device alone:", *removed]
        if len(added) != COUNT:
            problems += [f"these are not {COUNT} devices:", *added]
        self._report.add("forgers: diff shows that the approved device is gone, and what there is",
                         problems + _problems_of("diff", added))

    def _check_plugin(self):
        taken = self._collector.take("plugin", ROOT, "debugfs", "--source", "plugin")
        findings = device_list.findings(taken.list)
        codes = tuple(finding["code"] for finding in findings)
        problems = [] if codes == FINDINGS else [f"the kernel's list has {codes}"]
        problems += taken.check_outcome([r"\b{}\b.*\b{}\b".format(", ".join(map(str, item["lines"])), item["code"])
                                         for item in findings])
        text = device_list.read_by_plugin(taken.list)
        problems += taken.check_inventory(text, expectation.kernel_facts(taken.list),
                                          expectation.origin("plugin", findings))
        self._report.add("forgers: the forged lines of the kernel's list are named", problems)
        self._report.add("forgers: diff refuses the forged list, and goes on if asked to", self._refusals())

    def _check_script(self, buses):
        """What a shell would say of a missing command is no more than a name, so the list is read all the same."""
        taken = self._collector.take("script", "user", "script", "--source", "plugin")
        text, parents, _ = device_list.repaired(taken.list, buses)
        findings = device_list.findings(taken.list)
        messages = [r"\b{}\b.*--as-is".format(parents), *(item["code"] for item in findings)]
        problems = taken.check_outcome(messages) + taken.check_inventory(
            device_list.read_by_plugin(text), expectation.kernel_facts(text),
            expectation.origin("plugin", findings, (("parent", parents),)))
        self._report.add("forgers, ordinary user: the output of usb-devices is read to its end", problems)

    def _refusals(self):
        status, output, messages = self._diff("approved", "plugin")
        problems = [] if status == "2" and not output and "--allow-suspect" in messages else [
            f"exit status {status}, {messages}"]
        status, output, messages = self._diff("approved", "plugin", "--allow-suspect")
        return problems if status == "1" and output and messages.count("\n") == len(FINDINGS) else problems + [
            f"with --allow-suspect, exit status {status}, {messages}"]

    def _diff(self, *arguments):
        _, files = self._guest.run("diff", *arguments)
        return (files["status"].decode().strip(), files["output"].decode().splitlines(),
                files["messages"].decode())


def _names():
    return [device_list.escaped(gadget.strings["Product"]) for gadget in gadgets.FORGERS if "Product" in gadget.strings]


def _problems_of(view, lines):
    """The problems with lines about devices: they have the forgers' own names, and none is the approved device's."""
    # In a graph, a backslash is written twice.
    text = "\n".join(lines).replace(r"\\n", r"\n")
    problems = [f"{view}: not shown: {name}" for name in _names() if name not in text]
    for name in _names():
        text = text.replace(name, "")
    approved = [line for line in text.splitlines() if APPROVED.search(line)]
    return problems + [f"{view}: looks like the approved device: {line}" for line in approved]
