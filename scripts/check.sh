#!/usr/bin/env bash
# The checks, by name; CI runs them through this script too.
#   scripts/check.sh NAME...
#     fast      before a commit: format, includes, host, exports
#     host      the tests on this machine
#     format    layout as .clang-format has it
#     includes  direction of the includes; public headers compile alone
#     tidy      clang-tidy over the library and the command
#     exports   exported names, whose symbols a folder uses, how the library is linked
#     abi       binary interface against the recorded one
#     android   Android.bp against the CMake lists; library and tests as Android compiles them
#     page      the command's pages in a real browser (PAGE_SHOTS: folder for screenshots)
#     schema    the schema of tuning files accepts and refuses what it should
#     install   an installed copy works for programs in C and C++
#     debug     tests without optimisation, locals filled with a pattern
#     asan      tests with the address and undefined-behaviour sanitizers
#     tsan      tests with the thread sanitizer
#     arm       tests as 64-bit Arm code in emulation, on two processor models
#     fuzz      the fuzz targets, FUZZ_SECONDS (30) each
#     bench     every benchmark runs once, or those that BENCH_FILTER names
#     all       all of these
# shellcheck disable=SC2317  # the check_ functions are called by name
set -euo pipefail
cd "$(dirname "$0")/.."

# Runs beside each other take turns.
configure_and_build() {
  local preset=$1
  shift
  mkdir -p build
  # shellcheck disable=SC2016  # expanded by the inner shell
  if ! flock "build/$preset.lock" sh -c 'cmake --preset "$0" && cmake --build --preset "$0" "$@"' "$preset" "$@" \
    >"build/$preset.log" 2>&1; then
    tail -n 60 "build/$preset.log"
    echo "check: preset $preset does not build; whole log in build/$preset.log" >&2
    return 1
  fi
}

# With SCOPE=library the slow builds leave out the command and the GStreamer element.
build_and_test() {
  local clients=ON
  if [ "${SCOPE:-all}" = library ]; then clients=OFF; fi
  cmake --preset "$1" -DVOREL_BUILD_TOOLS=$clients -DVOREL_BUILD_GSTREAMER=$clients >/dev/null
  configure_and_build "$1"
  ctest --preset "$1" --quiet --output-log "build/$1-tests.log" || { cat "build/$1-tests.log"; return 1; }
  sed -n '/tests passed/,$p' "build/$1-tests.log"
}

# On a processor that lacks what the kernels are compiled for the command must say so and exit with
# 3; an illegal instruction would end it with a signal.
refuses_old_processor() {
  local status=0
  local said
  said=$("$@" 2>&1 >/dev/null) || status=$?
  if [ "$status" -ne 3 ] || ! grep -qi 'processor' <<<"$said"; then
    printf 'check: %s\nexited with %d and said: %s\n' "$*" "$status" "$said" >&2
    return 1
  fi
  echo "refused on $3: $said"
}

denoise_arguments=(denoise samples/meadow.jpg -o build/refused.png --noise-index 800
  --tuning tuning/samples/vorel_NOTHING.json)

check_host() { build_and_test host; }

check_format() {
  git ls-files -z -- '*.h' '*.c' '*.cpp' | xargs -0 clang-format-19 --dry-run --Werror
}

check_includes() { scripts/check_includes.py; }

check_tidy() {
  configure_and_build host --target vorel vorel_static
  git ls-files -z -- '*.cpp' |
    grep -zE '^(platform|threading|tuning|filters|convert|wavelet|core|tools)/' |
    grep -zv '^platform/android/' | xargs -0 -P "$(nproc)" -n 4 clang-tidy-19 --quiet -p build/host
}

check_exports() {
  configure_and_build host --target vorel vorel_static
  scripts/exports.sh check build/host
  scripts/check_symbols.py build/host
  scripts/check_elf.sh build/host
}

check_abi() { scripts/abi.sh check; }

check_android() { scripts/check_android.sh; }

# Debian's Python, which has the validator.
check_schema() { /usr/bin/python3 scripts/check_schema.py; }

check_page() {
  configure_and_build host --target vorel_command
  /usr/bin/python3 scripts/check_page.py build/host ${PAGE_SHOTS:+"$PAGE_SHOTS"}
}

check_install() {
  configure_and_build host
  scripts/check_install.sh build/host
}

check_debug() {
  build_and_test host-debug
  configure_and_build host --target vorel_command
  refuses_old_processor qemu-x86_64 -cpu Nehalem build/host/tools/vorel "${denoise_arguments[@]}"
}

check_asan() { build_and_test asan-ubsan; }

check_tsan() { build_and_test tsan; }

check_arm() {
  build_and_test aarch64
  ctest --preset aarch64-a76 --quiet --output-log build/aarch64-a76-tests.log ||
    { cat build/aarch64-a76-tests.log; return 1; }
  sed -n '/tests passed/,$p' build/aarch64-a76-tests.log
  scripts/exports.sh check build/aarch64
  scripts/check_elf.sh build/aarch64
  if [ "${SCOPE:-all}" = all ]; then
    refuses_old_processor qemu-aarch64 -cpu cortex-a53 build/aarch64/tools/vorel "${denoise_arguments[@]}"
  fi
}

check_fuzz() {
  configure_and_build fuzz
  scripts/run_fuzz.sh build/fuzz "${FUZZ_SECONDS:-30}"
}

check_bench() {
  configure_and_build host
  build/host/bench/vorel_bench --benchmark_min_time=0.001 --benchmark_filter="${BENCH_FILTER:-.}"
}

fast=(format includes host exports)
everything=(format includes tidy host exports android schema page install abi debug asan tsan arm fuzz bench)

[ $# -gt 0 ] || { sed -n '3,21s/^# \{0,1\}//p' "$0"; exit 1; }
if [ "$1" = --step ]; then
  "check_$2"
  exit
fi

names=()
for name in "$@"; do
  case $name in
    all) names+=("${everything[@]}") ;;
    fast) names+=("${fast[@]}") ;;
    *) names+=("$name") ;;
  esac
done
for name in "${names[@]}"; do
  declare -F "check_$name" >/dev/null || { echo "check: no check named $name" >&2; exit 1; }
done

# Each check in a process of its own: one failing step ends it, and the others still run.
results=()
failed=0
for name in "${names[@]}"; do
  echo "== $name"
  start=$SECONDS
  verdict='ok    '
  "$0" --step "$name" || { verdict='FAILED'; failed=1; }
  results+=("$verdict  $name ($((SECONDS - start)) s)")
done
printf '%s\n' '==' "${results[@]}"
exit $failed
