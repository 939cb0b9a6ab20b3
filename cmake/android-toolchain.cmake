# The NDK's toolchain, or a word on what is missing.
set(_ndk "$ENV{ANDROID_NDK}/build/cmake/android.toolchain.cmake")
if("$ENV{ANDROID_NDK}" STREQUAL "" OR NOT EXISTS "${_ndk}")
  message(FATAL_ERROR "Preset android needs an NDK: ANDROID_NDK=/path/to/ndk cmake --preset android ...")
endif()
# Linux NDKs have compilers for amd64 only.
if(NOT CMAKE_HOST_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64" AND CMAKE_HOST_SYSTEM_NAME STREQUAL "Linux")
  message(FATAL_ERROR "Preset android needs an amd64 machine: the NDK has no compiler for others")
endif()
include("${_ndk}")
