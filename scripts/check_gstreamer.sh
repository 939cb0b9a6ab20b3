#!/usr/bin/env bash
# Real pipelines through the built element give the bytes that the command gives.
#   scripts/check_gstreamer.sh BUILD
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath "$1")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export GST_PLUGIN_PATH=$build/gstreamer GST_REGISTRY=$work/registry.bin
unset VOREL_FIRMWARE_DIR

gst-inspect-1.0 vorel >"$work/inspect.txt"
grep -q 'Colour noise removal' "$work/inspect.txt"

# compare NAME WIDTH HEIGHT LAYOUT SOURCE...: the source's frame as it is, through the element, and
# through the command.
compare() {
  local name=$1 width=$2 height=$3 layout=$4
  shift 4
  local caps="video/x-raw,format=${layout^^},width=$width,height=$height"
  local raw=$work/$name.$layout
  gst-launch-1.0 -q "$@" ! videoconvert ! "$caps" ! filesink location="$raw"
  local strength
  for strength in noise-index=auto "noise-index=1600 amount=40" noise-index=1600; do
    # shellcheck disable=SC2086
    gst-launch-1.0 -q "$@" ! videoconvert ! "$caps" ! vorel $strength ! \
      filesink location="$work/element.raw"
    # shellcheck disable=SC2086
    "$build/tools/vorel" denoise "$raw" --size "${width}x$height" \
      --${strength// / --} -q -o "$work/command.$layout" --force
    cmp "$work/element.raw" "$work/command.$layout"
  done
  if cmp -s "$raw" "$work/element.raw"; then
    echo "gstreamer: $name came out as it went in" >&2
    return 1
  fi
  echo "gstreamer: $name, ${width}x$height $layout: the command's bytes"
}

compare pattern 320 240 nv21 videotestsrc num-buffers=1
compare picture 2560 1440 nv21 filesrc location=samples/meadow.jpg ! jpegdec
