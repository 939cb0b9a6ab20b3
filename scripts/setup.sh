#!/usr/bin/env bash
# Installs what the build needs from Debian 12's packages. A run that finds everything there asks
# no network and takes a second.
#   scripts/setup.sh GROUP...
#     build   make demo, make test, make bench
#     check   the other checks on this machine (format, sanitizers, fuzzing, ABI, Android)
#     page    the check of the command's pages in a browser
#     package Debian packages, and trying them in a system of their own (scripts/package.sh)
#     measure what scripts/noise_index_table.py needs
#     compare what scripts/compare_filters.sh needs
#     arm     building for 64-bit Arm and running it in emulation
#     harden  what the long rows of scripts/harden.sh need beyond these
set -euo pipefail

build_packages=(
  clang-19 lld-19 llvm-19 cmake ninja-build make pkg-config git
  libjansson-dev android-liblog android-liblog-dev
  libcli11-dev libyuv-dev libpng-dev libjpeg-dev libexif-dev libnlopt-dev libjs-chart.js
  libgtest-dev libgmock-dev libbenchmark-dev
  libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev
  gstreamer1.0-tools gstreamer1.0-plugins-base gstreamer1.0-plugins-good)

check_packages=(
  clang-format-19 clang-tidy-19 libclang-rt-19-dev abigail-tools binutils python3-minimal python3-jsonschema
  soong android-libcutils-dev qemu-user cppcheck)

page_packages=(chromium chromium-driver)

package_packages=(dpkg-dev python3-minimal gzip lintian debootstrap qemu-user-static)

measure_packages=(python3-numpy python3-pil)

harden_packages=(valgrind)

compare_packages=(ffmpeg python3-opencv python3-numpy)

# Libraries that exist for both machines at once must have one version, so both are named: apt then
# brings an older twin up to date.
arm_twins=(
  libc6 libc6-dev libgcc-s1 libgcc-12-dev libstdc++6 libstdc++-12-dev
  libjansson-dev android-liblog android-liblog-dev
  libyuv-dev libpng-dev libjpeg-dev libexif-dev libnlopt-dev
  libgtest-dev libgmock-dev libbenchmark-dev)

usage() {
  sed -n '2,12s/^# \{0,1\}//p' "$0"
  exit "${1:-0}"
}

# A package counts only when it is fully installed, for this machine unless ":arm64" is added.
is_installed() {
  local machine
  case $1 in
    *:arm64) machine=arm64 ;;
    *) machine=$(dpkg --print-architecture) ;;
  esac
  dpkg-query -W -f '${db:Status-Abbrev}${Architecture}\n' "$1" 2>/dev/null |
    grep -qxE "ii +($machine|all)"
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "setup: installing packages needs root or sudo: $*" >&2
    exit 1
  fi
}

[ $# -gt 0 ] || usage 1
wanted=()
arm=false
for group in "$@"; do
  case $group in
    build) wanted+=("${build_packages[@]}") ;;
    check) wanted+=("${check_packages[@]}") ;;
    page) wanted+=("${page_packages[@]}") ;;
    package) wanted+=("${package_packages[@]}") ;;
    measure) wanted+=("${measure_packages[@]}") ;;
    compare) wanted+=("${compare_packages[@]}") ;;
    arm)
      arm=true
      wanted+=(qemu-user)
      for package in "${arm_twins[@]}"; do wanted+=("$package" "$package:arm64"); done
      ;;
    harden) wanted+=("${harden_packages[@]}") ;;
    -h | --help) usage ;;
    *) usage 1 ;;
  esac
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "setup: this is no Debian; install the counterparts of: ${wanted[*]}" >&2
  exit 0
fi
if $arm && [ "$(dpkg --print-architecture)" != amd64 ]; then
  echo "setup: the arm group is for amd64 machines; on arm64 the host preset is the Arm build" >&2
  exit 1
fi

missing=()
for package in "${wanted[@]}"; do
  is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

echo "setup: installing ${missing[*]}"
if $arm && ! dpkg --print-foreign-architectures | grep -qx arm64; then
  as_root dpkg --add-architecture arm64
fi
# Named again, the twins of a missing Arm package are brought to its version.
if $arm; then missing+=("${arm_twins[@]}"); fi
apt=(env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=600)
as_root "${apt[@]}" update
as_root "${apt[@]}" install -y --no-install-recommends "${missing[@]}"
