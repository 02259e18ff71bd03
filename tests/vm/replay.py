"""What a reader of the watch's lines knows of the machine: the lines, applied one by one to what was there before.

The devices and hubs are known by the kernel's names of their places. Of each counts all that diff compares: its class,
its properties and what the kernel knows, without the numbers that it gave for the day.
"""

import itertools
import json

CLASSES = ("KALDO_USBHub", "KALDO_USBDevice")
OF_THE_DAY = {"DeviceID", "Name", "HubName", "PortNumber", "device", "name", "number", "nodes"}


class Misfit(Exception):
    """A line does not fit what the lines before it have left."""


def devices_of(inventory):
    """The devices and hubs of an inventory by place."""
    known = {facts["device"]: facts for facts in inventory["kernel"]["devices"]}
    return {known[item["DeviceID"]]["name"]: _device(name, item, known[item["DeviceID"]])
            for name in CLASSES for item in inventory["classes"][name]}


def reports_of(text, problems):
    """The lines as reports; what is wrong with their form and their numbers is added to the problems."""
    reports = []
    for number, line in enumerate(text.splitlines(keepends=True), start=1):
        try:
            reports.append(json.loads(line))
        except ValueError as error:
            problems.append(f"line {number} is no JSON, {error}: {line!r}")
            continue
        if not line.endswith("\n"):
            problems.append(f"line {number} has no end")
        if reports[-1]["sequence"] != number:
            problems.append(f"line {number} has the sequence number {reports[-1]['sequence']}")
    return reports


def applied(difference, before):
    """The devices after a report's difference; raises Misfit."""
    fates = _fates(difference)
    for place, (device, _) in fates.items():
        if before.get(place) != device:
            raise Misfit(f"{place} is {before.get(place)}, and {device} in the report")
    after, places = {}, {}
    for place in sorted(before, key=_depth):
        _, fate = fates.get(place, (None, (_along(place, places), before[place])))
        if fate:
            places[place] = fate[0]
            _put(after, *fate)
    for item in filter(_is_device, difference["added"]):
        _put(after, item["place"], _of(item))
    return after


def differences(expected, found):
    """Lines that show how the devices differ."""
    lines = [f"missing: {place}" for place in sorted(expected.keys() - found.keys())]
    lines += [f"left over: {place}" for place in sorted(found.keys() - expected.keys())]
    return lines + [f"{place} is {found[place]}, expected {expected[place]}"
                    for place in sorted(expected.keys() & found.keys()) if expected[place] != found[place]]


def reported_twice(reports):
    """Lines about devices, by place and number, that came and went unseen by the report before or after that has them.

    The kernel gives the numbers again after a while.
    """
    problems = []
    for two in itertools.pairwise(reports):
        seen = {(item["kernel"]["name"], item["kernel"]["number"]) for report in two for kind in ("added", "removed")
                for item in filter(_is_device, report["difference"][kind])}
        unseen = [(item["name"], item["number"]) for report in two for item in report["cameAndWent"]]
        problems += [f"lines {two[0]['sequence']} and {two[1]['sequence']}: {device} came and went, and is there again"
                     for device in sorted(set(unseen)) if unseen.count(device) > 1 or device in seen]
    return problems


def _fates(difference):
    """What the report says of devices that were there, and what became of each: its place and itself, or nothing."""
    fates = {item["place"]: (_of(item), None) for item in filter(_is_device, difference["removed"])}
    for change in difference["moved"] + difference["changed"]:
        if _is_device(change["old"]):
            fates[change["old"]["place"]] = (_of(change["old"]), (change["new"]["place"], _of(change["new"])))
    return fates


def _is_device(item):
    return item["class"] in CLASSES


def _of(item):
    return _device(item["class"], item["properties"], item["kernel"])


def _device(name, properties, facts):
    return {"class": name, **{key: value for part in (properties, facts) for key, value in part.items()
                              if key not in OF_THE_DAY}}


def _put(devices, place, device):
    if place in devices:
        raise Misfit(f"two devices at {place}: {devices[place]} and {device}")
    devices[place] = device


def _depth(place):
    """Root hubs come first, and each hub before what is plugged into it."""
    return (not place.startswith("usb"), place.count("."), place)


def _along(place, places):
    """Where a device is of which the report says nothing: where it was, or along with its hub."""
    if place.startswith("usb"):
        return place
    ending = "." if "." in place else "-"
    above, _, port = place.rpartition(ending)
    hub = above if ending == "." else f"usb{above}"
    if hub not in places:
        raise Misfit(f"{place} is left over on a hub that was removed")
    return f"{places[hub].removeprefix('usb')}{ending}{port}"
