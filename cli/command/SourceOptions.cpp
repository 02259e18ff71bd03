#include "cli/command/SourceOptions.h"

#include "cli/diff/PropertyComparison.h"
#include "cli/option/Values.h"

namespace cli {

namespace {

const std::vector<Choice>& WayNames() {
  static const std::vector<Choice> names = {{"auto", "sysfs, where it is mounted"},
                                            {"sysfs", "what the kernel shows to everybody"},
                                            {"plugin", "the list that the plug-in finds"}};
  return names;
}

Source::Way WayOf(const std::string& name) {
  std::string known;
  StoreChoice(known, WayNames())(name);
  if (known == "sysfs") return Source::Way::kSysfs;
  return known == "plugin" ? Source::Way::kPlugin : Source::Way::kAuto;
}

}  // namespace

Option AsIsOption(bool& isAsIs) {
  return {.names = {"--as-is"},
          .help = "Read device lists unchanged",
          .manual = R"(Give the plug-in each device list unchanged.
Without this option, parents that
.Xr usb-devices 1
prints wrong are corrected, and two kinds of lines are left out: interfaces of a device
without a configuration, and lines that the plug-in would take for those of the next
device.)",
          .store = StoreTrue(isAsIs)};
}

Option WayOption(std::optional<Source::Way>& way) {
  return {.names = {"--source"},
          .value = "WAY",
          .help = "What to read this machine's devices from",
          .defaultValue = WayNames().front().name,
          .choices = WayNames(),
          .manual = R"(What to read the devices of this machine from:
.Cm sysfs
needs neither root nor another program;
.Cm plugin
leaves it to the plug-in, which looks for the list in
.Pa /proc/bus/usb/devices
and
.Pa /sys/kernel/debug/usb/devices ,
may try to mount usbfs, and else runs
.Xr usb-devices 1 ;
.Cm auto
is
.Cm sysfs
where
.Pa /sys
is mounted, and else
.Cm plugin .)",
          .store = [&way](const std::string& name) { way = WayOf(name); }};
}

Option IgnoreOption(std::vector<std::string>& ignored) {
  return {.names = {"--ignore"},
          .value = "PROPERTY",
          .help = "Do not compare this property",
          .choices = ChoicesOf(ComparedProperties()),
          .isRepeatable = true,
          .manual = R"(Do not compare this property.
May be given more than once; case does not matter.
The name is one of)",
          .store = [&ignored](const std::string& name) {
            ignored.push_back(NameOf(name, ComparedProperties()));
          }};
}

std::vector<Option> ListOptions(Source& source) {
  return {
      {.names = {"--system-name"},
       .value = "NAME",
       .help = "The system name of device lists and of this machine",
       .manual = R"(The name of the system in the keys of device lists and of this machine, as for
.Cm show .
JSON inventories keep their own names.)",
       .store = StoreText(source.systemName)},
      {.names = {"--plugin"},
       .value = "FILE",
       .help = "Read device lists and this machine with this plug-in module",
       .defaultValue = "the installed one",
       .manual = "Read device lists and this machine with this plug-in module instead of the installed one.",
       .store = StoreText(source.plugin)}};
}

std::vector<Option> MaskOptions(Source& source, KeyInput input) {
  const bool takesInput = input == KeyInput::kFileOrStandardInput;
  return {{.names = {"--mask-serials"},
           .help = "Print and log hashes instead of serial numbers",
           .manual = R"(Print and log hashes instead of serial numbers.
With the same key, equal serial numbers have equal hashes.
Root hubs keep their serial number, which is the address of their controller.
Hashes of version 1.0.0 do not compare with these.)",
           .store = StoreTrue(source.maskSerials)},
          {.names = {"--mask-key"},
           .value = "FILE",
           .help = std::string("Hash with this key, so that inventories with the same key compare") +
                   (takesInput ? "; - is standard input" : ""),
           .defaultValue = "a random key for each run",
           .requiredOption = "--mask-serials",
           .manual = std::string(R"(Read the key for
.Fl -mask-serials
from this file, so that inventories with the same key can be compared.)") +
                     (takesInput ? "\nA single dash is standard input." : "") + R"(
The key must have at least 16 bytes and be hard to guess, and other users must not
be able to read the file.
The command
.Ql umask 077; head -c 32 /dev/urandom > key
makes one.
The default is a random key for each run.)",
           .store = StoreText(source.maskKey)}};
}

std::vector<Option> SourceOptions(Source& source) {
  return {{.names = {"--devices"},
           .value = "FILE",
           .help = "Read this device list (a copy of /sys/kernel/debug/usb/devices or the output of "
                   "usb-devices) or saved JSON inventory; - is standard input",
           .defaultValue = "this machine's list",
           .manual = R"(Read this file instead of the device list of this machine.
It is a copy of
.Pa /sys/kernel/debug/usb/devices ,
the output of
.Xr usb-devices 1 ,
or a JSON inventory, as
.Fl -format Cm json
prints it.
No device of this machine is read, and no command is run.
A single dash is standard input.)",
           .store = StoreText(source.devices)},
          WayOption(source.way),
          AsIsOption(source.isAsIs),
          {.names = {"--no-limits"},
           .help = "Accept lists that are larger than those of any machine",
           .manual = R"(Accept lists with more ports and devices than any machine has.
Such a list can take minutes and gigabytes of memory.)",
           .store = StoreTrue(source.noLimits)},
          {.names = {"--system-name"},
           .value = "NAME",
           .help = "The system name in the keys",
           .defaultValue = "the host name, or the name of the file",
           .manual = R"(The name of the system in the instances' keys.
The default is the host name; for a list from
.Fl -devices ,
it is the name of the file without
.Pa .txt ,
.Pa .list
or
.Pa .log ,
and
.Li unknown
for standard input.
A JSON inventory keeps its own name.)",
           .store = StoreText(source.systemName)}};
}

Option PluginOption(std::string& path) {
  return {.names = {"--plugin"},
          .value = "FILE",
          .help = "Load this plug-in module",
          .defaultValue = "the installed one",
          .manual = "Load this plug-in module instead of the installed one.",
          .store = StoreText(path)};
}

}  // namespace cli
