#!/usr/bin/env bash
# The binary interface: what callers compiled against an older libvorel.so rely on. abi/libvorel.abi
# holds sizes, members and signatures of everything exported, abi/records.abi the records that are
# passed untyped. They are x86-64's; 64-bit Arm must have the same.
#   scripts/abi.sh check     the library as built now still has it, on both
#   scripts/abi.sh update    writes it anew, after a deliberate change
set -euo pipefail
cd "$(dirname "$0")/.."

# dump LIBRARY OUTPUT
dump() {
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --drop-undefined-syms \
    --exported-interfaces-only --drop-private-types --headers-dir include --out-file "$2" "$1"
}

# build PRESET
build() {
  if ! { cmake --preset "$1" && cmake --build --preset "$1" --target vorel vorel_records; } \
    >"build/$1.log" 2>&1; then
    tail -n 60 "build/$1.log" >&2
    exit 1
  fi
}

[ $# -eq 1 ] || { sed -n '5,6s/^# \{0,1\}//p' "$0"; exit 1; }
mkdir -p build out
build abi

case $1 in
  update)
    dump build/abi/libvorel.so abi/libvorel.abi
    dump build/abi/libvorel_records.so abi/records.abi
    echo "abi: written; read the difference before you commit it"
    ;;
  check)
    build abi-aarch64
    faults=0
    for preset in abi abi-aarch64; do
      for name in libvorel records; do
        library=build/$preset/libvorel.so
        if [ $name = records ]; then library=build/$preset/libvorel_records.so; fi
        dump "$library" "out/$preset-$name.abi"
        abidiff --no-show-locs --no-architecture abi/$name.abi "out/$preset-$name.abi" || faults=1
      done
    done
    if [ $faults -ne 0 ]; then
      echo "abi: differs from abi/*.abi. If that is meant: scripts/abi.sh update, and a line in" \
        "CHANGELOG.md; an incompatible change is a new major version" >&2
      exit 1
    fi
    echo "abi: as recorded, on x86-64 and on 64-bit Arm"
    ;;
  *) echo "abi: unknown action $1" >&2; exit 1 ;;
esac
