#!/usr/bin/env bash
# Builds the fuzz targets of the library so that they count lines, runs them over a corpus once and
# tells which lines of the library it does not reach (scripts/uncovered_lines.py).
#   scripts/fuzz_lines.sh [CORPUS]     fuzz/corpus unless another folder is named, as out/fuzz
set -uo pipefail
cd "$(dirname "$0")/.." || exit
corpus=${1:-fuzz/corpus}
build=build/fuzz-coverage
mkdir -p build out/fuzz
if ! { cmake --preset fuzz-coverage && cmake --build --preset fuzz-coverage; } >build/fuzz-coverage.log 2>&1; then
  tail -n 40 build/fuzz-coverage.log
  echo "fuzz_lines: preset fuzz-coverage does not build"
  exit 1
fi

rm -f $build/*.profraw
objects=()
for program in $build/fuzz/*_fuzz; do
  target=$(basename "$program" _fuzz)
  objects+=(-object "$program")
  inputs=("$corpus/$target")
  if [ "$target" = tuning ]; then inputs+=(tuning/samples); fi
  if ! LLVM_PROFILE_FILE=$build/$target.profraw "$program" -runs=0 -timeout=60 "${inputs[@]}" >out/fuzz/lines.log 2>&1; then
    tail -n 20 out/fuzz/lines.log
    echo "fuzz_lines: $target fails on an input of $corpus"
    exit 1
  fi
done
llvm-profdata-19 merge -o $build/all.profdata $build/*.profraw &&
  llvm-cov-19 export -format=lcov -instr-profile $build/all.profdata "${objects[@]:1}" >out/fuzz/lines.lcov 2>out/fuzz/lines.log ||
  { cat out/fuzz/lines.log; exit 1; }
scripts/uncovered_lines.py out/fuzz/lines.lcov fuzz/uncovered.txt
