# 64-bit Arm Linux from an x86-64 Debian with arm64 multiarch packages; programs run in qemu, on the
# CPU model that the environment's QEMU_CPU names.
if(CMAKE_HOST_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  message(FATAL_ERROR "This preset builds Arm code on amd64; on this machine preset host is the Arm build")
endif()
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-gnu)
set(CMAKE_LIBRARY_ARCHITECTURE aarch64-linux-gnu)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/aarch64-linux-gnu/pkgconfig:/usr/share/pkgconfig)
