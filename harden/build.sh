# Sourced by rows in the tree's top folder: programs of harden/ in the host build.

# Builds a target of the host preset and says what went wrong if it does not build.
build_target() {
  mkdir -p build
  if ! { cmake --preset host -DVOREL_BUILD_HARDEN=ON && cmake --build --preset host --target "$@"; } \
    >build/harden.log 2>&1; then
    tail -n 40 build/harden.log
    echo "harden: $* does not build"
    return 1
  fi
}

# A folder of files that need no disk, where there is one.
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
