# Completion for bash. Verbs, options and their values come from the command's own help, so that
# they are always those of the program that is installed.

_vorel_verbs() {
  "$1" --help 2>/dev/null | sed -n '/^Verbs:/,/^$/s/^  \([a-z]\{1,\}\) .*/\1/p'
}

_vorel_options() {
  "$1" "$2" --help 2>/dev/null | sed -n 's/^  \(-[^ ]*\).*/\1/p' | tr ',' '\n'
}

# The words that an option takes, when its help shows them as this|that.
_vorel_values() {
  "$1" "$2" --help 2>/dev/null |
    sed -n "s/^  \(-[a-z],\)\{0,1\}$3\(,--[a-z-]*\)\{0,1\} \([^ ]*|[^ ]*\).*/\3/p" |
    tr '|' '\n' | grep -x '[a-z0-9]*'
}

_vorel() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} verb=${COMP_WORDS[1]}
  local choices=
  if ((COMP_CWORD == 1)); then
    choices=$(_vorel_verbs "$1")' --help --version'
  elif [[ $word == -* ]]; then
    choices=$(_vorel_options "$1" "$verb")
  elif [[ $before == -* ]]; then
    choices=$(_vorel_values "$1" "$verb" "$before")
  fi
  # Without choices readline completes file names.
  mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}

complete -o default -F _vorel vorel
