# Compiler flags. Numeric flags hold for every target, tests and tools too, so that one expression
# has one value everywhere.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "libvorel is built with clang: half precision needs it on every machine")
endif()

option(VOREL_WERROR "Treat warnings as errors" ON)
set(VOREL_SANITIZE "" CACHE STRING "Sanitizers, as for -fsanitize=")
set(VOREL_SANITIZE_IGNORELIST "" CACHE FILEPATH "What they leave out, as for -fsanitize-ignorelist=")

add_compile_options(-ffp-contract=off -Wall -Wextra -Wshadow -Wformat=2 -Wcast-qual)
if(VOREL_WERROR)
  add_compile_options(-Werror)
endif()
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  # Half-precision operations round one by one, as they do on Arm.
  add_compile_options(-fexcess-precision=16)
  set(VOREL_KERNEL_FLAGS -march=x86-64-v3
    CACHE STRING "Processors that the kernels are compiled for")
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  add_compile_options(-mbranch-protection=standard)
  set(VOREL_KERNEL_FLAGS -march=armv8.2-a+fp16
    CACHE STRING "Processors that the kernels are compiled for")
else()
  message(FATAL_ERROR "unsupported processor ${CMAKE_SYSTEM_PROCESSOR}")
endif()

if(VOREL_SANITIZE)
  add_compile_options(-fsanitize=${VOREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${VOREL_SANITIZE})
  if(VOREL_SANITIZE_IGNORELIST)
    add_compile_options(-fsanitize-ignorelist=${VOREL_SANITIZE_IGNORELIST})
  endif()
  # Instrumented loops do not vectorise.
  add_compile_options(-Wno-pass-failed)
endif()

if(VOREL_BUILD_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
  # The comparisons of a loop over samples tell the fuzzer nothing and took half of the time.
  list(APPEND VOREL_KERNEL_FLAGS -fno-sanitize-coverage=trace-cmp,trace-div)
endif()

# What is installed: the prefix map keeps the place of the tree out of it, and it is hardened as Debian
# hardens its programs (Android's tree and NDK bring flags of their own). glibc's checked functions need
# optimisation; sanitizers see more without them.
set(VOREL_SHIPPED_FLAGS -ffile-prefix-map=${CMAKE_SOURCE_DIR}/= -ffile-prefix-map=${CMAKE_BINARY_DIR}/=)
set(VOREL_SHIPPED_LINK_FLAGS -Wl,-z,relro,-z,now,-z,noexecstack)
if(NOT ANDROID AND NOT VOREL_SANITIZE)
  list(APPEND VOREL_SHIPPED_FLAGS -fstack-protector-strong -fstack-clash-protection
    $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
  if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
    list(APPEND VOREL_SHIPPED_FLAGS -fcf-protection)
  endif()
endif()

# Flags of the library's own sources. The undefined-behaviour sanitizer looks at the types of objects,
# and a function that tests and library share is checked whichever of the two made the object.
set(VOREL_LIBRARY_FLAGS ${VOREL_SHIPPED_FLAGS} -fno-exceptions -Werror=date-time -Wconversion
  -Wno-implicit-float-conversion)
if(NOT VOREL_SANITIZE MATCHES "undefined")
  list(APPEND VOREL_LIBRARY_FLAGS -fno-rtti)
endif()
