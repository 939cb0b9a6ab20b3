#!/usr/bin/env bash
# How libvorel.so, the command and the GStreamer element are linked: hardening of each; of the library
# its name, page size and needs, and on Arm branch protection of every object (the link itself can
# only carry the mark where the system's start-up files do).
#   scripts/check_elf.sh BUILD_DIR [SONAME]
set -euo pipefail
export LC_ALL=C
build=$1
library=$build/libvorel.so
archive=$build/libvorel_static.a
soname=${2:-libvorel.so.1}
faults=0

fault() {
  echo "elf: $*" >&2
  faults=$((faults + 1))
}

check_hardening() {
  local file=$1 header dynamic segments symbols
  header=$(llvm-readelf-19 --file-header "$file")
  dynamic=$(llvm-readelf-19 --dynamic "$file")
  segments=$(llvm-readelf-19 --program-headers --wide "$file")
  symbols=$(llvm-readelf-19 --dyn-symbols --wide "$file")
  grep -q 'Type: *DYN' <<<"$header" || fault "$file: not position-independent"
  grep -q 'FLAGS_1.*NOW' <<<"$dynamic" || fault "$file: not bound at load time (-z now)"
  if grep -q TEXTREL <<<"$dynamic"; then fault "$file: has text relocations"; fi
  grep -q 'GNU_RELRO' <<<"$segments" || fault "$file: no read-only relocations (-z relro)"
  grep -Eq 'GNU_STACK.* RW +0' <<<"$segments" || fault "$file: no mark for a stack that is not executable"
  if awk '$1 == "LOAD" && / RWE / { found = 1 } END { exit !found }' <<<"$segments"; then
    fault "$file: a segment is writable and executable"
  fi
  grep -q ' __stack_chk_fail' <<<"$symbols" || fault "$file: no stack protector"
  # The element's own code copies nothing through glibc.
  if [[ $file != *gst* ]] && ! grep -qE ' __[a-z]+_chk' <<<"$symbols"; then
    fault "$file: none of glibc's checked functions (-D_FORTIFY_SOURCE)"
  fi
}

checked=0
for file in "$library" "$build/tools/vorel" "$build/gstreamer/libgstvorel.so"; do
  [ -e "$file" ] || continue
  check_hardening "$file"
  checked=$((checked + 1))
done

dynamic=$(llvm-readelf-19 --dynamic "$library")
segments=$(llvm-readelf-19 --program-headers --wide "$library")
grep -qF "Library soname: [$soname]" <<<"$dynamic" || fault "$library: soname is not $soname"
if awk '$1 == "LOAD" && $NF != "0x4000" { found = 1 } END { exit !found }' <<<"$segments"; then
  fault "$library: segments are not aligned to 16 KiB"
fi
allowed='liblog\.so(\.0)?|libcutils\.so(\.0)?|libjansson\.so(\.4)?|libstdc\+\+\.so\.6|libc\+\+\.so|libm\.so(\.6)?|libgcc_s\.so\.1|libc\.so(\.6)?|libdl\.so|ld-linux.*\.so\.[12]'
needed=$(sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' <<<"$dynamic" | grep -vxE "$allowed" || true)
[ -z "$needed" ] || fault "$library: needs $needed"

mark='x86 feature: IBT, SHSTK'
if grep -q AArch64 <<<"$(llvm-readelf-19 --file-header "$library")"; then
  mark='aarch64 feature: BTI, PAC'
fi
if [ -e "$archive" ]; then
  unprotected=$(llvm-readelf-19 --notes "$archive" |
    awk -v mark="$mark" '/^File: / { file = $2 } index($0, mark) { marked[file] = 1 } { seen[file] = 1 }
         END { for (file in seen) if (file != "" && !marked[file]) print file }')
  [ -z "$unprotected" ] || fault "objects without branch protection: $unprotected"
fi

[ $faults -eq 0 ] || exit 1
echo "elf: $soname is linked as it should be; $checked files hardened"
