#!/usr/bin/env python3
"""The page in a browser: what it shows, the filter, details, hostile strings, scripts off, paper, the dark, a phone,
and what assistive software gets.

Usage: browser_test.py USBINFO
"""
import json
import sys
import tempfile
import unittest

from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys

import pictures
from browser import Browser

DESKTOP = "vm-desktop-debugfs"
SERVER = "usbdevices-3.5-8bus-mtt7"
SHOWN_NAMES = """return Array.from(document.querySelectorAll('.item > details > summary'))
  .filter((summary) => summary.checkVisibility())
  .map((summary) => summary.querySelector('.place').textContent + ' ' +
                    summary.querySelector('.name > span').textContent)"""
DESKTOP_LINES = ["usb1 xHCI Host Controller", "1-3 QEMU USB Hub", "1-3.1 QEMU USB Keyboard", "1-3.2 QEMU USB Mouse",
                 "1-4 QEMU USB Audio", "usb2 xHCI Host Controller", "2-1 QEMU USB HARDDRIVE",
                 "2-2 USB Attached SCSI HBA", "usb4 UHCI Host Controller", "4-1 Wacom PenPartner"]
# The least contrast of a text with what is behind it, with an example; large text may have less.
LEAST_CONTRAST = """
  const numbers = (colour) => colour.match(/[\\d.]+/g).map(Number);
  const light = (colour) => {
    const [r, g, b] = numbers(colour).slice(0, 3).map((v) => v / 255)
      .map((v) => v > 0.04045 ? ((v + 0.055) / 1.055) ** 2.4 : v / 12.92);
    return 0.2126 * r + 0.7152 * g + 0.0722 * b;
  };
  const behind = (element) => {
    for (let up = element; up !== null; up = up.parentElement) {
      const colour = getComputedStyle(up).backgroundColor;
      if (numbers(colour)[3] !== 0) return colour;
    }
    return 'rgb(255, 255, 255)';
  };
  let least = [99, ''];
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    if (walker.currentNode.data.trim() === '' || !element.checkVisibility()) continue;
    const [a, b] = [light(getComputedStyle(element).color), light(behind(element))];
    const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
    if (contrast < least[0]) least = [contrast, walker.currentNode.data];
  }
  return least"""


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.browser = Browser(cls.folder.name)
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        self.browser.reset()

    def open_capture(self, name):
        return self.browser.open(pictures.render(pictures.capture(name), "html"))

    def texts(self, selector):
        return self.browser.script("return Array.from(document.querySelectorAll(arguments[0]), (e) => e.innerText)",
                                   selector)

    def count(self, selector):
        return self.browser.script("return document.querySelectorAll(arguments[0]).length", selector)

    def shown(self):
        return [name.strip() for name in self.browser.script(SHOWN_NAMES)]

    def cells(self):
        """The texts of the table's visible rows."""
        return self.browser.script("return Array.from(document.querySelectorAll('tbody tr'))"
                                   ".filter((row) => row.checkVisibility())"
                                   ".map((row) => Array.from(row.children, (cell) => cell.textContent.trim()))")

    def column(self, name):
        return self.browser.script("return Array.from(document.querySelectorAll(`tbody .${arguments[0]}`))"
                                   ".filter((cell) => cell.checkVisibility()).map((cell) => cell.textContent.trim())",
                                   name)

    def sorted_by(self):
        return self.browser.script("return Array.from(document.querySelectorAll('[aria-sort]'), "
                                   "(e) => [e.innerText.trim(), e.getAttribute('aria-sort')])")

    def is_visible(self, selector):
        return self.browser.script("return document.querySelector(arguments[0]).checkVisibility()", selector)

    def find(self, selector):
        return self.browser.driver.find_element(By.CSS_SELECTOR, selector)

    def summary_of(self, name):
        return self.browser.driver.find_element(By.XPATH, f"//summary[.//span[text()='{name}']]")

    def type_filter(self, text):
        self.find("#words").send_keys(text)

    def requests(self):
        """The addresses that were asked for."""
        messages = [json.loads(entry["message"])["message"] for entry in self.browser.driver.get_log("performance")]
        return [message["params"]["request"]["url"] for message in messages
                if message["method"] == "Network.requestWillBeSent"]

    # What is shown

    def test_shows_the_desktop_machine(self):
        self.open_capture(DESKTOP)
        self.assertEqual(self.texts("h1"), ["testhost"])
        self.assertEqual(self.texts(".counts"), ["4 controllers, 5 hubs, 26 ports (19 free), 6 devices"])
        self.assertEqual(self.texts("header dd"),
                         ["not known", "a device list", "as the devices send them", "everything"])
        self.assertEqual(self.texts("h2"), ["Devices and hubs", "Controllers and ports"])
        self.assertEqual((self.count(".socket"), self.count(".socket.free")), (26, 19))
        self.assertEqual(self.shown(), DESKTOP_LINES)
        self.assertEqual(self.texts(".empty > summary"), ["1 controller with nothing plugged in: usb3 (6 free ports)"])
        self.assertEqual(self.texts(".rate"), [])

    def test_has_a_row_for_each_hub_and_device(self):
        self.open_capture(DESKTOP)
        self.assertEqual(self.texts("thead th"),
                         ["Kind", "Name", "Vendor", "Identifier", "Serial number", "Place", "Speed"])
        self.assertEqual(self.cells()[:2], [
            ["hub", "QEMU USB Hub", "QEMU", "0409:55aa", "314159-0000:00:01.0-3", "1-3", "12 Mbit/s"],
            ["keyboard", "QEMU USB Keyboard", "QEMU", "0627:0001", "68284-0000:00:01.0-3.1", "1-3.1", "12 Mbit/s"]])
        self.assertEqual(self.column("place"), ["1-3", "1-3.1", "1-3.2", "1-4", "2-1", "2-2", "4-1"])
        drawn = "return Array.from(document.querySelectorAll('tbody use'), (e) => " \
                "e.getAttribute('href') + ' ' + (e.getBBox().width > 8))"
        self.assertEqual(self.browser.script(drawn), [
            f"#kind-{kind} true"
            for kind in ("hub", "keyboard", "mouse", "audio", "mass-storage", "mass-storage", "mouse")])

    def test_shows_sockets_with_two_halves_once(self):
        self.browser.open(pictures.render(pictures.with_shared_sockets(pictures.capture(DESKTOP)), "html"))
        self.assertEqual(self.texts(".counts"), ["3 controllers, 4 hubs, 22 sockets (15 free), 6 devices"])
        self.assertEqual(self.texts("header dd")[:2], ["2026-11-21 12:00:00 UTC", "sysfs"])
        self.assertEqual(self.texts("h2"), ["Devices and hubs", "Controllers and sockets"])
        self.assertEqual(self.shown()[:3], ["usb1, usb2 xHCI Host Controller", "1-1 in use", "2-1 QEMU USB HARDDRIVE"])
        self.assertEqual(self.texts(".rate"), ["480M"] * 2)
        self.assertEqual(self.texts("#hide-free"), ["Hide free sockets"])

    def test_shows_the_server_with_eight_buses(self):
        self.open_capture(SERVER)
        self.assertEqual(self.texts(".counts"), ["8 controllers, 9 hubs, 31 ports (22 free), 8 devices"])
        self.assertEqual(len(self.column("name")), 9)

    def test_lists_free_ports_or_occupied_ones_where_asked_for(self):
        desktop = pictures.capture(DESKTOP)
        self.browser.open(pictures.render(desktop, "html", options=["--free"]))
        self.assertEqual((len(self.column("place")), self.count(".socket"), self.count(".socket.free")), (19, 20, 19))
        self.assertIn("only what is selected by --free", self.texts("header dd"))
        self.find("#devices tr:nth-child(2) a").click()
        self.assertEqual(self.count(".socket:target"), 1)
        self.browser.open(pictures.render(desktop, "html", options=["--occupied"]))
        self.assertEqual((len(self.column("place")), self.count(".socket"), self.count(".socket.free")), (7, 7, 0))
        self.assertIn("only what is selected by --occupied", self.texts("header dd"))
        self.assertFalse(self.find("#hide-free").is_displayed())

    def test_says_that_there_is_no_device(self):
        self.browser.open(pictures.render(b"", "html"))
        self.assertEqual(self.texts("main"), ["No USB device found."])
        self.assertEqual(self.browser.driver.get_log("browser"), [])

    def test_loads_nothing_but_itself_and_says_nothing_to_the_console(self):
        for name in pictures.capture_names():
            with self.subTest(name):
                self.browser.reset()
                address = self.open_capture(name)
                self.assertEqual(self.requests(), [address])
                self.assertEqual(self.browser.driver.get_log("browser"), [])

    # The table

    def test_sorts_by_a_heading_with_the_mouse(self):
        self.open_capture(DESKTOP)
        names = self.column("name")
        self.find("th.name button").click()
        self.assertEqual(self.column("name"), sorted(names))
        self.assertEqual(self.sorted_by(), [["Name", "ascending"]])
        self.find("th.name button").click()
        self.assertEqual(self.column("name"), sorted(names, reverse=True))
        self.assertEqual(self.sorted_by(), [["Name", "descending"]])

    def test_sorts_by_a_heading_with_the_keyboard(self):
        self.open_capture(DESKTOP)
        self.find("#words").send_keys(Keys.TAB * 7)
        heading = self.browser.driver.switch_to.active_element
        self.assertEqual(heading.text, "Speed")
        heading.send_keys(Keys.ENTER)
        self.assertEqual(self.column("speed"), ["12 Mbit/s"] * 5 + ["5 Gbit/s"] * 2)
        heading.send_keys(Keys.SPACE)
        self.assertEqual(self.column("speed"), ["5 Gbit/s"] * 2 + ["12 Mbit/s"] * 5)
        self.assertEqual(self.sorted_by(), [["Speed", "descending"]])

    def test_sorts_places_by_number_and_what_has_no_value_last(self):
        text = pictures.device(1, 0, 0, 0, 1, 12, "Root")
        for port, name in ((9, "c"), (1, ""), (0, "a")):
            text += pictures.device(1, 1, 1, port, port + 2, 0, name).replace("S:  SerialNumber=\n", "")
        self.browser.open(pictures.render(text.encode(), "html"))
        self.find("th.place button").click()
        self.assertEqual(self.column("place"), ["1-1", "1-2", "1-10"])
        for expected in (["a", "c", ""], ["c", "a", ""]):
            self.find("th.serial button").click()
            self.assertEqual(self.column("serial"), expected)

    def test_leads_from_a_row_to_the_place_even_in_a_fold(self):
        self.open_capture(DESKTOP)
        self.find("#devices tr:nth-child(4) a").click()
        self.assertEqual(self.texts("details[open] dd")[1], "QEMU USB Audio")
        self.assertIn("QEMU USB Audio", self.browser.driver.switch_to.active_element.text)

    # The filter

    def test_filters_while_one_types_and_keeps_the_way_from_the_root(self):
        self.open_capture(DESKTOP)
        self.type_filter("QEMU")
        self.assertEqual(self.texts("#count"), ["7 of 30 match"])
        self.type_filter(" key")
        self.assertEqual(self.texts("#count"), ["1 of 30 match"])
        self.assertEqual(self.shown(), ["usb1 xHCI Host Controller", "1-3 QEMU USB Hub", "1-3.1 QEMU USB Keyboard"])
        self.assertEqual(self.column("name"), ["QEMU USB Keyboard"])
        self.assertEqual(self.count(".socket:not(.dim)"), 2)

    def test_marks_what_matches(self):
        self.open_capture(DESKTOP)
        self.type_filter("key usb")
        self.assertEqual(self.texts("tbody tr:not([hidden]) mark"), ["key", "USB", "Key"])
        self.assertEqual(self.texts(".hit > details > summary mark"), ["USB", "Key"])
        self.type_filter(Keys.BACKSPACE * 7)
        self.assertEqual((self.count("mark"), self.count(".hit")), (0, 0))
        self.assertEqual(self.column("name")[1], "QEMU USB Keyboard")

    def test_filters_by_id_serial_number_vendor_and_kind(self):
        for words, name in (("056A:0000", "4-1 Wacom PenPartner"), ("uhci_hcd", "usb4 UHCI Host Controller"),
                            ("314159-0000:00:01.0-3", "1-3 QEMU USB Hub"), ("keyboard", "1-3.1 QEMU USB Keyboard"),
                            ("uas", "2-2 USB Attached SCSI HBA")):
            with self.subTest(words):
                self.open_capture(DESKTOP)
                self.type_filter(words)
                self.assertEqual(self.texts("#count"), ["1 of 30 match"])
                self.assertEqual(self.shown()[-1], name)

    def test_finds_a_bus_what_is_free_and_a_speed(self):
        self.open_capture(DESKTOP)
        self.type_filter("bus 2")
        self.assertEqual(self.shown(), ["usb2 xHCI Host Controller", "2-1 QEMU USB HARDDRIVE",
                                        "2-2 USB Attached SCSI HBA"])
        self.assertEqual(self.texts("#count"), ["5 of 30 match"])
        self.type_filter(" free")
        self.assertEqual((self.texts("#count"), self.count(".socket.hit")), (["2 of 30 match"], 2))
        self.find("#words").clear()
        self.type_filter("free")
        self.assertEqual((self.texts("#count"), self.count(".socket.hit")), (["19 of 30 match"], 19))
        self.assertTrue(self.is_visible(".empty .socket"))
        self.find("#words").clear()
        self.type_filter("480")
        self.assertEqual(self.shown(), ["usb1 xHCI Host Controller", "usb3 EHCI Host Controller"])
        self.find("#words").clear()
        self.type_filter(" ")
        self.assertFalse(self.is_visible(".empty .socket"))

    def test_says_when_nothing_matches_and_shows_all_again(self):
        self.open_capture(DESKTOP)
        before = self.shown()
        self.type_filter("zzz")
        self.assertEqual((self.texts("#count"), self.shown(), self.column("name")), (["Nothing matches"], [], []))
        self.assertFalse(self.find("h2").is_displayed())
        self.type_filter(Keys.BACKSPACE * 3)
        self.assertEqual((self.texts("#count"), self.shown()), ([""], before))

    def test_does_not_jump_while_one_types(self):
        self.browser.set_size(800, 500)
        self.open_capture(DESKTOP)
        place = "return [window.scrollY, Math.round(document.getElementById('words').getBoundingClientRect().top)]"
        self.browser.script("window.scrollTo(0, 150)")
        before = self.browser.script(place)
        self.assertEqual(before[0], 150)
        for key in ("z", "z", Keys.BACKSPACE, Keys.BACKSPACE, "k", "ey"):
            self.type_filter(key)
            self.assertEqual(self.browser.script(place), before, key)

    def test_filters_a_thousand_ports(self):
        self.browser.open(pictures.render(pictures.full_buses(8), "html"))
        self.assertEqual(self.texts(".counts"), ["8 controllers, 128 hubs, 960 ports (360 free), 480 devices"])
        self.type_filter("Device 7-14-6")
        self.assertEqual(self.texts("#count"), ["1 of 968 match"])
        self.assertEqual(self.shown(), ["usb7 Bus 7", "7-15 Hub 14", "7-15.7 Device 7-14-6"])

    # Details

    def test_opens_details_by_a_click(self):
        self.open_capture(DESKTOP)
        self.assertFalse(self.is_visible("#controllers dd"))
        self.summary_of("Wacom PenPartner").click()
        facts = self.texts("details[open] dt"), self.texts("details[open] dd")
        self.assertEqual(dict(zip(*facts)), {
            "Kind": "mouse", "Name": "Wacom PenPartner", "Vendor": "QEMU", "Identifier": "056a:0000",
            "Serial number": "1-0000:00:02.0-1", "USB version": "1.10", "Revision": "42.10", "Configurations": "1",
            "Power": "80 mA", "Driver": "usbhid", "Device number": "2", "Place": "4-1", "Speed": "12 Mbit/s",
            "DeviceID": "Bus 04  Device   2"})

    def test_opens_details_by_the_keyboard(self):
        self.open_capture(DESKTOP)
        self.find("#unfold").send_keys(Keys.TAB * 2)
        summary = self.browser.driver.switch_to.active_element
        self.assertIn("usb1", summary.text)
        self.assertEqual(self.browser.script("return getComputedStyle(document.activeElement).outlineStyle"), "solid")
        summary.send_keys(Keys.ENTER)
        self.assertEqual(self.texts("details[open] dd")[-1], "Bus 01  Device   1")
        summary.send_keys(Keys.SPACE)
        self.assertEqual(self.count("details[open]"), 0)

    def test_opens_and_hides_all_details_at_once(self):
        self.open_capture(DESKTOP)
        self.assertEqual(self.texts("#unfold"), ["All details"])
        for expected in ((11, "Hide details"), (0, "All details")):
            self.find("#unfold").click()
            self.assertEqual((self.count(".item > details[open]"), self.texts("#unfold")[0]), expected)

    def test_hides_free_ports(self):
        self.open_capture(DESKTOP)
        shown = "return Array.from(document.querySelectorAll('.socket')).filter((e) => e.checkVisibility()).length"
        self.assertEqual((self.browser.script(shown), self.texts("#hide-free")), (20, ["Hide free ports"]))
        for expected in ((7, "true"), (20, "false")):
            self.find("#hide-free").click()
            pressed = self.find("#hide-free").get_attribute("aria-pressed")
            self.assertEqual((self.browser.script(shown), pressed), expected)

    def test_goes_from_a_socket_to_what_is_plugged_in_even_where_the_filter_hides_it(self):
        self.open_capture(DESKTOP)
        self.type_filter("keyboard")
        self.find(".socket.used a[title^='1-4']").click()
        self.assertEqual(self.find("#words").get_attribute("value"), "")
        self.assertEqual(self.texts("details[open] dd")[1], "QEMU USB Audio")
        self.assertIn("QEMU USB Audio", self.browser.driver.switch_to.active_element.text)

    # Hostile strings

    def test_shows_hostile_names_as_text_and_runs_nothing(self):
        address = self.browser.open(pictures.render(pictures.hostile_list(), "html"))
        for selector in (".device .name > span", *(f".device div:nth-child({row}) > dd" for row in (2, 3, 5)),
                         "tbody .name", "tbody .vendor", "tbody .serial"):
            contents = "return Array.from(document.querySelectorAll(arguments[0]), (e) => e.textContent)"
            self.assertEqual(self.browser.script(contents, selector), list(pictures.SHOWN_NAMES), selector)
        self.assertEqual([self.count(name) for name in ("img", "svg[onload]", "script", "style")], [0, 0, 1, 1])
        self.type_filter("<script>")
        self.assertEqual(self.texts("#count"), ["1 of 13 match"])
        self.assertEqual(self.browser.driver.get_log("browser"), [])
        self.assertEqual(self.requests(), [address])

    def test_shows_a_hostile_system_name_as_text(self):
        name = '<img src=x onerror=alert(1)>"\'&amp;'
        self.browser.open(pictures.render(pictures.capture(DESKTOP), "html", name))
        self.assertEqual((self.texts("h1"), self.browser.driver.title), ([name], name + ": USB"))
        self.assertEqual(self.browser.driver.get_log("browser"), [])

    def test_lets_no_other_script_or_style_in(self):
        page = pictures.render(pictures.capture(DESKTOP), "html")
        forged = b"<script>document.title = 'forged'</script><style>h1 { display: none }</style></body>"
        self.browser.open(page.replace(b"</body>", forged))
        self.assertEqual(self.browser.driver.title, "testhost: USB")
        self.assertEqual(self.texts("h1"), ["testhost"])
        self.assertEqual(len(self.browser.driver.get_log("browser")), 2)

    # Without scripts, on paper, in the dark, on a phone

    def test_can_be_read_without_scripts(self):
        self.browser.set_scripts(False)
        self.open_capture(DESKTOP)
        nodes = self.browser.accessible()
        names = [name for role, name, _ in nodes if role == "StaticText"]
        for name in ("testhost", "QEMU USB Keyboard", "0627:0001", "5 Gbit/s", "Wacom PenPartner", "mass storage"):
            self.assertIn(name, names)
        self.assertEqual([name for role, name, _ in nodes if role == "columnheader"],
                         ["Kind", "Name", "Vendor", "Identifier", "Serial number", "Place", "Speed"])
        self.assertEqual([role for role, _, _ in nodes if role in ("searchbox", "button", "status")], [])

    def test_opens_details_without_scripts(self):
        self.browser.set_scripts(False)
        self.open_capture(DESKTOP)
        self.click_without_scripts("#i0 summary")
        names = [name for role, name, _ in self.browser.accessible() if role == "StaticText"]
        self.assertEqual(names.count("DeviceID"), 1)

    def click_without_scripts(self, selector):
        root = self.browser.protocol("DOM.getDocument")["root"]["nodeId"]
        node = self.browser.protocol("DOM.querySelector", nodeId=root, selector=selector)["nodeId"]
        left, top, _, _, right, bottom = self.browser.protocol("DOM.getBoxModel", nodeId=node)["model"]["content"][:6]
        for kind in ("mousePressed", "mouseReleased"):
            self.browser.protocol("Input.dispatchMouseEvent", type=kind, x=(left + right) / 2, y=(top + bottom) / 2,
                                  button="left", clickCount=1)

    def test_is_one_table_on_paper_black_on_white(self):
        self.open_capture(DESKTOP)
        self.browser.set_media("print", "dark")
        colours = "const s = getComputedStyle(document.body); return [s.color, s.backgroundColor]"
        self.assertEqual(self.browser.script(colours), ["rgb(0, 0, 0)", "rgb(255, 255, 255)"])
        self.assertEqual((len(self.column("name")), self.shown()), (7, []))
        for selector in ("#words", "#controllers", "#switches"):
            self.assertFalse(self.find(selector).is_displayed(), selector)
        cut = "return getComputedStyle(document.querySelector('tbody tr')).breakInside"
        self.assertEqual(self.browser.script(cut), "avoid")

    def test_shows_the_controllers_on_paper_where_there_is_no_device(self):
        self.browser.open(pictures.render(pictures.device(1, 0, 0, 0, 1, 2, "Root").encode(), "html"))
        self.browser.set_media("print")
        self.assertEqual(self.texts(".empty > summary"), ["1 controller with nothing plugged in: usb1 (2 free ports)"])

    def test_says_on_paper_that_a_filter_hides_the_rest(self):
        self.open_capture(DESKTOP)
        self.type_filter("mouse")
        self.browser.set_media("print")
        self.assertEqual((len(self.column("name")), self.texts("#count")), (2, ["2 of 30 match"]))

    def test_has_texts_with_enough_contrast_everywhere(self):
        for media, scheme in (("", "light"), ("", "dark"), ("print", "light"), ("print", "dark")):
            for name in (DESKTOP, SERVER):
                with self.subTest(f"{media} {scheme} {name}"):
                    self.browser.set_media(media, scheme)
                    self.open_capture(name)
                    if media == "":
                        self.find("#unfold").click()
                        self.type_filter("e")
                    contrast, text = self.browser.script(LEAST_CONTRAST)
                    self.assertGreaterEqual(contrast, 4.5, text)

    def test_is_dark_in_the_dark(self):
        self.browser.set_media(scheme="dark")
        self.open_capture(DESKTOP)
        colours = "const s = getComputedStyle(document.body); return [s.color, s.backgroundColor]"
        self.assertEqual(self.browser.script(colours), ["rgb(230, 234, 240)", "rgb(17, 21, 27)"])

    def test_needs_no_sideways_scrolling_on_a_phone(self):
        lists = {name: pictures.capture(name) for name in pictures.capture_names()}
        lists["hostile"] = pictures.hostile_list()
        self.browser.set_size(390, 844, True)
        for name, text in lists.items():
            with self.subTest(name):
                self.browser.open(pictures.render(text, "html"))
                for button in self.browser.driver.find_elements(By.ID, "unfold"):
                    button.click()
                self.assertEqual(self.browser.script("return document.documentElement.scrollWidth"), 390)

    def test_has_labels_beside_values_on_a_phone(self):
        self.browser.set_size(400, 844, True)
        self.open_capture(DESKTOP)
        self.find("#unfold").click()
        beside = "return Array.from(document.querySelectorAll('.facts dd')).filter((e) => e.checkVisibility() && " \
                 "(e.getBoundingClientRect().left < e.previousElementSibling.getBoundingClientRect().right || " \
                 "e.getBoundingClientRect().top >= e.previousElementSibling.getBoundingClientRect().bottom)).length"
        self.assertEqual(self.browser.script(beside), 0)

    def test_keeps_a_long_name_beside_the_mark_that_opens_it_on_a_phone(self):
        self.browser.set_size(390, 844, True)
        self.open_capture("debugfs-rk3588-8bus-mtt")
        below = "return Array.from(document.querySelectorAll('summary > h3'), " \
                "(e) => e.getBoundingClientRect().top - e.parentElement.getBoundingClientRect().top)"
        self.assertLess(max(self.browser.script(below)), 10)

    # What assistive software gets

    def test_has_headings_landmarks_and_names(self):
        self.open_capture(DESKTOP)
        nodes = self.browser.accessible()
        self.assertEqual([(name, properties["level"]) for role, name, properties in nodes if role == "heading"],
                         [("testhost", 1), ("Devices and hubs", 2), ("Controllers and ports", 2),
                          ("usb1 xHCI Host Controller 6 ports", 3), ("usb2 xHCI Host Controller 4 ports", 3),
                          ("usb4 UHCI Host Controller 2 ports", 3)])
        self.assertEqual([name for role, name, _ in nodes if role == "searchbox"], ["Filter"])
        self.assertEqual(sorted(name for role, name, _ in nodes if role == "button"),
                         ["All details", "Hide free ports", "Identifier", "Kind", "Name", "Place", "Serial number",
                          "Speed", "Vendor"])
        for landmark in ("banner", "main", "contentinfo", "search", "status"):
            self.assertEqual([role for role, _, _ in nodes if role == landmark], [landmark])
        self.assertEqual([name for role, name, _ in nodes if role == "table"], ["Devices and hubs"])
        self.assertEqual([name for role, name, _ in nodes if role == "rowheader"][0], "QEMU USB Hub")
        self.assertEqual(sorted(name for role, name, _ in nodes if role == "link" and ":" in name),
                         ["1-3.1: QEMU USB Keyboard, 12 Mbit/s", "1-3.2: QEMU USB Mouse, 12 Mbit/s",
                          "1-3: QEMU USB Hub, 480 Mbit/s", "1-4: QEMU USB Audio, 480 Mbit/s",
                          "2-1: QEMU USB HARDDRIVE, 5 Gbit/s", "2-2: USB Attached SCSI HBA, 5 Gbit/s",
                          "4-1: Wacom PenPartner, 12 Mbit/s"])
        self.assertNotIn("", [name for role, name, _ in nodes if role == "DisclosureTriangle"])

    def test_stays_a_table_for_assistive_software_on_a_phone(self):
        self.browser.set_size(390, 844, True)
        self.open_capture(DESKTOP)
        roles = [role for role, _, _ in self.browser.accessible()]
        self.assertEqual([roles.count(role) for role in ("table", "columnheader", "rowheader")], [1, 7, 7])

    def test_nests_lists_as_things_hang_together(self):
        self.open_capture(DESKTOP)
        keyboard = "//li[@class='item device'][.//span[text()='QEMU USB Keyboard']]"
        depth = "count(ancestor::li) = 1 and count(ancestor::ul) = 2 and ancestor::section"
        self.assertEqual(len(self.browser.driver.find_elements(By.XPATH, f"{keyboard}[{depth}]")), 1)

    def test_announces_the_count_when_it_changes(self):
        self.open_capture(DESKTOP)
        self.type_filter("mouse")
        status = [(name, properties.get("live")) for role, name, properties in self.browser.accessible()
                  if role == "status"]
        self.assertEqual([live for _, live in status], ["polite"])
        self.assertEqual(self.texts("[role=status]"), ["2 of 30 match"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
