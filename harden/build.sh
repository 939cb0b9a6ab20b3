# Sourced by rows in the tree's top folder: programs of harden/ in the host build.

# Builds targets of the host preset and says what went wrong if they do not build. Rows that run
# beside each other take turns.
build_target() {
  local said
  mkdir -p build
  if ! said=$(flock build/host.lock sh -c 'cmake --preset host -DVOREL_BUILD_HARDEN=ON &&
    cmake --build --preset host --target "$@"' sh "$@" 2>&1); then
    tail -n 40 <<<"$said"
    echo "harden: $* does not build"
    return 1
  fi
}

# A folder of files that need no disk, where there is one.
if [ -w /dev/shm ]; then export TMPDIR=/dev/shm; fi
