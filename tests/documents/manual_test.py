"""The manual pages as they are built: their form, subcommands, examples.

Takes the folder of the programs from PROGRAMS, the project's folder from SOURCE
and that of the built documents from DOCUMENTS.
"""

import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import unittest

PROGRAMS = pathlib.Path(os.environ["PROGRAMS"])
SOURCE = pathlib.Path(os.environ["SOURCE"])
DOCUMENTS = pathlib.Path(os.environ["DOCUMENTS"])
CAPTURE = SOURCE / "tests" / "data" / "captures" / "vm-desktop-debugfs.txt"


def page_of(command):
    """Return the path of the command's page."""
    return DOCUMENTS / f"{command}.1"


class FormTest(unittest.TestCase):
    """The page of COMMAND is sound and names what it should."""

    COMMAND = "usbinfo"
    SECTIONS = ("NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "ENVIRONMENT",
                "FILES", "EXIT STATUS", "EXAMPLES", "SEE ALSO", "CAVEATS")

    def text(self):
        """Return the source of the page."""
        return page_of(self.COMMAND).read_text(encoding="utf-8")

    def test_sections_are_those_that_a_reader_looks_for(self):
        sections = re.findall(r"^\.Sh (.*)", self.text(), re.MULTILINE)
        self.assertEqual(tuple(sections), self.SECTIONS)

    def test_every_subcommand_is_named_and_has_its_options(self):
        page = self.text()
        listed = subprocess.run(
            [PROGRAMS / self.COMMAND, "--help"], check=True, text=True,
            stdout=subprocess.PIPE).stdout.partition("\nSubcommands:\n")[2]
        names = re.findall(r"^  (\S+)", listed, re.MULTILINE)
        self.assertIn("help", names)
        for name in names:
            self.assertIn(f"\n.It Cm {name}\n", page)
        self.assertEqual(
            re.findall(r"^\.Ss Options of (.*)", page, re.MULTILINE),
            [name for name in names if name != "help"])

    def check(self, *command):
        # Whether the pages referred to are installed is another matter.
        done = subprocess.run(
            [*command, page_of(self.COMMAND)], check=False, text=True,
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_mandoc_finds_nothing(self):
        self.check("mandoc", "-T", "lint", "-W", "warning")

    def test_groff_finds_nothing(self):
        self.check("groff", "-mandoc", "-ww", "-T", "utf8")


class StoreFormTest(FormTest):
    """The same of usbinfo-store."""

    COMMAND = "usbinfo-store"


class CheckFormTest(FormTest):
    """The same of usbinfo check, whose page has the options of this subcommand alone."""

    COMMAND = "usbinfo-check"
    SECTIONS = ("NAME", "SYNOPSIS", "DESCRIPTION", "OPTIONS", "EXIT STATUS", "EXAMPLES", "SEE ALSO")

    def test_every_subcommand_is_named_and_has_its_options(self):
        page = self.text()
        listed = subprocess.run(
            [PROGRAMS / "usbinfo", "check", "--help"], check=True, text=True,
            stdout=subprocess.PIPE).stdout
        options = re.findall(r"^  (?:-\w, )?--([\w-]+)", listed, re.MULTILINE)
        self.assertIn("nagios", options)
        self.assertEqual(
            re.findall(r"^\.It (?:Fl \w , )?Fl -([\w-]+)", page, re.MULTILINE), options)

    def test_language_is_that_of_the_program(self):
        page = self.text()
        for word in ("id", "name", "serial", "via-port", "with-interface", "with-connect-type", "hash , parent-hash",
                     "label", "all-of", "one-of", "none-of", "equals", "equals-ordered", "match-all"):
            self.assertIn(f"\n.It Cm {word}\n", page)


def examples(command):
    """List the commands of the examples in the command's page."""
    page = page_of(command).read_text(encoding="utf-8")
    section = re.split(r"^\.Sh ", page.partition("\n.Sh EXAMPLES\n")[2],
                       flags=re.MULTILINE)[0]
    blocks = re.findall(r"^\.Bd -literal.*\n((?:[^.].*\n)+)", section,
                        re.MULTILINE)
    text = "".join(blocks).replace("\\e\n", " ").replace("\\(aq", "'").replace("\\(dq", '"')
    return [line.removeprefix("$ ") for line in text.splitlines()]


class ExamplesTest(unittest.TestCase):
    """The examples in the page run as they are written."""

    COMMAND = PAGE = "usbinfo"
    COUNT = 8

    # What takes root's rights, or looks at another machine.
    ELSEWHERE = ("sudo ", "ssh ")
    # What looks at this machine, which may have no USB.
    HERE = ("usbinfo -v",)

    def test_examples_run_in_their_order(self):
        folder = pathlib.Path(self.enter(tempfile.TemporaryDirectory()))
        self.prepare(folder)
        tools = folder / "tools"
        tools.mkdir()
        (tools / self.COMMAND).symlink_to(PROGRAMS / self.COMMAND)
        path = f"{tools}:{os.environ['PATH']}"
        count = 0
        for command in examples(self.PAGE):
            if command.startswith(self.ELSEWHERE):
                continue
            count += 1
            with self.subTest(command):
                done = subprocess.run(
                    ["bash", "-o", "pipefail", "-c", command], cwd=folder,
                    check=False, text=True, stdin=subprocess.DEVNULL,
                    stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                    env={**os.environ, "PATH": path,
                         "XDG_DATA_HOME": str(folder)})
                if command in self.HERE and done.returncode == 1:
                    self.assertIn("no USB device found", done.stderr)
                    continue
                self.assertEqual(done.returncode, 0, done.stderr)
        self.assertGreaterEqual(count, self.COUNT)

    def prepare(self, folder):
        """Put into the folder what the examples read."""
        (folder / "devices.txt").write_bytes(CAPTURE.read_bytes())

    def enter(self, manager):
        """Enter a context until the test ends."""
        self.addCleanup(manager.__exit__, None, None, None)
        return manager.__enter__()


class CheckExamplesTest(ExamplesTest):
    """The same of usbinfo check."""

    PAGE = "usbinfo-check"
    COUNT = 4


class StoreExamplesTest(ExamplesTest):
    """The same of usbinfo-store."""

    COMMAND = PAGE = "usbinfo-store"
    ELSEWHERE = (*ExamplesTest.ELSEWHERE, "usbinfo-store collect ")

    def prepare(self, folder):
        (folder / "inventories").mkdir()
        shutil.copy(SOURCE / "examples" / "machines.jsonl",
                    folder / "inventories" / "machines.json")
        (folder / "rules.conf").write_text("allow\n", encoding="utf-8")


if __name__ == "__main__":
    unittest.main()
