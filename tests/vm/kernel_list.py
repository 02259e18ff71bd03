"""The proof of the device list that is made from sysfs: it equals the kernel's own, byte for byte.

Left aside are the B lines, since sysfs does not show bandwidth, and line breaks in strings, which the made list has
as U+FFFD.
"""

import difflib
import re

import gadgets

USERS = ("root", "user")
REPLACEMENT = "\ufffd"


def check(report, name, guest):
    """Every user's list, made while nothing changes, equals the kernel's."""
    for user in USERS:
        status, files = guest.run("kernel_list", user)
        report.add(f"{name}, {user}: the list from sysfs is the kernel's", _problems(status, files))


def _problems(status, files):
    if status or files["errors"]:
        return [f"exit status {status}, messages: {files['errors'].decode()}"]
    made, kernels = files["made"], _expected(files["list"])
    return [] if made == kernels else list(difflib.unified_diff(
        _lines(kernels), _lines(made), "expected", "made from sysfs", lineterm=""))


def _expected(text):
    for gadget in gadgets.GADGETS:
        for string in gadget.strings.values():
            shown = re.sub(r"[\x00-\x1f\x7f-\x9f\u2028\u2029]", REPLACEMENT, string)
            text = text.replace(f"={string}\n".encode(), f"={shown}\n".encode())
    return re.sub(rb"^B:.*\n", b"", text, flags=re.MULTILINE)


def _lines(text):
    return text.decode(errors="backslashreplace").split("\n")
