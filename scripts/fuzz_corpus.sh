#!/usr/bin/env bash
# Makes fuzz/corpus anew, from what it holds and what runs of scripts/run_fuzz.sh have found
# (out/fuzz): as few inputs as reach what all of these reach.
#   scripts/fuzz_corpus.sh BUILD_DIR [TARGET...]     all targets unless some are named
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
shift
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for source in fuzz/*_fuzz.cpp; do targets+=("$(basename "$source" _fuzz.cpp)"); done
fi

for target in "${targets[@]}"; do
  kept=fuzz/corpus/$target
  fresh=$(mktemp -d)
  folders=()
  for folder in "$kept" "out/fuzz/$target"; do
    if [ -d "$folder" ]; then folders+=("$folder"); fi
  done
  # How often an edge is taken is left out: that alone keeps ten times as many.
  "$build/fuzz/${target}_fuzz" -set_cover_merge=1 -use_counters=0 -timeout=60 -close_fd_mask=3 \
    "$fresh" "${folders[@]}" >out/fuzz/merge.log 2>&1 || { tail -n 30 out/fuzz/merge.log; exit 1; }
  rm -rf "$kept"
  mkdir -p "$kept"
  cp "$fresh"/* "$kept"
  rm -r "$fresh"
  echo "$kept: $(find "$kept" -type f | wc -l) inputs, $(du -sb "$kept" | cut -f1) bytes"
done
