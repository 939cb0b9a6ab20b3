#!/usr/bin/env bash
# Runs every fuzz target for some seconds, starting from the tree's tuning files and from what earlier
# runs found (out/fuzz/<target>). A find is written there and ends the run with status 1.
#   scripts/run_fuzz.sh BUILD_DIR SECONDS
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
seconds=$2

for target in tuning run; do
  found=out/fuzz/$target
  mkdir -p "$found"
  seeds=()
  if [ "$target" = tuning ]; then
    # The words of tuning files, so that mutations meet them.
    grep -ohE '"[A-Za-z0-9_]+"' tuning/samples/*.json | sort -u | sed 's/"/\\"/g; s/.*/"&"/' >out/fuzz/words
    seeds=(-dict=out/fuzz/words tuning/samples tests/tuning/data)
  fi
  log=out/fuzz/$target.log
  # Long inputs from the start: short ones hold no frame that the library accepts.
  if ! "$build/fuzz/${target}_fuzz" -len_control=0 -max_len=8192 -max_total_time="$seconds" \
    -timeout=20 -rss_limit_mb=2048 -artifact_prefix="out/fuzz/$target-" \
    "$found" "${seeds[@]}" >"$log" 2>&1; then
    grep -vE '^#|NEW_(FUNC|PC)' "$log" | tail -n 60
    echo "fuzz: $target found a fault; run $build/fuzz/${target}_fuzz on the file named above" >&2
    exit 1
  fi
  sed -nE "s/^#([0-9]+)\tDONE +cov: ([0-9]+) .*/fuzz: $target, \1 inputs, \2 edges reached/p" "$log"
done
