"""The policy that USBGuard itself writes of the machine, hashes included, and the check against it.

The machine keeps to it until a stick becomes a stick with a keyboard, to which both then object: USBGuard by writing
another rule for it.
"""

import gadgets

STICKS = (("stick-", gadgets.STICK), ("rogue-", gadgets.ROGUE_STICK))


def check_all(guest, collector, report, buses, release):
    """Check before the change and after it; the machine ends as it was. `buses` are those of all that is plugged in."""
    others = [bus for bus in buses if bus.controller != gadgets.buses(release)[0].controller]
    for prefix, gadget in STICKS:
        collector.prepare("swap_gadgets", "1", "1", prefix)
        changed = others + gadgets.buses(release, (gadget,))
        collector.settle(changed, f"policy, {prefix}0")
        status, files = guest.run("policy")
        texts = {name: content.decode() for name, content in files.items()}
        problems = [f"USBGuard ends with {status}: {texts['messages']}"] if status else []
        if gadget is gadgets.STICK:
            report.add("the policy that USBGuard writes, hashes included, allows every device",
                       problems + _unless_allowed(texts, changed))
        else:
            report.add("a stick that gains a keyboard: neither USBGuard's policy nor the check allows it",
                       problems + _unless_refused(texts))
    collector.prepare("swap_gadgets", "1", "1")
    collector.settle(buses, "gadgets are back after the policy")


def _unless_allowed(texts, buses):
    devices = sum(len(bus.devices) for bus in buses)
    hashes = texts["rules"].count(' hash "'), texts["rules"].count(' parent-hash "')
    problems = [] if hashes == (devices, devices) else [f"{hashes} hashes for {devices} devices:", texts["rules"]]
    if (texts["status"], texts["output"]) != ("0\n", ""):
        problems += ["the check prints", *texts["output"].splitlines(), texts["messages"]]
    return problems


def _unless_refused(texts):
    first, now = (set(texts[name].splitlines()) for name in ("first", "rules"))
    gone, new = first - now, now - first
    problems = [] if len(gone) == len(new) == 1 else ["USBGuard changes", *gone, "to", *new]
    lines = texts["output"].splitlines()
    stick = gadgets.ROGUE_STICK.strings["SerialNumber"]
    if texts["status"] != "1\n" or len(lines) != 2 or "keyboard, mass storage" not in lines[0] or stick not in lines[0]:
        problems += ["the check prints", *lines, texts["messages"]]
    return problems
