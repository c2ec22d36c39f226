#!/bin/bash
# Usage: bash.sh COMPLETION LINE...
# What bash would offer at the end of each LINE: one candidate a line, and a line "== LINE" in front. For a line where
# it leaves the candidates to its own completion of names, that is (files) or (directories).
set -u
line_offers=
compopt() { line_offers=$2; }  # works only while a line is being edited
# shellcheck source=/dev/null
source "$1"
shift
complete -p cfgmig >/dev/null || exit 1
for line in "$@"; do
  echo "== $line"
  # As readline cuts a line, with the = and : of COMP_WORDBREAKS as words of their own.
  separated=${line//=/ = }
  separated=${separated//:/ : }
  read -ra COMP_WORDS <<<"$separated"
  [[ $line != *' ' ]] || COMP_WORDS+=('')
  COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
  COMP_LINE=$line
  COMP_POINT=${#line}
  line_offers=
  COMPREPLY=()
  _cfgmig cfgmig "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
  case $line_offers in
    default) echo '(files)' ;;
    dirnames) echo '(directories)' ;;
  esac
  [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}"
done
