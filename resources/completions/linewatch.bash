# Completes the commands, options, lines, feeds and settings of linewatch in bash.
_linewatch() {
  local line="${COMP_LINE:0:COMP_POINT}" word about start
  local -a words
  # COMP_WORDS would split FEED:ROUTE_ID at its colon.
  read -ra words <<<"$line"
  [[ "$line" != *[[:space:]] ]] || words+=("")
  start="${words[-1]}"
  COMPREPLY=()
  while IFS=$'\t' read -r word about; do
    # Bash puts the answer in the place of what follows the last colon.
    [[ "$start" != *:* ]] || word="${word#"${start%"${start##*:}"}"}"
    COMPREPLY+=("$(printf '%q' "$word")")
  done < <("${words[0]}" complete "${words[@]:1}" 2>/dev/null)
}
complete -o default -F _linewatch linewatch
