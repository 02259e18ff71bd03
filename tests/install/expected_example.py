#!/usr/bin/env python3
"""Print what the example host has to say about an inventory.

The inventory is the command's JSON for the same list; the example gives the
system a name of its own and prints what might command a terminal as "?".

Usage:
    expected_example.py INVENTORY
"""

import json
import re
import sys


def as_text(value):
    """Return a value as the host writes it."""
    if isinstance(value, list):
        value = "{" + ", ".join(value) + "}"
    # The host holds bytes; the example shows each that is no ASCII as "?".
    data = str(value).encode()
    return re.sub(rb"[^ -~]", b"?", data).decode()


def main():
    """Print the hubs, then the devices, a line per property."""
    with open(sys.argv[1], encoding="utf-8") as file:
        classes = json.load(file)["classes"]
    for name in ("KALDO_USBHub", "KALDO_USBDevice"):
        for instance in classes[name]:
            print(name)
            instance["SystemName"] = "example"
            for key in sorted(instance):
                print(f"  {key} = {as_text(instance[key])}")


if __name__ == "__main__":
    main()
