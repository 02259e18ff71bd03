# Shared by the scripts: what the project needs installed, and how it is built. Sourced with the project's top
# folder as the current one.
# shellcheck shell=bash
# shellcheck disable=SC2034  # the lists are used by the scripts that source this

# debian_clang: the version of this Debian's clang, which some packages are named after.
debian_clang() {
  case $(. /etc/os-release && echo "${VERSION_ID:-}") in
    12) echo 14 ;;
    *) echo 19 ;;
  esac
}

# The libraries of the product and its tests, which a cross build needs for the other architecture.
LIBRARY_PACKAGES=(
  libboost-dev libboost-thread-dev libfmt-dev libgmock-dev libgtest-dev libsoci-dev libsodium-dev libudev-dev
  libxml2-dev
)
# What a build takes besides, the same on every architecture.
TOOL_PACKAGES=(cmake g++ libcli11-dev locales ninja-build nlohmann-json3-dev pkgconf python3
  tao-pegtl-dev)
# What building the product and its tests takes on Debian 12 and 13.
BUILD_PACKAGES=("${LIBRARY_PACKAGES[@]}" "${TOOL_PACKAGES[@]}")
# What running the tests takes on top: the programs that read what the command writes.
TEST_PACKAGES=(ansible-core clustershell fish graphviz groff-base jq libxml2-utils mandoc openssh-client openssh-server openssl
  postgresql prometheus prometheus-node-exporter python3-jsonschema rsyslog rsyslog-relp systemd zsh)
# What the tests with the label "page" take on top of those: a browser.
PAGE_PACKAGES=(chromium chromium-driver python3-selenium)
# What the slower checks take on top.
CHECK_PACKAGES=(clang clang-format clang-tidy pyflakes3 shellcheck)
# What measuring the coverage takes on top of the first ones.
COVERAGE_PACKAGES=(gcovr)
# What the fuzzers take on top of the first ones; without llvm's symbolizer, reports and known leaks have no names.
FUZZ_PACKAGES=(clang "libclang-rt-$(debian_clang)-dev" llvm)
# What the test on a real kernel takes on top of the first ones.
VM_PACKAGES=(busybox-static cpio kmod qemu-system-x86 usbutils)
# The tools that scripts/bench measures the command beside, and the list of names that they have in common.
BENCH_PACKAGES=(hwinfo lshw udev usb.ids usbutils)
# What building the Debian packages takes on top of the first ones.
PACKAGE_PACKAGES=(dpkg-dev fakeroot file)
# What checking them takes on top of that.
PACKAGE_CHECK_PACKAGES=(lintian man-db mandoc postgresql)

say() { printf '%s\n' "$*" >&2; }

# is_installed PACKAGE...: all of them are.
is_installed() {
  local states
  states=$(dpkg-query --show --showformat '${db:Status-Abbrev}\n' "$@" 2> /dev/null) || return 1
  ! grep --quiet --invert-match '^ii' <<< "$states"
}

can_be_root() { [ "$(id -u)" -eq 0 ] || command -v sudo > /dev/null; }

# as_root COMMAND...: runs it as root, through sudo for others.
as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  else
    sudo "$@"
  fi
}

# services: those on this machine that packages for the tests bring, a unit file each.
services() {
  ls /usr/lib/systemd/system/{postgresql,prometheus,prometheus-node-exporter,rsyslog,ssh}.service 2> /dev/null
}

# apt_install PACKAGE...: no service of theirs starts, now or with the machine; the tests start programs of their own.
apt_install() {
  local before service
  before=$(services || true)
  # shellcheck disable=SC2016  # expanded by the shell that root runs
  as_root sh -c '
    policy=/usr/sbin/policy-rc.d
    trap "exit 1" HUP INT TERM
    [ -e "$policy" ] || {
      trap "rm -f $policy" EXIT
      printf "#!/bin/sh\nexit 101\n" > "$policy"
      chmod 755 "$policy"
    }
    DEBIAN_FRONTEND=noninteractive apt-get install --quiet=2 --yes --no-install-recommends "$@"
  ' sh "$@" >&2
  for service in $(services | grep --invert-match --line-regexp --fixed-strings "$before"); do
    as_root systemctl --quiet disable "$(basename "$service")"
  done
}

# install_packages PACKAGE...: installs what is missing; does nothing, quickly, when nothing is.
install_packages() {
  local package missing=()
  command -v dpkg-query > /dev/null || {
    say "This is no Debian system: install the equivalents of: $*"
    return 1
  }
  is_installed "$@" && return
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  can_be_root || {
    say "Missing packages, and neither root nor sudo to install them. As root, run:"
    say "  apt-get install ${missing[*]}"
    return 1
  }
  say "Installing ${missing[*]}"
  as_root apt-get update --quiet=2 >&2
  apt_install "${missing[@]}"
}

# build PRESET [TARGET...]: configures once, with the options in CONFIGURE_OPTIONS if there are any, and builds.
build() {
  local preset=$1 options
  shift
  read -ra options <<< "${CONFIGURE_OPTIONS:-}"
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" "${options[@]}" >&2
  if [ $# -gt 0 ]; then
    cmake --build --preset "$preset" --target "$@" >&2
  else
    cmake --build --preset "$preset" >&2
  fi
}
