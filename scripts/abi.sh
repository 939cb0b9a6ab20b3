#!/usr/bin/env bash
# The binary interface: what callers compiled against an older libvorel.so rely on. abi/libvorel.abi
# holds sizes, members and signatures of everything exported (x86-64; 64-bit Arm Linux has the same).
#   scripts/abi.sh check     the library as built now still has it
#   scripts/abi.sh update    writes it anew, after a deliberate change
set -euo pipefail
cd "$(dirname "$0")/.."
dump=abi/libvorel.abi

current() {
  if ! { cmake --preset abi && cmake --build --preset abi --target vorel; } >build/abi.log 2>&1; then
    tail -n 60 build/abi.log >&2
    return 1
  fi
  abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-elf-needed --drop-undefined-syms \
    --exported-interfaces-only --drop-private-types --headers-dir include \
    --out-file "$1" build/abi/libvorel.so
}

[ $# -eq 1 ] || { sed -n '4,5s/^# \{0,1\}//p' "$0"; exit 1; }
mkdir -p build out
case $1 in
  update) current "$dump" && echo "abi: wrote $dump; read the difference before you commit it" ;;
  check)
    current out/libvorel.abi
    if ! abidiff --no-show-locs "$dump" out/libvorel.abi; then
      echo "abi: differs from $dump. If that is meant: scripts/abi.sh update, and a line in" \
        "CHANGELOG.md; an incompatible change is a new major version" >&2
      exit 1
    fi
    echo "abi: as recorded"
    ;;
  *) echo "abi: unknown action $1" >&2; exit 1 ;;
esac
