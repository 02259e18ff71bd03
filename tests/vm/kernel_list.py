"""The proof of the device list that is made from sysfs: it equals the kernel's own, byte for byte.

Left aside are the B lines and line breaks in strings; see device_list.from_sysfs.
"""

import difflib
import pathlib
import re

import device_list

USERS = ("root", "user")


class Proof:
    """Checks the list in every state of the machine, and records the states where a folder is given for that."""

    def __init__(self, guest, report, records=None):
        self._guest = guest
        self._report = report
        self._records = records

    def check(self, name, controller=""):
        """Every user's list equals the kernel's. A record has the devices of one controller alone if it is named."""
        status, files = self._guest.run("kernel_list", *USERS)
        problems = [f"exit status {status}"] if status else []
        expected = device_list.from_sysfs(files["list"])
        for user in USERS:
            problems += _problems(user, expected, files[f"made-{user}"], files[f"errors-{user}"])
        self._report.add(f"{name}: the list that root and others make of sysfs is the kernel's", problems)
        if self._records:
            self._record(pathlib.Path(self._records, re.sub(r"\W+", "-", name)), controller)

    def check_coming_and_going(self, name, lists, hub, gadget_count):
        """While devices come and go, every record in many lists is one of those from before, as a whole."""
        _, files = self._guest.run("kernel_list", "root")
        known = set(_records(files["made-root"]))
        status, files = self._guest.run("come_and_go", str(lists), hub, str(gadget_count))
        problems = [f"exit status {status}, messages: {files['errors'].decode()}"] if files["errors"] or status else []
        found = [set(_records(text)) for text in files["lists"].split(b"@@\n")[1:]]
        problems += [line for record in sorted(set().union(*found) - known) for line in _lines(record)]
        if not any(known - records for records in found):
            problems.append(f"no device was missing in any of {len(found)} lists")
        self._report.add(f"{name}: no list from sysfs has half a device", problems)

    def _record(self, path, controller):
        _, files = self._guest.run("record", controller)
        path.with_suffix(".tree").write_bytes(files["record"])
        buses = {int(number) for number in re.findall(rb"^  usb(\d+) ->", files["record"], re.MULTILINE)}
        blocks = [block for block in re.split(rb"(?=\nT:  Bus=)", files["list"])[1:]
                  if int(re.match(rb"\nT:  Bus=(\d+)", block)[1]) in buses]
        path.with_suffix(".txt").write_bytes(b"".join(blocks))


def _records(text):
    """The records of a list, without what may change: numbers, drivers, and what is active."""
    text = re.sub(rb"(Prnt|Cnt|Dev#|MxCh)= *\d+", rb"\1=", text)
    text = re.sub(rb"Driver=.*", b"Driver=", text)
    return re.sub(rb"^([CI]):\*", rb"\1: ", text, flags=re.MULTILINE).strip().split(b"\n\n")


def _problems(user, expected, made, errors):
    if errors:
        return [f"{user}, messages: {errors.decode()}"]
    return [] if made == expected else list(difflib.unified_diff(
        _lines(expected), _lines(made), "expected", f"made by {user}", lineterm=""))


def _lines(text):
    return text.decode(errors="backslashreplace").split("\n")
