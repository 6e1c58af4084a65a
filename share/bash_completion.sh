# Completion of `chanplan` and `handheld-simulator` for bash. What there is to complete is taken from their help, so that
# it is never another program's.

# _chanplan_words WORDS WORD: those of WORDS that begin with WORD
_chanplan_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

# _chanplan_files WORD EXTENSION...: folders, and files that have one of these
_chanplan_files() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(
    for extension in "${@:2}"; do compgen -f -X "!*.$extension" -- "$1"; done
    compgen -d -- "$1"
  )
}

# _chanplan_value HELP OPTION: what its value may be, such as TEXT:{text,json}; nothing when it takes none
_chanplan_value() {
  sed -nE "s/^  (-[a-z],)?$2 ([A-Z][^ ]*).*/\2/p" <<<"$1" | grep -v '^Needs:'
}

# _chanplan_argument HELP COMMAND INDEX WORD: the argument of this index
_chanplan_argument() {
  local names index=$3
  read -ra names < <(sed -nE 's/^Usage: .*\[OPTIONS\] ?//p' <<<"$1")
  [[ ${names[*]} == *... && $index -ge ${#names[@]} ]] && index=$((${#names[@]} - 1))
  case $2/${names[index]-} in
    */) ;;
    */PORT) _chanplan_words "$(echo {1..6} $(compgen -G '/dev/tty[UA][SC][BM]*') $(compgen -G '/dev/serial/by-id/*'))" "$4" ;;
    report/OUT) _chanplan_files "$4" htm html ;;
    print/OUT) _chanplan_files "$4" pdf ;;
    chart/OUT) _chanplan_files "$4" svg ;;
    *) _chanplan_files "$4" sig dgc ;;
  esac
}

_chanplan() {
  local program=${1/#\~/$HOME} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local help command="" arguments=0 value="" index
  COMPREPLY=()
  help=$("$program" --help 2>/dev/null) || return
  for ((index = 1; index < COMP_CWORD; ++index)); do
    case ${COMP_WORDS[index]} in
      =) ((++index)) ;;
      -?*) [[ ${COMP_WORDS[index + 1]-} != = && $(_chanplan_value "$help" "${COMP_WORDS[index]}") ]] && ((++index)) ;;
      *)
        if [[ $help != *$'\nSubcommands:'* ]]; then
          ((++arguments))
        else
          command=${COMP_WORDS[index]}
          help=$("$program" "$command" --help 2>/dev/null) || return
        fi
        ;;
    esac
  done
  # --format=json comes as three words.
  [[ $before == = ]] && before=${COMP_WORDS[COMP_CWORD - 2]}
  [[ $word == = ]] && word=""
  [[ $before == --?* ]] && value=$(_chanplan_value "$help" "$before")
  case $value/$word in
    *:{*}/*) _chanplan_words "$(tr '{},' ' ' <<<"${value#*:}")" "$word" ;;
    KIND*/*) _chanplan_words "$(sed -nE '/^Faults:/,$ s/^  ([a-z-]+) .*/\1/p' <<<"$help")" "$word" ;;
    FILE.sig/*) _chanplan_files "$word" sig dgc ;;
    ?*/*) ;;
    /-*) _chanplan_words "$(sed -nE 's/^  (-[a-z],)?(--[a-z-]+).*/\2/p' <<<"$help")" "$word" ;;
    *)
      if [[ $help == *$'\nSubcommands:'* ]]; then
        _chanplan_words "$(sed -nE '/^Subcommands:/,$ s/^  ([a-z-]+) .*/\1/p' <<<"$help")" "$word"
      else
        _chanplan_argument "$help" "$command" "$arguments" "$word"
      fi
      ;;
  esac
}

# Where nothing is known, names of files: /tmp/unit is a port, too.
complete -o bashdefault -o default -F _chanplan chanplan handheld-simulator
