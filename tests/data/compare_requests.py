#!/usr/bin/env python3
"""Compare what ``usbinfo`` prints and logs with its derivation.

Every captured device list, and an empty one, is collected with a number of
requests: classes alone, in other orders, repeatedly, and with names that no
class has.  Each time the JSON inventory, the complete log and the exit
status must be those that derive_expected.py works out from the same text.

Usage:
    compare_requests.py USBINFO       the command to try

Prints a line per difference; exits 1 if there is any.
"""

import itertools
import os
import pathlib
import subprocess
import sys
import tempfile

import derive_expected as derive

COLLECTED = (derive.CONTROLLER, derive.HUB, derive.PORT, derive.DEVICE)
ASSOCIATIONS = (derive.PORT_ON_HUB, derive.CONNECTION)

REQUESTS = (
    *((name,) for name in derive.CLASSES),
    derive.CLASSES,
    tuple(reversed(derive.CLASSES)),
    ASSOCIATIONS + COLLECTED,
    ASSOCIATIONS + COLLECTED + ASSOCIATIONS,
    (derive.HUB, derive.HUB, derive.PORT, derive.PORT_ON_HUB, derive.HUB,
     derive.PORT_ON_HUB),
    # Asking for the ports again makes them free again.
    derive.CLASSES + (derive.PORT,),
    derive.CLASSES + (derive.PORT, derive.CONNECTION),
    (derive.PORT, derive.DEVICE, derive.CONNECTION, derive.HUB,
     derive.CONNECTION),
    (derive.HUB, "KALDO_USBhub", derive.PORT, "nonsense", derive.DEVICE,
     "kaldo_usbdevice", " " + derive.CONTROLLER, derive.PORT_ON_HUB,
     derive.CONNECTION),
    ("KALDO_USBControllerHasHub", derive.CONTROLLER,
     "KALDO_USBControllerHasHub", derive.HUB),
    ("nonsense", "KALDO_USBControllerHasHub"),
)


def usbinfo(command, device_list, request, log):
    """Run the command; return its exit status, output and log as texts."""
    done = subprocess.run(
        [command, "--devices", device_list, "--as-is", "--system-name",
         os.fsdecode(derive.TEST_SYSTEM), "--format", "json",
         "--request", ",".join(request),
         "--log", log, "--log-level", "verbose", "--log-format", "json"],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.PIPE, check=False)
    return done.returncode, done.stdout.decode(), log.read_text()


def derived(text, request):
    """Return the exit status, output and log that there must be."""
    run = derive.Run(text, derive.TEST_SYSTEM, request)
    status = 0 if any(run.instances.values()) else 1
    # The command writes its log lines without blanks between their parts.
    log = derive.as_log(run).replace('{"severity": ', '{"severity":')
    return status, derive.as_json(run), log.replace(', "text": ', ',"text":')


def first_difference(found, expected):
    """Name the first line in which two texts differ; nothing if none."""
    pairs = itertools.zip_longest(found.splitlines(), expected.splitlines())
    for number, (line, wanted) in enumerate(pairs, start=1):
        if line != wanted:
            return f"line {number} is {line!r} instead of {wanted!r}"
    return None if found == expected else "the ends differ"


def differences(command, device_list, request, log):
    """List how a run differs from its derivation."""
    status, output, lines = usbinfo(command, device_list, request, log)
    wanted = derived(device_list.read_bytes(), request)
    found = []
    if status != wanted[0]:
        found.append(f"exit status {status} instead of {wanted[0]}")
    for what, text, expected in (("inventory", output, wanted[1]),
                                 ("log", lines, wanted[2])):
        difference = first_difference(text, expected)
        if difference:
            found.append(f"{what}: {difference}")
    return found


def main():
    """Do every comparison; return the exit status."""
    if len(sys.argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    command = sys.argv[1]
    captures = sorted((derive.HERE / "captures").glob("*.txt"))
    runs = wrong = 0
    with tempfile.TemporaryDirectory() as folder:
        empty = pathlib.Path(folder) / "empty-list"
        empty.touch()
        log = pathlib.Path(folder) / "log"
        for device_list in (*captures, empty):
            for request in REQUESTS:
                runs += 1
                for difference in differences(command, device_list, request,
                                              log):
                    wrong += 1
                    print(f"{device_list.stem}, {','.join(request)}: "
                          f"{difference}")
    print(f"{runs} runs compared, {wrong} differences")
    return 1 if wrong or not captures else 0


if __name__ == "__main__":
    sys.exit(main())
