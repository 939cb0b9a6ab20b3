#!/usr/bin/env bash
# Tunes tuning/samples again, by vorel tune on clean pictures that it makes noisy.
#   scripts/tune_samples.sh BUILD [PICTURE...]
# Without pictures the photographs of Debian's package lomiri-wallpapers-16.04 are taken: downloaded,
# unpacked and scaled down to about 960 pixels with djpeg, so that they are clean. Their noise and
# the search are the same in every run. chromaNoise_values and the keys that are not searched stay as
# the files have them; levels beyond the highest gain that can be made take its values.
set -euo pipefail
cd "$(dirname "$0")/.."

[ $# -gt 0 ] || { sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 1; }
vorel=$(realpath "$1/tools/vorel")
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

pictures=("$@")
if [ ${#pictures[@]} -eq 0 ]; then
  (cd "$work" && apt-get -q download lomiri-wallpapers-16.04 && dpkg-deb -x ./*.deb .)
  for picture in "$work"/usr/share/backgrounds/*.jpg samples/meadow.jpg; do
    small=$work/$(basename "$picture" .jpg)_small.jpg
    # head ends the pipe early, which is no failure
    width=$(djpeg "$picture" 2>/dev/null | head -c 20 | sed -n '2s/ .*//p' || true)
    eighths=$((8 * 960 / width))
    [ $eighths -ge 1 ] || eighths=1
    [ $eighths -le 8 ] || eighths=8
    djpeg -scale $eighths/8 "$picture" | cjpeg -quality 100 -outfile "$small"
    pictures+=("$small")
  done
fi

# The levels between them lie in equal ratios.
tune() {
  "$vorel" tune "${pictures[@]}" --clean --noise-index 100,400,1600,6400,25600,102400 "$@" \
    --date "$(date +%F)" --quiet
}
tune --spatial on --output "$work/tuned.json" --report "$work/report.txt"
tune --no-wavelet --output "$work/alone.json" --report "$work/alone.txt"

python3 - "$work/tuned.json" "$work/alone.json" <<'PYTHON'
import json
import re
import sys

tuned, alone = (json.load(open(path, encoding="utf-8"))[-1] for path in sys.argv[1:])


def spelled(values):
    return "[" + ", ".join(map(str, values)) + "]"


# The second sensor has half the noise, so its levels are doubled; the third has no wavelet path.
for name, found, sections in (("NOTHING", tuned, ("interleaving_tuning", "MFD_UV_tuning")),
                              ("WT1200", tuned, ("interleaving_tuning", "MFD_UV_tuning")),
                              ("WT1240", alone, ("interleaving_tuning",))):
    path = f"tuning/samples/vorel_{name}.json"
    text = open(path, encoding="utf-8").read()
    count = len(json.loads(text)[-1]["noiseIndex_values"])
    for section in sections:
        for key, values in found[section].items():
            if not isinstance(values, list):
                continue
            values = (values + count * values[-1:])[:count]
            text = re.sub(rf'("{key}": )\[[^]]*\]', lambda m: m[1] + spelled(values), text)
    date = found["CNRTuningSetfile"]["Date"]
    text = re.sub(r'("Date": )"[^"]*"', lambda m: f'{m[1]}"{date}"', text)
    open(path, "w", encoding="utf-8").write(text)
PYTHON
cat "$work/report.txt" "$work/alone.txt"
