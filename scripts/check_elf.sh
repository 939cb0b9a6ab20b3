#!/usr/bin/env bash
# How libvorel.so is linked: its name, hardening and page size; on Arm, branch protection of every
# object (the link itself can only carry the mark where the system's start-up files do).
#   scripts/check_elf.sh BUILD_DIR [SONAME]
set -euo pipefail
export LC_ALL=C
library=$1/libvorel.so
archive=$1/libvorel_static.a
soname=${2:-libvorel.so.1}
faults=0

fault() {
  echo "elf: $library: $*" >&2
  faults=$((faults + 1))
}

dynamic=$(llvm-readelf-19 --dynamic "$library")
segments=$(llvm-readelf-19 --program-headers --wide "$library")

grep -qF "Library soname: [$soname]" <<<"$dynamic" || fault "soname is not $soname"
grep -q 'FLAGS_1.*NOW' <<<"$dynamic" || fault "not bound at load time (-z now)"
if grep -q TEXTREL <<<"$dynamic"; then fault "has text relocations"; fi
grep -q 'GNU_RELRO' <<<"$segments" || fault "no read-only relocations (-z relro)"
grep -Eq 'GNU_STACK.* RW +0' <<<"$segments" || fault "no mark for a stack that is not executable"
if awk '$1 == "LOAD" && / RWE / { found = 1 } END { exit !found }' <<<"$segments"; then
  fault "a segment is writable and executable"
fi
if awk '$1 == "LOAD" && $NF != "0x4000" { found = 1 } END { exit !found }' <<<"$segments"; then
  fault "segments are not aligned to 16 KiB"
fi
allowed='liblog\.so(\.0)?|libcutils\.so(\.0)?|libjansson\.so(\.4)?|libstdc\+\+\.so\.6|libc\+\+\.so|libm\.so(\.6)?|libgcc_s\.so\.1|libc\.so(\.6)?|libdl\.so|ld-linux.*\.so\.[12]'
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | grep -vxE "$allowed" || true)
[ -z "$needed" ] || fault "needs $needed"

if llvm-readelf-19 --file-header "$library" | grep -q AArch64; then
  unprotected=$(llvm-readelf-19 --notes "$archive" |
    awk '/^File: / { file = $2 } /aarch64 feature: BTI, PAC/ { marked[file] = 1 } { seen[file] = 1 }
         END { for (file in seen) if (file != "" && !marked[file]) print file }')
  [ -z "$unprotected" ] || fault "objects without branch protection: $unprotected"
fi

[ $faults -eq 0 ] || exit 1
echo "elf: $soname is linked as it should be"
