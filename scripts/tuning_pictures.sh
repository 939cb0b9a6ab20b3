#!/usr/bin/env bash
# Makes the pictures of README.md and docs/tuning.md from the sample picture and prints how far each
# one is from the clean form. Those of docs/tuning.md vary one or two keys and leave the others as in
# the sample tuning.
#   scripts/tuning_pictures.sh BUILD_DIR [OUTPUT_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
vorel=$1/tools/vorel
out=${2:-docs/pictures}
clean=samples/meadow.jpg
size=2560x1440
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$out"

# sample MODEL INDEX: what a sample file says for a noise index, as KEY=VALUE pairs of `tuning`.
sample() {
  "$vorel" show "tuning/samples/vorel_$1.json" -n "$2" | awk '
    match($1, /denoiseThrChroma[0-4]/) { print "t" substr($1, RSTART + 16, 1) "=" $2 }
    $1 ~ /d_UV_thresh/ { print "d_uv=" $2 }
    $1 ~ /cs_upper_thresh/ { print "cs=" $2 }
    $1 ~ /cs_lower_thresh/ { print "cs_lower=" $2 }'
}
mapfile -t weak < <(sample NOTHING 100)
mapfile -t half < <(sample NOTHING 800)
mapfile -t strong < <(sample NOTHING 1600)
mapfile -t alone < <(sample WT1240 800; echo wavelet=0)

# tuning NAME KEY=VALUE...: a tuning with a single noise level, so each table holds one value. Keys
# that are not given are those of the sample file at noise index 1600; the last value of a key counts.
tuning() {
  local name=$1
  shift
  local -A value=(
    [spatial]=1 [wavelet]=1 [span]=3 [delta]=7 [coef]='65489, 1375, -5503, 835, -37'
    [d_y]=2 [d_y_lower]=1 [radial]=0.0 [sat1]=0.0 [sat2]=0.0 [thr1]=65.0 [thr2]=40.0)
  set -- "${strong[@]}" "$@"
  local pair
  for pair in "$@"; do value[${pair%%=*}]=${pair#*=}; done
  cat >"$work/$name.json" <<END
[{"CNRTuningSetfile": {"Date": "$name"},
  "enable": ${value[spatial]},
  "noiseIndex_values": [100],
  "enableNoiseIndex": 0,
  "bilateralfiltering_tuning": {
    "span_row": ${value[span]}, "span_col": ${value[span]},
    "val_delta_th": ${value[delta]}, "val_weight_coef": [${value[coef]}],
    "val_weight_denom_shift": 10},
  "interleaving_tuning": {
    "d_Y_upper_thresh_table": [${value[d_y]}], "d_Y_lower_thresh_table": [${value[d_y_lower]}],
    "d_UV_thresh_table": [${value[d_uv]}],
    "cs_upper_thresh_table": [${value[cs]}], "cs_lower_thresh_table": [${value[cs_lower]}]},
  "MFD_UV_tuning": {
    "enable": ${value[wavelet]}, "radialModeTable": [${value[radial]}],
    "denoiseThrChroma0Table": [${value[t0]}], "denoiseThrChroma1Table": [${value[t1]}],
    "denoiseThrChroma2Table": [${value[t2]}], "denoiseThrChroma3Table": [${value[t3]}],
    "denoiseThrChroma4Table": [${value[t4]}],
    "CSatParam1Table": [${value[sat1]}], "CSatParam2Table": [${value[sat2]}],
    "CSatThr1Table": [${value[thr1]}], "CSatThr2Table": [${value[thr2]}]}}]
END
}

# noisy GAIN: the noisy frame's name. Raw NV21, so that nothing is lost on the way.
noisy() {
  local file=$work/gain$1_$size.nv21
  [ -e "$file" ] || "$vorel" noise "$clean" -o "$file" --gain "$1" --seed 1 >&2
  echo "$file"
}

# variant GAIN NAME KEY=VALUE...: adds a denoised form to the row of the next `show`. Gain 0 is the
# clean picture.
row=()
variant() {
  local gain=$1 name=$2
  shift 2
  local source=$clean result=$work/${name}_$size.nv21
  if [ "$gain" != 0 ]; then source=$(noisy "$gain"); fi
  tuning "$name" "$@"
  "$vorel" denoise "$source" -o "$result" --noise-index 100 --tuning "$work/$name.json" \
    --quiet --log error
  row+=("$result")
}

# side_by_side PICTURE CROP ZOOM QUALITY: writes the row as a JPEG file. The detour over a PNG is for
# the quality: a noise index below enableNoiseIndex changes nothing.
side_by_side() {
  "$vorel" compare "${row[@]}" --crop "$2" --zoom "$3" -o "$work/$1.png" >"$work/$1.txt"
  "$vorel" denoise "$work/$1.png" -o "$out/$1.jpg" --noise-index 0 --tuning none --quality "$4" \
    --force --quiet --log error
}

# show PICTURE CROP ZOOM: the same with the clean picture at the right end, and the figures.
show() {
  local row=("${row[@]}" --truth "$clean")
  side_by_side "$1" "$2" "$3" 80
  echo "$1:"
  grep -E 'PSNR|CIEDE' "$work/$1.txt" | tr -s ' '
}

# README.md: before and after, as `vorel denoise` does it without options.
"$vorel" denoise "$(noisy 16)" -o "$work/auto_$size.nv21" --quiet
row=("$(noisy 16)" "$work/auto_$size.nv21")
side_by_side before_after 650,700,210,170 2 85

blade=1070,960,144,112
fibres=1050,560,144,112
corner=2416,1328,144,112

row=("$(noisy 16)")
variant 16 t0_0 t0=0.0
variant 16 t0_sample
variant 16 t0_1700 t0=1700.0
show blotches $blade 2

row=("$(noisy 16)")
variant 16 t12_0 t1=0.0 t2=0.0
variant 16 t12_sample
variant 16 t12_1700 t1=1700.0 t2=1700.0
show middle $blade 2

row=("$(noisy 16)")
variant 16 t34_0 t3=0.0 t4=0.0
variant 16 t34_28_5 t3=28.0 t4=5.0
variant 16 t34_sample
show fine $blade 2

row=("$(noisy 1)")
variant 1 weak "${weak[@]}"
variant 1 builtin t0=100.0 t1=90.0 t2=70.0 t3=70.0 t4=60.0 d_uv=16 d_y=4
show builtin $fibres 2

row=("$(noisy 16)")
variant 16 radial_0 "${half[@]}"
variant 16 radial_1 "${half[@]}" radial=1.0
show radial_corner $corner 2
show radial_centre 1210,700,144,112 2

off=(t0=0.0 t1=0.0 t2=0.0 t3=0.0 t4=0.0 d_uv=0)
row=()
variant 0 sat_weak "${off[@]}" sat2=-80.0 thr1=30.0 thr2=12.0
variant 0 sat_strong "${off[@]}" sat1=50.0 thr1=30.0 thr2=12.0
show saturation 2180,960,320,240 1

row=("$(noisy 8)")
variant 8 d_uv_8 "${alone[@]}" d_uv=8
variant 8 d_uv_sample "${alone[@]}"
variant 8 cs_192 "${alone[@]}" cs=192 cs_lower=144
show spatial $blade 2

row=("$(noisy 8)")
variant 8 d_y_4 d_y=4 d_y_lower=2
variant 8 d_y_64 d_y=64
show luma $fibres 2

row=("$(noisy 8)")
variant 8 span_1 "${alone[@]}" span=1
variant 8 span_7 "${alone[@]}" span=7
variant 8 plain "${alone[@]}" coef='65536, 0, 0, 0, 0'
show bilateral $blade 2
