"""What two inventories, as JSON documents, have in common and what not, instance by instance.

An instance is known by its class and its key: of those that both have, the properties are compared.
"""

import json
import re

KEYS = ("DeviceID", "Antecedent", "Dependent")


def instances(document):
    """The instances of a document by class and key."""
    return {(name, *(item[key] for key in KEYS if key in item)): item
            for name, items in document["classes"].items() for item in items}


def changes(before, after):
    """What is in one document only, by class and key, and properties as (class, key, name, old, new)."""
    old, new = instances(before), instances(after)
    changed = {(*key, name, *(json.dumps(item.get(name)) for item in (old[key], new[key])))
               for key in old.keys() & new.keys() for name in old[key].keys() | new[key].keys()
               if old[key].get(name) != new[key].get(name)}
    return {"removed": old.keys() - new.keys(), "added": new.keys() - old.keys(), "changed": changed}


def differences(expected, actual):
    """Lines that show how the document differs from what was expected; none when it is the same."""
    if expected == actual:
        return []
    found = changes(expected, actual)
    lines = [f"missing: {called(key)}" for key in sorted(found["removed"])]
    lines += [f"not expected: {called(key)}" for key in sorted(found["added"])]
    lines += [f"{called(key)}: {name} is {is_}, expected {wanted}"
              for *key, name, wanted, is_ in sorted(found["changed"])]
    return lines or ["the same instances, in another order or number, or another head of the document"]


def differing_facts(expected, actual):
    """Lines that show how what the kernel says of devices and ports differs from what was expected."""
    if expected == actual:
        return []
    lines = []
    for kind, name in (("devices", "device"), ("ports", "port")):
        wanted, found = ({item[name]: item for item in facts.get(kind, ())} for facts in (expected, actual or {}))
        lines += [f"missing in the kernel's {kind}: {item}" for item in wanted.keys() - found.keys()]
        lines += [f"not expected in the kernel's {kind}: {item}" for item in found.keys() - wanted.keys()]
        lines += [f"{item}: {key} is {found[item].get(key)}, expected {wanted[item][key]}"
                  for item in wanted.keys() & found.keys() for key in wanted[item]
                  if found[item].get(key) != wanted[item][key]]
    return lines or ["the kernel's devices or ports are in another order, or have other members"]


def called(key):
    """A key in one line; of the object paths in it, only what they differ in."""
    return ", ".join(re.sub(r'^\w+\..*DeviceID="([^"]*)".*', r"\1", part) for part in key)
