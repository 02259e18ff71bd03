#!/usr/bin/env python3
"""The files that a machine gets for Ansible and systemd, with the programs that read them."""
import json
import os
import pathlib
import re
import shutil
import tempfile
import unittest

import machine

STORE = None


class MachineFilesTest(unittest.TestCase):
    """A machine whose usbinfo shows a recorded inventory."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.list = machine.SOURCE / "examples" / "desktop.json"
        (self.folder / "ansible.cfg").touch()
        self.command = self.install(f"--devices {self.list}")

    def install(self, options):
        """A usbinfo in a folder of its own, which has these options always."""
        programs = self.folder / "bin"
        programs.mkdir(exist_ok=True)
        command = programs / "usbinfo"
        command.write_text(f'#!/bin/sh\nexec {os.environ["USBINFO"]} {options} "$@"\n', encoding="utf-8")
        command.chmod(0o755)
        return command

    def printed(self):
        """The inventory that the machine's usbinfo prints."""
        return json.loads(machine.run([self.command, "--format", "json"]).stdout)

    def facts(self):
        """What Ansible's own setup module finds, as the text of its answer."""
        machine.require("ansible")
        facts = self.folder / "facts.d"
        facts.mkdir(exist_ok=True)
        shutil.copy(machine.EXAMPLES / "usbinfo.fact", facts)
        answers = self.folder / "answers"
        environment = {**os.environ, "PATH": f"{self.command.parent}:{os.environ['PATH']}",
                       "ANSIBLE_HOME": str(self.folder), "ANSIBLE_LOCAL_TEMP": str(self.folder),
                       "ANSIBLE_REMOTE_TEMP": str(self.folder), "ANSIBLE_CONFIG": str(self.folder / "ansible.cfg")}
        result = machine.run(["ansible", "-i", "localhost,", "-c", "local", "all", "-m", "setup", "-a",
                              f"fact_path={facts} gather_subset=!all,!min,local filter=ansible_local",
                              "-e", "ansible_python_interpreter=/usr/bin/python3", "--tree", answers], env=environment)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        return json.loads((answers / "localhost").read_text(encoding="utf-8"))["ansible_facts"]["ansible_local"]

    def test_ansible_has_the_inventory_as_a_fact(self):
        self.assertEqual(self.facts()["usbinfo"], self.printed())

    def test_the_fact_can_be_loaded(self):
        fact = json.dumps(self.facts()["usbinfo"])
        database = self.folder / "store.db"
        loaded = machine.run([STORE, "load", "--db", database], input=fact)
        self.assertEqual(loaded.returncode, 0, loaded.stderr)
        shown = machine.run([STORE, "show", "vm-desktop", "--format", "json", "--db", database])
        self.assertEqual(json.loads(shown.stdout), self.printed())

    def test_a_machine_without_usb_has_an_empty_inventory_as_a_fact(self):
        empty = machine.desktop()
        empty["classes"] = {name: [] for name in empty["classes"]}
        empty["kernel"] = {"devices": [], "ports": []}
        (self.folder / "empty.json").write_text(json.dumps(empty), encoding="utf-8")
        self.install(f"--devices {self.folder}/empty.json")
        self.assertEqual(machine.run([self.command]).returncode, 1)
        self.assertEqual(self.facts()["usbinfo"], self.printed())

    def test_the_service_leaves_what_rsyslog_takes(self):
        unit = (machine.EXAMPLES / "usbinfo-report.service").read_text(encoding="utf-8")
        spool = self.folder / "spool"
        spool.mkdir()
        line = re.search("^ExecStart=(.*)$", unit, re.MULTILINE).group(1)
        line = line.replace("/usr/bin/usbinfo", str(self.command)).replace("/var/spool/usbinfo", str(spool))
        result = machine.run(line.replace("${INVOCATION_ID}", "0123456789abcdef").split())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual([path.name for path in spool.iterdir()], ["0123456789abcdef.json"])
        text = (spool / "0123456789abcdef.json").read_text(encoding="utf-8")
        self.assertEqual(text.count("\n"), 1)
        self.assertTrue(text.endswith("\n"))
        self.assertIn("/var/spool/usbinfo/*.json", (machine.EXAMPLES / "rsyslog-machine.conf").read_text(encoding="utf-8"))

    def test_systemd_understands_the_units(self):
        machine.require("systemd-analyze")
        for name in ("usbinfo-report.service", "usbinfo-report.timer"):
            text = (machine.EXAMPLES / name).read_text(encoding="utf-8")
            (self.folder / name).write_text(text.replace("/usr/bin/usbinfo", str(self.command)), encoding="utf-8")
        result = machine.run(["systemd-analyze", "verify", "--man=no", "--recursive-errors=no",
                              self.folder / "usbinfo-report.service", self.folder / "usbinfo-report.timer"],
                             env={**os.environ, "SYSTEMD_UNIT_PATH": f"{self.folder}:/lib/systemd/system"})
        self.assertEqual((result.returncode, result.stderr), (0, ""))


if __name__ == "__main__":
    STORE = machine.prepare()
    unittest.main(verbosity=2)
