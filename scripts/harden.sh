#!/usr/bin/env bash
# Tries what a library in a camera process must stand, row by row of docs/reliability.md.
#   scripts/harden.sh [ROW...]      runs all rows, or those named (files of harden/)
#   scripts/harden.sh --list        the rows and what they try
#   scripts/harden.sh --table       the table of the rows that ran last in out/harden/, as Markdown
# HARDEN=short runs each row's short form, HARDEN=long (default) the whole. As many rows run beside
# each other as there are processors; those with a line "# alone: REASON" run first, one by one.
# A row's output goes to out/harden/ROW.log; its last line is "result: TEXT".
set -uo pipefail
cd "$(dirname "$0")/.." || exit

# In the order of the table.
rows=(allocations system_calls fuzzing memory_and_threads pages same_bytes soak latency command_faults
  mutation static_analysis supply arm_host)
# Those that take longest, which begin first so that none is left alone at the end.
longest=(fuzzing arm_host mutation pages)
form=${HARDEN:-long}

# The row's line "# tries: TEXT".
what() { sed -n 's/^# tries: //p' "harden/$1" | head -n 1; }

is_alone() { grep -q '^# alone: ' "harden/$1"; }

list() {
  for row in "${rows[@]}"; do
    if [ -x "harden/$row" ]; then printf '%-20s %s\n' "$row" "$(what "$row")"; fi
  done
}

table() {
  printf '| row | what is tried | result | form | time | commit | date |\n'
  printf '|:--|:--|:--|:--|--:|:--|:--|\n'
  for row in "${rows[@]}"; do
    [ -f "out/harden/$row.row" ] || continue
    IFS=$'\t' read -r form_run seconds commit date state <"out/harden/$row.row"
    result=$(sed -n 's/^result: //p' "out/harden/$row.log" | tail -n 1)
    if [ "$state" != passed ]; then result="**$state**: $result"; fi
    printf '| %s | %s | %s | %s | %d min %02d s | %s | %s |\n' "$row" "$(what "$row")" "$result" \
      "$form_run" $((seconds / 60)) $((seconds % 60)) "$commit" "$date"
  done
}

run() {
  local row=$1 start=$SECONDS state=passed
  echo "== $row ($form): $(what "$row")"
  HARDEN=$form "harden/$row" </dev/null >"out/harden/$row.log" 2>&1 || state=failed
  grep -q '^result: ' "out/harden/$row.log" || state=failed
  printf '%s\t%s\t%s\t%s\t%s\n' "$form" $((SECONDS - start)) "$(git rev-parse --short HEAD)" \
    "$(date +%F)" "$state" >"out/harden/$row.row"
  if [ "$state" = failed ]; then tail -n 40 "out/harden/$row.log"; fi
  echo "$row: $state in $((SECONDS - start)) s; $(sed -n 's/^result: //p' "out/harden/$row.log" | tail -n 1)"
  [ "$state" = passed ]
}

case ${1:-} in
  -h | --help) sed -n '2,9s/^# \{0,1\}//p' "$0"; exit ;;
  --list) list; exit ;;
  --table) table; exit ;;
esac
case $form in short | long) ;; *) echo "harden: HARDEN is short or long, not $form" >&2; exit 1 ;; esac

if [ $# -eq 0 ]; then
  for row in "${rows[@]}"; do if [ -x "harden/$row" ]; then set -- "$@" "$row"; fi; done
fi
for row in "$@"; do
  [ -x "harden/$row" ] || { echo "harden: no row named $row" >&2; list >&2; exit 1; }
done
mkdir -p out/harden

# Those named, in the order in which they begin.
alone=()
beside=()
for row in "${longest[@]}" "${rows[@]}"; do
  case " $* " in *" $row "*) ;; *) continue ;; esac
  case " ${alone[*]} ${beside[*]} " in *" $row "*) continue ;; esac
  if is_alone "$row"; then alone+=("$row"); else beside+=("$row"); fi
done

# Each row is a process group, so that an interrupt ends all that it has begun.
set -m
interrupt() {
  for group in $(jobs -p); do kill -- "-$group" 2>/dev/null; done
  echo 'harden: interrupted' >&2
  exit 1
}
trap interrupt INT TERM HUP

failed=0
running=0
wait_for_one() {
  wait -n || failed=$((failed + 1))
  running=$((running - 1))
}
# Beside so many others, at most.
start() {
  while [ $running -gt "$1" ]; do wait_for_one; done
  run "$2" &
  running=$((running + 1))
}
for row in "${alone[@]}"; do start 0 "$row"; done
if [ $running -gt 0 ]; then wait_for_one; fi
for row in "${beside[@]}"; do start $(($(nproc) - 1)) "$row"; done
while [ $running -gt 0 ]; do wait_for_one; done

time=$(printf '%d min %02d s' $((SECONDS / 60)) $((SECONDS % 60)))
if [ $failed -gt 0 ]; then
  echo "harden: $failed of $# rows failed, in $time"
  exit 1
fi
echo "harden: $# rows passed in $time"
