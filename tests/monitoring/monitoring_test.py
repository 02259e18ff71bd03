#!/usr/bin/env python3
"""The metrics of usbinfo, and the alert rules on them, with the programs that read them."""
import csv
import datetime
import glob
import io
import json
import os
import pathlib
import re
import sys
import tempfile
import unittest
import urllib.parse
import urllib.request

SOURCE = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCE / "tests" / "fleet"))
import machine  # noqa: E402  the folder is known only now

RULES = SOURCE / "examples" / "monitoring" / "usbinfo.rules.yml"
STICK = "2-1"
CONFIGURATION = """
global: {{scrape_interval: 1s, evaluation_interval: 1s}}
rule_files: [{rules}]
scrape_configs:
  - job_name: node
    static_configs: [{{targets: ["127.0.0.1:{port}"]}}]
"""
# What a device may send, and what a query gives for it.
HOSTILE_STRINGS = {'"} 1\nusbinfo_devices 9\n# ': '"} 1\\nusbinfo_devices 9\\n# ', "\\": "\\\\", '\\"': '\\\\"',
                   "\0\x1b[2J": "\\x00\\x1b[2J", "\u202e": "\\xe2\\x80\\xae", "ä" * 500: "ä" * 128 + "...",
                   "{}=,": "{}=,"}
# Of the rules, what is too long for a test.
SHORTENED = {"offset 1h": "offset 5s", "[1w:5m]": "[1m:1s]"}


def usbinfo(*arguments, **options):
    """Runs the command."""
    return machine.run([os.environ["USBINFO"], *arguments], **options)


def metrics(*arguments, **options):
    """What it prints for Prometheus."""
    return usbinfo("--format", "prometheus", *arguments, **options)


def desktop():
    """The inventory of a recorded machine, as if it were of now."""
    inventory = machine.desktop()
    now = datetime.datetime.now(datetime.timezone.utc)
    inventory["origin"]["collected"] = now.strftime("%Y-%m-%dT%H:%M:%SZ")
    return inventory


def facts_of(inventory, place):
    """What the kernel knows of the device at that place."""
    return next(device for device in inventory["kernel"]["devices"] if device["name"] == place)


def hostile():
    """An inventory whose devices send what a parser may trip over, all at one place."""
    inventory = desktop()
    devices = [device for device in inventory["kernel"]["devices"] if not device["name"].startswith("usb")]
    for device, string in zip(devices, HOSTILE_STRINGS, strict=True):
        device.update(name="1-1", product=string, manufacturer=string, serial=string)
    return inventory


class MetricsTest(unittest.TestCase):
    """What promtool says of metrics."""

    def assert_clean(self, result):
        """Promtool takes the text, and has no advice."""
        machine.require("promtool")
        checked = machine.run(["promtool", "check", "metrics"], input=result.stdout)
        self.assertEqual((checked.returncode, checked.stdout, checked.stderr), (0, "", ""), result.stdout)

    def test_every_recorded_machine(self):
        inputs = [*glob.glob(f"{SOURCE}/tests/data/captures/*.txt"), *glob.glob(f"{SOURCE}/tests/data/sysfs/*.txt"),
                  *glob.glob(f"{SOURCE}/tests/data/expected/*.json"), SOURCE / "examples" / "desktop.json"]
        self.assertGreater(len(inputs), 30)
        for path in inputs:
            with self.subTest(path):
                self.assert_clean(metrics("--with-serials", "--devices", path))

    def test_this_machine(self):
        self.assert_clean(metrics())

    def test_the_document_lists_them(self):
        document = (SOURCE / "docs" / "monitoring.md").read_text(encoding="utf-8")
        printed = metrics("--devices", SOURCE / "examples" / "desktop.json").stdout
        self.assertEqual(re.findall(r"^\| `(usbinfo_\w+)`", document, re.MULTILINE),
                         re.findall(r"^# TYPE (\w+) gauge", printed, re.MULTILINE))

    def test_no_machine_and_a_hostile_one(self):
        self.assert_clean(metrics("--devices", "-", input=""))
        self.assert_clean(metrics("--with-serials", "--devices", "-", input=json.dumps(hostile())))


class RulesTest(unittest.TestCase):
    """The alert rules by themselves."""

    def setUp(self):
        machine.require("promtool")

    def test_they_are_sound(self):
        checked = machine.run(["promtool", "check", "rules", RULES])
        self.assertEqual((checked.returncode, checked.stderr), (0, ""), checked.stdout)

    def test_the_queries_of_the_document_are_sound(self):
        document = (SOURCE / "docs" / "monitoring.md").read_text(encoding="utf-8")
        block = document.split("```")[-2].strip()
        rules = [{"record": f"query{number}", "expr": line.split("#")[0].strip()}
                 for number, line in enumerate(block.splitlines())]
        self.assertGreater(len(rules), 3)
        with tempfile.NamedTemporaryFile("w", suffix=".yml", encoding="utf-8") as file:
            json.dump({"groups": [{"name": "queries", "rules": rules}]}, file)
            file.flush()
            checked = machine.run(["promtool", "check", "rules", file.name])
        self.assertEqual((checked.returncode, checked.stderr), (0, ""), checked.stdout)

    def test_they_fire_when_they_are_to_fire(self):
        tested = machine.run(["promtool", "test", "rules", SOURCE / "tests" / "monitoring" / "usbinfo.rules.test.yml"])
        self.assertEqual(tested.returncode, 0, tested.stdout + tested.stderr)


class PrometheusTest(unittest.TestCase):
    """A node exporter that reads the file as another user, and a Prometheus that scrapes it."""

    def setUp(self):
        machine.require("prometheus", "prometheus-node-exporter")
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)
        (self.folder / "textfiles").mkdir(mode=0o755)

    def start(self, program, *arguments):
        """Starts a server that ends with the test: as root, as a user who does not own the files."""
        options = {}
        if os.geteuid() == 0:
            user = machine.find_user()
            options = {"user": user.pw_uid, "group": user.pw_gid, "extra_groups": []}
        with open(self.folder / f"{program}.log", "wb") as log:
            process = machine.start([program, *arguments], stdout=log, stderr=log, **options)
        self.addCleanup(machine.stop, process)

    def start_servers(self):
        """Starts both, with the rules on a shorter time, and waits for the first scrape."""
        exporter, server = machine.free_port(), machine.free_port()
        self.start("prometheus-node-exporter", f"--web.listen-address=127.0.0.1:{exporter}",
                   "--collector.disable-defaults", "--collector.textfile",
                   f"--collector.textfile.directory={self.folder}/textfiles")
        rules = RULES.read_text(encoding="utf-8")
        for long, short in SHORTENED.items():
            self.assertIn(long, rules)
            rules = rules.replace(long, short)
        (self.folder / "rules.yml").write_text(rules, encoding="utf-8")
        (self.folder / "prometheus.yml").write_text(
            CONFIGURATION.format(rules=self.folder / "rules.yml", port=exporter), encoding="utf-8")
        data = self.folder / "data"
        data.mkdir()
        data.chmod(0o777)
        self.url = f"http://127.0.0.1:{server}/api/v1/"
        self.start("prometheus", f"--config.file={self.folder}/prometheus.yml", f"--storage.tsdb.path={data}",
                   f"--web.listen-address=127.0.0.1:{server}")
        machine.wait_until(lambda: self.query("node_textfile_scrape_error"), "the first scrape")

    def get(self, path):
        """The data that Prometheus answers; None where it does not answer yet."""
        try:
            with urllib.request.urlopen(self.url + path, timeout=10) as answer:
                return json.load(answer)["data"]
        except OSError:
            return None

    def query(self, expression):
        """The series that the expression gives, each its labels and its value."""
        data = self.get("query?" + urllib.parse.urlencode({"query": expression}))
        return [(series["metric"], float(series["value"][1])) for series in (data or {}).get("result", [])]

    def value(self, expression):
        """The value of the only series; None where there is none."""
        found = self.query(expression)
        return found[0][1] if len(found) == 1 else None

    def alerts(self):
        """Name, place and kind of what fires."""
        return [tuple(alert["labels"].get(name) for name in ("alertname", "place", "kind"))
                for alert in (self.get("alerts") or {}).get("alerts", []) if alert["state"] == "firing"]

    def report(self, inventory):
        """Writes the metrics of the inventory where the exporter reads them, as a timer does."""
        result = metrics("--devices", "-", "--output", self.folder / "textfiles" / "usbinfo.prom",
                         input=json.dumps(inventory), umask=0o022)
        self.assertIn(result.returncode, (0, 1), result.stderr)

    def devices(self):
        """Place, kind and id of the devices, by a query."""
        return sorted((labels["place"], labels["kind"], f'{labels["vid"]}:{labels["pid"]}')
                      for labels, _ in self.query("usbinfo_device_info"))

    def wait_for_devices(self, inventory):
        """Waits until the query gives the devices that the command prints as a table."""
        printed = usbinfo("--format", "csv", "--devices", "-", input=json.dumps(inventory)).stdout
        expected = sorted((row["place"], row["kind"], row["identifier"]) for row in csv.DictReader(io.StringIO(printed)))
        machine.wait_until(lambda: self.devices() == expected, f"{expected}")
        self.assertEqual(self.value("node_textfile_scrape_error"), 0)

    def test_a_stick_that_gains_a_keyboard_is_in_the_answer_and_fires_the_alert(self):
        before = desktop()
        self.report(before)
        self.start_servers()
        self.wait_for_devices(before)
        self.assertEqual(self.value('usbinfo_devices{kind="keyboard"}'), 1)
        machine.wait_until(lambda: self.query("usbinfo_device_info offset 5s"), "a report of five seconds ago")
        self.assertEqual(self.query('ALERTS{alertname=~"Usb.*"}'), [])

        after = desktop()
        facts_of(after, STICK)["kinds"] = ["keyboard", "mass storage"]
        self.report(after)
        machine.wait_until(lambda: self.value('usbinfo_devices{kind="keyboard"}') == 2, "a second keyboard")
        self.wait_for_devices(after)
        machine.wait_until(lambda: self.alerts() == [("UsbMassStorageAppeared", STICK, "keyboard, mass storage")],
                           "the alert")

    def test_what_is_gone_is_counted_as_none(self):
        self.report(desktop())
        self.start_servers()
        machine.wait_until(lambda: self.value('usbinfo_devices{kind="mass storage"}') == 2, "two disks")
        empty = desktop()
        empty["classes"] = {name: [] for name in empty["classes"]}
        empty["kernel"] = {"devices": [], "ports": []}
        self.report(empty)
        machine.wait_until(lambda: self.value('usbinfo_devices{kind="mass storage"}') == 0, "no disk")
        self.assertEqual(self.query("usbinfo_device_info"), [])

    def test_hostile_strings_arrive_as_they_are_shown(self):
        self.report(hostile())
        self.start_servers()
        count = len(HOSTILE_STRINGS)
        machine.wait_until(lambda: len({place for place, _, _ in self.devices()}) == count, "a place for each device")
        products = {labels["product"] for labels, _ in self.query("usbinfo_device_info")}
        self.assertEqual(products, set(HOSTILE_STRINGS.values()))
        self.assertEqual(self.query("usbinfo_devices > 7"), [])


if __name__ == "__main__":
    if "USBINFO" not in os.environ:
        sys.exit("USBINFO must name the usbinfo to test")
    os.environ.update(LC_ALL="C.UTF-8", USBINFO_IDS="")
    unittest.main(verbosity=2)
