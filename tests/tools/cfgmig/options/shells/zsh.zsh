#!/bin/zsh -f
# Usage: zsh -f zsh.zsh DIRECTORY LINE...
# What zsh would offer at the end of each LINE, with the completion of DIRECTORY in fpath: one candidate a line, and a
# line "== LINE" in front. zsh completes only while a line is being edited on a terminal, so that another zsh gets one
# and asks itself when its first line begins.
if [[ $1 != --inner ]]; then
  zmodload zsh/zpty || exit 1
  answer=$(mktemp) || exit 1
  zpty shell "zsh -f -i" || exit 1
  zpty -w shell " ANSWER=${(q)answer}; source ${(q)0:A} --inner ${(j: :)${(@q)@}}"
  while zpty -r shell output 2>/dev/null; do :; done
  zpty -d shell
  cat "$answer"
  rm -f "$answer"
  exit
fi

shift
fpath=($1 $fpath)
shift
asked=("$@")
autoload -Uz compinit && compinit -u -D
zstyle ':completion:*' matcher-list ''

compadd() {
  # With -O, -A or -D a function of the completion system asks something for itself.
  if (( ${@[(I)-[OAD]*]} )); then
    builtin compadd "$@"
    return
  fi
  local -a matches
  builtin compadd -O matches "$@"
  candidates+=($matches)
  builtin compadd "$@"
}

offer() { candidates=(); _main_complete; }
zle -C offer list-choices offer

zle-line-init() {
  local line
  for line in $asked; do
    BUFFER=$line
    CURSOR=$#BUFFER
    zle offer
    print -rl -- "== $line" $candidates >>$ANSWER
  done
  exit
}
zle -N zle-line-init
