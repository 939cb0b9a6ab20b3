#!/usr/bin/env bash
# Other filters beside libvorel on the same noisy pictures: makes the tables of docs/comparison.md again.
#   scripts/compare_filters.sh BUILD_DIR [OUTPUT_DIR]
# The photographs come from Debian's packages, which are downloaded and unpacked below OUTPUT_DIR
# (out/comparison). Everything runs on the first two processors. Takes some ten minutes; ROUNDS (5)
# says how often each filter is timed.
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || { sed -n '2,6s/^# \{0,1\}//p' "$0" >&2; exit 1; }
build=$(realpath "$1")
out=${2:-out/comparison}
scripts/setup.sh compare
mkdir -p "$out"
out=$(realpath "$out")

# The first is what is tuned on, the others are what is measured.
for package in lomiri-wallpapers-16.04 lomiri-wallpapers-20.04 mate-backgrounds python3-skimage; do
  [ ! -d "$out/packages/$package" ] || continue
  work=$(mktemp -d)
  (cd "$work" && apt-get -q download "$package" && dpkg-deb -x ./*.deb unpacked)
  mkdir -p "$out/packages"
  mv "$work/unpacked" "$out/packages/$package"
  rm -r "$work"
done

# Debian's Python, which has OpenCV.
exec taskset -c 0,1 /usr/bin/python3 scripts/compare_filters.py "$build" "$out" --rounds "${ROUNDS:-5}"
