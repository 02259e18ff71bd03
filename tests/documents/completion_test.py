"""The completions in their shells: subcommands, options and values.

Each shell is asked what it offers on a command line.  Takes the folder of the
programs from PROGRAMS and that of the built completions from DOCUMENTS.
"""

import os
import pathlib
import pty
import re
import shutil
import subprocess
import tempfile
import unittest

PROGRAMS = pathlib.Path(os.environ["PROGRAMS"])
HERE = pathlib.Path(__file__).resolve().parent
COMPLETIONS = pathlib.Path(os.environ["DOCUMENTS"])


def run(command, *arguments):
    """Return what the command printed."""
    return subprocess.run([PROGRAMS / command, *arguments], check=True,
                          text=True, stdout=subprocess.PIPE).stdout


class Bash:
    """Asks bash; a list per command line."""

    @staticmethod
    def offers(command, folder, *words):
        """List what is offered for the last word."""
        # Bash takes an equals sign for a word of its own.
        split = [part for word in words
                 for part in word.replace("=", "\n=\n").split("\n")]
        return subprocess.run(
            [HERE / "complete.bash", COMPLETIONS / f"{command}.bash",
             command, *split],
            check=True, cwd=folder, text=True,
            stdout=subprocess.PIPE).stdout.splitlines()


class Zsh:
    """Asks zsh, which completes on a terminal only."""

    @staticmethod
    def offers(command, folder, *words):
        """List what is offered for the last word."""
        file = folder.parent / "offers"
        file.touch()
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(folder)
            os.environ.update({
                "ZDOTDIR": str(HERE / "zsh"), "TERM": "dumb",
                "COMPLETE_OFFERS": str(file),
                "COMPLETE_LINE": " ".join((command, *words)),
                "COMPLETE_FOLDER": str(COMPLETIONS)})
            # A shell that waits for somebody would wait for ever.
            os.execvp("timeout", ["timeout", "--foreground",
                                  "--signal=KILL", "20",
                                  "zsh", "-d", "-i"])
        with open(terminal, "rb", buffering=0) as screen:
            try:
                while screen.read(4096):
                    pass
            except OSError:
                pass  # The end, as a terminal reports it.
        _, status = os.waitpid(process, 0)
        if status != 0:
            raise RuntimeError(f"zsh ended with {status}")
        return file.read_text(encoding="utf-8").splitlines()


class Fish:
    """Asks fish; what an option and its value are in one word is left out."""

    @staticmethod
    def offers(command, folder, *words):
        """List what is offered for the last word."""
        script = f'source {COMPLETIONS}/{command}.fish; complete -C "$argv"'
        lines = subprocess.run(
            ["fish", "--no-config", "-c", script,
             f"{command} " + " ".join(words)],
            check=True, cwd=folder, text=True, stdout=subprocess.PIPE,
            env={**os.environ, "HOME": str(folder.parent)}).stdout.splitlines()
        offered = [line.split("\t")[0].rstrip("/") for line in lines]
        return [word.split("=")[-1] if "=" in words[-1] else word
                for word in offered]


def options_of_help(command, *words):
    """List the names of the options that a subcommand's help lists."""
    entries = re.findall(r"^  (-.*?)(?:  |$)",
                         run(command, *words, "--help"), re.MULTILINE)
    return [name.split()[0] for entry in entries for name in entry.split(", ")]


class CompletionTest:
    """What every shell has to offer for COMMAND; SHELL is asked."""

    SHELL = None
    COMMAND = None
    SUBCOMMANDS = []

    def setUp(self):
        parent = tempfile.TemporaryDirectory()
        self.addCleanup(parent.cleanup)
        self.folder = pathlib.Path(parent.name) / "work"
        self.folder.mkdir()
        (self.folder / "afile").touch()
        (self.folder / "afolder").mkdir()

    def offers(self, *words):
        """List what is offered for the last word."""
        return self.SHELL.offers(self.COMMAND, self.folder, *words)

    def assert_offers(self, words, expected):
        """Hold what is offered for the last of the words to the expected."""
        self.assertCountEqual(self.offers(*words), expected,
                              words)

    def test_every_option_of_the_help_and_no_other(self):
        for words in [[], *([name] for name in self.SUBCOMMANDS)]:
            with self.subTest(words):
                names = options_of_help(self.COMMAND, *words)
                self.assertIn("--help", names)
                self.assert_offers((*words, "-"), names)

    def test_subcommands(self):
        self.assert_offers(("",), self.SUBCOMMANDS)
        self.assert_offers(("--format", "json", ""), self.SUBCOMMANDS)


class UsbinfoTest(CompletionTest):
    """What belongs to usbinfo alone."""

    COMMAND = "usbinfo"
    FORMATS = ["tree", "table", "json", "jsonl", "csv", "cimxml", "mof", "dot", "html",
               "list", "usbguard", "prometheus"]
    SUBCOMMANDS = ["show", "diff", "watch", "check", "schema", "help"]

    def test_beginning_of_a_subcommand(self):
        self.assert_offers(("d",), ["diff"])

    def test_option_value_is_not_taken_for_a_subcommand(self):
        self.assert_offers(("--log", "diff", "schema", "--f"), ["--format"])

    def test_choices_of_each_subcommand(self):
        self.assert_offers(("--format", ""), self.FORMATS)
        self.assert_offers(("show", "--format", ""), self.FORMATS)
        self.assert_offers(("diff", "--format", ""), ["text", "json"])
        self.assert_offers(("schema", "--format", ""), ["mof", "json"])
        self.assert_offers(("--log-level", "e"), ["error"])
        self.assert_offers(("--class", "port"), ["port", "portonhub"])

    def test_value_after_an_equals_sign(self):
        self.assert_offers(("--log-format=j",), ["json"])
        self.assert_offers(("--format=",), self.FORMATS)

    def test_files_for_options_that_take_one(self):
        for name in ("--devices", "--output", "--mask-key"):
            self.assert_offers((name, "af"), ["afile", "afolder"])

    def test_nothing_for_a_value_that_nobody_can_know(self):
        for name in ("--system-name", "-d", "-s"):
            self.assert_offers((name, "a"), [])

    def test_lists(self):
        self.assert_last_parts(("--request", "KALDO_USBHub,KALDO_USBPo"),
                               ["KALDO_USBPort", "KALDO_USBPortOnHub"])
        self.assert_last_parts(("--columns", "Name,Sp"), ["Speed"])

    def assert_last_parts(self, words, expected):
        """Hold the last part of each list; some shells offer it alone."""
        offers = self.offers(*words)
        self.assertCountEqual([offer.split(",")[-1] for offer in offers],
                              expected)

    def test_operands(self):
        self.assert_offers(("diff", "a"), ["afile", "afolder"])
        self.assert_offers(("diff", "afile", "a"), ["afile", "afolder"])
        self.assert_offers(("help", "s"), ["show", "schema"])
        self.assert_offers(("schema", "a"), [])


class StoreTest(CompletionTest):
    """What belongs to usbinfo-store alone."""

    COMMAND = "usbinfo-store"
    SUBCOMMANDS = ["hosts", "load", "collect", "find", "changes", "show", "check",
                   "forget", "rename", "prune", "migrate", "schema", "help"]

    def test_operands(self):
        self.assert_offers(("load", "a"), ["afile", "afolder"])
        self.assert_offers(("load", "afile", "a"), ["afile", "afolder"])
        self.assert_offers(("help", "f"), ["find", "forget"])
        self.assert_offers(("check", "a"), ["afile", "afolder"])
        for name in ("show", "forget", "rename", "hosts"):
            self.assert_offers((name, "a"), [])

    def test_choices(self):
        self.assert_offers(("changes", "--format", ""),
                           ["text", "json", "csv"])
        self.assert_offers(("schema", "--dialect", ""),
                           ["sqlite", "postgresql"])


class BashTest(UsbinfoTest, unittest.TestCase):
    SHELL = Bash


class ZshTest(UsbinfoTest, unittest.TestCase):
    SHELL = Zsh


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class FishTest(UsbinfoTest, unittest.TestCase):
    SHELL = Fish


class StoreBashTest(StoreTest, unittest.TestCase):
    SHELL = Bash


class StoreZshTest(StoreTest, unittest.TestCase):
    SHELL = Zsh


@unittest.skipUnless(shutil.which("fish"), "fish is not installed")
class StoreFishTest(StoreTest, unittest.TestCase):
    SHELL = Fish


if __name__ == "__main__":
    unittest.main()
