"""The guest's file system: kernel modules, busybox and a shell, the command, the real usb-devices, and what else is
asked for.

Everything, libraries included, is copied from this machine and packed into one archive, which the kernel
unpacks into memory.
"""

import pathlib
import re
import shutil
import subprocess

import descriptors
import gadgets

HERE = pathlib.Path(__file__).resolve().parent
MODULE_LISTS = {
    "usb": ("xhci-pci", "ehci-pci", "ohci-pci", "uhci-hcd", "usbhid", "usb-storage"),
    "gadget": ("configfs", "libcomposite", "usb_f_acm", "usb_f_ecm", "usb_f_hid", "usb_f_mass_storage",
               "dummy_hcd"),
    "super_gadget": ("usb_f_ss_lb", "gadgetfs"),
    "virtual": ("vhci-hcd",),
    "drivers": ("cdc-acm", "cdc_ether", "evdev", "hid-generic", "sd_mod", "uas"),
}
FOLDERS = ("bin", "dev", "etc", "guest/modules", "opt/usbinfo", "proc", "root", "sys", "tmp", "usr/bin")
# Without it no character beyond ASCII can be shown.
LOCALE = pathlib.Path("/usr/lib/locale/C.utf8")
# Of the tests' own, for the test on a real kernel.
TEST_PROGRAMS = ("tests/record-sysfs", "tests/virtual-devices")
USERS = "root:x:0:0::/root:/bin/sh\nuser:x:1000:1000::/tmp:/bin/sh\n"


def pack(build, kernel, archive, work, built=TEST_PROGRAMS, installed=(), files=None, usbguard=None):
    """Pack the archive for the products in the folder build, with the modules of the unpacked kernel.

    It gets more that was built, by its path in that folder, programs and files of this machine at their places,
    files by the path that they get, and USBGuard's program from the folder that its packages are unpacked in.
    """
    root = pathlib.Path(work, "root")
    for folder in FOLDERS:
        (root / folder).mkdir(parents=True)
    (root / "etc/passwd").write_text(USERS, encoding="ascii")
    add_busybox(root)
    _add_programs(root, pathlib.Path(build), built, [pathlib.Path(file) for file in installed])
    if usbguard:
        _add_usbguard(root, pathlib.Path(usbguard).resolve())
    add_modules(root, pathlib.Path(kernel), MODULE_LISTS)
    shutil.copy("/usr/bin/usb-devices", root / "usr/bin")
    shutil.copytree(LOCALE, root / LOCALE.relative_to("/"))
    _add_guest(root)
    for path, file in (files or {}).items():
        shutil.copy(file, root / path)
    gadgets.write_folders(root / "guest/gadgets")
    descriptors.write_files(root / "guest/descriptors")
    write_archive(root, archive)


def _output(*command, **more):
    return subprocess.run(command, check=True, capture_output=True, text=True, **more).stdout


def add_busybox(root):
    """Add busybox with a link for each of its programs but the shell."""
    shutil.copy("/bin/busybox", root / "bin/busybox")
    for applet in _output("/bin/busybox", "--list").split():
        if applet not in ("busybox", "sh"):
            (root / "bin" / applet).symlink_to("busybox")


def _add_programs(root, build, built, installed):
    """The products go next to each other; libraries from elsewhere keep their places.

    Debian's own shell is included: busybox's would run its own mount without looking for one in the path.
    """
    programs = [*(build / name for name in ("usbinfo", "usbinfo-plugin.so", *built)), pathlib.Path("/bin/dash")]
    linked = [file for file in (*programs, *installed) if file.read_bytes().startswith(b"\x7fELF")]
    libraries = set(re.findall(r"(?:=> |^\t)(/\S+) \(", _output("ldd", *map(str, linked)), re.MULTILINE))
    for file in [*programs, *installed, *map(pathlib.Path, libraries)]:
        if build.resolve() in file.resolve().parents:
            target = root / "opt/usbinfo"
        else:
            target = root / str(file.parent).lstrip("/")
        target.mkdir(parents=True, exist_ok=True)
        shutil.copy(file, target / file.name)
    (root / "bin/sh").symlink_to("dash")


def _add_usbguard(root, folder):
    """The program and its libraries from its folder go next to each other; other libraries keep their places."""
    program = folder / "usr/bin/usbguard"
    libraries = ":".join(map(str, (folder / "usr/lib").glob("*-linux-gnu")))
    linked = _output("ldd", str(program), env={"LD_LIBRARY_PATH": libraries, "PATH": "/usr/bin"})
    target = root / "opt/usbguard"
    target.mkdir(parents=True)
    for file in [program, *map(pathlib.Path, re.findall(r"(?:=> |^\t)(/\S+) \(", linked, re.MULTILINE))]:
        place = target if folder in file.parents else root / str(file.parent).lstrip("/")
        place.mkdir(parents=True, exist_ok=True)
        shutil.copy(file, place / file.name)


def add_modules(root, kernel, lists):
    """Copy the modules of each list and write the list, everything before what needs it, nothing twice."""
    release, = (kernel / "lib/modules").iterdir()
    loaded = set()
    for name, modules in lists.items():
        found = _output("/sbin/modprobe", "--dirname", str(kernel), "--set-version", release.name, "--config",
                        "/dev/null", "--show-depends", "--all", *modules)
        files = list(dict.fromkeys(re.findall(r"^insmod (\S+)", found, re.MULTILINE)))
        new = [pathlib.Path(file) for file in files if file not in loaded]
        for file in new:
            shutil.copy(file, root / "guest/modules")
        loaded.update(files)
        names = "".join(f"{file.name}\n" for file in new)
        (root / f"guest/modules/{name}.list").write_text(names, encoding="ascii")


def _add_guest(root):
    shutil.copytree(HERE / "guest", root / "guest", dirs_exist_ok=True)
    (root / "init").symlink_to("guest/init")


def write_archive(root, archive):
    """Pack the folder; everything in it belongs to root."""
    names = "".join(f"{path.relative_to(root)}\n" for path in sorted(root.rglob("*")))
    with open(archive, "wb") as output:
        subprocess.run(["cpio", "--create", "--format=newc", "--owner=+0:+0", "--quiet"], cwd=root,
                       check=True, input=names.encode(), stdout=output)
