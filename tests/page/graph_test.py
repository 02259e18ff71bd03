#!/usr/bin/env python3
"""The graph as Graphviz draws it: every item of every captured list is a node of the SVG and every link an edge, but for
a hub's free ports, which share one, and a hostile string is shown as text.

Usage: graph_test.py USBINFO
"""
import json
import subprocess
import sys
import unittest
import xml.etree.ElementTree as ElementTree

import pictures

SVG = "{http://www.w3.org/2000/svg}"
ITEMS = ("KALDO_USBController", "KALDO_USBHub", "KALDO_USBPort", "KALDO_USBDevice")


def draw(device_list):
    """The groups of the SVG as (class, lines of text)."""
    graph = pictures.render(device_list, "dot")
    result = subprocess.run(["dot", "-Tsvg"], input=graph, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=True)
    if result.stderr:
        raise AssertionError(result.stderr.decode())
    root = ElementTree.fromstring(result.stdout)
    return [(group.get("class"), [text.text for text in group.iter(SVG + "text")]) for group in root.iter(SVG + "g")]


def classes(groups, name):
    """The lines of each group of a class that has `name` among its words."""
    return [lines for group, lines in groups if name in group.split()]


def folded(groups):
    """How many free ports each node for all of a hub's stands for."""
    return [int(lines[0].split()[0]) for lines in classes(groups, "free") if lines[0].startswith("+")]


class GraphTest(unittest.TestCase):
    def test_draws_every_item_and_link_of_every_capture(self):
        for name in pictures.capture_names():
            with self.subTest(name):
                inventory = json.loads(pictures.render(pictures.capture(name), "json"))["classes"]
                groups = draw(pictures.capture(name))
                free = folded(groups)
                left_out = sum(free) - len(free)
                for kind, word, fewer in zip(ITEMS, ("controller", "hub", "port", "device"), (0, 0, left_out, 0)):
                    self.assertEqual(len(classes(groups, word)), len(inventory[kind]) - fewer, word)
                root_hubs = {hub["DeviceID"] for hub in inventory[ITEMS[1]]}
                links = sum(controller["DeviceID"] in root_hubs for controller in inventory[ITEMS[0]])
                links += len(inventory["KALDO_USBPortOnHub"]) + len(inventory["KALDO_USBConnection"])
                self.assertEqual(len(classes(groups, "edge")), links - left_out)

    def test_labels_what_is_plugged_into_the_desktop_machine(self):
        groups = draw(pictures.capture("vm-desktop-debugfs"))
        self.assertEqual(sorted(lines[0] for lines in classes(groups, "device")),
                         ["QEMU USB Audio", "QEMU USB HARDDRIVE", "QEMU USB Keyboard", "QEMU USB Mouse",
                          "USB Attached SCSI HBA", "Wacom PenPartner"])
        self.assertEqual(sorted(lines[0] for lines in classes(groups, "controller")),
                         ["usb1", "usb2", "usb3", "usb4"])
        self.assertEqual(sum(folded(groups)), 19)
        self.assertIn(["1-3", "QEMU USB Hub", "0409:55aa, 8 ports"], classes(groups, "hub"))

    def test_shows_hostile_strings_as_text(self):
        groups = draw(pictures.hostile_list())
        # Graphviz keeps two blanks apart with ones that do not break.
        shown = [lines[0].replace("\u00a0", " ") for lines in classes(groups, "device")]
        self.assertEqual(sorted(shown), sorted(pictures.SHOWN_NAMES))
        self.assertEqual({len(lines) for lines in classes(groups, "device")}, {3})

    def test_draws_nothing_for_an_empty_list(self):
        self.assertEqual([group for group, _ in draw(b"")], ["graph"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
