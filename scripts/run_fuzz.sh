#!/usr/bin/env bash
# Runs every fuzz target for some seconds, starting from the tuning files of the tree and from what
# earlier runs found (out/fuzz/<target>). A find is written there and ends the run with status 1.
#   scripts/run_fuzz.sh BUILD_DIR SECONDS
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
seconds=$2

for target in tuning run; do
  found=out/fuzz/$target
  mkdir -p "$found"
  seeds=()
  if [ "$target" = tuning ]; then seeds=(tuning/samples); fi
  log=out/fuzz/$target.log
  if ! "$build/fuzz/${target}_fuzz" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=2048 \
    -artifact_prefix="out/fuzz/$target-" -print_final_stats=1 "$found" "${seeds[@]}" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz: $target found a fault; run $build/fuzz/${target}_fuzz on the file named above" >&2
    exit 1
  fi
  echo "fuzz: $target, $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs in $seconds s"
done
