#!/usr/bin/env bash
# Builds the packages of HEAD twice, in folders, time zones, languages, permissions and numbers of jobs
# that differ, and compares them byte for byte. The first build's packages go to OUT.
#   scripts/reproduce.sh [OUT]      OUT is out/packages by default
set -euo pipefail
cd "$(dirname "$0")/.."
out=$(realpath -m "${1:-out/packages}")
work=build/reproduce
rm -rf $work
mkdir -p $work
export CCACHE_DISABLE=1  # it would hand the second build the objects of the first

build() {
  local folder=$1 packages=$2
  shift 2
  git clone -q --no-hardlinks . "$folder"
  (cd "$folder" && env "$@" scripts/package.sh "$packages" >package.log 2>&1) || {
    tail -n 30 "$folder/package.log" >&2
    return 1
  }
}

build $work/one "$out" TZ=UTC LANG=C HOME=/root CMAKE_BUILD_PARALLEL_LEVEL=2
umask 077
build $work/another/with/a/longer/name "$PWD/$work/second" TZ=Asia/Kolkata LANG=C.UTF-8 LC_ALL= \
  HOME=/nonexistent CMAKE_BUILD_PARALLEL_LEVEL=3
if ! diff "$out/SHA256SUMS" $work/second/SHA256SUMS; then
  echo "reproduce: the builds differ: $work" >&2
  exit 1
fi
echo "reproduce: $(wc -l <"$out/SHA256SUMS") files, the same bytes from both builds"
rm -rf $work
