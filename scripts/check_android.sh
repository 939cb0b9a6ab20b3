#!/usr/bin/env bash
# What can be said about the Android build without Android's tools: Android.bp is well formed and
# lists what CMake lists, the sources keep to what Android 11 has, and the library and the programs
# around it compile in their Android form with the compiler flags of the platform build: the library
# for size and with locals of zeros here, for speed and with a pattern with the programs. The forms are linked against this machine's Arm libraries, with stand-ins for what only Android has; they are
# looked at, not run.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/check_android.py

build=build/android-form
stand_in=$PWD/scripts/android-stand-in
flags='-D__ANDROID__ -D__ANDROID_API__=30 -Werror=date-time -ftrivial-auto-var-init=zero'
flags+=' -D_FORTIFY_SOURCE=2 -fno-strict-aliasing -fstack-protector-strong -funwind-tables'
flags+=" -isystem $stand_in -isystem /usr/include/android"
mkdir -p "$build"
clang-19 --target=aarch64-linux-gnu -fuse-ld=lld -fPIC -shared -nostdlib "$stand_in/libcutils.c" \
  -o "$build/libcutils.so"
if ! {
  PKG_CONFIG_LIBDIR=/nowhere cmake --preset aarch64 -B "$build" -DANDROID=ON \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_CXX_FLAGS_RELEASE='-Os -DNDEBUG' \
    -DJANSSON_LIBRARY=/usr/lib/aarch64-linux-gnu/libjansson.so -DJANSSON_INCLUDE_DIR=/usr/include \
    -DAndroidLog_LIBRARY=/usr/lib/aarch64-linux-gnu/android/liblog.so \
    -DCUTILS_LIBRARY="$PWD/$build/libcutils.so" -DCUTILS_INCLUDE_DIR=/usr/include/android \
    -DVOREL_BUILD_TOOLS=OFF -DVOREL_BUILD_TESTS=OFF -DVOREL_BUILD_BENCH=OFF
  cmake --build "$build"
} >"$build.log" 2>&1; then
  tail -n 60 "$build.log"
  echo "android: the Android form does not build; whole log in $build.log" >&2
  exit 1
fi
scripts/exports.sh check "$build"
scripts/check_elf.sh "$build" libvorel.so
if strings "$build/libvorel.so" | grep -E 'VOREL_(FIRMWARE|DUMP)_DIR'; then
  echo "android: the Android form can be told other directories" >&2
  exit 1
fi
scripts/check_android_programs.py "$stand_in" "$build/programs" "$build"
