"""The completions against the command: subcommands, options and values.

Each shell is asked what it offers on a command line.  Takes the command from
USBINFO and the project's folder from SOURCE.
"""

import json
import os
import pathlib
import pty
import subprocess
import tempfile
import unittest

import options

USBINFO = pathlib.Path(os.environ["USBINFO"])
SOURCE = pathlib.Path(os.environ["SOURCE"])
HERE = pathlib.Path(__file__).resolve().parent
COMPLETIONS = SOURCE / "completions"


def run_usbinfo(*arguments):
    """Return what the command printed."""
    return subprocess.run([USBINFO, *arguments], check=True, text=True,
                          stdout=subprocess.PIPE).stdout


class Bash:
    """Asks bash; a list per command line."""

    @staticmethod
    def offers(folder, *words):
        """List what is offered for the last word."""
        # Bash takes an equals sign for a word of its own.
        split = [part for word in words
                 for part in word.replace("=", "\n=\n").split("\n")]
        return subprocess.run(
            [HERE / "complete.bash", COMPLETIONS / "usbinfo.bash", *split],
            check=True, cwd=folder, text=True,
            stdout=subprocess.PIPE).stdout.splitlines()


class Zsh:
    """Asks zsh, which completes on a terminal only."""

    @staticmethod
    def offers(folder, *words):
        """List what is offered for the last word."""
        file = folder.parent / "offers"
        file.touch()
        process, terminal = pty.fork()
        if process == 0:
            os.chdir(folder)
            os.environ.update({
                "ZDOTDIR": str(HERE / "zsh"), "TERM": "dumb",
                "COMPLETE_OFFERS": str(file),
                "COMPLETE_LINE": " ".join(("usbinfo", *words)),
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
                pass  # The end, as a terminal tells it.
        _, status = os.waitpid(process, 0)
        if status != 0:
            raise RuntimeError(f"zsh ended with {status}")
        return file.read_text(encoding="utf-8").splitlines()


class CompletionTest:
    """What every shell has to offer; SHELL is the one that is asked."""

    SHELL = None
    CLASSES = list(json.loads(run_usbinfo("schema", "--format", "json"))
                   ["classes"])

    def setUp(self):
        parent = tempfile.TemporaryDirectory()
        self.addCleanup(parent.cleanup)
        self.folder = pathlib.Path(parent.name) / "work"
        self.folder.mkdir()
        (self.folder / "afile").touch()
        (self.folder / "afolder").mkdir()

    def offers(self, *words):
        """Ask the shell."""
        return self.SHELL.offers(self.folder, *words)

    def assert_offers(self, words, expected):
        self.assertCountEqual(self.offers(*words), expected, words)

    def check_options(self, *command):
        """Hold what is offered against the command's help."""
        wanted = options.from_help(run_usbinfo(*command, "--help"))
        self.assert_offers((*command, "-"),
                           [name for names in wanted for name in names])
        return wanted

    def check_values(self, *command):
        """Hold every option's values against the command's help."""
        for names, option in self.check_options(*command).items():
            for name in names:
                self.check_value(command, name, option)

    def check_value(self, command, name, option):
        """Hold the values offered for an option against the help."""
        with self.subTest(command=command, option=name):
            if option.value == "FILE":
                self.assert_offers((*command, name, "af"),
                                   ["afile", "afolder"])
            elif option.choices:
                self.assert_offers((*command, name, ""), option.choices)
            elif option.value:
                self.assertNotIn("afile", self.offers(*command, name, ""))

    def test_show(self):
        self.check_values("show")

    def test_command_itself(self):
        self.check_options()

    def test_schema(self):
        self.check_values("schema")

    def test_diff(self):
        self.check_values("diff")

    def test_subcommands(self):
        names = options.subcommands_of_help(run_usbinfo("--help"))
        self.assert_offers(("",), names)
        self.assert_offers(("--format", "json", ""), names)
        self.assert_offers(("d",), ["diff"])

    def test_option_value_is_no_subcommand(self):
        self.assert_offers(("--log", "diff", "schema", "--f"),
                           ["--format"])

    def test_value_behind_an_equals_sign(self):
        self.assert_offers(("--log-format=j",), ["json"])
        self.assertIn("tree", self.offers("--format="))

    def test_classes(self):
        self.assert_offers(("--class", ""), self.CLASSES)
        self.assert_offers(("--class", "KALDO_USBPo"),
                           ["KALDO_USBPort", "KALDO_USBPortOnHub"])

    def test_several_classes(self):
        offers = self.offers("--request", "KALDO_USBHub,KALDO_USBPo")
        # Bash offers the whole word, zsh its last part.
        self.assertCountEqual([offer.split(",")[-1] for offer in offers],
                              ["KALDO_USBPort", "KALDO_USBPortOnHub"])

    def test_diff_takes_files(self):
        self.assert_offers(("diff", "a"), ["afile", "afolder"])
        self.assert_offers(("diff", "afile", "a"), ["afile", "afolder"])

    def test_nothing_follows_schema(self):
        self.assert_offers(("schema", "a"), [])


class BashTest(CompletionTest, unittest.TestCase):
    SHELL = Bash


class ZshTest(CompletionTest, unittest.TestCase):
    SHELL = Zsh


if __name__ == "__main__":
    unittest.main()
