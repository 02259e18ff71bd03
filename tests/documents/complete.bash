#!/usr/bin/env bash
# Prints what the bash completion offers, one per line: complete.bash COMPLETION COMMAND WORD...
# The last word is the one at the cursor.
set -u
# shellcheck disable=SC1090  # generated
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
COMPREPLY=()
"$(complete -p "$1" | sed 's/.* -F \([^ ]*\) .*/\1/')"
[ "${#COMPREPLY[@]}" -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
