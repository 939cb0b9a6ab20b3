#!/usr/bin/env bash
# Debian packages (libvorel1, libvorel-dev, vorel, gstreamer1.0-vorel), an archive of the same files,
# their bill of materials and checksums. The same commit gives the same bytes anywhere.
#   scripts/package.sh [OUT]      to OUT, out/packages by default
set -euo pipefail
cd "$(dirname "$0")/.."
out=${1:-out/packages}
scripts/setup.sh build package
SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-$(git log -1 --format=%ct)}
export SOURCE_DATE_EPOCH TZ=UTC LC_ALL=C
umask 022

work=build/package
cmake --preset package >/dev/null
cmake --build --preset package
rm -rf $work/packages
for kind in DEB TGZ; do
  (cd $work && cpack -G $kind -B packages) >$work/cpack.log || { cat $work/cpack.log >&2; exit 1; }
done

# What this cpack cannot say: packages of several machines beside each other, and ldconfig by trigger
# instead of scripts. dpkg-deb sets the times of the files inside to SOURCE_DATE_EPOCH.
finish() {
  local deb=$1 folder=$work/packages/finish multiarch=same
  case $deb in */vorel_*) multiarch=foreign ;; esac
  rm -rf $folder
  dpkg-deb -R "$deb" $folder
  sed -i "s/^Architecture: .*/&\nMulti-Arch: $multiarch/" $folder/DEBIAN/control
  rm -f $folder/DEBIAN/postinst $folder/DEBIAN/postrm
  case $deb in
    */libvorel1_*) echo 'activate-noawait ldconfig' >$folder/DEBIAN/triggers ;;
    *) rm -f $folder/DEBIAN/shlibs ;;
  esac
  find $folder -exec touch --no-dereference --date="@$SOURCE_DATE_EPOCH" {} +
  dpkg-deb -Zxz --root-owner-group -b $folder "$deb" >/dev/null
}
for deb in $work/packages/*.deb; do finish "$deb"; done

mkdir -p "$out"
rm -f "$out"/*.deb "$out"/*.tar.gz "$out"/*.spdx.json "$out"/SHA256SUMS
cp $work/packages/*.deb $work/packages/*.tar.gz "$out"
scripts/sbom.py $work "$out" >"$out/libvorel.spdx.json"
(cd "$out" && sha256sum -- *.deb *.tar.gz *.spdx.json >SHA256SUMS && cat SHA256SUMS)
