#!/usr/bin/env bash
# The names that libvorel.so exports: abi/libvorel.map lists them, mangled, and the linker follows it.
#   scripts/exports.sh check BUILD_DIR    the built library exports the list, and the list holds
#                                         every name that the headers mark; a program that
#                                         declares them itself links
#   scripts/exports.sh update BUILD_DIR   writes the list anew from the marked names
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C
map=abi/libvorel.map

# Strong names of default visibility in the archive of all objects; templates of the C++ library and
# inline functions are weak.
marked() {
  llvm-readelf-19 --symbols --wide "$1/libvorel_static.a" |
    awk '$5 == "GLOBAL" && $6 == "DEFAULT" && $7 != "UND" && $7 != "Ndx" { print $8 }' | sort -u
}

exported() {
  llvm-nm-19 --dynamic --defined-only --format=just-symbols "$1" | sort -u
}

listed() {
  sed -n 's/^ \{4\}\([A-Za-z0-9_]*\);.*/\1/p' "$map" | sort -u
}

write_map() {
  echo "# The names that libvorel.so exports. After a deliberate change: scripts/exports.sh update BUILD_DIR"
  echo "{"
  echo "  global:"
  while read -r name; do
    printf '    %s;  # %s\n' "$name" "$(llvm-cxxfilt-19 "$name")"
  done | sort -t '#' -k 2
  echo "  local:"
  echo "    *;"
  echo "};"
}

# Names of the second list that the first lacks, readable.
lacking() {
  comm -13 <(printf '%s\n' "$1") <(printf '%s\n' "$2") | sed '/^$/d' | llvm-cxxfilt-19
}

# Links abi/listed_declarations.cpp for the library's processor, without any other library.
link_listed() {
  local target=x86_64-linux-gnu
  [[ $(llvm-readelf-19 --file-header "$1") != *AArch64* ]] || target=aarch64-linux-gnu
  clang++-19 --target=$target -std=c++20 -Wall -Wextra -Werror -Wno-return-type-c-linkage -fPIC \
    -shared -nostdlib -fuse-ld=lld -Wl,-z,defs abi/listed_declarations.cpp "$1" -o /dev/null
}

report() {
  [ -z "$2" ] || { printf '%s:\n' "$1"; printf '%s\n' "$2" | sed 's/^/  /'; return 1; }
}

[ $# -eq 2 ] || { sed -n '3,6s/^# \{0,1\}//p' "$0"; exit 1; }
case $1 in
  update)
    marked "$2" | write_map >"$map.new"
    mv "$map.new" "$map"
    echo "exports: $(listed | wc -l) names in $map; read the difference before you commit it"
    ;;
  check)
    library=$(listed)
    faults=0
    report "exported, but not in $map" "$(lacking "$library" "$(exported "$2/libvorel.so")")" || faults=1
    report "in $map, but not exported" "$(lacking "$(exported "$2/libvorel.so")" "$library")" || faults=1
    report "marked in a header, but not in $map" "$(lacking "$library" "$(marked "$2")")" || faults=1
    link_listed "$2/libvorel.so" || faults=1
    [ $faults -eq 0 ] && echo "exports: $(listed | wc -l) names, as listed"
    exit $faults
    ;;
  *) echo "exports: unknown action $1" >&2; exit 1 ;;
esac
