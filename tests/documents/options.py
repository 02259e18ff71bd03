"""What options a command has, by its help and by its manual page.

Both are read into the same form, a dictionary from an option's names to its
Option, so that a test can hold one against the other.
"""

import re
import typing

SUBCOMMANDS = ("show", "schema", "diff")


class Option(typing.NamedTuple):
    """What follows an option: its value's name, and what that may be."""

    value: str
    choices: frozenset


def from_help(text):
    """Read the options out of what --help printed."""
    options = {}
    for left, description in _help_entries(text):
        names, *rest = left.split()
        value = rest[0] if rest and not _is_remark(rest[0]) else ""
        options[_names(names.split(","))] = Option(
            value, _choices_of_help(description))
    return options


def subcommands_of_help(text):
    """List the subcommands that a help names."""
    _, _, section = text.partition("\nSubcommands:\n")
    return re.findall(r"^  (\S+)", section, re.MULTILINE)


def _help_entries(text):
    """Pair the left column of each option with the lines beside it."""
    entries = []
    for line in text.splitlines():
        entry = re.match(r"  (-\S(?:\S| (?! ))*)(?:\s{2,}(.*))?$", line)
        if entry:
            entries.append((entry[1], [entry[2] or ""]))
        elif entries and re.match(r"   +\S", line):
            entries[-1][1].append(line.strip())
        elif not line.startswith(" "):
            # The subcommands, say: no part of an option.
            entries.append(("", []))
    return [(left, lines) for left, lines in entries if left]


def _is_remark(word):
    return word in ("...", "REQUIRED") or word.endswith(":")


def _choices_of_help(description):
    """Read the words behind a line with a colon at its end.

    What stands in parentheses is a remark.
    """
    for number, line in enumerate(description):
        if line.endswith(":"):
            words = re.sub(r"\(.*?\)", "", " ".join(description[number + 1:]))
            return frozenset(re.findall(r"[^,\s]+", words))
    return frozenset()


def from_manual(source):
    """Read each subcommand's options out of the manual page's source."""
    _, _, section = source.partition("\n.Sh OPTIONS\n")
    section = re.split(r"^\.Sh ", section, flags=re.MULTILINE)[0]
    found = {}
    for part in re.split(r"^\.Ss Options of ", section,
                         flags=re.MULTILINE)[1:]:
        command, _, body = part.partition("\n")
        found[command] = _options_of(body)
    return found


def _options_of(body):
    """Read the items of one list; its inner lists name choices."""
    options = {}
    for item in re.split(r"^\.It (?=Fl )", body, flags=re.MULTILINE)[1:]:
        heading, _, text = item.partition("\n")
        choices = re.findall(r"^\.(?:It )?Cm (\S+)", text, re.MULTILINE)
        names, value = _heading(heading)
        options[names] = Option(value, frozenset(choices))
    return options


def _heading(heading):
    """Take the names and the value out of the macros of an item."""
    names = []
    value = ""
    closing = ""
    words = iter(heading.split())
    for word in words:
        if word == "Fl":
            name = next(words)
            names.append("-" + name)
        elif word in ("Op", "Oo"):
            value += "["
            closing = "]" if word == "Op" else ""
        elif word == "Oc":
            value += "]"
        elif word not in ("Ar", "Ns", ","):
            value += word
    return _names(names), value + closing


def _names(names):
    return tuple(sorted(names, key=len))


def differences(wanted, found):
    """Say in what the options `found` differ from those `wanted`."""
    lines = []
    for names in sorted(wanted.keys() | found.keys()):
        title = ",".join(names)
        if names not in found:
            lines.append(f"{title} is missing")
        elif names not in wanted:
            lines.append(f"{title} is no option of the command")
        elif wanted[names].value != found[names].value:
            lines.append(f"{title} takes {wanted[names].value!r}, "
                         f"not {found[names].value!r}")
        elif wanted[names].choices != found[names].choices:
            lines.append(f"{title} may be "
                         f"{sorted(wanted[names].choices)}, "
                         f"not {sorted(found[names].choices)}")
    return lines
