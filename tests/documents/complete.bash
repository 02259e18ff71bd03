#!/usr/bin/env bash
# Prints what the bash completion offers, one per line: complete.bash COMPLETION WORD...
# The last word is the one at the cursor.
set -u
# shellcheck disable=SC1090  # generated
source "$1"
shift
COMP_WORDS=(usbinfo "$@")
COMP_CWORD=$#
COMPREPLY=()
"$(complete -p usbinfo | sed 's/.* -F \([^ ]*\) .*/\1/')"
[ "${#COMPREPLY[@]}" -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
