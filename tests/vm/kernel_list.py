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
    status, files = guest.run("kernel_list", *USERS)
    problems = [f"exit status {status}"] if status else []
    for user in USERS:
        problems += _problems(user, _expected(files["list"]), files[f"made-{user}"], files[f"errors-{user}"])
    report.add(f"{name}: the list that root and others make of sysfs is the kernel's", problems)


def _problems(user, expected, made, errors):
    if errors:
        return [f"{user}, messages: {errors.decode()}"]
    return [] if made == expected else list(difflib.unified_diff(
        _lines(expected), _lines(made), "expected", f"made by {user}", lineterm=""))


def _expected(text):
    for gadget in gadgets.GADGETS:
        for string in gadget.strings.values():
            shown = re.sub(r"[\x00-\x1f\x7f-\x9f\u2028\u2029]", REPLACEMENT, string)
            text = text.replace(f"={string}\n".encode(), f"={shown}\n".encode())
    return re.sub(rb"^B:.*\n", b"", text, flags=re.MULTILINE)


def _lines(text):
    return text.decode(errors="backslashreplace").split("\n")
