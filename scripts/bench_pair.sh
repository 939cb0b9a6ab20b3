#!/usr/bin/env bash
# This tree's library against an older one, frame by frame in one process.
#   scripts/bench_pair.sh OLD [OPTION...]
# OLD is a commit, which is built below build/pair/, or another build's libvorel.so; the options are
# those of vorel_pair (--path, --size, --frames, --load).
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || { sed -n '3,5s/^# \{0,1\}//p' "$0"; exit 1; }
old=$1
shift
if [ ! -f "$old" ]; then
  commit=$(git rev-parse --verify --quiet --short=12 "$old^{commit}") ||
    { echo "bench-pair: $old is neither a file nor a commit" >&2; exit 1; }
  tree=build/pair/$commit
  if [ ! -f "$tree/CMakePresets.json" ]; then
    mkdir -p "$tree"
    git archive "$commit" | tar -x -C "$tree"
  fi
  if ! (cd "$tree" && cmake --preset host -DVOREL_BUILD_TESTS=OFF -DVOREL_BUILD_TOOLS=OFF \
    -DVOREL_BUILD_BENCH=OFF && cmake --build --preset host --target vorel) >"build/pair/$commit.log" 2>&1
  then
    tail -n 40 "build/pair/$commit.log"
    echo "bench-pair: $commit does not build; whole log in build/pair/$commit.log" >&2
    exit 1
  fi
  old=$tree/build/host/libvorel.so
fi
exec build/host/bench/vorel_pair build/host/libvorel.so "$old" "$@"
