#!/usr/bin/env bash
# Runs fuzz targets, two at a time, starting from the corpus (fuzz/corpus), from files of the tree and
# from what earlier runs found (out/fuzz/TARGET). A find is written to out/fuzz/ and ends its target;
# the status is then 1.
#   scripts/run_fuzz.sh BUILD_DIR SECONDS [TARGET...]     all targets unless some are named
#   FUZZ_RUNS=N scripts/run_fuzz.sh ...                   so many inputs each instead of seconds
set -uo pipefail
cd "$(dirname "$0")/.." || exit
build=$1
seconds=$2
shift 2
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in fuzz/*_fuzz.cpp; do targets+=("$(basename "$source" _fuzz.cpp)"); done
fi

# The words of tuning files, so that mutations meet them.
write_dictionary() {
  grep -ohE '"[A-Za-z0-9_]+"' tuning/samples/*.json | sort -u | sed 's/"/\\"/g; s/.*/"&"/' >out/fuzz/words
}

# Files of the tree that a target starts from, and its own options. Frames get long inputs from the
# start: short ones hold none that the library accepts.
options_of() {
  case $1 in
    tuning | check) echo -dict=out/fuzz/words -max_len=4096 tuning/samples out/fuzz/tunings ;;
    tuned_frame | run) echo -len_control=0 -max_len=1024 ;;
    jpeg) echo -max_len=4096 tests/tools/data ;;
    kernels) echo -max_len=128 ;;
    doors) echo -max_len=512 ;;
    *) echo -max_len=2048 ;;
  esac
}

run_target() {
  local target=$1 log=out/fuzz/$1.log found=out/fuzz/$1 limit=-max_total_time=$seconds options
  if [ -n "${FUZZ_RUNS:-}" ]; then limit=-runs=$FUZZ_RUNS; fi
  read -ra options < <(options_of "$target")
  mkdir -p "$found"
  if [ -d "fuzz/corpus/$target" ]; then options+=("fuzz/corpus/$target"); fi
  # What a reader says about its inputs is of no use here.
  if ! "$build/fuzz/${target}_fuzz" "$limit" -close_fd_mask=2 -timeout=60 -rss_limit_mb=3000 \
    -artifact_prefix="out/fuzz/$target-" "$found" "${options[@]}" >"$log" 2>&1; then
    grep -vE '^#|NEW_(FUNC|PC)' "$log" | tail -n 60
    echo "fuzz: $target found a fault; run $build/fuzz/${target}_fuzz on the file named above" >&2
    return 1
  fi
  sed -nE "s/^#([0-9]+)\tDONE +cov: ([0-9]+) .* exec\/s: ([0-9]+) .*/fuzz: $target, \1 inputs, \2 edges reached, \3 a second/p" "$log"
}

mkdir -p out/fuzz/tunings
for folder in tests/tuning/data/*/; do
  if [ -f "${folder}input.json" ]; then cp "${folder}input.json" "out/fuzz/tunings/$(basename "$folder")"; fi
done
write_dictionary
failed=0
running=0
for target in "${targets[@]}"; do
  if [ "$running" -ge 2 ]; then wait -n || failed=1; running=$((running - 1)); fi
  run_target "$target" &
  running=$((running + 1))
done
while [ "$running" -gt 0 ]; do wait -n || failed=1; running=$((running - 1)); done
exit $failed
