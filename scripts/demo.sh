#!/usr/bin/env bash
# Shows what the library does to a picture whose clean form is known: the sample picture is made
# noisy as a camera would at two gains, denoised by the spatial path alone and by both paths, and
# compared with the clean one. Figures go to the terminal, pictures to out/demo/.
#   scripts/demo.sh BUILD_DIR
# Ends with status 1 when denoising does not bring a picture nearer to the clean one.
set -euo pipefail
cd "$(dirname "$0")/.."
vorel=$1/tools/vorel
clean=samples/meadow.jpg
# Strengths for both paths together, and for the spatial path on its own.
tuning=tuning/samples/vorel_NOTHING.json
spatial_tuning=tuning/samples/vorel_WT1240.json
out=out/demo
# A saturated stem, fine detail and dark grass.
crop=${DEMO_CROP:-620,640,480,360}
mkdir -p "$out"

# The figures of one picture, "U V CIEDE2000", from the JSON of `vorel compare`.
figures() {
  awk -v file="\"$2\"" '
    index($0, "\"file\": " file) { here = 1 }
    here && /"psnr_u"/ { gsub(/[^0-9.]/, ""); u = $0 }
    here && /"psnr_v"/ { gsub(/[^0-9.]/, ""); v = $0 }
    here && /"ciede2000"/ { match($0, /[0-9.]+[^0-9.]*$/); e = substr($0, RSTART); sub(/[^0-9.].*/, "", e) }
    here && /}/ { print u, v, e; exit }' "$1"
}

# Both chroma planes nearer to the truth, and colours less different from it.
is_nearer() {
  awk -v "after=$1" -v "before=$2" 'BEGIN {
    split(after, a); split(before, b)
    exit !(a[1] > b[1] && a[2] > b[2] && a[3] < b[3]) }'
}

# Raw NV21, as a camera delivers it: a picture that passed through RGB would have lost noise that is
# no colour, and the comparison would praise the library for it.
size=2560x1440
printf '%-6s %-13s %12s %12s %15s\n' gain picture 'PSNR U, dB' 'PSNR V, dB' 'CIEDE2000, mean'
failed=0
for gain in ${DEMO_GAINS:-8 32}; do
  base=$out/gain$gain
  name() { echo "${base}_$1_$size.nv21"; }
  "$vorel" noise "$clean" -o "$(name noisy)" --gain "$gain" --seed 1 --force >"$base.log"
  denoise=("$vorel" denoise "$(name noisy)" --noise-index $((100 * gain)) --force)
  "${denoise[@]}" --tuning "$spatial_tuning" -o "$(name spatial)" >>"$base.log"
  "${denoise[@]}" --tuning "$tuning" -o "$(name full)" >>"$base.log"
  pictures=("$(name noisy)" "$(name spatial)" "$(name full)")
  "$vorel" compare "${pictures[@]}" --truth "$clean" --json >"$base.json"
  "$vorel" compare "${pictures[@]}" --truth "$clean" --crop "$crop" --zoom 2 \
    -o "${base}_side_by_side.png" --force >>"$base.log"

  before=$(figures "$base.json" "$(name noisy)")
  for form in noisy spatial full; do
    now=$(figures "$base.json" "$(name $form)")
    # shellcheck disable=SC2086  # three figures
    printf '%-6s %-13s %12.2f %12.2f %15.2f\n' "$gain" "$form" $now
    if [ "$form" != noisy ] && ! is_nearer "$now" "$before"; then
      echo "demo: gain $gain, $form: no nearer to the clean picture than the noisy one" >&2
      failed=1
    fi
  done
done
echo
echo "noisy | spatial path only | both paths | clean, twice enlarged:"
ls "$out"/*_side_by_side.png
exit $failed
