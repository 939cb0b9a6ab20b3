#!/usr/bin/env bash
# A fresh Debian 12 in a folder, and commands in it; as root. For another machine than this one the
# programs run in qemu's user-mode emulation.
#   scripts/debian_root.sh make ARCH DIR [PACKAGE...]    minimal system, with PACKAGEs
#   scripts/debian_root.sh run DIR COMMAND...             COMMAND in it, from its folder /root
# With NATIVE_CLANG=1 `run` puts this amd64 machine's clang, of the same version, in the place of the
# root's, which makes Arm code without emulation.
# Mounts live in a namespace of the command and end with it. DEBIAN_MIRROR names another mirror.
set -euo pipefail
mirror=${DEBIAN_MIRROR:-http://deb.debian.org/debian}
binfmt=/proc/sys/fs/binfmt_misc
entry=vorel-aarch64

fail() {
  echo "debian_root: $*" >&2
  exit 1
}

# The F flag opens the emulator now, so that it need not exist in the folder.
emulate() {
  local magic='\x7fELF\x02\x01\x01\x00\x00\x00\x00\x00\x00\x00\x00\x00\x02\x00\xb7\x00'
  local mask='\xff\xff\xff\xff\xff\xff\xff\x00\xff\xff\xff\xff\xff\xff\xff\xff\xfe\xff\xff\xff'
  [ -e $binfmt/register ] || mount -t binfmt_misc binfmt_misc $binfmt || fail "cannot mount $binfmt"
  if grep -qs '^magic 7f454c46.*b700$' $binfmt/*; then return; fi
  local emulator
  emulator=$(command -v qemu-aarch64-static) || fail 'needs qemu-aarch64-static'
  echo ":$entry:M:0:$magic:$mask:$emulator:F" >$binfmt/register
  trap 'echo -1 >$binfmt/$entry' EXIT
}

[ $# -ge 3 ] || { sed -n '2,9s/^# \{0,1\}//p' "$0"; exit 1; }
[ "$(id -u)" -eq 0 ] || fail 'needs root: it makes a system of its own'
verb=$1
case $verb in
  make)
    arch=$2 dir=$3
    shift 3
    [ ! -e "$dir" ] || fail "$dir exists"
    if [ "$arch" != "$(dpkg --print-architecture)" ]; then emulate; fi
    mkdir -p "$(dirname "$dir")"
    # Put in its place when it is whole.
    part=$dir.part.$$
    packages=$(IFS=,; echo "$*")
    debootstrap --variant=minbase --arch="$arch" ${packages:+--include="$packages"} bookworm \
      "$part" "$mirror" >"$part.log" || { tail -n 20 "$part.log" >&2; fail "see $part.log"; }
    rm "$part.log"
    mv "$part" "$dir"
    ;;
  run)
    dir=$2
    shift 2
    [ -x "$dir/usr/bin/dpkg" ] || fail "$dir holds no Debian"
    # e_machine of the system's own dpkg.
    if [ "$(od -An -tx1 -j18 -N1 "$dir/usr/bin/dpkg")" != "$(od -An -tx1 -j18 -N1 /usr/bin/dpkg)" ]; then
      emulate
    fi
    cp -L /etc/resolv.conf "$dir/etc/resolv.conf"
    native=true
    if [ -n "${NATIVE_CLANG:-}" ]; then
      mkdir -p "$dir"/usr/lib/{x86_64-linux-gnu,llvm-native} "$dir/lib64"
      cp -L /lib64/ld-linux-x86-64.so.2 "$dir/lib64"
      cat >"$dir/native_clang" <<'END'
#!/bin/sh
case $0 in *++*) mode=g++ ;; *) mode=gcc ;; esac
exec /usr/lib/llvm-native/bin/clang --driver-mode=$mode --target=aarch64-linux-gnu \
  -B/usr/lib/llvm-19/bin -resource-dir /usr/lib/llvm-19/lib/clang/19 "$@"
END
      chmod +x "$dir/native_clang"
      native='mount --bind /usr/lib/x86_64-linux-gnu usr/lib/x86_64-linux-gnu &&
        mount --bind /usr/lib/llvm-19 usr/lib/llvm-native && mount --bind native_clang usr/lib/llvm-19/bin/clang'
    fi
    # shellcheck disable=SC2016  # expanded by the inner shell
    unshare --mount --pid --fork --kill-child bash -c '
      mount --bind "$0" "$0" && cd "$0" && mount -t proc proc proc && mount --rbind /dev dev && '"$native"' &&
      exec chroot . /usr/bin/env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive TERM=dumb \
        sh -c "cd /root && exec \"\$@\"" sh "$@"' "$(realpath "$dir")" "$@"
    ;;
  *) fail "no verb $verb" ;;
esac
