#!/usr/bin/env bash
# Installs the library to a new folder, moves that folder, and builds and runs the example programs
# against it, by CMake package and by pkg-config.
#   scripts/check_install.sh BUILD_DIR
set -euo pipefail
cd "$(dirname "$0")/.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cmake --install "$1" --prefix "$work/first" >"$work/install.log"
mv "$work/first" "$work/prefix"
prefix=$work/prefix
libdir=$(dirname "$(find "$prefix" -name libvorel.so)")

fail() {
  echo "install: $*" >&2
  exit 1
}

# Nothing that was installed as text may tell where it was built or what this machine holds.
if leaks=$(grep -rnIE "$PWD|$work|/usr/lib|/usr/include|/tmp" "$libdir/cmake" "$libdir/pkgconfig"); then
  fail "paths of this machine: $leaks"
fi
for path in bin/vorel include/vorel/vorel.h share/vorel/tuning/vorel_NOTHING.json share/vorel/vorel_tuning.schema.json share/man/man1/vorel.1; do
  [ -e "$prefix/$path" ] || fail "$path is missing"
done
for header in $(git ls-files 'include/*.h'); do
  [ -e "$prefix/$header" ] || fail "$header is missing"
done
(cd "$work" && "$prefix/bin/vorel" --version) || fail "the installed command does not run"
page=$(sed 's/\\-/-/g' "$prefix/share/man/man1/vorel.1")
for verb in denoise noise compare sweep tune check dump; do
  for option in $("$prefix/bin/vorel" $verb --help | grep -oE -- '^  (-[a-z],)?--[a-z0-9-]+' | grep -oE -- '--[a-z0-9-]+$'); do
    [ "$option" = --help ] || grep -qF -- "$option" <<<"$page" || fail "the manual page lacks $verb $option"
  done
done

export CC=clang-19 CXX=clang++-19 LD_LIBRARY_PATH=$libdir PKG_CONFIG_PATH=$libdir/pkgconfig
for example in c cpp; do
  cp -r "examples/$example" "$work/$example"
  cmake -S "$work/$example" -B "$work/$example/build" -DCMAKE_PREFIX_PATH="$prefix" >"$work/log"
  cmake --build "$work/$example/build" >"$work/log" || { cat "$work/log"; fail "examples/$example does not build"; }
done
read -ra flags <<<"$(pkg-config --cflags --libs vorel)"
strict=(-Wall -Wextra -Werror)
flags+=("-Wl,-rpath,$(pkg-config --variable=libdir vorel)")
"$CC" -std=c99 "${strict[@]}" -o "$work/c/by_pkg_config" "$work/c/main.c" "${flags[@]}"
"$CXX" -std=c++17 "${strict[@]}" -o "$work/cpp/by_pkg_config" "$work/cpp/main.cpp" "${flags[@]}"

unset LD_LIBRARY_PATH
for program in c/build/{denoise_frames,camera_buffer,two_cameras} c/by_pkg_config \
    cpp/build/filter_plane cpp/by_pkg_config; do
  "$work/$program" 2>"$work/log" || { cat "$work/log"; fail "$program failed"; }
done
version=$("$prefix/bin/vorel" --version)
"$work/c/by_pkg_config" >/dev/null 2>"$work/log"
grep -qF "CommitID $(sed 's/.*commit \([^,]*\), .*/\1/' <<<"$version") " "$work/log" ||
  fail "the library's log does not name the commit of $version"
echo "install: library, package and examples work from another place"
