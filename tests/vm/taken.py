"""An inventory that the command took in the guest, and what is wrong with it."""

import json
import re

import comparison
import device_list
import expectation

# The names of files in sysfs that are devices, not interfaces or other things below them.
DEVICE_NAME = re.compile(r"usb\d+|\d+-\d+(\.\d+)*")
IDENTIFIERS = re.compile(r"\b[0-9a-f]{4}:[0-9a-f]{4}\b")


class Taken:
    """What a run of the command left, and the device list as it was at that time."""

    def __init__(self, files):
        self.status = files["status"].decode().strip()
        # Those of usb-devices, about files that unconfigured devices lack, are left out.
        self.messages = [line for line in files["messages"].decode().splitlines() if not line.startswith("cat: ")]
        self.inventory = parsed(files.get("inventory.json", b"")) or {"classes": {}}
        self.tree = files.get("tree", b"").decode()
        self.log = [parsed(line) for line in files.get("log.jsonl", b"").splitlines()]
        self.mounts = files.get("mounts", b"").decode()
        self.list = files["list"]

    def check_outcome(self, messages=()):
        """The problems with the exit status, and with the messages, each of which has to match its pattern."""
        problems = [] if self.status == "0" else [f"exit status {self.status}"]
        fits = len(self.messages) == len(messages) and all(map(re.search, messages, self.messages))
        return problems if fits else problems + [f"messages are {self.messages}, expected {list(messages)}"]

    def check_inventory(self, described, facts, origin):
        """The problems with the document: its classes follow from the list that describes the buses."""
        head = {name: expectation.inventory(described)[name] for name in ("schema", "system", "classes")}
        problems = comparison.differences(head, {name: self.inventory.get(name) for name in head})
        problems += comparison.differing_facts(facts, self.inventory.get("kernel"))
        return problems + self._check_origin(origin)

    def _check_origin(self, expected):
        found = self.inventory.get("origin", {})
        if not re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ", found.get("collected") or ""):
            return [f"collected is {found.get('collected')}"]
        found = {**found, "collected": None}
        return [] if found == expected else [f"the origin is {found}, expected {expected}"]

    def check_log(self, expected, mounts=""):
        """The problems with the log and with the calls of mount and umount."""
        problems = [] if self.mounts == mounts else [f"mounts are {self.mounts!r}, expected {mounts!r}"]
        for number, (line, wanted) in enumerate(zip(self.log, expected), start=1):
            if line != wanted:
                return problems + [f"line {number} of the log is {line}, expected {wanted}"]
        if len(self.log) != len(expected):
            problems.append(f"the log has {len(self.log)} lines, expected {len(expected)}")
        return problems

    def check_tree(self, buses, name_of=str):
        """The problems with the tree: every device has a row at its place, below its hub, with name_of its product."""
        rows = _rows(self.tree)
        problems = []
        for place, identifiers, product in _expected_rows(buses, name_of):
            above, text = rows.pop(place, ((), ""))
            if identifiers not in text or product not in text:
                problems.append(f"not in the tree: {place} {identifiers} {product}; there is {text!r}")
            elif "." in place and place.rpartition(".")[0] not in above:
                problems.append(f"not below its hub: {text}")
        return problems + [f"should not be in the tree: {text}" for _, text in rows.values()]


def parsed(text):
    """The JSON value, or nothing where the text is none."""
    try:
        return json.loads(text)
    except ValueError:
        return None


def nodes(text):
    """The nodes of every device from lines "FOLDER NODE": its own one first, then those of its drivers."""
    found = {}
    for line in sorted(text.splitlines(), key=lambda line: line.split(" ")[1]):
        folder, node = line.split(" ")
        parts = folder.split("/")
        place = max(index for index, part in enumerate(parts) if DEVICE_NAME.fullmatch(part))
        found.setdefault(parts[place], []).insert(0 if place == len(parts) - 1 else 99, node)
    return found


def _rows(tree):
    """The rows of hubs and devices by their places, each with the places above it."""
    rows, above = {}, []
    for line in tree.splitlines()[2:]:
        depth, place = re.match(r"([ |`│├└─-]*)(\S*)", line).groups()
        above = [item for item in above if item[0] < len(depth)] + [(len(depth), place)]
        if IDENTIFIERS.search(line) and DEVICE_NAME.fullmatch(place) and not place.startswith("usb"):
            rows[place] = ([name for _, name in above[:-1]], line)
    return rows


def _expected_rows(buses, name_of):
    for bus in buses:
        for device in bus.devices:
            if device.ports:
                name = name_of(device.strings.get("Product", ""))
                yield bus.sysfs_name(device), device.identifiers, device_list.escaped(name)
