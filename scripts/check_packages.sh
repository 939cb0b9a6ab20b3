#!/usr/bin/env bash
# Installs the Debian packages in a fresh Debian 12, uses each as its user would, removes them and
# compares what is left with what was there before. As root; build/roots/packages is made for it.
#   scripts/check_packages.sh PACKAGES_DIR
set -euo pipefail
cd "$(dirname "$0")/.."
packages=$(realpath "$1")
root=build/roots/packages
vorel=build/package/tools/vorel

rm -rf --one-file-system $root
scripts/debian_root.sh make "$(dpkg --print-architecture)" $root
mkdir $root/root/packages
cp "$packages"/*.deb samples/meadow.jpg $root/root/packages
$vorel denoise samples/meadow.jpg --noise-index 1600 -q -o build/package/expected.png --force
cp build/package/expected.png $root/root/packages

cat >$root/root/try.sh <<'END'
set -euo pipefail
cd packages
install() { apt-get install -y -q --no-install-recommends "$@" >>../apt.log 2>&1 || { tail -n 20 ../apt.log; exit 1; }; }
say() { echo "packages: $*"; }
what_is_there() {
  find / -xdev \( -path /proc -o -path /dev -o -path /root -o -path /tmp -o -path /var/cache -o -path /var/log \
    -o -path /var/lib/apt -o -path /var/lib/dpkg \) -prune -o -print | sort
}
apt-get update -q >../apt.log 2>&1
install gcc libc6-dev pkg-config gstreamer1.0-tools gstreamer1.0-plugins-base
what_is_there >../before

install ./libvorel1_*.deb ./vorel_*.deb
vorel --version
vorel denoise meadow.jpg --noise-index 1600 -q -o out.png
cmp out.png expected.png
say 'the installed command gives the bytes of the built one'
vorel check /usr/share/vorel/tuning/*.json >/dev/null
gzip -t /usr/share/man/man1/vorel.1.gz
bash -n /usr/share/bash-completion/completions/vorel
ldconfig -p | grep -F libvorel.so.1 >/dev/null  # -q would end the pipe early

install ./libvorel-dev_*.deb ./gstreamer1.0-vorel_*.deb
examples=/usr/share/doc/libvorel-dev/examples/c
gcc -std=c99 -Wall -Wextra -Werror -o denoise_frames $examples/main.c $(pkg-config --cflags --libs vorel)
./denoise_frames >/dev/null 2>../frames.log
grep -qF "CommitID $(vorel --version | sed 's/.*commit \([^,]*\), .*/\1/') " ../frames.log
say 'an example builds by gcc and pkg-config, and runs'
gst-launch-1.0 -q videotestsrc num-buffers=1 ! video/x-raw,format=NV12 ! vorel noise-index=1600 ! \
  filesink location=frame.raw
test -s frame.raw
say 'a pipeline runs through the element'
for package in libvorel1 libvorel-dev vorel gstreamer1.0-vorel; do
  for file in copyright changelog.Debian.gz; do test -s /usr/share/doc/$package/$file; done
done

apt-get purge -y -q --auto-remove vorel libvorel-dev gstreamer1.0-vorel libvorel1 >>../apt.log 2>&1
what_is_there >../after
diff ../before ../after
if ldconfig -p | grep libvorel; then exit 1; fi
say 'removed, and nothing is left'
END
scripts/debian_root.sh run $root bash try.sh
rm -rf --one-file-system $root
