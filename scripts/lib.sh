# Shared by the scripts: what the project needs installed, and how it is built. Sourced with the project's top
# folder as the current one.
# shellcheck shell=bash
# shellcheck disable=SC2034  # the lists are used by the scripts that source this

# What building the product and its tests takes on Debian 12.
BUILD_PACKAGES=(
  cmake g++ libboost-dev libboost-thread-dev libcli11-dev libfmt-dev libgmock-dev libgtest-dev libsmartcols-dev
  libxml2-dev libxml2-utils locales ninja-build nlohmann-json3-dev pkgconf python3
)
# What the slower checks take on top.
CHECK_PACKAGES=(clang-format clang-tidy shellcheck)

say() { printf '%s\n' "$*" >&2; }

# is_installed PACKAGE...: all of them are.
is_installed() {
  local states
  states=$(dpkg-query --show --showformat '${db:Status-Abbrev}\n' "$@" 2> /dev/null) || return 1
  ! grep --quiet --invert-match '^ii' <<< "$states"
}

# install_packages PACKAGE...: installs what is missing; does nothing, quickly, when nothing is.
install_packages() {
  local package missing=() as_root=()
  command -v dpkg-query > /dev/null || {
    say "This is no Debian system: install the equivalents of: $*"
    return 1
  }
  is_installed "$@" && return
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo > /dev/null || {
      say "Missing packages, and neither root nor sudo to install them. As root, run:"
      say "  apt-get install ${missing[*]}"
      return 1
    }
    as_root=(sudo)
  fi
  say "Installing ${missing[*]}"
  "${as_root[@]}" apt-get update --quiet=2 >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install --quiet=2 --yes --no-install-recommends "${missing[@]}" >&2
}

# build PRESET [TARGET...]: configures once and builds.
build() {
  local preset=$1
  shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >&2
  if [ $# -gt 0 ]; then
    cmake --build --preset "$preset" --target "$@" >&2
  else
    cmake --build --preset "$preset" >&2
  fi
}
