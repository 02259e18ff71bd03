# Completion of usbinfo's command line for bash: subcommands, options, and what may follow each. Bash sources it when
# usbinfo is first completed; a test holds it against --help.
# shellcheck shell=bash

# _usbinfo_options SUBCOMMAND: its options.
_usbinfo_options() {
  case $1 in
    show) echo -h --help -V --version --devices --format -t -j --class -d -s --request --columns -v --verbose \
      --system-name --mask-serials --mask-key --output --plugin --color --log --log-level --log-format ;;
    schema) echo -h --help --format --output ;;
    diff) echo -h --help --format --color --output --plugin ;;
  esac
}

# _usbinfo_value SUBCOMMAND OPTION: the words that may follow, or FILE, CLASS or CLASSES for what these are, ANY for
# what cannot be told; nothing after an option without a value.
_usbinfo_value() {
  case $1:$2 in
    show:--format) echo tree table json jsonl cimxml mof dot html ;;
    schema:--format) echo mof json ;;
    diff:--format) echo text json ;;
    show:--color | diff:--color) echo auto always never ;;
    show:--log-level) echo error warning status debug verbose ;;
    show:--log-format) echo text json ;;
    show:--class) echo CLASS ;;
    show:--request) echo CLASSES ;;
    show:-d | show:-s | show:--columns | show:--system-name) echo ANY ;;
    show:--devices | show:--mask-key | show:--log | *:--output) echo FILE ;;
    show:--plugin | diff:--plugin) echo FILE ;;
  esac
}

# _usbinfo_words WORD...: offers those that begin like the word at the cursor.
_usbinfo_words() { mapfile -t COMPREPLY < <(compgen -W "$*" -- "$cur"); }

_usbinfo_files() {
  compopt -o filenames 2> /dev/null
  mapfile -t COMPREPLY < <(compgen -f -- "$cur")
}

# _usbinfo_follow VALUE: offers what _usbinfo_value told.
_usbinfo_follow() {
  local classes='KALDO_USBController KALDO_USBHub KALDO_USBPort KALDO_USBDevice KALDO_USBPortOnHub KALDO_USBConnection'
  case $1 in
    ANY) ;;
    FILE) _usbinfo_files ;;
    CLASS) _usbinfo_words "$classes" ;;
    CLASSES)
      # The names before the last comma stay.
      compopt -o nospace 2> /dev/null
      local before=
      [[ $cur != *,* ]] || before=${cur%,*},
      mapfile -t COMPREPLY < <(compgen -P "$before" -W "$classes" -- "${cur##*,}")
      ;;
    *) _usbinfo_words "$1" ;;
  esac
}

# _usbinfo_subcommand WORD...: the first that is one, and no option's value.
_usbinfo_subcommand() {
  local word value=
  for word in "$@"; do
    if [[ -z $value && $word =~ ^(show|schema|diff)$ ]]; then
      echo "$word"
      return
    fi
    [[ $word == = ]] || value=$(_usbinfo_value show "$word")
  done
}

_usbinfo() {
  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} subcommand value
  # Bash takes an equals sign for a word of its own.
  if [[ $cur == = ]]; then
    cur=
  elif [[ $before == = ]]; then
    before=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  subcommand=$(_usbinfo_subcommand "${COMP_WORDS[@]:1:COMP_CWORD-1}")
  value=$(_usbinfo_value "${subcommand:-show}" "$before")
  COMPREPLY=()
  if [[ -n $value ]]; then
    _usbinfo_follow "$value"
  elif [[ $cur == -* ]]; then
    _usbinfo_words "$(_usbinfo_options "${subcommand:-show}")"
  elif [[ $subcommand == diff ]]; then
    _usbinfo_files
  elif [[ -z $subcommand ]]; then
    _usbinfo_words show schema diff
  fi
}

complete -F _usbinfo usbinfo
