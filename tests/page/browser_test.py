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
                    (summary.querySelector('.name > span:not(.free-ports)') || {textContent: ''}).textContent)"""
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
        self.assertEqual(self.texts(".figures dd:not(.note)"), ["4", "5", "26", "6"])
        self.assertEqual(self.texts(".figures dt"), ["Controllers", "Hubs", "Ports", "Devices"])
        self.assertEqual(self.texts(".figures .note"), ["7 used, 19 free"])
        self.assertEqual(self.texts("h2"), ["Bus 01 xHCI Host Controller", "Bus 02 xHCI Host Controller",
                                            "Bus 03 EHCI Host Controller", "Bus 04 UHCI Host Controller"])
        self.assertEqual((self.count(".socket"), self.count(".socket.free")), (26, 19))
        self.assertEqual(self.shown(), [
            "Bus 01 xHCI Host Controller", "Root hub", "Port 02 QEMU USB Hub", "Port 00 QEMU USB Keyboard",
            "Port 01 QEMU USB Mouse", "Port 03 QEMU USB Audio", "Bus 02 xHCI Host Controller", "Root hub",
            "Port 00 QEMU USB HARDDRIVE", "Port 01 USB Attached SCSI HBA", "Bus 03 EHCI Host Controller", "Root hub",
            "Bus 04 UHCI Host Controller", "Root hub", "Port 00 Wacom PenPartner"])

    def test_shows_the_server_with_eight_buses(self):
        self.open_capture(SERVER)
        self.assertEqual(self.texts(".figures dd:not(.note)"), ["8", "9", "31", "8"])
        self.assertEqual(self.texts(".figures .note"), ["9 used, 22 free"])
        self.assertEqual(len(self.texts("h2")), 8)
        self.assertEqual(self.texts("#i0 .socket.used .rate"), ["480M"] * 3)
        self.assertEqual(self.texts("#i0 .speed"), ["480 Mbit/s"] * 3 + ["12 Mbit/s"])

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

    # The filter

    def test_filters_while_one_types_and_keeps_the_way_from_the_root(self):
        self.open_capture(DESKTOP)
        self.type_filter("QEMU")
        self.assertEqual(self.texts("#count"), ["7 of 15 match"])
        self.type_filter(" key")
        self.assertEqual(self.texts("#count"), ["1 of 15 match"])
        self.assertEqual(self.shown(), ["Bus 01 xHCI Host Controller", "Root hub", "Port 02 QEMU USB Hub",
                                        "Port 00 QEMU USB Keyboard"])
        self.assertEqual(self.count(".socket:not(.dim)"), 2)

    def test_filters_by_id_serial_number_and_manufacturer(self):
        for words, name in (("056A:0000", "Port 00 Wacom PenPartner"), ("uhci_hcd", "Root hub"),
                            ("314159-0000:00:01.0-3", "Port 02 QEMU USB Hub")):
            with self.subTest(words):
                self.open_capture(DESKTOP)
                self.type_filter(words)
                self.assertEqual(self.texts("#count"), ["1 of 15 match"])
                self.assertEqual(self.shown()[-1], name)

    def test_shows_all_again_when_the_filter_is_cleared(self):
        self.open_capture(DESKTOP)
        before = self.shown()
        self.type_filter("zzz")
        self.assertEqual((self.texts("#count"), self.shown()), (["0 of 15 match"], []))
        self.type_filter(Keys.BACKSPACE * 3)
        self.assertEqual((self.texts("#count"), self.shown()), ([""], before))
        self.assertEqual(self.count(".hit"), 0)

    def test_filters_a_thousand_ports(self):
        self.browser.open(pictures.render(pictures.full_buses(8), "html"))
        self.assertEqual(self.texts(".figures dd:not(.note)"), ["8", "128", "960", "480"])
        self.type_filter("Device 7-14-6")
        self.assertEqual(self.texts("#count"), ["1 of 616 match"])
        self.assertEqual(self.shown(), ["Bus 07 Bus 7", "Root hub", "Port 14 Hub 14", "Port 06 Device 7-14-6"])

    # Details

    def test_opens_details_by_a_click(self):
        self.open_capture(DESKTOP)
        self.assertNotIn("1-0000:00:02.0-1", self.find("main").text)
        self.summary_of("Wacom PenPartner").click()
        facts = self.texts("details[open] dt"), self.texts("details[open] dd")
        self.assertEqual(dict(zip(*facts)), {
            "Product": "Wacom PenPartner", "Manufacturer": "QEMU", "Serial number": "1-0000:00:02.0-1",
            "USB version": "1.10", "Class": "0*", "Subclass": "0*", "Protocol": "0*", "Configurations": "1",
            "Plugged into": "Bus 04  Device   1 Port 00", "Address": "Bus 04  Device   2",
            "Port's speed": "12 Mbit/s"})

    def test_opens_details_by_the_keyboard(self):
        self.open_capture(DESKTOP)
        body = self.find("body")
        for stop in ("words", "unfold"):
            body.send_keys(Keys.TAB)
            self.assertEqual(self.browser.script("return document.activeElement.id"), stop)
            body = self.browser.driver.switch_to.active_element
        body.send_keys(Keys.TAB)
        summary = self.browser.driver.switch_to.active_element
        self.assertEqual(summary.text, "Bus 01 xHCI Host Controller")
        self.assertEqual(self.browser.script("return getComputedStyle(document.activeElement).outlineStyle"), "solid")
        summary.send_keys(Keys.ENTER)
        self.assertEqual(self.texts("details[open] dd"), ["1", "Bus 01  Device   1"])
        summary.send_keys(Keys.SPACE)
        self.assertEqual(self.count("details[open]"), 0)

    def test_opens_and_closes_all_details_at_once(self):
        self.open_capture(DESKTOP)
        for expected in ((15, "true"), (0, "false")):
            self.find("#unfold").click()
            pressed = self.find("#unfold").get_attribute("aria-pressed")
            self.assertEqual((self.count("details[open]"), pressed), expected)

    def test_goes_from_a_socket_to_what_is_plugged_in_even_where_the_filter_hides_it(self):
        self.open_capture(DESKTOP)
        self.type_filter("keyboard")
        self.find("#i0 .socket.used a[title^='Port 03']").click()
        self.assertEqual(self.find("#words").get_attribute("value"), "")
        self.assertEqual(self.texts("details[open] dd:first-of-type")[0], "QEMU USB Audio")
        self.assertIn("QEMU USB Audio", self.browser.driver.switch_to.active_element.text)

    # Hostile strings

    def test_shows_hostile_names_as_text_and_runs_nothing(self):
        address = self.browser.open(pictures.render(pictures.hostile_list(), "html"))
        for selector in (".device .name > span", *(f".device div:nth-child({row}) > dd" for row in (1, 2, 3))):
            contents = "return Array.from(document.querySelectorAll(arguments[0]), (e) => e.textContent)"
            self.assertEqual(self.browser.script(contents, selector), list(pictures.SHOWN_NAMES), selector)
        self.assertEqual([self.count(name) for name in ("img", "svg", "script", "style")], [0, 0, 1, 1])
        self.type_filter("<script>")
        self.assertEqual(self.texts("#count"), ["1 of 14 match"])
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
        for name in ("testhost", "7 used, 19 free", "QEMU USB Keyboard", "0627:0001", "5+ Gbit/s", "Wacom PenPartner"):
            self.assertIn(name, names)
        self.assertEqual([role for role, _, _ in nodes if role in ("searchbox", "button", "status")], [])

    def test_opens_details_without_scripts(self):
        self.browser.set_scripts(False)
        self.open_capture(DESKTOP)
        self.click_without_scripts("#i0 summary")
        names = [name for role, name, _ in self.browser.accessible() if role == "StaticText"]
        self.assertEqual(names.count("Address"), 1)

    def click_without_scripts(self, selector):
        root = self.browser.protocol("DOM.getDocument")["root"]["nodeId"]
        node = self.browser.protocol("DOM.querySelector", nodeId=root, selector=selector)["nodeId"]
        left, top, _, _, right, bottom = self.browser.protocol("DOM.getBoxModel", nodeId=node)["model"]["content"][:6]
        for kind in ("mousePressed", "mouseReleased"):
            self.browser.protocol("Input.dispatchMouseEvent", type=kind, x=(left + right) / 2, y=(top + bottom) / 2,
                                  button="left", clickCount=1)

    def test_is_black_on_white_paper_with_all_details(self):
        self.open_capture(DESKTOP)
        self.browser.set_media("print", "dark")
        colours = "const s = getComputedStyle(document.body); return [s.color, s.backgroundColor]"
        self.assertEqual(self.browser.script(colours), ["rgb(0, 0, 0)", "rgb(255, 255, 255)"])
        self.assertFalse(self.find("#filter").is_displayed())
        shown = "return Array.from(document.querySelectorAll('details dl')).filter((e) => e.checkVisibility() && " \
                "e.getBoundingClientRect().height > 0).length"
        self.assertEqual(self.browser.script(shown), 15)
        self.assertEqual(len(self.shown()), 15)

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
        self.assertEqual(self.browser.script(colours), ["rgb(232, 236, 242)", "rgb(16, 20, 26)"])

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

    def test_keeps_a_long_name_beside_the_mark_that_opens_it_on_a_phone(self):
        self.browser.set_size(390, 844, True)
        self.open_capture("debugfs-rk3588-8bus-mtt")
        below = "return Array.from(document.querySelectorAll('summary > h2'), " \
                "(e) => e.getBoundingClientRect().top - e.parentElement.getBoundingClientRect().top)"
        self.assertIn("Bus 05 Generic Platform OHCI controller", self.texts("h2"))
        self.assertLess(max(self.browser.script(below)), 10)

    # What assistive software gets

    def test_has_headings_landmarks_and_names(self):
        self.open_capture(DESKTOP)
        nodes = self.browser.accessible()
        self.assertEqual([(name, properties["level"]) for role, name, properties in nodes if role == "heading"],
                         [("testhost", 1), ("Bus 01 xHCI Host Controller", 2), ("Bus 02 xHCI Host Controller", 2),
                          ("Bus 03 EHCI Host Controller", 2), ("Bus 04 UHCI Host Controller", 2)])
        self.assertEqual([name for role, name, _ in nodes if role == "searchbox"], ["Filter"])
        self.assertEqual([name for role, name, _ in nodes if role == "button"], ["All details"])
        for landmark in ("banner", "main", "contentinfo", "search", "status"):
            self.assertEqual([role for role, _, _ in nodes if role == landmark], [landmark])
        self.assertEqual([name for role, name, _ in nodes if role == "region"],
                         ["Bus 01 xHCI Host Controller", "Bus 02 xHCI Host Controller", "Bus 03 EHCI Host Controller",
                          "Bus 04 UHCI Host Controller"])
        self.assertEqual(sorted(name for role, name, _ in nodes if role == "link"),
                         ["Port 00: QEMU USB HARDDRIVE, 5 Gbit/s", "Port 00: QEMU USB Keyboard, 12 Mbit/s",
                          "Port 00: Wacom PenPartner, 12 Mbit/s", "Port 01: QEMU USB Mouse, 12 Mbit/s",
                          "Port 01: USB Attached SCSI HBA, 5 Gbit/s", "Port 02: QEMU USB Hub, 480 Mbit/s",
                          "Port 03: QEMU USB Audio, 480 Mbit/s"])
        self.assertNotIn("", [name for role, name, _ in nodes if role == "DisclosureTriangle"])

    def test_nests_lists_as_things_hang_together(self):
        self.open_capture(DESKTOP)
        keyboard = "//li[@class='item device'][.//span[text()='QEMU USB Keyboard']]"
        depth = "count(ancestor::li) = 2 and count(ancestor::ul) = 3 and ancestor::section"
        self.assertEqual(len(self.browser.driver.find_elements(By.XPATH, f"{keyboard}[{depth}]")), 1)

    def test_tells_the_count_when_it_changes(self):
        self.open_capture(DESKTOP)
        self.type_filter("mouse")
        status = [(name, properties.get("live")) for role, name, properties in self.browser.accessible()
                  if role == "status"]
        self.assertEqual([live for _, live in status], ["polite"])
        self.assertEqual(self.texts("[role=status]"), ["1 of 15 match"])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
