#!/usr/bin/env python3
"""Prints the reports of a fleet of made-up machines, one inventory a line, as usbinfo -j --compact does.

Each machine is one of the recorded ones in examples/machines.jsonl with a name, a machine id, serial numbers and product
names of its own, and without some of its devices. Each day every machine reports once; on a day on which it changes, one
device more or less is plugged in. The same arguments give the same reports.
"""
import argparse
import copy
import datetime
import json
import pathlib
import random

RECORDED = pathlib.Path(__file__).resolve().parents[2] / "examples" / "machines.jsonl"
DAY = 24 * 60 * 60
UNKNOWN = "Not Available"
NO_TIME = "no time"


def time_text(seconds):
    """Seconds since 1970 as inventories have them."""
    return datetime.datetime.fromtimestamp(seconds, datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%SZ")


def parse_time(text):
    """The seconds of such a text."""
    return int(datetime.datetime.strptime(text, "%Y-%m-%dT%H:%M:%SZ").replace(tzinfo=datetime.timezone.utc).timestamp())


class Machine:
    """One machine of the fleet; `number` decides what it is."""

    def __init__(self, recorded, seed, number):
        self.random = random.Random(f"{seed}/{number}")
        self.name = f"host{number:06}"
        inventory = copy.deepcopy(self.random.choice(recorded))
        inventory["origin"].update(machine=f"{self.random.getrandbits(128):032x}", collected=NO_TIME)
        self.inventory = self.rename(inventory)
        devices = [device["DeviceID"] for device in self.inventory["classes"]["KALDO_USBDevice"]]
        self.devices = devices
        self.unplugged = {device for device in devices if self.random.random() < 0.2}
        self.parts = None

    def rename(self, inventory):
        """The inventory with this machine's name, and with devices of its own; root hubs have their addresses."""
        for device in inventory["classes"]["KALDO_USBDevice"]:
            model = f" {self.random.choice('ABCDEFGH')}{self.random.randrange(4)}"
            serial = f"{self.random.getrandbits(48):012X}"
            facts = [each for each in inventory["kernel"]["devices"] if each["device"] == device["DeviceID"]]
            for item, product, number in [(device, "Description", "SerialNumber"),
                                          *[(each, "product", "serial") for each in facts]]:
                if item[product] not in (None, UNKNOWN):
                    item[product] += model
                if item[number] not in (None, UNKNOWN):
                    item[number] = serial
        old = inventory["system"]["name"]
        text = json.dumps(inventory).replace(f'\\"{old}\\"', f'\\"{self.name}\\"').replace(f'"{old}"', f'"{self.name}"')
        return json.loads(text)

    def change(self):
        """Plugs a device in, or unplugs it."""
        if self.devices:
            self.unplugged ^= {self.random.choice(self.devices)}
        self.parts = None

    def report(self, seconds):
        """The inventory on one line, collected at that time."""
        if self.parts is None:
            text = json.dumps(self.plugged(), ensure_ascii=True, separators=(",", ":"))
            self.parts = text.split(NO_TIME)
        return time_text(seconds).join(self.parts)

    def plugged(self):
        """The inventory without the devices that are not plugged in."""
        classes = dict(self.inventory["classes"])
        kernel = dict(self.inventory["kernel"])
        gone = self.unplugged
        ports = {device["PortNumber"] for device in classes["KALDO_USBDevice"] if device["DeviceID"] in gone}
        classes["KALDO_USBDevice"] = [each for each in classes["KALDO_USBDevice"] if each["DeviceID"] not in gone]
        classes["KALDO_USBConnection"] = [
            each for each in classes["KALDO_USBConnection"]
            if not any(f'DeviceID="{device}"' in each["Dependent"] for device in gone)]
        kernel["devices"] = [each for each in kernel["devices"] if each["device"] not in gone]
        kernel["ports"] = [{**each, "state": "free"} if each["port"] in ports else each for each in kernel["ports"]]
        return {**self.inventory, "classes": classes, "kernel": kernel}


def make_machines(arguments):
    """The machines of the fleet, or of one part of it."""
    recorded = [json.loads(line) for line in RECORDED.read_text(encoding="utf-8").splitlines()]
    part, parts = (int(number) for number in arguments.part.split("/"))
    return [Machine(recorded, arguments.seed, number) for number in range(part - 1, arguments.machines, parts)]


def parse_arguments():
    """The options."""
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--machines", type=int, default=100)
    parser.add_argument("--days", type=int, default=1)
    parser.add_argument("--until", type=parse_time, help="when the last day ends, as inventories write it; now without it",
                        default=int(datetime.datetime.now().timestamp()))
    parser.add_argument("--changes", type=float, default=0.01, help="the share of the machines that change on a day")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--part", default="1/1", help="2/4 is the second quarter of the machines")
    return parser.parse_args()


def main():
    arguments = parse_arguments()
    machines = make_machines(arguments)
    for day in range(arguments.days):
        end = arguments.until - (arguments.days - 1 - day) * DAY
        for index, machine in enumerate(machines):
            if day > 0 and machine.random.random() < arguments.changes:
                machine.change()
            # All machines report within the last eight hours of the day.
            print(machine.report(end - 1 - index % (DAY // 3)))


if __name__ == "__main__":
    try:
        main()
    except BrokenPipeError:
        pass
