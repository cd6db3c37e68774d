# Completes itof's commands, options and choices in bash; everything else completes to file names. The program that is
# being typed names the candidates itself.
_itof() {
  mapfile -t COMPREPLY < <("${1/#\~/$HOME}" --complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -o default -F _itof itof
