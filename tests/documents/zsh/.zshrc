# Makes an interactive zsh complete one line and end: COMPLETE_LINE is the line, COMPLETE_OFFERS the file that gets
# what was offered, one per line, COMPLETE_FOLDER the folder of the functions. It needs a terminal.
fpath=($COMPLETE_FOLDER $fpath)
: > $COMPLETE_OFFERS
autoload -Uz compinit
compinit -D -u
zstyle ':completion:*' completer _complete
# The screen would not hold a list of all options, and zsh would ask.
unsetopt autolist automenu

# What is added for good is noted down; what is only counted or filtered is let through.
compadd() {
  local -a flags=(${@[1,(i)(-|--)]})
  if (( ! ${flags[(I)-*[OAD]*]} )); then
    local -a matches
    builtin compadd -O matches "$@"
    (( ! $#matches )) || print -rl -- $matches >> $COMPLETE_OFFERS
  fi
  builtin compadd "$@"
}

zle-line-init() {
  BUFFER=$COMPLETE_LINE
  CURSOR=$#BUFFER
  zle complete-word
  BUFFER=exit
  zle accept-line
}
zle -N zle-line-init
