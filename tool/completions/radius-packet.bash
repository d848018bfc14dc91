# Completion of radius-packet in bash. Commands, options and the kinds of their values are those that
# the program's own help names.

# _radius_packet_help COMMAND...: a line each, "command NAME" or "option NAME VALUE".
_radius_packet_help() {
  "${COMP_WORDS[0]}" "$@" --help 2>/dev/null | awk '
    /^[^ ]/ { section = $1 }
    section == "Subcommands:" && /^  [a-z]/ { print "command", $1 }
    section == "Options:" && /^  -/ {
      count = split($1, names, ",")
      for (at = 1; at <= count; ++at) print "option", names[at], substr($0, 3 + length($1) + 1)
    }'
}

# _radius_packet_values VALUE WORD: completes the value of an option.
_radius_packet_values() {
  case $1 in
    FILE* | TOPFILE*) mapfile -t COMPREPLY < <(compgen -f -- "$2") ;;
    *:\{*) mapfile -t COMPREPLY < <(compgen -W "$(sed 's/[^{]*{\([^}]*\)}.*/\1/; y/,/ /' <<<"$1")" -- "$2") ;;
    *) COMPREPLY=() ;;
  esac
}

_radius_packet() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
  local word kind name value options=() commands=() below=()
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      -*) ;;
      *)
        commands+=("$word")
        [ "$word" = dictionary ] || break
        ;;
    esac
  done
  while read -r kind name value; do
    if [ "$kind $name" = "option $previous" ] && [[ ${value%% *} =~ ^[A-Z][A-Z=]+(:.*)?$ ]]; then
      _radius_packet_values "$value" "$current"
      return
    fi
    if [ "$kind" = option ]; then options+=("$name"); else below+=("$name"); fi
  done < <(_radius_packet_help "${commands[@]}")
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${options[*]}" -- "$current")
  elif [ ${#below[@]} -gt 0 ]; then
    mapfile -t COMPREPLY < <(compgen -W "${below[*]}" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
  fi
}

complete -o filenames -F _radius_packet radius-packet
